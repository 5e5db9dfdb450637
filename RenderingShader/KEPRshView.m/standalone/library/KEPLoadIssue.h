// One problem that a loader found in a file: where it is, what it is and, for a warning, what the
// readers will make of the text.
#pragma once

#include <string>

struct KEPLoadIssue {
  std::string file;
  int line = 0;     ///< 1-based; 0 when the problem has no line (a missing file)
  std::string key;  ///< the key or JSON member concerned; empty when none
  std::string message;
  std::string hint;  ///< what the readers will make of the text; empty when there is nothing to say
  /// For a key of one parameter: the configuration that holds it (configuration files) or the
  /// shader type whose resources hold it (library.json), and the parameter's name.
  std::string configuration;
  std::string shaderType;
  std::string parameter;

  /// "file:line: key 'key': message", then "; hint" when there is one; the line is left out when
  /// it is 0, the key when it is empty.
  std::string Text() const;
};
