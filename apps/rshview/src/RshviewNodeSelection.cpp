#include <ostream>

#include "RshviewCommand.h"

int RshviewSelectNodes(RshviewContext& context, const char* command,
                       std::vector<KEPHostShaderNode*>& nodes) {
  const RshviewOptions& options = context.options;
  if (!options.arguments.empty()) {
    context.err << "rshview " << command << ": unexpected argument '" << options.arguments.front()
                << "'\nTry 'rshview " << command << " --help'.\n";
    return 2;
  }
  const KEPHostShaderDocument& document = *context.document;
  nodes.clear();
  if (options.node == "all") {
    for (const auto& node : document.Nodes()) nodes.push_back(node.Get());
  } else if (!options.node.empty()) {
    KEPHostShaderNode* node = document.FindNode(options.node);
    if (!node) {
      std::string known;
      for (const auto& n : document.Nodes()) known += (known.empty() ? "" : ", ") + n->Id();
      context.err << "rshview " << command << ": no node '" << options.node << "' in "
                  << options.doc << " (nodes: " << (known.empty() ? "none" : known) << ")\n";
      return 2;
    }
    nodes.push_back(node);
  } else if (!document.materials.empty()) {
    if (KEPHostShaderNode* node = document.FindNode(document.materials.front()))
      nodes.push_back(node);
  }
  if (nodes.empty()) {
    context.err << "rshview " << command << ": " << options.doc << " holds no material\n";
    return 1;
  }
  return 0;
}
