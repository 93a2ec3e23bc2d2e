// The console in a browser, against simulated routers that run: ROUTERS names their addresses.

import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';

import { findings, launch, nodesOf, open } from './browser.js';

const ROUTERS = JSON.parse(process.env.ROUTERS);
const HOSTILE = '<img src=x onerror=alert(1)>';
let browser;

before(async () => { browser = await launch(); });
after(() => browser.close());

// A test with a page of a router, which must not have complained in the end.
function withPage(name, router, hash, work, options = {}) {
  test(name, async () => {
    const page = await open(browser, ROUTERS[router], hash, options);
    try {
      await work(page);
      assert.deepEqual(page.errors.filter((text) => !options.expected?.test(text)), []);
    } finally {
      await page.context().close();
    }
  });
}

const sent = (page) => page.locator('.outcome .answer .state').waitFor();
const settled = (page) => page.getByText(/As of \d\d:\d\d:\d\d/).waitFor();

withPage('it loads from this origin alone, under a policy without inline scripts, and tells what the router is', 'controller', '', async (page) => {
  const response = await page.reload();
  const policy = response.headers()['content-security-policy'];
  assert.match(policy, /default-src 'none'/);
  assert.doesNotMatch(policy, /unsafe/);
  await page.getByRole('heading', { name: 'A mesh controller with 3 satellites and 12 clients' }).waitFor();
  await page.getByText('It is connected to the Internet by DHCP, and has the address 203.0.113.10 there. The Internet is reached.').waitFor();
  for (const request of page.asked) assert.equal(new URL(request.url()).origin, ROUTERS.controller);
});

withPage('the picture of three satellites has the right nodes and links', 'controller', '', async (page) => {
  await settled(page);
  const nodes = await nodesOf(page);
  const unit = (number) => `unit 02:00:00:A${number}:00:20`;
  const count = (kind) => nodes.filter((node) => node.kind === kind).length;
  assert.deepEqual(['above', 'router', 'satellite', 'client'].map(count), [1, 1, 3, 12]);
  const parents = Object.fromEntries(nodes.map(({ id, parent }) => [id, parent]));
  assert.deepEqual([parents[unit(1)], parents[unit(2)], parents[unit(3)]], ['router', 'router', unit(2)]);
  for (let i = 0; i < 12; ++i) {  // clients are dealt out in turn, the router first
    const id = `client 02:00:00:00:01:${i.toString(16).padStart(2, '0').toUpperCase()}`;
    assert.equal(parents[id], i % 4 === 0 ? 'router' : unit(i % 4), id);
  }
  const links = await page.locator('[data-link]').evaluateAll((all) => all.map((link) => [link.dataset.link, link.dataset.media, link.getAttribute('class')]));
  assert.equal(links.length, nodes.length - 1);
  const media = Object.fromEntries(links.map(([id, words, kind]) => [id, `${kind} ${words}`]));
  assert.deepEqual([media.router, media[unit(1)], media['client 02:00:00:00:01:00'], media['client 02:00:00:00:01:01'], media['client 02:00:00:00:01:04']],
    ['wired cable', 'wireless 5+6 GHz', 'wired cable', 'wireless 5 GHz', 'wireless 2.4 GHz']);
  assert.match(nodes.find(({ id }) => id === 'client 02:00:00:00:01:04').text, /IP 192\.168\.0\.104, MAC 02:00:00:00:01:04, Connected by 2\.4 GHz, RSSI 44/);
});

withPage('a tooltip tells MAC, IP and RSSI to the pointer and to the keyboard', 'controller', '', async (page) => {
  await settled(page);
  const tip = page.getByRole('tooltip');
  const told = async () => (await tip.locator('dl').innerText()).split(/\s+/).join(' ');
  await page.locator('[data-id="client 02:00:00:00:01:04"]').hover();
  assert.equal(await told(), 'IP 192.168.0.104 MAC 02:00:00:00:01:04 Connected by 2.4 GHz RSSI 44');
  await page.mouse.move(2, 2);
  await tip.waitFor({ state: 'hidden' });
  await page.locator('[data-id=router]').focus();
  await page.keyboard.press('ArrowUp');
  assert.match(await told(), /IP 203\.0\.113\.10/);
  assert.notEqual(await page.locator('[data-id=above] .target').evaluate((target) => getComputedStyle(target).stroke), 'rgba(0, 0, 0, 0)');
  await page.keyboard.press('Escape');
  await tip.waitFor({ state: 'hidden' });
});

