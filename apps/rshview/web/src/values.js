// Texts for parameter values in the document's JSON form, as the status line shows them.

/** A value as a person reads it: numbers with at most 6 significant digits, lists in brackets. */
export function formatValue(value) {
  if (value === null || value === undefined) return '—';
  if (typeof value === 'number') return String(Number(value.toPrecision(6)));
  if (Array.isArray(value)) return `[${value.map(formatValue).join(', ')}]`;
  if (typeof value === 'object') {
    if ('image' in value) return String(value.image || '(no image)').split(/[\\/]/).pop();
    return JSON.stringify(value);
  }
  return String(value);
}

/** "node.parameter: connected old → new" for one connection change ("none" for no node). */
export function describeConnection(change) {
  return `${change.node}.${change.parameter}: connected ${change.old ?? 'none'} → ${change.new ?? 'none'}`;
}

/** "node.parameter: old → new" for one write. */
export function describeWrite(write) {
  return `${write.node}.${write.parameter}: ${formatValue(write.old)} → ${formatValue(write.new)}`;
}
