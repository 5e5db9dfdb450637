// The editor view: draws a widget tree generically (one renderer per class, containers as CSS
// grids placed by each child's cell) and patches the changed subtrees an event's answer lists.
// A patch updates the elements in place while a subtree keeps its shape, and rebuilds it only
// when its children changed; focus is given back to the widget that had it.

import { layoutGrid, rendererFor } from './controls.js';

/** CSS self-alignment for a cell's attached sides: both sides stretch, one side holds to it. */
export function alignment(attach, first, second) {
  const a = attach.includes(first);
  const b = attach.includes(second);
  if (a && b) return 'stretch';
  if (a) return 'start';
  if (b) return 'end';
  return 'center';
}

function applyCommon(el, w) {
  el.classList.toggle('is-hidden', w.visible === false && !w.layoutWhenInvisible);
  el.classList.toggle('is-invisible', w.visible === false && !!w.layoutWhenInvisible);
  el.classList.toggle('is-disabled', w.sensitive === false);
  el.inert = w.sensitive === false;
  if (w.tooltip) el.title = w.tooltip;
  else if (el.title && el._tooltipSet) el.removeAttribute('title');
  el._tooltipSet = Boolean(w.tooltip);
  const cell = w.cell;
  if (cell) {
    el.style.gridRow = `${cell.row + 1} / span ${Math.max(cell.rowSpan, 1)}`;
    el.style.gridColumn = `${cell.column + 1} / span ${Math.max(cell.columnSpan, 1)}`;
    const attach = cell.attach || [];
    if (attach.length === 0 && (w.children || []).length > 0) {
      // A layout attached to no side still takes its cell: the widgets it holds place themselves.
      el.style.justifySelf = 'stretch';
      el.style.alignSelf = 'stretch';
    } else {
      el.style.justifySelf = attach.length === 0 ? 'start' : alignment(attach, 'left', 'right');
      el.style.alignSelf = alignment(attach, 'top', 'bottom');
    }
  }
  const size = w.minimumSize;
  el.style.minWidth = size && size.width > 0 ? `${size.width}px` : '';
  el.style.minHeight = size && size.height > 0 ? `${size.height}px` : '';
  if (Array.isArray(w.background)) {
    // The toolkit's looks are made for a light theme: on this dark one a background tints at a
    // quarter of its strength, so that light text stays readable on it.
    const [r, g, b, a = 255] = w.background;
    el.style.backgroundColor = `rgba(${r}, ${g}, ${b}, ${(a / 255) * 0.25})`;
  }
}

function sameShape(a, b) {
  const ca = a.children || [];
  const cb = b.children || [];
  if (a.class !== b.class || ca.length !== cb.length) return false;
  for (let i = 0; i < ca.length; i++) {
    if (ca[i].path !== cb[i].path || ca[i].class !== cb[i].class) return false;
  }
  return true;
}

export class EditorView {
  constructor(root, ctx) {
    this.root = root;
    this.ctx = { ...ctx, focusPath: (path) => this.focusPath(path) };
    this.byPath = new Map();
    this.tree = null;
    this.filterText = '';
  }

  /** Draws a whole tree, replacing what was shown. */
  load(tree) {
    this.byPath.clear();
    this.tree = tree;
    const el = this.build(tree);
    this.root.replaceChildren(el);
    this.applyFilter();
  }

  build(w) {
    const renderer = rendererFor(w);
    const el = renderer.create(w, this.ctx);
    el._w = w;
    el._renderer = renderer;
    el.classList.add('w');
    el.dataset.cls = w.class;
    if (w.name) el.dataset.name = w.name;
    if (typeof w.path === 'string') {
      el.dataset.path = w.path;
      this.byPath.set(w.path, el);
    }
    applyCommon(el, w);
    renderer.update?.(el, w, this.ctx);
    const host = el._childHost || el;
    const children = w.children || [];
    for (const child of children) host.append(this.build(child));
    if (host.classList.contains('grid')) layoutGrid(host, children);
    return el;
  }

  /** Brings an element and its subtree to a widget's new state, rebuilding what changed shape. */
  update(el, w) {
    if (!sameShape(el._w, w)) {
      this.forget(el);
      const fresh = this.build(w);
      el.replaceWith(fresh);
      return fresh;
    }
    el._w = w;
    applyCommon(el, w);
    el._renderer.update?.(el, w, this.ctx);
    const host = el._childHost || el;
    const elements = [...host.children].filter((c) => c._w);
    (w.children || []).forEach((child, i) => this.update(elements[i], child));
    if (host.classList.contains('grid')) layoutGrid(host, w.children || []);
    return el;
  }

  forget(el) {
    if (el.dataset?.path !== undefined) this.byPath.delete(el.dataset.path);
    for (const c of el.querySelectorAll('[data-path]')) this.byPath.delete(c.dataset.path);
  }

  /** Patches the changed widgets of an event's answer: [{path, widget}]. */
  patch(changed) {
    const focused = document.activeElement?.closest?.('[data-path]')?.dataset.path;
    let rebuilt = false;
    for (const { path, widget } of changed || []) {
      const el = this.byPath.get(path ?? widget?.path);
      if (!el || !widget) continue;
      const result = this.update(el, widget);
      if (result !== el) rebuilt = true;
      this.replaceInTree(widget);
    }
    if (rebuilt && focused !== undefined && !document.activeElement?.closest?.('[data-path]')) this.focusPath(focused);
    this.applyFilter();
  }

  /** Keeps this.tree in step with patches, so a later whole-tree view (filter) sees them. */
  replaceInTree(widget) {
    const walk = (w) => {
      const children = w.children || [];
      for (let i = 0; i < children.length; i++) {
        if (children[i].path === widget.path) {
          children[i] = widget;
          return true;
        }
        if (walk(children[i])) return true;
      }
      return false;
    };
    if (this.tree && this.tree.path === widget.path) this.tree = widget;
    else if (this.tree) walk(this.tree);
  }

  element(path) {
    return this.byPath.get(path) || null;
  }

  focusPath(path) {
    if (path === undefined || path === null) return;
    const el = this.byPath.get(path);
    if (!el) return;
    const target = el.matches('input, select, button, [tabindex]') ? el : el.querySelector('input, select, button, [tabindex]');
    target?.focus();
  }

  /** Hides the parameter rows whose label does not contain the text (case-insensitive). */
  filter(text) {
    this.filterText = text.trim().toLowerCase();
    this.applyFilter();
  }

  applyFilter() {
    const text = this.filterText;
    for (const el of this.root.querySelectorAll('.filtered-out')) el.classList.remove('filtered-out');
    if (!text) return;
    const labels = this.root.querySelectorAll('[data-name]');
    for (const label of labels) {
      const m = /^(?:Parameter|parameter)Label(\d+)$/.exec(label.dataset.name);
      if (!m || label.textContent.toLowerCase().includes(text)) continue;
      const index = m[1];
      const row = new RegExp(`^(?:Parameter(?:Label|Widget|Connection|ConnectedShader)|parameter(?:Label|Dialog|Button)|blankLabel|connectionMenu|disconnectButton)${index}$`);
      for (const sibling of label.parentElement.children) {
        if (sibling.dataset.name && row.test(sibling.dataset.name)) sibling.classList.add('filtered-out');
      }
    }
    // A group none of whose rows is left is hidden too.
    for (const group of this.root.querySelectorAll('.expander')) {
      const rows = group.querySelectorAll(':scope > .expander-body > .grid > .param-label');
      if (rows.length > 0 && [...rows].every((r) => r.classList.contains('filtered-out'))) group.classList.add('filtered-out');
    }
  }
}
