// The compact form of an editor's widget tree (docs/api.md, GET /api/nodes/{id}/editor with
// compact=1): the server leaves out the keys whose values are the defaults its answer lists, and
// the paths that follow from the father's. Filling them in gives the tree as `rshview dump` writes
// it; nothing here knows one editor or one class from another.

function copy(value) {
  if (Array.isArray(value)) return value.map(copy);
  if (value && typeof value === 'object') {
    const out = {};
    for (const key in value) out[key] = copy(value[key]);
    return out;
  }
  return value;
}

const isObject = (v) => v !== null && typeof v === 'object' && !Array.isArray(v);

/**
 * A function that puts into an object each key of `defaults` it lacks (a fresh copy of an array
 * or object), and into its sub-objects theirs. Made once per table: it runs for every widget.
 */
function filler(defaults) {
  const entries = Object.entries(defaults || {}).map(([key, d]) => ({
    key,
    d,
    plain: d === null || typeof d !== 'object',
    sub: isObject(d) ? filler(d) : null,
  }));
  return (object) => {
    for (const { key, d, plain, sub } of entries) {
      const value = object[key];
      if (value === undefined && !(key in object)) object[key] = plain ? d : copy(d);
      else if (sub && isObject(value)) sub(value);
    }
  };
}

/**
 * The function that fills in, in place, what the compact form left out of one widget: its keys
 * at the defaults of `defaults` (the answer's {widget: {...}, state: {class: {...}}}), and the
 * paths of its children (a child without `path` has its father's path, '/', its name, and `[k]`
 * when k earlier siblings have its name). It works one widget at a time, so that only the widgets
 * drawn are filled in; calling it again on a widget does nothing. Without defaults (a whole tree)
 * it does nothing.
 */
export function makeExpander(defaults) {
  if (!defaults) return (w) => w;
  const fillWidget = filler(defaults.widget);
  const fillState = new Map(Object.entries(defaults.state || {}).map(([cls, d]) => [cls, filler(d)]));
  const done = new WeakSet();
  return (w) => {
    if (!w || done.has(w)) return w;
    done.add(w);
    fillWidget(w);
    const fillOwnState = fillState.get(w.class);
    if (fillOwnState) {
      if (!isObject(w.state)) w.state = {};
      fillOwnState(w.state);
    }
    const children = Array.isArray(w.children) ? w.children : [];
    const named = new Map();
    for (const child of children) {
      if (!child.name) continue;
      const earlier = named.get(child.name) || 0;
      named.set(child.name, earlier + 1);
      if (!('path' in child) && typeof w.path === 'string') {
        child.path = `${w.path ? `${w.path}/` : ''}${child.name}${earlier > 0 ? `[${earlier}]` : ''}`;
      }
    }
    return w;
  };
}

/** Fills in a whole compact tree (see makeExpander); returns it. */
export function expandTree(tree, defaults) {
  const expand = makeExpander(defaults);
  const visit = (w) => {
    expand(w);
    for (const child of w.children) visit(child);
  };
  visit(tree);
  return tree;
}
