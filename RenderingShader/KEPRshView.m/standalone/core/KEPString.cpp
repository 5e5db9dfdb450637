#include "KEPString.h"

namespace {
void AppendUTF16(std::u16string& out, char32_t cp) {
  if (cp >= 0x10000) {
    cp -= 0x10000;
    out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
  } else {
    out.push_back(static_cast<char16_t>(cp));
  }
}
}  // namespace

KEPUnicodeString KEPUnicodeString::FromUTF8(std::string_view in) {
  std::u16string out;
  out.reserve(in.size());
  std::size_t i = 0;
  while (i < in.size()) {
    const auto c = static_cast<unsigned char>(in[i]);
    int extra = 0;
    char32_t cp = 0;
    if (c < 0x80) {
      cp = c;
    } else if ((c & 0xE0) == 0xC0) {
      extra = 1, cp = c & 0x1F;
    } else if ((c & 0xF0) == 0xE0) {
      extra = 2, cp = c & 0x0F;
    } else if ((c & 0xF8) == 0xF0) {
      extra = 3, cp = c & 0x07;
    } else {
      AppendUTF16(out, 0xFFFD);
      ++i;
      continue;
    }
    bool valid = i + extra < in.size();
    for (int k = 1; valid && k <= extra; ++k) {
      const auto cc = static_cast<unsigned char>(in[i + k]);
      if ((cc & 0xC0) != 0x80)
        valid = false;
      else
        cp = (cp << 6) | (cc & 0x3F);
    }
    if (!valid || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
      AppendUTF16(out, 0xFFFD);
      ++i;
      continue;
    }
    AppendUTF16(out, cp);
    i += static_cast<std::size_t>(extra) + 1;
  }
  return KEPUnicodeString(std::move(out));
}

std::string KEPUnicodeString::ToUTF8() const {
  std::string out;
  out.reserve(text_.size());
  for (std::size_t i = 0; i < text_.size(); ++i) {
    char32_t cp = text_[i];
    if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < text_.size() && text_[i + 1] >= 0xDC00 &&
        text_[i + 1] <= 0xDFFF) {
      cp = 0x10000 + ((cp - 0xD800) << 10) + (text_[i + 1] - 0xDC00);
      ++i;
    } else if (cp >= 0xD800 && cp <= 0xDFFF) {
      cp = 0xFFFD;
    }
    if (cp < 0x80) {
      out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
      out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
  }
  return out;
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
