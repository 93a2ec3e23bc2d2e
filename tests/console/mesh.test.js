// The mesh as the answers tell it, and where it is drawn: nothing overlaps, nothing is lost, at any width.

import assert from 'node:assert/strict';
import test from 'node:test';

import { layOut } from '../../simulator/console/mesh_layout.js';
import { bars, clientsOf, countMedia, inWords, levels, mediaInWords, mediaOf, meshOf } from '../../simulator/console/mesh_model.js';

const mac = (kind, number) => `02:00:00:${kind}:00:${number.toString(16).padStart(2, '0').toUpperCase()}`;
const agent = (number, parent, connectionType = 5) => ({
  agentDeviceNumber: number, model: `satellite-${number}`, macAddress: mac('A0', number), ipv4Address: `192.168.0.${10 + number}`,
  connectParentMacAddress: parent ? mac('A0', parent) : mac('00', 1), connectionType,
});
const clients = (unit, count) => Array.from({ length: count }, (_, i) => ({
  macAddress: mac(`B${unit.toString(16).toUpperCase()}`, i), connectionType: i % 4, rssi: unit ? String(i) : i,
}));
const slot = (number) => `easyMesh${String(number).padStart(2, '0')}`;

function answersOf({ own = 0, below = [], agents = [] }) {
  const list = { result: 0, clientList: clients(0, own) };
  below.forEach((count, i) => { if (count > 0) list[slot(i + 1)] = clients(i + 1, count); });
  return { mode: 'controller', wan: { wanLinkStatus: 1, wanMethod: 0, wanIpv4Address: '203.0.113.10' }, agents: { agentInfo: agents }, clients: list, internet: 1 };
}

test('each connection type has its bands', () => {
  assert.deepEqual([0, 1, 2, 3, 4, 5, 6, 7, -1].map((type) => mediaInWords(mediaOf(type))),
    ['cable', '2.4 GHz', '5 GHz', '6 GHz', '2.4+5 GHz', '5+6 GHz', '2.4+5+6 GHz', '2.4+6 GHz', 'unknown']);
});

test('a signal has one to four bars, and one that is not told has none', () => {
  assert.deepEqual([0, NaN, 1, 19, 20, 30, 40, 90].map(bars), [undefined, undefined, 1, 1, 2, 3, 4, 4]);
});

test('satellites hang below their parents, and clients below the satellite that the list means', () => {
  // The list goes level by level: satellite 3, which hangs below 2, comes after 4.
  const mesh = meshOf(answersOf({ own: 2, below: [1, 2, 3, 4], agents: [agent(1), agent(2), agent(3, 2), agent(4)] }));
  assert.deepEqual(levels(mesh.root).map((unit) => unit.name), ['satellite-1', 'satellite-2', 'satellite-4', 'satellite-3']);
  const counts = Object.fromEntries(levels(mesh.root).map((unit) => [unit.name, clientsOf(unit).length]));
  assert.deepEqual(counts, { 'satellite-1': 1, 'satellite-2': 2, 'satellite-4': 3, 'satellite-3': 4 });
  assert.equal(clientsOf(mesh.root).length, 2);
  assert.deepEqual([mesh.satellites, mesh.clients], [4, 12]);
});

test('a satellite without clients keeps its place, one with an unknown parent hangs below the router', () => {
  const mesh = meshOf(answersOf({ below: [0, 2], agents: [agent(1, 9), agent(2)] }));
  assert.deepEqual(levels(mesh.root).map((unit) => [unit.name, clientsOf(unit).length]), [['satellite-1', 0], ['satellite-2', 2]]);
});

test('clients behind a satellite that nobody named are not lost', () => {
  const mesh = meshOf(answersOf({ below: [1, 1], agents: [agent(1)] }));
  assert.equal(mesh.clients, 2);
  assert.deepEqual(levels(mesh.root).map((unit) => unit.name), ['satellite-1', 'satellite 2']);
});

test('a lease gives a client its address', () => {
  const answers = answersOf({ own: 1 });
  answers.leases = { clientList: [{ ipAddress: '192.168.0.100', macAddress: mac('b0', 0).toLowerCase() }] };
  assert.deepEqual(clientsOf(meshOf(answers).root).map(({ name, ip }) => [name, ip]), [['192.168.0.100', '192.168.0.100']]);
});

