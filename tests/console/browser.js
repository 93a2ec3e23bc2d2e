// A headless Chromium for the tests, and pages that tell of every error in their console.

import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';

import { chromium } from 'playwright-core';

const FLAGS = ['--headless', '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
  '--disable-component-update', '--disable-sync'];
const AXE = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');
export const DEADLINE_MS = 120000;

export function launch() {
  return chromium.launch({ executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium', args: FLAGS });
}

// A page of a router at `base`; page.errors are what its console complained of.
export async function open(browser, base, hash = '', options = {}) {
  const context = await browser.newContext({ viewport: { width: 1440, height: 900 }, ...options });
  const page = await context.newPage();
  page.setDefaultTimeout(DEADLINE_MS);
  page.errors = [];
  page.on('console', (message) => { if (['error', 'warning'].includes(message.type())) page.errors.push(message.text()); });
  page.on('pageerror', (error) => page.errors.push(error.stack));
  page.asked = [];
  page.on('request', (request) => page.asked.push(request));
  if (options.prepare) await options.prepare(page);
  await page.goto(`${base}/${hash}`);
  return page;
}

// What axe-core finds against a page, a line for each finding.
export async function findings(page) {
  await page.evaluate(`${AXE};0`);
  const { violations } = await page.evaluate(() => globalThis.axe.run());
  return violations.flatMap(({ id, nodes }) => nodes.map((node) => `${id}: ${node.html.slice(0, 200)}`));
}

// The units and clients as the picture shows them: [{kind, id, level, parent, text}].
export function nodesOf(page) {
  return page.locator('[role=treeitem]').evaluateAll((items) => {
    const path = [];
    return items.map((item) => {
      const level = Number(item.getAttribute('aria-level'));
      path.length = level - 1;
      const parent = path.findLast((one) => one !== undefined);
      path[level - 1] = item.dataset.id;
      return { kind: item.dataset.kind, id: item.dataset.id, level, parent, text: item.getAttribute('aria-label') };
    });
  });
}
