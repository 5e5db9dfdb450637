#include "KEPFileText.h"

#include <utf8.h>

#include <algorithm>
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
  const auto bad = utf8::find_invalid(text.begin(), text.end());
  line = 1 + static_cast<int>(std::count(text.begin(), bad, '\n'));
  return bad == text.end();
}
