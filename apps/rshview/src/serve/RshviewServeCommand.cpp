// `rshview serve`: loads the document, then answers the HTTP API while the calling thread, which
// owns the host, runs the requests handed to it, until Ctrl-C, SIGTERM, SIGHUP (its terminal
// closed) or the control stops it.
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <charconv>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>

#include "KEPShaderDocumentWriter.h"
#include "RshviewHttpServer.h"
#include "RshviewRecovery.h"
#include "RshviewServe.h"

extern char** environ;

const char* const kRshviewServeHelp =
    "Usage: rshview serve [--library DIR] [--doc FILE] [--port N] [--host ADDR] [--web DIR]\n"
    "                     [--open]\n"
    "\n"
    "Serves the editors of a document to a browser: the front-end's pages and the JSON API of\n"
    "docs/api.md (the document and its nodes, each node's immersive and classic editor, user\n"
    "events with the parameter writes they make, the viewer's material answers, a preview\n"
    "picture, the display units, saving, and a stream of the changes for every open tab).\n"
    "Prints the address to open and runs until Ctrl-C.\n"
    "\n"
    "Without --doc it edits a working copy of the bundled showroom,\n"
    "$XDG_DATA_HOME/rshview/showroom.rshdoc.json (~/.local/share/... when XDG_DATA_HOME is not\n"
    "set, $RSHVIEW_DATA/... when that is), made on first use; saving writes there, never into\n"
    "the bundled samples. With --doc FILE, saving writes FILE (atomically).\n"
    "Changes not saved at a stop are kept beside the document (room.unsaved.rshdoc.json).\n"
    "\n"
    "  --port N     the port; default 8642; 0 picks a free one\n"
    "  --host ADDR  the address to listen on; default 127.0.0.1 (this machine only)\n"
    "  --web DIR    the front-end's built folder; default: share/KEPRshView/web beside the\n"
    "               program (apps/rshview/web/dist in a build tree), or $RSHVIEW_WEB\n"
    "  --open       open the address in the desktop's browser (xdg-open)\n";

namespace {
namespace fs = std::filesystem;

RshviewServeControl* gControl = nullptr;
volatile std::sig_atomic_t gSignalled = 0;

extern "C" void OnStopSignal(int) {
  gSignalled = 1;
}

/// Catches SIGINT, SIGTERM and SIGHUP while alive, restoring the previous handlers. Only the first
/// signal is caught: it asks for an orderly stop (which keeps unsaved changes), and a second one
/// ends the process at once.
class StopSignals {
 public:
  StopSignals() {
    gSignalled = 0;
    struct sigaction action {};
    action.sa_handler = &OnStopSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, &previousInt_);
    sigaction(SIGTERM, &action, &previousTerm_);
    sigaction(SIGHUP, &action, &previousHup_);
  }
  ~StopSignals() {
    sigaction(SIGINT, &previousInt_, nullptr);
    sigaction(SIGTERM, &previousTerm_, nullptr);
    sigaction(SIGHUP, &previousHup_, nullptr);
  }
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

 private:
  struct sigaction previousInt_ {};
  struct sigaction previousTerm_ {};
  struct sigaction previousHup_ {};
};

/// Starts `xdg-open URL` with its output discarded; the child's pid, or -1.
pid_t OpenInBrowser(const std::string& url) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
  std::string program = "xdg-open", argument = url;
  char* argv[] = {program.data(), argument.data(), nullptr};
  pid_t pid = -1;
  const int failed = posix_spawnp(&pid, "xdg-open", &actions, nullptr, argv, environ);
  posix_spawn_file_actions_destroy(&actions);
  return failed ? -1 : pid;
}

/// Why the working copy at `copy` no longer reads its files (its library folder or an image is
/// gone, as when the folder it was made from moved), or empty.
std::string WorkingCopyProblem(const std::string& copy) {
  std::ifstream in(copy, std::ios::binary);
  const nlohmann::json json = nlohmann::json::parse(in, nullptr, false);
  if (!json.is_object()) return "it is not a JSON object";
  const fs::path base = fs::path(copy).parent_path();
  const auto resolved = [&](const std::string& path) {
    return fs::path(path).is_absolute() ? fs::path(path) : base / path;
  };
  std::error_code ec;
  if (json.contains("library") && json["library"].is_string() &&
      !fs::is_directory(resolved(json["library"].get<std::string>()), ec))
    return "its library " + json["library"].get<std::string>() + " is not a folder";
  std::string missing;
  const std::function<void(const nlohmann::json&)> visit = [&](const nlohmann::json& node) {
    if (!missing.empty()) return;
    if (node.is_object()) {
      for (const auto& [key, value] : node.items()) {
        if (key == "image" && value.is_string() && !value.get<std::string>().empty() &&
            !fs::exists(resolved(value.get<std::string>()), ec))
          missing = "its image " + value.get<std::string>() + " does not exist";
        visit(value);
      }
    } else if (node.is_array()) {
      for (const auto& value : node) visit(value);
    }
  };
  visit(json);
  return missing;
}

