#include "KEPRshViewModule.h"

// Each subsystem registers its own extensions.
void KEPRshRegisterMetadata();
void KEPRshRegisterHardware();

extern "C" void KEPRshViewRegister() {
  KEPRshRegisterMetadata();
  KEPRshRegisterHardware();
}
