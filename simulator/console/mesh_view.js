// Draws a mesh: cards for units, rows for clients, links that tell their bands by colour and by shape.

import { el, ICONS, svg } from './dom.js';
import { isFolded, layOut } from './mesh_layout.js';
import { bars, clientsOf, countClients, countMedia, mediaInWords } from './mesh_model.js';

const GLYPH = { router: 'router', satellite: 'satellite', above: 'internet', folded: 'group' };

function glyph(name, x, y, size) {
  return svg('path', { d: ICONS[name], class: 'glyph', transform: `translate(${x} ${y}) scale(${size / 24})` });
}

function text(x, y, kind, content, properties = {}) {
  return svg('text', { x, y, class: kind, ...properties }, `${content} `);
}

function cut(content, most) {
  return content.length > most ? `${content.slice(0, most - 1)}…` : content;
}

function bandClass(medium) {
  return medium === undefined ? 'band-unknown' : medium === 'cable' ? 'band-cable' : `band-${medium.replace('.', '')}`;
}

const SPINE = 10; // how far in from a card's edge the line runs that its children hang on, one below the other

// Links. A cable is a full line with a plug at each end; radio is dashed, each band in its own way, side by side.

function curve({ shape, from, to, direction }, offset) {
  if (shape === 'down') {
    const x = (to.x + Math.min(from.width, to.width) / 2) + offset;
    return `M${x} ${from.y + from.height}V${to.y}`;
  }
  if (shape === 'elbow') {
    const y = to.y + to.height / 2 + offset;
    return `M${from.x + SPINE} ${y}H${to.x}`;
  }
  const [x1, x2] = direction > 0 ? [from.x + from.width, to.x] : [from.x, to.x + to.width];
  const [y1, y2] = [from.y + from.height / 2 + offset, to.y + to.height / 2 + offset];
  const bend = (x2 - x1) * 0.55;
  return `M${x1} ${y1}C${x1 + bend} ${y1} ${x2 - bend} ${y2} ${x2} ${y2}`;
}

function ends({ shape, from, to, direction }) {
  if (shape === 'down') {
    const x = to.x + Math.min(from.width, to.width) / 2;
    return [[x, from.y + from.height], [x, to.y]];
  }
  const x2 = shape === 'elbow' || direction > 0 ? to.x : to.x + to.width;
  return [[x2, to.y + to.height / 2]];
}

function drawLink(link) {
  const media = link.media.length > 0 ? link.media : [undefined];
  const lines = media.map((medium, i) => svg('path', {
    class: `link ${bandClass(medium)}${link.down ? ' down' : ''}`, d: curve(link, (i - (media.length - 1) / 2) * 5),
  }));
  const spine = link.shape === 'elbow' ? svg('path', { class: 'spine', d: `M${link.from.x + SPINE} ${link.from.y + link.from.height}V${link.to.y + link.to.height / 2}` }) : [];
  const plugs = media[0] === 'cable' && link.node.kind !== 'folded'
    ? ends(link).map(([x, y]) => svg('rect', { class: 'plug', x: x - 4, y: y - 4, width: 8, height: 8 })) : [];
  const kind = link.node.kind === 'folded' ? 'folded' : media[0] === 'cable' ? 'wired' : 'wireless';
  return svg('g', { 'data-link': link.node.id, 'data-media': mediaInWords(link.media), class: kind }, spine, lines, plugs);
}

// The label of a unit's link stands on it, or in its card where they stand below one another; a client's stands in its row.
function linkLabel(link) {
  if (link.node.kind === 'client' || link.node.kind === 'folded' || link.media.length === 0) return null;
  const words = link.down ? 'no link' : mediaInWords(link.media);
  const [[x, y]] = ends(link);
  const width = 16 + words.length * 6.8;
  const at = link.shape === 'down' ? { x, y: (link.from.y + link.from.height + link.to.y) / 2 }
    : link.shape === 'elbow' ? { x: link.to.x + link.to.width - width / 2 - 8, y: link.to.y + link.to.height / 2 }
      : { x: link.to.x - link.direction * (width / 2 + 12), y };
  return svg('g', { class: `pill ${link.down ? 'down' : bandClass(link.media[0])}`, transform: `translate(${at.x} ${at.y})` },
    svg('rect', { x: -width / 2, y: -10, width, height: 20, rx: 10 }), text(0, 4, 'pill-text', words));
}

