// The widget tree as JSON: one serialiser that writes either JSON text, through a cursor, or an
// nlohmann document (see docs/formats.md, "Widget tree JSON").
#include <utf8.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <variant>
#include <vector>

#include "KEPBaseUnknown.h"
#include "KEPISYPIntrospectable.h"
#include "KEPParmDictionary.h"
#include "KEPVidCtl.h"
#include "KEPVidEncoding.h"
#include "KEPVidTree.h"
#include "KEPVidWidget.h"

// The small writes of the text sink are forced inline (both compilers take the attribute): most
// of a tree is fixed keys and short texts, and with the length of a literal known at the call the
// copy is a few moves rather than a call.
#define KEP_JSON_INLINE [[gnu::always_inline]] inline

namespace {

// ---------------------------------------------------------------------------------------------
// Sinks: the serialiser writes the same events to JSON text or to an nlohmann document.

class TextSink {
 public:
  // Writes through a cursor into `out`, grown ahead of need: most writes are a copy of a few
  // bytes, without the bookkeeping of a string append each time.
  explicit TextSink(std::string& out, std::size_t expected) : out_(out) {
    out_.resize(std::max<std::size_t>(expected, 256));
  }
  /// Cuts the text to what was written; call once at the end.
  void Finish() { out_.resize(used_); }

  void Key(std::string_view key) {
    Separate();
    Quoted(key);
    Put(':');
  }
  void BeginObject() {
    Separate();
    Put('{');
  }
  void EndObject() { Put('}'); }
  void BeginArray() {
    Separate();
    Put('[');
  }
  void EndArray() { Put(']'); }
  void Null() {
    Separate();
    Put("null");
  }
  void Bool(bool value) {
    Separate();
    Put(value ? std::string_view("true") : std::string_view("false"));
  }
  void Int(long long value) {
    Separate();
    char* at = Room(24);
    used_ += static_cast<std::size_t>(std::to_chars(at, at + 24, value).ptr - at);
  }
  void Double(double value) {
    if (!std::isfinite(value)) return Null();
    Separate();
    // The shortest form that reads back the same, straight into the text; a number written
    // without a point or an exponent gets ".0" so that it reads back as a double
    // (KEPVidAppendDouble's form).
    char* at = Room(34);
    char* end = std::to_chars(at, at + 32, value).ptr;
    if (std::find_if(at, end, [](char c) { return c == '.' || c == 'e' || c == 'E'; }) == end) {
      *end++ = '.';
      *end++ = '0';
    }
    used_ += static_cast<std::size_t>(end - at);
  }
  void String(std::string_view utf8) {
    Separate();
    Quoted(utf8);
  }
  /// A key or a string known to be plain ASCII that needs no escape (class names, the fixed
  /// keys, paths made of plain names).
  KEP_JSON_INLINE void KnownKey(std::string_view key) {
    char* at = Room(key.size() + 4);
    if (NeedsComma()) *at++ = ',';
    *at++ = '"';
    std::memcpy(at, key.data(), key.size());
    at += key.size();
    *at++ = '"';
    *at++ = ':';
    used_ = static_cast<std::size_t>(at - out_.data());
  }
  KEP_JSON_INLINE void KnownString(std::string_view text) {
    char* at = Room(text.size() + 3);
    if (NeedsComma()) *at++ = ',';
    *at++ = '"';
    std::memcpy(at, text.data(), text.size());
    at += text.size();
    *at++ = '"';
    used_ = static_cast<std::size_t>(at - out_.data());
  }
  void String16(const std::u16string& text) {
    Separate();
    scratch_.clear();
    KEPVidAppendUtf16(scratch_, text);
    Quoted(scratch_);
  }

