#include "RshviewEditorDiff.h"

#include <string>
#include <vector>

namespace {
using Json = nlohmann::json;

/// Every key but the children, and the number of children, alike.
bool SameOwnState(const Json& before, const Json& after) {
  if (!before.is_object() || !after.is_object() || before.size() != after.size()) return false;
  for (auto item = after.begin(); item != after.end(); ++item) {
    const auto other = before.find(item.key());
    if (other == before.end()) return false;
    if (item.key() == "children") {
      if (!other->is_array() || !item->is_array() || other->size() != item->size()) return false;
    } else if (*other != *item) {
      return false;
    }
  }
  return true;
}

/// True when `path` is `ancestor` or lies below it.
bool Covers(const std::string& ancestor, const std::string& path) {
  if (ancestor.empty()) return true;  // the editor itself
  return path == ancestor || (path.size() > ancestor.size() && path.starts_with(ancestor) &&
                              path[ancestor.size()] == '/');
}

class Collector {
 public:
  void Report(const Json& widget) {
    const std::string path = widget["path"].get<std::string>();
    for (const auto& entry : changed_)
      if (Covers(entry.first, path)) return;
    std::erase_if(changed_, [&](const auto& entry) { return Covers(path, entry.first); });
    changed_.emplace_back(path, &widget);
  }
  Json Result() const {
    Json list = Json::array();
    for (const auto& [path, widget] : changed_)
      list.push_back({{"path", path}, {"widget", *widget}});
    return list;
  }

 private:
  std::vector<std::pair<std::string, const Json*>> changed_;
};

void Compare(const Json& before, const Json& after, const Json& named, Collector& collector) {
  const Json& reported = after.contains("path") && after["path"].is_string() ? after : named;
  if (!SameOwnState(before, after)) {
    collector.Report(reported);
    return;
  }
  const auto children = after.find("children");
  if (children == after.end()) return;
  const Json& earlier = before.at("children");
  for (std::size_t i = 0; i < children->size(); ++i)
    Compare(earlier[i], (*children)[i], reported, collector);
}
}  // namespace

nlohmann::json RshviewChangedWidgets(const nlohmann::json& before, const nlohmann::json& after) {
  Collector collector;
  Compare(before, after, after, collector);
  return collector.Result();
}
