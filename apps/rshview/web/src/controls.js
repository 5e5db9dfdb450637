// One renderer per widget class of the widget tree JSON (docs/formats.md, "Widget tree JSON").
// A renderer makes the element once (`create`) and brings it to a widget's state (`update`), so
// an answer's changed widgets are patched in place: focus, caret and scroll stay where they are.
// `ctx.send(action, path, argument)` plays a user event on the widget with that path.

import { colorPicker } from './color.js';
import { h } from './dom.js';
import { scrubbable } from './scrub.js';

export { h };

export function iconUrl(icon) {
  const base = String(icon).split(/[\\/]/).pop();
  return `assets/icons/${encodeURIComponent(/\.\w+$/.test(base) ? base : `${base}.png`)}`;
}

// The icons the build copied beside the page (the bundler writes their names in); null where
// the list is unknown (the unit tests), and then every icon is asked for.
const SHIPPED = typeof __RSHVIEW_ICONS__ !== 'undefined' ? new Set(__RSHVIEW_ICONS__) : null;
// Glyphs for the icons the classic frames name but no resource draws.
const GLYPHS = { I_RmaParent: '↰', I_RmaChild: '↳', I_RmaNewChild: '+' };

/** The icon's file name without folder and extension: 'I_RmaChild'. */
export function iconName(icon) {
  return String(icon).split(/[\\/]/).pop().replace(/\.\w+$/, '');
}

function icon(name) {
  const base = iconName(name);
  if (SHIPPED && !SHIPPED.has(base)) {
    const glyph = GLYPHS[base.replace(/(Pressed|Focused)$/, '')];
    return h('span', { class: glyph ? 'icon glyph' : 'icon missing', 'aria-hidden': 'true' }, glyph ?? '');
  }
  const img = h('img', { class: 'icon', src: iconUrl(name), alt: '' });
  img.addEventListener('error', () => img.classList.add('missing'));
  return img;
}

function rgbaCss(c, scale = 1) {
  if (!Array.isArray(c)) return 'transparent';
  const [r, g, b, a = scale] = c.map((x) => x / scale);
  return `rgba(${Math.round(r * 255)}, ${Math.round(g * 255)}, ${Math.round(b * 255)}, ${a})`;
}

/** Formats a number for a text field: at most `decimals` decimals, no trailing zeros beyond them. */
export function formatNumber(value, decimals) {
  if (typeof value !== 'number' || !Number.isFinite(value)) return '';
  if (decimals === undefined) return String(Math.round(value * 1e6) / 1e6);
  return value.toFixed(Math.max(0, Math.min(20, decimals)));
}

