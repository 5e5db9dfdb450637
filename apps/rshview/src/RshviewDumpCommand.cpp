// `rshview dump`: the widget tree of a node's immersive or classic editor.
#include <nlohmann/json.hpp>
#include <ostream>

#include "KEPVidTree.h"
#include "RshviewCommands.h"
#include "RshviewEditor.h"

const char* const kRshviewDumpHelp =
    "Usage: rshview dump [--library DIR] [--doc FILE] [--node ID|all] [--restricted]\n"
    "                    [--editor immersive|classic] [--units length=UNIT,angle=UNIT]\n"
    "                    [--format text|json] [--trace]\n"
    "\n"
    "Builds the editor of a node, as the host opens it, and prints its widget tree:\n"
    "one widget a line, indented under its father, with its class, its name, its grid cell\n"
    "[row,column] and the state that matters (values, ranges, labels, icons, tooltips), and\n"
    "\"(hidden)\" or \"(disabled)\" where a person could not see or use it. A widget's path for\n"
    "'rshview drive' is the names from the editor down, for example\n"
    "ParameterGroup0/ParameterWidget3/scalarSlider (layouts in between may be left out); the\n"
    "classic editor's paths start at its root frame: rootFrame/container/shaderFrame/....\n"
    "\n"
    "  --node ID       the node; default: the document's first material; 'all': every node\n"
    "  --editor KIND   immersive (default) or classic: the classic editor's root frame with\n"
    "                  one row per parameter and the connection buttons and menus\n"
    "  --restricted    the restricted immersive editor (ratio tweaker of scale_u and type\n"
    "                  disabled)\n"
    "  --units LIST    display units for this run (see 'rshview units')\n"
    "\n"
    "JSON: {\"node\", \"type\", \"editor\": widget}, each widget {class, name, path, visible,\n"
    "sensitive, cell, state, children, ...} as docs/formats.md describes; with --node all,\n"
    "{\"nodes\": [...]}.\n";

int RunDumpCommand(RshviewContext& context) {
  std::vector<KEPHostShaderNode*> nodes;
  if (const int code = RshviewSelectNodes(context, "dump", nodes)) return code;
  const bool json = context.options.format == "json";
  const bool list = context.options.node == "all";
  // The widget tree is written as JSON text directly: building a document first costs many
  // times more for a large editor.
  std::string text;
  if (json && list) text += "{\"nodes\": [";
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    KEPHostShaderNode* node = nodes[i];
    RshviewEditor editor;
    std::string message;
    if (!editor.Build(node, context.options.restricted, message,
                      context.options.editor == "classic")) {
      context.err << "rshview dump: " << message << "\n";
      return 1;
    }
    if (json) {
      const nlohmann::json id = node->Id(), type = node->TypeName();
      const auto quoted = [](const nlohmann::json& value) {
        return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
      };
      text += (i ? ",\n" : "") + std::string("{\"node\": ") + quoted(id) +
              ", \"type\": " + quoted(type) + ", \"editor\": " + KEPVidToJsonText(editor.Editor()) +
              "}";
    } else {
      if (list) text += "# node " + node->Id() + "\n";
      text += KEPVidToText(editor.Editor());
    }
  }
  if (json && list) text += "]}";
  context.out << text << (json ? "\n" : "");
  return 0;
}
