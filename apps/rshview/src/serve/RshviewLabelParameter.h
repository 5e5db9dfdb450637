// The parameter that a label of an open editor stands for: a reset asked for by a label's widget
// path writes the parameter the person sees beside that label, in whichever shader the editor
// shows at the moment (the classic editor may have walked into a sub-shader; the immersive editor
// nests the editors of connected sub-shaders). It is read from the editor's widgets and the
// document's connections as they are now, not from a copy of the document a client keeps.
#pragma once

#include <string>

#include "KEPHostShaderDocument.h"
#include "KEPHostShaderNode.h"
#include "KEPVidWidget.h"
#include "RshviewReply.h"

/// The parameter of the label at `path` below `editor`, the classic (`classic`) or immersive
/// editor of `node`:
/// - classic "parameterLabel<i>": the i-th parameter (from 1) of the shader the frame shows, the
///   last of the path its title names ("Polished floor - Floor tiles": the floor's connected
///   sub-shader aliased "Floor tiles");
/// - immersive "ParameterLabel<n>": the parameter labelled so of the shader whose editor holds the
///   row, reached from `node` through the rows of each "ParameterConnectedShader<k>" above it.
/// Null with `refusal` set (422) when the path names no such label, when the label is ambiguous
/// (two parameters of one shader shown alike), or when the row is hidden or its value widget
/// insensitive: what the editor does not let the person change is not reset either.
KEPHostParameter* RshviewParameterOfLabel(KEPVidWidget* editor, KEPHostShaderNode& node,
                                          const KEPHostShaderDocument& document, bool classic,
                                          const std::string& path, RshviewReply& refusal);
