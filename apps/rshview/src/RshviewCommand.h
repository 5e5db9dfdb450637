// The commands of rshview share one set of options and one loaded library and document.
#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "KEPHostShaderDocument.h"
#include "KEPHostShaderLibrary.h"
#include "KEPLoadIssue.h"
#include "KEPLoadResult.h"

struct RshviewOptions {
  std::string library;                 ///< library directory; default: the bundled sample library
  std::string doc;                     ///< document file; default: the bundled sample document
  std::string node;                    ///< node identifier; empty: the command's default
  std::string format = "text";         ///< "text" or "json"
  bool trace = false;                  ///< print the module's traces to standard error
  bool sticker = false;                ///< material: sticker mode
  bool restricted = false;             ///< dump, drive: the restricted immersive editor
  std::string save;                    ///< drive: write the document here afterwards
  std::string units;                   ///< dump, drive: display units for this run
  std::string editor = "immersive";    ///< dump, drive: "immersive" or "classic"
  std::string size;                    ///< preview: the picture's side in pixels (text)
  std::string out;                     ///< preview: the PNG file to write
  std::string port;                    ///< serve: the port (text; default 8642, 0: any free one)
  std::string host;                    ///< serve: the address to listen on (default 127.0.0.1)
  std::string web;                     ///< serve: the front-end's built folder
  bool open = false;                   ///< serve: open the address in a browser
  std::vector<std::string> arguments;  ///< what is left after the options
};

struct RshviewContext {
  RshviewOptions options;
  std::shared_ptr<KEPHostShaderLibrary> library;
  KEP_var<KEPHostShaderDocument> document;
  std::ostream& out;
  std::ostream& err;
  /// The warnings of the library's files (library.json, then the configuration files): they
  /// loaded, but some text reads differently from how it looks.
  std::vector<KEPLoadIssue> warnings;
};

/// One subcommand: runs with a loaded library and document (unless it loads the files itself);
/// returns the process exit code.
struct RshviewCommand {
  const char* name;
  const char* summary;  ///< one line for `rshview --help`
  const char* help;     ///< the command's own help text (its options and what it prints)
  int (*run)(RshviewContext& context);
  /// The command reads the files itself (and reports their errors as its output): rshview
  /// loads nothing before running it.
  bool loadsFiles;
};

/// The nodes a command works on: `--node ID`, every node in document order for `--node all`,
/// else the document's first material. Also refuses arguments left after the options. Returns 0,
/// or the exit code after printing the error (2 for a wrong command line, 1 for a document
/// without material).
int RshviewSelectNodes(RshviewContext& context, const char* command,
                       std::vector<KEPHostShaderNode*>& nodes);

/// Loads the library (with its configuration) and the document of `context.options`, printing
/// every error to `context.err`; returns 0, or the exit code.
int RshviewLoad(RshviewContext& context);

/// Every command, in the order `rshview --help` lists them.
const std::vector<RshviewCommand>& RshviewCommands();

/// Runs rshview with `args` (without the program name); returns the exit code.
int RshviewMain(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

/// Where rshview takes the library and the document from: `--doc`, else the bundled showroom;
/// `--library`, else the document's "library" entry, else the bundled sample library. Errors of
/// reading the document's entry go to `result`; `library` is then left empty.
void RshviewResolvePaths(RshviewOptions& options, KEPLoadResult& result);

/// The bundled samples: $RSHVIEW_SAMPLES when set, else share/KEPRshView/samples beside the
/// program's directory.
std::string RshviewSamplesDirectory();
