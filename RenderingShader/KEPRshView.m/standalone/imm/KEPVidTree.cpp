#include "KEPVidTree.h"

#include <utf8.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <nlohmann/json.hpp>
#include <type_traits>
#include <variant>
#include <vector>

#include "KEPBaseUnknown.h"
#include "KEPISYPIntrospectable.h"
#include "KEPParmDictionary.h"
#include "KEPString.h"
#include "KEPVidCtl.h"
#include "KEPVidUserEvent.h"
#include "KEPVidWidget.h"

namespace {

// ---------------------------------------------------------------------------------------------
// Text helpers

// `text` with each invalid UTF-8 sequence replaced by U+FFFD (the host's one rule for bad text).
std::string ValidUtf8(std::string_view text) {
  if (utf8::find_invalid(text.begin(), text.end()) == text.end()) return std::string(text);
  std::string repaired;
  utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(repaired), 0xFFFDu);
  return repaired;
}

void AppendCodePoint(std::string& out, char32_t c) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | (c >> 12));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (c >> 18));
    out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

// Appends UTF-16 text as UTF-8; an unpaired surrogate becomes U+FFFD.
void AppendUtf16(std::string& out, const std::u16string& text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t c = text[i];
    if (c >= 0xD800 && c <= 0xDFFF) {
      const bool paired =
          c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF;
      if (paired) {
        c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00u);
      } else {
        c = 0xFFFD;
      }
    }
    AppendCodePoint(out, c);
  }
}

// Appends a double in the shortest form that reads back the same; a whole number keeps ".0" so
// that a reader sees a real number (as nlohmann writes it).
void AppendDouble(std::string& out, double value) {
  char text[32];
  const char* end = std::to_chars(text, text + sizeof text, value).ptr;
  const std::string_view written(text, static_cast<std::size_t>(end - text));
  out += written;
  if (written.find_first_of(".eE") == std::string_view::npos) out += ".0";
}

void AppendInt(std::string& out, long long value) {
  char text[24];
  const char* end = std::to_chars(text, text + sizeof text, value).ptr;
  out.append(text, static_cast<std::size_t>(end - text));
}

// Appends `text` (valid UTF-8) as the inside of a JSON string.
void AppendEscaped(std::string& out, std::string_view text) {
  static constexpr char kHex[] = "0123456789abcdef";
  std::size_t start = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte >= 0x20 && byte != '"' && byte != '\\') continue;
    out.append(text.substr(start, i - start));
    start = i + 1;
    switch (byte) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\t':
        out += "\\t";
        break;
      case '\b':
        out += "\\b";
        break;
      case '\f':
        out += "\\f";
        break;
      default:
        out += "\\u00";
        out += kHex[byte >> 4];
        out += kHex[byte & 0xF];
    }
  }
  out.append(text.substr(start));
}

// True when `text` is ASCII without control characters, quotes or backslashes: it goes into a
// JSON string as it is.
bool IsPlainText(std::string_view text) {
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte >= 0x80 || byte == '"' || byte == '\\') return false;
  }
  return true;
}

