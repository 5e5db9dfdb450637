// Drag to scrub: a horizontal drag on a numeric field changes its value (Shift: ten times
// finer); a click without a drag still places the caret as usual.

const THRESHOLD = 3;

/** The change per pixel for a value: about a hundredth of its magnitude, at least 0.001. */
export function scrubStep(value, integer) {
  if (integer) return 1;
  const magnitude = Math.abs(value) > 1e-9 ? Math.abs(value) : 1;
  return Math.max(10 ** Math.floor(Math.log10(magnitude)) / 100, 0.001);
}

export function scrubbable(input, { get, commit, preview, step, integer = () => false }) {
  input.classList.add('scrub');
  input.addEventListener('pointerdown', (e) => {
    if (e.button !== 0 || input.disabled) return;
    const startX = e.clientX;
    const start = get();
    if (!Number.isFinite(start)) return;
    const perPixel = step ? step() / 4 : scrubStep(start, integer());
    let scrubbing = false;
    let value = start;
    const move = (m) => {
      const dx = m.clientX - startX;
      if (!scrubbing && Math.abs(dx) < THRESHOLD) return;
      if (!scrubbing) {
        scrubbing = true;
        input.setPointerCapture(m.pointerId);
        input.classList.add('scrubbing');
      }
      m.preventDefault();
      value = start + dx * perPixel * (m.shiftKey ? 0.1 : 1);
      if (integer()) value = Math.round(value);
      preview(value);
    };
    const up = () => {
      input.removeEventListener('pointermove', move);
      input.removeEventListener('pointerup', up);
      input.removeEventListener('pointercancel', up);
      if (!scrubbing) return;
      input.classList.remove('scrubbing');
      // The field shows what was sent; its own Enter/blur commit must not send it a second time.
      input._shown = input.value;
      commit(value);
    };
    input.addEventListener('pointermove', move);
    input.addEventListener('pointerup', up);
    input.addEventListener('pointercancel', up);
  });
}
