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

// The `index`-th widget named `name` exactly `depth` levels below `widget`, in child order;
// `index` counts down the ones passed over, `reached` is set when any widget lies that deep.
KEPVidWidget* FindNthAtDepth(const KEPVidWidget* widget, std::string_view name, int depth,
                             std::size_t& index, bool& reached) {
  const std::size_t count = widget->GetChildCount();
  for (std::size_t i = 0; i < count; ++i) {
    KEPVidWidget* child = widget->GetChild(i);
    if (depth == 1) {
      reached = true;
      if (child->GetName() != name) continue;
      if (index == 0) return child;
      --index;
    } else if (KEPVidWidget* found = FindNthAtDepth(child, name, depth - 1, index, reached)) {
      return found;
    }
  }
  return nullptr;
}

// The `index`-th widget named `name` at the shallowest depth below `widget` where that name
// occurs at all (index 0: the one FindNamedChild finds).
KEPVidWidget* FindNthNamed(const KEPVidWidget* widget, std::string_view name, std::size_t index) {
  if (index == 0) return widget->FindNamedChild(name);
  for (int depth = 1;; ++depth) {
    bool reached = false;
    std::size_t left = index;
    if (KEPVidWidget* found = FindNthAtDepth(widget, name, depth, left, reached)) return found;
    if (!reached) return nullptr;
    // Some were found at this depth but not enough: a deeper level does not count.
    if (left != index) return nullptr;
  }
}

// Splits "name[k]" into the name and k; a segment without brackets has index 0. False when the
// brackets hold anything but a whole number.
bool SplitIndex(std::string_view segment, std::string_view& name, std::size_t& index) {
  name = segment;
  index = 0;
  if (segment.empty() || segment.back() != ']') return true;
  const std::size_t open = segment.rfind('[');
  if (open == std::string_view::npos || open == 0) return false;
  const std::string_view digits = segment.substr(open + 1, segment.size() - open - 2);
  if (digits.empty() || digits.size() > 6) return false;
  for (const char c : digits) {
    if (c < '0' || c > '9') return false;
    index = index * 10 + static_cast<std::size_t>(c - '0');
  }
  name = segment.substr(0, open);
  return true;
}

}  // namespace

std::size_t KEPVidTwinIndex(const KEPVidWidget* widget) {
  const KEPVidWidget* father = widget->GetFather();
  if (!father || widget->GetName().empty()) return 0;
  std::size_t twins = 0;
  for (std::size_t i = 0; i < father->GetChildCount(); ++i) {
    const KEPVidWidget* sibling = father->GetChild(i);
    if (sibling == widget) break;
    if (sibling->GetName() == widget->GetName()) ++twins;
  }
  return twins;
}

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
    std::string_view name;
    std::size_t index = 0;
    if (!SplitIndex(segment, name, index)) {
      error = "widget path " + KEPVidQuote(path) + ": segment " + std::to_string(position) + " " +
              KEPVidQuote(segment) +
              " has an index that is no whole number (name[0], name[1], ...)";
      return nullptr;
    }
    KEPVidWidget* found = FindNthNamed(current, name, index);
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
    if (const std::size_t twin = KEPVidTwinIndex(*it); twin > 0)
      path += '[' + std::to_string(twin) + ']';
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
