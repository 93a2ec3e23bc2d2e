// What the router was asked, and what it did: its tools in order, its packages as they changed.

import { el, seconds, timeOfDay } from './dom.js';

const FOLLOW_MS = [300, 700, 1000, 1000, 2000, 2000, 3000, 5000]; // what runs in the background comes after the answer
const MOST_RECENT = 5;

// What well-known tools are for, by the first words of a call.
const PURPOSES = [
  ['jose jwe dec', 'decrypts the request'], ['jose jwe enc', 'encrypts the answer'], ['arp-scan', 'looks who is on the LAN'],
  ['emt', 'asks the mesh daemon'], ['cfg80211tool', 'asks the radio’s driver'], ['iw ', 'asks the radios'], ['iwconfig', 'asks the radios'],
  ['hostapd_cli', 'asks the access points'], ['wpa_cli', 'asks the uplink'], ['brctl', 'asks the bridge'], ['arp', 'asks for neighbours'],
  ['ifconfig', 'asks for addresses'], ['ifstatus', 'asks for an interface’s state'], ['inetchk', 'tries the Internet'],
  ['sleep', 'waits'], ['ubus call network reload', 'takes up the network’s settings'], ['ubus', 'talks to a service'],
  ['/etc/init.d/', 'starts or stops a service'], ['wifi', 'takes up the Wi-Fi settings'], ['/sbin/wifi', 'takes up the Wi-Fi settings'],
  ['uci set', 'sets an option'], ['uci delete', 'deletes an option'], ['uci add', 'adds an entry'], ['uci commit', 'stores a package'],
  ['uci ', 'reads options'], ['logger', 'writes to the log'], ['msg_tool', 'tells another program'], ['passwd', 'sets a password'],
  ['reboot', 'starts the router again'], ['firstboot', 'puts the factory’s settings back'], ['crontab', 'sets a schedule'],
];

function purpose(line) {
  return PURPOSES.find(([start]) => line.startsWith(start))?.[1] ?? '';
}

// A word as a shell would want it.
export function quoted(word) {
  return /^[\w@%+=:,./-]+$/.test(word) ? word : `'${word.replaceAll("'", "'\\''")}'`;
}

function callRow(call, exchange) {
  const [tool, ...words] = call.argv;
  const line = call.argv.join(' ');
  const after = call.time ? Math.max(0, call.time - exchange.started / 1000) : undefined;
  return el('tr', { class: tool === 'jose' ? 'aside' : '' },
    el('td', { class: 'when' }, after === undefined ? '' : `+${after.toFixed(1)} s`),
    el('td', { class: 'command' }, el('code', {}, el('b', {}, tool), words.map((word) => ` ${quoted(word)}`)),
      call.stdin ? el('code', { class: 'stdin' }, `< ${call.stdin.slice(0, 500)}`) : null),
    el('td', { class: 'purpose' }, purpose(line)));
}

function callTable(exchange) {
  return el('div', { class: 'scroll', role: 'region', tabindex: '0', 'aria-label': 'Tools that ran' }, el('table', { class: 'calls' },
    el('thead', {}, el('tr', {}, el('th', { scope: 'col' }, 'When'), el('th', { scope: 'col' }, 'Tool and arguments'), el('th', { scope: 'col' }, 'What for'))),
    el('tbody', {}, exchange.calls.map((call) => callRow(call, exchange)))));
}

function diffLine(line) {
  const kind = line.startsWith('@@') || line.startsWith('---') || line.startsWith('+++') ? 'where'
    : line.startsWith('+') ? 'plus' : line.startsWith('-') ? 'minus' : '';
  return el('span', { class: kind }, `${line}\n`);
}

function diff(name, text) {
  return el('figure', {}, el('figcaption', {}, 'Package ', el('code', {}, name)),
    el('pre', { class: 'diff', tabindex: '0', 'aria-label': `What changed in ${name}` }, text.trimEnd().split('\n').map(diffLine)));
}

function counted(calls) {
  return `${calls} tool call${calls === 1 ? '' : 's'}`;
}

function contents(exchange) {
  const tools = exchange.calls.length;
  const packages = Object.entries(exchange.packages);
  const names = packages.map(([name]) => name).join(', ');
  return [
    el('p', { class: 'faint' }, tools === 0 ? 'No tool ran. ' : `${counted(tools)}${exchange.dropped ? ', of which the last are shown' : ''}. `,
      packages.length === 0 ? 'No package changed.' : `Changed: ${names}.`, exchange.settled ? '' : ' Still looking …'),
    packages.map(([name, text]) => diff(name, text)), tools > 0 ? callTable(exchange) : null,
  ].flat().filter(Boolean);
}

