#include "KEPConfigurationLoader.h"
#include "KEPHostConfiguration.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <vector>

#include "KEPFileText.h"
#include "KEPRbaConfiguration.h"
#include "KEPString.h"

namespace {
struct Entry {
  std::string key;
  std::string value;
  int line = 0;
};

struct ParsedFile {
  std::string path;
  std::string id;
  std::string parent;
  int parentLine = 0;
  std::vector<Entry> entries;
};

// Range keys must hold a finite number: a typo there would silently disable a slider range.
bool IsRangeKey(const std::string& key) {
  static constexpr std::string_view kSuffixes[] = {".Min",     ".Max",     ".Step",   ".SoftMin",
                                                   ".SoftMax", ".HardMin", ".HardMax"};
  return std::any_of(std::begin(kSuffixes), std::end(kSuffixes),
                     [&](std::string_view suffix) { return key.ends_with(suffix); });
}

void CheckValue(const ParsedFile& file, const Entry& entry, KEPLoadResult& result) {
  if (IsRangeKey(entry.key)) {
    char* end = nullptr;
    const double number = std::strtod(entry.value.c_str(), &end);
    if (end == entry.value.c_str() || *end != '\0') {
      result.AddError(file.path, entry.line, entry.key, "'" + entry.value + "' is not a number");
    } else if (!std::isfinite(number)) {
      result.AddError(file.path, entry.line, entry.key,
                      "'" + entry.value + "' is not a finite number");
    }
  } else if (entry.key == "GroupCount") {
    // Decimal digits only: from_chars takes no sign or blank, and refuses what overflows.
    const char* end = entry.value.data() + entry.value.size();
    unsigned count = 0;
    const auto [stop, fault] = std::from_chars(entry.value.data(), end, count);
    if (fault != std::errc() || stop != end || count > KEPConfigurationLoader::kMaxGroupCount)
      result.AddError(file.path, entry.line, entry.key,
                      "'" + entry.value + "' is not a group count from 0 to " +
                          std::to_string(KEPConfigurationLoader::kMaxGroupCount));
  }
}

bool Parse(const std::string& path, ParsedFile& file, KEPLoadResult& result) {
  file.path = path;
  file.id = std::filesystem::path(path).stem().string();
  std::string text, message;
  if (!KEPFileText::Read(path, text, message)) {
    result.AddError(path, 0, "", message);
    return false;
  }
  int badLine = 0;
  if (!KEPFileText::IsValidUTF8(text, badLine)) {
    result.AddError(path, badLine, "", "invalid UTF-8");
    return false;
  }
  std::map<std::string, int> seen;
  std::size_t start = 0;
  int line = 0;
  const std::size_t errorsBefore = result.Errors().size();
  while (start <= text.size()) {
    std::size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    ++line;
    std::string_view content = KEPTrimBlanks(std::string_view(text).substr(start, end - start));
    start = end + 1;
    if (line == 1 && content.starts_with("\xEF\xBB\xBF"))
      content = KEPTrimBlanks(content.substr(3));
    if (content.empty() || content[0] == '#') continue;
    const auto equals = content.find('=');
    if (equals == std::string_view::npos) {
      result.AddError(path, line, "", "expected 'Key = Value', '@parent = id' or '# comment'");
      continue;
    }
    std::string key(KEPTrimBlanks(content.substr(0, equals)));
    std::string value(KEPTrimBlanks(content.substr(equals + 1)));
    if (key.empty()) {
      result.AddError(path, line, "", "empty key before '='");
      continue;
    }
    if (key[0] == '@') {
      if (key != "@parent") {
        result.AddError(path, line, key, "unknown directive (only @parent is known)");
      } else if (file.parentLine) {
        result.AddError(path, line, key,
                        "repeated key (first at line " + std::to_string(file.parentLine) + ")");
      } else if (value.empty()) {
        result.AddError(path, line, key, "empty parent configuration identifier");
      } else {
        file.parent = value;
        file.parentLine = line;
      }
      continue;
    }
    auto [it, inserted] = seen.emplace(key, line);
    if (!inserted) {
      result.AddError(path, line, key,
                      "repeated key (first at line " + std::to_string(it->second) + ")");
      continue;
    }
    file.entries.push_back({std::move(key), std::move(value), line});
    CheckValue(file, file.entries.back(), result);
  }
  return result.Errors().size() == errorsBefore;
}

// Parents must be known and must not loop back.
void CheckParents(const std::vector<ParsedFile>& files, KEPLoadResult& result) {
  std::map<std::string, const ParsedFile*> byId;
  for (const ParsedFile& file : files) byId[file.id] = &file;
  for (const ParsedFile& file : files) {
    if (file.parent.empty()) continue;
    if (!byId.count(file.parent) && !KEPHostConfiguration::HasConfiguration(file.parent)) {
      result.AddError(
          file.path, file.parentLine, "@parent",
          "parent configuration '" + file.parent + "' does not exist (no " + file.parent + ".cfg)");
      continue;
    }
    std::set<std::string> visited{file.id};
    std::string chain = file.id;
    for (std::string current = file.parent; !current.empty();) {
      chain += " -> " + current;
      if (!visited.insert(current).second) {
        if (current == file.id)
          result.AddError(file.path, file.parentLine, "@parent", "parent cycle: " + chain);
        break;
      }
      auto it = byId.find(current);
      current = it == byId.end() ? std::string() : it->second->parent;
    }
  }
}

void Apply(const std::vector<ParsedFile>& files) {
  for (const ParsedFile& file : files) {
    if (!file.parent.empty()) KEPHostConfiguration::SetParent(file.id, file.parent);
    for (const Entry& entry : file.entries)
      KEPHostConfiguration::SetValue(file.id, entry.key, entry.value);
    if (file.entries.empty() && file.parent.empty()) KEPHostConfiguration::SetParent(file.id, "");
  }
}
}  // namespace

KEPLoadResult KEPConfigurationLoader::LoadDirectory(const std::string& directory) {
  KEPLoadResult result;
  std::error_code ec;
  if (!std::filesystem::is_directory(directory, ec)) {
    result.AddError(directory, 0, "", "configuration directory does not exist");
    return result;
  }
  std::vector<std::string> paths;
  // Explicit increments with an error code: the range-for form throws on a listing error.
  for (std::filesystem::directory_iterator it(directory, ec), end; !ec && it != end;
       it.increment(ec)) {
    if (it->path().extension() == ".cfg") paths.push_back(it->path().string());
    if (paths.size() > 100000) break;
  }
  if (ec) {
    result.AddError(directory, 0, "", "cannot list the directory: " + ec.message());
    return result;
  }
  std::sort(paths.begin(), paths.end());
  std::vector<ParsedFile> files(paths.size());
  for (std::size_t i = 0; i < paths.size(); ++i) Parse(paths[i], files[i], result);
  if (!result.Ok()) return result;
  CheckParents(files, result);
  if (result.Ok()) Apply(files);
  return result;
}

KEPLoadResult KEPConfigurationLoader::LoadFile(const std::string& path) {
  KEPLoadResult result;
  std::vector<ParsedFile> files(1);
  if (!Parse(path, files[0], result)) return result;
  CheckParents(files, result);
  if (result.Ok()) Apply(files);
  return result;
}
