// Makes docs/console/*.png: node screenshots.js http://127.0.0.1:8080 of a `script/run --mode controller --agents 3 --clients 12`.

import { launch, open } from './browser.js';

const base = process.argv[2] ?? 'http://127.0.0.1:8080';
const folder = new URL('../../docs/console/', import.meta.url).pathname;
const settled = (page) => page.getByText(/As of \d\d:\d\d:\d\d/).waitFor();

async function changeDhcp(page) {
  await page.getByRole('row', { name: /^Lease time/ }).waitFor();
  await page.locator('[data-name=leaseTime] input').fill('8');
  await page.getByRole('button', { name: 'Send' }).click();
  await page.getByRole('row', { name: /dnsmasq/ }).first().waitFor();
}

const SHOTS = [
  ['mesh', '', { viewport: { width: 1440, height: 800 } }, settled],
  ['mesh-dark', '', { viewport: { width: 1440, height: 800 }, colorScheme: 'dark' }, settled],
  ['mesh-phone', '', { viewport: { width: 360, height: 780 }, deviceScaleFactor: 2 }, settled],
  ['air', '#/air', { viewport: { width: 1440, height: 800 } }, (page) => page.getByText(/access points heard/).waitFor()],
  ['settings', '#/settings/dhcp', { viewport: { width: 1440, height: 1000 } }, changeDhcp],
];

const browser = await launch();
for (const [name, hash, options, ready] of SHOTS) {
  const page = await open(browser, base, hash, options);
  await ready(page);
  await page.locator('#progress').waitFor({ state: 'hidden' });
  await page.evaluate(() => scrollTo(0, 0));
  await page.screenshot({ path: `${folder}${name}.png` });
  await page.context().close();
}
await browser.close();
