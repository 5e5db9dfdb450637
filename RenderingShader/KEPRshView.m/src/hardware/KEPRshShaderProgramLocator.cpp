#include "KEPRshShaderProgramLocator.h"

#include <optional>
#include <string>
#include <vector>

#include "KEPFileServices.h"
#include "KEPRbaImageServices.h"
#include "KEPRshViewModule.h"

namespace {

constexpr std::string_view kProgramExtension = "cgfx";
constexpr std::string_view kMaterialsShaders = "materials/shaders";
constexpr std::string_view kShaders = "shaders";

// Process-wide: the "KEPStartupPath" value and the directory lists built from it. Built on first
// use and kept until ForgetProcessCache.
struct StartupDirectories {
  bool valueRead = false;
  std::optional<std::string> value;
  bool listsBuilt = false;
  std::vector<std::string> directories;
  std::vector<std::string_view> subdirectories;
};

StartupDirectories& Startup() {
  static StartupDirectories startup;
  return startup;
}

const std::optional<std::string>& StartupPathValue() {
  StartupDirectories& startup = Startup();
  if (!startup.valueRead) {
    startup.valueRead = true;
    KEPString value;
    if (SUCCEEDED(KEPGetEnv("KEPStartupPath", value))) startup.value = std::move(value);
  }
  return startup.value;
}

const StartupDirectories& StartupLists() {
  StartupDirectories& startup = Startup();
  if (!startup.listsBuilt) {
    startup.listsBuilt = true;
    if (const auto& value = StartupPathValue()) {
      // Every segment is kept, empty ones included.
      std::string_view rest(*value);
      while (true) {
        const std::size_t end = rest.find(KEPSearchPathSeparator);
        startup.directories.emplace_back(rest.substr(0, end));
        if (end == std::string_view::npos) break;
        rest.remove_prefix(end + 1);
      }
    }
    startup.subdirectories = {kMaterialsShaders, kShaders};
  }
  return startup;
}

/// `directory`/`baseName`.cgfx, appended to `path`.
void AppendProgramName(std::string& path, std::string_view directory, std::string_view baseName) {
  path += directory;
  path += KEPPathSeparator;
  path += baseName;
  path += '.';
  path += kProgramExtension;
}

}  // namespace

bool KEPRshShaderProgramLocator::FindPhysicalProgram(std::string_view typeName,
                                                     KEPUnicodeString& found) {
  // Every physical shader draws with the common program when there is one.
  for (std::string_view baseName :
       {std::string_view("MPM_material"), typeName, std::string_view("rsh_default")})
    if (FindByBaseName(baseName, found)) return true;
  return false;
}

bool KEPRshShaderProgramLocator::FindByBaseName(std::string_view baseName,
                                                KEPUnicodeString& found) {
  const StartupDirectories& lists = StartupLists();
  std::string candidate;
  for (const std::string& directory : lists.directories) {
    for (std::string_view subdirectory : lists.subdirectories) {
      candidate = directory;
      candidate += KEPPathSeparator;
      AppendProgramName(candidate, subdirectory, baseName);
      if (KEPFileAccess(candidate.c_str(), 0) == 0) {
        found = KEPUnicodeString::FromUTF8(candidate);
        return true;
      }
    }
  }
  return false;
}

bool KEPRshShaderProgramLocator::HasStartupPath() {
  return StartupPathValue().has_value();
}

bool KEPRshShaderProgramLocator::ResolveAlongStartupPath(std::string_view typeName,
                                                         KEPUnicodeString& found) {
  const std::optional<std::string>& startupPath = StartupPathValue();
  if (!startupPath) return false;
  // Physical types under "shaders", all others (the texture type among them) under
  // "materials/shaders".
  std::string relative;
  AppendProgramName(relative, KEPRshIsPhysicalShaderType(typeName) ? kShaders : kMaterialsShaders,
                    typeName);
  KEPString path;
  HRESULT hr = KEPFindPath(relative.c_str(), startupPath->c_str(), path);
  if (FAILED(hr)) {
    relative.clear();
    AppendProgramName(relative, kMaterialsShaders, "rsh_default");
    hr = KEPFindPath(relative.c_str(), startupPath->c_str(), path);
  }
  if (FAILED(hr)) return false;
  found = KEPUnicodeString::FromUTF8(path);
  return true;
}

KEPUnicodeString KEPRshShaderProgramLocator::StickerVariant(const KEPUnicodeString& programFile) {
  // The first occurrence of "base.extension" becomes "base_Stk.extension".
  KEPUnicodeString base, extension;
  KEPRbaImageServices::SplitPath(programFile, base, extension);
  const std::u16string original = base.Str() + u"." + extension.Str();
  const std::u16string sticker = base.Str() + u"_Stk." + extension.Str();
  KEPUnicodeString result = programFile;
  const std::size_t at = result.Str().find(original);
  if (at != std::u16string::npos) result.Str().replace(at, original.size(), sticker);
  return result;
}

void KEPRshShaderProgramLocator::ForgetProcessCache() {
  Startup() = StartupDirectories{};
}
