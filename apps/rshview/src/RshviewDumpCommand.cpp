// `rshview dump`: the immersive editor's widget tree of a node.
#include <nlohmann/json.hpp>
#include <ostream>

#include "KEPVidTree.h"
#include "RshviewCommands.h"
#include "RshviewEditor.h"

const char* const kRshviewDumpHelp =
    "Usage: rshview dump [--library DIR] [--doc FILE] [--node ID|all] [--restricted]\n"
    "                    [--units length=UNIT,angle=UNIT] [--format text|json] [--trace]\n"
    "\n"
    "Builds the immersive editor of a node, as the host opens it, and prints its widget tree:\n"
    "one widget a line, indented under its father, with its class, its name, its grid cell\n"
    "[row,column] and the state that matters (values, ranges, labels, icons, tooltips), and\n"
    "\"(hidden)\" or \"(disabled)\" where a person could not see or use it. A widget's path for\n"
    "'rshview drive' is the names from the editor down, for example\n"
    "ParameterGroup0/ParameterWidget3/scalarSlider (layouts in between may be left out).\n"
    "\n"
    "  --node ID       the node; default: the document's first material; 'all': every node\n"
    "  --restricted    the restricted editor (ratio tweaker of scale_u and type disabled)\n"
    "  --units LIST    display units for this run (see 'rshview units')\n"
    "\n"
    "JSON: {\"node\", \"type\", \"editor\": widget}, each widget {class, name, path, visible,\n"
    "sensitive, cell, state, children, ...} as docs/formats.md describes; with --node all,\n"
    "{\"nodes\": [...]}.\n";

int RunDumpCommand(RshviewContext& context) {
  std::vector<KEPHostShaderNode*> nodes;
  if (const int code = RshviewSelectNodes(context, "dump", nodes)) return code;
  nlohmann::ordered_json all = nlohmann::ordered_json::array();
  for (KEPHostShaderNode* node : nodes) {
    RshviewEditor editor;
    std::string message;
    if (!editor.Build(node, context.options.restricted, message)) {
      context.err << "rshview dump: " << message << "\n";
      return 1;
    }
    if (context.options.format == "json") {
      all.push_back({{"node", node->Id()},
                     {"type", node->TypeName()},
                     {"editor", KEPVidToJson(editor.Editor())}});
    } else {
      if (nodes.size() > 1) context.out << "# node " << node->Id() << "\n";
      context.out << KEPVidToText(editor.Editor());
    }
  }
  if (context.options.format == "json") {
    const auto& json = nodes.size() == 1 && context.options.node != "all"
                           ? all.front()
                           : nlohmann::ordered_json{{"nodes", all}};
    context.out << json.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
  }
  return 0;
}
