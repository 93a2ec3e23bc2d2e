// What the console's forms understand of the API's description.

import assert from 'node:assert/strict';
import test from 'node:test';

import { choices, inWords, prefill, problems, resolve } from '../../simulator/console/schema.js';
import { covered, dbm } from '../../simulator/console/air.js';
import { quoted } from '../../simulator/console/activity.js';
import { scriptLine } from '../../simulator/console/settings.js';

const DOCUMENT = { components: { schemas: {
  Switch: { enum: [0, 1], description: '0 off, 1 on.' },
  Named: { type: 'object', required: ['name'], properties: { name: { type: 'string', minLength: 1, maxLength: 5 }, on: { $ref: '#/components/schemas/Switch' } } },
} } };
const SWITCH = { $ref: '#/components/schemas/Switch' };
const labels = (schema, twin) => choices(resolve(schema, DOCUMENT), twin)?.map(({ label }) => label);
const told = (schema, value) => problems(schema, value, DOCUMENT).map(({ path, text }) => `${path.join('.')}: ${text}`);

test('the words of a description become the labels of the choices', () => {
  assert.deepEqual(labels(SWITCH), ['0 · off', '1 · on']);
  assert.deepEqual(labels({ ...SWITCH, description: 'Needed, but later settings apply it.' }), ['0 · off', '1 · on']);
  assert.deepEqual(labels({ enum: [0, 1, 2], description: 'None, SLAAC, prefix delegation.' }), ['0 · None', '1 · SLAAC', '2 · prefix delegation']);
  assert.deepEqual(labels({ enum: [0, 1, 4], description: '20, 40, 80 MHz.' }), ['0 · 20 MHz', '1 · 40 MHz', '4 · 80 MHz']);
  assert.deepEqual(labels({ enum: [0, 1, 2], description: 'Multi-link: off, 2.4+5, 5+6 GHz.' }), ['0 · off', '1 · 2.4+5 GHz', '2 · 5+6 GHz']);
  assert.deepEqual(labels({ type: 'integer', minimum: 0, maximum: 2, description: '0 DHCP, 1 static, 2 PPPoE.' }), ['0 · DHCP', '1 · static', '2 · PPPoE']);
  assert.deepEqual(labels({ enum: [9, 8], description: 'Nothing that counts.' }), ['9', '8']);
  assert.deepEqual(labels({ enum: [0, 1] }, { enum: [0, 1], description: 'None, SLAAC.' }), ['0 · None', '1 · SLAAC']);
  assert.equal(labels({ type: 'integer', minimum: 0, maximum: 3600, description: 'Seconds.' }), undefined);
  assert.equal(labels({ type: 'string' }), undefined);
});

test('what a schema refuses is told, with its place', () => {
  const named = { $ref: '#/components/schemas/Named' };
  assert.deepEqual(told(named, { name: 'x', on: 1 }), []);
  assert.deepEqual(told(named, {}), ['name: It is needed.']);
  assert.deepEqual(told(named, { name: '', on: 2 }), ['name: It must not be empty.', 'on: It must be one of 0, 1.']);
  assert.deepEqual(told(named, { name: '日本語の本日' }), ['name: At most 5 characters; these are 6.']);
  assert.deepEqual(told(named, 'x'), [': It must be an object.']);
  assert.deepEqual(told({ type: 'array', maxItems: 1, items: named }, [{ name: 'x' }, { name: 7 }]),
    [': At most 1 entries; these are 2.', '1.name: It must be a text.']);
});

test('bounds and forms of numbers and texts', () => {
  const number = { type: 'integer', minimum: 40, maximum: 1000 };
  for (const good of [40, 1000]) assert.deepEqual(told(number, good), []);
  for (const bad of [39, 1001, 1.5, '100', null, true]) assert.deepEqual(told(number, bad), [': It must be a whole number from 40 to 1000.'], String(bad));
  const address = { type: 'string', format: 'ipv4' };
  for (const good of ['0.0.0.0', '192.168.0.1', '255.255.255.255']) assert.deepEqual(told(address, good), []);
  for (const bad of ['', '1.2.3', '1.2.3.256', '1.2.3.4.5', '1.2.3.04', 'a.b.c.d', ' 1.2.3.4']) assert.equal(told(address, bad).length, 1, bad);
  assert.equal(told({ type: 'string', pattern: '^[0-2][0-9]$' }, '3x').length, 1);
  assert.equal(told({ const: 5 }, 6).length, 1);
});

test('an answer fills a form, where its members have the form of the request', () => {
  const schema = { type: 'object', properties: {
    wanIPv6Method: { enum: [0, 1] }, power: { enum: [10, 100] }, gateway: { type: 'string', format: 'ipv4' }, mtu: { type: 'integer' }, name: { type: 'string' }, list: { type: 'array', items: { $ref: '#/components/schemas/Named' } },
  } };
  const answer = { result: 0, version: 1, wanIpv6Method: 1, power: 0, gateway: 'None', mtu: '1492', name: 7, list: [{ name: 'a', other: 1 }, { name: 'b', on: 1 }] };
  assert.deepEqual(prefill(schema, answer, DOCUMENT), { wanIPv6Method: 1, mtu: 1492, list: [{ name: 'a' }, { name: 'b', on: 1 }] });
  assert.deepEqual(prefill(schema, {}, DOCUMENT), {});
});

test('names in words', () => {
  const names = { lanIpv4Dns1: 'LAN IPv4 DNS 1', wanIPv6Method: 'WAN IPv6 method', set5GChannel: 'Set 5 GHz channel', power2G: 'Power 2.4 GHz',
    macFilterStatus: 'MAC filter status', natAccelerationEnable: 'NAT acceleration', enable: 'Enabled', ssidPassword: 'SSID password' };
  assert.deepEqual(Object.fromEntries(Object.keys(names).map((name) => [name, inWords(name)])), names);
});

test('the line for a terminal quotes what a shell would take apart', () => {
  const about = { port: 8080, defaultPort: 8080 };
  assert.equal(scriptLine(about, 'GET', '/api/v1/lan'), 'script/request GET /api/v1/lan');
  assert.equal(scriptLine({ ...about, port: 9 }, 'POST', '/api/v1/ntp', `{"server":"Bob's $(id)"}`),
    `script/request --port 9 POST /api/v1/ntp '{"server":"Bob'\\''s $(id)"}'`);
  assert.equal(quoted(''), "''");
});

test('the channels that a width covers, and a signal in dBm', () => {
  assert.deepEqual([covered(1, 6, 20), covered(1, 6, 40)], [[4, 8], [4, 12]]);
  assert.deepEqual([covered(2, 36, 160), covered(2, 44, 80), covered(2, 100, 20), covered(2, 104, 40)], [[34, 66], [34, 50], [98, 102], [98, 106]]);
  assert.deepEqual([covered(3, 37, 320), covered(3, 37, 80)], [[-1, 63], [31, 47]]);
  assert.deepEqual([0, 50, 100].map(dbm), [-90, -60, -30]);
});
