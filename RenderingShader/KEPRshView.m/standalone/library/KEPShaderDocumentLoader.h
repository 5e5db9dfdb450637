// Loads a material document (*.rshdoc.json) over a shader library.
//
//   { "library": "../library",              (optional, relative to the document)
//     "materials": [ { "id", "type", "alias", "values": { name: value },
//                      "connections": { parameter: node id }, "subShaders": [ node, ... ] } ] }
//
// Errors name file, line and key: malformed JSON, repeated keys, unknown shader types or
// parameter names, values of the wrong shape, duplicate node ids, connections to missing nodes,
// connection cycles, a library path that does not exist, counts above the limits (and those of
// KEPJsonReader::kLimits).
#pragma once

#include <memory>
#include <string>

#include "KEPHostShaderDocument.h"
#include "KEPHostShaderLibrary.h"
#include "KEPLoadResult.h"

class KEPShaderDocumentLoader {
 public:
  static constexpr std::size_t kMaxNodes = 100000;        ///< per document
  static constexpr std::size_t kMaxParameters = 1000000;  ///< of all nodes of a document

  /// The document's "library" entry resolved against the document's directory, or empty when the
  /// document names none. An entry that is not an existing directory is an error.
  static KEPLoadResult ReadLibraryPath(const std::string& path, std::string& libraryDirectory);

  /// Reads `path` into a new document over `library` (which must not be null). On success
  /// `document` holds the only reference; on failure it is left untouched.
  static KEPLoadResult Load(const std::string& path,
                            const std::shared_ptr<const KEPHostShaderLibrary>& library,
                            KEP_var<KEPHostShaderDocument>& document);
  /// Same, from `text` read already: `path` names the document in errors, and its directory is
  /// the one that relative paths are resolved against.
  static KEPLoadResult LoadText(const std::string& path, const std::string& text,
                                const std::shared_ptr<const KEPHostShaderLibrary>& library,
                                KEP_var<KEPHostShaderDocument>& document);
};