// Nodes.

function signalBars(x, y, signal) {
  const count = bars(signal);
  return [0, 1, 2, 3].map((i) => svg('rect', {
    class: count > i ? 'bar' : 'bar off', x: x + i * 4.5, y: y - 4 - i * 2.6, width: 3, height: 4 + i * 2.6,
  }));
}

function drawClient({ node, x, y, width, height, direction }) {
  const wired = node.media[0] === 'cable';
  const mirrored = direction < 0;
  const middle = y + height / 2;
  const at = mirrored ? x + width - 15 : x + 15;
  const label = mirrored ? { x: at - 20, 'text-anchor': 'end' } : { x: at + 20 };
  const mark = wired ? svg('rect', { class: 'mark', x: at - 11, y: middle - 11, width: 22, height: 22, rx: 3 })
    : svg('circle', { class: 'mark', cx: at, cy: middle, r: 11.5 });
  const told = !wired && bars(node.signal) !== undefined;
  const words = mediaInWords(node.media) + (told ? ` · RSSI ${node.signal}` : '');
  const room = width - 60 > words.length * 5.6;
  const properties = { 'text-anchor': label['text-anchor'] };
  return [
    mark, glyph(wired ? 'cable' : 'wireless', at - 7, middle - 7, 14),
    text(label.x, middle - 1, 'name', cut(node.name, 19), properties), text(label.x, middle + 12, 'detail', words, properties),
    told && room ? signalBars(mirrored ? x : x + width - 20, middle + 13, node.signal) : null,
  ];
}

function drawFolded({ node, x, y, width, height }) {
  const total = node.clients.length;
  let left = x + 44;
  const room = width - 56;
  const parts = countMedia(node.clients).map(([words, count]) => {
    const share = (room * count) / total;
    const medium = words === 'cable' ? 'cable' : words === 'unknown' ? undefined : words.split(/[+ ]/)[0];
    const part = svg('rect', { class: `share ${bandClass(medium)}`, x: left, y: y + height - 14, width: Math.max(1, share - 2), height: 5 });
    left += share;
    return part;
  });
  return [
    svg('rect', { class: 'card folded', x, y, width, height, rx: 10 }), glyph('group', x + 12, y + height / 2 - 10, 20),
    text(x + 44, y + 20, 'name', `${total} clients`), text(x + width - 12, y + 20, 'detail', 'show', { 'text-anchor': 'end' }), parts,
  ];
}

function unitDetail(node) {
  if (node.kind === 'above') return [node.down ? 'not connected' : node.method ?? (node.mac || 'upstream'), node.ip ?? ''];
  const count = countClients(node);
  if (node.known === false) return [node.kind === 'router' ? node.role : node.ip ?? '', 'clients …'];
  const clients = `${count} client${count === 1 ? '' : 's'}`;
  return node.kind === 'router' ? [node.role, clients] : [node.ip ?? node.mac ?? '', clients];
}

function drawUnit({ node, x, y, width, height }) {
  const [first, second] = unitDetail(node);
  return [
    svg('rect', { class: `card ${node.kind}${node.down ? ' down' : ''}`, x, y, width, height, rx: 12 }),
    svg('rect', { class: `badge ${node.kind}`, x: x + 12, y: y + height / 2 - 21, width: 42, height: 42, rx: 11 }),
    glyph(GLYPH[node.kind], x + 21, y + height / 2 - 12, 24),
    text(x + 64, y + 27, 'title', cut(node.name, 15)), text(x + 64, y + 44, 'detail', cut(first, 18)), text(x + 64, y + 60, 'detail', second),
  ];
}

