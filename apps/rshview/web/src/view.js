// The editor view: draws a widget tree generically (one renderer per class, containers as CSS
// grids placed by each child's cell) and patches the changed subtrees an event's answer lists.
// A patch updates the elements in place while a subtree keeps its shape, and rebuilds it only
// when its children changed; focus is given back to the widget that had it.

import { makeExpander } from './compact.js';
import { isContainer, layoutGrid, rendererFor } from './controls.js';

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
  if (w.tooltip) {
    el.dataset.tooltip = w.tooltip;
    el.dataset.tooltipDelay = String(w.tooltipDelay ?? 0.5);
  } else {
    delete el.dataset.tooltip;
  }
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

/**
 * Whether a widget tree shows a person anything but empty layouts (read from the tree);
 * `expand` fills in a widget of a compact tree (compact.js).
 */
export function showsSomething(w, expand = (x) => x) {
  if (!w) return false;
  expand(w);
  if (w.visible === false) return false;
  const children = w.children || [];
  if (children.length === 0) return !isContainer(w);
  return children.some((c) => showsSomething(c, expand));
}

/**
 * A classic frame may place widgets by its tabulation lines rather than by cells: widgets that
 * share a cell get the columns of the vertical lines that hold their start edge ("v2 kind=1:
 * spinner"; kind 5 holds both edges), in line order.
 */
export function tabulationColumns(w) {
  const tabs = w.state?.tabulations;
  const children = w.children || [];
  if (!Array.isArray(tabs) || children.length < 2) return null;
  const cells = children.map((c) => `${c.cell?.row},${c.cell?.column}`);
  if (new Set(cells).size === cells.length) return null;
  const starts = new Map();
  for (const t of tabs) {
    const m = /^v(\d+) kind=(\d+): (.*)$/.exec(t);
    if (!m || (m[2] !== '1' && m[2] !== '5')) continue;
    for (const name of m[3].split(', ')) if (!starts.has(name)) starts.set(name, Number(m[1]));
  }
  if (starts.size === 0) return null;
  const lines = [...new Set(starts.values())].sort((a, b) => a - b);
  const columns = new Map();
  for (const [name, line] of starts) columns.set(name, lines.indexOf(line));
  return { columns, count: lines.length };
}

