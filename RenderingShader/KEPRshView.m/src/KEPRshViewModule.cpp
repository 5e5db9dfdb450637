#include "KEPRshViewModule.h"

// Each subsystem registers its own extensions.
void KEPRshRegisterMetadata();
void KEPRshRegisterHardware();
void KEPRshRegisterControls();
void KEPRshRegisterImmersiveEditor();
void KEPRshRegisterClassicEditor();

extern "C" void KEPRshViewRegister() {
  KEPRshRegisterMetadata();
  KEPRshRegisterHardware();
  KEPRshRegisterControls();
  KEPRshRegisterImmersiveEditor();
  KEPRshRegisterClassicEditor();
}

bool KEPRshIsPhysicalShaderType(std::string_view typeName) {
  return typeName.starts_with("MPM");
}
