// KEPRshShaderHardwareDefault: the hardware material that the host instantiates as an extension
// of "KEPRshShaderDelegate", exposing the four visualisation interfaces.
#pragma once

#include "KEPExtensionRegistry.h"
#include "KEPRshShaderHardwareExt.h"

class KEPRshShaderHardwareDefault : public KEPRshShaderHardwareExt {
  KEP_DECLARE_CLASS
 public:
  /// A new extension object with one reference, for the extension registry.
  static KEPBaseUnknown* Create();
  KEPBaseUnknown* CreateItself() override;
  KEPRshShaderHardwareDefault() = default;
  ~KEPRshShaderHardwareDefault() override;
};

KEP_DECLARE_TIE(KEPIHardwareMaterial, KEPRshShaderHardwareDefault)
KEP_DECLARE_TIE(KEPIOpenGLShaderMaterial, KEPRshShaderHardwareDefault)
KEP_DECLARE_TIE(KEPIRmaMappingManipulator, KEPRshShaderHardwareDefault)
KEP_DECLARE_TIE(KEPIRmaMappingManipulatorMaterial, KEPRshShaderHardwareDefault)
