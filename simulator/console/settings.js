// The routes by subject, from the API's own description: what is set, a form to change it, and what came of it.

import { answerOf } from './answer.js';
import { follow, quoted, whatItDid } from './activity.js';
import { el, prose, seconds } from './dom.js';
import { formFor } from './form.js';
import { inWords, prefill, problems, resolve } from './schema.js';

const SUBJECTS = { wan: 'Internet', lan: 'LAN and DHCP', wireless: 'Wi-Fi', repeater: 'Repeater', mesh: 'Mesh and clients',
  access: 'Access and security', system: 'System' };
const JSON_TYPE = 'application/json';
const PREFIX = '/api/v1/';

const withoutStop = (sentence) => sentence.replace(/\.$/, '');

// {subject: [{uri, get, post, title}]}, in the description's order.
export function routesOf(document) {
  const subjects = new Map(Object.keys(SUBJECTS).map((tag) => [tag, []]));
  for (const [uri, { get, post }] of Object.entries(document.paths)) {
    const tag = (get ?? post).tags[0];
    if (!subjects.has(tag)) subjects.set(tag, []);
    subjects.get(tag).push({ uri, get, post, title: withoutStop((get ?? post).summary) });
  }
  return subjects;
}

function answerSchema(operation) {
  return operation?.responses?.['200']?.content?.[JSON_TYPE]?.schema ?? {};
}

// The part of an answer's schema that is its success, for the words of its members.
function successOf(schema, document) {
  const own = resolve(schema, document);
  return own.oneOf ? resolve(own.oneOf[0], document) : own;
}

// The line that asks the same on a terminal.
export function scriptLine(about, method, uri, body) {
  const port = about.port === about.defaultPort ? '' : ` --port ${about.port}`;
  if (body instanceof Uint8Array) return `script/request${port} --plain ${method} ${uri} @FILE`;
  return `script/request${port} ${method} ${uri}${body === undefined ? '' : ` ${quoted(body)}`}`;
}

function copyable(text, method) {
  const code = el('code', { class: 'line' }, text);
  const button = el('button', { type: 'button', onclick: async () => {
    try {
      await navigator.clipboard.writeText(code.textContent);
      button.textContent = 'Copied';
    } catch {
      getSelection().selectAllChildren(code);
      button.textContent = 'Selected';
    }
    setTimeout(() => { button.textContent = 'Copy'; }, 2000);
  } }, 'Copy');
  return { element: el('div', { class: 'script' }, el('div', { class: 'scroll', tabindex: '0', role: 'region', 'aria-label': `The ${method} on a terminal` }, code), button),
    set(line) { code.textContent = line; } };
}

// One route: the left side reads and changes, the right side shows what came of it.
class RoutePanel {
  constructor({ api }, document, route) {
    Object.assign(this, { api, document, route, title: route.title });
    this.read = route.get ? this.#readSection() : null;
    this.change = route.post ? this.#changeSection() : null;
    this.outcome = el('div', { class: 'outcome' });
    this.element = el('div', { class: 'panel' },
      el('div', { class: 'lead' }, el('a', { class: 'back', href: '#/settings' }, '← All routes'), this.heading = el('h1', { tabindex: '-1' }, route.title),
        el('p', { class: 'row uri' }, route.get ? el('span', { class: 'method get' }, 'GET') : null,
          route.post ? el('span', { class: 'method post' }, 'POST') : null, el('code', {}, route.uri))),
      el('div', { class: 'columns' }, el('div', { class: 'column' }, this.change ?? this.read), el('div', { class: 'column' }, this.outcome, this.change ? this.read : null)));
  }

  enter() {
    if (this.route.get && !this.asIs) this.#read(true);
  }

  // What is set.

  #readSection() {
    const { get, uri } = this.route;
    this.current = el('div', { class: 'current', 'aria-live': 'off' });
    this.again = el('button', { type: 'button', onclick: () => this.#read(false) }, 'Read it again');
    return el('section', { class: 'card-box', 'aria-labelledby': 'read-title' },
      el('div', { class: 'head' }, el('h2', { id: 'read-title' }, 'As it is'), this.again),
      get.description ? el('p', { class: 'faint' }, prose(get.description)) : null, this.current,
      copyable(scriptLine(this.api.about, 'GET', uri), 'GET').element);
  }

  async #read(byItself) {
    if (this.reading) return;
    this.reading = true;
    this.again.setAttribute('aria-disabled', 'true');
    const ahead = this.api.current && !this.asIs ? `; ${this.api.current.uri.replace(PREFIX, '/')} comes first, the router answers one at a time` : '';
    if (!this.asIs) this.current.replaceChildren(el('p', { class: 'faint' }, `Reading, usually ${seconds(this.api.usual('GET', this.route.uri))}${ahead} …`));
    const exchange = await this.api.ask('GET', this.route.uri);
    this.reading = false;
    this.again.removeAttribute('aria-disabled');
    const schema = successOf(answerSchema(this.route.get), this.document);
    this.current.replaceChildren(answerOf(exchange, schema, this.document),
      el('details', { class: 'did-box' }, el('summary', {}, 'What the router did for it'), whatItDid(this.api, exchange)));
    follow(this.api, exchange);
    if (exchange.json?.result !== 0) return;
    this.asIs = exchange.json;
    if (this.form && byItself && !this.touched) this.#fill(prefill(this.body, this.asIs, this.document));
  }