withPage('clients stand below the satellite that has them, whatever the order of the list', 'wide', '', async (page) => {
  await settled(page);
  const nodes = await nodesOf(page);
  const clients = nodes.filter(({ kind }) => kind === 'client');
  assert.equal(clients.length, 24);
  for (const { id, parent } of clients) {
    const number = parseInt(id.slice(-2), 16) % 8;
    assert.equal(parent, number === 0 ? 'router' : `unit 02:00:00:A${number}:00:20`, id);
  }
});

withPage('sixteen satellites with sixty-four clients each stay readable, folded and unfolded by key', 'controller', '', async (page) => {
  await settled(page);
  assert.equal(await page.locator('[data-kind=client]').count(), 0);
  assert.equal(await page.locator('[data-kind=folded]').count(), 16);
  const folded = page.locator('[data-kind=folded]').first();
  await folded.focus();
  await page.keyboard.press('Enter');
  assert.equal(await page.locator('[data-kind=client]').count(), 64);
  assert.equal(await page.evaluate(() => document.activeElement.dataset.kind), 'satellite');
  await page.keyboard.press('ArrowLeft');
  assert.equal(await page.locator('[data-kind=client]').count(), 0);
}, { prepare: async (page) => {
  const agents = Array.from({ length: 16 }, (_, i) => ({ agentDeviceNumber: i + 1, model: `satellite-${i + 1}`, macAddress: `04:00:00:00:00:${10 + i}`,
    ipv4Address: `192.168.0.${20 + i}`, connectParentMacAddress: '02:00:00:00:00:01', connectionType: 5 }));
  const list = { result: 0, clientList: [] };
  agents.forEach((_, unit) => {
    list[`easyMesh${String(unit + 1).padStart(2, '0')}`] = Array.from({ length: 64 }, (__, i) => ({ macAddress: `06:00:00:00:${10 + unit}:${10 + i}`, connectionType: i % 4, rssi: '40' }));
  });
  await page.route('**/mesh/agent-info', (route) => route.fulfill({ json: { result: 0, version: 1, agentInfo: agents } }));
  await page.route('**/router/client-list', (route) => route.fulfill({ json: list }));
} });

withPage('a GET is read as a table, as JSON, and as a line for a terminal', 'router', '#/settings/router/info', async (page) => {
  await page.getByRole('row', { name: 'Model MX-9P300KLD', exact: true }).waitFor();
  await page.getByText('The answer as JSON').click();
  await page.getByText('"productId": "0221"').waitFor();
  const { port } = new URL(ROUTERS.router);
  await page.getByText(`script/request --port ${port} GET /api/v1/router/info`).waitFor();
  const asked = page.asked.find((request) => request.url().endsWith('/api/v1/router/info'));
  assert.match(await (await asked.response()).text(), /^eyJ[\w-]*(\.[\w-]*){4}$/);
});

withPage('the LAN name service is changed and seen', 'ap', '#/settings/lan', async (page) => {
  await page.getByRole('row', { name: 'LAN IPv4 address' }).first().waitFor();
  const values = { lanIpv4Address: '192.168.0.7', lanIpv4SubMask: '255.255.255.0', lanIpv4Gateway: '192.168.0.1', lanIpv4Dns1: '192.168.0.53' };
  for (const [name, value] of Object.entries(values)) await page.locator(`[data-name=${name}] input`).fill(value);
  await page.locator('[data-name=dhcpv4Enable] select').selectOption({ label: '0 · off' });
  await page.getByRole('button', { name: 'Send' }).click();
  await sent(page);
  await page.getByText(/It wants 60 s before it is asked again: \d+ s left/).waitFor();
  const post = page.asked.find((request) => request.method() === 'POST');
  assert.match(post.postData(), /^eyJ[\w-]*(\.[\w-]*){4}$/);
  const did = page.locator('section', { hasText: 'What it did' });
  await did.locator('.diff .plus', { hasText: '192.168.0.53' }).first().waitFor();
  await did.getByRole('row', { name: /ubus call network reload/ }).first().waitFor();
  await page.getByRole('button', { name: 'Read it again' }).click();
  await page.getByRole('row', { name: 'LAN IPv4 DNS 1 192.168.0.53' }).waitFor();
});

