// rshview's entry point: options, help, loading the library, its configuration and the document,
// then the command.
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <functional>
#include <mutex>
#include <ostream>

#include "KEPConfigurationLoader.h"
#include "KEPHostContext.h"
#include "KEPHostShaderManager.h"
#include "KEPRbaConfiguration.h"
#include "KEPRshShaderManager.h"
#include "KEPRshViewModule.h"
#include "KEPShaderDocumentLoader.h"
#include "KEPShaderLibraryLoader.h"
#include "KEPTrace.h"
#include "RshviewCommand.h"
#include "RshviewUnits.h"

#ifndef RSHVIEW_VERSION
#define RSHVIEW_VERSION "0.1.0"
#endif

namespace {
namespace fs = std::filesystem;

constexpr int kExitUsage = 2;
constexpr int kExitFailure = 1;

const char* const kGlobalOptions =
    "Options shared by every command:\n"
    "  --library DIR        shader library directory (library.json and config/); default: the\n"
    "                       document's \"library\" entry, else the bundled sample library\n"
    "  --doc FILE           material document (*.rshdoc.json); default: the bundled showroom\n"
    "  --node ID            node to work on; default: the document's first material\n"
    "  --format text|json   output format; default: text\n"
    "  --trace              print the module's traces to standard error\n"
    "  --units LIST         display units for this run, e.g. length=cm,angle=deg (dump, drive);\n"
    "                       'rshview units' chooses them for good\n"
    "  --editor KIND        immersive (default) or classic: the editor dump and drive open\n"
    "  -h, --help           help (of the command when given after it)\n"
    "\n"
    "The bundled samples are looked up in $RSHVIEW_SAMPLES, else in share/KEPRshView/samples\n"
    "beside the program's directory.\n";

void PrintGlobalHelp(std::ostream& out) {
  out << "Usage: rshview COMMAND [OPTIONS]\n"
         "       rshview --version\n"
         "\n"
         "Shows the shader editors' and the viewer's view of a material document.\n"
         "\n"
         "Commands:\n";
  std::size_t width = 0;
  for (const RshviewCommand& command : RshviewCommands())
    width = std::max(width, std::string(command.name).size());
  for (const RshviewCommand& command : RshviewCommands())
    out << "  " << command.name << std::string(width + 3 - std::string(command.name).size(), ' ')
        << command.summary << "\n";
  out << "\n" << kGlobalOptions << "\nRun 'rshview COMMAND --help' for a command's own help.\n";
}

int UsageError(std::ostream& err, const std::string& message) {
  err << "rshview: " << message << "\nTry 'rshview --help'.\n";
  return kExitUsage;
}

const RshviewCommand* FindCommand(const std::string& name) {
  for (const RshviewCommand& command : RshviewCommands())
    if (name == command.name) return &command;
  return nullptr;
}

/// Prints the module's traces while alive, and restores the previous sink and level.
class TraceGuard {
 public:
  TraceGuard(bool enabled, std::ostream& err) : enabled_(enabled) {
    if (!enabled_) return;
    previousLevel_ = KEPModuleTrace::GetLevel();
    previous_ = KEPTraceSink::Set(
        [&err](const KEPTraceEntry& entry) { err << KEPTraceSink::Format(entry) << "\n"; });
    KEPModuleTrace::SetLevel(9);
  }
  ~TraceGuard() {
    if (!enabled_) return;
    KEPTraceSink::Set(std::move(previous_));
    KEPModuleTrace::SetLevel(previousLevel_);
  }
  TraceGuard(const TraceGuard&) = delete;
  TraceGuard& operator=(const TraceGuard&) = delete;