/// `path` with symbolic links and dot segments resolved, or as it is when that fails.
std::string Canonical(const std::string& path) {
  std::error_code ec;
  const fs::path canonical = fs::weakly_canonical(fs::absolute(path, ec), ec);
  return ec ? path : canonical.string();
}

/// Copies the bundled showroom to `copy`, with the library's and the images' paths written
/// absolute and free of links (the build tree reaches the samples through one), and loads it.
int MakeWorkingCopy(RshviewContext& context, const std::string& copy) {
  RshviewOptions& options = context.options;
  options.doc.clear();
  KEPLoadResult paths;
  RshviewResolvePaths(options, paths);
  for (const std::string& error : paths.Errors()) context.err << error << "\n";
  if (!paths.Ok()) return 1;
  options.doc = Canonical(options.doc);
  options.library = Canonical(options.library);
  if (const int code = RshviewLoad(context)) return code;
  std::error_code ec;
  fs::create_directories(fs::path(copy).parent_path(), ec);
  if (ec) {
    context.err << "rshview serve: cannot create " << fs::path(copy).parent_path().string() << ": "
                << ec.message() << "\n";
    return 1;
  }
  const KEPLoadResult saved = KEPShaderDocumentWriter::Save(
      *context.document, copy, KEPShaderDocumentWriter::Paths::Absolute);
  for (const std::string& error : saved.Errors()) context.err << error << "\n";
  if (!saved.Ok()) return 1;
  context.out << "rshview: copied the bundled showroom to " << copy << "\n";
  options.doc = copy;
  context.document->path = copy;
  return 0;
}

/// A free name beside `copy` for keeping it: COPY.bak, else COPY.bak2, COPY.bak3, ...
std::string BackupName(const std::string& copy) {
  std::error_code ec;
  std::string name = copy + ".bak";
  for (int n = 2; fs::exists(name, ec) || fs::is_symlink(name, ec); ++n)
    name = copy + ".bak" + std::to_string(n);
  return name;
}

/// The document to edit: --doc, else the working copy (made from the bundled showroom on first
/// use, and made afresh, the old one kept beside it, when it no longer loads). Loads it into
/// `context`; returns 0 or the exit code.
int LoadDocument(RshviewContext& context) {
  RshviewOptions& options = context.options;
  if (!options.doc.empty()) return RshviewLoad(context);
  const std::string copy = RshviewWorkingCopyPath();
  if (copy.empty()) {
    context.err << "rshview serve: no place for the working copy (set HOME, XDG_DATA_HOME or "
                   "RSHVIEW_DATA), or give --doc FILE\n";
    return 1;
  }
  std::error_code ec;
  if (!fs::exists(copy, ec)) return MakeWorkingCopy(context, copy);
  std::string problem = WorkingCopyProblem(copy);
  if (problem.empty()) {
    // Loaded on the side, so that a copy that fails leaves the options as they were.
    std::ostringstream errors;
    RshviewContext attempt{options, {}, {}, context.out, errors, {}};
    attempt.options.doc = copy;
    if (RshviewLoad(attempt) == 0) {
      options = attempt.options;
      context.library = std::move(attempt.library);
      context.document = std::move(attempt.document);
      context.warnings = std::move(attempt.warnings);
      context.err << errors.str();
      return 0;
    }
    problem = "it does not load: " + errors.str();
    while (!problem.empty() && problem.back() == '\n') problem.pop_back();
  }
  const std::string backup = BackupName(copy);
  fs::rename(copy, backup, ec);
  if (ec) {
    context.err << "rshview serve: the working copy " << copy << " no longer loads (" << problem
                << "), and it cannot be moved to " << backup << ": " << ec.message() << "\n";
    return 1;
  }
  context.err << "rshview serve: the working copy " << copy << " no longer loads (" << problem
              << "); it was moved to " << backup << " and a fresh copy is made\n";
  return MakeWorkingCopy(context, copy);
}

/// `host` names this machine only (127.0.0.0/8, ::1 or localhost).
bool Loopback(const std::string& host) {
  return host.starts_with("127.") || host == "::1" || host == "[::1]" || host == "localhost";
}

/// Writes the changes not saved to the recovery file beside `doc` and says where they are and
/// how to keep them; 0, or 1 when they could not be written (they are lost: the stop says so).
int KeepUnsavedChanges(RshviewContext& context, const std::string& doc) {
  if (RshviewDocumentAsSaved(*context.document, doc)) {
    context.err << "rshview serve: the changes since the last save leave " << doc
                << " as it is: nothing to keep\n";
    return 0;
  }
  std::string recovery, error;
  if (!RshviewWriteRecovery(*context.document, doc, recovery, error)) {
    context.err << "rshview serve: error: the changes since the last save could not be kept in "
                << recovery << ": " << error << "\n"
                << "rshview serve: warning: the changes since the last save were not written to "
                << doc << "\n";
    return 1;
  }
  context.err << "rshview serve: the changes since the last save were not written to " << doc
              << "; they are kept in " << recovery << ". To look at them: rshview serve --doc "
              << RshviewShellWord(recovery)
              << "; to keep them, move that file over the document: mv "
              << RshviewShellWord(recovery) << " " << RshviewShellWord(doc) << "\n";
  return 0;
}

