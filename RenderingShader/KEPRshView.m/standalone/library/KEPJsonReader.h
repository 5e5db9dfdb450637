// A strict JSON reader for the library and document files: it records each value's line and
// refuses what a lenient reader would let through (repeated keys, NaN, trailing text), and what
// would make a hostile file expensive (deep nesting, huge containers, strings or documents).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "KEPJsonValue.h"

class KEPJsonReader {
 public:
  /// What a document may hold; one beyond a limit is refused with a message naming it.
  struct Limits {
    int depth;                ///< arrays and objects nested in one another
    std::size_t bytes;        ///< the whole text
    std::size_t values;       ///< values in the document (the root, members and elements)
    std::size_t members;      ///< members of one object, elements of one array
    std::size_t stringBytes;  ///< one string or member name, in UTF-8 bytes
  };
  /// The loaders' limits: far above what a library or document of ours holds, they bound the
  /// cost of a hostile file (time linear in the text, at most `values` values in memory).
  static constexpr Limits kLimits = {64, std::size_t{64} << 20, 4000000, 100000,
                                     std::size_t{64} << 10};

  /// What a parse cost, so that tests can check that it stays linear without timing it.
  struct Usage {
    std::size_t values = 0;           ///< values read
    std::size_t nameComparisons = 0;  ///< member names compared to find repeated keys
  };

  /// Parses `text`. On failure returns false and sets `line` (0 when the fault has no line),
  /// `key` (the innermost object key being read, empty at top level) and `message`. `text` is
  /// valid UTF-8 (the loaders check it with KEPFileText::IsValidUTF8 first): string bytes are
  /// copied as they are, and \u escapes are encoded to UTF-8.
  static bool Parse(std::string_view text, KEPJsonValue& out, int& line, std::string& key,
                    std::string& message, const Limits& limits = kLimits, Usage* usage = nullptr);
};
