// The text form of every parameter value of a document, kept to tell a write's old value from its
// new one: the model's change events say which parameter changed, not what it held before.
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "KEPHostShaderDocument.h"

class RshviewValueLog {
 public:
  /// Remembers every parameter of `document`; values are written with paths relative to
  /// `baseDir` (the document's directory), as the document file holds them.
  RshviewValueLog(const KEPHostShaderDocument& document, std::string baseDir);

  /// The write of `parameter`: {node, parameter, old, new} (nulls for a parameter that is not the
  /// host's); the log keeps the new value.
  nlohmann::ordered_json Write(KEPIRshParameter* parameter);

 private:
  std::string Text(const KEPHostParameter& parameter) const;
  std::string baseDir_;
  std::map<const KEPHostParameter*, std::string> values_;
};
