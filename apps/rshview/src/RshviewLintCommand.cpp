// `rshview lint`: reads a library's files (library.json and config/*.cfg, and a document when one
// is given) with the loaders, and lists every error and warning they report with its file, line,
// key and hint. The files are only read: nothing is installed for other commands.
#include <algorithm>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <ostream>

#include "KEPConfigurationLoader.h"
#include "KEPHostShaderManager.h"
#include "KEPShaderDocumentLoader.h"
#include "KEPShaderLibraryLoader.h"
#include "RshviewCommands.h"
#include "RshviewConnectableCheck.h"

const char* const kRshviewLintHelp =
    "Usage: rshview lint [--library DIR] [--doc FILE] [--format text|json]\n"
    "\n"
    "Reads a shader library's files as rshview and the editors read them, and lists every\n"
    "problem with its file, line and key:\n"
    "\n"
    "  error    the text cannot be read (malformed JSON, a line without '=', a repeated key,\n"
    "           an unknown or cyclic @parent, invalid UTF-8, an unknown parameter type, ...):\n"
    "           the library does not load\n"
    "  warning  the library loads, but a text reads differently from how it looks: a number\n"
    "           with text after it ('0 (black)' reads as 0), an empty or non-numeric range or\n"
    "           step, a sign on a count or order ('-1' wraps around), an index written with a\n"
    "           leading zero, an unknown unit or magnitude, a key that no reader asks for\n"
    "           (often a typing mistake); the hint after ';' says what the readers make of it\n"
    "           A shader type listed under \"connectable\" that declares no \"output\", or whose\n"
    "           output the listed parameter type does not take, is warned about too: its\n"
    "           nodes can be made new for such a parameter but are never offered for reuse\n"
    "\n"
    "The library is --library DIR, else the \"library\" entry of --doc FILE, else the bundled\n"
    "sample library. With --doc the document is checked against the library as well. The text\n"
    "lists one problem a line, in file and line order, then a summary line.\n"
    "\n"
    "Exit code: 0 when there is no error (warnings allowed), 1 when there is one.\n"
    "\n"
    "JSON: {library, document, files, errors: [...], warnings: [...], summary: {errors,\n"
    "warnings}}; each problem is {file, line, key, message, hint, configuration, shaderType,\n"
    "parameter}, null where it does not apply.\n";

namespace {
namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

struct Problem {
  bool error;
  KEPLoadIssue issue;
};

/// Everything the loaders found, in load order.
struct Findings {
  std::vector<Problem> problems;
  std::size_t errors = 0;
  std::size_t warnings = 0;      ///< including those a loader counted but did not keep
  std::size_t keptWarnings = 0;  ///< those listed
  std::vector<std::string> files;
  std::string checked;  ///< what was read, for the summary ("library.json, 6 configuration files")

  void Add(const KEPLoadResult& result) {
    for (const KEPLoadIssue& issue : result.ErrorIssues()) problems.push_back({true, issue});
    for (const KEPLoadIssue& issue : result.WarningIssues()) problems.push_back({false, issue});
    errors += result.ErrorIssues().size();
    warnings += result.WarningCount();
    keptWarnings += result.WarningIssues().size();
  }

