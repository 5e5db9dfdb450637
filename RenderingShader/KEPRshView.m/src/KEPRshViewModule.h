// Entry point of the module: registers its behaviours with the host's object model.
#pragma once

#include "KEPTypes.h"

/// What the module exports to its host.
#define KEPRSHVIEW_API KEP_EXPORT

extern "C" {
/// Registers every extension, interface adapter and metaclass of the module. Idempotent.
KEPRSHVIEW_API void KEPRshViewRegister();
}
