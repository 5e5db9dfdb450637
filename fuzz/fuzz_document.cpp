// The document loader, reading the input from memory as a document beside the bundled sample
// (so that "library": "../library" is found) over the sample library. A document that loads must
// save and read back the same; one that does not must hand out no document.
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "KEPFuzzChecks.h"
#include "KEPHostContext.h"
#include "KEPShaderDocumentLoader.h"
#include "KEPShaderDocumentWriter.h"
#include "KEPShaderLibraryLoader.h"

namespace {
const std::string kDocumentPath = std::string(KEPRSH_SOURCE_ROOT) + "/samples/documents/fuzz.json";

[[noreturn]] void Fault(const char* what, const std::string& detail) {
  std::fprintf(stderr, "document loader: %s\n%s\n", what, detail.c_str());
  std::abort();
}

// Read once: the library is a plain object, not state of the host session.
std::shared_ptr<const KEPHostShaderLibrary> SampleLibrary() {
  static const std::shared_ptr<const KEPHostShaderLibrary> library = [] {
    auto loaded = std::make_shared<KEPHostShaderLibrary>();
    const KEPLoadResult result =
        KEPShaderLibraryLoader::Load(std::string(KEPRSH_SOURCE_ROOT) + "/samples/library", *loaded);
    if (!result.Ok()) Fault("the sample library does not load", result.Text());
    return loaded;
  }();
  return library;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::shared_ptr<const KEPHostShaderLibrary> library = SampleLibrary();
  KEPHostContext host;  // a new session: nothing of the previous input is left
  const std::string text(reinterpret_cast<const char*>(data), size);
  KEP_var<KEPHostShaderDocument> document;
  const KEPLoadResult loaded =
      KEPShaderDocumentLoader::LoadText(kDocumentPath, text, library, document);
  KEPFuzzCheckErrors(loaded, {{kDocumentPath, text, false}});
  if (!loaded.Ok()) {
    if (document) Fault("a document with errors was handed out", loaded.Text());
    return 0;
  }
  const std::string saved = KEPShaderDocumentWriter::Format(*document, kDocumentPath);
  KEP_var<KEPHostShaderDocument> copy;
  const KEPLoadResult reloaded =
      KEPShaderDocumentLoader::LoadText(kDocumentPath, saved, library, copy);
  if (!reloaded.Ok()) Fault("a saved document does not read back", reloaded.Text() + saved);
  if (KEPShaderDocumentWriter::Format(*copy, kDocumentPath) != saved)
    Fault("a saved document reads back different", saved);
  if (copy->materials != document->materials) Fault("the materials changed on reading back", saved);
  return 0;
}
