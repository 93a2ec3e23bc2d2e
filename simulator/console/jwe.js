// Encrypts and decrypts JWE compact texts as the router's pages do: PBES2-HS256+A128KW (RFC 7518, 4.8) and A128CBC-HS256
// (RFC 7518, 5.2.3), with what the browser brings.

const ALGORITHM = 'PBES2-HS256+A128KW';
const ENCRYPTION = 'A128CBC-HS256';
const ITERATIONS = 32768; // as many as the router's own tool takes
const MOST_ITERATIONS = 1000000; // a header that asks for more would keep the page busy
const TAG_BYTES = 16;

const utf8 = new TextEncoder();

export function toBase64Url(bytes) {
  let text = '';
  for (const byte of bytes) text += String.fromCharCode(byte);
  return btoa(text).replaceAll('+', '-').replaceAll('/', '_').replaceAll('=', '');
}

export function fromBase64Url(text) {
  if (!/^[\w-]*$/.test(text)) throw new Error('this is no base64url text');
  return Uint8Array.from(atob(text.replaceAll('-', '+').replaceAll('_', '/')), (c) => c.charCodeAt(0));
}

function joined(...parts) {
  const all = new Uint8Array(parts.reduce((length, part) => length + part.length, 0));
  let at = 0;
  for (const part of parts) {
    all.set(part, at);
    at += part.length;
  }
  return all;
}

async function wrappingKey(password, salt, iterations) {
  const base = await crypto.subtle.importKey('raw', password, 'PBKDF2', false, ['deriveKey']);
  const parameters = {
    name: 'PBKDF2', hash: 'SHA-256', iterations, salt: joined(utf8.encode(ALGORITHM), new Uint8Array(1), salt),
  };
  return crypto.subtle.deriveKey(parameters, base, { name: 'AES-KW', length: 128 }, false, ['wrapKey', 'unwrapKey']);
}

// The content key's halves: the first authenticates, the second encrypts.
async function halves(contentKey) {
  return {
    mac: await crypto.subtle.importKey('raw', contentKey.slice(0, 16), { name: 'HMAC', hash: 'SHA-256' }, false, ['sign']),
    aes: await crypto.subtle.importKey('raw', contentKey.slice(16), 'AES-CBC', false, ['encrypt', 'decrypt']),
  };
}

async function tagOf(macKey, header, iv, ciphertext) {
  const additional = utf8.encode(header);
  const bits = new Uint8Array(8);
  new DataView(bits.buffer).setBigUint64(0, BigInt(additional.length) * 8n);
  const mac = await crypto.subtle.sign('HMAC', macKey, joined(additional, iv, ciphertext, bits));
  return new Uint8Array(mac).slice(0, TAG_BYTES);
}

const anyContentKey = { name: 'HMAC', hash: 'SHA-256', length: 256 };

// `jwk` is {kty: 'oct', k}. `given` sets what is random otherwise, so that an example can be followed to the letter:
// {contentKey, iv, header}.
export async function encrypt(text, jwk, given = {}) {
  const random = (length) => crypto.getRandomValues(new Uint8Array(length));
  const header = given.header ?? { alg: ALGORITHM, enc: ENCRYPTION, p2c: ITERATIONS, p2s: toBase64Url(random(16)) };
  const contentKey = given.contentKey ?? random(32);
  const iv = given.iv ?? random(16);

  const wrapping = await wrappingKey(fromBase64Url(jwk.k), fromBase64Url(header.p2s), header.p2c);
  const wrappable = await crypto.subtle.importKey('raw', contentKey, anyContentKey, true, ['sign']);
  const wrapped = new Uint8Array(await crypto.subtle.wrapKey('raw', wrappable, wrapping, 'AES-KW'));

  const { mac, aes } = await halves(contentKey);
  const ciphertext = new Uint8Array(await crypto.subtle.encrypt({ name: 'AES-CBC', iv }, aes, utf8.encode(text)));
  const head = toBase64Url(utf8.encode(JSON.stringify(header)));
  const tag = await tagOf(mac, head, iv, ciphertext);
  return [head, ...[wrapped, iv, ciphertext, tag].map(toBase64Url)].join('.');
}

function readHeader(head) {
  const header = JSON.parse(new TextDecoder().decode(fromBase64Url(head)));
  if (header.alg !== ALGORITHM || header.enc !== ENCRYPTION) throw new Error(`encrypted with ${header.alg}, ${header.enc}`);
  if (!Number.isInteger(header.p2c) || header.p2c < 1 || header.p2c > MOST_ITERATIONS) throw new Error('p2c is out of bounds');
  return header;
}

// The bytes that a compact text holds. Throws where the key is another, or a letter was changed.
export async function decryptBytes(compact, jwk) {
  const fields = compact.trim().split('.');
  if (fields.length !== 5) throw new Error('this is no JWE compact text');
  const header = readHeader(fields[0]);
  const [wrapped, iv, ciphertext, tag] = fields.slice(1).map(fromBase64Url);

  const wrapping = await wrappingKey(fromBase64Url(jwk.k), fromBase64Url(header.p2s), header.p2c);
  const key = await crypto.subtle.unwrapKey('raw', wrapped, wrapping, 'AES-KW', anyContentKey, true, ['sign']);
  const { mac, aes } = await halves(new Uint8Array(await crypto.subtle.exportKey('raw', key)));

  const expected = await tagOf(mac, fields[0], iv, ciphertext);
  let difference = tag.length ^ TAG_BYTES;
  for (let i = 0; i < TAG_BYTES; ++i) difference |= expected[i] ^ tag[i];
  if (difference !== 0) throw new Error('the text was changed on its way');
  return new Uint8Array(await crypto.subtle.decrypt({ name: 'AES-CBC', iv }, aes, ciphertext));
}

export async function decrypt(compact, jwk) {
  return new TextDecoder().decode(await decryptBytes(compact, jwk));
}

export function isEncrypted(text) {
  return text.startsWith('eyJ') && text.split('.').length === 5;
}