 private:
  KEP_JSON_INLINE char* Room(std::size_t bytes) {
    if (out_.size() - used_ < bytes) [[unlikely]]
      Grow(bytes);
    return out_.data() + used_;
  }
  void Grow(std::size_t bytes) { out_.resize(std::max(out_.size() * 2, used_ + bytes)); }
  KEP_JSON_INLINE void Put(char c) {
    *Room(1) = c;
    ++used_;
  }
  void Put(std::string_view text) {
    std::memcpy(Room(text.size()), text.data(), text.size());
    used_ += text.size();
  }
  void Quoted(std::string_view utf8) {
    // Most texts are plain ASCII that needs no escape: one scan, one copy.
    if (KEPVidIsPlainText(utf8)) {
      char* at = Room(utf8.size() + 2);
      *at++ = '"';
      std::memcpy(at, utf8.data(), utf8.size());
      at[utf8.size()] = '"';
      used_ += utf8.size() + 2;
      return;
    }
    escaped_.clear();
    escaped_ += '"';
    if (KEPVidIsAscii(utf8) || utf8::find_invalid(utf8.begin(), utf8.end()) == utf8.end()) {
      KEPVidAppendEscaped(escaped_, utf8);
    } else {
      KEPVidAppendEscaped(escaped_, KEPVidValidUtf8(utf8));
    }
    escaped_ += '"';
    Put(escaped_);
  }
  // A comma before anything that follows a complete value or member.
  KEP_JSON_INLINE bool NeedsComma() const {
    if (used_ == 0) return false;
    const char last = out_[used_ - 1];
    return last != '{' && last != '[' && last != ':';
  }
  KEP_JSON_INLINE void Separate() {
    if (NeedsComma()) Put(',');
  }
  std::string& out_;
  std::size_t used_ = 0;
  std::string scratch_;
  std::string escaped_;
};

class DomSink {
 public:
  explicit DomSink(nlohmann::json& root) : root_(root) {}
  void Key(std::string_view key) { key_ = key; }
  void BeginObject() { stack_.push_back(Put(nlohmann::json::object())); }
  void EndObject() { stack_.pop_back(); }
  void BeginArray() { stack_.push_back(Put(nlohmann::json::array())); }
  void EndArray() { stack_.pop_back(); }
  void Null() { Put(nullptr); }
  void Bool(bool value) { Put(value); }
  void Int(long long value) { Put(value); }
  void Double(double value) {
    if (std::isfinite(value)) {
      Put(value);
    } else {
      Put(nullptr);
    }
  }
  void String(std::string_view utf8) { Put(KEPVidValidUtf8(utf8)); }
  void KnownKey(std::string_view key) { key_ = key; }
  void KnownString(std::string_view text) { Put(std::string(text)); }
  void String16(const std::u16string& text) {
    std::string utf8;
    KEPVidAppendUtf16(utf8, text);
    Put(std::move(utf8));
  }

 private:
  // Places a value under the pending key of the open object, at the end of the open array, or
  // as the document; returns where it went (containers stay put while their children are added).
  template <class V>
  nlohmann::json* Put(V&& value) {
    if (stack_.empty()) {
      root_ = std::forward<V>(value);
      return &root_;
    }
    nlohmann::json& top = *stack_.back();
    if (top.is_array()) {
      top.push_back(std::forward<V>(value));
      return &top.back();
    }
    nlohmann::json& slot = top[std::string(key_)];
    slot = std::forward<V>(value);
    return &slot;
  }
  nlohmann::json& root_;
  std::vector<nlohmann::json*> stack_;
  std::string_view key_;
};

// A widget's DescribeState, written into a sink.
template <class Sink>
class StateToSink final : public KEPVidStateWriter {
 public:
  explicit StateToSink(Sink& sink) : sink_(sink) {}
  void Bool(std::string_view key, bool value) override {
    sink_.Key(key);
    sink_.Bool(value);
  }
  void Int(std::string_view key, long long value) override {
    sink_.Key(key);
    sink_.Int(value);
  }
  void Double(std::string_view key, double value) override {
    sink_.Key(key);
    sink_.Double(value);
  }
  void Text(std::string_view key, std::string_view value) override {
    sink_.Key(key);
    sink_.String(value);
  }
  void TextList(std::string_view key, const std::vector<std::string>& values) override {
    sink_.Key(key);
    sink_.BeginArray();
    for (const std::string& value : values) sink_.String(value);
    sink_.EndArray();
  }
  void DoubleList(std::string_view key, const std::vector<double>& values) override {
    sink_.Key(key);
    sink_.BeginArray();
    for (const double value : values) sink_.Double(value);
    sink_.EndArray();
  }
  void IntList(std::string_view key, std::span<const int> values) override {
    sink_.Key(key);
    sink_.BeginArray();
    for (const int value : values) sink_.Int(value);
    sink_.EndArray();
  }

