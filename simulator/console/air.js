// The access points in the air as channels and signal, band by band, with the router's own channels among them.

import { el, seconds, svg } from './dom.js';

const SURVEY = '/api/v1/wireless/sitesurvey';
const CHANNELS = '/api/v1/wireless/channel';
const WIDTHS = { 0: 20, 1: 40, 4: 80, 5: 160, 6: 320 };
const SECURITY = { 0: 'unknown', 1: 'open', 2: 'WPA-PSK', 3: 'WPA-PSK TKIP', 4: 'WPA2-PSK', 5: 'TKIP and CCMP', 7: 'WPA3-SAE', 8: 'WPA2/WPA3' };
const OPEN = 1;

// First and last channel, the distance of a 20 MHz channel's number to the next, the numbers on the axis.
const BANDS = {
  1: { name: '2.4 GHz', css: 'band-24', first: -1, last: 15, step: 4, ticks: [1, 3, 6, 9, 11, 13] },
  2: { name: '5 GHz', css: 'band-5', first: 32, last: 148, step: 4, ticks: [36, 52, 64, 100, 116, 132, 144] },
  3: { name: '6 GHz', css: 'band-6', first: -3, last: 97, step: 4, ticks: [1, 17, 33, 49, 65, 81, 93] },
};
const MOST = 100; // a signal in the survey: 0 is -90 dBm, 100 is -30 dBm
const BOX = { height: 300, left: 38, right: 10, top: 46, bottom: 44 };

export function dbm(signal) {
  return Math.round(-90 + signal * 0.6);
}

// The lowest and the highest channel number, edges included, that a channel of some width covers.
export function covered(band, channel, width) {
  const half = width / 20 * 2; // four numbers are 20 MHz
  if (band === 1) return width > 20 ? [channel - 2, channel + 6] : [channel - 2, channel + 2];
  const start = band === 2 ? (channel < 100 ? 36 : 100) : 1;
  const block = Math.floor((channel - start) / (half * 2)) * half * 2 + start;
  return [block - 2, block - 2 + half * 2];
}

function scales(band, width) {
  const { first, last } = BANDS[band];
  const x = (channel) => BOX.left + (channel - first) / (last - first) * (width - BOX.left - BOX.right);
  const y = (signal) => BOX.height - BOX.bottom - signal / MOST * (BOX.height - BOX.top - BOX.bottom);
  return { x, y };
}

function axes(band, width, { x, y }) {
  const lines = [0, 25, 50, 75, 100].map((signal) => [
    svg('line', { class: signal === 0 ? 'grid base' : 'grid', x1: BOX.left, x2: width - BOX.right, y1: y(signal), y2: y(signal) }),
    svg('text', { x: BOX.left - 6, y: y(signal) + 4, 'text-anchor': 'end' }, String(dbm(signal)))]);
  const ticks = BANDS[band].ticks.map((channel) => svg('text', { x: x(channel), y: BOX.height - BOX.bottom + 17, 'text-anchor': 'middle' }, String(channel)));
  const units = [svg('text', { x: BOX.left - 6, y: y(MOST) - 12, 'text-anchor': 'end' }, 'dBm'),
    svg('text', { x: width - BOX.right, y: BOX.height - 8, 'text-anchor': 'end' }, 'channel')];
  return [lines, ticks, units];
}

function own(band, channel, { x, y }) {
  if (!channel || !(channel.currentChannel > 0)) return [];
  const width = WIDTHS[channel.currentChannelWidth] ?? 20;
  const [from, to] = covered(band, channel.currentChannel, width);
  const [left, right] = [x(from), x(to)];
  const words = `this router: ${channel.currentChannel}, ${width} MHz`;
  const start = band !== 1 && right - left > words.length * 6.2;
  return [
    svg('rect', { class: 'own', x: left, y: y(MOST), width: right - left, height: y(0) - y(MOST) }),
    svg('line', { class: 'own-line', x1: left, x2: right, y1: y(0), y2: y(0) }),
    svg('text', { class: 'own-text', x: start ? (left + right) / 2 : left, y: BOX.height - 8, 'text-anchor': start ? 'middle' : 'start' }, words),
  ];
}

// A label goes up until no other stands in its way.
function labelPlaces(points, { x, y }, width) {
  const placed = [];
  for (const point of points) {
    const half = Math.min(point.label.length * 3.6, 90) + 3;
    const middle = Math.max(BOX.left + half, Math.min(width - half, x(point.channel)));
    let at = y(point.rssi) - 8;
    while (placed.some((other) => Math.abs(other.y - at) < 15 && Math.abs(other.x - middle) < other.half + half)) at -= 15;
    placed.push({ point, x: middle, y: Math.max(12, at), half });
  }
  return placed;
}

