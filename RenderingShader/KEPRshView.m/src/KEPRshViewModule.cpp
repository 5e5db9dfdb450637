#include "KEPRshViewModule.h"

// Each subsystem registers its own extensions.
void KEPRshRegisterMetadata();
void KEPRshRegisterHardware();

extern "C" void KEPRshViewRegister() {
  KEPRshRegisterMetadata();
  KEPRshRegisterHardware();
}

bool KEPRshIsPhysicalShaderType(std::string_view typeName) {
  return typeName.starts_with("MPM");
}