withPage('a hostile SSID in the air is a text', 'hostile', '#/air', async (page) => {
  await page.locator('svg .essid', { hasText: HOSTILE.slice(0, 20) }).waitFor();
  await page.getByRole('rowheader', { name: HOSTILE, exact: true }).waitFor();
  assert.equal(await page.locator('main img').count(), 0);
});

withPage('a hostile SSID of the router is sent and read back as a text', 'hostile', '#/settings/wireless/setting', async (page) => {
  const name = page.locator('[data-name="wirelessConfig.0.ssidValue"] input');
  await page.getByRole('row', { name: /Router-2\.4G-1234/ }).first().waitFor();
  await name.fill(HOSTILE);
  await page.getByRole('button', { name: 'Send' }).click();
  await sent(page);
  await page.locator('.diff .plus', { hasText: HOSTILE }).first().waitFor();
  await page.getByRole('button', { name: 'Read it again' }).click();
  await page.locator('section', { hasText: 'As it is' }).getByRole('cell', { name: HOSTILE, exact: true }).first().waitFor();
  assert.equal(await page.locator('main img').count(), 0);
});

withPage('the form refuses what the schema refuses, and sends nothing', 'router', '#/settings/wireless/detail-setting', async (page) => {
  const beacon = page.locator('[data-name=beaconInterval] input');
  await page.getByRole('row', { name: 'Beacon interval 100' }).waitFor();
  for (const bad of ['39', '1001', 'x', '1.5', '']) {
    await beacon.fill(bad);
    await page.getByRole('button', { name: 'Send' }).click();
    assert.equal(await beacon.getAttribute('aria-invalid'), 'true', bad);
    assert.ok(await beacon.evaluate((input) => input === document.activeElement), 'the field that is wrong has the focus');
  }
  await page.getByRole('alert').getByRole('button', { name: 'Beacon interval' }).waitFor();
  assert.deepEqual(page.asked.filter((request) => request.method() === 'POST'), []);
  await beacon.fill('200');
  await page.getByRole('button', { name: 'Send' }).click();
  await sent(page);
  await page.locator('.diff .plus', { hasText: '200' }).first().waitFor();
});

withPage('one change, by keyboard alone', 'router', '', async (page) => {
  const press = async (key, until) => {
    for (let i = 0; i < 120; ++i) {
      if (await page.evaluate(until)) return;
      await page.keyboard.press(key);
    }
    assert.fail(`${key} does not lead to ${until}`);
  };
  await page.getByRole('heading', { name: /^A router/ }).waitFor();
  await press('Tab', "document.activeElement.textContent === 'Settings'");
  await page.keyboard.press('Enter');
  await page.getByLabel('Find a setting').waitFor();
  await press('Tab', "document.activeElement.id === 'filter'");
  await page.keyboard.type('pass-through');
  await press('Tab', "document.activeElement.hash === '#/settings/security/passthrough'");
  await page.keyboard.press('Enter');
  await page.getByRole('row', { name: 'PPTP 1 · on' }).waitFor();
  await press('Tab', "document.activeElement.closest('[data-name=pptpEnable]')");
  assert.notEqual(await page.evaluate(() => getComputedStyle(document.activeElement).outlineStyle), 'none');
  await page.keyboard.press('ArrowUp');
  await press('Tab', "document.activeElement.textContent === 'Send'");
  await page.keyboard.press('Enter');
  await sent(page);
  await page.locator('.diff .plus', { hasText: "option pptp '0'" }).waitFor();
});

