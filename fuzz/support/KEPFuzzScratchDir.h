// A directory of this process for the files a fuzz target writes: made on first use under $TMPDIR
// (or /tmp), emptied for every input, removed when the process ends normally.
#pragma once

#include <filesystem>
#include <string>

class KEPFuzzScratchDir {
 public:
  /// The directory, emptied. Aborts when it cannot be made: a target cannot run without it.
  static const std::filesystem::path& Fresh();
  /// Writes `text` to `path` (under the directory), making its parent directories; aborts on
  /// failure.
  static void Write(const std::filesystem::path& path, const std::string& text);
};
