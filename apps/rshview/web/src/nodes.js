// The node list: materials (and lights) with their sub-shaders nested below them, each showing
// its alias and type; a filter keeps the nodes that match and the nodes above them.

import { h } from './dom.js';

/** The nodes as a forest: [{node, children}], children through each node's parent. */
export function nodeForest(nodes) {
  const byId = new Map(nodes.map((n) => [n.id, { node: n, children: [] }]));
  const roots = [];
  for (const n of nodes) {
    const item = byId.get(n.id);
    const parent = n.parent ? byId.get(n.parent) : null;
    if (parent && parent !== item) parent.children.push(item);
    else roots.push(item);
  }
  return roots;
}

export class NodeList {
  constructor(root, onSelect) {
    this.root = root;
    this.onSelect = onSelect;
    this.items = new Map();
    this.selected = null;
    root.addEventListener('keydown', (e) => this.key(e));
  }

  show(nodes) {
    this.items.clear();
    const make = ({ node, children }, depth) => {
      const row = h('button', { type: 'button', class: 'node', 'data-node': node.id, style: `padding-left:${8 + depth * 14}px`, tabindex: '-1', title: `${node.id} · ${node.type}` },
        h('span', { class: `kind kind-${node.kind || 'other'}`, 'aria-hidden': 'true' }),
        h('span', { class: 'alias' }, node.alias || node.id),
        h('span', { class: 'type' }, node.type));
      row.addEventListener('click', () => this.onSelect(node.id));
      const li = h('li', { role: 'treeitem', 'aria-selected': 'false' }, row);
      this.items.set(node.id, { li, row, node });
      if (children.length > 0) {
        li.setAttribute('aria-expanded', 'true');
        li.append(h('ul', { role: 'group' }, ...children.map((c) => make(c, depth + 1))));
      }
      return li;
    };
    this.root.replaceChildren(...nodeForest(nodes).map((r) => make(r, 0)));
    if (this.selected) this.select(this.selected);
    else this.root.querySelector('.node')?.setAttribute('tabindex', '0');
    if (this.filterText) this.filter(this.filterText);
  }

  select(id) {
    this.selected = id;
    for (const [key, { li, row }] of this.items) {
      const on = key === id;
      li.setAttribute('aria-selected', String(on));
      row.classList.toggle('selected', on);
      row.setAttribute('tabindex', on ? '0' : '-1');
    }
  }

  filter(text) {
    this.filterText = text;
    const t = text.trim().toLowerCase();
    const match = (n) => !t || [n.id, n.alias, n.type].some((x) => String(x || '').toLowerCase().includes(t));
    const keep = new Set();
    for (const { node } of this.items.values()) {
      if (!match(node)) continue;
      for (let id = node.id, guard = 0; id && guard < 64; guard++) {
        keep.add(id);
        id = this.items.get(id)?.node.parent;
      }
    }
    for (const [id, { li }] of this.items) li.hidden = !keep.has(id);
  }

  key(e) {
    const rows = [...this.root.querySelectorAll('.node')].filter((r) => r.offsetParent !== null);
    const at = rows.indexOf(document.activeElement);
    if (at < 0) return;
    let next = null;
    if (e.key === 'ArrowDown') next = rows[at + 1];
    else if (e.key === 'ArrowUp') next = rows[at - 1];
    else if (e.key === 'Home') next = rows[0];
    else if (e.key === 'End') next = rows[rows.length - 1];
    else return;
    e.preventDefault();
    if (next) {
      rows[at].setAttribute('tabindex', '-1');
      next.setAttribute('tabindex', '0');
      next.focus();
    }
  }
}
