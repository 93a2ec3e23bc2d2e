// The console: asks the simulator what it is, then shows the view that the address names.

import { Api } from './api.js';
import { ActivityPage } from './activity.js';
import { AirPage } from './air.js';
import { el } from './dom.js';
import { MeshPage } from './mesh_page.js';
import { ROLES } from './mesh_model.js';
import { showProgress } from './progress.js';
import { SettingsPage } from './settings.js';

const PAGES = { mesh: MeshPage, air: AirPage, settings: SettingsPage, activity: ActivityPage };
const main = document.getElementById('main');
const made = new Map();
let page;

async function readJson(path) {
  const response = await fetch(path, { cache: 'no-store' });
  const answer = await response.json();
  if (!response.ok) throw new Error(answer.error);
  return answer;
}

function show(context, byLink) {
  const [name, ...rest] = location.hash.replace(/^#\//, '').split('/').map(decodeURIComponent);
  const chosen = PAGES[name] ? name : 'mesh';
  if (!made.has(chosen)) made.set(chosen, new PAGES[chosen](context));
  const next = made.get(chosen);
  if (next !== page) {
    page?.leave?.();
    page = next;
    main.replaceChildren(page.element);
    page.enter?.();
    if (byLink) main.focus({ preventScroll: true });
    scrollTo(0, 0);
  }
  page.open?.(rest);
  document.title = `${page.title} · Simulated router`;
  for (const link of document.querySelectorAll('.views a')) {
    if (link.hash === `#/${chosen}`) link.setAttribute('aria-current', 'page');
    else link.removeAttribute('aria-current');
  }
}

function tellUnit({ brand, mode, port }) {
  const words = `${brand.charAt(0).toUpperCase()}${brand.slice(1)} · ${ROLES[mode].toLowerCase()} · port ${port}`;
  document.getElementById('unit').textContent = words;
}

// A request may have made a mesh, an access point or a factory-new router of it.
async function lookAgain(about) {
  try {
    Object.assign(about, await readJson('/console/router.json'));
    tellUnit(about);
  } catch {
    // what is asked next tells that nobody is there
  }
}

// What each request is for, in the description's words, to stand beside it.
async function nameRoutes(api, context) {
  const { paths } = await context.description().catch(() => ({ paths: {} }));
  for (const [uri, methods] of Object.entries(paths)) {
    for (const [method, { summary }] of Object.entries(methods)) api.names.set(`${method.toUpperCase()} ${uri}`, summary.replace(/\.$/, ''));
  }
}

function fail(error) {
  main.replaceChildren(el('div', { class: 'notice bad', role: 'alert' }, el('h1', {}, 'The simulator does not answer'),
    el('p', {}, `${error.message}. Start it with script/run, then load this page again.`)));
}

async function start() {
  document.querySelector('.skip').addEventListener('click', (event) => {
    event.preventDefault();
    main.focus();
  });
  try {
    const about = await readJson('/console/router.json');
    const api = new Api(about);
    tellUnit(about);
    const context = { api, description: () => readJson('/console/openapi.json'), lookAgain: () => lookAgain(about) };
    showProgress(api);
    nameRoutes(api, context);
    addEventListener('hashchange', () => show(context, true));
    show(context, false);
  } catch (error) {
    fail(error);
  }
}

start();
