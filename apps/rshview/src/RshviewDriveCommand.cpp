// `rshview drive`: a script of user events played on a node's immersive or classic editor, with
// every parameter write it causes.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>

#include "KEPHostShaderNode.h"
#include "KEPRshModelEvents.h"
#include "KEPShaderDocumentWriter.h"
#include "KEPVidTree.h"
#include "RshviewCommands.h"
#include "RshviewEditor.h"
#include "RshviewValueLog.h"

const char* const kRshviewDriveHelp =
    "Usage: rshview drive [--library DIR] [--doc FILE] [--node ID] [--restricted]\n"
    "                     [--editor immersive|classic]\n"
    "                     [--units length=UNIT,angle=UNIT] [--save FILE] [--format text|json]\n"
    "                     [--trace] SCRIPT\n"
    "\n"
    "Opens the editor of a node (immersive unless --editor classic) and plays SCRIPT on it, as\n"
    "a person would: one event a line, 'ACTION PATH [ARGUMENT]', blank lines and lines starting\n"
    "with # ignored. SCRIPT '-' reads standard input. PATH is a widget's path as 'rshview dump' "
    "shows it, from the editor\n"
    "down (layouts in between may be left out). Actions:\n"
    "  set PATH NUMBER        move a slider or spin box\n"
    "  type PATH TEXT         type TEXT into an editor and confirm it\n"
    "  press PATH             press a button\n"
    "  toggle PATH [on|off]   tick or untick a check box (flip it without argument)\n"
    "  select PATH ENTRY      choose a combo entry by index or label\n"
    "  expand PATH            open a group;  collapse PATH  close it\n"
    "  color PATH R G B [A]   choose a colour in a picker (0..1)\n"
    "  choose PATH image=FILE groups=a,b dpi=N   choose an image, its layers, its resolution\n"
    "  open PATH / close PATH show or hide a popup\n"
    "  ok [PATH] / cancel [PATH] / close [PATH]   confirm, cancel or close a dialog (without\n"
    "                         PATH: the one dialog that is open, such as connectionDialog)\n"
    "\n"
    "Connecting: press a row's connection button (immersive ParameterConnectionN, classic\n"
    "parameterButtonN), 'select connectionDialog/shaderSelector LINE' with a line's text, then\n"
    "'ok'. 'Image texture (new)' creates a node; a line of an existing node names its users:\n"
    "in the classic editor of the sample floor, parameterButton1 (diffuse colour) offers\n"
    "'Floor tiles (Red metallic paint:flake_color, Polished floor:diffuse_texture)', which\n"
    "shares the tiles that those two parameters use. The immersive button connects at once\n"
    "when there is no choice to make. Press it again (classic: disconnectButtonN) to\n"
    "disconnect.\n"
    "\n"
    "Prints what each line caused: node.parameter: old -> new for a value written,\n"
    "node.parameter: connection OLD -> NEW for a connection made or undone ((none) for no\n"
    "node), new node ID (TYPE) for a node the connection dialog created.\n"
    "An event the widget refuses, or a path that does not resolve, stops the script with an\n"
    "error naming the line (exit 1); nothing is saved then.\n"
    "\n"
    "  --save FILE     afterwards, write the document to FILE (atomically)\n"
    "  --editor KIND   immersive (default) or classic\n"
    "  --restricted    the restricted immersive editor\n"
    "  --units LIST    display units for this run (see 'rshview units')\n"
    "  --trace         print the module's traces to standard error as the events run\n"
    "\n"
    "JSON: {\"node\", \"events\": [{line, action, path, argument, writes: [{node, parameter,\n"
    "old, new}], connections: [{node, parameter, old, new}], created: [{id, type, alias}]}],\n"
    "\"saved\"}.\n";

namespace {
using Json = nlohmann::ordered_json;

struct Event {
  int line;
  std::string action;
  std::string path;
  std::string argument;
};

/// Splits "ACTION PATH [ARGUMENT...]"; false for a line without a path, except for the actions
/// of a dialog (ok, cancel, close), which may leave it out.
bool ParseLine(const std::string& text, Event& event) {
  std::istringstream in(text);
  if (!(in >> event.action)) return false;
  if (!(in >> event.path)) {
    const std::string action = KEPToLower(event.action);
    return action == "ok" || action == "cancel" || action == "close";
  }
  std::string rest;
  std::getline(in, rest);
  event.argument = std::string(KEPTrimBlanks(rest));
  return true;
}

/// Every dialog shown below `root` (a classic KEPDlgDialog whose ancestors are shown too), in
/// tree order.
void FindOpenDialogs(KEPVidWidget* widget, std::vector<KEPVidWidget*>& dialogs) {
  if (!widget->IsVisible()) return;
  if (widget->IsAKindOf("KEPDlgDialog")) dialogs.push_back(widget);
  for (std::size_t i = 0; i < widget->GetChildCount(); ++i)
    FindOpenDialogs(widget->GetChild(i), dialogs);
}

/// The path of the one open dialog below `root`, for 'ok', 'cancel' and 'close' without a path;
/// false with `error` set when none or several are open.
bool OpenDialogPath(KEPVidWidget* root, const std::string& action, std::string& path,
                    std::string& error) {
  std::vector<KEPVidWidget*> dialogs;
  FindOpenDialogs(root, dialogs);
  if (dialogs.size() == 1) {
    path = KEPVidPathOf(root, dialogs.front());
    return true;
  }
  if (dialogs.empty()) {
    error = "'" + action + "' without a path needs an open dialog, and none is open";
    return false;
  }
  error =
      "'" + action + "' without a path: " + std::to_string(dialogs.size()) + " dialogs are open (";
  for (std::size_t i = 0; i < dialogs.size(); ++i)
    error += (i ? ", " : "") + KEPVidPathOf(root, dialogs[i]);
  error += "); name one";
  return false;
}

}  // namespace