withPage('while a slow route is on its way, a line tells so and nothing else waits', 'controller', '', async (page) => {
  await page.locator('#progress-text', { hasText: /GET \/router\/client-list is on its way, usually 5\.\d s/ }).waitFor();
  await page.getByRole('link', { name: 'Settings' }).click();
  await page.getByRole('link', { name: /The LAN's addresses/ }).click();
  await page.locator('[data-name=lanIpv4Address] input').fill('192.168.9.1');
  await page.getByRole('link', { name: 'Activity' }).click();
  await page.getByRole('heading', { name: 'What the router did' }).waitFor();
}, { prepare: (page) => page.route('**/router/client-list', () => {}) });

withPage('one request is in flight at a time, and a person comes first', 'router', '', async (page) => {
  await page.locator('#progress-text', { hasText: 'client-list' }).waitFor();
  await page.getByRole('link', { name: 'Air' }).click();
  await page.getByText(/access points heard/).waitFor();
  assert.equal(page.most, 1);
}, { prepare: async (page) => {
  let now = 0;
  page.most = 0;
  await page.route('**/api/v1/**', async (route) => {
    page.most = Math.max(page.most, ++now);
    if (route.request().url().includes('client-list')) await new Promise((resolve) => { setTimeout(resolve, 1500); });
    await route.continue();
    await (await route.request().response())?.finished();
    --now;
  });
} });

withPage('a router that is gone, or that refuses, is told with what to do', 'router', '', async (page) => {
  await page.getByRole('alert').getByText('The router cannot be reached. Is script/run still running?').waitFor();
}, { expected: /ERR_FAILED/, prepare: (page) => page.route('**/api/v1/**', (route) => route.abort()) });

withPage('an example that is chosen while the route is still read stays chosen', 'router', '', async (page) => {
  let letGo;
  const chosen = new Promise((resolve) => { letGo = resolve; });
  await page.route('**/api/v1/lan', async (route) => {
    if (route.request().method() === 'GET') await chosen;
    await route.continue();
  });
  await page.evaluate(() => { location.hash = '#/settings/lan'; });
  await page.getByRole('button', { name: 'network', exact: true }).click();
  const address = page.locator('[data-name=lanIpv4Address] input');
  const example = await address.inputValue();
  letGo();
  await page.locator('.current .answer .state').waitFor();
  assert.equal(await address.inputValue(), example);
});

withPage('a refused request is told with what to do', 'router', '#/settings/lan', async (page) => {
  await page.getByRole('button', { name: 'network', exact: true }).click();
  await page.getByRole('button', { name: 'Send' }).click();
  await sent(page);
  await page.getByText('The router refused it').waitFor();
});

const VIEWS = ['#/mesh', '#/air', '#/settings', '#/settings/lan', '#/settings/wireless/setting', '#/settings/parental-control',
  '#/settings/system/firmware', '#/activity'];

const SOME_VIEWS = ['#/mesh', '#/settings/lan'];
const LOOKS = [[1440, 'light', VIEWS], [360, 'dark', VIEWS], [360, 'light', SOME_VIEWS], [1440, 'dark', SOME_VIEWS], [2560, 'light', SOME_VIEWS]];

for (const [width, colorScheme, views] of LOOKS) {
  withPage(`axe-core finds nothing at ${width} px, ${colorScheme}, and nothing is wider than the page`, 'controller', '', async (page) => {
    for (const view of views) {
      await page.evaluate((hash) => new Promise((shown) => {
        if (location.hash === hash) shown();
        addEventListener('hashchange', () => shown(), { once: true });  // behind the console's own
        location.hash = hash;
      }), view);
      await page.locator('h1').first().waitFor();  // a view is drawn when it has been read
      if (view === '#/mesh') await settled(page);
      if (view.includes('/lan')) {
        await page.locator('[data-name=lanIpv4Address] input').fill('192.168.');
        await page.getByRole('button', { name: 'Send' }).click();
      }
      if (view === '#/activity') await page.locator('.entry summary').first().click();
      await page.locator('#progress').waitFor({ state: 'hidden' });
      assert.deepEqual(await findings(page), [], view);
      assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth), view);
    }
  }, { viewport: { width, height: 900 }, colorScheme });
}

withPage('who wants less motion gets none', 'router', '', async (page) => {
  assert.match(await page.locator('#progress-done').evaluate((bar) => getComputedStyle(bar).transitionProperty), /none|all/);
  assert.equal(await page.locator('#progress-done').evaluate((bar) => getComputedStyle(bar).transitionDuration), '0s');
}, { reducedMotion: 'reduce' });
