// Shows an answer: as a table in words, as JSON as it came, and the seconds to wait counted down.

import { RESULTS } from './api.js';
import { el, seconds } from './dom.js';
import { choices, inWords, resolve } from './schema.js';

// The schema of a member of an answer, as far as the description tells it; alternatives are looked through.
function memberSchema(schema, name, document) {
  const own = resolve(schema ?? {}, document);
  for (const part of [own, ...(own.oneOf ?? []), ...(own.allOf ?? [])].map((each) => resolve(each, document))) {
    if (part.properties?.[name]) return resolve(part.properties[name], document);
  }
  return {};
}

function shown(value, schema) {
  if (value === null) return el('span', { class: 'faint' }, 'null');
  if (value === '') return el('span', { class: 'faint' }, 'empty');
  const word = choices(schema)?.find((choice) => choice.value === value)?.label;
  return word ?? String(value);
}

function isList(value) {
  return Array.isArray(value) && value.length > 0 && value.every((entry) => entry !== null && typeof entry === 'object' && !Array.isArray(entry));
}

function listTable(list, schema, document) {
  const names = [...new Set(list.flatMap(Object.keys))];
  const items = resolve(schema.items ?? {}, document);
  return el('table', {}, el('thead', {}, el('tr', {}, names.map((name) => el('th', { scope: 'col', title: name }, inWords(name))))),
    el('tbody', {}, list.map((entry) => el('tr', {}, names.map((name) => el('td', {},
      entry[name] === undefined ? '' : valueOf(entry[name], memberSchema(items, name, document), document)))))));
}

function valueOf(value, schema, document) {
  if (isList(value)) return listTable(value, schema, document);
  if (Array.isArray(value)) return value.length === 0 ? el('span', { class: 'faint' }, 'none') : value.map((entry) => el('div', {}, String(entry)));
  if (value !== null && typeof value === 'object') return objectTable(value, schema, document);
  return shown(value, schema);
}

function isTree(value) {
  return isList(value) || (value !== null && typeof value === 'object' && !Array.isArray(value));
}

function memberRow(name, value, schema, document) {
  if (name === 'result') return el('tr', {}, el('th', { scope: 'row' }, 'Result'), el('td', {}, `${value} · ${RESULTS[value] ?? 'unknown'}`));
  const cell = valueOf(value, memberSchema(schema, name, document), document);
  const head = el('th', { scope: 'row', title: name, colspan: isTree(value) ? 2 : null }, inWords(name));
  // What has rows of its own stands below its name, over the whole width.
  return isTree(value) ? [el('tr', { class: 'above-tree' }, head), el('tr', {}, el('td', { colspan: 2 }, el('div', { class: 'scroll', role: 'group', tabindex: '0', 'aria-label': inWords(name) }, cell)))] : el('tr', {}, head, el('td', {}, cell));
}

function objectTable(object, schema, document) {
  return el('table', {}, el('tbody', {}, Object.entries(object).filter(([name]) => name !== 'version')
    .map(([name, value]) => memberRow(name, value, schema, document))));
}

function asTable(exchange, schema, document) {
  if (exchange.json === null) return el('p', {}, 'null: the configuration has nothing to tell.');
  return typeof exchange.json === 'object' ? objectTable(exchange.json, schema, document) : el('p', {}, String(exchange.json));
}

// Counts the seconds down until the router is to be asked again. Nothing is held up by it.
function countdown(total) {
  const text = el('p', { role: 'timer', 'aria-live': 'off' });
  const done = el('div');
  const element = el('div', { class: 'countdown' }, text, el('div', { class: 'progress-bar' }, done));
  const end = performance.now() + total * 1000;
  const tick = () => {
    const left = Math.max(0, Math.ceil((end - performance.now()) / 1000));
    text.textContent = left > 0 ? `It wants ${total} s before it is asked again: ${left} s left.` : `The ${total} s that it wanted are over.`;
    done.style.width = `${(1 - left / total) * 100}%`;
    if (left > 0) setTimeout(tick, 250);
  };
  tick();
  return element;
}

const ADVICE = {
  1: 'The router refused it: a member is missing or has a value that it does not permit. Nothing is applied.',
  2: 'The router could not apply it, or is busy with something else. Its log, under System, may tell why.',
  3: 'The firmware image was not verified, so it was not installed.',
};

function file(exchange) {
  const link = el('a', { class: 'button', href: URL.createObjectURL(new Blob([exchange.bytes])), download: exchange.uri.split('/').at(-1) }, 'Save the file');
  return el('div', { class: 'row' }, el('p', {}, `A file of ${exchange.bytes.length} bytes.`), link);
}

// An element for an exchange that has ended. `schema` describes its answer.
export function answerOf(exchange, schema, document) {
  const head = el('div', { class: 'row' }, el('span', { class: `state ${exchange.good ? 'good' : 'bad'}` }, exchange.outcome),
    el('span', { class: 'faint' }, `status ${exchange.status ?? '—'}, ${exchange.encrypted ? 'encrypted' : 'plain'}, ${seconds(exchange.seconds)}`));
  if (exchange.failure) return el('div', { class: 'answer' }, head, el('div', { class: 'notice bad' }, exchange.failure));
  if (exchange.json === undefined) return el('div', { class: 'answer' }, head, file(exchange));
  return el('div', { class: 'answer' }, head,
    ADVICE[exchange.result] ? el('div', { class: 'notice bad' }, ADVICE[exchange.result]) : null,
    exchange.json?.waitTime > 0 ? countdown(exchange.json.waitTime) : null,
    el('div', { class: 'scroll', tabindex: '0', role: 'region', 'aria-label': 'The answer as a table' }, asTable(exchange, schema, document)),
    el('details', {}, el('summary', {}, 'The answer as JSON'),
      el('pre', { class: 'text', tabindex: '0', 'aria-label': 'The answer as JSON' }, JSON.stringify(exchange.json, null, 2))));
}
