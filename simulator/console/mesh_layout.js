// Where the units and clients of a mesh stand in its picture, and where their links run. Lengths are in units of the
// drawing, which is one CSS pixel at the usual text size.

export const CARD = { width: 178, height: 76 };
export const CLIENT = { width: 160, height: 32 };
const FOLDED = { width: 178, height: 44 };
const GAP = 14;
const COLUMN = { forUnits: 92, forClients: 52, more: 130 }; // between two columns: at least, and how much wider at most
const INDENT = { least: 20, most: 34 };
const WIDEST = { unit: 300, client: 240 }; // where they stand one below the other
export const FOLDS_FROM = 17; // as many clients of a unit are folded until somebody unfolds them

export function isFolded(unit, chosen) {
  const clients = unit.children.filter((child) => child.kind === 'client').length;
  return chosen.get(unit.id) ?? clients >= FOLDS_FROM;
}

// The unit's children as they are drawn: folded clients are one node.
function drawn(unit, chosen) {
  const clients = unit.children.filter((child) => child.kind === 'client');
  const units = unit.children.filter((child) => child.kind !== 'client');
  if (clients.length > 1 && isFolded(unit, chosen)) {
    return [{ kind: 'folded', id: `folded ${unit.id}`, unit, clients, media: [], children: [] }, ...units];
  }
  return [...clients, ...units];
}

function sizeOf(node) {
  return node.kind === 'client' ? CLIENT : node.kind === 'folded' ? FOLDED : CARD;
}

// A node with its children and the height of all of it.
function measured(node, chosen, children = drawn(node, chosen)) {
  const below = children.map((child) => measured(child, chosen));
  const gaps = below.reduce((sum, { node: child }, i) => sum + (i === 0 ? 0 : gap(below[i - 1].node, child)), 0);
  const height = Math.max(sizeOf(node).height, below.reduce((sum, child) => sum + child.height, gaps)); // of all of it
  return { node, below, height, width: sizeOf(node).width };
}

function gap(one, other) {
  return one.kind === 'client' && other.kind === 'client' ? 2 : GAP;
}

function depthOf(branch) {
  return 1 + Math.max(0, ...branch.below.map(depthOf));
}

// The picture: {width, height, nodes: [{node, x, y, width, height, level}], links: [{from, to, node, shape, points}]}.
// Nodes stand in the order of reading: a unit, its clients, its satellites.
export function layOut(mesh, width, chosen) {
  const side = sideBySide(mesh, width, chosen);
  return side.fits ? side : below(mesh, width, chosen);
}

function split(mesh, chosen) {
  const children = drawn(mesh.root, chosen);
  const own = children.filter((child) => child.kind !== 'satellite');
  const satellites = children.filter((child) => child.kind === 'satellite');
  if (satellites.length > 0) return [own, satellites];
  const half = Math.ceil(own.length / 2);
  return own.length > 3 ? [own.slice(0, half), own.slice(half)] : [[], own];
}

// The router in the middle, its own clients to the left of it, its satellites and theirs to the right.
function sideBySide(mesh, width, chosen) {
  const [left, right] = split(mesh, chosen).map((children) => measured(mesh.root, chosen, children));
  const columns = { left: columnsOf(left), right: columnsOf(right) };
  const all = [...columns.left, ...columns.right];
  const least = all.reduce((sum, column) => sum + column.width + column.gap, CARD.width);
  const more = Math.min(COLUMN.more, (width - least) / Math.max(1, all.length));
  if (more < 0) return { fits: false };
  for (const column of all) column.gap += more;

  const picture = { fits: true, width, nodes: [], links: [] };
  const before = columns.left.reduce((sum, column) => sum + column.width + column.gap, 0);
  const x = (width - least - more * all.length) / 2 + before;
  const middle = Math.max(left.height, right.height, CARD.height) / 2;
  const root = { node: mesh.root, x, y: middle - CARD.height / 2, ...CARD, level: 2 };
  const above = { node: mesh.above, x, y: root.y - CARD.height - Math.min(90, 46 + middle / 4), ...CARD, level: 1 };
  picture.nodes.push(above, root);
  picture.links.push({ node: mesh.root, media: mesh.above.media, down: mesh.above.down, shape: 'down', from: above, to: root });
  fan(picture, left, root, middle - left.height / 2, { columns: columns.left, direction: -1, depth: 0 });
  fan(picture, right, root, middle - right.height / 2, { columns: columns.right, direction: 1, depth: 0 });
  return trimmed(picture);
}

// The columns of a branch: how wide, and how far from the one before.
function columnsOf(branch) {
  const columns = [];
  const walk = ({ below: children }, depth) => children.forEach((child) => {
    columns[depth] ??= { width: 0, gap: COLUMN.forClients };
    columns[depth].width = Math.max(columns[depth].width, child.width);
    if (child.node.kind === 'satellite') columns[depth].gap = COLUMN.forUnits;
    walk(child, depth + 1);
  });
  walk(branch, 0);
  return columns;
}

function fan(picture, branch, from, top, { columns, direction, depth }) {
  const all = branch.below.reduce((sum, child, i) => sum + child.height + (i ? gap(branch.below[i - 1].node, child.node) : 0), 0);
  let y = top + (branch.height - all) / 2;
  branch.below.forEach((child, i) => {
    if (i > 0) y += gap(branch.below[i - 1].node, child.node);
    const x = direction > 0 ? from.x + from.width + columns[depth].gap : from.x - columns[depth].gap - child.width;
    const place = { node: child.node, x, y: y + child.height / 2 - sizeOf(child.node).height / 2, ...sizeOf(child.node),
      level: depth + 3, direction };
    picture.nodes.push(place);
    picture.links.push({ node: child.node, media: child.node.media, shape: 'across', from, to: place, direction });
    fan(picture, child, place, y, { columns, direction, depth: depth + 1 });
    y += child.height;
  });
}

function trimmed(picture) {
  const least = Math.min(...picture.nodes.map((node) => node.y));
  for (const node of picture.nodes) node.y += 4 - least;
  picture.height = Math.max(...picture.nodes.map((node) => node.y + node.height)) + 4;
  return picture;
}

// Where there is no room beside one another: one below the other, deeper ones further in.
function below(mesh, width, chosen) {
  const branch = measured(mesh.root, chosen);
  const indent = Math.max(INDENT.least, Math.min(INDENT.most, (width - WIDEST.client) / depthOf(branch)));
  const picture = { width, nodes: [], links: [] };
  let y = 4;
  const place = (node, level) => {
    const unit = node.kind !== 'client' && node.kind !== 'folded';
    const x = 2 + Math.max(0, level - 2) * indent;
    const last = picture.nodes.at(-1);
    if (last) y += last.node.kind === 'client' && !unit ? 2 : GAP;
    const found = { node, x, y, width: Math.min(width - x - 4, unit ? WIDEST.unit : WIDEST.client), height: sizeOf(node).height, level, direction: 1 };
    picture.nodes.push(found);
    y += found.height;
    return found;
  };
  const above = place(mesh.above, 1);
  y += 22;
  const root = place(mesh.root, 2);
  picture.links.push({ node: mesh.root, media: mesh.above.media, down: mesh.above.down, shape: 'down', from: above, to: root });
  const walk = (at, from) => at.below.forEach((child) => {
    const to = place(child.node, from.level + 1);
    picture.links.push({ node: child.node, media: child.node.media, shape: 'elbow', from, to });
    walk(child, to);
  });
  walk(branch, root);
  picture.height = y + 4;
  return picture;
}
