#include "RshviewEditorDiff.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "RshviewJsonScan.h"

namespace {
/// True when `path` is `ancestor` or lies below it.
bool Covers(const std::string& ancestor, const std::string& path) {
  if (ancestor.empty()) return true;  // the editor itself
  return path == ancestor || (path.size() > ancestor.size() && path.starts_with(ancestor) &&
                              path[ancestor.size()] == '/');
}

using Widget = RshviewWidgetText::Widget;

class Collector {
 public:
  void Report(const Widget& widget) {
    for (const auto* entry : changed_)
      if (Covers(entry->path, widget.path)) return;
    std::erase_if(changed_, [&](const Widget* entry) { return Covers(widget.path, entry->path); });
    changed_.push_back(&widget);
  }
  std::vector<RshviewChangedWidget> Result() const {
    std::vector<RshviewChangedWidget> list;
    for (const Widget* widget : changed_) list.push_back({widget->path, widget->whole});
    return list;
  }

 private:
  std::vector<const Widget*> changed_;
};

void Compare(const RshviewWidgetText& before, std::size_t b, const RshviewWidgetText& after,
             std::size_t a, std::size_t named, Collector& collector) {
  const Widget& old = before.Widgets()[b];
  const Widget& now = after.Widgets()[a];
  const std::size_t reported = now.named ? a : named;
  if (old.before != now.before || old.after != now.after || old.childCount != now.childCount) {
    collector.Report(after.Widgets()[reported]);
    return;
  }
  for (std::size_t i = 0; i < now.children.size(); ++i)
    Compare(before, old.children[i], after, now.children[i], reported, collector);
}
}  // namespace

RshviewWidgetText::RshviewWidgetText(std::string text) : text_(std::move(text)) {
  std::size_t at = 0, root = 0;
  valid_ = ReadWidget(at, root);
  RshviewSkipBlanks(text_, at);
  valid_ = valid_ && at == text_.size();
}

bool RshviewWidgetText::ReadWidget(std::size_t& at, std::size_t& index) {
  RshviewSkipBlanks(text_, at);
  if (at >= text_.size() || text_[at] != '{') return false;
  index = widgets_.size();
  widgets_.emplace_back();
  const std::size_t start = at++;
  std::size_t childrenStart = std::string::npos, childrenEnd = std::string::npos;
  std::vector<std::size_t> children;
  std::string path;
  std::string_view cls, name, state;
  bool named = false;
  for (;;) {
    RshviewSkipBlanks(text_, at);
    if (at < text_.size() && text_[at] == '}') break;
    const std::size_t keyStart = at;
    if (at >= text_.size() || text_[at] != '"' || !RshviewSkipString(text_, at)) return false;
    const std::string_view key(text_.data() + keyStart + 1, at - keyStart - 2);
    RshviewSkipBlanks(text_, at);
    if (at >= text_.size() || text_[at] != ':') return false;
    ++at;
    RshviewSkipBlanks(text_, at);
    const std::size_t valueStart = at;
    if (key == "children") {
      if (at >= text_.size() || text_[at] != '[') return false;
      childrenStart = at++;
      for (;;) {
        RshviewSkipBlanks(text_, at);
        if (at < text_.size() && text_[at] == ']') break;
        std::size_t child = 0;
        if (!ReadWidget(at, child)) return false;
        children.push_back(child);
        RshviewSkipBlanks(text_, at);
        if (at < text_.size() && text_[at] == ',') ++at;
      }
      childrenEnd = ++at;
    } else {
      if (!RshviewSkipValue(text_, at)) return false;
      const std::string_view value(text_.data() + valueStart, at - valueStart);
      if (key == "class")
        cls = value;
      else if (key == "name")
        name = value;
      else if (key == "state")
        state = value;
      if (key == "path" && text_[valueStart] == '"') {
        const nlohmann::json parsed =
            nlohmann::json::parse(text_.begin() + static_cast<std::ptrdiff_t>(valueStart),
                                  text_.begin() + static_cast<std::ptrdiff_t>(at), nullptr, false);
        if (!parsed.is_string()) return false;
        path = parsed.get<std::string>();
        named = true;
      }
    }
    RshviewSkipBlanks(text_, at);
    if (at < text_.size() && text_[at] == ',') ++at;
  }
  const std::size_t end = ++at;
  Widget& widget = widgets_[index];
  widget.path = std::move(path);
  widget.named = named || index == 0;
  widget.cls = cls;
  widget.name = name;
  widget.state = state;
  widget.whole = std::string_view(text_.data() + start, end - start);
  if (childrenStart == std::string::npos) {
    widget.before = widget.whole;
  } else {
    widget.before = std::string_view(text_.data() + start, childrenStart - start);
    widget.after = std::string_view(text_.data() + childrenEnd, end - childrenEnd);
  }
  widget.childCount = children.size();
  widget.children = std::move(children);
  return true;
}

std::vector<RshviewChangedWidget> RshviewChangedWidgets(const RshviewWidgetText& before,
                                                        const RshviewWidgetText& after) {
  if (!after.Valid() || after.Widgets().empty()) return {};
  if (!before.Valid() || before.Widgets().empty()) return {{"", after.Widgets()[0].whole}};
  Collector collector;
  Compare(before, 0, after, 0, 0, collector);
  return collector.Result();
}

std::string RshviewChangedWidgetsJson(const std::vector<RshviewChangedWidget>& changed) {
  std::string text = "[";
  for (const RshviewChangedWidget& widget : changed) {
    if (text.size() > 1) text += ',';
    text +=
        "{\"path\":" +
        nlohmann::json(widget.path).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) +
        ",\"widget\":";
    text += widget.widget;
    text += '}';
  }
  return text + "]";
}