function placeByTabulations(host, w) {
  const tab = tabulationColumns(w);
  if (!tab) return;
  for (const el of host.children) {
    const column = tab.columns.get(el.dataset.name);
    if (column !== undefined) el.style.gridColumn = String(column + 1);
  }
  host.style.gridTemplateColumns = `repeat(${tab.count}, auto)`;
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

/**
 * Tooltips: a widget's tooltip shows after its own delay while the pointer rests on it, or at
 * once while it has the keyboard focus; Escape or leaving hides it.
 */
function installTooltips(root) {
  const tip = document.createElement('div');
  tip.className = 'tooltip';
  tip.setAttribute('role', 'tooltip');
  tip.hidden = true;
  document.body.append(tip);
  let timer = null;
  let owner = null;
  const hide = () => {
    clearTimeout(timer);
    tip.hidden = true;
    owner = null;
  };
  const show = (el) => {
    owner = el;
    tip.textContent = el.dataset.tooltip;
    tip.hidden = false;
    const r = el.getBoundingClientRect();
    tip.style.left = `${Math.max(4, Math.min(r.left, window.innerWidth - tip.offsetWidth - 4))}px`;
    tip.style.top = `${r.bottom + 4 + tip.offsetHeight > window.innerHeight ? r.top - tip.offsetHeight - 4 : r.bottom + 4}px`;
  };
  root.addEventListener('pointerover', (e) => {
    const el = e.target.closest('[data-tooltip]');
    if (!el || el === owner) return;
    hide();
    timer = setTimeout(() => show(el), Math.max(0, Number(el.dataset.tooltipDelay) || 0) * 1000 + 150);
  });
  root.addEventListener('pointerout', (e) => {
    const el = e.target.closest('[data-tooltip]');
    if (el && !el.contains(e.relatedTarget)) hide();
  });
  root.addEventListener('pointerdown', hide);
  root.addEventListener('focusin', (e) => {
    const el = e.target.closest('[data-tooltip]');
    if (el && e.target.matches(':focus-visible')) show(el);
    else hide();
  });
  root.addEventListener('focusout', hide);
  root.addEventListener('keydown', (e) => { if (e.key === 'Escape' && !tip.hidden) hide(); });
}

/**
 * The nearest element that scrolls `el` (null: the window). The body and the root element are
 * not looked at: an overflow set on them scrolls the window.
 */
function scrollerOf(el) {
  for (let e = el; e && e !== document.body && e !== document.documentElement; e = e.parentElement) {
    if (/(auto|scroll)/.test(getComputedStyle(e).overflowY)) return e;
  }
  return null;
}

/** The height a parameter row takes before any was measured (style.css's --row). */
const ROW_PX = 22;

/**
 * Rows of a group: those of the grids it holds (a widget that is no grid takes one); `expand`
 * fills in a child of a compact tree, whose row count may be left out as a default.
 */
export function groupRows(w, expand = (x) => x) {
  return (w.children || []).reduce((n, c) => n + Math.max(Number(expand(c).state?.rows) || 1, 1), 0);
}

/**
 * How many widgets an editor draws at once, for a visible height in pixels: about what fills that
 * height (a parameter row is 22 px high and holds up to 8 widgets), so that a large editor shows
 * its first screen without laying out the rest. Groups beyond are drawn as they scroll near.
 */
export function eagerWidgets(height) {
  const rows = Math.ceil(Math.max(Number(height) || 0, 400) / 22);
  return rows * 8;
}

export class EditorView {
  constructor(root, ctx) {
    this.root = root;
    this.ctx = { ...ctx, focusPath: (path) => this.focusPath(path) };
    this.byPath = new Map();
    this.tree = null;
    this.filterText = '';
    this.expand = makeExpander(null);
    this.rowHeight = ROW_PX;
    installTooltips(root);
    // A resize may move the scrolling (a narrow window scrolls the page itself).
    let resizing = 0;
    window.addEventListener('resize', () => {
      cancelAnimationFrame(resizing);
      resizing = requestAnimationFrame(() => this.checkScroller());
    });
    // Keyboard navigation into a group not drawn yet (its header takes the focus) draws it, so
    // that the next Tab goes into its rows.
    root.addEventListener('focusin', (e) => {
      const group = e.target.closest?.('.expander');
      if (group && this.deferred?.has(group)) this.fill(group);
    });
  }

  /** The element that scrolls the editor (null: the window), as last looked up. */
  scroller() {
    if (this.scrollerEl === undefined) this.scrollerEl = scrollerOf(this.root);
    return this.scrollerEl;
  }

  /**
   * Looks the scroller up again, after a change that may have moved the scrolling elsewhere; the
   * groups still put off are then watched against the new one (with the old one as the root,
   * every group would come near at once, or none ever).
   */
  checkScroller() {
    const found = scrollerOf(this.root);
    if (found === this.scrollerEl) return;
    this.scrollerEl = found;
    if (!this.observer) return;
    this.observer.disconnect();
    this.observer = null;
    if (this.deferred.size > 0) this.watchDeferred();
  }

  /**
   * Draws a whole tree, replacing what was shown. A compact tree comes with the answer's
   * `defaults`: each widget is filled in as it is drawn (the groups drawn later, then).
   */
  load(tree, defaults = null) {
    this.expand = makeExpander(defaults);
    this.byPath.clear();
    this.observer?.disconnect();
    this.observer = null;
    this.deferred = new Set();
    this.scrollerEl = scrollerOf(this.root);
    const scroller = this.scrollerEl;
    // With a filter typed, the rows it finds may be anywhere: the editor is drawn whole.
    this.budget = this.filterText ? Infinity : eagerWidgets(scroller ? scroller.clientHeight : window.innerHeight);
    this.tree = tree;
    const el = this.build(tree);
    this.budget = Infinity; // what a patch rebuilds is drawn whole
    this.root.replaceChildren(el);
    if (this.deferred.size > 0) {
      this.measureRows();
      this.watchDeferred();
    }
    this.applyFilter();
  }

  /**
   * Sizes the placeholders of the groups put off after the height per row of the groups drawn,
   * so that the scrollbar is about right and a group drawn later changes the height little.
   */
  measureRows() {
    let height = 0;
    let rows = 0;
    for (const group of this.root.querySelectorAll('.expander.open')) {
      const host = group._childHost;
      // A group holding other groups or waiting to be drawn says nothing about its rows.
      if (!host || this.deferred.has(group) || host.querySelector('.expander')) continue;
      height += host.getBoundingClientRect().height;
      rows += groupRows(group._w, this.expand);
    }
    if (rows > 0 && height > 0) this.rowHeight = height / rows;
    for (const group of this.deferred) group._childHost.style.minHeight = this.placeholderHeight(group._w);
  }

  placeholderHeight(w) {
    return `${Math.round(groupRows(w, this.expand) * this.rowHeight)}px`;
  }

  /**
   * Brings the editor shown to a new tree of the same editor in place: widgets that kept their
   * shape keep their elements, so the focus, the scroll and a text being typed stay.
   */
  refresh(tree, defaults = null) {
    const top = this.root.firstElementChild;
    if (!this.tree || !top?._w) {
      this.load(tree, defaults);
      return;
    }
    this.expand = makeExpander(defaults);
    this.checkScroller();
    this.update(top, tree);
    this.tree = tree;
    this.applyFilter();
  }

  /** Fills the deferred groups as they come near the editor's visible part. */
  watchDeferred() {
    this.observer = new IntersectionObserver((entries) => {
      for (const entry of entries) if (entry.isIntersecting) this.fill(entry.target);
    }, { root: this.scroller(), rootMargin: '600px 0px' });
    for (const el of this.deferred) this.observer.observe(el);
  }

  /** Builds the children of a group whose drawing was put off (filtered unless told not to). */
  fill(el, filter = true) {
    if (!this.deferred?.has(el)) return;
    this.deferred.delete(el);
    this.observer?.unobserve(el);
    const host = el._childHost;
    host.classList.remove('deferred');
    host.style.minHeight = '';
    const children = el._w.children || [];
    for (const child of children) host.append(this.build(child));
    if (host.classList.contains('grid')) layoutGrid(host, children);
    if (filter) this.applyFilter();
  }

  /** Builds every group still put off (a filter or a focus needs the whole editor). */
  fillAll() {
    const pending = [...(this.deferred || [])];
    for (const el of pending) if (el.isConnected) this.fill(el, false);
    if (pending.length > 0) this.applyFilter();
  }

  build(w) {
    this.expand(w);
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
    this.budget -= 1;
    const host = el._childHost || el;
    const children = w.children || [];
    if (el.classList.contains('expander') && this.budget <= 0 && children.length > 0) {
      // A large editor draws its first screens at once and the rest of its groups as they
      // scroll near: a placeholder of about their height stands for them meanwhile. A group
      // filled above the visible part leaves what is visible in place: the browser's scroll
      // anchoring moves the scroll by the difference (style.css).
      this.deferred.add(el);
      host.classList.add('deferred');
      host.style.minHeight = this.placeholderHeight(w);
      return el;
    }
    for (const child of children) host.append(this.build(child));
    if (host.classList.contains('grid')) {
      layoutGrid(host, children);
      placeByTabulations(host, w);
    }
    return el;
  }

  /** Brings an element and its subtree to a widget's new state, rebuilding what changed shape. */
  update(el, w) {
    this.expand(w);
    if (!sameShape(el._w, w)) {
      this.forget(el);
      const fresh = this.build(w);
      el.replaceWith(fresh);
      return fresh;
    }
    const wasOpen = el.classList.contains('open');
    el._w = w;
    applyCommon(el, w);
    el._renderer.update?.(el, w, this.ctx);
    if (this.deferred?.has(el)) {
      // Built from el._w when it comes near, or now when this very update opened it: a refresh
      // that finds it open as before leaves it to scroll near.
      if (!wasOpen && el.classList.contains('open')) this.fill(el);
      return el;
    }
    const host = el._childHost || el;
    const elements = [...host.children].filter((c) => c._w);
    (w.children || []).forEach((child, i) => this.update(elements[i], child));
    if (host.classList.contains('grid')) {
      layoutGrid(host, w.children || []);
      placeByTabulations(host, w);
    }
    return el;
  }

  forget(el) {
    if (el.dataset?.path !== undefined) this.byPath.delete(el.dataset.path);
    for (const c of el.querySelectorAll('[data-path]')) this.byPath.delete(c.dataset.path);
    for (const d of [el, ...el.querySelectorAll('.expander')]) {
      if (this.deferred?.delete(d)) this.observer?.unobserve(d);
    }
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
      this.expand(w); // a compact tree's paths are filled in as it is walked
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

  /**
   * Gives the focus to the widget at a path, drawing the group put off that holds it (only that
   * one). A path the editor no longer has is noted on the status line; nothing else is drawn.
   */
  focusPath(path) {
    if (path === undefined || path === null) return;
    while (!this.byPath.has(path)) {
      const holder = [...(this.deferred || [])].find((g) => g.isConnected && path.startsWith(`${g.dataset.path}/`));
      if (!holder) break;
      this.fill(holder);
    }
    const el = this.byPath.get(path);
    if (!el) {
      this.ctx.status?.(`${path} is no longer in the editor`);
      return;
    }
    const target = el.matches('input, select, button, [tabindex]') ? el : el.querySelector('input, select, button, [tabindex]');
    target?.focus();
  }

  /** Hides the parameter rows whose label does not contain the text (case-insensitive). */
  filter(text) {
    this.filterText = text.trim().toLowerCase();
    if (this.filterText) this.fillAll();
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