 private:
  bool enabled_;
  int previousLevel_ = 0;
  KEPTraceSinkFn previous_;
};

struct Parsed {
  RshviewOptions options;
  const RshviewCommand* command = nullptr;
  bool help = false;
  bool version = false;
};

// Options may come before or after the command; "--name value" and "--name=value" both work.
int Parse(const std::vector<std::string>& args, Parsed& parsed, std::ostream& err) {
  bool sticker = false;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (arg == "-h" || arg == "--help") {
      parsed.help = true;
      continue;
    }
    if (arg == "--version") {
      parsed.version = true;
      continue;
    }
    if (arg == "--trace") {
      parsed.options.trace = true;
      continue;
    }
    if (arg == "--sticker") {
      sticker = true;
      continue;
    }
    if (arg == "--restricted") {
      parsed.options.restricted = true;
      continue;
    }
    if (arg == "--open") {
      parsed.options.open = true;
      continue;
    }
    if (arg.starts_with('-') && arg.size() > 1) {
      std::string name = arg;
      std::string value;
      bool inlineValue = false;
      if (const auto equals = arg.find('='); equals != std::string::npos) {
        name = arg.substr(0, equals);
        value = arg.substr(equals + 1);
        inlineValue = true;
      }
      std::string* target = nullptr;
      if (name == "--library")
        target = &parsed.options.library;
      else if (name == "--doc")
        target = &parsed.options.doc;
      else if (name == "--node")
        target = &parsed.options.node;
      else if (name == "--format")
        target = &parsed.options.format;
      else if (name == "--save")
        target = &parsed.options.save;
      else if (name == "--units")
        target = &parsed.options.units;
      else if (name == "--editor")
        target = &parsed.options.editor;
      else if (name == "--size")
        target = &parsed.options.size;
      else if (name == "--out")
        target = &parsed.options.out;
      else if (name == "--port")
        target = &parsed.options.port;
      else if (name == "--host")
        target = &parsed.options.host;
      else if (name == "--web")
        target = &parsed.options.web;
      else
        return UsageError(err, "unknown option '" + name + "'");
      if (!inlineValue) {
        if (i + 1 >= args.size()) return UsageError(err, "option " + name + " needs a value");
        value = args[++i];
      }
      if (value.empty()) return UsageError(err, "option " + name + " needs a value");
      *target = value;
      continue;
    }
    if (!parsed.command && arg == "help" && !parsed.help) {
      parsed.help = true;  // "rshview help [COMMAND]"
      continue;
    }
    if (!parsed.command) {
      parsed.command = FindCommand(arg);
      if (!parsed.command) return UsageError(err, "unknown command '" + arg + "'");
      continue;
    }
    parsed.options.arguments.push_back(arg);
  }
  if (parsed.options.format != "text" && parsed.options.format != "json")
    return UsageError(err, "--format must be text or json, not '" + parsed.options.format + "'");
  if (sticker && parsed.command && std::string(parsed.command->name) != "material")
    return UsageError(err, "--sticker applies to the material command only");
  parsed.options.sticker = sticker;
  const std::string command = parsed.command ? parsed.command->name : "";
  const bool editor = command == "dump" || command == "drive";
  if (parsed.options.restricted && parsed.command && !editor)
    return UsageError(err, "--restricted applies to the dump and drive commands only");
  if (!parsed.options.units.empty() && parsed.command && !editor)
    return UsageError(err, "--units applies to the dump and drive commands only");
  if (!parsed.options.save.empty() && parsed.command && command != "drive")
    return UsageError(err, "--save applies to the drive command only");
  if (parsed.options.editor != "immersive" && parsed.options.editor != "classic")
    return UsageError(err,
                      "--editor must be immersive or classic, not '" + parsed.options.editor + "'");
  if (parsed.options.editor == "classic" && parsed.command && !editor)
    return UsageError(err, "--editor applies to the dump and drive commands only");
  if (parsed.options.editor == "classic" && parsed.options.restricted)
    return UsageError(err, "--restricted applies to the immersive editor only");
  if ((!parsed.options.size.empty() || !parsed.options.out.empty()) && parsed.command &&
      command != "preview")
    return UsageError(err, "--size and --out apply to the preview command only");
  if ((!parsed.options.port.empty() || !parsed.options.host.empty() ||
       !parsed.options.web.empty() || parsed.options.open) &&
      parsed.command && command != "serve")
    return UsageError(err, "--port, --host, --web and --open apply to the serve command only");
  return 0;
}
}  // namespace

