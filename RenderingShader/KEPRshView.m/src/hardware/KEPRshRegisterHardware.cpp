// Registration of the hardware material and the shader link as extensions of the delegate.
void KEPRshRegisterHardware() {}
