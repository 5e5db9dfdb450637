// The compact form of an editor's tree (docs/api.md): filled in by the page, it is the whole tree
// the server answers without compact=1, for every node of the sample in both editors.

import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { expandTree, makeExpander } from '../src/compact.js';
import { startServer } from './harness.mjs';

let server;
before(async () => {
  server = await startServer();
});
after(async () => {
  await server?.stop();
});

test('a compact tree filled in is the whole tree, for every node and both editors', async () => {
  const doc = await (await fetch(`${server.url}api/document`)).json();
  for (const { id } of doc.nodes) {
    for (const kind of ['immersive', 'classic']) {
      const route = `${server.url}api/nodes/${encodeURIComponent(id)}/editor?editor=${kind}`;
      const [whole, compact] = await Promise.all([fetch(route), fetch(`${route}&compact=1`)].map(async (r) => (await r).json()));
      assert.ok(compact.defaults, `${id} ${kind}: no defaults`);
      assert.ok(JSON.stringify(compact.editor).length < JSON.stringify(whole.editor).length * 0.7, `${id} ${kind}`);
      assert.deepEqual(expandTree(compact.editor, compact.defaults), whole.editor, `${id} ${kind}`);
    }
  }
});

test('the expander fills one widget at a time, with fresh copies, and derives paths', () => {
  const defaults = {
    widget: { visible: true, cell: { row: 0, attach: [] }, children: [] },
    state: { Grid: { rows: 1, weights: [] } },
  };
  const tree = {
    class: 'Grid', name: 'top', path: 'a',
    children: [
      { class: 'Grid', name: 's', cell: { row: 2 }, state: { rows: 3 } },
      { class: 'Label', name: 's', visible: false },
      { class: 'Label', name: 'x', path: 'elsewhere' },
      { class: 'Label', name: '', path: null, children: [{ class: 'Label', name: 'y', path: 'y' }] },
    ],
  };
  const expand = makeExpander(defaults);
  expand(tree);
  // The widget itself and its children's paths; the children wait until they are drawn.
  assert.deepEqual(tree.state, { rows: 1, weights: [] });
  assert.deepEqual(tree.children.map((c) => c.path), ['a/s', 'a/s[1]', 'elsewhere', null]);
  assert.equal('visible' in tree.children[0], false);
  const [first, second] = tree.children;
  expand(first);
  expand(second);
  assert.deepEqual(first, { class: 'Grid', name: 's', path: 'a/s', cell: { row: 2, attach: [] }, state: { rows: 3, weights: [] }, visible: true, children: [] });
  assert.equal(second.visible, false);
  assert.notEqual(first.cell.attach, second.cell.attach, 'widgets share a default array');
  assert.equal(second.state, undefined, 'a class without defaults got a state');
  // Again: nothing changes. A whole tree (no defaults) is left as it is.
  const copy = structuredClone(first);
  expand(first);
  assert.deepEqual(first, copy);
  const whole = { class: 'Label', name: 'z', children: [{ class: 'Label', name: 'w' }] };
  makeExpander(null)(whole);
  assert.deepEqual(whole, { class: 'Label', name: 'z', children: [{ class: 'Label', name: 'w' }] });
});
