// Parameter values in the library and document files: booleans, numbers, [r,g,b,a] colours,
// [x,y,z(,w)] vectors, texture objects {image, dpi, groups}, light-profile paths, null.
#pragma once

#include <string>

#include "KEPHostValue.h"
#include "KEPJsonValue.h"

class KEPHostValueJson {
 public:
  /// Reads `json` as a value of `type` into `out`. `dimension` is the vector size required
  /// (0 accepts 2 to 4). Relative image and profile paths are resolved against `baseDir`.
  /// On failure returns false with `message` saying what shape was expected.
  static bool Read(const KEPJsonValue& json, KEPRmaType type, int dimension,
                   const std::string& baseDir, KEPHostValue& out, std::string& message);
  /// The JSON text of `value` (compact); paths are written relative to `baseDir` when they lie
  /// below it. A slot (KEPRmaVoid) writes null.
  static std::string Write(const KEPHostValue& value, const std::string& baseDir);
};
