// Which widgets of an editor changed with an event: the editor's widget tree serialised before
// and after it, compared widget by widget.
#pragma once

#include <nlohmann/json.hpp>

/// The widgets of `after` whose own state (every key but `children`) differs from `before`, or
/// whose number of children changed, as [{path, widget: subtree}]: the highest changed widget of
/// a branch stands for its descendants, an unnamed widget (path null) is reported through its
/// nearest named ancestor. Both trees are KEPVidToJson documents of one editor.
nlohmann::json RshviewChangedWidgets(const nlohmann::json& before, const nlohmann::json& after);