// What a node is, in one sentence for those who hear it, and in rows for the tooltip.
export function rowsOf(node) {
  const rows = [];
  if (node.ip) rows.push(['IP', node.ip]);
  if (node.mac) rows.push(['MAC', node.mac]);
  if (node.kind === 'above') rows.push(['State', node.down ? 'not connected' : 'connected']);
  if (node.method) rows.push(['Method', node.method]);
  if (node.kind === 'client' || node.kind === 'satellite') rows.push([node.kind === 'client' ? 'Connected by' : 'Backhaul', mediaInWords(node.media)]);
  if (node.kind === 'client' && node.media[0] !== 'cable') rows.push(['RSSI', bars(node.signal) === undefined ? 'not told' : String(node.signal)]);
  if (node.location) rows.push(['Place', node.location]);
  if (node.kind === 'router' || node.kind === 'satellite') rows.push(['Clients', node.known === false ? 'not known yet' : `${clientsOf(node).length} own, ${countClients(node)} in all`]);
  if (node.kind === 'folded') rows.push(...countMedia(node.clients).map(([words, count]) => [words, String(count)]));
  return rows;
}

function titleOf(node) {
  if (node.kind === 'folded') return `${node.clients.length} clients of ${node.unit.name}, folded`;
  return { router: node.role, satellite: `Satellite ${node.name}`, client: `Client ${node.name}`, above: node.name }[node.kind];
}

function drawNode(place, fresh, chosen) {
  const { node } = place;
  const clients = node.kind === 'router' || node.kind === 'satellite' ? clientsOf(node).length : 0;
  const group = svg('g', {
    role: 'treeitem', tabindex: '-1', 'data-id': node.id, 'data-kind': node.kind, 'aria-level': place.level,
    class: `node ${node.kind} ${bandClass(node.media[0])}${fresh ? ' fresh' : ''}`,
    'aria-expanded': node.kind === 'folded' ? 'false' : clients > 1 ? String(!isFolded(node, chosen)) : undefined,
  });
  const body = node.kind === 'client' ? drawClient(place) : node.kind === 'folded' ? drawFolded(place) : drawUnit(place);
  group.append(svg('rect', { class: 'target', x: place.x - 2, y: place.y - 2, width: place.width + 4, height: place.height + 4, rx: 12 }),
    ...body.flat().filter(Boolean));
  // Heard as it is read, and then what the tooltip has beside it.
  const read = [...group.querySelectorAll('text')].map((one) => one.textContent.trim()).join(' ');
  group.setAttribute('aria-label', `${read}. ${[titleOf(node), ...rowsOf(node).map((row) => row.join(' '))].join(', ')}`);
  return group;
}

// An element that shows a mesh: show(mesh) draws it, anew or again.
export class MeshPicture {
  constructor() {
    this.tree = svg('g', { role: 'tree', 'aria-label': 'The mesh: units and clients' });
    this.links = svg('g', { 'aria-hidden': 'true' });
    this.labels = svg('g', { 'aria-hidden': 'true', class: 'labels' });
    this.drawing = svg('svg', { class: 'mesh' }, this.links, this.tree, this.labels);
    this.tip = el('div', { class: 'tip', role: 'tooltip', id: 'mesh-tip', hidden: true });
    this.element = el('div', { class: 'mesh-frame' }, this.drawing, this.tip);
    this.chosen = new Map(); // by unit: folded or not, where somebody chose
    this.seen = new Set();
    this.at = 'router';
    this.#listen();
    this.observer = new ResizeObserver(() => this.mesh && this.show(this.mesh));
    this.observer.observe(this.element);
  }

  show(mesh) {
    this.mesh = mesh;
    const scale = parseFloat(getComputedStyle(document.documentElement).fontSize) / 16;
    const width = this.element.clientWidth / scale;
    if (width === 0) return;
    const hadFocus = this.tree.contains(document.activeElement);
    const picture = layOut(mesh, width, this.chosen);
    this.places = picture.nodes;
    this.drawing.setAttribute('viewBox', `0 0 ${picture.width} ${picture.height}`);
    this.drawing.setAttribute('width', picture.width * scale);
    this.drawing.setAttribute('height', picture.height * scale);
    this.links.replaceChildren(...picture.links.map(drawLink));
    this.labels.replaceChildren(...picture.links.map(linkLabel).filter(Boolean));
    const inOrder = picture.nodes;
    this.tree.replaceChildren(...inOrder.map((place) => drawNode(place, this.seen.size > 0 && !this.seen.has(place.node.id), this.chosen)));
    inOrder.forEach((place) => this.seen.add(place.node.id));
    this.#mark(hadFocus);
  }

