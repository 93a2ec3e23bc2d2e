// The console's encryption: against the RFC's own example, and against the npm package jose, in both directions.

import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import test from 'node:test';

import * as jose from 'jose';

import { decrypt, decryptBytes, encrypt, fromBase64Url, isEncrypted, toBase64Url } from '../../simulator/console/jwe.js';

const KEY = { kty: 'oct', k: 'c2ltdWxhdG9y' };
const TEXTS = ['', 'x', '{"ssid": "日本語 🛜 <img src=x onerror=alert(1)>"}', 'y'.repeat(300000), "Bob's \"$(id)\" \\ \n\r\t\0"];
const PERMITTED = { keyManagementAlgorithms: ['PBES2-HS256+A128KW'], contentEncryptionAlgorithms: ['A128CBC-HS256'], maxPBES2Count: 40000 };

const example = JSON.parse(readFileSync(new URL('rfc7517-c.json', import.meta.url)));
const exampleKey = { kty: 'oct', k: toBase64Url(new TextEncoder().encode(example.password)) };

test("the RFC's example is made to the letter and read back", async () => {
  const given = { header: example.header, contentKey: Uint8Array.from(example.contentKey), iv: fromBase64Url(example.compact.split('.')[2]) };
  assert.equal(await encrypt(example.plaintext, exampleKey, given), example.compact);
  assert.equal(await decrypt(example.compact, exampleKey), example.plaintext);
});

test('the package jose reads what the console writes', async () => {
  for (const text of TEXTS) {
    const compact = await encrypt(text, KEY);
    assert.ok(isEncrypted(compact));
    const { plaintext, protectedHeader } = await jose.compactDecrypt(compact, fromBase64Url(KEY.k), PERMITTED);
    assert.equal(new TextDecoder().decode(plaintext), text);
    assert.deepEqual(Object.keys(protectedHeader), ['alg', 'enc', 'p2c', 'p2s']);
    assert.equal(protectedHeader.p2c, 32768);
  }
});

test('the console reads what the package jose writes', async () => {
  for (const text of TEXTS) {
    const compact = await new jose.CompactEncrypt(new TextEncoder().encode(text))
      .setProtectedHeader({ alg: 'PBES2-HS256+A128KW', enc: 'A128CBC-HS256' }).encrypt(fromBase64Url(KEY.k));
    assert.equal(await decrypt(compact + '\n', KEY), text);
  }
});

test('no two texts are encrypted alike', async () => {
  const [one, other] = [await encrypt('x', KEY), await encrypt('x', KEY)].map((text) => text.split('.'));
  for (const field of [0, 1, 2, 3, 4]) assert.notEqual(one[field], other[field]);
});

test('a text with one letter changed, in any field, is refused', async () => {
  const fields = (await encrypt('{"result": 0}', KEY)).split('.');
  for (let i = 0; i < fields.length; ++i) {
    const changed = fields.map((field, at) => (at === i ? (field[4] === 'A' ? 'B' : 'A') : field[4]));
    const text = fields.map((field, at) => (at === i ? field.slice(0, 4) + changed[at] + field.slice(5) : field)).join('.');
    await assert.rejects(decryptBytes(text, KEY), `field ${i}`);
  }
  await assert.rejects(decryptBytes(fields.join('.'), { kty: 'oct', k: 'b3RoZXI' }), 'another key');
});

test('what is no such text is refused before any work', async () => {
  const header = (members) => toBase64Url(new TextEncoder().encode(JSON.stringify(members)));
  const good = { alg: 'PBES2-HS256+A128KW', enc: 'A128CBC-HS256', p2c: 4096, p2s: 'AAAAAAAAAAA' };
  for (const bad of [{ alg: 'dir' }, { enc: 'A256GCM' }, { p2c: 0 }, { p2c: 2000000000 }, { p2c: '4096' }]) {
    await assert.rejects(decryptBytes(`${header({ ...good, ...bad })}.AA.AA.AA.AA`, KEY), JSON.stringify(bad));
  }
  for (const text of ['', 'decrypt error', 'a.b.c', 'a.b.c.d.e.f', '{"result": 1}']) {
    assert.ok(!isEncrypted(text));
    await assert.rejects(decryptBytes(text, KEY), text);
  }
});