  /// Files in the order they were read, each file's problems by line (a loader lists a file's
  /// errors before its warnings).
  void Sort() {
    std::map<std::string, std::size_t> rank;
    for (const Problem& problem : problems) rank.emplace(problem.issue.file, rank.size());
    std::stable_sort(problems.begin(), problems.end(), [&](const Problem& a, const Problem& b) {
      const std::size_t ra = rank[a.issue.file], rb = rank[b.issue.file];
      return ra != rb ? ra < rb : a.issue.line < b.issue.line;
    });
  }
};

std::string Plural(std::size_t count, const char* word) {
  return (count == 0 ? std::string("no") : std::to_string(count)) + " " + word +
         (count == 1 ? "" : "s");
}

/// The configuration files that the loader reads, for the summary.
std::vector<std::string> ConfigurationFiles(const fs::path& directory) {
  std::vector<std::string> files;
  std::error_code ec;
  for (fs::directory_iterator it(directory, ec), end; !ec && it != end; it.increment(ec))
    if (it->path().extension() == ".cfg") files.push_back(it->path().string());
  std::sort(files.begin(), files.end());
  return files;
}

Findings Check(RshviewOptions& options) {
  Findings findings;
  const bool withDocument = !options.doc.empty();
  if (withDocument) {
    KEPLoadResult paths;
    RshviewResolvePaths(options, paths);
    findings.Add(paths);
    if (!paths.Ok()) {
      findings.files.push_back(options.doc);
      findings.checked = fs::path(options.doc).filename().string() + " (the library is unknown)";
      return findings;
    }
  } else if (options.library.empty()) {
    options.library = (fs::path(RshviewSamplesDirectory()) / "library").string();
  }

  auto library = std::make_shared<KEPHostShaderLibrary>();
  const KEPLoadResult loaded = KEPShaderLibraryLoader::Load(options.library, *library);
  findings.Add(loaded);
  const std::string libraryFile = (fs::path(options.library) / "library.json").string();
  findings.files.push_back(libraryFile);
  if (loaded.Ok()) findings.Add(RshviewCheckConnectableOutputs(*library, libraryFile));
  const fs::path config = fs::path(options.library) / "config";
  std::error_code ec;
  std::size_t configurations = 0;
  if (fs::exists(config, ec)) {
    findings.Add(KEPConfigurationLoader::LoadDirectory(config.string()));
    for (std::string& file : ConfigurationFiles(config)) findings.files.push_back(std::move(file));
    configurations = findings.files.size() - 1;
  }
  findings.checked = "library.json, " + Plural(configurations, "configuration file");
  if (withDocument) {
    findings.checked += " and " + fs::path(options.doc).filename().string();
    findings.files.push_back(options.doc);
    if (loaded.Ok()) {
      KEPHostShaderManager::Install(library);
      KEP_var<KEPHostShaderDocument> document;
      findings.Add(KEPShaderDocumentLoader::Load(options.doc, library, document));
    } else {
      KEPLoadResult skipped;
      skipped.AddError(options.doc, 0, "", "not checked: the library has errors");
      findings.Add(skipped);
    }
  }
  findings.Sort();
  return findings;
}

/// "FILE:LINE: warning: key 'K': MESSAGE; HINT", the loaders' form with the severity after the
/// place, as compilers write it.
std::string Line(const Problem& problem) {
  const KEPLoadIssue& issue = problem.issue;
  std::string text = issue.file;
  if (issue.line > 0) text += ":" + std::to_string(issue.line);
  text += problem.error ? ": error: " : ": warning: ";
  if (!issue.key.empty()) text += "key '" + issue.key + "': ";
  text += issue.message;
  if (!issue.hint.empty()) text += "; " + issue.hint;
  return text;
}

Json OrNull(const std::string& text) {
  return text.empty() ? Json(nullptr) : Json(text);
}

Json ToJson(const KEPLoadIssue& issue) {
  return Json{{"file", issue.file},
              {"line", issue.line > 0 ? Json(issue.line) : Json(nullptr)},
              {"key", OrNull(issue.key)},
              {"message", issue.message},
              {"hint", OrNull(issue.hint)},
              {"configuration", OrNull(issue.configuration)},
              {"shaderType", OrNull(issue.shaderType)},
              {"parameter", OrNull(issue.parameter)}};
}

std::string Summary(const Findings& findings, const RshviewOptions& options) {
  std::string text = (options.library.empty() ? options.doc : options.library) + ": " +
                     Plural(findings.errors, "error") + ", " + Plural(findings.warnings, "warning");
  if (findings.keptWarnings < findings.warnings)
    text += " (the first " + std::to_string(findings.keptWarnings) + " listed)";
  return text + " in " + findings.checked;
}
}  // namespace

int RunLintCommand(RshviewContext& context) {
  RshviewOptions& options = context.options;
  if (!options.arguments.empty() || !options.node.empty()) {
    context.err << "rshview lint: "
                << (options.node.empty() ? "unexpected argument '" + options.arguments.front() + "'"
                                         : std::string("--node does not apply to lint"))
                << "\nTry 'rshview lint --help'.\n";
    return 2;
  }
  const bool withDocument = !options.doc.empty();
  const Findings findings = Check(options);

  if (options.format == "json") {
    Json errors = Json::array(), warnings = Json::array();
    for (const Problem& problem : findings.problems)
      (problem.error ? errors : warnings).push_back(ToJson(problem.issue));
    const Json output{{"library", OrNull(options.library)},
                      {"document", withDocument ? Json(options.doc) : Json(nullptr)},
                      {"files", findings.files},
                      {"errors", errors},
                      {"warnings", warnings},
                      {"summary", {{"errors", findings.errors}, {"warnings", findings.warnings}}}};
    context.out << output.dump(2, ' ', false, Json::error_handler_t::replace) << "\n";
  } else {
    for (const Problem& problem : findings.problems) context.out << Line(problem) << "\n";
    context.out << Summary(findings, options) << "\n";
  }
  return findings.errors > 0 ? 1 : 0;
}
