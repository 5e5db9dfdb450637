// The page: node list, editor, preview and status, wired to the server's API and event stream.

import { Api, ApiError, NetworkError } from './api.js';
import { h } from './dom.js';
import { NodeList } from './nodes.js';
import { Preview, loadTexture, sphereMaterial } from './preview.js';
import { leadingNumber } from './controls.js';
import { EditorView, showsSomething } from './view.js';
import { describeConnection, describeWrite } from './values.js';
import { isParameterLabel, resetBody, resetTarget } from './reset.js';

const $ = (id) => document.getElementById(id);

const app = {
  doc: null,
  node: null,
  kind: localStorage.getItem('rshview.editor') === 'classic' ? 'classic' : 'immersive',
  revision: 0,
  instance: null, // the server's run, from the document and the stream's hello
  restartToTell: false, // a restart seen on the stream, told once the new document is read
  editorRequest: 0,
  materialRequest: 0,
  // What the shown editor's widget paths mean (the answers' `view`), sent with each event: an
  // editor that shows other things there now refuses it instead of playing it on other widgets.
  editorView: null,
};
window.rshview = app; // for the browser tests and for a person at the console

function setStatus(text) {
  $('status').textContent = text;
}

function showError(e) {
  const text = e instanceof Error ? e.message : String(e);
  $('error').textContent = text;
  $('error').title = text;
  clearTimeout(showError.timer);
  showError.timer = setTimeout(() => { $('error').textContent = ''; }, 15000);
}

function clearError() {
  $('error').textContent = '';
}

const api = new Api({
  onBusy: (busy) => {
    $('busy').hidden = !busy;
    document.body.classList.toggle('busy', busy);
  },
  onOnline: (online, waiting) => {
    const banner = $('banner');
    banner.hidden = online;
    if (!online) {
      $('banner-text').textContent = `The server does not answer.${waiting ? ` ${waiting} change${waiting > 1 ? 's' : ''} waiting to be sent;` : ''} trying again every 2 s.`;
    } else {
      refreshAll();
    }
  },
});
app.api = api;

const view = new EditorView($('editor'), {
  send: (action, path, argument = '') => sendEvent(action, path, argument),
  error: (text) => showError(text),
  status: (text) => setStatus(text),
});
app.view = view;

const preview = new Preview($('preview'), (message) => {
  $('preview-message').hidden = false;
  $('preview-message').textContent = message;
});
app.preview = preview;

const nodeList = new NodeList($('node-list'), (id) => selectNode(id));

async function sendEvent(action, path, argument) {
  const node = app.node;
  const kind = app.kind;
  if (!node) return;
  const event = withView({ editor: kind, action, path, argument: String(argument ?? '') });
  try {
    const answer = await api.send(node, event);
    clearError();
    if (node !== app.node || kind !== app.kind) return;
    noteView(answer);
    view.patch(answer.changed);
    noteRevision(answer.revision);
    const writes = answer.writes || [];
    const own = view.element(path);
    if (own && !(answer.changed || []).some((c) => path === c.path || path.startsWith(`${c.path}/`))) {
      // The widget did not take what was typed (out of its range, not a number): it shows its
      // state again and the person is told why.
      const refused = writes.length === 0 && typedDiffers(own._w, action, argument);
      view.update(own, own._w);
      if (refused) showError(`${nodeLabel(node)}: '${argument}' was not taken${own._w.tooltip ? ` (${own._w.tooltip})` : ''}`);
    }
    noteDone(answer);
  } catch (e) {
    if (isStale(e)) {
      staleEditor(node, kind);
    } else if (e instanceof ApiError) {
      showError(e);
      // What the event did before it was refused (writes, widgets) shows like any answer's.
      if (e.answer && node === app.node && kind === app.kind) {
        noteView(e.answer);
        view.patch(e.answer.changed || []);
        noteDone(e.answer);
      }
      // The widget shows its last state again: what was refused is not left on screen.
      const el = view.element(path);
      if (el && node === app.node) view.update(el, el._w);
    } else {
      showError(e);
    }
  }
}

/** `body` with the shown editor's view, when the page has one. */
function withView(body) {
  return app.editorView ? { ...body, view: app.editorView } : body;
}

/** The view of the editor after this tab's event (a popup opened, a walk into a sub-shader). */
function noteView(answer) {
  if (typeof answer?.view === 'string') app.editorView = answer.view;
}

