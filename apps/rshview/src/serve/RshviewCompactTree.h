// The compact form of an editor's widget tree (GET /api/nodes/{id}/editor?compact=1): the tree as
// KEPVidToJsonText writes it, less what a reader can put back without knowing any editor: the
// keys whose values are the defaults of RshviewCompactDefaults(), empty `children`, and the
// paths that follow from the father's path and the widget's name. A large editor's tree is then
// half as long to send and to read, and the browser draws it sooner.
#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The defaults the compact form leaves out, as the JSON text the answer carries in `defaults`:
/// {"widget": {key: value, ...}, "state": {class: {key: value, ...}, ...}}. An object value of
/// "widget" (`cell`, `minimumSize`) is left out key by key, and whole when all its keys are.
const std::string& RshviewCompactDefaults();

/// `tree` (a widget tree as KEPVidToJsonText writes it, or a subtree) in the compact form; the
/// root keeps its path. Nothing when the text is not such a tree.
std::optional<std::string> RshviewCompactTree(std::string_view tree);