int RunDriveCommand(RshviewContext& context) {
  RshviewOptions& options = context.options;
  if (options.arguments.size() != 1) {
    context.err << "rshview drive: "
                << (options.arguments.empty() ? "no SCRIPT given" : "one SCRIPT only")
                << "\nTry 'rshview drive --help'.\n";
    return 2;
  }
  const std::string script = options.arguments.front();
  options.arguments.clear();
  std::vector<KEPHostShaderNode*> nodes;
  if (const int code = RshviewSelectNodes(context, "drive", nodes)) return code;
  if (nodes.size() != 1) {
    context.err << "rshview drive: drive one node at a time (--node ID)\n";
    return 2;
  }
  KEPHostShaderNode* node = nodes.front();

  std::ifstream file;
  if (script != "-") {
    file.open(script);
    if (!file) {
      context.err << "rshview drive: cannot read " << script << "\n";
      return 1;
    }
  }
  std::istream& in = script == "-" ? std::cin : file;
  const std::string scriptName = script == "-" ? "<stdin>" : script;

  RshviewEditor editor;
  std::string message;
  if (!editor.Build(node, options.restricted, message, options.editor == "classic")) {
    context.err << "rshview drive: " << message << "\n";
    return 1;
  }

  RshviewValueLog log(*context.document, std::filesystem::path(options.doc).parent_path().string());
  // What one line caused, in the order it happened; a node the connection dialog created shows
  // before the connection that uses it.
  std::vector<Json> writes, connections, created;
  std::vector<std::string> lines;
  auto noteNewNodes = [&] {
    for (Json& made : log.NewNodes()) {
      lines.push_back(RshviewValueLog::NodeText(made));
      created.push_back(std::move(made));
    }
  };
  const int observer = KEPRshModelEvents::AddParameterObserver(
      [&](KEPIRshParameter* parameter, KEPRshParameterChangeKind kind) {
        noteNewNodes();
        if (kind == KEPRshParameterChangeKind::Connection) {
          connections.push_back(log.Connection(parameter));
          lines.push_back(RshviewValueLog::ConnectionText(connections.back()));
        } else {
          writes.push_back(log.Write(parameter));
          lines.push_back(RshviewValueLog::WriteText(writes.back()));
        }
      });
  struct Unobserve {
    int token;
    ~Unobserve() { KEPRshModelEvents::RemoveObserver(token); }
  } unobserve{observer};

  const bool json = options.format == "json";
  Json events = Json::array();
  std::string text;
  int number = 0;
  while (std::getline(in, text)) {
    ++number;
    const std::string_view line = KEPTrimBlanks(text);
    if (line.empty() || line.front() == '#') continue;
    Event event{number, {}, {}, {}};
    const std::string where = scriptName + ":" + std::to_string(number) + ": ";
    if (!ParseLine(std::string(line), event)) {
      context.err << "rshview drive: " << where << "expected 'ACTION PATH [ARGUMENT]', got '"
                  << line << "'\n";
      return 1;
    }
    KEPVidAction action;
    if (!KEPVidParseAction(event.action, action)) {
      context.err << "rshview drive: " << where << "unknown action '" << event.action
                  << "' (set, type, press, toggle, select, expand, collapse, color, choose, "
                     "open, close, drag, ok, cancel)\n";
      return 1;
    }
    writes.clear();
    connections.clear();
    created.clear();
    lines.clear();
    std::string error;
    if (event.path.empty() && !OpenDialogPath(editor.Editor(), event.action, event.path, error)) {
      context.err << "rshview drive: " << where << error << "\n";
      return 1;
    }
    if (FAILED(KEPVidInject(editor.Editor(), event.path, action, event.argument, error))) {
      context.err << "rshview drive: " << where << error << "\n";
      return 1;
    }
    // A node created without a parameter change (a dialog that made it and connected nothing).
    noteNewNodes();
    if (json) {
      events.push_back({{"line", number},
                        {"action", event.action},
                        {"path", event.path},
                        {"argument", event.argument},
                        {"writes", writes},
                        {"connections", connections},
                        {"created", created}});
    } else {
      for (const std::string& caused : lines) context.out << number << ": " << caused << "\n";
    }
  }
  if (in.bad()) {
    context.err << "rshview drive: cannot read " << scriptName << "\n";
    return 1;
  }

  if (!options.save.empty()) {
    const KEPLoadResult saved = KEPShaderDocumentWriter::Save(*context.document, options.save);
    for (const std::string& error : saved.Errors()) context.err << error << "\n";
    if (!saved.Ok()) return 1;
    if (!json) context.out << "saved " << options.save << "\n";
  }
  if (json) {
    const Json result{{"node", node->Id()},
                      {"events", events},
                      {"saved", options.save.empty() ? Json(nullptr) : Json(options.save)}};
    context.out << result.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
  }
  return 0;
}
