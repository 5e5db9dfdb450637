// The configuration loader on a directory of files made from the input (see KEPFuzzInput: the
// main text is main.cfg, each "%% NAME" file NAME.cfg): the whole directory, then the first file
// on top of what the directory left, then every key looked up through its parents. A load with
// errors must leave the store as it was; every error must name a file of the directory, a line
// of it and a key on that line (see KEPFuzzCheckErrors).
#include <cstdio>
#include <cstdlib>

#include "KEPConfigurationLoader.h"
#include "KEPFuzzChecks.h"
#include "KEPFuzzInput.h"
#include "KEPFuzzScratchDir.h"
#include "KEPHostConfiguration.h"
#include "KEPHostContext.h"

namespace {
[[noreturn]] void Fault(const char* what, const KEPLoadResult& result) {
  std::fprintf(stderr, "configuration loader: %s\n%s", what, result.Text().c_str());
  std::abort();
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  KEPHostContext host;  // a new session: nothing of the previous input is left
  const KEPFuzzInput input = KEPFuzzInput::Split(data, size);
  const std::filesystem::path directory = KEPFuzzScratchDir::Fresh() / "config";
  std::vector<KEPFuzzReadFile> files{{directory.string(), "", false}};
  auto add = [&](const std::string& name, const std::string& text) {
    const std::string path = (directory / (name + ".cfg")).string();
    KEPFuzzScratchDir::Write(path, text);
    for (KEPFuzzReadFile& file : files)
      if (file.path == path) return void(file.text = text);  // a name given twice
    files.push_back({path, text, true});
  };
  if (!input.main.empty() || input.files.empty()) add("main", input.main);
  for (const KEPFuzzFile& file : input.files) add(file.name, file.text);

  const KEPLoadResult loaded = KEPConfigurationLoader::LoadDirectory(directory.string());
  KEPFuzzCheckErrors(loaded, files);
  if (!loaded.Ok() && !KEPHostConfiguration::ConfigurationIds().empty())
    Fault("a directory with errors changed the store", loaded);

  // The first file again, alone: its parent is now looked for in the store.
  const auto before = KEPHostConfiguration::ConfigurationIds();
  const KEPLoadResult one = KEPConfigurationLoader::LoadFile(files[1].path);
  KEPFuzzCheckErrors(one, files);
  if (!one.Ok() && KEPHostConfiguration::ConfigurationIds() != before)
    Fault("a file with errors changed the store", one);

  for (const KEPString& id : KEPHostConfiguration::ConfigurationIds()) {
    for (const KEPString& key : KEPHostConfiguration::Keys(id)) {
      KEPString text;
      int number = 0;
      if (FAILED(KEPRbaConfiguration::GetHierarchicalValue(id, key, text)))
        Fault("a key of a configuration cannot be looked up", loaded);
      KEPRbaConfiguration::GetHierarchicalValue(id, key, number);
    }
    KEPString missing;
    KEPRbaConfiguration::GetHierarchicalValue(id, "fuzz.NoSuchKey", missing);  // walks the parents
  }
  return 0;
}
