#include "KEPVidEncoding.h"

#include <utf8.h>

#include <charconv>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace {
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
}  // namespace

std::string KEPVidValidUtf8(std::string_view text) {
  if (utf8::find_invalid(text.begin(), text.end()) == text.end()) return std::string(text);
  std::string repaired;
  utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(repaired), 0xFFFDu);
  return repaired;
}

void KEPVidAppendUtf16(std::string& out, const std::u16string& text) {
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

void KEPVidAppendDouble(std::string& out, double value) {
  char text[32];
  const char* end = std::to_chars(text, text + sizeof text, value).ptr;
  const std::string_view written(text, static_cast<std::size_t>(end - text));
  out += written;
  if (written.find_first_of(".eE") == std::string_view::npos) out += ".0";
}

void KEPVidAppendInt(std::string& out, long long value) {
  char text[24];
  const char* end = std::to_chars(text, text + sizeof text, value).ptr;
  out.append(text, static_cast<std::size_t>(end - text));
}

void KEPVidAppendEscaped(std::string& out, std::string_view text) {
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

bool KEPVidIsPlainText(std::string_view text) {
  // Eight bytes at a time (names, paths and texts are mostly long runs of plain letters). In
  // `(w - n * kOnes) & ~w & kHigh` a byte's high bit is set only if some byte of w is below n
  // (n <= 0x80; a borrow starts only at such a byte), so the test of the word is exact; a quote
  // or a backslash is a zero byte of w xor that byte repeated.
  constexpr std::uint64_t kOnes = 0x0101010101010101ULL;
  constexpr std::uint64_t kHigh = 0x8080808080808080ULL;
  const auto below = [](std::uint64_t w, std::uint64_t n) { return (w - n * kOnes) & ~w & kHigh; };
  std::size_t i = 0;
  for (; i + 8 <= text.size(); i += 8) {
    std::uint64_t w = 0;
    std::memcpy(&w, text.data() + i, sizeof w);
    const std::uint64_t bad = (w & kHigh) | below(w, 0x20) |
                              below(w ^ (std::uint64_t{'"'} * kOnes), 1) |
                              below(w ^ (std::uint64_t{'\\'} * kOnes), 1);
    if (bad != 0) return false;
  }
  for (; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte < 0x20 || byte >= 0x80 || byte == '"' || byte == '\\') return false;
  }
  return true;
}

bool KEPVidIsAscii(std::string_view text) {
  for (const char c : text)
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  return true;
}
