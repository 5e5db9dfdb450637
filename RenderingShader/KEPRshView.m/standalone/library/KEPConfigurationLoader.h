// Loads the configuration directory of a library (LIBRARY/config/<configuration-id>.cfg) into the
// configuration store.
//
// A file holds UTF-8 lines: blank, "# comment", "@parent = other-id", or "Key = Value" (both
// trimmed). What cannot be read is an error and stops the load: a line without "=", an empty key,
// a repeated key, an unknown directive, a parent that is not defined, a parent cycle, invalid
// UTF-8, a file that cannot be read. A value that the readers take differently from how it looks
// ("0 (black)" for a number, "-1" for a count) and a key that no reader asks for are warnings
// (KEPReaderKeys): the file loads, and the result lists them.
#pragma once

#include <string>

#include "KEPLoadResult.h"

class KEPConfigurationLoader {
 public:
  /// Reads every "*.cfg" file of `directory` (file name order). The store is changed only when
  /// no file has an error; otherwise the result lists every error and the store is untouched.
  /// Warnings are listed either way.
  /// A missing directory is an error; an empty one is not.
  static KEPLoadResult LoadDirectory(const std::string& directory);
  /// Reads one file as configuration `<stem of path>`; its parent must already be in the store
  /// (or be the file itself, which is a cycle).
  static KEPLoadResult LoadFile(const std::string& path);
};
