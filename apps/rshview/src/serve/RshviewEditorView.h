// What an editor's widget paths mean, as one short text: an event made on a tree of one view is
// played on the same widgets in any tree of that view, whatever values they hold.
#pragma once

#include <string>
#include <string_view>

#include "RshviewEditorDiff.h"

/// The view of `tree` shown in display units `units` (their JSON text): 16 hex digits that change
/// with the widgets' names, classes and numbers of children (so with their paths), the texts that
/// tell a person what a widget stands for (labels, titles, button labels and icons, unit suffixes,
/// the entries of combos and lists) and the units, and not with the values the widgets show. Two
/// builds of one editor in the same state share their view, so an event queued for a server that
/// restarted is still played when nothing it relies on moved.
std::string RshviewEditorView(const RshviewWidgetText& tree, std::string_view units);
