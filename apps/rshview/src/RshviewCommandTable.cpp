#include "RshviewCommands.h"
#include "RshviewServe.h"

const std::vector<RshviewCommand>& RshviewCommands() {
  static const std::vector<RshviewCommand> commands = {
      {"serve", "the editors of a document in a browser (HTTP on this machine)", kRshviewServeHelp,
       &RunServeCommand, true},
      {"params", "each parameter's metadata as the editors resolve it", kRshviewParamsHelp,
       &RunParamsCommand, false},
      {"material", "the viewer's material answers for a node", kRshviewMaterialHelp,
       &RunMaterialCommand, false},
      {"preview", "a PNG picture of a node's material on a lit sphere", kRshviewPreviewHelp,
       &RunPreviewCommand, false},
      {"dump", "an editor's widget tree of a node (immersive or classic)", kRshviewDumpHelp,
       &RunDumpCommand, false},
      {"drive", "play a script of user events on a node's editor, printing each write",
       kRshviewDriveHelp, &RunDriveCommand, false},
      {"units", "the display units of lengths and angles, shown or chosen for good",
       kRshviewUnitsHelp, &RunUnitsCommand, true},
      {"lint", "every error and warning of a library's files, with a hint", kRshviewLintHelp,
       &RunLintCommand, true},
  };
  return commands;
}
