// The widget tree seen from outside: widgets found by path, the tree written as JSON or as text a
// person reads, and a person's actions injected by path. The application and the tests use it;
// the module never does.
//
// A path is made of widget names separated by "/". Each name is looked for among the descendants
// of the widget reached so far, breadth first, so intermediate layouts may be left out:
// "ParameterGroup0/ParameterWidget3/scalarSlider". A name may carry an index, "scalarSlider[2]":
// the third of the widgets so named at the shallowest depth where the name occurs (siblings of one
// name, such as a vector's sliders, are told apart that way). The empty path is the root itself.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

#include "KEPTypes.h"
#include "KEPVidTypes.h"

class KEPVidWidget;

/// The widget that `path` designates below `root`, or null with `error` naming the segment that
/// is empty or does not resolve, its position, and the names available where it was looked for.
KEPVidWidget* KEPVidFindByPath(KEPVidWidget* root, std::string_view path, std::string& error);

/// The path of `widget` from `root` (names of its named ancestors below `root`, then its own, each
/// with "[k]" when k earlier siblings bear the same name); empty for the root, or when `widget` is
/// not below `root`.
std::string KEPVidPathOf(const KEPVidWidget* root, const KEPVidWidget* widget);

/// How many earlier siblings of `widget` bear its name (0 for an unnamed or fatherless widget).
std::size_t KEPVidTwinIndex(const KEPVidWidget* widget);

/// The tree as JSON (see docs/formats.md, "Widget tree JSON"). Texts are valid UTF-8 (invalid
/// sequences become U+FFFD), numbers that are not finite are null.
nlohmann::json KEPVidToJson(const KEPVidWidget* root);

/// The same tree written straight to JSON text, in a fixed key order, without building the
/// document first (the fast form for large trees), on one line.
std::string KEPVidToJsonText(const KEPVidWidget* root);

/// The tree as indented text, one widget a line: `Class name [row,column] key=value ...`.
std::string KEPVidToText(const KEPVidWidget* root);

/// Finds the widget at `path` and applies a person's `action` to it (KEPVidWidget::
/// InjectUserEvent). E_INVALIDARG with `error` (which starts with the path) when the path does
/// not resolve or the widget refuses the action.
HRESULT KEPVidInject(KEPVidWidget* root, std::string_view path, KEPVidAction action,
                     std::string_view argument, std::string& error);

/// Reads an action's word: "set", "type", "press", "toggle", "select", "expand", "collapse",
/// "color", "choose", "open", "close", "drag", "ok", "cancel" (case-insensitive).
bool KEPVidParseAction(std::string_view word, KEPVidAction& action);
