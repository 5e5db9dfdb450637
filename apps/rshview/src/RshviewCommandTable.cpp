#include "RshviewCommands.h"

const std::vector<RshviewCommand>& RshviewCommands() {
  static const std::vector<RshviewCommand> commands = {
      {"params", "each parameter's metadata as the editors resolve it", kRshviewParamsHelp,
       &RunParamsCommand},
      {"material", "the viewer's material answers for a node", kRshviewMaterialHelp,
       &RunMaterialCommand},
  };
  return commands;
}
