#include "KEPVidTree.h"

#include <vector>

#include "KEPString.h"
#include "KEPVidUserEvent.h"
#include "KEPVidWidget.h"

namespace {

// Names of the first level below `widget` that has named widgets (for "not found" messages).
std::string AvailableNames(const KEPVidWidget* widget) {
  constexpr std::size_t kShown = 30;
  std::vector<const KEPVidWidget*> level{widget};
  while (!level.empty()) {
    std::vector<const KEPVidWidget*> next;
    for (const KEPVidWidget* w : level)
      for (std::size_t i = 0; i < w->GetChildCount(); ++i) next.push_back(w->GetChild(i));
    std::string names;
    std::size_t shown = 0;
    for (const KEPVidWidget* w : next) {
      if (w->GetName().empty()) continue;
      if (shown == kShown) {
        names += ", ...";
        break;
      }
      if (shown++) names += ", ";
      names += w->GetName();
    }
    if (!names.empty()) return names;
    level.swap(next);
  }
  return "none: it has no named descendants";
}

}  // namespace

KEPVidWidget* KEPVidFindByPath(KEPVidWidget* root, std::string_view path, std::string& error) {
  if (!root) {
    error = "no widget tree to look in";
    return nullptr;
  }
  KEPVidWidget* current = root;
  if (path.empty()) return current;
  int position = 1;
  std::string_view rest = path;
  for (;;) {
    const std::size_t slash = rest.find('/');
    const std::string_view segment = rest.substr(0, slash);
    if (segment.empty()) {
      error = "widget path " + KEPVidQuote(path) + ": segment " + std::to_string(position) +
              " is empty";
      return nullptr;
    }
    KEPVidWidget* found = current->FindNamedChild(segment);
    if (!found) {
      error = "widget path " + KEPVidQuote(path) + ": segment " + std::to_string(position) + " " +
              KEPVidQuote(segment) + " names no widget below " +
              (current == root ? std::string("the root") : KEPVidWidgetLabel(current)) +
              " (available: " + AvailableNames(current) + ")";
      return nullptr;
    }
    current = found;
    if (slash == std::string_view::npos) return current;
    rest.remove_prefix(slash + 1);
    ++position;
  }
}

std::string KEPVidPathOf(const KEPVidWidget* root, const KEPVidWidget* widget) {
  std::vector<const KEPVidWidget*> chain;
  for (const KEPVidWidget* w = widget; w != root; w = w->GetFather()) {
    if (!w) return std::string();
    chain.push_back(w);
  }
  std::string path;
  for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
    if ((*it)->GetName().empty()) continue;
    if (!path.empty()) path += '/';
    path += (*it)->GetName();
  }
  return path;
}

HRESULT KEPVidInject(KEPVidWidget* root, std::string_view path, KEPVidAction action,
                     std::string_view argument, std::string& error) {
  KEPVidWidget* widget = KEPVidFindByPath(root, path, error);
  if (!widget) return E_INVALIDARG;
  std::string refusal;
  const HRESULT hr = widget->InjectUserEvent(action, argument, refusal);
  if (FAILED(hr)) {
    error = std::string(path);
    error += ": ";
    error += refusal.empty() ? std::string("the action was refused") : refusal;
  }
  return hr;
}

bool KEPVidParseAction(std::string_view word, KEPVidAction& action) {
  static constexpr KEPVidAction kActions[] = {
      KEPVidAction::Set,    KEPVidAction::Type,   KEPVidAction::Press,    KEPVidAction::Toggle,
      KEPVidAction::Select, KEPVidAction::Expand, KEPVidAction::Collapse, KEPVidAction::Color,
      KEPVidAction::Choose, KEPVidAction::Open,   KEPVidAction::Close,    KEPVidAction::Drag,
      KEPVidAction::Ok,     KEPVidAction::Cancel};
  const std::string lower = KEPToLower(KEPTrimBlanks(word));
  for (const KEPVidAction candidate : kActions) {
    if (lower == KEPVidActionWord(candidate)) {
      action = candidate;
      return true;
    }
  }
  return false;
}
