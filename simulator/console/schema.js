// What a JSON schema of the API's description says of a value: its choices, its bounds, what is wrong with it.

// A schema with its references followed; what stands beside a reference is kept, its description before the other's.
export function resolve(schema, document) {
  let found = schema;
  if (found.$ref) {
    const { $ref, ...beside } = found;
    const target = $ref.slice(2).split('/').reduce((at, name) => at[name], document);
    const followed = resolve(target, document);
    found = { ...followed, ...beside, descriptions: [beside.description, ...(followed.descriptions ?? [followed.description])] };
  }
  for (const part of found.allOf ?? []) {
    const { allOf, ...rest } = found;
    const other = resolve(part, document);
    found = { ...other, ...rest, properties: { ...other.properties, ...rest.properties } };
  }
  return found;
}

export function typeOf(schema) {
  if (schema.type) return schema.type;
  if (schema.properties) return 'object';
  const samples = schema.enum ?? (schema.const === undefined ? [] : [schema.const]);
  if (samples.length > 0) return Number.isInteger(samples[0]) ? 'integer' : typeof samples[0];
  return undefined;
}

const MOST_CHOICES = 16;

function numbered(text) {
  const found = new Map();
  for (const part of text.split(/[,;:]\s*|\.\s/)) {
    const match = /^(-?\d+)(?: is)? (\D.*?)\.?$/.exec(part.trim());
    if (match) found.set(Number(match[1]), match[2]);
  }
  return found;
}

// "None, SLAAC, prefix delegation." in the order of the values; "2.4, 5, 6 GHz." gives its unit to each.
function listed(text, count) {
  const sentence = text.replace(/\.(\s.*)?$/, '').replace(/^[\w-]+(?: [\w-]+)*: /, '');
  for (const separator of [/, /, /, | or /]) {
    const parts = sentence.split(separator);
    if (parts.length !== count) continue;
    const unit = / (GHz|MHz)$/.exec(parts.at(-1))?.[1];
    return parts.map((part) => (unit && /^[\d.+]+$/.test(part) ? `${part} ${unit}` : part));
  }
  return undefined;
}

// Values and words for them, as a description tells them.
function wordsFor(schema, values) {
  const texts = (schema.descriptions ?? [schema.description]).filter(Boolean);
  for (const text of texts) {
    const words = numbered(text);
    if (words.size > 1) return words;
  }
  const places = values && texts.length > 0 ? listed(texts.at(-1), values.length) : undefined;
  return new Map(places?.map((word, i) => [values[i], word]));
}

function range(schema) {
  const { minimum, maximum } = schema;
  if (typeOf(schema) !== 'integer' || !Number.isInteger(minimum) || !(maximum - minimum < MOST_CHOICES)) return undefined;
  return Array.from({ length: maximum - minimum + 1 }, (_, i) => minimum + i);
}

// [{value, label}] where the schema leaves a choice between few values, else undefined. `twin` is the same member as a
// GET answers it, which may have words where this one has none.
export function choices(schema, twin = {}) {
  const own = wordsFor(schema, schema.enum);
  const words = own.size > 1 ? own : wordsFor(twin, twin.enum);
  const values = schema.enum ?? (words.size > 1 ? range(schema) : undefined);
  return values?.map((value) => ({ value, label: words.has(value) ? `${value} · ${words.get(value)}` : String(value) }));
}

const IPV4 = /^(25[0-5]|2[0-4]\d|1\d\d|[1-9]?\d)(\.(25[0-5]|2[0-4]\d|1\d\d|[1-9]?\d)){3}$/;

function fitsType(value, type) {
  if (type === 'integer') return Number.isInteger(value);
  if (type === 'array') return Array.isArray(value);
  if (type === 'object') return value !== null && typeof value === 'object' && !Array.isArray(value);
  return type === undefined || typeof value === type;
}

function boundsOf(schema) {
  const { minimum, maximum } = schema;
  if (minimum !== undefined && maximum !== undefined) return `a whole number from ${minimum} to ${maximum}`;
  if (minimum !== undefined) return `a whole number, ${minimum} or more`;
  return maximum === undefined ? 'a whole number' : `a whole number, ${maximum} at most`;
}

const A_TYPE = { string: 'a text', array: 'a list', object: 'an object', boolean: 'true or false' };

// What is wrong with a text, or undefined.
function wrongText(schema, value) {
  const length = [...value].length;
  if (schema.minLength !== undefined && length < schema.minLength) return 'It must not be empty.';
  if (schema.maxLength !== undefined && length > schema.maxLength) return `At most ${schema.maxLength} characters; these are ${length}.`;
  if (schema.format === 'ipv4' && !IPV4.test(value)) return 'An IPv4 address is needed, such as 192.168.0.1.';
  if (schema.pattern && !new RegExp(schema.pattern, 'u').test(value)) return `It must have the form ${schema.pattern}`;
  return undefined;
}

function wrongNumber(schema, value) {
  return value < (schema.minimum ?? -Infinity) || value > (schema.maximum ?? Infinity) ? `It must be ${boundsOf(schema)}.` : undefined;
}

