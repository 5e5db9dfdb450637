// The page's pure parts: number texts, the colour conversions, the node forest, write texts, and
// the software sphere against `rshview preview` for every node of the sample.

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { describe, test } from 'node:test';
import { fromHex, hsvToRgb, rgbToHsv, toHex } from '../src/color.js';
import { formatNumber, iconName, leadingNumber, trailingUnit, typedNumber } from '../src/controls.js';
import { nodeForest } from '../src/nodes.js';
import { renderSphere, sphereMaterial } from '../src/preview.js';
import { scrubStep } from '../src/scrub.js';
import { describeWrite } from '../src/values.js';
import { alignment, showsSomething } from '../src/view.js';
import { decodePng, differingPixels, repo, rshviewBinary } from './harness.mjs';

describe('number texts', () => {
  test('leadingNumber reads the number before a unit and nothing else', () => {
    const cases = [['2.50 cm', 2.5], ['-1e3mm', -1000], ['  .5', 0.5], ['+7', 7], ['0.7854 deg', 0.7854], ['cm 2', NaN], ['', NaN], ['-', NaN], ['1.', 1]];
    for (const [text, want] of cases) assert.deepEqual(leadingNumber(text), want, text);
  });
  test('typedNumber takes a number alone or in the field\'s own unit, and nothing else', () => {
    const cases = [
      ['12', 'mm', 12], [' 12 mm ', 'mm', 12], ['-1e3mm', 'mm', -1000], ['.5', ' mm', 0.5], ['3', '', 3],
      ['12 cm', 'mm', NaN], ['12 mm x', 'mm', NaN], ['12 MM', 'mm', NaN], ['12 mm', '', NaN],
      ['1e', 'mm', NaN], ['mm', 'mm', NaN], ['', 'mm', NaN], ['12°', '°', 12],
    ];
    for (const [text, unit, want] of cases) assert.deepEqual(typedNumber(text, unit), want, `${text} in ${unit}`);
    const units = [['0.50 mm', 'mm'], ['8', ''], ['45.00°', '°'], [undefined, ''], ['n/a', '']];
    for (const [text, want] of units) assert.equal(trailingUnit(text), want, text);
  });
  test('formatNumber keeps the decimals asked for and shows no text for NaN or infinity', () => {
    const cases = [[0.1 + 0.2, undefined, '0.3'], [2, 2, '2.00'], [-0.004, 2, '-0.00'], [NaN, 2, ''], [Infinity, undefined, ''], [1e-7, undefined, '0'], [3.14159, 0, '3']];
    for (const [value, decimals, want] of cases) assert.equal(formatNumber(value, decimals), want, `${value} ${decimals}`);
  });
  test('scrubbing moves about a hundredth of the value per pixel, whole steps for integers', () => {
    const cases = [[0, false, 0.01], [0.8, false, 0.001], [250, false, 1], [-2400, false, 10], [1e-6, false, 0.001], [17, true, 1]];
    for (const [value, integer, want] of cases) assert.ok(Math.abs(scrubStep(value, integer) - want) < 1e-12, `${value}: ${scrubStep(value, integer)}`);
  });
});

describe('colours', () => {
  test('HSV and hex conversions round-trip bytes', () => {
    for (const hex of ['#000000', '#ffffff', '#9e0a0d', '#00ff80', '#123456', '#808080']) {
      const rgb = fromHex(hex);
      assert.equal(toHex(hsvToRgb(...rgbToHsv(...rgb))), hex);
    }
  });
  test('a hex text that is not six hex digits is refused', () => {
    for (const text of ['#12345', '12345g', '#1234567', '', 'red']) assert.equal(fromHex(text), null, text);
    assert.deepEqual(fromHex(' FF0000 '), [1, 0, 0]);
  });
});

test('cell attachments become CSS self-alignment', () => {
  const cases = [[['left', 'right'], 'stretch'], [['left'], 'start'], [['right'], 'end'], [[], 'center'], [['top'], 'center']];
  for (const [attach, want] of cases) assert.equal(alignment(attach, 'left', 'right'), want, attach.join());
});

describe('what an editor shows', () => {
  const grid = (children, extra = {}) => ({ class: 'KEPVidLayGrid', state: { rows: 1 }, children, ...extra });
  const frame = (children) => ({ class: 'KEPRshShaderFrame', state: { tabulations: [] }, children });
  const leaf = (extra = {}) => ({ class: 'KEPDlgPushButton', state: { title: 'x' }, ...extra });
  test('an editor of empty layouts and hidden widgets shows nothing; one visible control is enough', () => {
    const cases = [
      ['empty frame', grid([leaf({ visible: false }), grid([frame([])])]), false],
      ['nothing at all', null, false],
      ['a control deep down', grid([grid([frame([leaf()])])]), true],
      ['a control under a hidden layout', grid([grid([leaf()], { visible: false })]), false],
      ['a class nobody knows, without children', grid([{ class: 'Mystery', state: {} }]), true],
    ];
    for (const [name, tree, want] of cases) assert.equal(showsSomething(tree), want, name);
  });
  test('an icon is named by its file name without folder or extension', () => {
    const cases = [['I_RmaChild', 'I_RmaChild'], ['icons/I_RmaConnect.png', 'I_RmaConnect'], ['C:\\x\\a.b.png', 'a.b']];
    for (const [text, want] of cases) assert.equal(iconName(text), want, text);
  });
});

