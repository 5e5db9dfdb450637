#include "KEPRshViewModule.h"

// Each subsystem registers its own extensions.
void KEPRshRegisterMetadata();
void KEPRshRegisterHardware();
void KEPRshRegisterControls();

extern "C" void KEPRshViewRegister() {
  KEPRshRegisterMetadata();
  KEPRshRegisterHardware();
  KEPRshRegisterControls();
}

bool KEPRshIsPhysicalShaderType(std::string_view typeName) {
  return typeName.starts_with("MPM");
}
