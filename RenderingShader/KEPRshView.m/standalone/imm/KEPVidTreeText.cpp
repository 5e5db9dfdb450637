// The widget tree as text a person reads: one widget a line.
#include <charconv>
#include <cmath>
#include <span>
#include <vector>

#include "KEPVidEncoding.h"
#include "KEPVidTree.h"
#include "KEPVidWidget.h"

namespace {

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
    out += KEPVidValidUtf8(text);
    return;
  }
  out += '"';
  KEPVidAppendEscaped(out, KEPVidValidUtf8(text));
  out += '"';
}

void AppendNumber(std::string& out, double value) {
  if (!std::isfinite(value)) {
    out += std::isnan(value) ? "nan" : (value > 0 ? "inf" : "-inf");
    return;
  }
  char text[32];
  // A value that is exactly a single-precision number (most values of the model are) is written
  // as that number's shortest form: 0.42, not 0.41999998688697815. Both read back to that value.
  const auto single = static_cast<float>(value);
  const char* end = static_cast<double>(single) == value
                        ? std::to_chars(text, text + sizeof text, single).ptr
                        : std::to_chars(text, text + sizeof text, value).ptr;
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
    KEPVidAppendInt(out_, value);
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
      KEPVidAppendInt(out_, values[i]);
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
  KEPVidAppendInt(out, cell.row);
  out += ',';
  KEPVidAppendInt(out, cell.column);
  if (cell.rowSpan != 1 || cell.columnSpan != 1) {
    out += ' ';
    KEPVidAppendInt(out, cell.rowSpan);
    out += 'x';
    KEPVidAppendInt(out, cell.columnSpan);
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

}  // namespace

std::string KEPVidToText(const KEPVidWidget* root) {
  std::string text;
  if (root) WidgetText(text, root, 0);
  return text;
}
