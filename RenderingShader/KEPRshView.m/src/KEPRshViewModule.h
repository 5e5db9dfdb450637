// Entry point of the module: registers its behaviours with the host's object model. Also the
// module's few rules that its clients share.
#pragma once

#include <string_view>

#include "KEPTypes.h"

/// What the module exports to its host.
#define KEPRSHVIEW_API KEP_EXPORT

extern "C" {
/// Registers every extension, interface adapter and metaclass of the module. Idempotent.
KEPRSHVIEW_API void KEPRshViewRegister();
}

/// True when `typeName` names a physical shader: it begins with "MPM". False for any other
/// name, the empty one included.
KEPRSHVIEW_API bool KEPRshIsPhysicalShaderType(std::string_view typeName);