test('headline and sentence say what the router is doing', () => {
  const say = (answers) => Object.values(inWords(meshOf(answers), answers)).join(' | ');
  assert.equal(say(answersOf({ own: 2, below: [1], agents: [agent(1)] })),
    'A mesh controller with 1 satellite and 3 clients | It is connected to the Internet by DHCP, and has the address 203.0.113.10 there. The Internet is reached.');
  assert.match(say({ mode: 'router', clients: { clientList: [] }, wan: { wanLinkStatus: 0 } }), /A router with no clients \| Nothing is plugged/);
  const uplink = { ssid: 'Upstream-5G', bssid: '00:11', frequency: 2, multiLinkOperationEnable: 0 };
  assert.match(say({ mode: 're', uplink, clients: { clientList: [] } }), /^A repeater with no clients \| It extends the Wi-Fi “Upstream-5G”, over 5 GHz/);
  assert.match(say({ mode: 're', uplink: { ...uplink, bssid: '' } }), /lost its uplink “Upstream-5G”/);
  assert.match(say({ mode: 'agent', uplink: { ...uplink, multiLinkOperationEnable: 2 } }), /^A mesh agent \| It extends a mesh, over 5\+6 GHz\./);
  assert.match(say({ mode: 'ap', wan: { wanLinkStatus: 1 } }), /^An access point \| It extends another router’s network, by cable\./);
});

test('folded clients are counted by what they use', () => {
  const [unit] = levels(meshOf(answersOf({ below: [9], agents: [agent(1)] })).root);
  assert.deepEqual(countMedia(clientsOf(unit)), [['2.4 GHz', 2], ['5 GHz', 2], ['6 GHz', 2], ['cable', 3]]);
});

// The picture.

const MESHES = {
  'nobody': answersOf({}),
  'three satellites': answersOf({ own: 3, below: [3, 3, 3], agents: [agent(1), agent(2), agent(3, 2)] }),
  'a chain': answersOf({ own: 1, below: [1, 1, 1, 1, 1], agents: [1, 2, 3, 4, 5].map((n) => agent(n, n - 1)) }),
  'sixteen with sixty-four each': answersOf({ own: 64, below: new Array(16).fill(64), agents: Array.from({ length: 16 }, (_, i) => agent(i + 1, i % 4 === 3 ? i : 0)) }),
};
const WIDTHS = [280, 320, 700, 1100, 1320, 1800];

function overlaps(one, other) {
  return one.x < other.x + other.width && other.x < one.x + one.width && one.y < other.y + other.height && other.y < one.y + one.height;
}

for (const [name, answers] of Object.entries(MESHES)) {
  test(`the picture of ${name} has every node once, inside, and none over another`, () => {
    for (const width of WIDTHS) {
      const picture = layOut(meshOf(answers), width, new Map());
      assert.equal(new Set(picture.nodes.map(({ node }) => node.id)).size, picture.nodes.length);
      assert.equal(picture.links.length, picture.nodes.length - 1, 'each but the first has one link');
      picture.nodes.forEach((one, i) => {
        assert.ok(one.x >= 0 && one.x + one.width <= width && one.y >= 0 && one.y + one.height <= picture.height, `${one.node.id} at ${width}`);
        for (const other of picture.nodes.slice(i + 1)) assert.ok(!overlaps(one, other), `${one.node.id} over ${other.node.id} at ${width}`);
      });
    }
  });
}

test('many clients are folded, until somebody unfolds them', () => {
  const mesh = meshOf(MESHES['sixteen with sixty-four each']);
  const kinds = (chosen) => layOut(mesh, 1320, chosen).nodes.map(({ node }) => node.kind);
  assert.equal(kinds(new Map()).filter((kind) => kind === 'client').length, 0);
  assert.equal(kinds(new Map()).filter((kind) => kind === 'folded').length, 17);
  const unfolded = kinds(new Map([[levels(mesh.root)[0].id, false]]));
  assert.deepEqual([unfolded.filter((kind) => kind === 'client').length, unfolded.filter((kind) => kind === 'folded').length], [64, 16]);
});
