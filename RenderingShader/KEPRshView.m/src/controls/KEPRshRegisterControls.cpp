// Registration of the introspectable value controls: a metaclass builder per control, and the
// ratio's, the integer combo control's and the scalar spinner's own introspection adapters (the
// soft and hard range control is introspected through the toolkit's). Registering again replaces
// the same entries, so the call is idempotent.
#include "KEPRshUICtlParameterIntegral1.h"
#include "KEPRshUICtlScalarSpinner.h"
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
  KEPSYPRegistry::RegisterBuilder("KEPRshUICtlScalarSpinner",
                                  &fctCreateKEPRshUICtlScalarSpinnerSYPMetaClassBuilder);
  KEPSYPRegistry::RegisterAdapter("KEPRshUICtlScalarSpinner",
                                  &CreateBOAKEPISYPIntrospectableKEPRshUICtlScalarSpinnerSYPIntro);
}