// Library, configuration and document, with every error printed as it is found. Warnings do not
// stop the command: they are kept for it, and a line on standard error says how many there are.
int RshviewLoad(RshviewContext& context) {
  RshviewOptions& options = context.options;
  std::size_t warningCount = 0;
  auto report = [&](const KEPLoadResult& result) {
    for (const std::string& error : result.Errors()) context.err << error << "\n";
    const auto& warnings = result.WarningIssues();
    context.warnings.insert(context.warnings.end(), warnings.begin(), warnings.end());
    warningCount += result.WarningCount();
    return result.Ok();
  };
  KEPLoadResult paths;
  RshviewResolvePaths(options, paths);
  if (!report(paths)) return kExitFailure;

  auto library = std::make_shared<KEPHostShaderLibrary>();
  if (!report(KEPShaderLibraryLoader::Load(options.library, *library))) return kExitFailure;
  const fs::path config = fs::path(options.library) / "config";
  std::error_code ec;
  if (fs::exists(config, ec) && !report(KEPConfigurationLoader::LoadDirectory(config.string())))
    return kExitFailure;
  KEPHostShaderManager::Install(library);

  KEP_var<KEPHostShaderDocument> document;
  if (!report(KEPShaderDocumentLoader::Load(options.doc, library, document))) return kExitFailure;
  context.library = std::move(library);
  context.document = std::move(document);
  if (warningCount > 0)
    context.err << "rshview: " << options.library << ": " << warningCount
                << (warningCount == 1 ? " warning" : " warnings")
                << " (run 'rshview lint' to list them)\n";
  return 0;
}

namespace {
int Main(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  static std::once_flag registered;
  std::call_once(registered, [] { KEPRshViewRegister(); });

  Parsed parsed;
  if (const int code = Parse(args, parsed, err)) return code;
  if (parsed.help) {
    if (parsed.command)
      out << parsed.command->help << "\n" << kGlobalOptions;
    else
      PrintGlobalHelp(out);
    return 0;
  }
  if (parsed.version) {
    out << "rshview " << RSHVIEW_VERSION << "\n";
    return 0;
  }
  if (!parsed.command) return UsageError(err, "no command given");

  // Every run is a host session of its own: nothing of one run (configuration, library,
  // environment, the module's caches) reaches the next (tests run many in one process).
  KEPHostContext host;
  TraceGuard trace(parsed.options.trace, err);
  RshviewContext context{parsed.options, nullptr, {}, out, err, {}};
  // The display units the person chose for good, then those of this run.
  RshviewApplyStoredUnits(err);
  if (!parsed.options.units.empty()) {
    std::string message;
    if (!RshviewApplyUnits(parsed.options.units, message)) return UsageError(err, message);
  }
  if (!parsed.command->loadsFiles)
    if (const int code = RshviewLoad(context)) return code;
  const int code = parsed.command->run(context);
  context.document = NULL_var;
  return code;
}
}  // namespace

void RshviewResolvePaths(RshviewOptions& options, KEPLoadResult& result) {
  const std::string samples = RshviewSamplesDirectory();
  if (options.doc.empty())
    options.doc = (fs::path(samples) / "documents" / "showroom.rshdoc.json").string();
  if (!options.library.empty()) return;
  std::string fromDocument;
  const KEPLoadResult read = KEPShaderDocumentLoader::ReadLibraryPath(options.doc, fromDocument);
  result.Append(read);
  if (read.Ok())
    options.library =
        fromDocument.empty() ? (fs::path(samples) / "library").string() : fromDocument;
}

std::string RshviewSamplesDirectory() {
  if (const char* env = std::getenv("RSHVIEW_SAMPLES"); env && *env) return env;
  // BIN/../share/KEPRshView/samples, in the installed tree as in the build tree (where the build
  // links it to the sources).
  std::error_code ec;
  const fs::path self = fs::read_symlink("/proc/self/exe", ec);
  if (ec) return "samples";
  return (self.parent_path() / ".." / "share" / "KEPRshView" / "samples")
      .lexically_normal()
      .string();
}

int RshviewMain(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  // The host API never throws; this only keeps an exhausted allocator from ending the process
  // without a word.
  try {
    return Main(args, out, err);
  } catch (const std::exception& e) {
    err << "rshview: internal error: " << e.what() << "\n";
    return kExitFailure;
  }
}
