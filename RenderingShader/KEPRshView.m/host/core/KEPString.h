// Narrow and Unicode strings of the host.
//
// KEPString is narrow text (UTF-8 by convention). KEPUnicodeString holds UTF-16 code units and
// converts to and from UTF-8; invalid UTF-8 input becomes U+FFFD rather than failing.
#pragma once

#include <compare>
#include <string>
#include <string_view>

using KEPString = std::string;

class KEPUnicodeString {
 public:
  KEPUnicodeString() = default;
  KEPUnicodeString(const char16_t* text) : text_(text ? text : u"") {}
  explicit KEPUnicodeString(std::u16string text) : text_(std::move(text)) {}

  /// Builds a Unicode string from UTF-8 text.
  static KEPUnicodeString FromUTF8(std::string_view utf8);
  /// The text as UTF-8 (the host's narrow form).
  std::string ToUTF8() const;

  bool IsEmpty() const { return text_.empty(); }
  std::size_t GetLengthInChar() const { return text_.size(); }
  const std::u16string& Str() const { return text_; }
  std::u16string& Str() { return text_; }

  /// Upper-case / lower-case copy (ASCII letters and the Latin-1 range).
  KEPUnicodeString ToUpper() const;
  KEPUnicodeString ToLower() const;

  KEPUnicodeString& operator+=(const KEPUnicodeString& other) {
    text_ += other.text_;
    return *this;
  }
  friend KEPUnicodeString operator+(KEPUnicodeString a, const KEPUnicodeString& b) {
    a += b;
    return a;
  }
  friend bool operator==(const KEPUnicodeString&, const KEPUnicodeString&) = default;
  friend auto operator<=>(const KEPUnicodeString&, const KEPUnicodeString&) = default;

 private:
  std::u16string text_;
};

/// Lower-case copy of ASCII text.
std::string KEPToLower(std::string_view text);
/// Upper-case copy of ASCII text.
std::string KEPToUpper(std::string_view text);
