// The API's encrypted bodies with the npm package jose: JWE compact texts under a password that both sides know.
import {readFileSync} from 'node:fs'
import {CompactEncrypt, base64url, compactDecrypt} from 'jose'

type Header = {alg: string; enc: string}

const lighttpd = new URL('../../simulator/factory/files/etc/lighttpd/', import.meta.url)
const read = (name: string) => JSON.parse(readFileSync(new URL(name, lighttpd), 'utf8'))
const header: Header = read('jwe-protected.json').protected
const key = base64url.decode(read('jwe-key.json').k)

export function isEncrypted(body: string): boolean {
  return body.startsWith('eyJ') && body.split('.').length === 5
}

export function seal(text: string): Promise<string> {
  return new CompactEncrypt(new TextEncoder().encode(text)).setProtectedHeader(header).encrypt(key)
}

export async function open(body: string): Promise<string> {
  const options = {keyManagementAlgorithms: [header.alg], contentEncryptionAlgorithms: [header.enc], maxPBES2Count: 100_000}
  return new TextDecoder().decode((await compactDecrypt(body.trim(), key, options)).plaintext)
}
