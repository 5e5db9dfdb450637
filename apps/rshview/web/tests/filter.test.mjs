// The parameter filter: a row it leaves out is hidden whole (its label and every control of it),
// also after the editor is patched by an event or refetched after another window's write.

import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { launchBrowser, openPage, startServer, withScreenshot } from './harness.mjs';

let browser;
let server;
before(async () => {
  [browser, server] = await Promise.all([launchBrowser(), startServer()]);
});
after(async () => {
  await browser?.close();
  await server?.stop();
});

/** The labels of the rows whose check box a person sees, in the editor shown. */
const seenBoxes = (page) => page.$$eval('#editor input[type="checkbox"]', (boxes) => boxes
  .filter((b) => b.getClientRects().length > 0 && getComputedStyle(b).visibility !== 'hidden')
  .map((b) => {
    let row = b.closest('[data-name]');
    while (row && !/^(ParameterWidget|parameterDialog)\d+$/.test(row.dataset.name)) row = row.parentElement.closest('[data-name]');
    const n = row ? /(\d+)$/.exec(row.dataset.name)[1] : null;
    const label = row && [...row.parentElement.children].find((c) => /^(Parameter|parameter)Label\d+$/.test(c.dataset.name || '') && c.dataset.name.endsWith(n) && /(\d+)$/.exec(c.dataset.name)[1] === n);
    return label ? label.textContent : `? ${b.closest('[data-path]').dataset.path}`;
  }).sort());

async function openAllGroups(page) {
  for (let i = 0; i < 10; i++) {
    const closed = page.locator('#editor .expander-header[aria-expanded="false"]:visible');
    if ((await closed.count()) === 0) return;
    await closed.first().click();
    await page.waitForFunction(() => window.rshview.api.queue.length === 0 && window.rshview.api.pending === 0);
  }
}

for (const kind of ['immersive', 'classic']) {
  test(`the ${kind} editor's filter hides the check boxes of the rows it leaves out`, async (t) => {
    const page = await openPage(browser, server.url, { hash: '#floor.tiles' });
    try {
      await withScreenshot(t, page, async () => {
        if (kind === 'classic') await page.click('.switch [data-kind="classic"]');
        await page.waitForSelector(`body[data-editor-kind="${kind}"][data-editor-node="floor.tiles"]`);
        await openAllGroups(page);
        const all = await seenBoxes(page);
        assert.ok(all.some((l) => l.includes('invert')) && all.some((l) => l.includes('flip')), all.join());
        await page.fill('#param-filter', 'flip');
        const flips = all.filter((l) => l.includes('flip'));
        assert.deepEqual(await seenBoxes(page), flips);
        // A toggle patches the editor; the rows left out stay hidden.
        await page.locator('#editor input[type="checkbox"]:visible').first().click();
        await page.waitForFunction(() => window.rshview.api.queue.length === 0 && window.rshview.api.pending === 0);
        assert.deepEqual(await seenBoxes(page), flips);
        // Another window's write: the editor is fetched again and patched in place.
        const revision = await page.evaluate(() => window.rshview.revision);
        const editor = await (await fetch(`${server.url}api/nodes/floor.tiles/editor?editor=${kind}`)).json();
        const paths = [];
        const walk = (w) => { if (/CheckBox|CheckButton/.test(w.class)) paths.push(w.path); (w.children || []).forEach(walk); };
        walk(editor.editor);
        const answer = await fetch(`${server.url}api/nodes/floor.tiles/events`, {
          method: 'POST', headers: { 'Content-Type': 'application/json' },
          body: JSON.stringify({ editor: kind, action: 'toggle', path: paths[paths.length - 1] }),
        });
        assert.equal(answer.status, 200);
        await page.waitForFunction((r) => window.rshview.revision > r, revision);
        await page.waitForTimeout(300);
        await page.waitForFunction(() => window.rshview.api.pending === 0);
        assert.deepEqual(await seenBoxes(page), flips);
        await page.fill('#param-filter', '');
        assert.deepEqual(await seenBoxes(page), all);
      });
      assert.deepEqual(page.consoleErrors, []);
    } finally {
      await page.context().close();
    }
  });
}
