// Who is connected to whom, as the router's answers tell it: a tree of units and clients.

export const MEDIA = ['cable', '2.4', '5', '6'];
const CONNECTIONS = { 0: ['cable'], 1: ['2.4'], 2: ['5'], 3: ['6'], 4: ['2.4', '5'], 5: ['5', '6'], 6: ['2.4', '5', '6'], 7: ['2.4', '6'] };
const NO_NAME = /^(|none)$/i;

export function mediaOf(connectionType) {
  return CONNECTIONS[connectionType] ?? [];
}

// "5+6 GHz", "cable", "unknown".
export function mediaInWords(media) {
  if (media.length === 0) return 'unknown';
  return media[0] === 'cable' ? 'cable' : `${media.join('+')} GHz`;
}

// 0 to 4 bars for a driver's signal; undefined where it is not told.
export function bars(signal) {
  return signal > 0 ? [1, 20, 30, 40].filter((least) => signal >= least).length : undefined;
}

function client(entry, addresses) {
  const mac = entry.macAddress.toUpperCase();
  const ip = addresses.get(mac);
  return {
    kind: 'client', id: `client ${mac}`, name: ip ?? mac, mac, ip, media: mediaOf(entry.connectionType),
    signal: Number(entry.rssi), children: [],
  };
}

function satellite(agent) {
  const mac = agent.macAddress.toUpperCase();
  return {
    kind: 'satellite', id: `unit ${mac}`, name: agent.model, mac, ip: agent.ipv4Address, number: agent.agentDeviceNumber,
    media: mediaOf(agent.connectionType), parent: agent.connectParentMacAddress?.toUpperCase(), children: [],
  };
}

// The satellites level by level: the order in which the client list numbers them, which names none.
export function levels(root) {
  const found = [];
  for (let units = [root]; units.length > 0;) {
    units = units.flatMap((unit) => unit.children.filter((child) => child.kind === 'satellite'));
    found.push(...units);
  }
  return found;
}

function hangSatellites(root, agents) {
  const units = agents.map(satellite);
  const byMac = new Map(units.map((unit) => [unit.mac, unit]));
  for (const unit of units) (byMac.get(unit.parent) ?? root).children.push(unit);
  return units;
}

function hangClients(root, list, addresses) {
  const units = levels(root);
  root.children.unshift(...(list.clientList ?? []).map((entry) => client(entry, addresses)));
  for (let number = 1; number <= 16; ++number) {
    const entries = list[`easyMesh${String(number).padStart(2, '0')}`];
    if (!entries?.length) continue;
    let unit = units[number - 1];
    if (!unit) {
      unit = { kind: 'satellite', id: `unit ${number}`, name: `satellite ${number}`, number, media: [], children: [] };
      root.children.push(unit);
    }
    unit.children.unshift(...entries.map((entry) => client(entry, addresses)));
  }
}

const WAN_METHODS = ['DHCP', 'a static address', 'PPPoE', 'MAP-E', 'DS-Lite', 'IPIP6', 'standard provisioning'];

// What is above the router: the Internet, or the network that it extends.
function above({ wan, info, uplink, mode }) {
  if (mode === 'router' || mode === 'controller') {
    const linked = wan?.wanLinkStatus !== 0;
    const method = WAN_METHODS[wan?.wanMethod] ?? 'unknown';
    const ip = NO_NAME.test(wan?.wanIpv4Address ?? '') ? undefined : wan.wanIpv4Address;
    return { kind: 'above', id: 'above', name: 'Internet', media: ['cable'], down: wan !== undefined && !linked, ip, method };
  }
  const media = mode === 'ap' ? ['cable'] : uplinkMedia(uplink);
  const connected = mode === 'ap' || uplink === undefined || uplink.bssid !== '';
  const name = mode === 'agent' ? 'Mesh controller' : mode === 're' ? uplink?.ssid || 'Upstream Wi-Fi' : 'Upstream router';
  return { kind: 'above', id: 'above', name, media, down: !connected || (mode === 'ap' && wan?.wanLinkStatus === 0), mac: uplink?.bssid };
}

