#include "RshviewEditorView.h"

#include <array>
#include <cstdint>
#include <cstdio>

#include "RshviewJsonScan.h"

namespace {
/// 64-bit FNV-1a, fed piece by piece; each piece ends with a byte no JSON text holds raw.
class Fingerprint {
 public:
  void Add(std::string_view piece) {
    for (const char c : piece) Mix(static_cast<unsigned char>(c));
    Mix(0);
  }
  std::string Hex() const {
    std::array<char, 17> text{};
    std::snprintf(text.data(), text.size(), "%016llx", static_cast<unsigned long long>(hash_));
    return text.data();
  }

 private:
  void Mix(unsigned char byte) {
    hash_ ^= byte;
    hash_ *= 0x100000001b3ULL;
  }
  std::uint64_t hash_ = 0xcbf29ce484222325ULL;
};

/// The state keys whose value says what a widget stands for. A label's `text` is its caption;
/// an editor's or a spinner's `text` is the value it shows, and stays out. The entries of a
/// combo or a selector list (`lines`, `items`) count: a choice is sent by its index, and a list
/// that follows a value (the layers of a texture image) may put another entry there.
bool Telling(std::string_view key, std::string_view value, std::string_view cls) {
  if (key == "\"lines\"" || key == "\"items\"") return true;
  if (value.empty() || value.front() != '"') return false;
  if (key == "\"text\"") return cls == "\"KEPVidCtlLabel\"";
  return key == "\"title\"" || key == "\"label\"" || key == "\"icon\"" || key == "\"suffix\"" ||
         key == "\"unitSymbol\"";
}

/// Calls `visit(key, value)` with the raw texts of each member of the object `text`.
template <class Visit>
void Members(std::string_view text, Visit visit) {
  std::size_t at = 0;
  if (text.empty() || text[at] != '{') return;
  ++at;
  while (true) {
    RshviewSkipBlanks(text, at);
    if (at >= text.size() || text[at] != '"') return;
    const std::size_t keyStart = at;
    if (!RshviewSkipString(text, at)) return;
    const std::string_view key = text.substr(keyStart, at - keyStart);
    RshviewSkipBlanks(text, at);
    if (at >= text.size() || text[at] != ':') return;
    ++at;
    RshviewSkipBlanks(text, at);
    const std::size_t valueStart = at;
    if (!RshviewSkipValue(text, at)) return;
    visit(key, text.substr(valueStart, at - valueStart));
    RshviewSkipBlanks(text, at);
    if (at >= text.size() || text[at] != ',') return;
    ++at;
  }
}
}  // namespace

std::string RshviewEditorView(const RshviewWidgetText& tree, std::string_view units) {
  Fingerprint print;
  print.Add(units);
  // The widgets come in tree order, so their names and numbers of children stand for the paths
  // (hashing the paths themselves would hash every ancestor's name once per descendant).
  for (const RshviewWidgetText::Widget& widget : tree.Widgets()) {
    print.Add(widget.name);
    print.Add(widget.named ? "n" : "u");
    print.Add(std::to_string(widget.childCount));
    print.Add(widget.cls);
    Members(widget.state, [&](std::string_view key, std::string_view value) {
      if (!Telling(key, value, widget.cls)) return;
      print.Add(key);
      print.Add(value);
    });
  }
  return print.Hex();
}
