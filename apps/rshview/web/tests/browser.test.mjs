// The page in Chromium against a real `rshview serve` on a copy of the sample. The tests share
// one server (so each reads the values it starts from rather than assuming the sample's), each
// with a fresh page; the test that stops its server has one of its own. A failing test leaves a
// screenshot in build/web-test-artifacts/.

import assert from 'node:assert/strict';
import { mkdirSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import {
  artifacts, canvasPixels, decodePng, differingPixels, launchBrowser, openPage, pixelsNear, readDoc,
  sampleCopy, startServer, withScreenshot,
} from './harness.mjs';

let browser;
let shared;
before(async () => {
  [browser, shared] = await Promise.all([launchBrowser(), startServer()]);
});
after(async () => {
  await browser?.close();
  await shared?.stop();
});

/** Runs a test with a fresh page on the shared server; closes the page afterwards. */
async function scenario(t, body, { hash = '' } = {}) {
  const page = await openPage(browser, shared.url, { hash });
  try {
    await withScreenshot(t, page, () => body({ page, server: shared }));
    assert.deepEqual(page.consoleErrors.filter((e) => !/status of 4\d\d/.test(e)), []);
  } finally {
    await page.context().close();
  }
}

/** Waits until every request of the page was answered. */
async function settled(page) {
  await page.waitForFunction(() => window.rshview.api.queue.length === 0 && window.rshview.api.pending === 0);
}

async function expandGroup(page, label) {
  const header = page.locator('.expander-header', { hasText: label }).first();
  if ((await header.getAttribute('aria-expanded')) !== 'true') {
    await header.click();
    await page.waitForFunction((text) => [...document.querySelectorAll('.expander-header')].some((h) => h.textContent.includes(text) && h.getAttribute('aria-expanded') === 'true'), label);
  }
}

/** The path of the widget matching `selector` in the row of the parameter labelled `label`. */
async function rowWidget(page, label, selector) {
  return page.evaluate(([text, sel]) => {
    const l = [...document.querySelectorAll('.param-label')].find((x) => x.textContent === text);
    if (!l) throw new Error(`no row '${text}'`);
    const n = /(\d+)$/.exec(l.dataset.name)[1];
    const widget = [...l.parentElement.children].find((c) => c.dataset.name === `ParameterWidget${n}` || c.dataset.name === `parameterDialog${n}`);
    const target = widget.matches(sel) ? widget : widget.querySelector(sel);
    return target.closest('[data-path]').dataset.path;
  }, [label, selector]);
}

const at = (path) => `[data-path="${path.replace(/"/g, '\\"')}"]`;

async function material(server, node) {
  const response = await fetch(`${server.url}api/nodes/${encodeURIComponent(node)}/material`);
  return response.json();
}

test('the sample opens, a node is picked from the list, both editors draw every class', async (t) => {
  await scenario(t, async ({ page }) => {
    assert.equal(await page.textContent('#node-title'), 'Red metallic paint');
    // An editor with nothing to show says so rather than leaving the pane blank.
    await page.click('.switch [data-kind="classic"]');
    await page.waitForSelector('body[data-editor-kind="classic"][data-editor-node="red_paint"]');
    assert.equal(await page.textContent('.editor-empty'), 'The classic editor of Red metallic paint shows no parameters.');
    await page.click('.node[data-node="floor"]');
    await page.waitForSelector('body[data-editor-node="floor"]');
    assert.equal(await page.textContent('#node-title'), 'Polished floor');
    for (const kind of ['classic', 'immersive']) {
      await page.click(`.switch [data-kind="${kind}"]`);
      await page.waitForSelector(`body[data-editor-kind="${kind}"][data-editor-node="floor"]`);
      // Every class of the sample's trees has its own renderer: nothing falls back to a box.
      assert.deepEqual(await page.$$eval('.unknown', (boxes) => boxes.map((b) => b.dataset.cls)), [], kind);
      assert.equal(await page.locator('.editor-empty').count(), 0, kind);
    }
    // Icons that no resource draws are glyphs, not requests that fail.
    assert.deepEqual(page.failedRequests, []);
    // The node filter keeps matches and the nodes above them.
    await page.fill('#node-filter', 'tiles');
    assert.deepEqual(await page.$$eval('.node', (rows) => rows.filter((r) => r.offsetParent).map((r) => r.dataset.node)), ['floor', 'floor.tiles']);
    // The parameter filter hides the rows whose label does not match.
    await expandGroup(page, 'Reflection');
    await page.fill('#param-filter', 'gloss');
    const shown = await page.$$eval('.param-label', (labels) => labels.filter((l) => l.offsetParent).map((l) => l.textContent));
    assert.ok(shown.length > 0 && shown.every((text) => text.includes('gloss')), shown.join());
  });
});

test('moving a slider writes the value and redraws the preview as rshview preview draws it', async (t) => {
  await scenario(t, async ({ page, server }) => {
    assert.equal(await page.evaluate(() => window.rshview.preview.mode), 'webgl');
    // The canvas shows what the server's own picture shows (same shading model).
    const png = decodePng(Buffer.from(await (await fetch(`${server.url}api/nodes/red_paint/preview.png?size=256`)).arrayBuffer()));
    const before = await canvasPixels(page);
    assert.ok(differingPixels(before, png.data, 3) < 256 * 256 * 0.01, 'canvas and preview.png differ');

    await expandGroup(page, 'Base coat');
    const sliderPath = await rowWidget(page, 'default_generic_brdf_diffuse_weight', '[data-cls="KEPVidCtlSlider"]');
    const editorPath = await rowWidget(page, 'default_generic_brdf_diffuse_weight', '[data-cls="KEPVidCtlEditor"]');
    const start = Number(await page.inputValue(at(editorPath)));
    const drawn = Number(await page.getAttribute('body', 'data-preview-drawn'));
    const box = await page.locator(at(sliderPath)).boundingBox();
    await page.mouse.move(box.x + box.width * 0.8, box.y + box.height / 2);
    await page.mouse.down();
    await page.mouse.move(box.x + box.width * 0.3, box.y + box.height / 2, { steps: 5 });
    await page.mouse.up();
    await settled(page);
    await page.waitForFunction((n) => Number(document.body.dataset.previewDrawn) > n, drawn);
    const value = Number(await page.inputValue(at(editorPath)));
    assert.ok(value > 0.2 && value < 0.45, `editor shows ${value}`);
    assert.match(await page.textContent('#status'), new RegExp(`red_paint\\.default_generic_brdf_diffuse_weight: ${start} → 0\\.[234]`));
    const after = await canvasPixels(page);
    assert.ok(differingPixels(before, after, 2) > 2000, 'the preview did not change');
    assert.ok(Math.abs((await material(server, 'red_paint')).lighting.diffuse.coefficient - value) < 1e-6);

    // Arrows move a focused slider by its step.
    await page.focus(at(sliderPath));
    await page.keyboard.press('End');
    await settled(page);
    await page.waitForFunction((p) => document.querySelector(p).value === '1', at(editorPath));

    mkdirSync(artifacts, { recursive: true });
    await expandGroup(page, 'Clear coat');
    await page.mouse.move(0, 0);
    await page.waitForTimeout(200); // the carets' turn
    await page.screenshot({ path: join(artifacts, 'rshview-serve.png') });
  });
});

test('a material that lights itself shows its texture at full strength, as rshview preview draws it', async (t) => {
  await scenario(t, async ({ page, server }) => {
    // The floor answers luminosity 1 and diffuse weight 0 with the checker image: its two texels
    // (230, 230, 220) and (40, 40, 48) show as they are, where the lit model drew near black.
    const answer = await material(server, 'floor');
    assert.equal(answer.lighting.luminosity.value, 1);
    assert.equal(answer.lighting.diffuse.coefficient, 0);
    assert.equal(await page.evaluate(() => window.rshview.preview.mode), 'webgl');
    await page.waitForSelector('body[data-preview-drawn]');
    const drawn = Number(await page.getAttribute('body', 'data-preview-drawn'));
    await page.click('.node[data-node="floor"]');
    await page.waitForFunction((n) => Number(document.body.dataset.previewDrawn) > n, drawn);
    const light = [230, 230, 220], dark = [40, 40, 48];
    let pixels = await canvasPixels(page);
    for (let i = 0; i < 50 && pixelsNear(pixels, light, 2) < 20000; i++) {
      await page.waitForTimeout(100); // a draw of the node shown before may have been counted
      pixels = await canvasPixels(page);
    }
    const sphere = 256 * 256 - pixelsNear(pixels, [128, 128, 128], 0);
    const [lit, shadowed] = [pixelsNear(pixels, light, 2), pixelsNear(pixels, dark, 2)];
    assert.ok(lit > sphere / 2 && shadowed > 1000, `light texels ${lit}, dark ${shadowed} of ${sphere}`);
    assert.ok(lit + shadowed > sphere * 0.99, `${sphere - lit - shadowed} pixels are neither texel`);
    const png = decodePng(Buffer.from(await (await fetch(`${server.url}api/nodes/floor/preview.png?size=256`)).arrayBuffer()));
    assert.ok(differingPixels(pixels, png.data, 3) < 256 * 256 * 0.01, 'canvas and preview.png differ');
  });
});

test('a double-click or Ctrl-click on a label sets its parameter back to the default', async (t) => {
  await scenario(t, async ({ page }) => {
    const gloss = 'default_generic_brdf_diffuse_glossiness';
    await expandGroup(page, 'Base coat');
    const sliderPath = await rowWidget(page, gloss, '[data-cls="KEPVidCtlSlider"]');
    const editorPath = await rowWidget(page, gloss, '[data-cls="KEPVidCtlEditor"]');
    const box = await page.locator(at(sliderPath)).boundingBox();
    await page.mouse.click(box.x + box.width * 0.9, box.y + box.height / 2);
    await settled(page);
    await page.waitForFunction((p) => Number(document.querySelector(p).value) > 0.5, at(editorPath));

    const label = page.locator('.param-label', { hasText: gloss }).first();
    await label.dblclick();
    await settled(page);
    await page.waitForFunction((p) => document.querySelector(p).value === '0.2', at(editorPath));
    assert.match(await page.textContent('#status'), new RegExp(`red_paint\\.${gloss}: 0\\.\\d+ → 0\\.2 \\(default\\)`));
    // Again: nothing to write, and the status says so.
    await label.click({ modifiers: ['Control'] });
    await settled(page);
    await page.waitForFunction(() => /at its default already/.test(document.getElementById('status').textContent));

    // The classic editor names its labels by parameter position, not by row.
    await page.click('.node[data-node="window"]');
    await page.click('.switch [data-kind="classic"]');
    await page.waitForSelector('body[data-editor-kind="classic"][data-editor-node="window"]');
    const before = await page.textContent('#status');
    await page.locator('.param-label', { hasText: /^roughness$/ }).first().click({ modifiers: ['Control'] });
    await settled(page);
    await page.waitForFunction((s) => document.getElementById('status').textContent !== s, before);
    assert.match(await page.textContent('#status'), /^window\.roughness: 0\.45 → 0\.3 \(default\)$/);
    await page.click('.switch [data-kind="immersive"]');
  });
});

test('a reset from a label takes the parameter shown beside it, once, and never a locked one', async (t) => {
  await scenario(t, async ({ page }) => {
    const resets = [];
    page.on('request', (r) => { if (r.url().endsWith('/reset')) resets.push(r.postDataJSON()); });
    // Ctrl+double-click: the Ctrl-click resets, the double-click that completes it does not again.
    await expandGroup(page, 'Base coat');
    const gloss = 'default_generic_brdf_diffuse_glossiness';
    const editorPath = await rowWidget(page, gloss, '[data-cls="KEPVidCtlEditor"]');
    await page.fill(at(editorPath), '0.55');
    await page.press(at(editorPath), 'Enter');
    await settled(page);
    resets.length = 0;
    await page.locator('.param-label', { hasText: gloss }).first().dblclick({ modifiers: ['Control'] });
    await settled(page);
    await page.waitForFunction((p) => document.querySelector(p).value === '0.2', at(editorPath));
    assert.equal(resets.length, 1, JSON.stringify(resets));
    assert.match(await page.textContent('#status'), /0\.55 → 0\.2 \(default\)$/);

    // The classic editor's "edit" shows the floor's tiles in the same frame, under the labels of
    // the floor's rows: the third label is now the tiles' gamma.
    await page.click('.node[data-node="floor"]');
    await page.click('.switch [data-kind="classic"]');
    await page.waitForSelector('body[data-editor-kind="classic"][data-editor-node="floor"]');
    try {
      await page.evaluate(() => window.rshview.view.ctx.send('press', 'connectionMenu14/editItem'));
      await page.waitForFunction(() => [...document.querySelectorAll('.param-label')].some((l) => l.textContent === 'gamma'));
      await page.locator('.param-label', { hasText: /^gamma$/ }).first().click({ modifiers: ['Control'] });
      await settled(page);
      await page.waitForFunction(() => /gamma/.test(document.getElementById('status').textContent));
      assert.match(await page.textContent('#status'), /^floor\.tiles\.gamma: (1\.8 → 2\.2 \(default\)|.* at its default already)$/);
    } finally {
      await page.evaluate(() => window.rshview.view.ctx.send('press', 'parentButton'));
      await settled(page);
      await page.click('.switch [data-kind="immersive"]');
    }

    // The restricted layout locks the type's widget: its label does not reset it.
    await page.click('.node[data-node="red_paint"]');
    await page.waitForSelector('body[data-editor-kind="immersive"][data-editor-node="red_paint"]');
    const answer = await page.evaluate(async () => {
      const r = await fetch('/api/nodes/red_paint/reset', {
        method: 'POST',
        headers: { 'Content-Type': 'application/json' },
        body: JSON.stringify({ restricted: true, path: 'ParameterGroup3/ParameterGroup3Layout/ParameterLabel11' }),
      });
      return { status: r.status, body: await r.json() };
    });
    assert.equal(answer.status, 422);
    assert.equal(answer.body.error, 'locked parameter');
  });
});

test('a classic angle wheel steps in radians held and shows degrees, from a value of 0 too', async (t) => {
  await scenario(t, async ({ page }) => {
    await page.click('.node[data-node="red_paint.decal"]');
    await page.click('.switch [data-kind="classic"]');
    await page.waitForSelector('body[data-editor-kind="classic"][data-editor-node="red_paint.decal"]');
    const wheel = await rowWidget(page, '_uv_angle', '[role="slider"]');
    assert.match(await page.textContent(`${at(wheel)} .slider-text`), /^0\.0000 deg$/);
    try {
      // One step of the wheel is one held unit: a radian, shown as 57.3 degrees.
      await page.focus(`${at(wheel)} [role="slider"]`);
      await page.press(`${at(wheel)} [role="slider"]`, 'ArrowRight');
      await page.waitForFunction(() => /_uv_angle/.test(document.getElementById('status').textContent));
      await settled(page);
      assert.match(await page.textContent('#status'), /red_paint\.decal\._uv_angle: 0 → 1$/);
      assert.match(await page.textContent(`${at(wheel)} .slider-text`), /^57\.295\d deg$/);
    } finally {
      await page.evaluate((path) => window.rshview.view.ctx.send('set', path, '0'), wheel.replace(/\/?$/, ''));
      await settled(page);
      await page.click('.switch [data-kind="immersive"]');
    }
  });
});

test('typed text in a number field is where the arrow keys step from, and quick presses add up', async (t) => {
  await scenario(t, async ({ page }) => {
    await expandGroup(page, 'Mapping');
    const input = `${at(await rowWidget(page, 'scale_v', '.spinbox'))} input`;
    const before = await page.inputValue(input);
    try {
      await page.fill(input, '150');
      await page.press(input, 'ArrowUp');
      await settled(page);
      assert.match(await page.textContent('#status'), /scale_v: [\d.]+ → 151$/);
      assert.equal(Number(await page.inputValue(input)), 151);
      for (let i = 0; i < 5; i++) await page.keyboard.press('ArrowUp');
      await settled(page);
      await page.waitForFunction((sel) => Number(document.querySelector(sel).value) === 156, input);
      assert.match(await page.textContent('#status'), /scale_v: 155 → 156$/);
      // Leaving the field sends nothing more.
      const status = await page.textContent('#status');
      await page.click('#node-title');
      await settled(page);
      assert.equal(await page.textContent('#status'), status);
    } finally {
      await page.fill(input, before);
      await page.press(input, 'Enter');
      await settled(page);
    }
  });
});

test('a connection made in one tab shows in the other tab\'s node list and editors', async (t) => {
  const own = await startServer();
  const pages = [];
  try {
    const page = await openPage(browser, own.url, { hash: '#floor' });
    const other = await openPage(browser, own.url, { hash: '#red_paint' });
    pages.push(page, other);
    await withScreenshot(t, page, async () => {
      await Promise.all([page, other].map((p) => p.waitForFunction(() => document.body.dataset.stream === 'open')));
      // A write to the tiles, held by the floor but also connected to the paint's flakes, is
      // fetched again by a tab showing the paint.
      const fetches = [];
      other.on('request', (r) => { if (/\/api\/nodes\/red_paint\/editor/.test(r.url())) fetches.push(r.url()); });
      await settled(other);
      const written = await page.evaluate(async () => {
        const r = await fetch('/api/nodes/floor.tiles/reset', {
          method: 'POST',
          headers: { 'Content-Type': 'application/json', 'X-Rshview-Client': 'someone-else' },
          body: JSON.stringify({ parameter: 'gamma' }),
        });
        return (await r.json()).writes.length;
      });
      assert.equal(written, 1);
      await other.waitForFunction(() => /floor\.tiles\.gamma: .* \(another window\)/.test(document.getElementById('status').textContent));
      for (const end = Date.now() + 3000; fetches.length === 0 && Date.now() < end;) await new Promise((r) => setTimeout(r, 50));
      assert.equal(fetches.length, 1, 'the paint tab fetched its editor again');

      await expandGroup(page, 'Reflection');
      await page.click('[data-name="ParameterConnection6"]');
      await settled(page);
      await page.waitForSelector('.node[data-node="kep_phen_texture.1"]', { timeout: 5000 });
      assert.match(await page.textContent('#status'), /floor\.refl_color: connected none → kep_phen_texture\.1/);
      await other.waitForSelector('.node[data-node="kep_phen_texture.1"]', { timeout: 5000 });
      assert.match(await other.textContent('#status'), /floor\.refl_color: connected none → kep_phen_texture\.1 \(another window\)/);
    });
  } finally {
    for (const p of pages) await p.context().close();
    await own.stop();
  }
});

test('a value typed out of range is refused and the field shows the value again', async (t) => {
  await scenario(t, async ({ page, server }) => {
    await expandGroup(page, 'Base coat');
    const editorPath = await rowWidget(page, 'default_generic_brdf_diffuse_weight', '[data-cls="KEPVidCtlEditor"]');
    const status = await page.textContent('#status');
    const shown = await page.inputValue(at(editorPath));
    const held = (await material(server, 'red_paint')).lighting.diffuse.coefficient;
    for (const typed of ['5', '-0.5']) {
      await page.fill(at(editorPath), typed);
      await page.press(at(editorPath), 'Enter');
      await settled(page);
      await page.waitForFunction(([p, v]) => document.querySelector(p).value === v, [at(editorPath), shown]);
      assert.match(await page.textContent('#error'), new RegExp(`'${typed}' was not taken \\(Value ranges from 0\\.00 to 1\\.00\\)`));
    }
    assert.equal(await page.textContent('#status'), status, 'no write was reported');
    assert.equal((await material(server, 'red_paint')).lighting.diffuse.coefficient, held);
    // A value in range is taken, and the message goes.
    await page.fill(at(editorPath), '0.5');
    await page.press(at(editorPath), 'Enter');
    await settled(page);
    assert.equal(await page.textContent('#error'), '');
    assert.equal((await material(server, 'red_paint')).lighting.diffuse.coefficient, 0.5);
  });
});

test('a spin box steps with the arrow keys and refuses text that is not a number in its unit', async (t) => {
  await scenario(t, async ({ page }) => {
    await expandGroup(page, 'Mapping');
    const input = `${at(await rowWidget(page, 'scale_v', '.spinbox'))} input`;
    const value = async () => Number(await page.inputValue(input));
    const before = await value();
    try {
      await page.press(input, 'ArrowUp');
      await settled(page);
      await page.waitForFunction(([sel, v]) => Number(document.querySelector(sel).value) > v, [input, before]);
      const up = await value();
      await page.press(input, 'Shift+ArrowDown');
      await settled(page);
      await page.waitForFunction(([sel, v]) => Number(document.querySelector(sel).value) < v, [input, up]);
      assert.ok(Math.abs((up - before) * 10 - (up - (await value()))) < 1e-6, 'Shift steps ten times as far');
      const shown = await page.inputValue(input);
      const status = await page.textContent('#status');
      // Text that is not a number alone or in the field's own unit (mm) is refused, not cut short.
      for (const typed of ['abc', '12 cm', '12 mm and more']) {
        await page.fill(input, typed);
        await page.press(input, 'Enter');
        await settled(page);
        assert.match(await page.textContent('#error'), new RegExp(`'${typed}' is not a number in mm`));
        assert.equal(await page.inputValue(input), shown);
        assert.equal(await page.textContent('#status'), status, 'nothing was written');
      }
      await page.fill(input, ' 12 mm ');
      await page.press(input, 'Enter');
      await settled(page);
      assert.match(await page.textContent('#status'), /scale_v: [\d.]+ → 12$/);
    } finally {
      // The tests share one server: the value goes back to what it was.
      await page.fill(input, String(before));
      await page.press(input, 'Enter');
      await settled(page);
    }
  });
});

test('changing the length unit converts the values shown', async (t) => {
  await scenario(t, async ({ page }) => {
    await expandGroup(page, 'Mapping');
    const spinPath = await rowWidget(page, 'scale_v', '.spinbox');
    const shown = async () => [await page.inputValue(`${at(spinPath)} input`), await page.textContent(`${at(spinPath)} .suffix`)];
    assert.deepEqual(await shown(), ['100.00', 'mm']);
    try {
      await page.selectOption('#unit-length', 'cm');
      await page.waitForFunction((p) => document.querySelector(`${p} .suffix`)?.textContent === 'cm', at(spinPath));
      assert.deepEqual(await shown(), ['10.00', 'cm']);
      // A value typed in the unit shown is written in the document's unit.
      await page.fill(`${at(spinPath)} input`, '2.5');
      await page.press(`${at(spinPath)} input`, 'Enter');
      await settled(page);
      assert.match(await page.textContent('#status'), /scale_v: 100 → 25$/);
      assert.deepEqual(await shown(), ['2.50', 'cm']);
    } finally {
      await page.selectOption('#unit-length', 'mm');
      await settled(page);
    }
  });
});

test('a group collapsed stays collapsed after a reload', async (t) => {
  await scenario(t, async ({ page }) => {
    const state = () => page.locator('.expander-header', { hasText: 'Clear coat' }).first().getAttribute('aria-expanded');
    await expandGroup(page, 'Clear coat');
    await page.reload();
    await page.waitForSelector('body[data-ready="true"]');
    assert.equal(await state(), 'true');
    await page.locator('.expander-header', { hasText: 'Clear coat' }).first().click();
    await settled(page);
    await page.reload();
    await page.waitForSelector('body[data-ready="true"]');
    assert.equal(await state(), 'false');
  });
});

test('two tabs stay in step: a write in one shows in the other', async (t) => {
  await scenario(t, async ({ page, server }) => {
    const other = await openPage(browser, server.url);
    try {
      await other.waitForFunction(() => document.body.dataset.stream === 'open');
      await expandGroup(page, 'Base coat');
      const editorPath = await rowWidget(page, 'default_generic_brdf_diffuse_weight', '[data-cls="KEPVidCtlEditor"]');
      await page.fill(at(editorPath), '0.35');
      await page.press(at(editorPath), 'Enter');
      await settled(page);
      await other.waitForFunction((p) => document.querySelector(p)?.value === '0.35', at(editorPath), { timeout: 5000 });
      assert.match(await other.textContent('#status'), /diffuse_weight: [\d.]+ → 0\.35 \(another window\)/);
    } finally {
      await other.context().close();
    }
  });
});

test('each tab walks the classic editor on its own, and a change made on an editor built since is refused', async (t) => {
  await scenario(t, async ({ page, server }) => {
    const other = await openPage(browser, server.url, { hash: '#floor' });
    const classicFloor = async (p) => {
      await p.click('.node[data-node="floor"]');
      await p.click('.switch [data-kind="classic"]');
      await p.waitForSelector('body[data-editor-kind="classic"][data-editor-node="floor"]');
    };
    try {
      await classicFloor(page);
      await classicFloor(other);
      // This tab shows the floor's tiles in its frame; the other still shows the floor.
      await page.evaluate(() => window.rshview.view.ctx.send('press', 'connectionMenu14/editItem'));
      await page.waitForFunction(() => [...document.querySelectorAll('.param-label')].some((l) => l.textContent === 'gamma'));
      await other.locator('.param-label[data-name="parameterLabel3"]').click({ modifiers: ['Control'] });
      await settled(other);
      await other.waitForFunction(() => /^floor\./.test(document.getElementById('status').textContent));
      assert.doesNotMatch(await other.textContent('#status'), /tiles/);

      // An editor that shows other things than the page drew (here: a view the page never had)
      // refuses the change; the page draws it afresh and says so.
      const writes = await other.evaluate(() => window.rshview.revision);
      await other.evaluate(() => { window.rshview.editorView = 'earlier.1'; });
      await other.locator('.param-label[data-name="parameterLabel3"]').click({ modifiers: ['Control'] });
      await other.waitForFunction(() => /had changed on the server/.test(document.getElementById('error').textContent));
      await settled(other);
      assert.notEqual(await other.evaluate(() => window.rshview.editorView), 'earlier.1');
      assert.equal(await other.evaluate(() => window.rshview.revision), writes);
    } finally {
      await page.evaluate(() => window.rshview.view.ctx.send('press', 'parentButton'));
      await settled(page);
      await page.click('.switch [data-kind="immersive"]');
      await other.click('.switch [data-kind="immersive"]');
      await other.context().close();
    }
  });
});

test('a write in another tab keeps the text being typed in a field of this tab', async (t) => {
  await scenario(t, async ({ page, server }) => {
    // The group's collapse state is kept in the preferences: the second tab opens with it expanded.
    await expandGroup(page, 'Base coat');
    await page.waitForFunction(() => document.body.dataset.stream === 'open');
    const other = await openPage(browser, server.url);
    try {
      await expandGroup(other, 'Base coat');
      const typing = await rowWidget(page, 'default_generic_brdf_diffuse_weight', '[data-cls="KEPVidCtlEditor"]');
      const written = await rowWidget(other, 'default_generic_brdf_diffuse_glossiness', '[data-cls="KEPVidCtlEditor"]');
      // Typed, not sent yet (no Enter, the field keeps the focus).
      await page.fill(at(typing), '0.777');
      const value = (await other.inputValue(at(written))) === '0.45' ? '0.55' : '0.45';
      await other.fill(at(written), value);
      await other.press(at(written), 'Enter');
      await settled(other);
      // This tab redraws the editor with the other tab's value...
      await page.waitForFunction(([p, v]) => document.querySelector(p)?.value === v, [at(written), value], { timeout: 5000 });
      // ...and the field being typed in keeps its text and the focus; Enter then sends it.
      assert.notEqual((await material(server, 'red_paint')).lighting.diffuse.coefficient, 0.777, 'not sent yet');
      assert.equal(await page.inputValue(at(typing)), '0.777');
      assert.ok(await page.evaluate((p) => document.activeElement === document.querySelector(p), at(typing)));
      await page.press(at(typing), 'Enter');
      await settled(page);
      assert.ok(Math.abs((await material(server, 'red_paint')).lighting.diffuse.coefficient - 0.777) < 1e-6);
      // Escape after a redraw goes back to the value the server shows now, not the old one.
      await page.fill(at(written), '0.9');
      await other.fill(at(written), '0.66');
      await other.press(at(written), 'Enter');
      await settled(other);
      await page.waitForFunction(() => /another window/.test(document.getElementById('status').textContent) && window.rshview.api.pending === 0);
      await page.waitForFunction((p) => document.querySelector(p)?._shown === '0.66', at(written), { timeout: 5000 });
      assert.equal(await page.inputValue(at(written)), '0.9');
      await page.press(at(written), 'Escape');
      assert.equal(await page.inputValue(at(written)), '0.66');
    } finally {
      await other.context().close();
    }
  });
});

test('Save writes the document and the value is in the file', async (t) => {
  await scenario(t, async ({ page, server }) => {
    await expandGroup(page, 'Base coat');
    const editorPath = await rowWidget(page, 'default_generic_brdf_diffuse_glossiness', '[data-cls="KEPVidCtlEditor"]');
    await page.fill(at(editorPath), '0.42');
    await page.press(at(editorPath), 'Enter');
    await settled(page);
    assert.equal(await page.textContent('#doc-saved'), 'modified');
    await page.click('#save');
    await page.waitForFunction(() => /^Saved /.test(document.getElementById('status').textContent));
    assert.equal(await page.textContent('#doc-saved'), 'saved');
    const doc = readDoc(server.doc);
    const red = doc.materials.find((m) => m.id === 'red_paint');
    assert.ok(Math.abs(red.values.default_generic_brdf_diffuse_glossiness - 0.42) < 1e-6);
  });
});

test('the colour popup opens from its button and Escape closes it', async (t) => {
  await scenario(t, async ({ page, server }) => {
    await expandGroup(page, 'Base coat');
    const buttonPath = await rowWidget(page, 'default_slot_diffuse_color', '[data-name="AmbientColor"]');
    await page.click(at(buttonPath));
    await page.waitForSelector('.popup.open');
    // A palette colour is sent to the picker and written.
    await page.click('.popup.open .palette:not(.recent) .swatch-button[title="#0000ff"]');
    await settled(page);
    assert.deepEqual((await material(server, 'red_paint')).lighting.diffuse.color, [0, 0, 1]);
    await page.focus('.popup.open');
    await page.keyboard.press('Escape');
    await settled(page);
    await page.waitForSelector('.popup.open', { state: 'detached', timeout: 5000 }).catch(async () => {
      assert.equal(await page.locator('.popup.open').count(), 0);
    });
  });
});

test('bad requests are answered 4xx with the server\'s message, shown as it is', async (t) => {
  await scenario(t, async ({ page, server }) => {
    const call = (path, init = {}) => fetch(server.url + path, init).then(async (r) => [r.status, (await r.json().catch(() => ({}))).error]);
    const json = { 'Content-Type': 'application/json' };
    const cases = [
      ['api/nodes/red_paint/events', { method: 'POST', headers: json, body: '{"action": ' }, 400, 'malformed JSON'],
      ['api/nodes/red_paint/events', { method: 'POST', headers: json, body: '{"colour": 1}' }, 400, 'bad request'],
      ['api/nodes/red_paint/events', { method: 'POST', headers: { 'Content-Type': 'text/plain' }, body: '{}' }, 415, 'unsupported media type'],
      ['api/nodes/red_paint/events', { method: 'POST', headers: json, body: '{"action": "press", "path": "nope"}' }, 422, 'refused event'],
      ['api/nodes/nope/editor', {}, 404, 'unknown node'],
      ['api/nope', {}, 404, 'not found'],
      ['api/save', { method: 'DELETE' }, 405, 'method not allowed'],
    ];
    for (const [path, init, status, error] of cases) assert.deepEqual(await call(path, init), [status, error], `${init.method || 'GET'} ${path}`);
    // Through the page: a refused event shows the server's own message.
    await page.evaluate(() => window.rshview.view.ctx.send('press', 'ParameterGroup0/nothing'));
    await settled(page);
    assert.match(await page.textContent('#error'), /refused event: .*nothing/);
  });
});

test('when the server goes away the page says so, keeps what was typed and sends it later', async (t) => {
  const copy = sampleCopy();
  let server = await startServer(copy);
  const page = await openPage(browser, server.url);
  try {
    await withScreenshot(t, page, async () => {
      await expandGroup(page, 'Base coat');
      const editorPath = await rowWidget(page, 'default_generic_brdf_diffuse_weight', '[data-cls="KEPVidCtlEditor"]');
      await server.stop();
      await page.fill(at(editorPath), '0.25');
      await page.press(at(editorPath), 'Enter');
      await page.waitForSelector('#banner:not([hidden])');
      assert.match(await page.textContent('#banner-text'), /1 change waiting/);
      const port = new URL(server.url).port;
      server = await startServer({ ...copy, port });
      await page.click('#banner-retry');
      await page.waitForSelector('#banner', { state: 'hidden', timeout: 10000 });
      await settled(page);
      assert.ok(Math.abs((await material(server, 'red_paint')).lighting.diffuse.coefficient - 0.25) < 1e-6);
    });
  } finally {
    await page.context().close();
    await server.stop();
  }
});

test('after the server restarts, the tab reads the document of the new run and shows where the unsaved changes went', async (t) => {
  const copy = sampleCopy();
  let server = await startServer(copy);
  const page = await openPage(browser, server.url);
  try {
    await withScreenshot(t, page, async () => {
      await page.waitForFunction(() => document.body.dataset.stream === 'open');
      await expandGroup(page, 'Base coat');
      const path = await rowWidget(page, 'default_generic_brdf_diffuse_weight', '[data-cls="KEPVidCtlEditor"]');
      const original = await page.inputValue(at(path));
      const instance = await page.evaluate(() => window.rshview.instance);
      assert.match(instance, /^[0-9a-f]{16}$/);
      // Two writes, not saved: the next run starts from the file, at revision 0.
      for (const typed of ['0.31', '0.32']) {
        await page.fill(at(path), typed);
        await page.press(at(path), 'Enter');
        await settled(page);
      }
      assert.equal(await page.evaluate(() => window.rshview.revision), 2);
      const port = new URL(server.url).port;
      await server.stop();
      server = await startServer({ ...copy, port });
      await page.waitForFunction(([p, v]) => document.querySelector(p)?.value === v, [at(path), original], { timeout: 20000 });
      // The editor may be read again (a retry) before the event stream's hello names the new run.
      // The stop kept the two writes beside the document, and the page says where.
      const recovery = copy.doc.replace(/showroom\.rshdoc\.json$/, 'showroom.unsaved.rshdoc.json');
      const kept = readDoc(recovery).materials.find((m) => m.id === 'red_paint').values.default_generic_brdf_diffuse_weight;
      assert.ok(Math.abs(kept - 0.32) < 1e-6, String(kept));
      await page.waitForFunction((file) => document.querySelector('#status').textContent.includes(`The server restarted: the document was read again; changes not saved when the server stopped are in ${file}`), recovery, { timeout: 20000 });
      assert.notEqual(await page.evaluate(() => window.rshview.instance), instance);
      await page.waitForSelector('#recovery:not([hidden])');
      const text = await page.textContent('#recovery-text');
      assert.ok(text.includes(`are in ${recovery}.`), text);
      assert.ok(text.includes(`rshview serve --port 0 --doc ${recovery}`), text);
      assert.ok(text.includes("stop this server first"), text);
      assert.ok(text.includes(`mv ${recovery} ${copy.doc}`), text);
      // It does not look like the banner of a server that does not answer.
      const colours = await page.evaluate(() => ['recovery', 'banner'].map((id) => {
        const el = document.getElementById(id);
        el.hidden = false;
        const colour = getComputedStyle(el).backgroundColor;
        el.hidden = id === 'banner';
        return colour;
      }));
      assert.notEqual(colours[0], colours[1]);
      mkdirSync(artifacts, { recursive: true });
      await page.screenshot({ path: join(artifacts, 'rshview-recovery.png') });
      // Closed, it stays closed for that file, after a reload too.
      await page.click('#recovery-close');
      assert.equal(await page.isHidden('#recovery'), true);
      await page.reload();
      await page.waitForSelector('body[data-ready="true"]');
      assert.equal(await page.isHidden('#recovery'), true);
    });
  } finally {
    await page.context().close();
    await server.stop();
  }
});
