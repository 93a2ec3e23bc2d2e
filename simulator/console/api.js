// Asks the router, one request at a time: it answers one at a time, too. What a person asks for comes before what the
// console asks for by itself.

import { decryptBytes, encrypt, isEncrypted } from './jwe.js';

const TIMEOUT_MS = 120000;
const MOST_REMEMBERED = 60;

// How long slow routes usually take, in seconds, until one has been measured: a mesh's daemon takes its time.
const USUAL = {
  '/api/v1/router/client-list': { default: 2.8, controller: 5.3, agent: 3.3 },
  '/api/v1/mesh/agent-info': { default: 3.2, agent: 1.2 },
  '/api/v1/wireless/sitesurvey': { default: 1 },
  '/api/v1/repeater/connect': { default: 2 },
};
const QUICK_S = 0.3;

export const RESULTS = { 0: 'done', 1: 'refused', 2: 'failed', 3: 'not verified' };

// One question and what came of it: method, uri, sent (a text), started (a Date), seconds, status, text, json, bytes,
// encrypted, failure (a sentence, where there is no answer).
class Exchange {
  constructor(method, uri, sent, byItself) {
    Object.assign(this, { method, uri, sent, byItself, started: new Date(), calls: [], packages: {}, settled: false });
  }

  get result() {
    return this.json?.result;
  }

  // In a word: how it went.
  get outcome() {
    if (this.failure) return 'no answer';
    if (this.json === undefined) return this.status === 200 ? 'a file' : 'no JSON';
    return RESULTS[this.result] ?? 'answered';
  }

  get good() {
    return !this.failure && this.status === 200 && (this.result === 0 || (this.json === undefined && !this.isText));
  }
}

async function readAnswer(exchange, response, key) {
  exchange.status = response.status;
  exchange.type = response.headers.get('Content-Type') ?? '';
  exchange.bytes = new Uint8Array(await response.arrayBuffer());
  const body = new TextDecoder().decode(exchange.bytes);
  exchange.encrypted = isEncrypted(body);
  if (exchange.encrypted) exchange.bytes = await decryptBytes(body, key);
  exchange.text = exchange.encrypted ? new TextDecoder().decode(exchange.bytes) : body;
  exchange.isText = exchange.type.startsWith('text/');
  if (response.status === 500 && !exchange.isText) throw new Error('The router answered nothing. The web server made status 500 of it.');
  try {
    exchange.json = JSON.parse(exchange.text);
  } catch {
    if (response.status !== 200) throw new Error(`The web server answered with status ${response.status}.`);
    if (exchange.isText) throw new Error(`The router answered “${exchange.text.slice(0, 200)}”.`);
  }
}

export class Api extends EventTarget {
  constructor(about) {
    super();
    this.about = about;
    this.history = []; // the newest first
    this.current = null;
    this.waiting = [];
    this.measured = {};
    this.names = new Map(); // "GET /api/v1/lan": what it is for, once that is known
  }

  // How many seconds a request usually takes.
  usual(method, uri) {
    const known = USUAL[uri];
    return this.measured[`${method} ${uri}`] ?? (known && method === 'GET' ? known[this.about.mode] ?? known.default : QUICK_S);
  }

  // Resolves to an Exchange, also when there is no answer. `body`: a text, or bytes that are sent as they are.
  // `byItself`: the console asks, not a person. `signal` takes a request back that has not been sent yet: null then.
  ask(method, uri, { body, byItself = false, signal } = {}) {
    return new Promise((resolve) => {
      const job = { exchange: new Exchange(method, uri, body, byItself), body, signal, resolve };
      const at = byItself ? this.waiting.length : this.waiting.findIndex((other) => other.exchange.byItself);
      this.waiting.splice(at < 0 ? this.waiting.length : at, 0, job);
      this.#next();
    });
  }

  async #next() {
    if (this.current) return;
    const job = this.waiting.shift();
    if (!job) return;
    if (job.signal?.aborted) {
      job.resolve(null);
      this.#next();
      return;
    }
    this.current = job.exchange;
    this.#tell('start', job.exchange);
    await this.#exchange(job);
    this.current = null;
    this.history.unshift(job.exchange);
    this.history.length = Math.min(this.history.length, MOST_REMEMBERED);
    this.#tell('end', job.exchange);
    job.resolve(job.exchange);
    this.#next();
  }

  async #exchange({ exchange, body }) {
    exchange.started = new Date();
    exchange.moment = await this.moment();
    const begin = performance.now();
    try {
      const sent = body === undefined || body instanceof Uint8Array ? body : await encrypt(body, this.about.key);
      const response = await fetch(exchange.uri, {
        method: exchange.method, body: exchange.method === 'POST' ? sent ?? '' : undefined, cache: 'no-store',
        headers: sent === undefined ? {} : { 'Content-Type': 'application/json' }, signal: AbortSignal.timeout(TIMEOUT_MS),
      });
      await readAnswer(exchange, response, this.about.key);
    } catch (error) {
      exchange.failure = explain(error);
    }
    exchange.seconds = (performance.now() - begin) / 1000;
    if (!exchange.failure) this.measured[`${exchange.method} ${exchange.uri}`] = exchange.seconds;
    await this.look(exchange);
  }

  // Asks what the router has done since the exchange began. Tells whether that is more than was known.
  async look(exchange) {
    if (exchange.moment === undefined) return false;
    try {
      const answer = await (await fetch(`/console/trace?since=${exchange.moment}`, { cache: 'no-store' })).json();
      const more = answer.calls.length !== exchange.calls.length
        || JSON.stringify(answer.packages) !== JSON.stringify(exchange.packages);
      Object.assign(exchange, { calls: answer.calls, packages: answer.packages, dropped: answer.dropped });
      if (more) this.#tell('look', exchange);
      return more;
    } catch {
      return false; // the answer itself says that nobody is there
    }
  }

  async moment() {
    try {
      return (await (await fetch('/console/trace', { cache: 'no-store' })).json()).next;
    } catch {
      return undefined;
    }
  }

  #tell(type, exchange) {
    this.dispatchEvent(new CustomEvent(type, { detail: exchange }));
  }
}

function explain(error) {
  if (error.name === 'TimeoutError') return `The router did not answer within ${TIMEOUT_MS / 1000} s.`;
  if (error instanceof TypeError) return 'The router cannot be reached. Is script/run still running?';
  if (error instanceof DOMException) return 'The answer cannot be decrypted with the key that this console was given.';
  return error.message;
}
