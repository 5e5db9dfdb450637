// Entry point of the module: registers its behaviours with the host's object model. Also the
// module's few rules that its clients share.
#pragma once

#include <string_view>

/// Marks what the module exports to its clients. Empty unless the build defines it.
#ifndef KEPRSHVIEW_API
#define KEPRSHVIEW_API
#endif

extern "C" {
/// Registers every extension, interface adapter and metaclass of the module. Idempotent.
void KEPRshViewRegister();
}

/// True when `typeName` names a physical shader: it begins with "MPM". False for any other
/// name, the empty one included.
KEPRSHVIEW_API bool KEPRshIsPhysicalShaderType(std::string_view typeName);