// [{path: ['member', 0, ...], text}]: all that the schema refuses in a value.
export function problems(schema, value, document, path = []) {
  const own = resolve(schema, document);
  const type = typeOf(own);
  const wrong = (text) => [{ path, text }];
  if (!fitsType(value, type)) return wrong(`It must be ${A_TYPE[type] ?? boundsOf(own)}.`);
  if (own.enum && !own.enum.includes(value)) return wrong(`It must be one of ${own.enum.join(', ')}.`);
  if (own.const !== undefined && own.const !== value) return wrong(`It must be ${own.const}.`);
  if (type === 'array') return listProblems(own, value, document, path);
  if (type === 'object') return memberProblems(own, value, document, path);
  const text = type === 'string' ? wrongText(own, value) : type === 'integer' ? wrongNumber(own, value) : undefined;
  return text ? wrong(text) : [];
}

function listProblems(own, value, document, path) {
  const tooMany = own.maxItems !== undefined && value.length > own.maxItems
    ? [{ path, text: `At most ${own.maxItems} entries; these are ${value.length}.` }] : [];
  return [...tooMany, ...value.flatMap((entry, i) => problems(own.items ?? {}, entry, document, [...path, i]))];
}

function memberProblems(own, value, document, path) {
  const missing = (own.required ?? []).filter((name) => value[name] === undefined)
    .map((name) => ({ path: [...path, name], text: 'It is needed.' }));
  const inside = Object.entries(own.properties ?? {}).filter(([name]) => value[name] !== undefined)
    .flatMap(([name, member]) => problems(member, value[name], document, [...path, name]));
  return [...missing, ...inside];
}

// What a GET answered, as far as the schema of the POST has it. Keys that differ in their capitals are the same one, and
// a number that is answered as a text becomes a number. What the POST would refuse is left out, such as the address "None".
export function prefill(schema, answer, document) {
  const own = resolve(schema, document);
  const type = typeOf(own);
  if (type === 'integer' && typeof answer === 'string' && /^-?\d+$/.test(answer)) return Number(answer);
  if (!fitsType(answer, type)) return undefined;
  if (type === 'array') return answer.map((entry) => prefill(own.items ?? {}, entry, document)).filter((entry) => entry !== undefined);
  if (type !== 'object') return problems(own, answer, document).length === 0 ? answer : undefined;
  const byCase = new Map(Object.entries(answer).map(([name, value]) => [name.toLowerCase(), value]));
  const members = Object.entries(own.properties ?? {})
    .map(([name, member]) => [name, byCase.has(name.toLowerCase()) ? prefill(member, byCase.get(name.toLowerCase()), document) : undefined]);
  return Object.fromEntries(members.filter(([, value]) => value !== undefined));
}

// The bounds in words, for a field's hint; '' where there are none.
export function hint(schema) {
  if (schema.enum || schema.const !== undefined) return '';
  if (typeOf(schema) === 'integer') return schema.minimum === undefined && schema.maximum === undefined ? '' : boundsOf(schema);
  if (schema.format === 'ipv4') return 'an IPv4 address';
  return schema.maxLength === undefined ? '' : `at most ${schema.maxLength} characters`;
}

const WORDS = {
  ip: 'IP', ipv4: 'IPv4', ipv6: 'IPv6', lan: 'LAN', wan: 'WAN', dns: 'DNS', ssid: 'SSID', bssid: 'BSSID', mac: 'MAC', wps: 'WPS', mlo: 'MLO',
  mtu: 'MTU', dhcpv4: 'DHCPv4', pppoe: 'PPPoE', dhcpc: 'DHCP client', led: 'LED', pptp: 'PPTP', ipsec: 'IPsec', dos: 'DoS', spi: 'SPI',
  vne: 'VNE', nat: 'NAT', url: 'URL', id: 'ID', wpa: 'WPA', ofdma: 'OFDMA', ru: 'RU', ce: 'CE', rssi: 'RSSI', essid: 'network name',
  ipip: 'IPIP', db: 'DB', aftr: 'AFTR', br: 'BR', fw: 'firmware', mu: 'MU', mimo: 'MIMO', v4: 'IPv4', wifi: 'Wi-Fi', dtim: 'DTIM',
  num: 'number', compati: 'compatibility', str: 'in words', schdule: 'schedule',
};
const NAMES = { uPnPIGD: 'UPnP', ieee802dot11r: '802.11r roaming', enable: 'Enabled', compatiWiFi6Mode: 'Wi-Fi 6 compatibility mode',
  wanIpv4subMask: 'WAN IPv4 sub mask' };
const BANDS = { 2: '2.4 GHz', 5: '5 GHz', 6: '6 GHz' };

// A member's name in words: lanIpv4Dns1 is "LAN IPv4 DNS 1".
export function inWords(name) {
  if (NAMES[name]) return NAMES[name];
  const parts = name.replace(/IPv(\d)/g, 'Ipv$1').replace(/Enable$/, '').replace(/([256])G(?=[A-Z]|$)/g, ' $1 ')
    .replace(/([a-z\d])([A-Z])/g, '$1 $2').replace(/([A-Z]+)([A-Z][a-z])/g, '$1 $2').replace(/(?<=[a-uw-z])(\d+)$/, ' $1')
    .split(/[\s_]+/).filter(Boolean);
  const banded = /[256]G(?=[A-Z]|$)/.test(name);
  const words = parts.map((part) => (banded && BANDS[part]) || WORDS[part.toLowerCase()]
    || (/^[A-Z\d]+$/.test(part) ? part : part.toLowerCase()));
  const text = words.join(' ');
  return text.charAt(0).toUpperCase() + text.slice(1);
}
