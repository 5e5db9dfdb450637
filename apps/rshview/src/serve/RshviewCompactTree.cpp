#include "RshviewCompactTree.h"

#include <charconv>
#include <map>
#include <nlohmann/json.hpp>
#include <span>
#include <vector>

#include "RshviewJsonScan.h"

namespace {
/// A key and its default, as KEPVidToJsonText writes the value.
struct Default {
  std::string_view key;
  std::string_view value;
};

constexpr Default kWidget[] = {
    {"visible", "true"}, {"sensitive", "true"}, {"layoutWhenInvisible", "true"}};
constexpr Default kCell[] = {
    {"row", "0"}, {"column", "0"}, {"rowSpan", "1"}, {"columnSpan", "1"}, {"attach", "[]"}};
constexpr Default kMinimumSize[] = {{"width", "0"}, {"height", "0"}};

// The toolkit's controls and layouts, each with the state most of them hold in the editors.
// Only keys that the class always writes: a reader puts back every key listed.
constexpr Default kGrid[] = {{"rows", "1"},
                             {"columnWeights", "[]"},
                             {"rowWeights", "[]"},
                             {"horizontalSpacing", "2"},
                             {"verticalSpacing", "2"}};
constexpr Default kSlider[] = {
    {"singleStep", "1"}, {"pageStep", "10"},           {"tickInterval", "0"}, {"tickPosition", "0"},
    {"barSize", "1.0"},  {"squareHeightRatio", "0.1"}, {"magnifier", "true"}};
constexpr Default kSpinBox[] = {
    {"singleStep", "1"}, {"suffix", "\"\""}, {"maximumTextLength", "0"}, {"correctionMode", "0"}};
constexpr Default kDoubleSpinBox[] = {{"singleStep", "1"},
                                      {"decimals", "2"},
                                      {"suffix", "\"\""},
                                      {"maximumTextLength", "0"},
                                      {"correctionMode", "0"}};
constexpr Default kEditor[] = {{"characterWidth", "0"}};
constexpr Default kButton[] = {{"label", "\"\""}, {"icon", "\"\""}, {"help", "\"\""}};
constexpr Default kCheckBox[] = {{"label", "\"\""}};
constexpr Default kPopup[] = {{"options", "[0,1,1,1]"}, {"open", "false"}};
constexpr Default kColorPicker[] = {
    {"style", "\"VIDColorPicker\""},
    {"size", "10"},
    {"modes",
     R"(["ColorWheel","ColorSquareS","ColorSlidersAndSpinBoxes","ColorPaletteSimpleColors","ColorHistory"])"},
    {"options", "[1,1]"}};
constexpr Default kImageSelector[] = {
    {"image", "\"\""}, {"groups", "[]"}, {"dpi", "72"}, {"options", "0"}, {"flags", "4"}};

struct ClassDefaults {
  std::string_view name;
  std::span<const Default> state;
};
constexpr ClassDefaults kStates[] = {{"KEPVidLayGrid", kGrid},
                                     {"KEPVidCtlSlider", kSlider},
                                     {"KEPVidCtlSpinBox", kSpinBox},
                                     {"KEPVidCtlDoubleSpinBox", kDoubleSpinBox},
                                     {"KEPVidCtlEditor", kEditor},
                                     {"KEPVidCtlButton", kButton},
                                     {"KEPVidCtlCheckBox", kCheckBox},
                                     {"KEPVidCtlPopup", kPopup},
                                     {"KEPVidCtlColorCompositePicker", kColorPicker},
                                     {"KEPRbaImageDocImmSelector", kImageSelector}};

std::span<const Default> StateDefaults(std::string_view className) {
  for (const ClassDefaults& entry : kStates)
    if (entry.name == className) return entry.state;
  return {};
}

bool Number(std::string_view text, double& value) {
  if (text.empty() || (text[0] != '-' && (text[0] < '0' || text[0] > '9'))) return false;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

/// The same JSON value: the same text, or numbers of one value (1 and 1.0).
bool SameValue(std::string_view a, std::string_view b) {
  if (a == b) return true;
  double x = 0, y = 0;
  return Number(a, x) && Number(b, y) && x == y;
}

const Default* Find(std::span<const Default> defaults, std::string_view key) {
  for (const Default& d : defaults)
    if (d.key == key) return &d;
  return nullptr;
}

/// One key of an object: its name (as written, without quotes) and its value's text.
struct Entry {
  std::string_view key;
  std::string_view value;
};

/// The entries of the object at `at` (moved past it); false when it is not an object.
bool ReadObject(std::string_view text, std::size_t& at, std::vector<Entry>& entries) {
  RshviewSkipBlanks(text, at);
  if (at >= text.size() || text[at] != '{') return false;
  ++at;
  for (;;) {
    RshviewSkipBlanks(text, at);
    if (at >= text.size()) return false;
    if (text[at] == '}') {
      ++at;
      return true;
    }
    const std::size_t keyStart = at;
    if (text[at] != '"' || !RshviewSkipString(text, at)) return false;
    const std::string_view key = text.substr(keyStart + 1, at - keyStart - 2);
    RshviewSkipBlanks(text, at);
    if (at >= text.size() || text[at] != ':') return false;
    ++at;
    RshviewSkipBlanks(text, at);
    const std::size_t valueStart = at;
    if (!RshviewSkipValue(text, at)) return false;
    entries.push_back({key, text.substr(valueStart, at - valueStart)});
    RshviewSkipBlanks(text, at);
    if (at < text.size() && text[at] == ',') ++at;
  }
}

void AppendEntry(std::string& out, bool& first, std::string_view key, std::string_view value) {
  if (!first) out += ',';
  first = false;
  out += '"';
  out += key;
  out += "\":";
  out += value;
}

/// `object` without its entries at their defaults; empty when none is left. False when `object`
/// is not an object.
bool WithoutDefaults(std::string_view object, std::span<const Default> defaults, std::string& out) {
  std::vector<Entry> entries;
  std::size_t at = 0;
  if (!ReadObject(object, at, entries)) return false;
  out.clear();
  bool first = true;
  for (const Entry& entry : entries) {
    const Default* d = Find(defaults, entry.key);
    if (d && SameValue(entry.value, d->value)) continue;
    if (first) out += '{';
    AppendEntry(out, first, entry.key, entry.value);
  }
  if (!first) out += '}';
  return true;
}

/// Where a widget sits: its father's path (as written, without quotes; none when the father has
/// none) and the names of the siblings before it.
struct Father {
  std::optional<std::string_view> path;
  std::map<std::string_view, int> names;
};

/// Writes the compact form of the widgets of a tree, reading each widget's keys in their order
/// (class, name and path come before the state and the children in KEPVidToJsonText's order;
/// in another order a key is only kept as it is).
class Compactor {
 public:
  Compactor(std::string_view text, std::string& out) : text_(text), out_(out) {}

  /// Writes the widget at `at` (moved past it); `father` is null for the root.
  bool Widget(std::size_t& at, Father* father);

 private:
  bool Children(std::size_t& at, const std::optional<std::string_view>& ownPath);
  /// Writes one key of a widget as the compact form has it: left out at its default (or when
  /// its path is `derived`), an object without its keys at their defaults, else as it is.
  bool Put(std::string_view key, std::string_view value, std::string_view className,
           const std::string* derived, bool& first);
  /// The key at `at` (moved past its colon), without quotes.
  bool Key(std::size_t& at, std::string_view& key);

  std::string_view text_;
  std::string& out_;
  std::string scratch_;
};

bool Compactor::Key(std::size_t& at, std::string_view& key) {
  const std::size_t start = at;
  if (at >= text_.size() || text_[at] != '"' || !RshviewSkipString(text_, at)) return false;
  key = text_.substr(start + 1, at - start - 2);
  RshviewSkipBlanks(text_, at);
  if (at >= text_.size() || text_[at] != ':') return false;
  ++at;
  RshviewSkipBlanks(text_, at);
  return true;
}

bool Compactor::Widget(std::size_t& at, Father* father) {
  RshviewSkipBlanks(text_, at);
  if (at >= text_.size() || text_[at] != '{') return false;
  ++at;
  std::string_view className;
  std::optional<std::string_view> ownPath;  // as written, without quotes
  std::string derived;                      // the path a reader derives, once the name is read
  bool derivable = false;
  out_ += '{';
  bool first = true;
  for (;;) {
    RshviewSkipBlanks(text_, at);
    if (at >= text_.size()) return false;
    if (text_[at] == '}') break;
    std::string_view key;
    if (!Key(at, key)) return false;
    if (key == "children") {
      const std::size_t mark = out_.size();
      if (!first) out_ += ',';
      out_ += "\"children\":";
      const std::size_t empty = out_.size();
      if (!Children(at, ownPath)) return false;
      if (out_.size() == empty + 2) {
        out_.resize(mark);  // [] is the default
      } else {
        first = false;
      }
    } else {
      const std::size_t valueStart = at;
      if (!RshviewSkipValue(text_, at)) return false;
      const std::string_view value = text_.substr(valueStart, at - valueStart);
      const bool text = value.size() >= 2 && value.front() == '"';
      const std::string_view inner = text ? value.substr(1, value.size() - 2) : std::string_view();
      if (key == "class" && text) className = inner;
      if (key == "name" && text && !inner.empty() && father && father->path) {
        const int earlier = father->names[inner]++;
        derived.assign(*father->path);
        if (!derived.empty()) derived += '/';
        derived += inner;
        if (earlier > 0) derived += '[' + std::to_string(earlier) + ']';
        derivable = true;
      }
      if (key == "path" && text) ownPath = inner;
      if (!Put(key, value, className, derivable ? &derived : nullptr, first)) return false;
    }
    RshviewSkipBlanks(text_, at);
    if (at < text_.size() && text_[at] == ',') ++at;
  }
  ++at;
  out_ += '}';
  return true;
}

bool Compactor::Put(std::string_view key, std::string_view value, std::string_view className,
                    const std::string* derived, bool& first) {
  if (key == "path" && derived && value.size() >= 2 && value.front() == '"' &&
      value.substr(1, value.size() - 2) == *derived)
    return true;
  if (const Default* d = Find(kWidget, key)) {
    if (!SameValue(value, d->value)) AppendEntry(out_, first, key, value);
    return true;
  }
  std::span<const Default> defaults;
  if (key == "cell") defaults = kCell;
  if (key == "minimumSize") defaults = kMinimumSize;
  if (key == "state") defaults = StateDefaults(className);
  if (defaults.empty()) {
    AppendEntry(out_, first, key, value);
    return true;
  }
  if (!WithoutDefaults(value, defaults, scratch_)) return false;
  if (!scratch_.empty()) AppendEntry(out_, first, key, scratch_);
  return true;
}

bool Compactor::Children(std::size_t& at, const std::optional<std::string_view>& ownPath) {
  if (at >= text_.size() || text_[at] != '[') return false;
  ++at;
  Father father{ownPath, {}};
  out_ += '[';
  bool first = true;
  for (;;) {
    RshviewSkipBlanks(text_, at);
    if (at >= text_.size()) return false;
    if (text_[at] == ']') break;
    if (!first) out_ += ',';
    first = false;
    if (!Widget(at, &father)) return false;
    RshviewSkipBlanks(text_, at);
    if (at < text_.size() && text_[at] == ',') ++at;
  }
  ++at;
  out_ += ']';
  return true;
}

std::string DefaultsObject(std::span<const Default> defaults) {
  nlohmann::ordered_json object = nlohmann::ordered_json::object();
  for (const Default& d : defaults)
    object[std::string(d.key)] = nlohmann::ordered_json::parse(d.value);
  return object.dump();
}
}  // namespace

const std::string& RshviewCompactDefaults() {
  static const std::string text = [] {
    std::string widget = "{";
    for (const Default& d : kWidget) {
      widget += '"';
      widget += d.key;
      widget += "\":";
      widget += d.value;
      widget += ',';
    }
    widget += "\"cell\":" + DefaultsObject(kCell) +
              ",\"minimumSize\":" + DefaultsObject(kMinimumSize) + ",\"children\":[]}";
    std::string states = "{";
    for (const ClassDefaults& entry : kStates) {
      if (states.size() > 1) states += ',';
      states += '"';
      states += entry.name;
      states += "\":" + DefaultsObject(entry.state);
    }
    return "{\"widget\":" + widget + ",\"state\":" + states + "}}";
  }();
  return text;
}

std::optional<std::string> RshviewCompactTree(std::string_view tree) {
  std::string out;
  out.reserve(tree.size() / 2);
  Compactor compactor(tree, out);
  std::size_t at = 0;
  if (!compactor.Widget(at, nullptr)) return std::nullopt;
  RshviewSkipBlanks(tree, at);
  if (at != tree.size()) return std::nullopt;
  return out;
}
