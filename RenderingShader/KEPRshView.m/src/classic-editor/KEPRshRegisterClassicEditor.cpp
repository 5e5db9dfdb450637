// Registration of the classic shader editor: its behaviour as the extension of every shader node
// that answers KEPIRshShaderEditorDialog. Registering again replaces the same entry, so the call
// is idempotent.
#include "KEPExtensionRegistry.h"
#include "KEPRshShaderDialog.h"

void KEPRshRegisterClassicEditor() {
  const KEPMetaClass* meta = KEPRshShaderDialog::MetaObject();
  KEPExtensionRegistry::Register({meta->ExtendedLateType(), KEPIRshShaderEditorDialog::IID().name,
                                  meta->Name(), &KEPRshShaderDialog::CreateItself,
                                  &CreateTIEKEPIRshShaderEditorDialogKEPRshShaderDialog});
}
