// A reset of the parameter of a label to its default (Ctrl-click or double-click on the label).
//
// The server resolves the label in the editor it keeps open, as that editor stands: the classic
// editor shows one shader at a time (its "edit" walks into a connected sub-shader under the same
// label names), the immersive one nests the editors of connected sub-shaders. So the page sends
// the label's widget path, not a parameter name it would have to work out from a document it may
// hold an older copy of; the answer's `reset` names the parameter the server took.

const LABEL = /^(?:parameterLabel|ParameterLabel)\d+$/;

/** Whether the widget at `path` is a parameter's label (the editors name them so). */
export function isParameterLabel(path) {
  const segments = String(path ?? '').split('/');
  return LABEL.test(segments[segments.length - 1].replace(/\[\d+\]$/, ''));
}

/** The body of POST /api/nodes/{id}/reset for the label at `path` of the `kind` editor. */
export function resetBody(kind, path) {
  return { editor: kind, path };
}

/** "node.parameter" for the answer's `reset`, or the label's own text when it names none. */
export function resetTarget(answer, labelText) {
  const r = answer?.reset;
  return r?.node && r?.parameter ? `${r.node}.${r.parameter}` : `'${labelText}'`;
}