function drawBand(band, points, channel, width) {
  const scale = scales(band, width);
  const { x, y } = scale;
  const shapes = points.map(({ channel: at, rssi, security }) => svg('path', {
    class: `signal${security === OPEN ? ' open' : ''}`,
    d: `M${x(at - 2.2)} ${y(0)}C${x(at - 1.7)} ${y(rssi)} ${x(at - 1.9)} ${y(rssi)} ${x(at - 1.2)} ${y(rssi)}H${x(at + 1.2)}C${x(at + 1.9)} ${y(rssi)} ${x(at + 1.7)} ${y(rssi)} ${x(at + 2.2)} ${y(0)}`,
  }));
  const places = labelPlaces(points, scale, width);
  const leaders = places.filter((place) => y(place.point.rssi) - place.y > 16)
    .map((place) => svg('line', { class: 'leader', x1: place.x, x2: x(place.point.channel), y1: place.y + 3, y2: y(place.point.rssi) }));
  const labels = places.map((place) => svg('text', { class: 'essid', x: place.x, y: place.y, 'text-anchor': 'middle' }, place.point.label));
  return svg('svg', { class: `air ${BANDS[band].css}`, viewBox: `0 0 ${width} ${BOX.height}`, 'aria-hidden': 'true' },
    own(band, channel, scale), axes(band, width, scale), shapes, leaders, labels);
}

// A name as it is shown: an empty one has none, a long one is cut.
function label(essid) {
  const text = essid === '' ? '(no name)' : essid;
  return text.length > 24 ? `${text.slice(0, 23)}…` : text;
}

function table(list) {
  const columns = ['Name', 'Band', 'Channel', 'Signal', 'Security', 'BSSID'];
  const rows = list.map((point) => [point.essid || '(no name)', BANDS[point.band]?.name ?? point.band, point.channel,
    `${dbm(point.rssi)} dBm`, SECURITY[point.security] ?? point.security, point.bssid ?? '']);
  return el('div', { class: 'scroll', tabindex: '0', role: 'region', 'aria-label': 'Access points' }, el('table', {},
    el('thead', {}, el('tr', {}, columns.map((name) => el('th', { scope: 'col' }, name)))),
    el('tbody', {}, rows.map(([first, ...rest]) => el('tr', {}, el('th', { scope: 'row' }, first), rest.map((cell) => el('td', {}, String(cell))))))));
}

function heard(count) {
  return count === 0 ? 'nothing heard' : `${count} heard`;
}

export class AirPage {
  title = 'Air';

  constructor({ api }) {
    this.api = api;
    this.button = el('button', { type: 'button', class: 'first', onclick: () => this.#scan(false) }, 'Scan again');
    this.state = el('p', { class: 'faint', role: 'status' });
    this.bands = el('div', { class: 'bands' });
    this.list = el('div');
    this.element = el('div', { class: 'view' },
      el('div', { class: 'lead' }, el('h1', {}, 'What is in the air'),
        el('p', {}, 'The access points that the router hears, by channel and signal. The shaded channels are its own.')),
      el('div', { class: 'row' }, this.button, this.state), this.bands, this.list);
    this.observer = new ResizeObserver(() => this.answers && this.#draw());
    this.observer.observe(this.bands);
  }

  enter() {
    if (!this.answers && !this.busy) this.#scan(true);
  }

  async #scan(byItself) {
    if (this.busy) return;
    this.busy = true;
    this.button.setAttribute('aria-disabled', 'true');
    this.state.textContent = `Scanning three bands; usually ${seconds(this.api.usual('GET', SURVEY))}, half a minute for a band in which nothing is heard.`;
    const channels = await this.api.ask('GET', CHANNELS, { byItself });
    const survey = await this.api.ask('GET', SURVEY, { byItself });
    this.busy = false;
    this.button.removeAttribute('aria-disabled');
    if (survey.json?.result === 0) {
      this.answers = { list: survey.json.wifiApList, channels: channels.json?.wirelessChannel ?? [] };
      const count = this.answers.list.length;
      this.state.textContent = `${count} access point${count === 1 ? '' : 's'} heard, in ${seconds(survey.seconds)}.`;
      this.#draw();
    } else {
      this.state.textContent = `${survey.failure ?? 'The router could not scan.'} Scan again in a moment.`;
    }
  }

  #draw() {
    if (this.bands.clientWidth === 0) return; // nobody looks; the observer tells when somebody does
    const { list, channels } = this.answers;
    const scale = parseFloat(getComputedStyle(document.documentElement).fontSize) / 16;
    const frames = [1, 2, 3].map(() => el('div'));
    const pointsOf = (band) => list.filter((point) => point.band === band).sort((a, b) => b.rssi - a.rssi)
      .map((point) => ({ ...point, label: label(point.essid) }));
    this.bands.replaceChildren(...frames.map((frame, i) => el('section', { class: 'card-box', 'aria-label': BANDS[i + 1].name },
      el('div', { class: 'head' }, el('h2', {}, BANDS[i + 1].name), el('p', { class: 'faint' }, heard(pointsOf(i + 1).length))), frame)));
    frames.forEach((frame, i) => frame.append(drawBand(i + 1, pointsOf(i + 1), channels.find((one) => one.band === i + 1), frame.clientWidth / scale)));
    const strongest = [...list].sort((a, b) => b.rssi - a.rssi);
    this.list.replaceChildren(el('section', { class: 'card-box', 'aria-labelledby': 'air-list' }, el('h2', { id: 'air-list' }, 'The same as a list'),
      strongest.length > 0 ? table(strongest) : el('p', { class: 'empty' }, 'Nothing was heard. A router whose radios are off hears nothing: switch one on under Settings, Wi-Fi.')));
  }
}
