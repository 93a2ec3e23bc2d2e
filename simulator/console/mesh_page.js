// The first view: what the router is doing, as a picture, kept up to date while somebody looks.

import { el, seconds, svg, timeOfDay } from './dom.js';
import { inWords, meshOf } from './mesh_model.js';
import { MeshPicture } from './mesh_view.js';
import { recent } from './activity.js';

const PAUSE_MS = 20000;
const QUICK = [['info', '/api/v1/router/info', 'routerInfo'], ['wan', '/api/v1/router/wan-info', 'wanConfig'],
  ['channels', '/api/v1/wireless/channel', 'wirelessChannel'], ['internet', '/api/v1/router/inetchk', 'inetchk'],
  ['leases', '/api/v1/dhcp/client-list']];
const UPLINK = ['uplink', '/api/v1/repeater/connect'];
const AGENTS = ['agents', '/api/v1/mesh/agent-info'];
const CLIENTS = ['clients', '/api/v1/router/client-list'];

function plan(mode, first) {
  const slow = [...(mode === 'controller' ? [AGENTS] : []), CLIENTS];
  if (!first) return [...slow, QUICK[0], QUICK[3], QUICK[4]];
  return [...QUICK, ...(mode === 're' || mode === 'agent' ? [UPLINK] : []), ...slow];
}

const WIDTHS = { 0: 20, 1: 40, 4: 80, 5: 160, 6: 320 };
const BAND_NAMES = { 1: '2.4 GHz', 2: '5 GHz', 3: '6 GHz' };

function chips({ info, channels }) {
  const texts = [];
  if (info) texts.push(['Model', info.model], ['Firmware', info.fwVersion]);
  if (info?.locationCustom) texts.push(['Place', info.locationCustom]);
  for (const { band, currentChannel, currentChannelWidth } of channels ?? []) {
    const off = currentChannel === -1 || currentChannel === '---';
    texts.push([BAND_NAMES[band], off ? 'off' : `channel ${currentChannel}, ${WIDTHS[currentChannelWidth]} MHz`]);
  }
  return texts.map(([name, value]) => el('li', {}, el('b', {}, name), ` ${value}`));
}

function legend() {
  const line = (kind, words) => el('li', {}, svg('svg', { viewBox: '0 0 34 12', 'aria-hidden': 'true' },
    svg('path', { class: `link ${kind}`, d: 'M2 6H32' }),
    kind === 'band-cable' ? [svg('rect', { class: 'plug', x: 0, y: 2, width: 8, height: 8 }), svg('rect', { class: 'plug', x: 26, y: 2, width: 8, height: 8 })] : []), words);
  return el('ul', { class: 'legend', 'aria-label': 'What the links mean' }, line('band-cable', 'cable'), line('band-24', '2.4 GHz'),
    line('band-5', '5 GHz'), line('band-6', '6 GHz'));
}

export class MeshPage {
  title = 'Mesh';

  constructor({ api, lookAgain }) {
    this.api = api;
    this.lookAgain = lookAgain;
    this.answers = { mode: api.about.mode };
    this.picture = new MeshPicture();
    this.headline = el('h1', {}, 'Looking at the router …');
    this.sentence = el('p', {}, 'It is asked who is connected to it.');
    this.chips = el('ul', { class: 'chips', 'aria-label': 'The router' });
    this.state = el('p', { class: 'faint', id: 'mesh-state' });
    this.pause = el('button', { type: 'button', onclick: () => this.#setPaused(!this.paused) }, 'Pause');
    this.failure = el('div', { hidden: true });
    this.recent = recent(api);
    this.element = el('div', { class: 'view' },
      el('div', { class: 'lead' }, this.headline, this.sentence),
      this.failure,
      el('section', { class: 'card-box', 'aria-labelledby': 'mesh-title' },
        el('div', { class: 'head' }, el('h2', { id: 'mesh-title' }, 'Who is connected'), legend()),
        this.picture.element,
        el('div', { class: 'row under' }, this.pause, this.state)),
      this.chips,
      this.recent.element);
    this.paused = false;
  }

  enter() {
    this.stop = new AbortController();
    this.recent.enter();
    this.#keepUp(this.stop.signal);
  }

  leave() {
    this.stop.abort();
    this.recent.leave();
  }

  #setPaused(paused) {
    this.paused = paused;
    this.pause.textContent = paused ? 'Go on' : 'Pause';
    this.state.textContent = paused ? 'The picture stands still.' : '';
    this.wake?.();
  }

  async #keepUp(signal) {
    let first = this.answers.clients === undefined;
    while (!signal.aborted) {
      if (!this.paused && !document.hidden) {
        await this.#round(first, signal);
        first = this.answers.info === undefined;
      }
      await this.#wait(signal);
    }
  }

  async #round(first, signal) {
    await this.lookAgain();
    if (this.answers.mode !== this.api.about.mode) this.answers = { mode: this.api.about.mode };
    for (const [name, uri, member] of plan(this.answers.mode, first || !this.answers.info)) {
      const exchange = await this.api.ask('GET', uri, { byItself: true, signal });
      if (signal.aborted || exchange === null) return;
      this.#take(name, member, exchange);
    }
    this.state.textContent = `As of ${timeOfDay(new Date())}; asked again every ${PAUSE_MS / 1000} s, `
      + `which takes ${seconds(this.api.usual('GET', CLIENTS[1]))} for the client list.`;
  }

  #wait(signal) {
    return new Promise((resolve) => {
      const timer = setTimeout(done, PAUSE_MS);
      function done() {
        clearTimeout(timer);
        resolve();
      }
      this.wake = done;
      signal.addEventListener('abort', done, { once: true });
    });
  }

  #take(name, member, exchange) {
    const data = exchange.json;
    const usable = data && !exchange.failure && (data.result === 0 || name === 'internet' || name === 'uplink');
    if (usable) this.answers[name] = member ? data[member] : data;
    else if (name === 'clients' || name === 'info') this.#fail(exchange);
    if (usable && this.failedUri === exchange.uri) this.#fail(null);
    this.#draw();
  }

  #fail(exchange) {
    this.failedUri = exchange?.uri;
    this.failure.hidden = exchange === null;
    if (exchange === null) return;
    const why = exchange.failure ?? `GET ${exchange.uri} answered result ${exchange.result}: its state cannot be read.`;
    this.failure.replaceChildren(el('div', { class: 'notice bad', role: 'alert' }, el('h2', {}, 'The picture is not complete'),
      el('p', {}, `${why} It is asked again in ${PAUSE_MS / 1000} s; the router’s log, under Settings, System, may tell more.`)));
  }

  #draw() {
    const mesh = meshOf(this.answers);
    const { headline, sentence } = inWords(mesh, this.answers);
    if (this.answers.wan || this.answers.uplink || this.answers.info) {
      if (this.headline.textContent !== headline) this.headline.textContent = headline;
      if (this.sentence.textContent !== sentence) this.sentence.textContent = sentence;
    }
    this.chips.replaceChildren(...chips(this.answers));
    if (!this.answers.clients) this.state.textContent = `The list of clients takes about ${seconds(this.api.usual('GET', CLIENTS[1]))}: the router scans its LAN.`;
    this.picture.show(mesh);
  }
}
