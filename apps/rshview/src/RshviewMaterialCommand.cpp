// Placeholder until the material command is written: it says so and fails.
#include <ostream>

#include "RshviewCommands.h"

const char* const kRshviewMaterialHelp =
    "Usage: rshview material [--library DIR] [--doc FILE] [--node ID] [--format text|json]\n"
    "                        [--sticker] [--trace]\n"
    "\n"
    "Prints the viewer's material answers for a node (not built yet).\n";

int RunMaterialCommand(RshviewContext& context) {
  context.err << "material: not built yet\n";
  return 1;
}
