// The colour picker of a colour button's popup: a saturation/value square, a hue bar, red, green
// and blue fields, a hex field, a palette of simple colours and the colours picked before. Each
// choice is sent as `color R G B A` (0..1); a drag sends once, when the pointer is released.

import { h } from './dom.js';

const PALETTE = [
  '#000000', '#404040', '#808080', '#c0c0c0', '#ffffff', '#800000', '#ff0000', '#ff8000',
  '#ffff00', '#808000', '#00ff00', '#008000', '#00ffff', '#008080', '#0000ff', '#000080',
  '#ff00ff', '#800080',
];
const history = [];

export function rgbToHsv(r, g, b) {
  const max = Math.max(r, g, b);
  const min = Math.min(r, g, b);
  const d = max - min;
  let hue = 0;
  if (d > 0) {
    if (max === r) hue = ((g - b) / d + 6) % 6;
    else if (max === g) hue = (b - r) / d + 2;
    else hue = (r - g) / d + 4;
    hue /= 6;
  }
  return [hue, max > 0 ? d / max : 0, max];
}

export function hsvToRgb(hue, s, v) {
  const k = (n) => (n + hue * 6) % 6;
  const f = (n) => v - v * s * Math.max(0, Math.min(k(n), 4 - k(n), 1));
  return [f(5), f(3), f(1)];
}

export function toHex(rgb) {
  return '#' + rgb.map((c) => Math.round(Math.min(Math.max(c, 0), 1) * 255).toString(16).padStart(2, '0')).join('');
}

export function fromHex(text) {
  const m = /^#?([0-9a-f]{6})$/i.exec(text.trim());
  if (!m) return null;
  const n = parseInt(m[1], 16);
  return [(n >> 16) & 255, (n >> 8) & 255, n & 255].map((c) => c / 255);
}

function drawSquare(canvas, hue) {
  const g = canvas.getContext('2d');
  const { width, height } = canvas;
  const [r, gg, b] = hsvToRgb(hue, 1, 1);
  g.fillStyle = `rgb(${r * 255}, ${gg * 255}, ${b * 255})`;
  g.fillRect(0, 0, width, height);
  const white = g.createLinearGradient(0, 0, width, 0);
  white.addColorStop(0, '#fff');
  white.addColorStop(1, 'rgba(255,255,255,0)');
  g.fillStyle = white;
  g.fillRect(0, 0, width, height);
  const black = g.createLinearGradient(0, 0, 0, height);
  black.addColorStop(0, 'rgba(0,0,0,0)');
  black.addColorStop(1, '#000');
  g.fillStyle = black;
  g.fillRect(0, 0, width, height);
}

function dragOn(el, onMove, onDone) {
  el.addEventListener('pointerdown', (e) => {
    if (e.button !== 0) return;
    e.preventDefault();
    el.setPointerCapture(e.pointerId);
    const at = (m) => {
      const r = el.getBoundingClientRect();
      onMove(Math.min(Math.max((m.clientX - r.left) / r.width, 0), 1), Math.min(Math.max((m.clientY - r.top) / r.height, 0), 1));
    };
    at(e);
    const up = () => {
      el.removeEventListener('pointermove', at);
      el.removeEventListener('pointerup', up);
      onDone();
    };
    el.addEventListener('pointermove', at);
    el.addEventListener('pointerup', up);
  });
}