bool IsAscii(std::string_view text) {
  for (const char c : text)
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  return true;
}

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
    scratch_.clear();
    AppendDouble(scratch_, value);
    Put(scratch_);
  }
  void String(std::string_view utf8) {
    Separate();
    Quoted(utf8);
  }
  /// A key or a string known to be plain ASCII that needs no escape (class names, the fixed
  /// keys, paths made of plain names).
  void KnownKey(std::string_view key) {
    char* at = Room(key.size() + 4);
    if (NeedsComma()) *at++ = ',';
    *at++ = '"';
    std::memcpy(at, key.data(), key.size());
    at += key.size();
    *at++ = '"';
    *at++ = ':';
    used_ = static_cast<std::size_t>(at - out_.data());
  }
  void KnownString(std::string_view text) {
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
    AppendUtf16(scratch_, text);
    Quoted(scratch_);
  }

 private:
  char* Room(std::size_t bytes) {
    if (out_.size() - used_ < bytes) out_.resize(std::max(out_.size() * 2, used_ + bytes));
    return out_.data() + used_;
  }
  void Put(char c) {
    *Room(1) = c;
    ++used_;
  }
  void Put(std::string_view text) {
    std::memcpy(Room(text.size()), text.data(), text.size());
    used_ += text.size();
  }
  void Quoted(std::string_view utf8) {
    // Most texts are plain ASCII that needs no escape: one scan, one copy.
    if (IsPlainText(utf8)) {
      char* at = Room(utf8.size() + 2);
      *at++ = '"';
      std::memcpy(at, utf8.data(), utf8.size());
      at[utf8.size()] = '"';
      used_ += utf8.size() + 2;
      return;
    }
    escaped_.clear();
    escaped_ += '"';
    if (IsAscii(utf8) || utf8::find_invalid(utf8.begin(), utf8.end()) == utf8.end()) {
      AppendEscaped(escaped_, utf8);
    } else {
      AppendEscaped(escaped_, ValidUtf8(utf8));
    }
    escaped_ += '"';
    Put(escaped_);
  }
  // A comma before anything that follows a complete value or member.
  bool NeedsComma() const {
    if (used_ == 0) return false;
    const char last = out_[used_ - 1];
    return last != '{' && last != '[' && last != ':';
  }
  void Separate() {
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
  void String(std::string_view utf8) { Put(ValidUtf8(utf8)); }
  void KnownKey(std::string_view key) { key_ = key; }
  void KnownString(std::string_view text) { Put(std::string(text)); }
  void String16(const std::u16string& text) {
    std::string utf8;
    AppendUtf16(utf8, text);
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
    const bool has = KEPSYPRegistry::FindFor(widget) != nullptr;
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

  void Widget(const KEPVidWidget* widget, bool isRoot) {
    const KEPString& name = widget->GetName();
    const bool plainName = IsPlainText(name);
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
    for (std::size_t i = 0; i < widget->GetChildCount(); ++i) Widget(widget->GetChild(i), false);
    sink_.EndArray();
    sink_.EndObject();
    path_.resize(pathSize);
    pathPlain_ = pathWasPlain;
  }

 private:
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

// ---------------------------------------------------------------------------------------------
// Text a person reads

// A word as the text form shows it: bare when it is a plain word, else in double quotes.
void AppendWord(std::string& out, std::string_view text) {
  bool plain = !text.empty();
  for (const char c : text) {
    if (c == ' ' || c == '"' || c == '=' || c == ',' || c == '[' || c == ']' ||
        static_cast<unsigned char>(c) < 0x20) {
      plain = false;
      break;
    }
  }
  if (plain) {
    out += ValidUtf8(text);
    return;
  }
  out += '"';
  AppendEscaped(out, ValidUtf8(text));
  out += '"';
}

void AppendNumber(std::string& out, double value) {
  if (!std::isfinite(value)) {
    out += std::isnan(value) ? "nan" : (value > 0 ? "inf" : "-inf");
    return;
  }
  char text[32];
  const char* end = std::to_chars(text, text + sizeof text, value).ptr;
  out.append(text, static_cast<std::size_t>(end - text));
}

// Writes key=value pairs after a widget's line; empty texts and lists are left out.
class StateToText final : public KEPVidStateWriter {
 public:
  explicit StateToText(std::string& out) : out_(out) {}
  void Bool(std::string_view key, bool value) override {
    Key(key);
    out_ += value ? "true" : "false";
  }
  void Int(std::string_view key, long long value) override {
    Key(key);
    AppendInt(out_, value);
  }
  void Double(std::string_view key, double value) override {
    Key(key);
    AppendNumber(out_, value);
  }
  void Text(std::string_view key, std::string_view value) override {
    if (value.empty()) return;
    Key(key);
    AppendWord(out_, value);
  }
  void TextList(std::string_view key, const std::vector<std::string>& values) override {
    if (values.empty()) return;
    Key(key);
    out_ += '[';
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (i) out_ += ',';
      AppendWord(out_, values[i]);
    }
    out_ += ']';
  }
  void DoubleList(std::string_view key, const std::vector<double>& values) override {
    if (values.empty()) return;
    Key(key);
    out_ += '[';
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (i) out_ += ',';
      AppendNumber(out_, values[i]);
    }
    out_ += ']';
  }
  void IntList(std::string_view key, std::span<const int> values) override {
    if (values.empty()) return;
    Key(key);
    out_ += '[';
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (i) out_ += ',';
      AppendInt(out_, values[i]);
    }
    out_ += ']';
  }

 private:
  void Key(std::string_view key) {
    out_ += ' ';
    out_ += key;
    out_ += '=';
  }
  std::string& out_;
};

void WidgetText(std::string& out, const KEPVidWidget* widget, int depth) {
  out.append(static_cast<std::size_t>(depth) * 2, ' ');
  out += widget->GetMetaObject()->Name();
  out += ' ';
  if (widget->GetName().empty()) {
    out += '-';
  } else {
    AppendWord(out, widget->GetName());
  }
  const KEPVidGridCell& cell = widget->GetGridCell();
  out += " [";
  AppendInt(out, cell.row);
  out += ',';
  AppendInt(out, cell.column);
  if (cell.rowSpan != 1 || cell.columnSpan != 1) {
    out += ' ';
    AppendInt(out, cell.rowSpan);
    out += 'x';
    AppendInt(out, cell.columnSpan);
  }
  out += ']';
  if (!widget->IsVisible()) out += " (hidden)";
  if (!widget->IsSensitive()) out += " (disabled)";
  StateToText state(out);
  widget->DescribeState(state);
  out += '\n';
  for (std::size_t i = 0; i < widget->GetChildCount(); ++i)
    WidgetText(out, widget->GetChild(i), depth + 1);
}

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

std::string KEPVidToText(const KEPVidWidget* root) {
  std::string text;
  if (root) WidgetText(text, root, 0);
  return text;
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
      KEPVidAction::Choose, KEPVidAction::Open,   KEPVidAction::Close};
  const std::string lower = KEPToLower(KEPTrimBlanks(word));
  for (const KEPVidAction candidate : kActions) {
    if (lower == KEPVidActionWord(candidate)) {
      action = candidate;
      return true;
    }
  }
  return false;
}
