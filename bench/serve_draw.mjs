#!/usr/bin/env node
// How long the browser front-end takes to draw a large editor: generates a library with a node
// type of 1,000 parameters of every kind (as bench/immersive_editor.cpp's mixed node: sliders,
// combos, spinners, check boxes, colours, vectors, textures, slots; 32 groups, all open), serves
// it with `rshview serve`, and measures in Chromium the time from selecting the node in the list
// until its editor is drawn (the first time, when the server builds the editor, and again).
//   node bench/serve_draw.mjs [--count 1000] [--runs 5]
// Needs build/release/bin/rshview, apps/rshview/web built (scripts/build-web.sh) and Chromium.

import { mkdirSync, mkdtempSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

const web = new URL('../apps/rshview/web/tests/harness.mjs', import.meta.url);
const { launchBrowser, openPage, startServer } = await import(web.href);

const args = process.argv.slice(2);
const option = (name, fallback) => (args.includes(name) ? Number(args[args.indexOf(name) + 1]) : fallback);
const count = option('--count', 1000);
const runs = option('--runs', 5);
const groups = 32;

/** One parameter of kind `slot` (0..9): its library entry and its configuration lines. */
function parameter(name, slot) {
  const cfg = (entries) => Object.entries(entries).map(([k, v]) => `${name}.${k} = ${v}`);
  switch (slot) {
    case 0: return [{ name, type: 'KEPRmaScalar', default: 0.5 }, cfg({ Min: 0, Max: 10, Step: 0.01, Widget: 'slider' })];
    case 1: return [{ name, type: 'KEPRmaInteger', default: 1 }, cfg({ Min: 0, Max: 2, Widget: 'combo', Enum0: 'Draft', Enum1: 'Medium', Enum2: 'High', ComboConfiguration: '0:Draft;1:Medium;2:High' })];
    case 2: return [{ name, type: 'KEPRmaInteger', default: 8 }, cfg({ Min: 1, Max: 64, Widget: 'spinner' })];
    case 3: return [{ name, type: 'KEPRmaBoolean', default: true }, []];
    case 4: return [{ name, type: 'KEPRmaColor', default: [0.8, 0.4, 0.2, 1] }, cfg({ Widget: 'color' })];
    case 5: return [{ name, type: 'KEPRmaScalar', default: 0.5 }, cfg({ Widget: 'spinner', Min: 0, Max: 1, Step: 0.01, Unit: 'mm', Magnitude: 'length' })];
    case 6: return [{ name, type: 'KEPRmaVector', default: [10, 20, 30] }, cfg({ Widget: 'sliderx3', Min: -1000, Max: 1000, Unit: 'cm' })];
    case 7: return [{ name, type: 'KEPRmaVector', default: [1, 0, 0] }, []];
    case 8: return [{ name, type: 'KEPRmaTexture', default: null }, []];
    default: return [{ name, type: 'KEPRmaVoid' }, []];
  }
}

function generate(dir) {
  const library = join(dir, 'library');
  mkdirSync(join(library, 'config'), { recursive: true });
  const lines = [`GroupCount = ${groups}`, 'GlobalShaderSortingOrder.Status = yes'];
  for (let g = 0; g < groups; g++) lines.push(`Group${g}.Name = Group ${g}`, `Group${g}.Order = ${groups - g}`, `Group${g}.CollapsedByDefault = no`);
  const parameters = [];
  for (let i = 0; i < count; i++) {
    const [entry, cfg] = parameter(`p${i}`, i % 10);
    parameters.push(entry);
    lines.push(`p${i}.Group = Group${i % groups}`, `p${i}.SortingOrder = ${count - i}`, ...cfg);
  }
  writeFileSync(join(library, 'config', 'bench_mixed.cfg'), `${lines.join('\n')}\n`);
  writeFileSync(join(library, 'config', 'bench_small.cfg'), 'x.Widget = slider\nx.Min = 0\nx.Max = 1\n');
  writeFileSync(join(library, 'library.json'), JSON.stringify({
    shaderTypes: {
      bench_small: { label: 'Small', parameters: [{ name: 'x', type: 'KEPRmaScalar', default: 0.5 }] },
      bench_mixed: { label: `Mixed (${count} parameters)`, parameters },
    },
  }, null, 1));
  const doc = join(dir, 'bench.rshdoc.json');
  writeFileSync(doc, JSON.stringify({
    library: 'library',
    materials: [{ id: 'small', type: 'bench_small' }, { id: 'big', type: 'bench_mixed', alias: `${count} parameters` }],
  }, null, 1));
  return doc;
}

const dir = mkdtempSync(join(tmpdir(), 'rshview-serve-bench-'));
const doc = generate(dir);
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
