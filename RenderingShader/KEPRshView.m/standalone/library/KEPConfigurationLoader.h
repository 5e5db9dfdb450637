// Loads the configuration directory of a library (LIBRARY/config/<configuration-id>.cfg) into the
// configuration store.
//
// A file holds UTF-8 lines: blank, "# comment", "@parent = other-id", or "Key = Value" (both
// trimmed). A repeated key, a line without "=", an unknown directive, a parent that no file of the
// directory defines, a parent cycle, a range key that is not a finite number and a "GroupCount"
// that is not a count of at most kMaxGroupCount are errors.
#pragma once

#include <string>

#include "KEPLoadResult.h"

class KEPConfigurationLoader {
 public:
  static constexpr unsigned long long kMaxGroupCount = 1000;

  /// Reads every "*.cfg" file of `directory` (file name order). The store is changed only when
  /// every file is valid; otherwise the result lists every error and the store is untouched.
  /// A missing directory is an error; an empty one is not.
  static KEPLoadResult LoadDirectory(const std::string& directory);
  /// Reads one file as configuration `<stem of path>`; its parent must already be in the store
  /// (or be the file itself, which is a cycle).
  static KEPLoadResult LoadFile(const std::string& path);
};
