// A stand-in for `rshview serve` while working on the page alone: serves dist/ and answers the
// API of docs/api.md from saved `rshview dump/material --node all --format json` output. Events
// change the saved trees the simple way (sliders, spin boxes, editors, check boxes, combos,
// expanders, popups) and write nothing to any document.
//   node mock/server.mjs [--port N] [--rshview build/release/bin/rshview]

import { execFileSync } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { createServer } from 'node:http';
import { dirname, extname, join, normalize } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
const repo = join(here, '..', '..', '..', '..');
const args = process.argv.slice(2);
const option = (name, fallback) => (args.includes(name) ? args[args.indexOf(name) + 1] : fallback);
const port = Number(option('--port', '8643'));
const rshview = option('--rshview', join(repo, 'build', 'release', 'bin', 'rshview'));
const run = (...a) => JSON.parse(execFileSync(rshview, [...a, '--node', 'all', '--format', 'json'], { maxBuffer: 1 << 28 }).toString());

const editors = { immersive: run('dump'), classic: run('dump', '--editor', 'classic') };
const materials = run('material');
const docFile = join(repo, 'samples', 'documents', 'showroom.rshdoc.json');
const doc = JSON.parse(readFileSync(docFile, 'utf8'));
const nodes = [];
const walk = (n, parent) => {
  nodes.push({ id: n.id, alias: n.alias || n.id, type: n.type, kind: parent ? (/texture|tiles|decal|plaster/.test(n.type) ? 'texture' : 'other') : /light/.test(n.type) ? 'light' : 'material', root: !parent, parent, subShaders: [] });
  for (const s of n.subShaders || []) walk(s, n.id);
};
doc.materials.forEach((m) => walk(m, null));
let revision = 0;
const streams = new Set();

function find(tree, path) {
  if ((tree.path ?? '') === path) return tree;
  for (const c of tree.children || []) {
    const f = find(c, path);
    if (f) return f;
  }
  return null;
}

function play(tree, { action, path, argument = '' }) {
  const w = find(tree, path);
  if (!w) return { status: 422, error: 'refused event', detail: `${path}: not found` };
  const s = w.state;
  switch (action) {
    case 'set': s.value = Number(argument); break;
    case 'type': s.text = argument; s.value = Number(argument); break;
    case 'toggle': s.checked = argument ? argument === 'on' : !s.checked; break;
    case 'select': s.selected = Number(argument); break;
    case 'expand': s.expanded = true; break;
    case 'collapse': s.expanded = false; break;
    case 'open': case 'close': s.open = action === 'open'; w.visible = s.open; break;
    case 'press': {
      const popup = (tree.children && findSiblingPopup(tree, w)) || null;
      if (popup) { popup.state.open = true; popup.visible = true; return { changed: [{ path: popup.path, widget: popup }] }; }
      return { changed: [] };
    }
    case 'color': s.color = argument.split(/\s+/).map((x) => Math.round(Number(x) * 255)); break;
    default: return { status: 422, error: 'refused event', detail: `${path}: the mock does not play '${action}'` };
  }
  return { changed: [{ path: w.path, widget: w }] };
}

function findSiblingPopup(tree, button) {
  const parentPath = button.path.split('/').slice(0, -1).join('/');
  const parent = find(tree, parentPath);
  return parent?.children?.find((c) => c.class === 'KEPVidCtlPopup' && c.state.anchor === button.name) || null;
}

function reply(res, status, body, type = 'application/json') {
  res.writeHead(status, { 'Content-Type': type });
  res.end(type === 'application/json' ? JSON.stringify(body) : body);
}

const TYPES = { '.html': 'text/html', '.js': 'text/javascript', '.css': 'text/css', '.png': 'image/png', '.map': 'application/json' };

createServer(async (req, res) => {
  const url = new URL(req.url, 'http://x');
  const body = await new Promise((ok) => { let b = ''; req.on('data', (d) => { b += d; }); req.on('end', () => ok(b)); });
  const m = /^\/api\/nodes\/([^/]+)\/(editor|events|material|texture)$/.exec(url.pathname);
  if (url.pathname === '/api/document') return reply(res, 200, { path: docFile, library: '', saved: true, revision, units: { length: 'mm', angle: 'deg' }, nodes });
  if (url.pathname === '/api/units') return reply(res, 200, { length: { unit: 'mm', units: ['mm', 'cm', 'm'] }, angle: { unit: 'deg', units: ['deg', 'rad'] } });
  if (url.pathname === '/api/save') return reply(res, 200, { path: docFile, bytes: 0, revision });
  if (url.pathname === '/api/events') {
    res.writeHead(200, { 'Content-Type': 'text/event-stream', 'Cache-Control': 'no-cache' });
    res.write(`event: hello\ndata: ${JSON.stringify({ revision })}\n\n`);
    streams.add(res);
    req.on('close', () => streams.delete(res));
    return;
  }
  if (m) {
    const id = decodeURIComponent(m[1]);
    const kind = url.searchParams.get('editor') || 'immersive';
    if (m[2] === 'editor' || m[2] === 'events') {
      const e = (m[2] === 'events' ? JSON.parse(body) : null);
      const entry = editors[e?.editor || kind]?.nodes.find((n) => n.node === id);
      if (!entry) return reply(res, 404, { error: 'unknown node', detail: id });
      if (m[2] === 'editor') return reply(res, 200, { node: id, type: entry.type, editorKind: kind, restricted: false, revision, editor: entry.editor });
      const answer = play(entry.editor, e);
      if (answer.status) return reply(res, answer.status, { error: answer.error, detail: answer.detail });
      return reply(res, 200, { writes: [], changed: answer.changed, revision });
    }
    const material = materials.nodes.find((n) => n.id === id);
    if (m[2] === 'material') return material ? reply(res, 200, material) : reply(res, 404, { error: 'unknown node', detail: id });
    const path = material?.texture?.image?.path;
    return path ? reply(res, 200, readFileSync(path), 'image/png') : reply(res, 404, { error: 'no texture', detail: id });
  }
  const file = normalize(join(here, '..', 'dist', url.pathname === '/' ? 'index.html' : url.pathname));
  try {
    reply(res, 200, readFileSync(file), TYPES[extname(file)] || 'application/octet-stream');
  } catch {
    reply(res, 404, { error: 'not found', detail: url.pathname });
  }
}).listen(port, '127.0.0.1', () => console.log(`mock rshview serve at http://127.0.0.1:${port}/`));