  // The change.

  #changeSection() {
    const { post, uri } = this.route;
    const contents = post.requestBody?.content ?? {};
    const upload = Object.keys(contents).find((type) => type !== JSON_TYPE);
    this.body = contents[JSON_TYPE]?.schema;
    this.summary = el('div', { class: 'notice bad', role: 'alert', tabindex: '-1', hidden: true });
    this.script = copyable(scriptLine(this.api.about, 'POST', uri), 'POST');
    this.send = el('button', { type: 'submit', class: 'first' }, 'Send');
    const parts = upload ? [this.#fileField()] : this.body ? this.#formFields(contents[JSON_TYPE].examples ?? {}) : [el('p', { class: 'faint' }, 'It needs nothing more than to be sent.')];
    const form = el('form', { novalidate: true, onsubmit: (event) => {
      event.preventDefault();
      this.#submit();
    }, oninput: () => {
      this.touched = true;
      this.#writeLine();
    } }, this.summary, parts, el('div', { class: 'row send' }, this.send, el('span', { class: 'faint', role: 'status' })), el('h3', {}, 'The same on a terminal'), this.script.element);
    this.status = form.querySelector('[role=status]');
    this.#writeLine();
    return el('section', { class: 'card-box', 'aria-labelledby': 'change-title' },
      el('h2', { id: 'change-title' }, this.route.get ? 'Change it' : withoutStop(post.summary)),
      this.route.get ? el('p', {}, withoutStop(post.summary), '.') : null,
      post.description ? el('p', { class: 'faint' }, prose(post.description)) : null, form);
  }

  #formFields(examples) {
    const twin = successOf(answerSchema(this.route.get), this.document);
    this.form = formFor(this.body, this.document, twin);
    const fillers = Object.entries(examples).map(([name, example]) => el('button', { type: 'button', class: 'quiet', onclick: () => this.#choose(example.value) }, name));
    const back = this.route.get ? el('button', { type: 'button', class: 'quiet', onclick: () => this.#choose(prefill(this.body, this.asIs ?? {}, this.document)) }, 'what is set') : null;
    return [fillers.length + (back ? 1 : 0) > 0 ? el('div', { class: 'row fillers' }, el('span', { class: 'faint' }, 'Fill in'), back, fillers) : null, this.form.element];
  }

  #fileField() {
    this.file = el('input', { type: 'file', id: 'upload' });
    return el('div', { class: 'field' }, el('label', { for: 'upload' }, 'File, sent as it is'), this.file);
  }

  // Fills in what a person asked for: what is read afterwards does not replace it.
  #choose(value) {
    this.touched = true;
    this.#fill(value);
  }

  #fill(value) {
    this.form.fill(value);
    this.form.mark([]);
    this.summary.hidden = true;
    this.#writeLine();
  }

  #text() {
    return this.form ? JSON.stringify(this.form.value()) : undefined;
  }

  #writeLine() {
    this.script.set(scriptLine(this.api.about, 'POST', this.route.uri, this.file ? new Uint8Array() : this.#text()));
  }

  // Marks what the schema refuses; true when that is nothing.
  #check() {
    const found = this.form ? problems(this.body, this.form.value(), this.document) : [];
    const marked = this.form?.mark(found) ?? [];
    this.summary.hidden = found.length === 0;
    if (found.length === 0) return true;
    this.summary.replaceChildren(el('h3', {}, found.length === 1 ? 'One thing is to be mended before it can be sent' : `${found.length} things are to be mended before it can be sent`),
      el('ul', {}, marked.map(({ input, name, text }) => el('li', {}, el('button', { type: 'button', class: 'quiet', onclick: () => input.focus() }, inWords(String(name))), ` ${text}`))));
    marked[0]?.input.focus();
    return false;
  }

