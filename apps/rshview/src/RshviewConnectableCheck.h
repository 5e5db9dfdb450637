// The lint's check of what each connectable shader type yields: a type listed for a parameter
// type that declares no output, or an output that such a parameter does not take, can be made
// new for the parameter but its nodes are never offered there for sharing.
#pragma once

#include <string>

#include "KEPHostShaderLibrary.h"
#include "KEPLoadResult.h"

/// One warning per listed (parameter type, shader type) whose nodes the connection dialog would
/// never offer for reuse; `file` is the library.json the list was read from.
KEPLoadResult RshviewCheckConnectableOutputs(const KEPHostShaderLibrary& library,
                                             const std::string& file);
