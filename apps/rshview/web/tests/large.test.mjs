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

/** The check box on the row of the parameter labelled `name` (the widget on the label's grid row). */
async function rowBox(page, name) {
  const path = await page.evaluate((n) => {
    const label = [...document.querySelectorAll('.param-label')].find((l) => l.textContent === n);
    const cell = [...(label?.parentElement.children || [])]
      .find((c) => c !== label && c.style.gridRow === label.style.gridRow && c.querySelector('input[type="checkbox"]'));
    return cell?.querySelector('input[type="checkbox"]').closest('[data-path]').dataset.path;
  }, name);
  assert.ok(path, `no check box on the row of ${name}`);
  return page.locator(`[data-path="${path}"] input[type="checkbox"]`).first();
}

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

test('the first draw is about a screen: nothing visible is a placeholder, most groups wait', async (t) => {
  await withPage(t, async (page) => {
    const { hidden, screens } = await page.evaluate(() => {
      const pane = document.querySelector('.editor-pane').getBoundingClientRect();
      const bodies = [...document.querySelectorAll('.expander-body')].map((b) => ({ deferred: b.classList.contains('deferred'), r: b.getBoundingClientRect() }));
      const drawnTo = Math.max(...bodies.filter((b) => !b.deferred).map((b) => b.r.bottom));
      return {
        hidden: bodies.filter((b) => b.deferred && b.r.top < pane.bottom && b.r.bottom > pane.top).length,
        screens: (drawnTo - pane.top) / pane.height,
      };
    });
    assert.equal(hidden, 0, 'a placeholder shows where rows should be');
    // The screen, the groups that scroll near first and the rest of the last group begun.
    assert.ok(screens < 3, `${screens.toFixed(1)} screens of rows drawn at once`);
  });
});

test('keyboard navigation into a group not drawn yet goes on into its rows', async (t) => {
  await withPage(t, async (page) => {
    const header = page.locator('.expander:has(> .expander-body.deferred) > .expander-header').last();
    const name = await header.evaluate((el) => el.closest('.expander').dataset.name);
    await header.focus();
    await page.keyboard.press('Tab');
    const inside = await page.evaluate(() => document.activeElement.closest('.expander')?.dataset.name);
    assert.equal(inside, name);
    assert.ok(await page.evaluate(() => !!document.activeElement.closest('.expander-body .w')));
  });
});

test('a write in another tab to a group not drawn yet shows once it is drawn', async (t) => {
  await withPage(t, async (page) => {
    await page.waitForFunction(() => document.body.dataset.stream === 'open');
    const drawn = new Set(await labels(page));
    // A check box parameter (every tenth from p3) that this tab has not drawn.
    const name = Array.from({ length: count }, (_, i) => `p${i}`).find((n, i) => i % 10 === 3 && !drawn.has(n));
    assert.ok(name, 'every check box was drawn at once');
    const other = await openPage(browser, server.url, { hash: '#big' });
    try {
      await other.fill('#param-filter', name);
      const box = await rowBox(other, name);
      const checked = await box.isChecked();
      await box.click();
      await other.waitForFunction(() => window.rshview.api.queue.length === 0 && window.rshview.api.pending === 0);
      await page.waitForFunction((n) => document.querySelector('#status').textContent.startsWith(`big.${n}:`), name, { timeout: 5000 });
      await page.waitForFunction(() => window.rshview.api.queue.length === 0 && window.rshview.api.pending === 0);
      // Bringing the editor up to date draws no group that waits to scroll near.
      assert.ok(await page.locator('.expander-body.deferred').count() > 0, 'the refresh drew every group');
      await page.fill('#param-filter', name);
      assert.equal(await (await rowBox(page, name)).isChecked(), !checked);
    } finally {
      await other.context().close();
    }
  });
});

test('a filter typed before the large node is chosen shows only its matches there', async (t) => {
  const page = await openPage(browser, server.url, { hash: '#small' });
  try {
    await withScreenshot(t, page, async () => {
      await page.fill('#param-filter', 'p397');
      await page.click('.node[data-node="big"]');
      await page.waitForFunction(() => [...document.querySelectorAll('.param-label')].some((l) => l.textContent === 'p397'));
      const shown = await page.$$eval('.param-label', (all) => all.filter((l) => l.offsetParent).map((l) => l.textContent));
      assert.deepEqual(shown, ['p397']);
      // No group waits with an empty body between the matches.
      assert.equal(await page.locator('.expander-body.deferred').count(), 0);
    });
    assert.deepEqual(page.consoleErrors, []);
  } finally {
    await page.context().close();
  }
});

