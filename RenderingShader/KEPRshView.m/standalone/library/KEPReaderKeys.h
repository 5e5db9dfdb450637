// The keys that the module's readers ask for, in configuration files and in shader resources, and
// what each reader makes of its text: the loaders warn about a value that reads differently from
// how it looks and about a key that no reader asks for (most often a typing mistake, which would
// otherwise pass silently).
#pragma once

#include <optional>
#include <string>

#include "KEPValueCheck.h"

class KEPReaderKeys {
 public:
  /// Above this "GroupCount" the editor would make that many group records: a warning.
  static constexpr unsigned long long kMaxGroupCount = 1000;

  /// What is wrong with `key = value` of a configuration file, or nothing. `parameter` receives
  /// the parameter's name for a key of one parameter ("roughness" for "roughness.Min"), else
  /// it is emptied.
  static std::optional<KEPValueFinding> ConfigurationEntry(const std::string& key,
                                                           const std::string& value,
                                                           std::string& parameter);
  /// What is wrong with resource `key` = `value` of a parameter in library.json, or nothing.
  static std::optional<KEPValueFinding> ResourceEntry(const std::string& key,
                                                      const std::string& value);
};