function isStale(e) {
  return e instanceof ApiError && e.status === 409 && e.error === 'stale editor';
}

/**
 * The server built the editor again since the page drew it: the refused change was made on
 * widgets that may mean others now. The editor is drawn afresh and the person told to repeat it.
 */
function staleEditor(node, kind) {
  if (node !== app.node || kind !== app.kind) return;
  loadEditor({ keepScroll: true }).then(() => {
    if (node === app.node && kind === app.kind) {
      showError('The editor had changed on the server: it is shown again; repeat your change');
    }
  });
}

/**
 * What an answer of this tab's event or reset did besides the widgets it lists: the status line,
 * the saved mark and the preview; a connection change or a node made reads the document (node
 * list, sub-shaders) again. True when it changed anything.
 */
function noteDone(answer, suffix = '') {
  noteRevision(answer.revision);
  const connections = answer.connections || [];
  const created = answer.created || [];
  const texts = [
    ...created.map((n) => `new node ${n.id}`),
    ...connections.map(describeConnection),
    ...(answer.writes || []).map(describeWrite),
  ];
  if (connections.length > 0 || created.length > 0) loadDocument().catch(showError);
  if (texts.length === 0) return false;
  setStatus(`${texts.join('; ')}${suffix}`);
  setSaved(false);
  refreshMaterial();
  return true;
}

/** Sets the parameter of a label back to its default (Ctrl-click or double-click on the label). */
async function resetLabel(labelEl) {
  const path = labelEl?._w?.path;
  const node = app.node;
  const kind = app.kind;
  if (!path || !node || !isParameterLabel(path)) return;
  try {
    // The server finds the parameter from the label in the editor as it stands, and refuses a
    // row the editor hides or locks.
    const answer = await api.reset(node, withView(resetBody(kind, path)));
    clearError();
    if (node !== app.node || kind !== app.kind) return;
    noteView(answer);
    view.patch(answer.changed);
    if (!noteDone(answer, ' (default)')) setStatus(`${resetTarget(answer, labelEl.textContent)} is at its default already`);
  } catch (e) {
    if (isStale(e)) staleEditor(node, kind);
    else showError(e);
  }
}

/** Whether a typed or set value differs from what the widget holds (so its refusal shows). */
function typedDiffers(w, action, argument) {
  if (action !== 'type' && action !== 'set') return false;
  const typed = Number(argument);
  const text = String(w?.state?.text ?? '');
  if (!Number.isFinite(typed)) return text !== String(argument);
  // A value is held in model units and may be shown in others: either one matching is no refusal.
  const near = (held) => typeof held === 'number' && Math.abs(held - typed) <= 1e-6 * Math.max(1, Math.abs(held));
  return !near(w?.state?.value) && !near(leadingNumber(text));
}

const RESTARTED = 'The server restarted: the document was read again';
const RECOVERY_CLOSED = 'rshview.recoveryClosed';

/** What the status says of a restart, once the new run's document is read. */
function restartedText(doc) {
  return doc?.recovery ? `${RESTARTED}; changes not saved when the server stopped are in ${doc.recovery.path}` : RESTARTED;
}

/** A path as a shell reads it, quoted when it holds more than safe characters. */
function shellWord(path) {
  return /^[\w/.,:@%=+-]+$/.test(path) ? path : `'${path.replace(/'/g, "'\\''")}'`;
}

/**
 * Shows the banner of the document's recovery file (changes a stop of the server wrote beside
 * the document instead of into it) until the person closes it; hides it when there is none.
 */
function showRecovery(doc) {
  const banner = $('recovery');
  const recovery = doc.recovery;
  const key = recovery ? `${recovery.path}@${recovery.modified}` : '';
  if (!recovery || localStorage.getItem(RECOVERY_CLOSED) === key) {
    banner.hidden = true;
    return;
  }
  const when = new Date(recovery.modified);
  const file = shellWord(recovery.path);
  $('recovery-text').replaceChildren(
    `Changes not saved into the document when the server stopped${Number.isNaN(when.getTime()) ? '' : ` (${when.toLocaleString()})`} are in `,
    h('code', {}, recovery.path),
    '. To look at them beside this server: ', h('code', {}, `rshview serve --port 0 --doc ${file}`),
    '; to keep them, stop this server first (it would write over them), then move that file over the document: ', h('code', {}, `mv ${file} ${shellWord(doc.path)}`), '.',
  );
  banner.dataset.key = key;
  banner.hidden = false;
}

