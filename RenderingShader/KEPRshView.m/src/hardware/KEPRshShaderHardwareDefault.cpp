#include "KEPRshShaderHardwareDefault.h"

#include "KEPTrace.h"

// Registered like every extension of the delegate, directly under KEPBaseUnknown: the
// metaclass chain does not name the C++ base.
KEP_IMPLEMENT_CLASS_EX(KEPRshShaderHardwareDefault, KEPBaseUnknown, "KEPNull", "RenderingShader",
                       KEPClassKind_Extension, "KEPRshShaderDelegate")

KEPBaseUnknown* KEPRshShaderHardwareDefault::Create() {
  return new KEPRshShaderHardwareDefault();
}

KEPBaseUnknown* KEPRshShaderHardwareDefault::CreateItself() {
  return Create();
}

// The base's own work (releasing the parameters) is done here, between the two traces, so that
// "Done" follows it; the base destructor then finds nothing left to release.
KEPRshShaderHardwareDefault::~KEPRshShaderHardwareDefault() {
  KEPModuleTrace::Trace(2,
                        "(KEPRshShaderHardwareDefault::~KEPRshShaderHardwareDefault) Destructor\n");
  CleanUp();
  KEPModuleTrace::Trace(2, "(KEPRshShaderHardwareDefault::~KEPRshShaderHardwareDefault) Done\n");
}

KEP_DEFINE_TIE(KEPIHardwareMaterial, KEPRshShaderHardwareDefault)
KEP_DEFINE_TIE(KEPIOpenGLShaderMaterial, KEPRshShaderHardwareDefault)
KEP_DEFINE_TIE(KEPIRmaMappingManipulator, KEPRshShaderHardwareDefault)
KEP_DEFINE_TIE(KEPIRmaMappingManipulatorMaterial, KEPRshShaderHardwareDefault)
