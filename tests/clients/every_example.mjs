// node every_example.mjs BASE ROUTER: asks a router, one of x-routers of docs/openapi.yaml, all examples that are POSTs,
// encrypted and decrypted by a JWE library that is not the router's. One line for each; status 1 when an answer's `result`
// or members are not the example's.
import {readFileSync} from 'node:fs'
import {parse} from 'yaml'
import {isEncrypted, open, seal} from './bodies.mjs'

const RAW = 'application/octet-stream'
const [base, routerName] = process.argv.slice(2)
const document = parse(readFileSync(new URL('../../docs/openapi.yaml', import.meta.url), 'utf8'))

function examplesOf(contents) {
  return Object.entries(contents ?? {}).flatMap(([media, content]) =>
    Object.entries(content.examples ?? {}).map(([name, example]) => ({media, name, example})))
}

// In the document's order; what makes the router start again comes last.
function posts() {
  const found = []
  for (const [uri, {post}] of Object.entries(document.paths)) {
    if (!post) continue
    const requests = new Map(examplesOf(post.requestBody?.content).map((entry) => [entry.name, entry.example]))
    const raw = RAW in (post.requestBody?.content ?? {})
    for (const {media, name, example} of examplesOf(post.responses['200'].content)) {
      if ((example['x-router'] ?? 'router') !== routerName) continue
      found.push({uri, name, media, raw, request: requests.get(name), answer: example, last: example['x-last'] ?? false})
    }
  }
  return found.sort((a, b) => a.last - b.last)
}

async function send(uri, body) {
  const response = await fetch(base + uri, {method: 'POST', body, headers: {'Content-Type': 'application/json'}})
  return Buffer.from(await response.arrayBuffer())
}

async function bodyOf({raw, request, answer}) {
  if ('x-body-from' in answer) return send(answer['x-body-from'], '')
  if (request === undefined) return ''
  const {value} = request
  const text = typeof value === 'string' ? value : JSON.stringify(value)
  return raw ? text : seal(text)
}

const membersOf = (value) => Object.keys(value).sort().join(' ')

let encrypted = 0
let wrong = 0
for (const post of posts()) {
  const bytes = await send(post.uri, await bodyOf(post))
  const body = bytes.toString()
  let told = 'file'
  if (post.media !== RAW) {
    const answer = JSON.parse(isEncrypted(body) ? await open(body) : body)
    encrypted += isEncrypted(body)
    const expected = post.answer.value
    const fits = answer.result === expected.result && membersOf(answer) === membersOf(expected) &&
      isEncrypted(body) !== (post.answer['x-plain'] ?? false)
    told = fits ? `result ${answer.result}` : `${JSON.stringify(answer)} and not ${JSON.stringify(expected)}`
    wrong += !fits
  }
  console.log(`POST ${post.uri} ${post.name}: ${told}`)
}
console.log(`${encrypted} answers decrypted, ${wrong} wrong`)
process.exitCode = wrong ? 1 : 0
