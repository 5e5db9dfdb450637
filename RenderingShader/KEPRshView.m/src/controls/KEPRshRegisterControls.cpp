// Registration of the introspectable value controls: a metaclass builder per control, and the
// ratio's own introspection adapter (the soft and hard range control is introspected through the
// toolkit's). Registering again replaces the same entries, so the call is idempotent.
#include "KEPRshUICtlParameterIntegral1.h"
#include "KEPRshUIScalarRatio.h"
#include "KEPRshUIScalarSoftHardRange.h"
#include "KEPSYPMetaClass.h"

void KEPRshRegisterControls() {
  KEPSYPRegistry::RegisterBuilder("KEPRshUIScalarSoftHardRange",
                                  &fctCreateKEPRshUIScalarSoftHardRangeSYPMetaClassBuilder);
  KEPSYPRegistry::RegisterBuilder("KEPRshUIScalarRatio",
                                  &fctCreateKEPRshUIScalarRatioSYPMetaClassBuilder);
  KEPSYPRegistry::RegisterAdapter("KEPRshUIScalarRatio",
                                  &CreateBOAKEPISYPIntrospectableKEPRshUIScalarRatioSYPIntro);
  KEPSYPRegistry::RegisterBuilder("KEPRshUICtlParameterIntegral1",
                                  &fctCreateKEPRshUICtlParameterIntegral1SYPMetaClassBuilder);
  KEPSYPRegistry::RegisterAdapter(
      "KEPRshUICtlParameterIntegral1",
      &CreateBOAKEPISYPIntrospectableKEPRshUICtlParameterIntegral1SYPIntro);
}