 private:
  Sink& sink_;
};

// ---------------------------------------------------------------------------------------------
// Introspected properties of a control

// Which classes have introspected properties, remembered for one serialisation (registrations do
// not change while a tree is written): most controls have none, and asking costs a lookup.
class PropertyClasses {
 public:
  bool MayHaveProperties(const KEPVidWidget* widget) {
    const KEPMetaClass* meta = widget->GetMetaObject();
    if (!meta->IsAKindOf(KEPVidCtl::ClassName())) return false;
    for (const auto& [klass, has] : known_)
      if (klass == meta) return has;
    const bool has = KEPSYPRegistry::FindFor(widget) != nullptr ||
                     KEPSYPRegistry::FindAdapter(widget) != nullptr;
    known_.emplace_back(meta, has);
    return has;
  }

 private:
  std::vector<std::pair<const KEPMetaClass*, bool>> known_;
};

template <class Sink>
void WriteValue(Sink& sink, const KEPSYPValue& value) {
  std::visit(
      [&sink](const auto& v) {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, std::monostate>) {
          sink.Null();
        } else if constexpr (std::is_same_v<T, bool>) {
          sink.Bool(v);
        } else if constexpr (std::is_same_v<T, int>) {
          sink.Int(v);
        } else if constexpr (std::is_same_v<T, double>) {
          sink.Double(v);
        } else if constexpr (std::is_same_v<T, KEPString>) {
          sink.String(v);
        } else if constexpr (std::is_same_v<T, KEPMathPoint2D>) {
          sink.BeginObject();
          sink.Key("x");
          sink.Double(v.x);
          sink.Key("y");
          sink.Double(v.y);
          sink.EndObject();
        } else {
          // An interface: a unit or magnitude by its name, anything else by its class.
          KEPIUnknown* object = v.Get();
          if (!object) return sink.Null();
          if (auto* unit = dynamic_cast<KEPICkeUnit*>(object))
            return sink.String16(unit->Name().Str());
          if (auto* magnitude = dynamic_cast<KEPICkeMagnitude*>(object))
            return sink.String16(magnitude->Name().Str());
          if (auto* base = dynamic_cast<KEPBaseUnknown*>(object))
            return sink.String(base->GetMetaObject()->Name());
          sink.String("interface");
        }
      },
      value);
}

template <class Sink>
void WriteProperties(Sink& sink, const KEPVidWidget* widget, PropertyClasses& classes) {
  if (!classes.MayHaveProperties(widget)) return;
  // Reading properties does not change the control; the interface is not const-qualified.
  auto introspectable =
      KEPQueryVar<KEPISYPIntrospectable>(const_cast<KEPVidWidget*>(widget));  // NOLINT
  if (!introspectable) return;
  const KEPSYPMetaClass* meta = introspectable->GetSYPMetaClass();
  if (!meta) return;
  sink.Key("properties");
  sink.BeginObject();
  for (const KEPSYPProperty* property : meta->GetAllProperties()) {
    KEPSYPValue value;
    if (FAILED(introspectable->GetProperty(property->name, value))) value = std::monostate{};
    sink.Key(property->name);
    WriteValue(sink, value);
  }
  sink.EndObject();
}

// ---------------------------------------------------------------------------------------------
// The serialiser

template <class Sink>
class TreeWriter {
 public:
  explicit TreeWriter(Sink& sink) : sink_(sink) {}

