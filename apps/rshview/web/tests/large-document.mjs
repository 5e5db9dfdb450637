// A document with one node of many parameters of every kind (as bench/immersive_editor.cpp's
// mixed node: sliders, combos, spinners, check boxes, colours, vectors, textures, slots), all its
// groups open: for the front-end's large-editor test and bench/serve_draw.mjs.

import { mkdirSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';

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

/** Writes a library and a document with a node `big` of `count` parameters; returns the doc. */
export function generateLargeDocument(dir, count = 1000, groups = 32) {
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
