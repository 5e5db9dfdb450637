#include "KEPConfigurationLoader.h"
#include "KEPHostConfiguration.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "KEPFileText.h"
#include "KEPRbaConfiguration.h"
#include "KEPReaderKeys.h"
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

// A value that the readers take differently from how it looks, or a key that no reader asks
// for, is kept (the readers cope) and reported as a warning.
void CheckValue(const ParsedFile& file, const Entry& entry, KEPLoadResult& result) {
  std::string parameter;
  std::optional<KEPValueFinding> finding =
      KEPReaderKeys::ConfigurationEntry(entry.key, entry.value, parameter);
  if (!finding) return;
  KEPLoadIssue warning;
  warning.file = file.path;
  warning.line = entry.line;
  warning.key = entry.key;
  warning.message = std::move(finding->message);
  warning.hint = std::move(finding->hint);
  warning.configuration = file.id;
  warning.parameter = std::move(parameter);
  result.AddWarning(std::move(warning));
}

// Reads one file into `file`: every line it can, with an error for each line it cannot.
void Parse(const std::string& path, ParsedFile& file, KEPLoadResult& result) {
  file.path = path;
  file.id = std::filesystem::path(path).stem().string();
  std::string text, message;
  if (!KEPFileText::Read(path, text, message)) {
    result.AddError(path, 0, "", message);
    return;
  }
  int badLine = 0;
  if (!KEPFileText::IsValidUTF8(text, badLine)) {
    result.AddError(path, badLine, "", "invalid UTF-8");
    return;
  }
  std::map<std::string, int> seen;
  std::size_t start = 0;
  int line = 0;
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
}

// Parents must be known and must not loop back.
/// "a -> b -> c -> a" for the cycle that `cycle` lists in parent order, starting at `start`; a long
/// cycle is shortened in the middle so that the message stays readable (and its cost bounded).
std::string CycleText(const std::vector<std::string>& cycle, std::size_t start) {
  constexpr std::size_t kShown = 8;
  std::string text = cycle[start];
  for (std::size_t step = 1; step < cycle.size(); ++step) {
    if (cycle.size() > kShown + 1 && step == kShown / 2) {
      text += " -> ... (" + std::to_string(cycle.size() - kShown) + " more)";
      step = cycle.size() - kShown / 2;
    }
    text += " -> " + cycle[(start + step) % cycle.size()];
  }
  return text + " -> " + cycle[start];
}

// Every file's parent must exist, and no chain of parents may lead back to where it started.
// Each configuration is walked once (a walk stops at one already walked), so a long chain of
// parents costs its length, not its square; every file on a cycle gets its own error.
void CheckParents(const std::vector<ParsedFile>& files, KEPLoadResult& result) {
  std::map<std::string, const ParsedFile*> byId;
  for (const ParsedFile& file : files) byId[file.id] = &file;
  enum class Walk { kActive, kDone };
  std::map<std::string, Walk> walked;
  std::map<std::string, std::string> cycleText;  // id of a file on a cycle -> its error text
  for (const ParsedFile& file : files) {
    if (!file.parent.empty() && !byId.count(file.parent) &&
        !KEPHostConfiguration::HasConfiguration(file.parent))
      result.AddError(
          file.path, file.parentLine, "@parent",
          "parent configuration '" + file.parent + "' does not exist (no " + file.parent + ".cfg)");
    std::vector<std::string> path;
    std::string current = file.id;
    while (!current.empty() && !walked.count(current)) {
      auto it = byId.find(current);
      if (it == byId.end()) break;  // a configuration loaded before, or a missing one
      walked[current] = Walk::kActive;
      path.push_back(current);
      current = it->second->parent;
    }
    if (auto it = walked.find(current); it != walked.end() && it->second == Walk::kActive) {
      // The walk came back to a configuration of its own path: from there on it is a cycle.
      const auto first = std::find(path.begin(), path.end(), current);
      const std::vector<std::string> cycle(first, path.end());
      for (std::size_t i = 0; i < cycle.size(); ++i)
        cycleText[cycle[i]] = "parent cycle: " + CycleText(cycle, i);
    }
    for (const std::string& id : path) walked[id] = Walk::kDone;
  }
  for (const ParsedFile& file : files)
    if (auto it = cycleText.find(file.id); it != cycleText.end())
      result.AddError(file.path, file.parentLine, "@parent", it->second);
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
  // Parents are checked even after faults in the files, so that one run lists them all.
  CheckParents(files, result);
  if (result.Ok()) Apply(files);
  return result;
}

KEPLoadResult KEPConfigurationLoader::LoadFile(const std::string& path) {
  KEPLoadResult result;
  std::vector<ParsedFile> files(1);
  Parse(path, files[0], result);
  CheckParents(files, result);
  if (result.Ok()) Apply(files);
  return result;
}