export const colorPicker = {
  create(w, ctx) {
    const square = h('canvas', { class: 'sv', width: '168', height: '112', tabindex: '0', 'aria-label': 'Saturation and value' });
    const squareMark = h('div', { class: 'sv-mark' });
    const hueBar = h('div', { class: 'hue', tabindex: '0', role: 'slider', 'aria-label': 'Hue', 'aria-valuemin': '0', 'aria-valuemax': '360' });
    const hueMark = h('div', { class: 'hue-mark' });
    hueBar.append(hueMark);
    const fields = ['R', 'G', 'B'].map((c) => h('input', { type: 'text', class: 'field numeric', size: '4', 'aria-label': c }));
    const hex = h('input', { type: 'text', class: 'field', size: '7', 'aria-label': 'Hex' });
    const swatch = h('span', { class: 'swatch big' });
    const palette = h('div', { class: 'palette' });
    const recent = h('div', { class: 'palette recent' });
    const el = h('div', { class: 'picker' },
      h('div', { class: 'sv-box' }, square, squareMark), hueBar,
      h('div', { class: 'picker-fields' }, swatch, ...fields.flatMap((f, i) => [h('label', {}, 'RGB'[i], f)]), h('label', {}, '#', hex)),
      palette, recent);
    const state = { hsv: [0, 0, 0], alpha: 1 };
    el._state = state;

    // The square and the palettes are drawn only while the picker shows (in an open popup):
    // an editor holds a closed picker per colour, and drawing them all would slow its first draw.
    const shows = () => {
      const popup = el.closest('.popup');
      return el.isConnected && (!popup || popup.classList.contains('open'));
    };
    const showLocal = () => {
      const rgb = hsvToRgb(...state.hsv);
      if (shows() && square._hue !== state.hsv[0]) {
        drawSquare(square, state.hsv[0]);
        square._hue = state.hsv[0];
      }
      squareMark.style.left = `${state.hsv[1] * 100}%`;
      squareMark.style.top = `${(1 - state.hsv[2]) * 100}%`;
      hueMark.style.left = `${state.hsv[0] * 100}%`;
      hueBar.setAttribute('aria-valuenow', String(Math.round(state.hsv[0] * 360)));
      fields.forEach((f, i) => { if (document.activeElement !== f) f.value = String(Math.round(rgb[i] * 255)); });
      if (document.activeElement !== hex) hex.value = toHex(rgb);
      swatch.style.background = toHex(rgb);
    };
    el._showLocal = showLocal;
    const send = (rgb) => {
      const text = [...rgb, state.alpha].map((c) => String(Math.round(Math.min(Math.max(c, 0), 1) * 10000) / 10000)).join(' ');
      ctx.send('color', el._w.path, text);
      const key = toHex(rgb);
      const at = history.indexOf(key);
      if (at >= 0) history.splice(at, 1);
      history.unshift(key);
      history.length = Math.min(history.length, 9);
    };
    const sendHsv = () => send(hsvToRgb(...state.hsv));
    dragOn(square, (x, y) => { state.hsv[1] = x; state.hsv[2] = 1 - y; showLocal(); }, sendHsv);
    dragOn(hueBar, (x) => { state.hsv[0] = Math.min(x, 0.9999); showLocal(); }, sendHsv);
    const nudge = (e, apply) => {
      const d = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, 1], ArrowDown: [0, -1] }[e.key];
      if (!d) return;
      e.preventDefault();
      apply(d[0] * (e.shiftKey ? 0.01 : 0.05), d[1] * (e.shiftKey ? 0.01 : 0.05));
      showLocal();
      clearTimeout(el._keyTimer);
      el._keyTimer = setTimeout(sendHsv, 150);
    };
    const clamp01 = (v) => Math.min(Math.max(v, 0), 1);
    square.addEventListener('keydown', (e) => nudge(e, (dx, dy) => { state.hsv[1] = clamp01(state.hsv[1] + dx); state.hsv[2] = clamp01(state.hsv[2] + dy); }));
    hueBar.addEventListener('keydown', (e) => nudge(e, (dx) => { state.hsv[0] = clamp01(state.hsv[0] + dx); }));
    const fromFields = () => {
      const rgb = fields.map((f) => Number(f.value) / 255);
      if (rgb.some((c) => !Number.isFinite(c) || c < 0 || c > 1)) return ctx.error('a colour component is a number from 0 to 255');
      send(rgb);
    };
    fields.forEach((f) => f.addEventListener('keydown', (e) => { if (e.key === 'Enter') { e.preventDefault(); fromFields(); } }));
    fields.forEach((f) => f.addEventListener('change', fromFields));
    const fromHexField = () => {
      const rgb = fromHex(hex.value);
      if (!rgb) return ctx.error(`'${hex.value}' is not a colour like #a0b0c0`);
      send(rgb);
    };
    hex.addEventListener('keydown', (e) => { if (e.key === 'Enter') { e.preventDefault(); fromHexField(); } });
    hex.addEventListener('change', fromHexField);
    const swatches = (host, colors) => {
      host.replaceChildren(...colors.map((c) => {
        const b = h('button', { type: 'button', class: 'swatch-button', title: c, 'aria-label': c, style: `background:${c}` });
        b.addEventListener('click', () => send(fromHex(c)));
        return b;
      }));
    };
    el._palettes = () => {
      if (!shows()) return;
      const modes = el._w?.state?.modes || w.state?.modes || [];
      palette.hidden = !modes.includes('ColorPaletteSimpleColors');
      recent.hidden = !modes.includes('ColorHistory') || history.length === 0;
      swatches(palette, PALETTE);
      swatches(recent, history);
    };
    return el;
  },
  update(el, w) {
    const c = w.state?.color || [0, 0, 0, 255];
    const rgb = c.slice(0, 3).map((x) => x / 255);
    const hsv = rgbToHsv(...rgb);
    // A grey has no hue of its own: keep the hue the person was on.
    if (hsv[1] === 0 || hsv[2] === 0) hsv[0] = el._state.hsv[0];
    el._state.hsv = hsv;
    el._state.alpha = (c[3] ?? 255) / 255;
    el._showLocal();
    el._palettes();
  },
};