test('the node forest nests sub-shaders under their parents and keeps document order', () => {
  const nodes = [
    { id: 'a', parent: null }, { id: 'a.t', parent: 'a' }, { id: 'a.t.u', parent: 'a.t' },
    { id: 'b', parent: null }, { id: 'orphan', parent: 'gone' }, { id: 'self', parent: 'self' },
  ];
  const shape = (items) => items.map((i) => [i.node.id, shape(i.children)]);
  assert.deepEqual(shape(nodeForest(nodes)), [['a', [['a.t', [['a.t.u', []]]]]], ['b', []], ['orphan', []], ['self', []]]);
});

test('a write reads node.parameter: old → new, with short numbers and texture names', () => {
  const cases = [
    [{ node: 'n', parameter: 'p', old: 0.800000011920929, new: 1 }, 'n.p: 0.8 → 1'],
    [{ node: 'n', parameter: 'c', old: [0.1, 0.2, 0.3, 1], new: [1, 1, 1, 1] }, 'n.c: [0.1, 0.2, 0.3, 1] → [1, 1, 1, 1]'],
    [{ node: 'n', parameter: 't', old: { image: '/x/checker.png', dpi: 72 }, new: null }, 'n.t: checker.png → —'],
    [{ node: 'n', parameter: 'b', old: false, new: true }, 'n.b: false → true'],
  ];
  for (const [write, want] of cases) assert.equal(describeWrite(write), want);
});

test('the sphere takes the luminosity answered, clamped to 0..1; a failed answer is 0', () => {
  const cases = [
    [{ value: 1, result: 'S_OK' }, 1], [{ value: 0, result: 'S_OK' }, 0], [{ value: 0.25, result: 'S_OK' }, 0.25],
    [{ value: null, result: 'E_FAIL' }, 0], [undefined, 0], [{ value: 4, result: 'S_OK' }, 1],
    [{ value: -2, result: 'S_OK' }, 0], [{ value: 'bright', result: 'S_OK' }, 0],
  ];
  for (const [luminosity, want] of cases) {
    assert.equal(sphereMaterial({ lighting: { luminosity } }).luminosity, want, JSON.stringify(luminosity));
  }
  // Luminous, the base colour shows at full strength on the lit and on the far side alike; not
  // luminous, the far side is darker.
  const m = { ...sphereMaterial({ lighting: { diffuse: { coefficient: 0.8, color: [0.2, 0.6, 1] } } }), luminosity: 1 };
  const at = (pixels, x, y) => [...pixels.subarray((y * 32 + x) * 4, (y * 32 + x) * 4 + 3)];
  const luminous = renderSphere(m, 32, null);
  assert.deepEqual(at(luminous, 10, 10), [51, 153, 255]);
  assert.deepEqual(at(luminous, 22, 22), [51, 153, 255]);
  const lit = renderSphere({ ...m, luminosity: 0 }, 32, null);
  assert.ok(at(lit, 22, 22)[2] < 150, `far side ${at(lit, 22, 22)}`);
});

describe('the software sphere draws what rshview preview draws', () => {
  let binary = null;
  try {
    binary = rshviewBinary();
  } catch {
    binary = null;
  }
  // `rshview preview` finds the program files (which make a glass translucent) only through
  // KEPStartupPath, where `rshview material` falls back to the bundled startup directory.
  const env = { ...process.env, KEPStartupPath: join(repo, 'samples', 'startup') };
  const run = (...args) => execFileSync(binary, args, { maxBuffer: 1 << 26, env });
  const nodes = binary ? JSON.parse(run('material', '--node', 'all', '--format', 'json')).nodes : [];
  const dir = mkdtempSync(join(tmpdir(), 'rshview-sphere-'));
  for (const answer of nodes) {
    test(answer.id, { skip: !binary && 'no rshview binary' }, () => {
      const out = join(dir, 'p.png');
      run('preview', '--node', answer.id, '--size', '64', '--out', out);
      const want = decodePng(readFileSync(out));
      const m = sphereMaterial(answer);
      const texture = m.textured ? decodePng(readFileSync(answer.texture.image.path)) : null;
      const got = renderSphere(m, 64, texture);
      // Single against double precision may round a channel the other way at a few pixels.
      assert.equal(differingPixels(got, want.data, 1), 0);
      assert.ok(differingPixels(got, want.data, 0) < 64 * 64 * 0.01);
    });
  }
});
