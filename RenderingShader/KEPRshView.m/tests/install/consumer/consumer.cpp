// Loads the module into the installed stand-alone host and asks a delegate for the viewer
// material: the module's extensions must be registered and reachable across the libraries, and
// the host must find its resources beside the installed library. Prints "consumer: ok".
#include <cstdio>
#include <filesystem>

#include "KEPCreateComponent.h"
#include "KEPExtensionRegistry.h"
#include "KEPHostContext.h"
#include "KEPIHardwareMaterial.h"
#include "KEPIRshShaderLink.h"
#include "KEPMsgCatalog.h"
#include "KEPRshViewModule.h"
#include "KEP_var.h"

int main() {
  // Loading the host starts it: its own extensions exist before any context.
  if (!KEPExtensionRegistry::Find("KEPRshShader", KEPIRshShaderLink::IID().name)) {
    std::puts("consumer: the host did not register its node link when it was loaded");
    return 1;
  }
  KEPHostContext host;
  KEPRshViewRegister();
  auto delegate = KEP_var<KEPBaseUnknown>::Adopt(KEPCreateComponent("KEPRshShaderDelegate"));
  KEP_var<KEPIHardwareMaterial> material = KEPQueryVar<KEPIHardwareMaterial>(delegate.Get());
  if (!material) {
    std::puts("consumer: the delegate has no hardware material");
    return 1;
  }
  const std::string resources = KEPMsgCatalog::ResourcesDirectory();
  if (!std::filesystem::is_directory(resources + "/msg")) {
    std::printf("consumer: no resources at %s\n", resources.c_str());
    return 1;
  }
  std::puts("consumer: ok");
  return 0;
}