/** Notes the server's run; true when it changed (the server restarted: revisions start again). */
function noteInstance(instance) {
  if (typeof instance !== 'string' || instance === app.instance) return false;
  const restarted = app.instance !== null;
  app.instance = instance;
  if (restarted) app.revision = 0;
  return restarted;
}

function noteRevision(revision) {
  if (typeof revision === 'number') app.revision = Math.max(app.revision, revision);
}

function setSaved(saved) {
  $('doc-saved').textContent = saved ? 'saved' : 'modified';
  $('doc-saved').classList.toggle('modified', !saved);
}

async function loadDocument() {
  const doc = await api.document();
  app.doc = doc;
  // Whichever answer shows the new run first (this one, after the page retried while the server
  // was away, or the event stream's hello) tells the person; once the new run's document is
  // read, the status also says where the changes not saved at its stop are.
  if (noteInstance(doc.instance) || app.restartToTell) {
    app.restartToTell = false;
    setStatus(restartedText(doc));
  }
  showRecovery(doc);
  noteRevision(doc.revision);
  $('doc-path').textContent = doc.path || '';
  $('doc-path').title = doc.path || '';
  setSaved(doc.saved !== false);
  nodeList.show(doc.nodes || []);
  return doc;
}

async function loadUnits() {
  const units = await api.units();
  for (const magnitude of ['length', 'angle']) {
    const select = $(`unit-${magnitude}`);
    const u = units[magnitude];
    if (!u) continue;
    select.replaceChildren(...u.units.map((name) => h('option', { value: name }, name)));
    select.value = u.unit;
  }
}

function nodeLabel(id) {
  const n = app.doc?.nodes?.find((x) => x.id === id);
  return n ? `${n.alias || n.id}` : id;
}

async function selectNode(id, { keepScroll = false } = {}) {
  app.node = id;
  nodeList.select(id);
  history.replaceState(null, '', `#${encodeURIComponent(id)}`);
  const n = app.doc?.nodes?.find((x) => x.id === id);
  $('node-title').textContent = nodeLabel(id);
  $('node-title').title = n ? `${n.id} · ${n.type}` : id;
  await Promise.all([loadEditor({ keepScroll }), refreshMaterial()]);
}

async function loadEditor({ keepScroll = true } = {}) {
  const id = app.node;
  const kind = app.kind;
  if (!id) return;
  const ticket = ++app.editorRequest;
  const started = performance.now();
  try {
    const answer = await api.editor(id, kind);
    if (ticket !== app.editorRequest) return;
    app.editorView = answer.view ?? null;
    const pane = $('editor');
    const top = pane.scrollTop;
    const focused = document.activeElement?.closest?.('[data-path]')?.dataset.path;
    // The same editor again (another tab wrote, the units changed): patched in place, so that a
    // field being typed in keeps its text. Another node or kind is drawn afresh.
    const shown = document.body.dataset.editorNode === id && document.body.dataset.editorKind === kind;
    if (keepScroll && shown) {
      pane.querySelector(':scope > .editor-empty')?.remove();
      view.refresh(answer.editor, answer.defaults);
    } else {
      view.load(answer.editor, answer.defaults);
    }
    showIfEmpty(pane, kind, id, answer.editor);
    if (keepScroll) pane.scrollTop = top;
    if (focused !== undefined && pane.contains(document.activeElement) === false && keepScroll) view.focusPath(focused);
    noteRevision(answer.revision);
    app.lastDraw = { node: id, kind, ms: performance.now() - started };
    document.body.dataset.editorNode = id;
    document.body.dataset.editorKind = kind;
    clearError();
  } catch (e) {
    if (ticket === app.editorRequest) showError(e);
  }
}

/** A note in place of an editor that has nothing a person could see or use. */
function showIfEmpty(pane, kind, id, tree) {
  if (showsSomething(tree, view.expand)) return;
  pane.append(h('p', { class: 'editor-empty' }, `The ${kind} editor of ${nodeLabel(id)} shows no parameters.`));
}

