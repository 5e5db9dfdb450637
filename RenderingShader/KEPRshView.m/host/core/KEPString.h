// Narrow and Unicode strings of the host.
//
// KEPString is narrow text (UTF-8 by convention). KEPUnicodeString holds UTF-16 code units and
// converts to and from UTF-8 through utfcpp, the host's one UTF-8 codec; a conversion never
// fails and never throws: what cannot be converted becomes U+FFFD.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <compare>
#include <string>
#include <string_view>

using KEPString = std::string;

class KEPUnicodeString {
 public:
  KEPUnicodeString() = default;
  KEPUnicodeString(const char16_t* text) : text_(text ? text : u"") {}
  explicit KEPUnicodeString(std::u16string text) : text_(std::move(text)) {}

  /// Builds a Unicode string from UTF-8 text. Each invalid sequence (a byte that cannot start a
  /// character, or a lead byte with the continuation bytes that follow it when they form an
  /// overlong encoding, an encoded surrogate, a code point above U+10FFFF or a truncated
  /// sequence) becomes one U+FFFD, so bad input never turns into another valid character
  /// ("\xE0\x80\xAF" gives U+FFFD, not "/").
  static KEPUnicodeString FromUTF8(std::string_view utf8);
  /// The text as UTF-8 (the host's narrow form); an unpaired surrogate becomes U+FFFD.
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
/// `text` without its leading and trailing blanks (spaces, tabs, carriage returns).
std::string_view KEPTrimBlanks(std::string_view text);

#pragma GCC visibility pop
