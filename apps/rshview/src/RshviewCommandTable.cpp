#include "RshviewCommands.h"

const std::vector<RshviewCommand>& RshviewCommands() {
  static const std::vector<RshviewCommand> commands = {
      {"params", "each parameter's metadata as the editors resolve it", kRshviewParamsHelp,
       &RunParamsCommand, false},
      {"material", "the viewer's material answers for a node", kRshviewMaterialHelp,
       &RunMaterialCommand, false},
      {"lint", "every error and warning of a library's files, with a hint", kRshviewLintHelp,
       &RunLintCommand, true},
  };
  return commands;
}
