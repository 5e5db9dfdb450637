// Which parameter a label of an editor names, for a reset to its default (Ctrl-click or
// double-click on the label).
//
// The classic editor names its labels by the parameter's position: "parameterLabel<i>" is the
// i-th parameter (from 1) of the node shown. The immersive editor counts shown rows instead and
// nests the editors of connected sub-shaders, so a label is found by its text among the
// parameters of the node whose editor holds it: every "ParameterConnectedShader<k>" on the path
// leads from the node of that level to the sub-shader connected to its row k.

const CLASSIC_LABEL = /^parameterLabel(\d+)$/;
const IMMERSIVE_LABEL = /^ParameterLabel\d+$/;
const CONNECTED = /^ParameterConnectedShader(\d+)(?:\[\d+\])?$/;

/** The one parameter of `node` whose label is `text`, or null (none, or several alike). */
function byLabel(node, text) {
  const found = (node?.parameters || []).filter((p) => p.label === text);
  return found.length === 1 ? found[0].name : null;
}

/**
 * `{node, parameter}` for the label at `path` in the `kind` editor of node `nodeId`, or null.
 * `doc` is GET /api/document's answer; `labelText(path)` the text shown by the label at a path.
 */
export function parameterOfLabel({ path, kind, nodeId, doc, labelText }) {
  const nodes = new Map((doc?.nodes || []).map((n) => [n.id, n]));
  const segments = String(path).split('/');
  const last = segments[segments.length - 1].replace(/\[\d+\]$/, '');
  if (kind === 'classic') {
    const m = CLASSIC_LABEL.exec(last);
    const parameter = m ? nodes.get(nodeId)?.parameters?.[Number(m[1]) - 1] : null;
    return parameter ? { node: nodeId, parameter: parameter.name } : null;
  }
  if (!IMMERSIVE_LABEL.test(last)) return null;
  let owner = nodes.get(nodeId);
  for (let i = 0; owner && i < segments.length - 1; i++) {
    const m = CONNECTED.exec(segments[i]);
    if (!m) continue;
    // The row's own label stands beside the expander of its connected sub-shader.
    const rowLabel = [...segments.slice(0, i), `ParameterLabel${m[1]}`].join('/');
    const name = byLabel(owner, labelText(rowLabel));
    const target = owner.subShaders?.find((s) => s.parameter === name)?.node;
    owner = target ? nodes.get(target) : null;
  }
  const name = owner ? byLabel(owner, labelText(path)) : null;
  return name ? { node: owner.id, parameter: name } : null;
}
