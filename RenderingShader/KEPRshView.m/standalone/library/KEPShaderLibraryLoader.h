// Loads LIBRARY/library.json into a shader library.
//
//   { "shaderTypes": { "<type>": { "configuration": id, "label": text,
//                                  "parameters": [ { "name", "type", "default", "resources" } ] }
//                                  },
//     "connectable": { "<parameter type>": [ { "type": shader type, "label": text } ] } }
//
// Every problem is reported as "file:line: key 'k': message": malformed JSON, a repeated key,
// an unknown member, an unknown parameter or shader type, a default of the wrong shape, a repeated
// parameter name, counts above the limits below. A resource text that the readers take
// differently from how it looks ("0.5x" for "min") or a resource key that they never ask for is a
// warning (KEPReaderKeys): the library loads.
#pragma once

#include <string>

#include "KEPHostShaderLibrary.h"
#include "KEPLoadResult.h"

class KEPShaderLibraryLoader {
 public:
  static constexpr std::size_t kMaxTypes = 10000;
  static constexpr std::size_t kMaxParameters = 10000;   ///< per shader type
  static constexpr std::size_t kMaxResources = 1000;     ///< per parameter
  static constexpr std::size_t kMaxConnectable = 10000;  ///< per parameter type

  /// Reads `directory`/library.json into `library` (whose root becomes `directory`). On failure
  /// `library` is left untouched.
  static KEPLoadResult Load(const std::string& directory, KEPHostShaderLibrary& library);
  /// Same, from a file given directly; the root is the file's directory.
  static KEPLoadResult LoadFile(const std::string& path, KEPHostShaderLibrary& library);
  /// Same, from `text` read already: `path` names the file in errors and gives the root.
  static KEPLoadResult LoadText(const std::string& path, const std::string& text,
                                KEPHostShaderLibrary& library);
};