// Keeps asking what the router does after an answer, until nothing new has come for a while.
export async function follow(api, exchange) {
  let quiet = 0;
  for (const pause of FOLLOW_MS) {
    await new Promise((resolve) => { setTimeout(resolve, pause); });
    if (api.history[0] !== exchange || api.current) break; // the next request's calls are not this one's
    quiet = await api.look(exchange) ? 0 : quiet + pause;
    if (quiet > 5000) break;
  }
  exchange.settled = true;
  api.dispatchEvent(new CustomEvent('look', { detail: exchange }));
}

// An element with what a request did; it grows while the router is at work.
export function whatItDid(api, exchange) {
  const element = el('div', { class: 'did' }, contents(exchange));
  api.addEventListener('look', ({ detail }) => {
    if (detail === exchange && element.isConnected) element.replaceChildren(...contents(exchange));
  });
  return element;
}

function summary(api, exchange) {
  return [
    el('span', { class: 'when' }, timeOfDay(exchange.started)),
    el('span', { class: `method ${exchange.method.toLowerCase()}` }, exchange.method),
    el('code', {}, exchange.uri.replace('/api/v1', '')), el('span', { class: 'meaning' }, api.names.get(`${exchange.method} ${exchange.uri}`) ?? ''),
    el('span', { class: `state ${exchange.good ? 'good' : 'bad'}` }, exchange.outcome),
    el('span', { class: 'faint' }, `${seconds(exchange.seconds ?? 0)}, ${counted(exchange.calls.length)}`,
      Object.keys(exchange.packages).length > 0 ? `, changed ${Object.keys(exchange.packages).join(', ')}` : '',
      exchange.byItself ? ', for the picture' : ''),
  ];
}

// The last few requests, for the first view.
export function recent(api) {
  const list = el('ol', { class: 'requests' });
  const draw = () => {
    const lines = api.history.slice(0, MOST_RECENT).map((exchange) => el('li', {}, summary(api, exchange)));
    list.replaceChildren(...(lines.length > 0 ? lines : [el('li', { class: 'faint' }, 'Nothing yet.')]));
  };
  return {
    element: el('section', { class: 'card-box', 'aria-labelledby': 'recent-title' },
      el('div', { class: 'head' }, el('h2', { id: 'recent-title' }, 'What it just did'), el('a', { href: '#/activity' }, 'All of it, with its tools')), list),
    enter() {
      draw();
      api.addEventListener('end', draw);
    },
    leave() {
      api.removeEventListener('end', draw);
    },
  };
}

export class ActivityPage {
  title = 'Activity';

  constructor({ api }) {
    this.api = api;
    this.list = el('div', { class: 'entries' });
    this.element = el('div', { class: 'view' },
      el('div', { class: 'lead' }, el('h1', {}, 'What the router did'),
        el('p', {}, 'Every request of this console, the newest first: the platform’s tools that the router ran for it, in order, and the packages that it changed.')),
      this.list);
    this.draw = () => this.#draw();
  }

  enter() {
    this.#draw();
    this.api.addEventListener('end', this.draw);
  }

  leave() {
    this.api.removeEventListener('end', this.draw);
  }

  #draw() {
    const known = new Set([...this.list.children].map((child) => child.exchange));
    const fresh = this.api.history.filter((exchange) => !known.has(exchange)).map((exchange) => this.#entry(exchange));
    this.list.querySelector('.empty')?.remove();
    this.list.prepend(...fresh);
    for (const old of [...this.list.children].filter((child) => !this.api.history.includes(child.exchange))) old.remove();
    if (this.list.children.length === 0) this.list.append(el('p', { class: 'empty' }, 'Nothing yet. Look at the mesh, or send something under Settings.'));
  }

  #entry(exchange) {
    const { api } = this;
    const head = el('summary', {}, summary(api, exchange));
    const entry = el('details', { class: 'entry card-box' }, head);
    entry.exchange = exchange;
    entry.addEventListener('toggle', () => {
      if (entry.open && entry.children.length === 1) entry.append(this.#details(exchange));
    });
    api.addEventListener('look', ({ detail }) => detail === exchange && head.replaceChildren(...summary(api, exchange)));
    return entry;
  }

  #details(exchange) {
    const text = (title, content) => (content ? [el('h2', {}, title), el('pre', { class: 'text', tabindex: '0', 'aria-label': title }, content)] : []);
    const answer = exchange.json === undefined ? exchange.failure ?? `${exchange.bytes?.length ?? 0} bytes` : JSON.stringify(exchange.json, null, 2);
    return el('div', { class: 'entry-body' },
      text('It was sent', typeof exchange.sent === 'string' ? exchange.sent : exchange.sent ? `${exchange.sent.length} bytes, as they are` : ''),
      el('h2', {}, 'It did'), whatItDid(this.api, exchange), text('It answered', answer));
  }
}
