// Saves a material document in the format that KEPShaderDocumentLoader reads, atomically.
#pragma once

#include <string>

#include "KEPHostShaderDocument.h"
#include "KEPLoadResult.h"

class KEPShaderDocumentWriter {
 public:
  /// How the library's and the images' paths are written.
  enum class Paths { RelativeToFile, Absolute };
  /// The document's JSON text. Paths (library, images) are written relative to the directory of
  /// `path`, or as they are held (absolute) with Paths::Absolute. Every node that is not a material
  /// is written under the first node that connects to it; nodes that nothing reaches go under the
  /// first material (or become materials when the document has none).
  static std::string Format(KEPHostShaderDocument& document, const std::string& path,
                            Paths paths = Paths::RelativeToFile);
  /// Writes Format(document, path) to `path` atomically; an error names the file.
  static KEPLoadResult Save(KEPHostShaderDocument& document, const std::string& path,
                            Paths paths = Paths::RelativeToFile);
};
