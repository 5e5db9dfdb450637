#include "KEPJsonReader.h"

#include <utf8.h>

#include <cmath>
#include <cstdlib>
#include <iterator>
#include <string>

namespace {
class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  bool Document(KEPJsonValue& out) {
    SkipBlanks();
    if (!Value(out, 0)) return false;
    SkipBlanks();
    if (pos_ < text_.size()) return Fail("unexpected text after the end of the document");
    return true;
  }

  int line = 1;
  std::string key;
  std::string message;

 private:
  bool Fail(std::string text) {
    if (message.empty()) message = std::move(text);
    return false;
  }
  bool AtEnd() const { return pos_ >= text_.size(); }
  char Peek() const { return AtEnd() ? '\0' : text_[pos_]; }
  void SkipBlanks() {
    while (!AtEnd()) {
      const char c = text_[pos_];
      if (c == '\n') {
        ++line;
      } else if (c != ' ' && c != '\t' && c != '\r') {
        return;
      }
      ++pos_;
    }
  }
  bool Literal(std::string_view word) {
    if (text_.substr(pos_, word.size()) != word) return Fail("invalid literal");
    pos_ += word.size();
    return true;
  }

  bool Value(KEPJsonValue& out, int depth) {
    if (depth > KEPJsonReader::kMaxDepth) return Fail("nesting deeper than 64 levels");
    out.line = line;
    switch (Peek()) {
      case '\0':
        return Fail("unexpected end of file");
      case '{':
        return Object(out, depth);
      case '[':
        return Array(out, depth);
      case '"':
        out.kind = KEPJsonValue::Kind::String;
        return String(out.text);
      case 't':
        out.kind = KEPJsonValue::Kind::Boolean;
        out.boolean = true;
        return Literal("true");
      case 'f':
        out.kind = KEPJsonValue::Kind::Boolean;
        return Literal("false");
      case 'n':
        out.kind = KEPJsonValue::Kind::Null;
        return Literal("null");
      default:
        return Number(out);
    }
  }

  bool Object(KEPJsonValue& out, int depth) {
    out.kind = KEPJsonValue::Kind::Object;
    ++pos_;
    SkipBlanks();
    if (Peek() == '}') {
      ++pos_;
      return true;
    }
    const std::string outerKey = key;
    for (;;) {
      SkipBlanks();
      if (Peek() != '"') return Fail("expected a quoted member name");
      std::string name;
      if (!String(name)) return false;
      key = name;
      if (out.Find(name)) return Fail("repeated key");
      SkipBlanks();
      if (Peek() != ':') return Fail("expected ':' after the member name");
      ++pos_;
      SkipBlanks();
      KEPJsonValue member;
      if (!Value(member, depth + 1)) return false;
      out.members.push_back({std::move(name), std::move(member)});
      SkipBlanks();
      if (Peek() == ',') {
        ++pos_;
        continue;
      }
      if (Peek() == '}') {
        ++pos_;
        key = outerKey;
        return true;
      }
      return Fail(AtEnd() ? "unexpected end of file in an object" : "expected ',' or '}'");
    }
  }

  bool Array(KEPJsonValue& out, int depth) {
    out.kind = KEPJsonValue::Kind::Array;
    ++pos_;
    SkipBlanks();
    if (Peek() == ']') {
      ++pos_;
      return true;
    }
    for (;;) {
      SkipBlanks();
      KEPJsonValue item;
      if (!Value(item, depth + 1)) return false;
      out.items.push_back(std::move(item));
      SkipBlanks();
      if (Peek() == ',') {
        ++pos_;
        continue;
      }
      if (Peek() == ']') {
        ++pos_;
        return true;
      }
      return Fail(AtEnd() ? "unexpected end of file in an array" : "expected ',' or ']'");
    }
  }

  bool Hex4(unsigned& code) {
    if (pos_ + 4 > text_.size()) return Fail("truncated \\u escape");
    code = 0;
    for (int i = 0; i < 4; ++i) {
      const char c = text_[pos_++];
      code <<= 4;
      if (c >= '0' && c <= '9')
        code |= static_cast<unsigned>(c - '0');
      else if (c >= 'a' && c <= 'f')
        code |= static_cast<unsigned>(c - 'a' + 10);
      else if (c >= 'A' && c <= 'F')
        code |= static_cast<unsigned>(c - 'A' + 10);
      else
        return Fail("invalid \\u escape");
    }
    return true;
  }

  bool String(std::string& out) {
    ++pos_;  // opening quote
    for (;;) {
      if (AtEnd()) return Fail("unterminated string");
      const char c = text_[pos_++];
      if (c == '"') return true;
      if (static_cast<unsigned char>(c) < 0x20) return Fail("control character in a string");
      if (c != '\\') {
        out += c;
        continue;
      }
      if (AtEnd()) return Fail("unterminated string");
      const char e = text_[pos_++];
      switch (e) {
        case '"':
          out += '"';
          break;
        case '\\':
          out += '\\';
          break;
        case '/':
          out += '/';
          break;
        case 'b':
          out += '\b';
          break;
        case 'f':
          out += '\f';
          break;
        case 'n':
          out += '\n';
          break;
        case 'r':
          out += '\r';
          break;
        case 't':
          out += '\t';
          break;
        case 'u': {
          unsigned code = 0;
          if (!Hex4(code)) return false;
          if (code >= 0xD800 && code < 0xDC00) {
            unsigned low = 0;
            if (text_.substr(pos_, 2) != "\\u") return Fail("unpaired surrogate escape");
            pos_ += 2;
            if (!Hex4(low)) return false;
            if (low < 0xDC00 || low > 0xDFFF) return Fail("unpaired surrogate escape");
            code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
          } else if (code >= 0xDC00 && code <= 0xDFFF) {
            return Fail("unpaired surrogate escape");
          }
          // A scalar value by now (surrogates are paired or refused above), which the
          // unchecked encoder takes without a test that could throw.
          utf8::unchecked::append(code, std::back_inserter(out));
          break;
        }
        default:
          return Fail("invalid escape in a string");
      }
    }
  }

  bool Number(KEPJsonValue& out) {
    const std::size_t start = pos_;
    auto digits = [&] {
      const std::size_t from = pos_;
      while (!AtEnd() && text_[pos_] >= '0' && text_[pos_] <= '9') ++pos_;
      return pos_ > from;
    };
    if (Peek() == '-') ++pos_;
    if (Peek() == '0') {
      ++pos_;
    } else if (!digits()) {
      return Fail("invalid value");
    }
    if (Peek() == '.') {
      ++pos_;
      if (!digits()) return Fail("invalid number");
    }
    if (Peek() == 'e' || Peek() == 'E') {
      ++pos_;
      if (Peek() == '+' || Peek() == '-') ++pos_;
      if (!digits()) return Fail("invalid number");
    }
    const std::string literal(text_.substr(start, pos_ - start));
    out.kind = KEPJsonValue::Kind::Number;
    out.number = std::strtod(literal.c_str(), nullptr);
    if (!std::isfinite(out.number)) return Fail("number out of range");
    return true;
  }

  std::string_view text_;
  std::size_t pos_ = 0;
};
}  // namespace

bool KEPJsonReader::Parse(std::string_view text, KEPJsonValue& out, int& line, std::string& key,
                          std::string& message) {
  Parser parser(text);
  KEPJsonValue value;
  if (!parser.Document(value)) {
    line = parser.line;
    key = parser.key;
    message = parser.message;
    return false;
  }
  out = std::move(value);
  return true;
}
