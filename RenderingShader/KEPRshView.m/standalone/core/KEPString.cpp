#include "KEPString.h"

#include <utf8.h>

#include <iterator>

namespace {
constexpr char32_t kReplacement = 0xFFFD;

bool IsSurrogate(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDFFF;
}
bool IsLeadSurrogate(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsTrailSurrogate(char16_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

// The position of the first surrogate at or after `from` that is not part of a lead-trail pair,
// or npos.
std::size_t FindUnpairedSurrogate(std::u16string_view units, std::size_t from) {
  for (std::size_t i = from; i < units.size(); ++i) {
    if (!IsSurrogate(units[i])) continue;
    if (IsLeadSurrogate(units[i]) && i + 1 < units.size() && IsTrailSurrogate(units[i + 1])) {
      ++i;
      continue;
    }
    return i;
  }
  return std::u16string_view::npos;
}
}  // namespace

// utfcpp's checked functions throw on bad input, so the input is made valid first and then
// converted with the unchecked functions: no exception can leave these two.
KEPUnicodeString KEPUnicodeString::FromUTF8(std::string_view in) {
  std::string repaired;
  if (utf8::find_invalid(in.begin(), in.end()) != in.end()) {
    utf8::replace_invalid(in.begin(), in.end(), std::back_inserter(repaired), kReplacement);
    in = repaired;
  }
  std::u16string out;
  out.reserve(in.size());
  utf8::unchecked::utf8to16(in.begin(), in.end(), std::back_inserter(out));
  return KEPUnicodeString(std::move(out));
}

std::string KEPUnicodeString::ToUTF8() const {
  std::string out;
  out.reserve(text_.size());
  auto sink = std::back_inserter(out);
  for (std::size_t from = 0;;) {
    const std::size_t bad = FindUnpairedSurrogate(text_, from);
    const std::size_t stop = bad == std::u16string_view::npos ? text_.size() : bad;
    utf8::unchecked::utf16to8(text_.begin() + static_cast<std::ptrdiff_t>(from),
                              text_.begin() + static_cast<std::ptrdiff_t>(stop), sink);
    if (stop == text_.size()) return out;
    utf8::unchecked::append(kReplacement, sink);
    from = bad + 1;
  }
}

KEPUnicodeString KEPUnicodeString::ToUpper() const {
  std::u16string out = text_;
  for (char16_t& c : out)
    if ((c >= u'a' && c <= u'z') || (c >= 0xE0 && c <= 0xFE && c != 0xF7)) c -= 0x20;
  return KEPUnicodeString(std::move(out));
}

KEPUnicodeString KEPUnicodeString::ToLower() const {
  std::u16string out = text_;
  for (char16_t& c : out)
    if ((c >= u'A' && c <= u'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7)) c += 0x20;
  return KEPUnicodeString(std::move(out));
}

std::string KEPToLower(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return out;
}

std::string KEPToUpper(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return out;
}

std::string_view KEPTrimBlanks(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}