/** Waits for two frames, so that the intersection observer has had its say. */
const frames = (page) => page.evaluate(() => new Promise((r) => requestAnimationFrame(() => requestAnimationFrame(r))));

test('a placeholder is about the height its group takes once drawn, and filling one above keeps the view still', async (t) => {
  await withPage(t, async (page) => {
    const placeholders = await page.$$eval('.expander-body.deferred', (all) => all.map((b) => [b.closest('.expander').dataset.path, b.getBoundingClientRect().height]));
    assert.ok(placeholders.length > 0);
    // Halfway down: the groups far above stay put off; one of them is drawn while a row shows.
    const moved = await page.evaluate(async () => {
      const pane = document.querySelector('.editor-pane');
      const frame = () => new Promise((r) => requestAnimationFrame(() => requestAnimationFrame(r)));
      pane.scrollTop = pane.scrollHeight / 2;
      const top = pane.getBoundingClientRect().top;
      const shown = (b) => b.getBoundingClientRect().bottom > top && b.getBoundingClientRect().top < top + pane.clientHeight;
      for (let i = 0; i < 50 && [...document.querySelectorAll('.expander-body.deferred')].some(shown); i++) await frame();
      const above = [...document.querySelectorAll('.expander-body.deferred')].filter((b) => b.getBoundingClientRect().bottom < top);
      const row = [...document.querySelectorAll('.param-label')].find((l) => l.getBoundingClientRect().top > top + 60);
      if (above.length === 0 || !row) return null;
      const before = row.getBoundingClientRect().top;
      window.rshview.view.fill(above[above.length - 1].closest('.expander'));
      await frame();
      return row.getBoundingClientRect().top - before;
    });
    assert.notEqual(moved, null, 'no group put off above the rows shown');
    assert.ok(Math.abs(moved) < 1, `the rows shown moved by ${moved} px`);
    await page.evaluate(() => window.rshview.view.fillAll());
    const drawn = new Map(await page.$$eval('.expander', (all) => all.map((g) => [g.dataset.path, g.querySelector('.expander-body').getBoundingClientRect().height])));
    for (const [path, height] of placeholders) {
      const ratio = drawn.get(path) / height;
      assert.ok(ratio > 0.9 && ratio < 1.1, `${path}: ${height} px put off, ${drawn.get(path)} px drawn`);
    }
  });
});

test('a narrow window scrolls the page, and the groups are then drawn as the page scrolls', async (t) => {
  await withPage(t, async (page) => {
    const waiting = await page.locator('.expander-body.deferred').count();
    await page.setViewportSize({ width: 760, height: 860 });
    await frames(page);
    assert.equal(await page.evaluate(() => document.scrollingElement.scrollHeight > window.innerHeight), true, 'the page does not scroll');
    assert.ok(await page.locator('.expander-body.deferred').count() >= waiting - 1, 'narrowing the window drew the groups waiting');
    // Scrolling the page, not the pane, fills what comes near, and no placeholder is left in view.
    await page.evaluate(() => window.scrollTo(0, document.scrollingElement.scrollHeight / 2));
    await page.waitForFunction(() => ![...document.querySelectorAll('.expander-body.deferred')].some((b) => {
      const r = b.getBoundingClientRect();
      return r.top < window.innerHeight && r.bottom > 0;
    }), null, { timeout: 5000 });
    assert.ok(await page.locator('.expander-body.deferred').count() > 0, 'every group was drawn');
  });
});

test('focusing a widget draws only the group put off that holds it; a path gone draws nothing', async (t) => {
  await withPage(t, async (page) => {
    // Counted at once after each call: the focus scrolls, and the groups it brings near follow.
    const focusing = (p) => page.evaluate((path) => {
      const count = () => document.querySelectorAll('.expander-body.deferred').length;
      const before = count();
      window.rshview.view.focusPath(path);
      return { drawn: before - count(), focused: !!document.activeElement.closest(`[data-path="${path}"]`) };
    }, p);
    const path = await page.evaluate(() => {
      // The value widget of a row of a group put off, its path filled in as drawing would.
      const { expand } = window.rshview.view;
      const grid = expand(document.querySelector('.expander:has(> .expander-body.deferred)')._w.children[0]);
      return grid.children.find((c) => /Scalar|Integral/.test(c.class)).path;
    });
    assert.deepEqual(await focusing(path), { drawn: 1, focused: true });
    // After a refresh the widget may be gone: nothing is drawn in search of it.
    const gone = path.replace(/ParameterWidget\d+/, 'ParameterWidget9999');
    assert.deepEqual(await focusing(gone), { drawn: 0, focused: false });
    assert.equal(await page.textContent('#status'), `${gone} is no longer in the editor`);
  });
});
