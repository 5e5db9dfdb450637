#!/usr/bin/env node
// How long the browser front-end takes to draw a large editor: generates a library with a node
// type of 1,000 parameters of every kind (as bench/immersive_editor.cpp's mixed node: sliders,
// combos, spinners, check boxes, colours, vectors, textures, slots; 32 groups, all open), serves
// it with `rshview serve`, and measures in Chromium the time from selecting the node in the list
// until its editor is drawn (the first time, when the server builds the editor, and again).
//   node bench/serve_draw.mjs [--count 1000] [--runs 5]
// Needs build/release/bin/rshview, apps/rshview/web built (scripts/build-web.sh) and Chromium.

import { mkdtempSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

const web = new URL('../apps/rshview/web/tests/harness.mjs', import.meta.url);
const { launchBrowser, openPage, startServer } = await import(web.href);
const { generateLargeDocument } = await import(new URL('../apps/rshview/web/tests/large-document.mjs', import.meta.url).href);

const args = process.argv.slice(2);
const option = (name, fallback) => (args.includes(name) ? Number(args[args.indexOf(name) + 1]) : fallback);
const count = option('--count', 1000);
const runs = option('--runs', 5);
const groups = 32;

const dir = mkdtempSync(join(tmpdir(), 'rshview-serve-bench-'));
const doc = generateLargeDocument(dir, count, groups);
const server = await startServer({ doc, dir, prefs: join(dir, 'preferences.json') });
const browser = await launchBrowser();
try {
  const page = await openPage(browser, server.url, { hash: '#small' });
  const drawOnce = (node) => page.evaluate(async (id) => {
    const started = performance.now();
    document.querySelector(`.node[data-node="${id}"]`).click();
    await new Promise((resolve) => {
      const check = () => (document.body.dataset.editorNode === id ? requestAnimationFrame(() => setTimeout(resolve, 0)) : requestAnimationFrame(check));
      check();
    });
    return { ms: performance.now() - started, widgets: document.querySelectorAll('#editor .w').length };
  }, node);
  const first = await drawOnce('big');
  const again = [];
  for (let i = 0; i < runs; i++) {
    await drawOnce('small');
    again.push((await drawOnce('big')).ms);
  }
  again.sort((a, b) => a - b);
  const median = again[Math.floor(again.length / 2)];
  console.log(`serve_draw: node of ${count} parameters, ${first.widgets} widgets drawn`);
  console.log(`  first selection (server builds the editor): ${first.ms.toFixed(0)} ms`);
  console.log(`  later selections, median of ${runs}: ${median.toFixed(0)} ms (min ${again[0].toFixed(0)}, max ${again[again.length - 1].toFixed(0)}; target <= 200 ms)`);
} finally {
  await browser.close();
  await server.stop();
}