bool ParsePort(const std::string& text, int& port) {
  if (text.empty()) {
    port = 8642;
    return true;
  }
  const char* end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, port);
  return error == std::errc() && last == end && port >= 0 && port <= 65535;
}
}  // namespace

void RshviewSetServeControl(RshviewServeControl* control) {
  gControl = control;
}

std::string RshviewWorkingCopyPath() {
  const char* const name = "showroom.rshdoc.json";
  if (const char* data = std::getenv("RSHVIEW_DATA"); data && *data)
    return (fs::path(data) / name).string();
  if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg && *xdg)
    return (fs::path(xdg) / "rshview" / name).string();
  if (const char* home = std::getenv("HOME"); home && *home)
    return (fs::path(home) / ".local" / "share" / "rshview" / name).string();
  return {};
}

int RunServeCommand(RshviewContext& context) {
  RshviewOptions& options = context.options;
  if (!options.arguments.empty()) {
    context.err << "rshview serve: unexpected argument '" << options.arguments.front()
                << "'\nTry 'rshview serve --help'.\n";
    return 2;
  }
  int port = 0;
  if (!ParsePort(options.port, port)) {
    context.err << "rshview serve: --port must be a whole number from 0 to 65535, not '"
                << options.port << "'\nTry 'rshview serve --help'.\n";
    return 2;
  }
  if (const int code = LoadDocument(context)) return code;
  RshviewServeControl* control = gControl;

  RshviewEventStream events;
  RshviewUiQueue queue;
  RshviewServeSession session(context, events);
  const RshviewStaticFiles statics(options.web.empty() ? RshviewWebDirectory() : options.web);
  RshviewServerOptions serverOptions;
  serverOptions.host = options.host.empty() ? "127.0.0.1" : options.host;
  serverOptions.port = port;
  if (control) serverOptions.uiTimeout = std::chrono::milliseconds(control->uiTimeoutMs);
  RshviewHttpServer server(session, queue, events, statics, serverOptions);
  std::string error;
  if (!server.Start(error)) {
    context.err << "rshview serve: " << error << "\n";
    return 1;
  }
  const bool ipv6 = serverOptions.host.find(':') != std::string::npos;
  const std::string url = "http://" + (ipv6 ? "[" + serverOptions.host + "]" : serverOptions.host) +
                          ":" + std::to_string(server.Port()) + "/";
  const std::string doc = fs::absolute(options.doc).lexically_normal().string();
  context.out << "rshview: editing " << doc << "\n";
  if (const auto recovery = RshviewFindRecovery(doc))
    context.out << "rshview: changes not saved when the server last stopped are in "
                << recovery->path << " (" << recovery->modified
                << "). To look at them beside this server: rshview serve --port 0 --doc "
                << RshviewShellWord(recovery->path)
                << "; to keep them, stop this server first (it would write over them), then: mv "
                << RshviewShellWord(recovery->path) << " " << RshviewShellWord(doc)
                << (recovery->count > 1
                        ? " (" + std::to_string(recovery->count - 1) +
                              " older recovery file(s) beside it hold other changes)"
                        : std::string())
                << "\n";
  if (!Loopback(serverOptions.host))
    context.err << "rshview serve: warning: listening on " << serverOptions.host
                << ", so other machines on the network can reach the server, and it asks no one "
                   "who they are: anyone who reaches it can change and save the document\n";
  if (!statics.Built())
    context.out << "rshview: the browser front-end is not built (no " << statics.Root()
                << "/index.html); the address says how to build it\n";
  context.out << "rshview: serving " << doc << " on " << url << " (Ctrl-C to stop)" << std::endl;

  StopSignals signals;
  pid_t browser = -1;
  if (options.open) {
    browser = OpenInBrowser(url);
    if (browser < 0)
      context.err << "rshview serve: warning: could not run xdg-open " << url << "\n";
  }
  if (control && control->ready) control->ready(server.Port());
  while (!gSignalled && !(control && control->stop.load()))
    queue.RunPending(std::chrono::milliseconds(100));
  if (browser > 0) {
    int status = 0;
    if (waitpid(browser, &status, WNOHANG) == browser &&
        !(WIFEXITED(status) && WEXITSTATUS(status) == 0))
      context.err << "rshview serve: warning: xdg-open " << url << " failed\n";
  }

  // Nothing waits on the UI thread or the event stream any more, then the HTTP threads end. The
  // document changes no more once the queue is closed: what it holds then is what was not saved.
  queue.Close();
  const int code = session.Dirty() ? KeepUnsavedChanges(context, doc) : 0;
  events.Close();
  server.Stop();
  context.out << "rshview: stopped" << std::endl;
  return code;
}
