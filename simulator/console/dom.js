// Makes elements. Texts become text nodes, never markup; styles come from the style sheets.

const SVG = 'http://www.w3.org/2000/svg';

function fill(element, properties, children) {
  for (const [name, value] of Object.entries(properties)) {
    if (value === undefined || value === null || value === false) continue;
    if (name.startsWith('on')) element.addEventListener(name.slice(2), value);
    else if (name === 'value' || name === 'checked') element[name] = value;
    else element.setAttribute(name, value === true ? '' : String(value));
  }
  element.append(...children.flat(Infinity).filter((child) => child !== undefined && child !== null && child !== false));
  return element;
}

// el('a', {href: '#', onclick: f}, 'text', child, ...)
export function el(tag, properties = {}, ...children) {
  return fill(document.createElement(tag), properties, children);
}

export function svg(tag, properties = {}, ...children) {
  return fill(document.createElementNS(SVG, tag), properties, children);
}

// A sentence with `code` in it, as the API's description writes it.
export function prose(text) {
  return text.split('`').map((part, i) => (i % 2 === 1 ? el('code', {}, part) : part));
}

// A glyph of a 24 by 24 grid.
export function icon(name, properties = {}) {
  return svg('svg', { viewBox: '0 0 24 24', class: 'icon', 'aria-hidden': 'true', ...properties },
    svg('path', { d: ICONS[name] }));
}

export const ICONS = {
  internet: 'M12 3a9 9 0 1 0 0 18 9 9 0 0 0 0-18ZM3 12h18M12 3c3 3 3.6 6 3.6 9s-.6 6-3.6 9c-3-3-3.6-6-3.6-9S9 6 12 3Z',
  router: 'M4 13h16a1 1 0 0 1 1 1v5a1 1 0 0 1-1 1H4a1 1 0 0 1-1-1v-5a1 1 0 0 1 1-1ZM7 16.5h.01M10.500 16.5h.01M17 13V9M13.500 6.500a5 5 0 0 1 7 0M11.300 3.800a8.500 8.500 0 0 1 11.400 0',
  satellite: 'M9 3h6a1.500 1.500 0 0 1 1.500 1.500v15A1.500 1.500 0 0 1 15 21H9a1.500 1.500 0 0 1-1.500-1.500v-15A1.500 1.500 0 0 1 9 3ZM10.500 17.500h3M12 7.500h.01M4.500 9a6 6 0 0 0 0 6M19.500 9a6 6 0 0 1 0 6',
  wireless: 'M12 18h.01M8.800 14.300a4.700 4.700 0 0 1 6.400 0M5.800 10.900a9.200 9.200 0 0 1 12.400 0M3 7.600a13.400 13.400 0 0 1 18 0',
  cable: 'M8 4h8v6h2v7h-4v3h-4v-3H6v-7h2ZM10.500 4v3M13.500 4v3',
  group: 'M9 11a3.500 3.500 0 1 0 0-7 3.500 3.500 0 0 0 0 7ZM2.500 20a6.500 6.500 0 0 1 13 0M16 4.500a3.500 3.500 0 0 1 0 6.300M18 14.500a6.500 6.500 0 0 1 3.500 5.500',
};

export function seconds(value) {
  return value < 10 ? `${value.toFixed(1)} s` : `${Math.round(value)} s`;
}

export function timeOfDay(date) {
  return date.toLocaleTimeString([], { hour: '2-digit', minute: '2-digit', second: '2-digit', hourCycle: 'h23' });
}
