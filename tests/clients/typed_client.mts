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

let calls = 0
function expect(what: string, fits: boolean): void {
  calls += 1
  console.log(`${calls} ${what}: ${fits ? 'as expected' : 'WRONG'}`)
  if (!fits) process.exitCode = 1
}

const lan = await client.GET('/api/v1/lan')
expect('the LAN is read', lan.data?.result === 0 && lan.data.lanIpv4Address === '192.168.0.1')
const changed = await client.POST('/api/v1/lan', {
  body: {lanIpv4Address: '192.168.9.1', lanIpv4SubMask: '255.255.255.0', globalIpProtectionEnable: 1},
})
expect('it is changed', changed.data?.result === 0 && changed.data.waitTime === 60)
const refused = await client.POST('/api/v1/lan', {body: {lanIpv4Address: '192.168.9.0', lanIpv4SubMask: '255.255.255.0'}})
expect('a network is no address', refused.data?.result === 1)
const ntp = await client.GET('/api/v1/ntp')
expect('the time service is read', ntp.data?.result === 0)
const dhcp = await client.GET('/api/v1/dhcp')
expect('the DHCP server is read', dhcp.data?.result === 0)
const info = await client.GET('/api/v1/router/info')
expect('the router is read', info.data?.result === 0)
const wan = await client.GET('/api/v1/router/wan-info')
expect('the WAN is read', wan.data?.result === 0)
const wireless = await client.GET('/api/v1/wireless/setting')
expect('the radios are read', wireless.data?.result === 0)
const device = await client.GET('/api/v1/router/device-info')
expect('the device tells itself, not encrypted', device.data?.result === 0)
const leases = await client.GET('/api/v1/dhcp/client-list')
expect('the leases are read', leases.data?.result === 0)
