// Reading a whole text file for the loaders, with a size limit so that a wrong path to a huge
// file fails quickly instead of filling memory.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

class KEPFileText {
 public:
  static constexpr std::size_t kMaxBytes = std::size_t{64} * 1024 * 1024;

  /// Reads `path` into `content`. On failure returns false with `message` ("cannot open ...",
  /// "not a regular file", "larger than 64 MiB", "read error").
  static bool Read(const std::string& path, std::string& content, std::string& message);
  /// True when `text` is valid UTF-8 (the host's one codec: no overlong encodings, encoded
  /// surrogates or code points above U+10FFFF); `line` receives the 1-based line of the first
  /// fault.
  static bool IsValidUTF8(const std::string& text, int& line);
  /// `path` made absolute against the current directory; `path` itself when that fails (an
  /// empty path, a vanished current directory) instead of throwing.
  static std::filesystem::path Absolute(const std::string& path) {
    std::error_code ec;
    std::filesystem::path absolute = std::filesystem::absolute(path, ec);
    return ec ? std::filesystem::path(path) : absolute;
  }
};
