// A strict JSON reader for the library and document files: it records each value's line and
// refuses what a lenient reader would let through (repeated keys, NaN, trailing text, nesting
// deeper than a file of ours could need).
#pragma once

#include <string>
#include <string_view>

#include "KEPJsonValue.h"

class KEPJsonReader {
 public:
  static constexpr int kMaxDepth = 64;

  /// Parses `text`. On failure returns false and sets `line`, `key` (the innermost object key
  /// being read, empty at top level) and `message`. `text` is valid UTF-8 (the loaders check it
  /// with KEPFileText::IsValidUTF8 first): string bytes are copied as they are, and \u escapes
  /// are encoded to UTF-8.
  static bool Parse(std::string_view text, KEPJsonValue& out, int& line, std::string& key,
                    std::string& message);
};
