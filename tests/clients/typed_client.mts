// node typed_client.mjs BASE: ten calls with a client whose types are made from docs/openapi.yaml.
import createClient, {type Middleware} from 'openapi-fetch'
import {isEncrypted, open, seal} from './bodies.mjs'
import type {paths} from './generated/api.js'

const encrypted: Middleware = {
  async onRequest({request}) {
    const text = await request.clone().text()
    return text ? new Request(request, {body: await seal(text)}) : undefined
  },
  async onResponse({response}) {
    const body = await response.clone().text()
    return isEncrypted(body) ? new Response(await open(body), response) : undefined
  },
}

const client = createClient<paths>({baseUrl: process.argv[2] ?? 'http://127.0.0.1:8080'})
client.use(encrypted)

type Call = () => Promise<boolean>

/** Asks, and looks whether the answer holds what is expected; the compiler looks whether it may. */
function call<Answer extends object>(ask: () => Promise<{data?: Answer | null}>, expected: Partial<Answer>): Call {
  return async () => {
    const {data} = await ask()
    return data != null && Object.entries(expected).every(([name, value]) => data[name as keyof Answer] === value)
  }
}

const calls: [string, Call][] = [
  ['the LAN is read', call(() => client.GET('/api/v1/lan'), {result: 0, lanIpv4Address: '192.168.0.1'})],
  ['it is changed', call(() => client.POST('/api/v1/lan', {
    body: {lanIpv4Address: '192.168.9.1', lanIpv4SubMask: '255.255.255.0', globalIpProtectionEnable: 1},
  }), {result: 0, waitTime: 60})],
  ['a network is no address', call(() => client.POST('/api/v1/lan', {
    body: {lanIpv4Address: '192.168.9.0', lanIpv4SubMask: '255.255.255.0'},
  }), {result: 1})],
  ['the time service is read', call(() => client.GET('/api/v1/ntp'), {result: 0})],
  ['the DHCP server is read', call(() => client.GET('/api/v1/dhcp'), {result: 0})],
  ['the router is read', call(() => client.GET('/api/v1/router/info'), {result: 0})],
  ['the WAN is read', call(() => client.GET('/api/v1/router/wan-info'), {result: 0})],
  ['the radios are read', call(() => client.GET('/api/v1/wireless/setting'), {result: 0})],
  ['the device tells itself, not encrypted', call(() => client.GET('/api/v1/router/device-info'), {result: 0})],
  ['the leases are read', call(() => client.GET('/api/v1/dhcp/client-list'), {result: 0})],
]
for (const [what, fits] of calls) {
  const as = (await fits()) ? 'as expected' : 'WRONG'
  console.log(`${what}: ${as}`)
  if (as === 'WRONG') process.exitCode = 1
}