  void Widget(const KEPVidWidget* widget, bool isRoot, std::size_t twin = 0) {
    const KEPString& name = widget->GetName();
    const bool plainName = KEPVidIsPlainText(name);
    sink_.BeginObject();
    sink_.KnownKey("class");
    sink_.KnownString(widget->GetMetaObject()->Name());
    sink_.KnownKey("name");
    if (plainName) {
      sink_.KnownString(name);
    } else {
      sink_.String(name);
    }
    // The path of the root is empty; an unnamed widget below it has no path of its own (its
    // children's paths leave it out, as path lookup does).
    const std::size_t pathSize = path_.size();
    const bool pathWasPlain = pathPlain_;
    const bool named = !isRoot && !name.empty();
    if (named) {
      if (!path_.empty()) path_ += '/';
      path_ += name;
      if (twin > 0) {
        path_ += '[';
        path_ += std::to_string(twin);
        path_ += ']';
      }
      pathPlain_ = pathPlain_ && plainName;
    }
    sink_.KnownKey("path");
    if (!isRoot && !named) {
      sink_.Null();
    } else if (pathPlain_) {
      sink_.KnownString(path_);
    } else {
      sink_.String(path_);
    }
    sink_.KnownKey("visible");
    sink_.Bool(widget->IsVisible());
    sink_.KnownKey("sensitive");
    sink_.Bool(widget->IsSensitive());
    sink_.KnownKey("layoutWhenInvisible");
    sink_.Bool(widget->GetLayoutWhenInvisible());
    Cell(widget->GetGridCell());
    sink_.KnownKey("minimumSize");
    sink_.BeginObject();
    sink_.KnownKey("width");
    sink_.Int(widget->GetMinimumWidth());
    sink_.KnownKey("height");
    sink_.Int(widget->GetMinimumHeight());
    sink_.EndObject();
    if (widget->HasBackgroundColor()) {
      const KEPVidColor& c = widget->GetBackgroundColor();
      sink_.KnownKey("background");
      sink_.BeginArray();
      sink_.Int(c.red);
      sink_.Int(c.green);
      sink_.Int(c.blue);
      sink_.Int(c.alpha);
      sink_.EndArray();
    }
    if (!widget->GetTooltip().IsEmpty()) {
      sink_.KnownKey("tooltip");
      sink_.String16(widget->GetTooltip().Str());
    }
    if (widget->GetTooltipInitialDelay() != 0.0) {
      sink_.KnownKey("tooltipDelay");
      sink_.Double(widget->GetTooltipInitialDelay());
    }
    sink_.KnownKey("state");
    sink_.BeginObject();
    StateToSink<Sink> state(sink_);
    widget->DescribeState(state);
    sink_.EndObject();
    WriteProperties(sink_, widget, classes_);
    sink_.KnownKey("children");
    sink_.BeginArray();
    Children(widget);
    sink_.EndArray();
    sink_.EndObject();
    path_.resize(pathSize);
    pathPlain_ = pathWasPlain;
  }

 private:
  // Writes the children; a child with earlier siblings of its name gets "[k]" in its path, so
  // that every path designates one widget. Large families count names in a table, small ones by
  // looking back.
  void Children(const KEPVidWidget* widget) {
    const std::size_t count = widget->GetChildCount();
    constexpr std::size_t kLookBack = 16;
    if (count <= kLookBack) {
      for (std::size_t i = 0; i < count; ++i) {
        const KEPVidWidget* child = widget->GetChild(i);
        std::size_t twin = 0;
        if (!child->GetName().empty())
          for (std::size_t j = 0; j < i; ++j)
            if (widget->GetChild(j)->GetName() == child->GetName()) ++twin;
        Widget(child, false, twin);
      }
      return;
    }
    std::unordered_map<std::string_view, std::size_t> seen;
    seen.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
      const KEPVidWidget* child = widget->GetChild(i);
      std::size_t twin = 0;
      if (!child->GetName().empty()) twin = seen[child->GetName()]++;
      Widget(child, false, twin);
    }
  }

  void Cell(const KEPVidGridCell& cell) {
    sink_.KnownKey("cell");
    sink_.BeginObject();
    sink_.KnownKey("row");
    sink_.Int(cell.row);
    sink_.KnownKey("column");
    sink_.Int(cell.column);
    sink_.KnownKey("rowSpan");
    sink_.Int(cell.rowSpan);
    sink_.KnownKey("columnSpan");
    sink_.Int(cell.columnSpan);
    sink_.KnownKey("attach");
    sink_.BeginArray();
    if (cell.attach & KEPVidAttach_Left) sink_.KnownString("left");
    if (cell.attach & KEPVidAttach_Right) sink_.KnownString("right");
    if (cell.attach & KEPVidAttach_Top) sink_.KnownString("top");
    if (cell.attach & KEPVidAttach_Bottom) sink_.KnownString("bottom");
    sink_.EndArray();
    sink_.EndObject();
  }

  Sink& sink_;
  std::string path_;
  bool pathPlain_ = true;
  PropertyClasses classes_;
};

std::size_t CountWidgets(const KEPVidWidget* widget) {
  std::size_t count = 1;
  for (std::size_t i = 0; i < widget->GetChildCount(); ++i)
    count += CountWidgets(widget->GetChild(i));
  return count;
}

}  // namespace

nlohmann::json KEPVidToJson(const KEPVidWidget* root) {
  nlohmann::json document;
  if (!root) return document;
  DomSink sink(document);
  TreeWriter<DomSink> writer(sink);
  writer.Widget(root, true);
  return document;
}

std::string KEPVidToJsonText(const KEPVidWidget* root) {
  std::string text;
  if (!root) return "null";
  // About 400 bytes a widget: one allocation for most trees.
  TextSink sink(text, CountWidgets(root) * 400);
  TreeWriter<TextSink> writer(sink);
  writer.Widget(root, true);
  sink.Finish();
  return text;
}
