// The commands that rshview's command table lists, each in its own file.
#pragma once

#include "RshviewCommand.h"

/// `rshview params`: every parameter's metadata as the editors resolve it.
int RunParamsCommand(RshviewContext& context);
extern const char* const kRshviewParamsHelp;

/// `rshview material`: the viewer's answers for a node.
int RunMaterialCommand(RshviewContext& context);
extern const char* const kRshviewMaterialHelp;

/// `rshview lint`: every error and warning of a library's files.
int RunLintCommand(RshviewContext& context);
extern const char* const kRshviewLintHelp;

/// `rshview dump`: an editor's widget tree of a node.
int RunDumpCommand(RshviewContext& context);
extern const char* const kRshviewDumpHelp;

/// `rshview drive`: a script of user events on a node's editor.
int RunDriveCommand(RshviewContext& context);
extern const char* const kRshviewDriveHelp;

/// `rshview preview`: a PNG picture of a node's material on a sphere.
int RunPreviewCommand(RshviewContext& context);
extern const char* const kRshviewPreviewHelp;

/// `rshview units`: the display units, shown or chosen for good.
int RunUnitsCommand(RshviewContext& context);
extern const char* const kRshviewUnitsHelp;
