// The library loader: the main text of the input is library.json, read from memory; the "%% NAME"
// files (see KEPFuzzInput) are the configuration directory, NAME.cfg, loaded first as a program
// does. A library that loads must make a document with a node of each type that saves and reads
// back the same; one that does not must leave the library object untouched.
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "KEPConfigurationLoader.h"
#include "KEPFuzzChecks.h"
#include "KEPFuzzInput.h"
#include "KEPFuzzScratchDir.h"
#include "KEPHostContext.h"
#include "KEPShaderDocumentLoader.h"
#include "KEPShaderDocumentWriter.h"
#include "KEPShaderLibraryLoader.h"

namespace {
[[noreturn]] void Fault(const char* what, const std::string& detail) {
  std::fprintf(stderr, "library loader: %s\n%s\n", what, detail.c_str());
  std::abort();
}

// A document with a node of each type (their default values), saved as text and read back.
void CheckNodesOfEveryTypeReadBack(const std::shared_ptr<const KEPHostShaderLibrary>& library,
                                   const std::string& path) {
  auto document = KEP_var<KEPHostShaderDocument>::Adopt(KEPHostShaderDocument::Create(library));
  for (const KEPHostShaderTypeDefinition& type : library->Types()) {
    KEP_var<KEPIRshShader> node;
    if (FAILED(document->CreateShader(type.name, "", *node.Out())))
      Fault("cannot make a node of a loaded type", type.name);
    KEPString id;
    node->GetId(id);
    document->materials.push_back(id);
  }
  const std::string text = KEPShaderDocumentWriter::Format(*document, path);
  KEP_var<KEPHostShaderDocument> copy;
  const KEPLoadResult reloaded = KEPShaderDocumentLoader::LoadText(path, text, library, copy);
  if (!reloaded.Ok()) Fault("a saved document does not read back", reloaded.Text() + text);
  if (KEPShaderDocumentWriter::Format(*copy, path) != text)
    Fault("a saved document reads back different", text);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  KEPHostContext host;  // a new session: nothing of the previous input is left
  const KEPFuzzInput input = KEPFuzzInput::Split(data, size);
  const std::filesystem::path& directory = KEPFuzzScratchDir::Fresh();
  std::vector<KEPFuzzReadFile> configuration{{(directory / "config").string(), "", false}};
  for (const KEPFuzzFile& file : input.files) {
    const std::string path = (directory / "config" / (file.name + ".cfg")).string();
    KEPFuzzScratchDir::Write(path, file.text);
    configuration.push_back({path, file.text, true});  // (a name given twice: the last text)
  }
  if (!input.files.empty())
    KEPFuzzCheckErrors(KEPConfigurationLoader::LoadDirectory(configuration[0].path), configuration);

  auto library = std::make_shared<KEPHostShaderLibrary>();
  const std::string path = (directory / "library.json").string();
  const KEPLoadResult loaded = KEPShaderLibraryLoader::LoadText(path, input.main, *library);
  KEPFuzzCheckErrors(loaded, {{path, input.main, false}});
  if (!loaded.Ok()) {
    if (!library->Types().empty() || !library->root.empty())
      Fault("a library with errors was changed", loaded.Text());
    return 0;
  }
  CheckNodesOfEveryTypeReadBack(library, (directory / "document.rshdoc.json").string());
  return 0;
}
