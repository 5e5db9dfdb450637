#include "KEPRshViewModule.h"

// Each subsystem registers its own extensions.
void KEPRshRegisterMetadata();
void KEPRshRegisterHardware();
void KEPRshRegisterImmersiveEditor();

extern "C" void KEPRshViewRegister() {
  KEPRshRegisterMetadata();
  KEPRshRegisterHardware();
  KEPRshRegisterImmersiveEditor();
}

bool KEPRshIsPhysicalShaderType(std::string_view typeName) {
  return typeName.starts_with("MPM");
}
