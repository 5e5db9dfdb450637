// Registration of the hardware material and the shader link as extensions of the delegate.
#include "KEPExtensionRegistry.h"
#include "KEPProcessReset.h"
#include "KEPRshLateTypes.h"
#include "KEPRshShaderHardwareDefault.h"
#include "KEPRshShaderHardwareExt.h"
#include "KEPRshShaderHardwareLink.h"
#include "KEPRshShaderProgramLocator.h"

namespace {
void RegisterMaterial(const char* lateType) {
  const char* className = KEPRshShaderHardwareDefault::ClassName();
  KEPExtensionCreator create = &KEPRshShaderHardwareDefault::Create;
  KEPExtensionRegistry::Register({lateType, KEPIHardwareMaterial::IID().name, className, create,
                                  &CreateTIEKEPIHardwareMaterialKEPRshShaderHardwareDefault});
  KEPExtensionRegistry::Register({lateType, KEPIOpenGLShaderMaterial::IID().name, className, create,
                                  &CreateTIEKEPIOpenGLShaderMaterialKEPRshShaderHardwareDefault});
  KEPExtensionRegistry::Register({lateType, KEPIRmaMappingManipulator::IID().name, className,
                                  create,
                                  &CreateTIEKEPIRmaMappingManipulatorKEPRshShaderHardwareDefault});
  KEPExtensionRegistry::Register(
      {lateType, KEPIRmaMappingManipulatorMaterial::IID().name, className, create,
       &CreateTIEKEPIRmaMappingManipulatorMaterialKEPRshShaderHardwareDefault});
}
}  // namespace

void KEPRshRegisterHardware() {
  // Registering replaces an entry of the same (late type, interface), so this is idempotent.
  KEPExtensionRegistry::Register(
      {"KEPRshShaderDelegate", KEPIRshShaderLink::IID().name, KEPRshShaderHardwareLink::ClassName(),
       &KEPRshShaderHardwareLink::Create, &CreateTIEKEPIRshShaderLinkKEPRshShaderHardwareLink});
  RegisterMaterial("KEPRshShaderDelegate");
  // A texture shader connected to a material's parameter answers the questions that the material
  // passes on to it (the host links every node to itself). Other nodes do not answer: a bump or
  // colour node connected before the texture must not hide it.
  RegisterMaterial(KEPRshTextureShaderLateType);
  // A reset host looks like a new process to the program search: the startup path is read again.
  KEPRegisterProcessResetHook(&KEPRshShaderProgramLocator::ForgetProcessCache);
}