  async #submit() {
    if (this.sending || !this.#check()) return;
    this.sending = true;
    this.send.setAttribute('aria-disabled', 'true');
    const usual = this.api.usual('POST', this.route.uri);
    this.status.textContent = this.api.current ? `Waits for ${this.api.current.uri.replace(PREFIX, '/')}: the router answers one at a time.` : `On its way, usually ${seconds(usual)}.`;
    const chosen = this.file?.files[0];
    const body = this.file ? new Uint8Array(chosen ? await chosen.arrayBuffer() : 0) : this.route.uri.endsWith('/backup') ? undefined : this.#text();
    const exchange = await this.api.ask('POST', this.route.uri, { body });
    this.sending = false;
    this.send.removeAttribute('aria-disabled');
    this.status.textContent = `Answered: ${exchange.outcome}.`;
    this.#show(exchange);
  }

  #show(exchange) {
    const heading = (id, words) => el('h2', { id }, words);
    this.outcome.replaceChildren(
      el('section', { class: 'card-box', 'aria-labelledby': 'answer-title' }, heading('answer-title', 'It answered'), answerOf(exchange, answerSchema(this.route.post), this.document)),
      el('section', { class: 'card-box', 'aria-labelledby': 'did-title' }, heading('did-title', 'What it did'), whatItDid(this.api, exchange)));
    follow(this.api, exchange);
  }
}

export class SettingsPage {
  title = 'Settings';

  constructor(context) {
    this.context = context;
    this.panels = new Map();
    this.place = el('div', { class: 'place' });
    this.nav = el('nav', { class: 'routes', 'aria-label': 'Routes by subject' });
    this.element = el('div', { class: 'settings' }, this.nav, this.place);
    this.ready = this.#load();
  }

  async #load() {
    try {
      this.document = await this.context.description();
      this.subjects = routesOf(this.document);
      this.#drawNav();
    } catch (error) {
      this.place.replaceChildren(el('div', { class: 'notice bad', role: 'alert' }, el('h1', {}, 'There are no forms without the description'),
        el('p', {}, `The API’s description cannot be read: ${error.message}.`)));
    }
  }

  #drawNav() {
    const filter = el('input', { type: 'search', id: 'filter', placeholder: 'port, SSID, reboot …', oninput: () => this.#filter(filter.value) });
    this.links = [];
    const lists = [...this.subjects].map(([tag, routes]) => el('div', { class: 'subject' }, el('h2', {}, SUBJECTS[tag] ?? tag),
      el('ul', {}, routes.map((route) => {
        const link = el('a', { href: `#/settings/${route.uri.slice(PREFIX.length)}` }, route.title, el('code', {}, route.uri.slice(PREFIX.length - 1)));
        link.words = JSON.stringify(route).toLowerCase();
        this.links.push(link);
        return el('li', {}, link);
      }))));
    this.nav.append(el('div', { class: 'find' }, el('label', { for: 'filter' }, 'Find a setting'), filter), el('div', { class: 'subjects' }, lists));
  }

  #filter(text) {
    const words = text.toLowerCase().split(/\s+/);
    for (const link of this.links) link.parentElement.hidden = !words.every((word) => link.words.includes(word));
    for (const subject of this.nav.querySelectorAll('.subject')) subject.hidden = !subject.querySelector('li:not([hidden])');
  }

  async open(rest) {
    await this.ready;
    if (!this.subjects) return;
    const uri = PREFIX + rest.join('/');
    const route = [...this.subjects.values()].flat().find((one) => one.uri === uri);
    this.element.classList.toggle('chosen', route !== undefined);
    for (const link of this.links) {
      if (link.hash === `#/settings/${rest.join('/')}`) link.setAttribute('aria-current', 'page');
      else link.removeAttribute('aria-current');
    }
    if (!route) {
      this.place.replaceChildren(el('div', { class: 'lead' }, el('h1', {}, 'What may be read and changed'),
        el('p', {}, 'Each route of the API, by subject. A route is read as it is opened; its form permits what the API’s description permits, and beside the answer stands what the router did.')));
      return;
    }
    if (!this.panels.has(uri)) this.panels.set(uri, new RoutePanel(this.context, this.document, route));
    const panel = this.panels.get(uri);
    if (this.place.firstElementChild !== panel.element) {
      this.place.replaceChildren(panel.element);
      scrollTo(0, 0);
      if (this.nav.contains(document.activeElement) || document.activeElement === document.body) panel.heading.focus({ preventScroll: true });
    }
    panel.enter();
  }
}
