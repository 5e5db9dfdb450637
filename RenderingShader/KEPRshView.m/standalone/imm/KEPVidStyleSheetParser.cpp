// The style sheet parser: one pass over the lines, a stack of open blocks, every fault reported
// with the file, the line and the key it concerns. A fault inside a block header skips the block
// (its lines are still read for their braces, but not reported again), so one mistake gives one
// error. The grammar is in docs/formats.md, "Style sheets".
#include <charconv>
#include <cmath>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "KEPFileText.h"
#include "KEPString.h"
#include "KEPTrace.h"
#include "KEPVidStyleSheet.h"
#include "KEPVidTypes.h"

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r';
}

bool IsNameChar(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

/// Splits `text` at blanks; a token that starts with '"' is a quoted text (escapes \" \\ \n \t)
/// and is marked in `quoted`. An explanation on failure.
std::string Tokens(std::string_view text, std::vector<std::string>& tokens,
                   std::vector<bool>& quoted);

/// Reads a double-quoted text that makes up the whole of `text`; an explanation on failure.
std::string Quoted(std::string_view text, std::string& out) {
  if (text.empty() || text.front() != '"') return "expected a double-quoted text";
  std::size_t i = 1;
  for (; i < text.size() && text[i] != '"'; ++i) {
    if (text[i] != '\\') {
      out += text[i];
      continue;
    }
    if (++i == text.size()) break;
    switch (text[i]) {
      case 'n':
        out += '\n';
        break;
      case 't':
        out += '\t';
        break;
      case '"':
      case '\\':
        out += text[i];
        break;
      default:
        return std::string("unknown escape '\\") + text[i] + "' (\\\" \\\\ \\n \\t)";
    }
  }
  if (i >= text.size()) return "the text has no closing double quote";
  if (i + 1 != text.size()) return "characters after the closing double quote";
  return {};
}

std::string Tokens(std::string_view text, std::vector<std::string>& tokens,
                   std::vector<bool>& quoted) {
  std::size_t i = 0;
  while (i < text.size()) {
    if (IsBlank(text[i])) {
      ++i;
      continue;
    }
    if (text[i] == '"') {
      // The closing quote is the first one not escaped.
      std::size_t end = i + 1;
      while (end < text.size() && text[end] != '"') end += text[end] == '\\' ? 2 : 1;
      if (end >= text.size()) return "the text has no closing double quote";
      std::string token;
      if (std::string fault = Quoted(text.substr(i, end + 1 - i), token); !fault.empty())
        return fault;
      tokens.push_back(std::move(token));
      quoted.push_back(true);
      i = end + 1;
      continue;
    }
    std::size_t end = i;
    while (end < text.size() && !IsBlank(text[end])) ++end;
    tokens.emplace_back(text.substr(i, end - i));
    quoted.push_back(false);
    i = end;
  }
  return {};
}

std::vector<std::string_view> Words(std::string_view text) {
  std::vector<std::string_view> words;
  std::size_t i = 0;
  while (i < text.size()) {
    if (IsBlank(text[i])) {
      ++i;
      continue;
    }
    std::size_t end = i;
    while (end < text.size() && !IsBlank(text[end])) ++end;
    words.push_back(text.substr(i, end - i));
    i = end;
  }
  return words;
}

bool ReadDouble(std::string_view word, double& value) {
  const char* end = word.data() + word.size();
  auto [ptr, ec] = std::from_chars(word.data(), end, value);
  return ec == std::errc() && ptr == end && std::isfinite(value);
}

bool ReadInt(std::string_view word, double& value) {
  long long number = 0;
  const char* end = word.data() + word.size();
  auto [ptr, ec] = std::from_chars(word.data(), end, number);
  if (ec != std::errc() || ptr != end || number < -2147483647LL || number > 2147483647LL)
    return false;
  value = static_cast<double>(number);
  return true;
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

class KEPVidStyleSheetParser {
 public:
  KEPVidStyleSheetParser(const std::string& file, KEPLoadResult& result)
      : sheet_(std::make_shared<KEPVidStyleSheet>()), result_(result) {
    sheet_->file_ = file;
  }

  std::shared_ptr<const KEPVidStyleSheet> Run(std::string_view text) {
    const std::size_t errorsBefore = result_.ErrorIssues().size();
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    int badLine = 0;
    if (!KEPFileText::IsValidUTF8(std::string(text), badLine)) {
      Error(badLine, "", "invalid UTF-8");
      return nullptr;
    }
    int line = 0;
    for (std::size_t start = 0; start <= text.size();) {
      std::size_t end = text.find('\n', start);
      if (end == std::string_view::npos) end = text.size();
      ++line;
      Line(line, KEPTrimBlanks(text.substr(start, end - start)));
      start = end + 1;
    }
    for (auto it = frames_.rbegin(); it != frames_.rend(); ++it)
      Error(it->line, it->name,
            "block '" + it->title + "' is not closed (no '}' before the end of the file)");
    if (result_.ErrorIssues().size() != errorsBefore) return nullptr;
    return sheet_;
  }

 private:
  struct Frame {
    enum Kind { Style, Class, Part, Skipped };
    Frame(Kind k, int at, std::string n, std::string t)
        : kind(k), line(at), name(std::move(n)), title(std::move(t)) {}
    Kind kind;
    int line;
    std::string name;
    std::string title;  ///< "part slider X", for the unclosed-block error
    KEPVidStyle* style = nullptr;
    KEPVidStyleClass* styleClass = nullptr;
    KEPVidStylePart* part = nullptr;
    int depth = 0;                                         ///< parts: 1 for a part of the class
    std::map<std::string, int, std::less<>> settingLines;  ///< parts: target -> line
  };

  void Error(int line, const std::string& key, const std::string& message) {
    result_.AddError(sheet_->file_, line, key, message);
  }

  Frame* Top() { return frames_.empty() ? nullptr : &frames_.back(); }

  void Line(int line, std::string_view text) {
    if (text.empty() || text.front() == '#') return;
    if (text == "}") {
      if (frames_.empty())
        Error(line, "", "'}' without an open block");
      else
        frames_.pop_back();
      return;
    }
    Frame* top = Top();
    const bool skipping = top && top->kind == Frame::Skipped;
    if (text.back() == '{') {
      if (skipping)
        Skip(line, "");  // nested in a skipped block: its brace still counts
      else
        Block(line, KEPTrimBlanks(text.substr(0, text.size() - 1)));
      return;
    }
    if (skipping) return;
    const std::vector<std::string_view> words = Words(text);
    if (words.front() == "style" || words.front() == "class" || words.front() == "part") {
      Error(line, std::string(words.size() > 1 ? words.back() : words.front()),
            "block header '" + std::string(text) + "' does not end with '{'");
      return;
    }
    Setting(line, text);
  }

  /// Opens a block whose lines are read for their braces only.
  void Skip(int line, const std::string& name) {
    frames_.push_back(Frame(Frame::Skipped, line, name, header_));
  }

  void Block(int line, std::string_view header) {
    std::vector<std::string> tokens;
    std::vector<bool> quoted;
    if (std::string fault = Tokens(header, tokens, quoted); !fault.empty()) {
      Error(line, "", "block header: " + fault);
      return Skip(line, "");
    }
    if (tokens.empty()) {
      Error(line, "", "'{' without a block header (style NAME {, class NAME {, part KIND NAME {)");
      return Skip(line, "");
    }
    const std::string& word = tokens.front();
    if (quoted[0] || (word != "style" && word != "class" && word != "part")) {
      Error(line, word, "unknown block '" + word + "' (style, class or part)");
      return Skip(line, word);
    }
    if (word == "style") return OpenStyle(line, tokens);
    if (word == "class") return OpenClass(line, tokens, quoted);
    OpenPart(line, tokens, quoted);
  }

  void OpenStyle(int line, const std::vector<std::string>& tokens) {
    if (tokens.size() != 2 || tokens[1].empty()) {
      Error(line, tokens.size() > 1 ? tokens[1] : "", "expected 'style NAME {'");
      return Skip(line, "");
    }
    const std::string& name = tokens[1];
    if (!frames_.empty()) {
      Error(line, name, "a style is only at the top level (close the open block first)");
      return Skip(line, name);
    }
    if (auto it = styleLines_.find(name); it != styleLines_.end()) {
      Error(line, name,
            "duplicate style '" + name + "' (first at line " + std::to_string(it->second) + ")");
      return Skip(line, name);
    }
    styleLines_.emplace(name, line);
    KEPVidStyle& style = sheet_->styles_.emplace_back();
    style.name = name;
    style.line = line;
    Frame frame(Frame::Style, line, name, "style " + name);
    frame.style = &style;
    frames_.push_back(std::move(frame));
  }

  void OpenClass(int line, const std::vector<std::string>& tokens,
                 const std::vector<bool>& quoted) {
    if (tokens.size() != 2) {
      Error(line, tokens.size() > 1 ? tokens[1] : "", "expected 'class NAME {'");
      return Skip(line, "");
    }
    std::string name = tokens[1];
    Frame* top = Top();
    if (!top || top->kind != Frame::Style) {
      Error(line, name, "a class is only inside a style");
      return Skip(line, name);
    }
    const bool prefix = !quoted[1] && name.ends_with('*');
    if (prefix) name.pop_back();
    const std::string& written = tokens[1];
    if (!prefix && name.empty()) {
      Error(line, written, "a class needs a name");
      return Skip(line, written);
    }
    for (const KEPVidStyleClass& other : top->style->classes) {
      if (other.name == name && other.prefix == prefix) {
        Error(line, written,
              "duplicate class '" + written + "' in style '" + top->style->name +
                  "' (first at line " + std::to_string(other.line) + ")");
        return Skip(line, written);
      }
    }
    KEPVidStyleClass& styleClass = top->style->classes.emplace_back();
    styleClass.name = name;
    styleClass.prefix = prefix;
    styleClass.line = line;
    partLines_.clear();
    Frame frame(Frame::Class, line, written, "class " + written);
    frame.styleClass = &styleClass;
    frames_.push_back(std::move(frame));
  }

  void OpenPart(int line, const std::vector<std::string>& tokens, const std::vector<bool>& quoted) {
    if (tokens.size() != 3) {
      Error(line, tokens.size() > 1 ? tokens[1] : "", "expected 'part KIND NAME {'");
      return Skip(line, "");
    }
    const std::string& kindWord = tokens[1];
    const std::string& name = tokens[2];
    KEPVidPartKind kind = KEPVidPartKind::Grid;
    if (quoted[1] || !KEPVidStyleSheet::FindKind(kindWord, kind)) {
      Error(line, kindWord,
            "unknown part kind '" + kindWord + "' (kinds: " + KEPVidStyleSheet::KindList() + ")");
      return Skip(line, name);
    }
    if (name.empty() || quoted[2] ||
        name.find_first_not_of(
            "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-") !=
            std::string::npos) {
      Error(line, name, "bad part name '" + name + "' (letters, digits, '_' and '-')");
      return Skip(line, name);
    }
    Frame* top = Top();
    std::vector<KEPVidStylePart>* parts = nullptr;
    int depth = 1;
    if (top && top->kind == Frame::Class) {
      parts = &top->styleClass->parts;
    } else if (top && top->kind == Frame::Part && top->part->kind == KEPVidPartKind::Grid) {
      parts = &top->part->parts;
      depth = top->depth + 1;
    } else if (top && top->kind == Frame::Part) {
      Error(line, name,
            "parts nest only in grid parts; '" + top->name + "' is a " +
                KEPVidStyleSheet::KindName(top->part->kind));
      return Skip(line, name);
    } else {
      Error(line, name, "a part is only inside a class or a grid part");
      return Skip(line, name);
    }
    if (depth > KEPVidStyleSheet::kMaxDepth) {
      Error(line, name, "parts nested deeper than " + std::to_string(KEPVidStyleSheet::kMaxDepth));
      return Skip(line, name);
    }
    if (auto it = partLines_.find(name); it != partLines_.end()) {
      Error(line, name,
            "duplicate part name '" + name + "' in the class (first at line " +
                std::to_string(it->second) + ")");
      return Skip(line, name);
    }
    partLines_.emplace(name, line);
    KEPVidStylePart& part = parts->emplace_back();
    part.kind = kind;
    part.name = name;
    part.line = line;
    Frame frame(Frame::Part, line, name, "part " + kindWord + " " + name);
    frame.part = &part;
    frame.depth = depth;
    frames_.push_back(std::move(frame));
  }

  void Setting(int line, std::string_view text) {
    std::size_t end = 0;
    while (end < text.size() && (IsNameChar(text[end]) || text[end] == '-')) ++end;
    const std::string key(text.substr(0, end));
    std::string_view rest = KEPTrimBlanks(text.substr(end));
    KEPVidStyleMode mode = KEPVidStyleMode::Literal;
    if (!key.empty() && rest.starts_with("<->")) {
      mode = KEPVidStyleMode::TwoWay;
      rest.remove_prefix(3);
    } else if (!key.empty() && rest.starts_with("<-")) {
      mode = KEPVidStyleMode::OneWay;
      rest.remove_prefix(2);
    } else if (!key.empty() && rest.starts_with("=")) {
      rest.remove_prefix(1);
    } else {
      Error(line, key,
            "expected 'TARGET = VALUE', 'TARGET <- PROPERTY', 'TARGET <-> PROPERTY', a block "
            "header ending with '{', '}' or '# comment'");
      return;
    }
    rest = KEPTrimBlanks(rest);
    Frame* top = Top();
    if (!top || top->kind != Frame::Part) {
      Error(line, key, "a setting is only inside a part");
      return;
    }
    KEPVidStylePart& part = *top->part;
    KEPVidStyleTarget target = KEPVidStyleTarget::Cell;
    const unsigned kindBit = 1U << static_cast<unsigned>(part.kind);
    const char* kindName = KEPVidStyleSheet::KindName(part.kind);
    if (!KEPVidStyleSheet::FindTarget(key, target) ||
        !(KEPVidStyleSheet::Info(target).kinds & kindBit)) {
      Error(line, key,
            std::string(mode == KEPVidStyleMode::Literal ? "unknown setting '"
                                                         : "unknown binding '") +
                key + "' for a " + kindName + " part (a " + kindName +
                " takes: " + KEPVidStyleSheet::TargetList(part.kind) + ")");
      return;
    }
    const KEPVidStyleSheet::TargetInfo& info = KEPVidStyleSheet::Info(target);
    if (mode != KEPVidStyleMode::Literal && !info.bindable) {
      Error(line, key, "'" + key + "' cannot be bound to a property: give it with '='");
      return;
    }
    if (mode == KEPVidStyleMode::TwoWay && !(info.twoWayKinds & kindBit)) {
      Error(line, key,
            "'" + key + "' of a " + kindName +
                " only shows its property: bind it with '<-' (only a value a person changes is "
                "bound both ways)");
      return;
    }
    if (auto it = top->settingLines.find(key); it != top->settingLines.end()) {
      Error(line, key,
            "'" + key + "' given twice in part '" + part.name + "' (first at line " +
                std::to_string(it->second) + ")");
      return;
    }
    if (part.kind == KEPVidPartKind::Editor &&
        (target == KEPVidStyleTarget::Value || target == KEPVidStyleTarget::Text)) {
      const char* other = target == KEPVidStyleTarget::Value ? "text" : "value";
      if (top->settingLines.contains(other)) {
        Error(line, key,
              "an editor shows a number ('value') or a text ('text'), not both: '" +
                  std::string(other) + "' is given at line " +
                  std::to_string(top->settingLines.find(other)->second));
        return;
      }
    }
    KEPVidStyleSetting setting;
    setting.target = target;
    setting.mode = mode;
    setting.line = line;
    const std::string fault =
        mode == KEPVidStyleMode::Literal ? Literal(info, rest, setting) : Path(mode, rest, setting);
    if (!fault.empty()) {
      Error(line, key, fault);
      return;
    }
    top->settingLines.emplace(key, line);
    part.settings.push_back(std::move(setting));
  }

  static std::string Path(KEPVidStyleMode mode, std::string_view text,
                          KEPVidStyleSetting& setting) {
    if (text.empty())
      return std::string("missing property name after '") +
             (mode == KEPVidStyleMode::TwoWay ? "<->" : "<-") + "'";
    for (std::size_t start = 0;;) {
      const std::size_t dot = text.find('.', start);
      const std::string_view step =
          text.substr(start, dot == std::string_view::npos ? std::string_view::npos : dot - start);
      bool ok = !step.empty() && !(step.front() >= '0' && step.front() <= '9');
      for (char c : step) ok = ok && IsNameChar(c);
      if (!ok)
        return "bad property path '" + std::string(text) +
               "' (property names of letters, digits and '_', separated by '.': Values.x)";
      setting.path.emplace_back(step);
      if (dot == std::string_view::npos) break;
      start = dot + 1;
    }
    return {};
  }

  static std::string Literal(const KEPVidStyleSheet::TargetInfo& info, std::string_view text,
                             KEPVidStyleSetting& setting) {
    if (text.empty()) return "missing value after '='";
    const std::string written(text);
    std::vector<double>& numbers = setting.numbers;
    const std::vector<std::string_view> words = Words(text);
    auto checkSign = [&]() -> std::string {
      if (info.nonNegative)
        for (double n : numbers)
          if (n < 0) return "negative number in '" + written + "'";
      return {};
    };
    switch (info.type) {
      case KEPVidStyleValueType::Bool: {
        const std::string word = KEPToLower(text);
        if (word == "yes" || word == "true" || word == "on" || word == "1")
          numbers.push_back(1);
        else if (word == "no" || word == "false" || word == "off" || word == "0")
          numbers.push_back(0);
        else
          return "bad boolean '" + written + "' (yes or no)";
        return {};
      }
      case KEPVidStyleValueType::Int: {
        double n = 0;
        if (!ReadInt(text, n)) return "bad number '" + written + "' (expected an integer)";
        numbers.push_back(n);
        return checkSign();
      }
      case KEPVidStyleValueType::Double: {
        double n = 0;
        if (!ReadDouble(text, n)) return "bad number '" + written + "' (expected a number)";
        numbers.push_back(n);
        return checkSign();
      }
      case KEPVidStyleValueType::Text:
        return Quoted(text, setting.text);
      case KEPVidStyleValueType::Cell: {
        if (words.size() != 2 && words.size() != 4)
          return "bad cell '" + written + "' (row column [row-span column-span])";
        for (std::string_view word : words) {
          double n = 0;
          if (!ReadInt(word, n) || n < 0)
            return "bad number '" + std::string(word) + "' in cell '" + written +
                   "' (non-negative integers)";
          numbers.push_back(n);
        }
        if (numbers.size() == 2) numbers.insert(numbers.end(), {1, 1});
        if (numbers[2] < 1 || numbers[3] < 1) return "a cell spans at least 1 row and 1 column";
        return {};
      }
      case KEPVidStyleValueType::Attach: {
        int flags = 0;
        for (std::string_view word : words) {
          if (word == "left")
            flags |= KEPVidAttach_Left;
          else if (word == "right")
            flags |= KEPVidAttach_Right;
          else if (word == "top")
            flags |= KEPVidAttach_Top;
          else if (word == "bottom")
            flags |= KEPVidAttach_Bottom;
          else if (word == "all")
            flags |= KEPVidAttach_All;
          else if (word != "none")
            return "unknown side '" + std::string(word) + "' (left, right, top, bottom, all, none)";
        }
        numbers.push_back(flags);
        return {};
      }
      case KEPVidStyleValueType::Size: {
        if (words.size() != 2) return "bad size '" + written + "' (two non-negative integers)";
        for (std::string_view word : words) {
          double n = 0;
          if (!ReadInt(word, n))
            return "bad number '" + std::string(word) + "' in '" + written + "'";
          numbers.push_back(n);
        }
        return checkSign();
      }
      case KEPVidStyleValueType::Color: {
        if (!text.starts_with('#') || (text.size() != 7 && text.size() != 9))
          return "bad colour '" + written + "' (#rrggbb or #rrggbbaa)";
        for (std::size_t i = 1; i < text.size(); i += 2) {
          const int high = HexDigit(text[i]);
          const int low = HexDigit(text[i + 1]);
          if (high < 0 || low < 0) return "bad colour '" + written + "' (#rrggbb or #rrggbbaa)";
          numbers.push_back(high * 16 + low);
        }
        if (numbers.size() == 3) numbers.push_back(255);
        return {};
      }
      case KEPVidStyleValueType::Weights: {
        for (std::string_view word : words) {
          double n = 0;
          if (!ReadDouble(word, n))
            return "bad number '" + std::string(word) + "' in '" + written + "'";
          numbers.push_back(n);
        }
        return checkSign();
      }
      case KEPVidStyleValueType::Correction:
        if (text == "previous")
          numbers.push_back(0);
        else if (text == "nearest")
          numbers.push_back(1);
        else
          return "bad correction '" + written + "' (previous or nearest)";
        return {};
    }
    return {};
  }

  std::shared_ptr<KEPVidStyleSheet> sheet_;
  KEPLoadResult& result_;
  std::vector<Frame> frames_;
  std::map<std::string, int, std::less<>> styleLines_;
  std::map<std::string, int, std::less<>> partLines_;  ///< of the open class
  std::string header_;                                 ///< of the block being opened
};

std::shared_ptr<const KEPVidStyleSheet> KEPVidStyleSheet::Parse(std::string_view text,
                                                                const std::string& file,
                                                                KEPLoadResult& result) {
  return KEPVidStyleSheetParser(file, result).Run(text);
}