/** Reads the first number of a text that may carry a unit ("2.50 cm" → 2.5); NaN when none. */
export function leadingNumber(text) {
  const m = /^\s*([-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?)/.exec(String(text));
  return m ? Number(m[1]) : NaN;
}

/**
 * Reads a number typed in a field whose unit is `suffix`: the number alone or followed by that
 * unit (spaces allowed around it); NaN for anything else ("12 cm" in a field in mm is refused
 * rather than taken as 12 mm).
 */
export function typedNumber(text, suffix = '') {
  const m = /^\s*([-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?)\s*(.*?)\s*$/.exec(String(text));
  if (!m) return NaN;
  const unit = String(suffix).trim();
  return m[2] === '' || (unit !== '' && m[2] === unit) ? Number(m[1]) : NaN;
}

/** The unit a number's text shows after it ("0.50 mm" → "mm"; "" when none). */
export function trailingUnit(text) {
  const m = /^\s*[-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?\s*(.*?)\s*$/.exec(String(text ?? ''));
  return m ? m[1] : '';
}

const clamp = (v, lo, hi) => Math.min(Math.max(v, lo), hi);

// ---------------------------------------------------------------------------------------------
// Building blocks shared by several classes.

/** A horizontal slider: role=slider, arrows/PageUp/PageDown/Home/End, drag on the track. */
function makeSlider(ctx, { wheel = false } = {}) {
  const fill = h('div', { class: 'slider-fill' });
  const thumb = h('div', { class: 'slider-thumb' });
  const track = h('div', { class: 'slider-track' }, fill, thumb);
  const el = h('div', { class: wheel ? 'slider wheel' : 'slider', role: 'slider', tabindex: '0' }, track);
  const model = { min: 0, max: 100, value: 0, step: 1, page: 10, integer: true, commit: () => {} };
  el._slider = model;
  let pendingTimer = null;

  const show = (value) => {
    const span = model.max - model.min;
    const t = span > 0 ? (clamp(value, model.min, model.max) - model.min) / span : 0;
    fill.style.width = `${t * 100}%`;
    thumb.style.left = `${t * 100}%`;
    if (wheel) track.style.backgroundPositionX = `${(value - model.min) * 3}px`;
    el.setAttribute('aria-valuemin', model.min);
    el.setAttribute('aria-valuemax', model.max);
    el.setAttribute('aria-valuenow', value);
  };
  model.show = show;
  const settle = (value) => {
    const v = clamp(model.integer ? Math.round(value) : value, model.min, model.max);
    model.value = v;
    show(v);
    return v;
  };
  const commitSoon = () => {
    clearTimeout(pendingTimer);
    pendingTimer = setTimeout(() => model.commit(model.value), 120);
  };
  el.addEventListener('keydown', (e) => {
    const fine = e.shiftKey ? 0.1 : 1;
    const steps = {
      ArrowLeft: -model.step * fine, ArrowDown: -model.step * fine,
      ArrowRight: model.step * fine, ArrowUp: model.step * fine,
      PageDown: -model.page, PageUp: model.page,
    };
    let next;
    if (e.key in steps) next = model.value + (model.integer ? Math.sign(steps[e.key]) * Math.max(1, Math.round(Math.abs(steps[e.key]))) : steps[e.key]);
    else if (e.key === 'Home') next = model.min;
    else if (e.key === 'End') next = model.max;
    else return;
    e.preventDefault();
    settle(next);
    commitSoon();
  });
  const valueAt = (clientX, startValue, startX, fine) => {
    const rect = track.getBoundingClientRect();
    const span = model.max - model.min;
    if (wheel || fine) {
      // A wheel turns by relative drags; Shift makes any slider move ten times finer.
      return startValue + ((clientX - startX) / Math.max(rect.width, 1)) * span * (fine ? 0.1 : 1);
    }
    return model.min + clamp((clientX - rect.left) / Math.max(rect.width, 1), 0, 1) * span;
  };
  el.addEventListener('pointerdown', (e) => {
    if (e.button !== 0) return;
    e.preventDefault();
    el.focus();
    el.setPointerCapture(e.pointerId);
    el.classList.add('dragging');
    const startX = e.clientX;
    const startValue = model.value;
    settle(valueAt(e.clientX, startValue, startX, e.shiftKey));
    const move = (m) => settle(valueAt(m.clientX, startValue, startX, m.shiftKey));
    const up = () => {
      el.removeEventListener('pointermove', move);
      el.removeEventListener('pointerup', up);
      el.removeEventListener('pointercancel', up);
      el.classList.remove('dragging');
      clearTimeout(pendingTimer);
      model.commit(model.value);
    };
    el.addEventListener('pointermove', move);
    el.addEventListener('pointerup', up);
    el.addEventListener('pointercancel', up);
  });
  return el;
}

/**
 * A text field that sends its text on Enter or when it loses focus, and goes back on Escape.
 * While the person types in it (focused, not yet sent), a redraw does not replace their text: it
 * only changes what Escape goes back to.
 */
function makeField(onCommit, { numeric = false, width } = {}) {
  const input = h('input', { class: numeric ? 'field numeric' : 'field', type: 'text', spellcheck: 'false' });
  if (width) input.style.width = `${width + 2}ch`;
  input._shown = '';
  input._typing = false;
  input.addEventListener('input', () => { input._typing = true; });
  const commit = () => {
    input._typing = false;
    if (input.value !== input._shown) onCommit(input.value);
  };
  input.addEventListener('keydown', (e) => {
    if (e.key === 'Enter') {
      e.preventDefault();
      commit();
      input.select();
    } else if (e.key === 'Escape' && input.value !== input._shown) {
      e.preventDefault();
      e.stopPropagation();
      input._typing = false;
      input.value = input._shown;
    }
  });
  input.addEventListener('change', commit);
  input.setShown = (text) => {
    input._shown = text;
    if (input._typing && document.activeElement === input) return;
    input._typing = false;
    if (input.value !== text) input.value = text;
  };
  return input;
}

/** How long after the last arrow press the field waits for the answers before it shows them. */
const STEP_SETTLE_MS = 800;

/**
 * The text field of a number: a typed number (alone or followed by the field's own unit,
 * `suffix()`) is sent to the widget at the path of `widget()`, anything else refused with a
 * message; the arrow keys call `stepBy(k, from)` with k = ±1 (±10 with Shift), which sends the
 * value stepped from `from` (the widget's own value when undefined) and returns the text it sent.
 *
 * A step starts from what the field shows: the text being typed, else the value of the last step
 * still on its way (quick presses add up instead of each stepping from the widget's last known
 * value), else the widget's value. The field shows each step's value at once and keeps it while
 * the answers catch up.
 */
function makeNumberField(ctx, widget, stepBy, suffix = () => '') {
  const input = makeField((text) => {
    const unit = suffix().trim();
    const v = typedNumber(text, unit);
    if (!Number.isNaN(v)) {
      ctx.send('set', widget().path, String(v));
      return;
    }
    ctx.error(`${widget().path}: '${text.trim()}' is not a number${unit ? ` in ${unit}` : ''}`);
    input.setShown(input._shown);
  }, { numeric: true });
  input.setAttribute('role', 'spinbutton');
  input._pending = undefined;
  const show = input.setShown;
  const settle = () => {
    clearTimeout(input._settleTimer);
    input._pending = undefined;
    if (input._answered !== undefined) show(input._answered);
    input._answered = undefined;
  };
  input.setShown = (text) => {
    if (input._pending !== undefined && leadingNumber(text) !== input._pending) {
      input._answered = text; // shown when the steps settle
      return;
    }
    input._answered = undefined;
    if (input._pending !== undefined) {
      clearTimeout(input._settleTimer);
      input._pending = undefined;
    }
    show(text);
  };
  input.addEventListener('keydown', (e) => {
    if (e.key !== 'ArrowUp' && e.key !== 'ArrowDown') return;
    e.preventDefault();
    const typed = input._typing ? typedNumber(input.value, suffix()) : NaN;
    const from = Number.isFinite(typed) ? typed : input._pending;
    input._typing = false;
    const sent = stepBy((e.key === 'ArrowUp' ? 1 : -1) * (e.shiftKey ? 10 : 1), from);
    const value = leadingNumber(sent);
    if (!Number.isFinite(value)) return;
    input._pending = value;
    // What was sent is what the field shows: leaving it sends nothing more.
    input._shown = input.value = String(sent);
    clearTimeout(input._settleTimer);
    input._settleTimer = setTimeout(settle, STEP_SETTLE_MS);
  });
  input.addEventListener('blur', () => { if (input._pending !== undefined) settle(); });
  return input;
}

// ---------------------------------------------------------------------------------------------
// Containers: a grid placed by the children's cells.

/**
 * Whether a widget is laid out as a grid: the toolkit's grids and the classic frames and
 * containers, and every class derived from them (a module's own layouts and frames), told by
 * the state they show.
 */
export function isContainer(w) {
  const s = w.state || {};
  return 'rows' in s || 'tabulations' in s || 'resizableRows' in s || 'rectangle' in s ||
    (s.styleClass !== undefined && (w.children || []).length > 0);
}

const grid = {
  create: () => h('div', { class: 'grid' }),
  update(el, w) {
    const s = w.state || {};
    if (typeof s.horizontalSpacing === 'number') el.style.columnGap = `${s.horizontalSpacing}px`;
    if (typeof s.verticalSpacing === 'number') el.style.rowGap = `${s.verticalSpacing}px`;
    el._weights = s.columnWeights || [];
    el.classList.toggle('classic-frame', 'tabulations' in s || 'rectangle' in s);
    if (w.class === 'KEPRshUIScalarSoftHardRange' && w.properties) {
      const p = w.properties;
      el.dataset.beyondSoft = p.Value > p.SoftMaximum ? 'above' : p.Value < p.SoftMinimum ? 'below' : '';
      el.title = el.title || `Soft range ${p.SoftMinimum} to ${p.SoftMaximum}, hard range ${p.HardMinimum} to ${p.HardMaximum}`;
    }
  },
};

/** Columns of a grid from its children's cells and its column weights. */
export function layoutGrid(el, children) {
  let columns = 1;
  for (const c of children) {
    const cell = c.cell;
    if (cell) columns = Math.max(columns, cell.column + Math.max(cell.columnSpan, 1));
  }
  const weights = el._weights || [];
  const tracks = [];
  for (let i = 0; i < columns; i++) {
    const weight = weights[i] || 0;
    tracks.push(weight > 0 ? `minmax(0, ${weight}fr)` : 'auto');
  }
  el.style.gridTemplateColumns = tracks.join(' ');
}

// ---------------------------------------------------------------------------------------------
// The immersive toolkit's controls.

const label = {
  create: () => h('span', { class: 'label' }),
  update(el, w) {
    const text = w.state?.text ?? w.state?.title ?? '';
    el.textContent = text;
    if (/^(Parameter|parameter)Label\d+$/.test(w.name)) el.classList.add('param-label');
  },
};

const button = {
  create(w, ctx) {
    const el = h('button', { type: 'button', class: 'button' });
    el.addEventListener('click', () => ctx.send('press', el._w.path));
    return el;
  },
  update(el, w) {
    const s = w.state || {};
    el.replaceChildren();
    if (s.icon) el.append(icon(s.icon));
    if (Array.isArray(s.color)) {
      el.classList.add('color-button');
      el.append(h('span', { class: 'swatch', style: `background:${rgbaCss(s.color, 255)}` }));
    }
    if (s.label) el.append(h('span', {}, s.label));
    if (!s.icon && !s.label && !Array.isArray(s.color)) el.append(h('span', { class: 'dim' }, w.name || '…'));
    el.setAttribute('aria-label', s.help || s.label || w.name || 'button');
    if (s.help && !w.tooltip) el.title = s.help;
  },
};

const slider = {
  create(w, ctx) {
    const el = makeSlider(ctx);
    el._slider.commit = (value) => ctx.send('set', el._w.path, String(Math.round(value)));
    return el;
  },
  update(el, w) {
    const s = w.state || {};
    const m = el._slider;
    Object.assign(m, { min: s.minimum ?? 0, max: s.maximum ?? 100, value: s.value ?? 0, step: s.singleStep || 1, page: s.pageStep || 10, integer: true });
    if (!el.classList.contains('dragging')) m.show(m.value);
    el.classList.toggle('ticks', (s.tickInterval || 0) > 0);
    el.style.setProperty('--bar', `${Math.max(1, s.barSize || 1) * 3}px`);
    el.setAttribute('aria-label', w.tooltip || w.name);
  },
};

const editor = {
  create(w, ctx) {
    const numeric = w.state?.dataType !== 0;
    const input = makeField((text) => ctx.send('type', input._w.path, text), { numeric, width: w.state?.characterWidth || undefined });
    if (numeric) {
      scrubbable(input, {
        get: () => leadingNumber(input.value),
        integer: () => input._w.state?.dataType === 1,
        preview: (v) => { input.value = formatNumber(v, input._w.state?.dataType === 1 ? 0 : 3); },
        commit: (v) => ctx.send('type', input._w.path, formatNumber(v, input._w.state?.dataType === 1 ? 0 : 6)),
      });
    }
    return input;
  },
  update(el, w) {
    el.setShown(String(w.state?.text ?? ''));
    el.setAttribute('aria-label', w.tooltip || w.name);
  },
};

const spinBox = {
  create(w, ctx) {
    const send = (v) => {
      ctx.send('set', el._w.path, String(v));
      return String(v);
    };
    const stepBy = (k, from = el._w.state?.value ?? 0) => {
      const s = el._w.state;
      return send(Number(formatNumber(from + k * (s.singleStep || 1), s.decimals ?? 0)));
    };
    const input = makeNumberField(ctx, () => el._w, stepBy, () => el._w.state?.suffix || '');
    scrubbable(input, {
      get: () => el._w.state?.value ?? 0,
      integer: () => el._w.class === 'KEPVidCtlSpinBox',
      step: () => el._w.state?.singleStep || 1,
      preview: (v) => { input.value = formatNumber(v, el._w.state?.decimals ?? 0); },
      commit: (v) => send(Number(formatNumber(v, el._w.state?.decimals ?? 0))),
    });
    const suffix = h('span', { class: 'suffix' });
    const up = h('button', { type: 'button', class: 'spin', tabindex: '-1', 'aria-label': 'More', onclick: () => stepBy(1) }, '▴');
    const down = h('button', { type: 'button', class: 'spin', tabindex: '-1', 'aria-label': 'Less', onclick: () => stepBy(-1) }, '▾');
    const el = h('div', { class: 'spinbox' }, input, suffix, h('span', { class: 'spins' }, up, down));
    el._input = input;
    el._suffix = suffix;
    return el;
  },
  update(el, w) {
    const s = w.state || {};
    const decimals = w.class === 'KEPVidCtlDoubleSpinBox' ? s.decimals ?? 2 : 0;
    el._input.setShown(formatNumber(s.value, decimals));
    el._suffix.textContent = s.suffix || '';
    el._input.setAttribute('aria-valuemin', s.minimum);
    el._input.setAttribute('aria-valuemax', s.maximum);
    el._input.setAttribute('aria-valuenow', s.value);
    el._input.setAttribute('aria-label', w.tooltip || w.name);
    if (s.maximumTextLength) el._input.maxLength = Math.max(s.maximumTextLength, 1);
  },
};

const checkBox = {
  create(w, ctx) {
    const input = h('input', { type: 'checkbox' });
    const text = h('span');
    const el = h('label', { class: 'check' }, input, text);
    input.addEventListener('change', () => ctx.send('toggle', el._w.path, input.checked ? 'on' : 'off'));
    el._input = input;
    el._text = text;
    return el;
  },
  update(el, w) {
    const s = w.state || {};
    el._input.checked = !!s.checked;
    el._text.textContent = s.label ?? (w.class === 'KEPDlgCheckButton' ? s.title ?? '' : '');
    el._input.setAttribute('aria-label', s.label || s.title || w.tooltip || w.name);
  },
};

/** A combo: a native select, or a list of entries with images when the combo has images. */
const imageCombo = {
  create(w, ctx) {
    const el = h('div', { class: 'combo' });
    el._ctx = ctx;
    return el;
  },
  update(el, w) {
    const s = w.state || {};
    const items = s.items || s.lines || [];
    const selected = s.selected ?? -1;
    const images = s.images || null;
    const ctx = el._ctx;
    const key = JSON.stringify([items, images]);
    if (el._key !== key) {
      el._key = key;
      el.replaceChildren();
      if (images && images.some(Boolean)) {
        el._select = null;
        el.append(imageList(el, items, images, ctx));
      } else {
        const select = h('select', { class: 'select' });
        items.forEach((item, i) => select.append(h('option', { value: String(i) }, item)));
        select.addEventListener('change', () => ctx.send('select', el._w.path, select.value));
        el._select = select;
        el.append(select);
      }
    }
    if (el._select) {
      el._select.value = String(selected);
      el._select.setAttribute('aria-label', w.tooltip || w.name);
    } else {
      el._showSelected(selected);
    }
  },
};

function imageList(el, items, images, ctx) {
  const current = h('button', { type: 'button', class: 'combo-current', 'aria-haspopup': 'listbox' });
  const list = h('ul', { class: 'combo-list', role: 'listbox', tabindex: '-1', hidden: true });
  items.forEach((item, i) => {
    const option = h('li', { role: 'option', tabindex: '-1', 'data-index': String(i) }, images[i] ? icon(images[i]) : h('span', { class: 'icon' }), h('span', {}, item));
    option.addEventListener('click', () => { close(); ctx.send('select', el._w.path, String(i)); });
    list.append(option);
  });
  const open = () => {
    list.hidden = false;
    current.setAttribute('aria-expanded', 'true');
    (list.querySelector('[aria-selected="true"]') || list.firstChild)?.focus();
  };
  const close = () => {
    list.hidden = true;
    current.setAttribute('aria-expanded', 'false');
  };
  current.addEventListener('click', () => (list.hidden ? open() : close()));
  list.addEventListener('keydown', (e) => {
    const options = [...list.children];
    const at = options.indexOf(document.activeElement);
    if (e.key === 'ArrowDown' || e.key === 'ArrowUp') {
      e.preventDefault();
      options[clamp(at + (e.key === 'ArrowDown' ? 1 : -1), 0, options.length - 1)]?.focus();
    } else if (e.key === 'Enter' || e.key === ' ') {
      e.preventDefault();
      document.activeElement.click();
      current.focus();
    } else if (e.key === 'Escape') {
      e.preventDefault();
      e.stopPropagation();
      close();
      current.focus();
    }
  });
  list.addEventListener('focusout', (e) => { if (!list.contains(e.relatedTarget)) close(); });
  el._showSelected = (selected) => {
    [...list.children].forEach((o, i) => o.setAttribute('aria-selected', String(i === selected)));
    current.replaceChildren(images[selected] ? icon(images[selected]) : h('span', { class: 'icon' }), h('span', {}, items[selected] ?? '—'), h('span', { class: 'caret' }, '▾'));
  };
  return h('div', { class: 'combo-images' }, current, list);
}

const expander = {
  create(w, ctx) {
    const caret = h('span', { class: 'caret' });
    const text = h('span', { class: 'expander-label' });
    const header = h('button', { type: 'button', class: 'expander-header' }, caret, text);
    const body = h('div', { class: 'expander-body' });
    const el = h('div', { class: 'expander' }, header, body);
    header.addEventListener('click', () => ctx.send(el._w.state?.expanded ? 'collapse' : 'expand', el._w.path));
    el._header = header;
    el._text = text;
    el._childHost = body;
    return el;
  },
  update(el, w) {
    const s = w.state || {};
    el._text.textContent = s.label ?? w.name;
    el._header.setAttribute('aria-expanded', String(!!s.expanded));
    el.classList.toggle('open', !!s.expanded);
    el._childHost.hidden = !s.expanded;
  },
};

/** A popup floats by its anchor while it is open; Escape or a click outside close it. */
const popup = {
  create(w, ctx) {
    const el = h('div', { class: 'popup', role: 'dialog', tabindex: '-1' });
    el._ctx = ctx;
    el.addEventListener('keydown', (e) => {
      if (e.key === 'Escape' && (el._w.state?.options?.[2] ?? 1)) {
        e.preventDefault();
        e.stopPropagation();
        ctx.send('close', el._w.path);
        ctx.focusPath(anchorOf(el)?.dataset.path);
      }
    });
    return el;
  },
  update(el, w) {
    const s = w.state || {};
    const open = !!s.open && w.visible !== false;
    el.classList.toggle('open', open);
    el._anchorName = s.anchor || '';
    if (open) {
      requestAnimationFrame(() => {
        // What draws only while shown (a colour picker's square) draws now, then the popup,
        // at its full size, is placed.
        for (const picker of el.querySelectorAll('.picker')) {
          picker._showLocal?.();
          picker._palettes?.();
        }
        placePopup(el);
      });
      el._outside ??= (e) => {
        if (!el.isConnected) return document.removeEventListener('pointerdown', el._outside, true);
        if (!el.classList.contains('open') || !(el._w.state?.options?.[1] ?? 1)) return;
        const anchor = anchorOf(el);
        if (el.contains(e.target) || anchor?.contains(e.target)) return;
        el._ctx.send('close', el._w.path);
      };
      document.addEventListener('pointerdown', el._outside, true);
      if (!el.contains(document.activeElement)) requestAnimationFrame(() => el.focus());
    } else if (el._outside) {
      document.removeEventListener('pointerdown', el._outside, true);
    }
  },
};

function anchorOf(el) {
  if (!el._anchorName) return null;
  const parent = el.parentElement;
  return parent ? [...parent.children].find((c) => c.dataset.name === el._anchorName) || null : null;
}

/** Places an open popup below its anchor (above when there is no room), inside the window. */
function placePopup(el) {
  const anchor = anchorOf(el);
  if (!anchor || !el.classList.contains('open')) return;
  const a = anchor.getBoundingClientRect();
  const width = el.offsetWidth;
  const height = el.offsetHeight;
  const left = Math.max(8, Math.min(a.left, window.innerWidth - width - 8));
  const below = a.bottom + 4;
  const top = below + height > window.innerHeight - 8 ? Math.max(8, a.top - height - 4) : below;
  el.style.left = `${left}px`;
  el.style.top = `${top}px`;
}

// An open popup follows its anchor when the editor scrolls or the window changes size.
const replace = () => document.querySelectorAll('.popup.open').forEach(placePopup);
if (typeof window !== 'undefined') {
  window.addEventListener('scroll', replace, true);
  window.addEventListener('resize', replace);
}

const imageSelector = {
  create(w, ctx) {
    const name = h('span', { class: 'image-name' });
    const meta = h('span', { class: 'dim' });
    const path = h('input', { type: 'text', class: 'field', placeholder: 'image file', 'aria-label': 'Image file' });
    const groups = h('input', { type: 'text', class: 'field', placeholder: 'groups a,b', 'aria-label': 'Groups', size: '10' });
    const dpi = h('input', { type: 'text', class: 'field numeric', placeholder: 'dpi', 'aria-label': 'Dots per inch', size: '4' });
    const quote = (t) => (/[\s"]/.test(t) ? `"${t.replace(/"/g, '')}"` : t);
    const apply = h('button', { type: 'button', class: 'button' }, 'Apply');
    const form = h('div', { class: 'image-form', hidden: true }, path, groups, dpi, apply);
    const choose = h('button', { type: 'button', class: 'button', 'aria-expanded': 'false' }, 'Choose…');
    const el = h('div', { class: 'image-selector' }, h('div', { class: 'image-row' }, name, meta, choose), form);
    choose.addEventListener('click', () => {
      form.hidden = !form.hidden;
      choose.setAttribute('aria-expanded', String(!form.hidden));
      if (!form.hidden) path.focus();
    });
    const send = () => {
      const parts = [`image=${quote(path.value.trim())}`];
      if (groups.value.trim()) parts.push(`groups=${quote(groups.value.trim())}`);
      if (dpi.value.trim()) parts.push(`dpi=${dpi.value.trim()}`);
      ctx.send('choose', el._w.path, parts.join(' '));
      form.hidden = true;
      choose.setAttribute('aria-expanded', 'false');
    };
    apply.addEventListener('click', send);
    form.addEventListener('keydown', (e) => {
      if (e.key === 'Enter') { e.preventDefault(); send(); }
      if (e.key === 'Escape') { e.preventDefault(); e.stopPropagation(); form.hidden = true; choose.focus(); }
    });
    Object.assign(el, { _name: name, _meta: meta, _path: path, _groups: groups, _dpi: dpi });
    return el;
  },
  update(el, w) {
    const s = w.state || {};
    const image = s.image || '';
    el._name.textContent = image ? image.split(/[\\/]/).pop() : 'No image';
    el._name.title = image;
    const groups = (s.groups || []).join(', ');
    el._meta.textContent = [groups, s.dpi ? `${s.dpi} dpi` : ''].filter(Boolean).join(' · ');
    el._path.value = image;
    el._groups.value = (s.groups || []).join(',');
    el._dpi.value = s.dpi ? String(s.dpi) : '';
  },
};

// ---------------------------------------------------------------------------------------------
// The classic toolkit's widgets.

/** A classic value is held in one unit (metres, radians) and shown in another: shown per held. */
function shownFactor(s) {
  return Number.isFinite(s.shownPerHeld) && s.shownPerHeld !== 0 ? s.shownPerHeld : 1;
}

const spinner = {
  create(w, ctx) {
    const send = (v) => {
      ctx.send('set', el._w.path, String(v));
      return String(v);
    };
    const shown = () => leadingNumber(el._w.state?.text) || 0;
    const step = () => (el._w.state?.step || 1) * shownFactor(el._w.state || {});
    const input = makeNumberField(ctx, () => el._w, (k, from = shown()) => send(Number(formatNumber(from + k * step()))), () => trailingUnit(el._w.state?.text));
    scrubbable(input, { get: shown, step, preview: (v) => { input.value = formatNumber(v, 3); }, commit: (v) => send(Number(formatNumber(v, 6))) });
    const el = h('div', { class: 'spinbox classic' }, input);
    el._input = input;
    return el;
  },
  update(el, w) {
    const s = w.state || {};
    el._input.setShown(String(s.text ?? formatNumber(s.value)));
    if (s.visibleTextWidth) el._input.style.width = `${Math.max(10, s.visibleTextWidth + 5)}ch`;
    el._input.setAttribute('aria-label', w.tooltip || s.title || w.name);
  },
};

const classicSlider = {
  create(w, ctx) {
    const isWheel = w.class === 'KEPRbaScalarWheel';
    const bar = makeSlider(ctx, { wheel: isWheel });
    const text = h('span', { class: 'slider-text' });
    const el = h('div', { class: 'classic-slider' }, bar, text);
    bar._slider.commit = (v) => ctx.send('set', el._w.path, formatNumber(v * shownFactor(el._w.state || {}), 6));
    el._bar = bar;
    el._text = text;
    return el;
  },
  update(el, w) {
    const s = w.state || {};
    const m = el._bar._slider;
    Object.assign(m, { min: s.minimum ?? 0, max: s.maximum ?? 1, value: s.value ?? 0, step: s.step || (s.maximum - s.minimum) / 100 || 1, integer: false });
    m.page = m.step * 10;
    if (!el._bar.classList.contains('dragging')) m.show(m.value);
    el._text.textContent = s.text ?? formatNumber(s.value);
    if (Array.isArray(s.size) && s.size[0] > 0) el._bar.style.width = `${s.size[0]}px`;
    el._bar.setAttribute('aria-label', w.tooltip || s.title || w.name);
  },
};

const classicList = {
  create(w, ctx) {
    const list = w.class === 'KEPDlgSelectorList';
    const select = h('select', { class: list ? 'select list' : 'select' });
    select.addEventListener('change', () => ctx.send('select', select._w.path, select.value));
    return select;
  },
  update(el, w) {
    const s = w.state || {};
    const lines = s.lines || [];
    const key = JSON.stringify(lines);
    if (el._key !== key) {
      el._key = key;
      el.replaceChildren(...lines.map((line, i) => h('option', { value: String(i) }, line)));
      if (w.class === 'KEPDlgSelectorList') el.size = Math.max(2, Math.min(lines.length, 6));
    }
    el.value = String(s.selected ?? -1);
    el.setAttribute('aria-label', w.tooltip || s.title || w.name);
  },
};

/** A push button; what it holds (a contextual menu) sits beside it, not inside the button. */
const pushButton = {
  create(w, ctx) {
    const button = h('button', { type: 'button', class: 'button' });
    const menus = h('span', { class: 'button-menus' });
    const el = h('span', { class: 'push-button' }, button, menus);
    button.addEventListener('click', () => ctx.send('press', el._w.path));
    el._button = button;
    el._childHost = menus;
    return el;
  },
  update(el, w) {
    const s = w.state || {};
    const b = el._button;
    b.replaceChildren();
    if (s.icon) b.append(icon(s.icon));
    if (s.title) b.append(h('span', {}, s.title));
    if (!s.icon && !s.title) b.append(h('span', {}, w.name || '…'));
    b.setAttribute('aria-label', s.title || s.help || w.tooltip || w.name);
  },
};

/** A contextual menu: a small menu button listing its items. */
const contextualMenu = {
  create(w, ctx) {
    const toggle = h('button', { type: 'button', class: 'button menu-button', 'aria-haspopup': 'menu', 'aria-expanded': 'false' }, '⋯');
    const items = h('div', { class: 'menu', role: 'menu', hidden: true });
    const el = h('div', { class: 'context-menu' }, toggle, items);
    const close = () => { items.hidden = true; toggle.setAttribute('aria-expanded', 'false'); };
    toggle.addEventListener('click', () => {
      items.hidden = !items.hidden;
      toggle.setAttribute('aria-expanded', String(!items.hidden));
      if (!items.hidden) items.querySelector('button')?.focus();
    });
    items.addEventListener('keydown', (e) => {
      if (e.key === 'Escape') { e.preventDefault(); e.stopPropagation(); close(); toggle.focus(); }
    });
    items.addEventListener('click', (e) => { if (e.target.closest('button')) close(); });
    el._toggle = toggle;
    el._childHost = items;
    return el;
  },
  update(el, w) {
    el._toggle.title = w.state?.title || w.tooltip || w.name;
  },
};

const pushItem = {
  create(w, ctx) {
    const el = h('button', { type: 'button', class: 'menu-item', role: 'menuitem' });
    el.addEventListener('click', () => ctx.send('press', el._w.path));
    return el;
  },
  update(el, w) {
    el.textContent = w.state?.title || w.name;
  },
};

const viewer2d = {
  create: () => h('div', { class: 'viewer2d' }),
  update(el, w) {
    const s = w.state || {};
    const size = s.graphicSize;
    if (Array.isArray(size) && size[0] > 0) {
      el.style.width = `${size[0]}px`;
      el.style.height = `${size[1]}px`;
    }
    el.textContent = (s.reps || []).join(', ') || '2D viewer';
    el.title = `visible box ${JSON.stringify(s.visibleBox ?? [])}, ${s.draws ?? 0} draws`;
  },
};

const dialog = {
  create(w, ctx) {
    const title = h('div', { class: 'dialog-title' });
    const close = h('button', { type: 'button', class: 'button', 'aria-label': 'Close' }, '×');
    const body = h('div', { class: 'grid dialog-body' });
    const ok = h('button', { type: 'button', class: 'button primary' }, 'OK');
    const cancel = h('button', { type: 'button', class: 'button' }, 'Cancel');
    const el = h('div', { class: 'dialog', role: 'dialog' }, h('div', { class: 'dialog-head' }, title, close), body, h('div', { class: 'dialog-buttons' }, cancel, ok));
    ok.addEventListener('click', () => ctx.send('ok', el._w.path));
    cancel.addEventListener('click', () => ctx.send('cancel', el._w.path));
    close.addEventListener('click', () => ctx.send('close', el._w.path));
    el.addEventListener('keydown', (e) => { if (e.key === 'Escape') { e.preventDefault(); e.stopPropagation(); ctx.send('cancel', el._w.path); } });
    Object.assign(el, { _title: title, _ok: ok, _childHost: body });
    return el;
  },
  update(el, w) {
    el._title.textContent = w.state?.title || w.name;
    el._ok.disabled = w.state?.okSensitive === false;
  },
};

const RENDERERS = {
  KEPVidCtlLabel: label,
  KEPVidCtlButton: button,
  KEPVidCtlSlider: slider,
  KEPVidCtlEditor: editor,
  KEPVidCtlSpinBox: spinBox,
  KEPVidCtlDoubleSpinBox: spinBox,
  KEPVidCtlCheckBox: checkBox,
  KEPVidCtlImageCombo: imageCombo,
  KEPVidCtlExpander: expander,
  KEPVidCtlPopup: popup,
  KEPVidCtlColorCompositePicker: colorPicker,
  KEPRbaImageDocImmSelector: imageSelector,
  KEPDlgLabel: label,
  KEPDlgSpinner: spinner,
  KEPRbaSlider: classicSlider,
  KEPRbaScalarSlider: classicSlider,
  KEPRbaScalarWheel: classicSlider,
  KEPDlgCheckButton: checkBox,
  KEPDlgCombo: classicList,
  KEPDlgSelectorList: classicList,
  KEPDlgPushButton: pushButton,
  KEPDlgContextualMenu: contextualMenu,
  KEPDlgPushItem: pushItem,
  KEP2DViewer: viewer2d,
  KEPDlgDialog: dialog,
};

/** A class nobody taught us: a box named after it, with its children. */
const unknown = {
  create(w) {
    const caption = h('div', { class: 'unknown-caption' });
    const body = h('div', { class: 'grid' });
    const el = h('div', { class: 'unknown' }, caption, body);
    el._caption = caption;
    el._childHost = body;
    return el;
  },
  update(el, w) {
    el._caption.textContent = `${w.class}${w.name ? ` ${w.name}` : ''}`;
    const s = w.state || {};
    el._childHost.style.columnGap = `${s.horizontalSpacing ?? 2}px`;
    el._childHost._weights = s.columnWeights || [];
  },
};

export function rendererFor(w) {
  if (RENDERERS[w.class]) return RENDERERS[w.class];
  if (isContainer(w)) return grid;
  return unknown;
}
