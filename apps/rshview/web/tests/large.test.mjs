// A large editor in Chromium: its first groups are drawn at once and the others as they scroll
// near; what is drawn late works as what is drawn at once (events, the parameter filter).

import assert from 'node:assert/strict';
import { mkdtempSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { launchBrowser, openPage, startServer, withScreenshot } from './harness.mjs';
import { generateLargeDocument } from './large-document.mjs';

const count = 400;
let browser;
let server;
before(async () => {
  const dir = mkdtempSync(join(tmpdir(), 'rshview-web-large-'));
  const doc = generateLargeDocument(dir, count, 16);
  [browser, server] = await Promise.all([launchBrowser(), startServer({ doc, dir, prefs: join(dir, 'preferences.json') })]);
});
after(async () => {
  await browser?.close();
  await server?.stop();
});

async function withPage(t, body) {
  const page = await openPage(browser, server.url, { hash: '#big' });
  try {
    await withScreenshot(t, page, () => body(page));
    assert.deepEqual(page.consoleErrors, []);
  } finally {
    await page.context().close();
  }
}

const labels = (page) => page.$$eval('.param-label', (all) => all.map((l) => l.textContent));

test('groups beyond the first screens are drawn as they scroll near, and then take events', async (t) => {
  await withPage(t, async (page) => {
    const deferred = await page.locator('.expander-body.deferred').count();
    assert.ok(deferred > 0, 'every group was drawn at once');
    assert.ok((await labels(page)).length < count);
    // Scrolling down a screen at a time draws the rest, group by group.
    for (let i = 0; i < 200 && (await page.locator('.expander-body.deferred').count()) > 0; i++) {
      await page.$eval('.editor-pane', (pane) => { pane.scrollTop += pane.clientHeight; });
      await page.waitForTimeout(30);
    }
    assert.equal(await page.locator('.expander-body.deferred').count(), 0);
    assert.equal(new Set(await labels(page)).size, count);
    // A check box of the last group drawn writes its parameter.
    const box = page.locator('[data-cls="KEPVidCtlCheckBox"] input').last();
    const checked = await box.isChecked();
    await box.click();
    await page.waitForFunction(() => window.rshview.api.queue.length === 0 && window.rshview.api.pending === 0);
    assert.match(await page.textContent('#status'), new RegExp(`^big\\.p\\d+: ${checked} → ${!checked}$`));
    assert.equal(await box.isChecked(), !checked);
  });
});

test('the parameter filter finds a row of a group not drawn yet', async (t) => {
  await withPage(t, async (page) => {
    const drawn = new Set(await labels(page));
    const missing = Array.from({ length: count }, (_, i) => `p${i}`).find((name) => !drawn.has(name));
    assert.ok(missing, 'every row was drawn at once');
    await page.fill('#param-filter', missing);
    const shown = await page.$$eval('.param-label', (all) => all.filter((l) => l.offsetParent).map((l) => l.textContent));
    assert.deepEqual(shown, [missing]);
  });
});
