// Saves a material document in the format that KEPShaderDocumentLoader reads, atomically.
#pragma once

#include <string>

#include "KEPHostShaderDocument.h"
#include "KEPLoadResult.h"

class KEPShaderDocumentWriter {
 public:
  /// The document's JSON text. Paths (library, images) are written relative to the directory of
  /// `path`. Every node that is not a material is written under the first node that connects to
  /// it; nodes that nothing reaches go under the first material (or become materials when the
  /// document has none).
  static std::string Format(KEPHostShaderDocument& document, const std::string& path);
  /// Writes Format(document, path) to `path` atomically; an error names the file.
  static KEPLoadResult Save(KEPHostShaderDocument& document, const std::string& path);
};
