#include "KEPFileText.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

bool KEPFileText::Read(const std::string& path, std::string& content, std::string& message) {
  std::error_code ec;
  const auto status = std::filesystem::status(path, ec);
  if (ec || !std::filesystem::exists(status)) {
    message = "file does not exist";
    return false;
  }
  if (!std::filesystem::is_regular_file(status)) {
    message = "not a regular file";
    return false;
  }
  const auto size = std::filesystem::file_size(path, ec);
  if (ec) {
    message = "cannot read the file size: " + ec.message();
    return false;
  }
  if (size > kMaxBytes) {
    message = "file larger than 64 MiB";
    return false;
  }
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    message = std::string("cannot open: ") + std::strerror(errno);
    return false;
  }
  std::ostringstream text;
  text << in.rdbuf();
  if (in.bad()) {
    message = "read error";
    return false;
  }
  content = std::move(text).str();
  return true;
}

bool KEPFileText::IsValidUTF8(const std::string& text, int& line) {
  line = 1;
  std::size_t i = 0;
  while (i < text.size()) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    if (c == '\n') ++line;
    std::size_t extra = 0;
    unsigned code = 0;
    if (c < 0x80) {
      ++i;
      continue;
    } else if ((c & 0xE0) == 0xC0) {
      extra = 1;
      code = c & 0x1F;
    } else if ((c & 0xF0) == 0xE0) {
      extra = 2;
      code = c & 0x0F;
    } else if ((c & 0xF8) == 0xF0) {
      extra = 3;
      code = c & 0x07;
    } else {
      return false;
    }
    if (i + extra >= text.size()) return false;
    for (std::size_t k = 1; k <= extra; ++k) {
      const unsigned char cc = static_cast<unsigned char>(text[i + k]);
      if ((cc & 0xC0) != 0x80) return false;
      code = (code << 6) | (cc & 0x3F);
    }
    static constexpr unsigned kMin[] = {0, 0x80, 0x800, 0x10000};
    if (code < kMin[extra] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return false;
    i += extra + 1;
  }
  return true;
}