function uplinkMedia(uplink) {
  if (!uplink) return [];
  const multi = { 1: ['2.4', '5'], 2: ['5', '6'], 3: ['2.4', '5', '6'] }[uplink.multiLinkOperationEnable];
  return multi ?? { 1: ['2.4'], 2: ['5'], 3: ['6'] }[uplink.frequency] ?? [];
}

// answers: {mode, info, wan, uplink, agents, clients, leases}, each the data of its GET or undefined while it is not known.
export function meshOf(answers) {
  const { mode, info, wan, agents, clients, leases } = answers;
  const addresses = new Map((leases?.clientList ?? []).map((lease) => [lease.macAddress.toUpperCase(), lease.ipAddress]));
  const root = {
    kind: 'router', id: 'router', name: info?.model ?? 'Router', mac: info?.macAddress ?? wan?.lanMacAddress,
    role: ROLES[mode] ?? 'Router', location: info?.locationCustom, media: [], children: [],
  };
  const units = hangSatellites(root, agents?.agentInfo ?? []);
  for (const unit of [root, ...units]) unit.known = clients !== undefined;
  if (clients) hangClients(root, clients, addresses);
  return { above: above(answers), root, satellites: levels(root).length, clients: countClients(root) };
}

export const ROLES = { router: 'Router', controller: 'Mesh controller', ap: 'Access point', re: 'Repeater', agent: 'Mesh agent' };

export function clientsOf(unit) {
  return unit.children.filter((child) => child.kind === 'client');
}

export function countClients(unit) {
  return unit.children.reduce((sum, child) => sum + (child.kind === 'client' ? 1 : countClients(child)), 0);
}

// [["2.4", 12], ...] how many clients use what, for a unit that is folded.
export function countMedia(clients) {
  const counts = new Map();
  for (const { media } of clients) counts.set(mediaInWords(media), (counts.get(mediaInWords(media)) ?? 0) + 1);
  return [...counts].sort();
}

function counted(number, one) {
  return number === 0 ? `no ${one}s` : `${number} ${one}${number === 1 ? '' : 's'}`;
}

// What the router is doing, in a headline and a sentence.
export function inWords(mesh, answers) {
  const { mode, clients, agents, internet } = answers;
  const role = ROLES[mode] ?? 'Router';
  const parts = [];
  if (mode === 'controller' && agents) parts.push(counted(mesh.satellites, 'satellite'));
  if (clients) parts.push(counted(mesh.clients, 'client'));
  const article = /^[AEIOU]/.test(role) ? 'An' : 'A';
  const headline = `${article} ${role.toLowerCase()}${parts.length ? ` with ${parts.join(' and ')}` : ''}`;
  return { headline, sentence: connection(mesh.above, mode, internet) };
}

function connection(above, mode, internet) {
  const reached = internet === undefined ? '' : internet > 0 ? ' The Internet is reached.' : ' The Internet is not reached.';
  if (mode === 'router' || mode === 'controller') {
    if (above.down) return 'Nothing is plugged into its Internet port, so its clients reach one another only.';
    const address = above.ip ? `, and has the address ${above.ip} there` : '';
    return `It is connected to the Internet by ${above.method}${address}.${reached}`;
  }
  const links = above.media[0] === 'cable' ? 'by cable' : above.media.length > 0 ? `over ${mediaInWords(above.media)}` : 'in a way that it does not tell';
  if (above.down) return `It has lost its ${mode === 'ap' ? 'cable to the upstream router' : `uplink “${above.name}”`}.`;
  return `It extends ${mode === 'agent' ? 'a mesh' : mode === 're' ? `the Wi-Fi “${above.name}”` : 'another router’s network'}, ${links}.${reached}`;
}