async function refreshMaterial() {
  const id = app.node;
  if (!id) return;
  const ticket = ++app.materialRequest;
  try {
    const answer = await api.material(id);
    const m = sphereMaterial(answer);
    let texture = null;
    if (m.textured) texture = await loadTexture(`/api/nodes/${encodeURIComponent(id)}/texture`).catch(() => null);
    if (ticket !== app.materialRequest) return;
    preview.draw(m, texture);
    showFacts(m, answer);
    app.previewDrawn = (app.previewDrawn || 0) + 1;
    document.body.dataset.previewDrawn = String(app.previewDrawn);
  } catch (e) {
    if (ticket === app.materialRequest && !(e instanceof NetworkError)) showError(e);
  }
}

function showFacts(m, answer) {
  const hex = (c) => '#' + c.map((x) => Math.round(Math.min(Math.max(x, 0), 1) * 255).toString(16).padStart(2, '0')).join('');
  const facts = [
    ['Diffuse', h('span', {}, h('span', { class: 'swatch', style: `background:${hex(m.diffuseColor)}` }), ` ${m.diffuse.toFixed(2)}`)],
    ['Specular', h('span', {}, h('span', { class: 'swatch', style: `background:${hex(m.specularColor)}` }), ` ${m.specular.toFixed(2)}`)],
    ['Glossiness', m.glossiness.toFixed(2)],
    ['Transparency', m.transparency.toFixed(2)],
    ['Luminosity', m.luminosity.toFixed(2)],
    ['Texture', m.textured ? String(answer.texture.image.path).split(/[\\/]/).pop() : '—'],
  ];
  if (m.textured) {
    facts.push(['Placement', `at ${m.position.map((x) => +x.toFixed(3)).join(', ')} size ${m.size.map((x) => +x.toFixed(3)).join(' × ')} turned ${+((m.angle * 180) / Math.PI).toFixed(1)}°`]);
    facts.push(['Wrap · flip', `${m.repeat.map((r) => (r ? 'repeat' : 'clamp')).join('/')} · ${m.flip.map((f) => (f ? 'yes' : 'no')).join('/')}`]);
  }
  $('material-facts').replaceChildren(...facts.flatMap(([k, v]) => [h('dt', {}, k), h('dd', {}, v)]));
}

function setKind(kind) {
  app.kind = kind;
  localStorage.setItem('rshview.editor', kind);
  for (const b of document.querySelectorAll('.switch [data-kind]')) b.setAttribute('aria-checked', String(b.dataset.kind === kind));
  loadEditor({ keepScroll: false });
}

async function refreshAll() {
  try {
    await loadDocument();
    await loadUnits();
    if (app.node) await Promise.all([loadEditor(), refreshMaterial()]);
  } catch (e) {
    showError(e);
  }
}

/**
 * Whether `nodeId` is the node shown or reached from it through connections: a write to any of
 * them changes what its editor and preview show. A shared sub-shader is reached from every node
 * connected to it, not only from the one listed as its parent.
 */
function concerns(nodeId) {
  if (!app.node || !app.doc) return false;
  const byId = new Map(app.doc.nodes.map((n) => [n.id, n]));
  const reached = new Set();
  const stack = [app.node];
  while (stack.length > 0) {
    const id = stack.pop();
    if (reached.has(id)) continue;
    reached.add(id);
    for (const s of byId.get(id)?.subShaders || []) stack.push(s.node);
  }
  return reached.has(nodeId);
}

let refetchTimer = null;
function refetchSoon() {
  clearTimeout(refetchTimer);
  refetchTimer = setTimeout(() => { loadEditor(); refreshMaterial(); }, 60);
}

