// Entry point of the module: registers its behaviours with the host's object model.
#pragma once

extern "C" {
/// Registers every extension, interface adapter and metaclass of the module. Idempotent.
void KEPRshViewRegister();
}
