#include "KEPJsonReader.h"

#include <utf8.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <string>
#include <unordered_set>
#include <vector>

namespace {
// The member names of one object read so far, to refuse a repeated key at a constant cost per
// member: the first few members are compared one by one (most objects are small), the rest found
// through a hash of the name. The set holds member positions, which stay valid while the
// vector of members grows.
class MemberNames {
 public:
  MemberNames(const std::vector<KEPJsonMember>& members, std::size_t& comparisons)
      : members_(members),
        comparisons_(comparisons),
        index_(0, Hash{&members}, Equal{&members, &comparisons}) {}

  /// True when the newest member's name is that of an earlier member; otherwise remembers it.
  bool NewestIsRepeated() {
    const std::size_t newest = members_.size() - 1;
    if (newest < kScanned) {
      for (std::size_t i = 0; i < newest; ++i) {
        ++comparisons_;
        if (members_[i].name == members_[newest].name) return true;
      }
      return false;
    }
    if (index_.empty())
      for (std::size_t i = 0; i < newest; ++i) index_.insert(i);
    return !index_.insert(newest).second;
  }

 private:
  static constexpr std::size_t kScanned = 8;

  struct Hash {
    const std::vector<KEPJsonMember>* members;
    std::size_t operator()(std::size_t i) const {
      return std::hash<std::string_view>{}((*members)[i].name);
    }
  };
  struct Equal {
    const std::vector<KEPJsonMember>* members;
    std::size_t* comparisons;
    bool operator()(std::size_t a, std::size_t b) const {
      ++*comparisons;
      return (*members)[a].name == (*members)[b].name;
    }
  };

  const std::vector<KEPJsonMember>& members_;
  std::size_t& comparisons_;
  std::unordered_set<std::size_t, Hash, Equal> index_;
};

class Parser {
 public:
  Parser(std::string_view text, const KEPJsonReader::Limits& limits)
      : text_(text), limits_(limits) {}

  bool Document(KEPJsonValue& out) {
    SkipBlanks();
    if (!Value(out, 0)) return false;
    SkipBlanks();
    if (pos_ < text_.size()) return Fail("unexpected text after the end of the document");
    return true;
  }

  int line = 1;
  std::string key;  ///< of the first fault
  std::string message;
  KEPJsonReader::Usage usage;

 private:
  bool Fail(std::string text) {
    if (message.empty()) {
      message = std::move(text);
      key = *key_;
    }
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
    if (depth > limits_.depth)
      return Fail("nesting deeper than " + std::to_string(limits_.depth) + " levels");
    if (++usage.values > limits_.values)
      return Fail("more than " + std::to_string(limits_.values) + " values in the document");
    out.line = line;
    if (AtEnd()) return Fail("unexpected end of file");
    switch (text_[pos_]) {
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
    // The key of errors: the enclosing one until a member's name is read. A pointer, not a copy
    // (a long key copied per member would cost their product): the names it points to stay put
    // while they are in use, this object's vector growing only between its members.
    const std::string* const outerKey = key_;
    MemberNames names(out.members, usage.nameComparisons);
    for (;;) {
      SkipBlanks();
      key_ = outerKey;
      if (out.members.size() == limits_.members)
        return Fail("more than " + std::to_string(limits_.members) + " members in an object");
      if (Peek() != '"') return Fail("expected a quoted member name");
      std::string name;
      if (!String(name)) return false;
      out.members.push_back({std::move(name), {}});
      key_ = &out.members.back().name;
      if (names.NewestIsRepeated()) return Fail("repeated key");
      SkipBlanks();
      if (Peek() != ':') return Fail("expected ':' after the member name");
      ++pos_;
      SkipBlanks();
      // Read in place: nothing else touches this object's members until the value is read.
      if (!Value(out.members.back().value, depth + 1)) return false;
      SkipBlanks();
      if (Peek() == ',') {
        ++pos_;
        continue;
      }
      if (Peek() == '}') {
        ++pos_;
        key_ = outerKey;
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
      if (out.items.size() == limits_.members)
        return Fail("more than " + std::to_string(limits_.members) + " elements in an array");
      out.items.emplace_back();
      if (!Value(out.items.back(), depth + 1)) return false;
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
      if (out.size() > limits_.stringBytes)
        return Fail("string longer than " + std::to_string(limits_.stringBytes) + " bytes");
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
  const KEPJsonReader::Limits& limits_;
  std::size_t pos_ = 0;
  const std::string noKey_;
  const std::string* key_ = &noKey_;  ///< the innermost member name being read
};
}  // namespace

bool KEPJsonReader::Parse(std::string_view text, KEPJsonValue& out, int& line, std::string& key,
                          std::string& message, const Limits& limits, Usage* usage) {
  if (text.size() > limits.bytes) {
    line = 0;
    key.clear();
    message = "document larger than " + std::to_string(limits.bytes) + " bytes";
    return false;
  }
  Parser parser(text, limits);
  KEPJsonValue value;
  const bool parsed = parser.Document(value);
  if (usage) *usage = parser.usage;
  if (!parsed) {
    line = parser.line;
    key = parser.key;
    message = parser.message;
    return false;
  }
  out = std::move(value);
  return true;
}
