// Registration of the parameter behaviours as extensions of the feature types: for each feature
// type, the immersive layout behaviour (KEPIRshParameterImmLayout) and the classic dialog
// behaviour (KEPIRshParameterDialog). Registering again replaces the same entries, so the call is
// idempotent. The integer builder's cached software level is forgotten on each host process reset.
#include "KEPExtensionRegistry.h"
#include "KEPProcessReset.h"
#include "KEPRshParameterBooleanDialog.h"
#include "KEPRshParameterBooleanImmLayout.h"
#include "KEPRshParameterColorDialog.h"
#include "KEPRshParameterColorImmLayout.h"
#include "KEPRshParameterIntegerDialog.h"
#include "KEPRshParameterIntegerImmLayout.h"
#include "KEPRshParameterLightProfileDialog.h"
#include "KEPRshParameterScalarDialog.h"
#include "KEPRshParameterScalarImmLayout.h"
#include "KEPRshParameterShaderDialog.h"
#include "KEPRshParameterShaderImmLayout.h"
#include "KEPRshParameterTextureDialog.h"
#include "KEPRshParameterTextureImmLayout.h"
#include "KEPRshParameterVectorDialog.h"
#include "KEPRshParameterVectorImmLayout.h"

namespace {

template <class Class>
void RegisterBehaviour(const char* interfaceName, KEPTIEFactory tie) {
  const KEPMetaClass* meta = Class::MetaObject();
  KEPExtensionRegistry::Register(
      {meta->ExtendedLateType(), interfaceName, meta->Name(), &Class::CreateItself, tie});
}

}  // namespace

#define KEPRSH_REGISTER_BEHAVIOUR(Interface, Class) \
  RegisterBehaviour<Class>(#Interface, &CreateTIE##Interface##Class)

void KEPRshRegisterMetadata() {
  KEPRSH_REGISTER_BEHAVIOUR(KEPIRshParameterImmLayout, KEPRshParameterBooleanImmLayout);
  KEPRSH_REGISTER_BEHAVIOUR(KEPIRshParameterImmLayout, KEPRshParameterIntegerImmLayout);
  KEPRSH_REGISTER_BEHAVIOUR(KEPIRshParameterImmLayout, KEPRshParameterScalarImmLayout);
  KEPRSH_REGISTER_BEHAVIOUR(KEPIRshParameterImmLayout, KEPRshParameterColorImmLayout);
  KEPRSH_REGISTER_BEHAVIOUR(KEPIRshParameterImmLayout, KEPRshParameterVectorImmLayout);
  KEPRSH_REGISTER_BEHAVIOUR(KEPIRshParameterImmLayout, KEPRshParameterTextureImmLayout);
  KEPRSH_REGISTER_BEHAVIOUR(KEPIRshParameterImmLayout, KEPRshParameterShaderImmLayout);

  KEPRSH_REGISTER_BEHAVIOUR(KEPIRshParameterDialog, KEPRshParameterBooleanDialog);
  KEPRSH_REGISTER_BEHAVIOUR(KEPIRshParameterDialog, KEPRshParameterIntegerDialog);
  KEPRSH_REGISTER_BEHAVIOUR(KEPIRshParameterDialog, KEPRshParameterScalarDialog);
  KEPRSH_REGISTER_BEHAVIOUR(KEPIRshParameterDialog, KEPRshParameterColorDialog);
  KEPRSH_REGISTER_BEHAVIOUR(KEPIRshParameterDialog, KEPRshParameterVectorDialog);
  KEPRSH_REGISTER_BEHAVIOUR(KEPIRshParameterDialog, KEPRshParameterTextureDialog);
  KEPRSH_REGISTER_BEHAVIOUR(KEPIRshParameterDialog, KEPRshParameterLightProfileDialog);
  KEPRSH_REGISTER_BEHAVIOUR(KEPIRshParameterDialog, KEPRshParameterShaderDialog);

  KEPRegisterProcessResetHook(&KEPRshParameterIntegerImmLayout::ForgetProcessCache);
}