  #mark(focus) {
    const items = [...this.tree.children];
    const current = items.find((item) => item.dataset.id === this.at) ?? items[1] ?? items[0];
    items.forEach((item) => item.setAttribute('tabindex', item === current ? '0' : '-1'));
    if (focus) current?.focus({ preventScroll: true });
  }

  #toggle(item) {
    const place = this.places.find(({ node }) => node.id === item.dataset.id);
    const unit = place.node.kind === 'folded' ? place.node.unit : place.node;
    if (clientsOf(unit).length < 2) return;
    this.chosen.set(unit.id, !isFolded(unit, this.chosen));
    this.at = unit.id;
    this.show(this.mesh);
    if (this.tree.contains(document.activeElement) || document.activeElement === document.body) this.#mark(true);
  }

  #go(item) {
    if (!item) return;
    this.at = item.dataset.id;
    this.#mark(true);
    item.scrollIntoView({ block: 'nearest', inline: 'nearest' });
  }

  #key(event, item) {
    const items = [...this.tree.children];
    const i = items.indexOf(item);
    const folded = item.getAttribute('aria-expanded') === 'false';
    const level = Number(item.getAttribute('aria-level'));
    const parent = () => items.slice(0, i).findLast((other) => Number(other.getAttribute('aria-level')) < level);
    const actions = {
      ArrowDown: () => this.#go(items[i + 1]), ArrowUp: () => this.#go(items[i - 1]),
      Home: () => this.#go(items[0]), End: () => this.#go(items.at(-1)),
      ArrowRight: () => (folded ? this.#toggle(item) : this.#go(items[i + 1])),
      ArrowLeft: () => (item.getAttribute('aria-expanded') === 'true' ? this.#toggle(item) : this.#go(parent())),
      Enter: () => this.#toggle(item), ' ': () => this.#toggle(item),
      Escape: () => { this.tip.hidden = true; },
    };
    if (!actions[event.key]) return;
    event.preventDefault();
    actions[event.key]();
  }

  #listen() {
    const itemOf = (event) => event.target.closest?.('[role=treeitem]');
    this.tree.addEventListener('keydown', (event) => itemOf(event) && this.#key(event, itemOf(event)));
    this.tree.addEventListener('click', (event) => {
      const item = itemOf(event);
      if (!item) return;
      this.at = item.dataset.id;
      this.#mark(true);
      this.#toggle(item);
    });
    this.tree.addEventListener('focusin', (event) => this.#tell(itemOf(event)));
    this.tree.addEventListener('pointerover', (event) => this.#tell(itemOf(event)));
    this.drawing.addEventListener('pointerover', (event) => { if (!itemOf(event)) this.tip.hidden = true; });
    this.element.addEventListener('pointerleave', () => { this.tip.hidden = true; });
    this.tree.addEventListener('focusout', () => { this.tip.hidden = true; });
  }

  #tell(item) {
    const place = item && this.places.find(({ node }) => node.id === item.dataset.id);
    if (!place) return;
    this.tip.replaceChildren(el('p', { class: 'tip-title' }, titleOf(place.node)),
      el('dl', {}, rowsOf(place.node).map(([name, value]) => [el('dt', {}, name), el('dd', {}, value)])));
    this.tip.hidden = false;
    const frame = this.element.getBoundingClientRect();
    const box = item.getBoundingClientRect();
    const left = Math.min(Math.max(0, box.left - frame.left), Math.max(0, frame.width - this.tip.offsetWidth));
    this.tip.style.left = `${left}px`;
    const under = box.bottom - frame.top + 6;
    this.tip.style.top = `${box.bottom + this.tip.offsetHeight + 12 > innerHeight ? box.top - frame.top - this.tip.offsetHeight - 6 : under}px`;
  }
}
