// Registration of the immersive shader editor: its behaviour as the extension of every shader
// node that answers KEPIRshShaderEditorImmLayout, and the forgetting of its process-wide cache
// (the parameter sorting level) when the host resets. Registering again replaces the same entry,
// so the call is idempotent.
#include "KEPExtensionRegistry.h"
#include "KEPProcessReset.h"
#include "KEPRshParameterOrdering.h"
#include "KEPRshShaderEditorImmLayout.h"

void KEPRshRegisterImmersiveEditor() {
  const KEPMetaClass* meta = KEPRshShaderEditorImmLayout::MetaObject();
  KEPExtensionRegistry::Register(
      {meta->ExtendedLateType(), KEPIRshShaderEditorImmLayout::IID().name, meta->Name(),
       &KEPRshShaderEditorImmLayout::CreateItself,
       &CreateTIEKEPIRshShaderEditorImmLayoutKEPRshShaderEditorImmLayout});
  KEPRegisterProcessResetHook(&KEPRshParameterOrdering::ForgetProcessCache);
}