function subscribe() {
  const stream = new EventSource('/api/events');
  app.stream = stream;
  stream.addEventListener('open', () => { document.body.dataset.stream = 'open'; });
  stream.addEventListener('hello', (e) => {
    const data = JSON.parse(e.data);
    // Another run of the server (restarted): what this tab shows may be older than its revision
    // 0. Else writes may have been missed while the stream was away: catch up.
    if (noteInstance(data.instance)) {
      setStatus(RESTARTED);
      app.restartToTell = true;
      refreshAll();
    } else if (typeof data.revision === 'number' && data.revision > app.revision) {
      refreshAll();
    }
    noteRevision(data.revision);
  });
  stream.addEventListener('write', (e) => {
    const data = JSON.parse(e.data);
    noteRevision(data.revision);
    setSaved(false);
    if (data.origin === api.clientId) return;
    setStatus(`${describeWrite(data)} (another window)`);
    if (concerns(data.node)) refetchSoon();
  });
  stream.addEventListener('connection', (e) => {
    const data = JSON.parse(e.data);
    noteRevision(data.revision);
    setSaved(false);
    if (data.origin === api.clientId) return;
    setStatus(`${describeConnection(data)} (another window)`);
    // The node list and the sub-shader tree changed: read again, then refetch what shows it.
    const shown = concerns(data.node);
    loadDocument().then(() => { if (shown || concerns(data.node)) refetchSoon(); }).catch(showError);
  });
  stream.addEventListener('units', (e) => {
    const data = JSON.parse(e.data);
    noteRevision(data.revision);
    if (data.origin === api.clientId) return;
    loadUnits().catch(showError);
    refetchSoon();
  });
  stream.addEventListener('saved', (e) => {
    const data = JSON.parse(e.data);
    setSaved(true);
    if (data.origin !== api.clientId) setStatus(`Saved ${data.path} (${data.bytes} bytes) from another window`);
  });
  stream.addEventListener('error', () => {
    document.body.dataset.stream = 'closed';
    if (stream.readyState === EventSource.CLOSED) setTimeout(subscribe, 2000);
    api.retry();
  });
}

async function save() {
  const button = $('save');
  button.disabled = true;
  try {
    const answer = await api.save();
    setSaved(true);
    setStatus(`Saved ${answer.path} (${answer.bytes} bytes)`);
    clearError();
  } catch (e) {
    showError(e);
  } finally {
    button.disabled = false;
  }
}

async function changeUnit(magnitude, unit) {
  try {
    await api.setUnits({ [magnitude]: unit });
    setStatus(`Display ${magnitude} unit: ${unit}`);
    await loadEditor();
  } catch (e) {
    showError(e);
    loadUnits().catch(() => {});
  }
}

function wire() {
  const labelOf = (e) => e.target.closest?.('.param-label');
  $('editor').addEventListener('dblclick', (e) => {
    const el = labelOf(e);
    if (!el) return;
    e.preventDefault();
    window.getSelection()?.removeAllRanges(); // a double-click selects the label's word
    // With Ctrl the first click reset it already: once is enough.
    if (e.ctrlKey || e.metaKey) return;
    resetLabel(el);
  });
  $('editor').addEventListener('click', (e) => {
    const el = labelOf(e);
    if (!el || !(e.ctrlKey || e.metaKey) || e.detail > 1) return;
    e.preventDefault();
    resetLabel(el);
  });
  $('save').addEventListener('click', save);
  $('banner-retry').addEventListener('click', () => api.retry());
  $('recovery-close').addEventListener('click', () => {
    localStorage.setItem(RECOVERY_CLOSED, $('recovery').dataset.key);
    $('recovery').hidden = true;
  });
  $('node-filter').addEventListener('input', (e) => nodeList.filter(e.target.value));
  $('param-filter').addEventListener('input', (e) => view.filter(e.target.value));
  $('unit-length').addEventListener('change', (e) => changeUnit('length', e.target.value));
  $('unit-angle').addEventListener('change', (e) => changeUnit('angle', e.target.value));
  for (const b of document.querySelectorAll('.switch [data-kind]')) b.addEventListener('click', () => setKind(b.dataset.kind));
  document.querySelector('.switch').addEventListener('keydown', (e) => {
    if (e.key === 'ArrowLeft' || e.key === 'ArrowRight') {
      e.preventDefault();
      setKind(app.kind === 'immersive' ? 'classic' : 'immersive');
      document.querySelector(`.switch [data-kind="${app.kind}"]`).focus();
    }
  });
  document.addEventListener('keydown', (e) => {
    if ((e.ctrlKey || e.metaKey) && e.key === 's') {
      e.preventDefault();
      save();
    }
  });
  window.addEventListener('beforeunload', (e) => {
    if (api.queue.length > 0) e.preventDefault();
  });
}

async function start() {
  wire();
  setKind(app.kind);
  try {
    const doc = await loadDocument();
    await loadUnits();
    const wanted = decodeURIComponent(location.hash.slice(1));
    const first = doc.nodes.find((n) => n.id === wanted) || doc.nodes.find((n) => n.root) || doc.nodes[0];
    if (first) await selectNode(first.id);
    document.body.dataset.ready = 'true';
  } catch (e) {
    showError(e);
    if (e instanceof NetworkError) {
      api.setOnline(false);
      api.scheduleRetry();
    }
  }
  subscribe();
}

start();
