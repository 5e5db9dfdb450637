#include "KEPRshParameterLightProfileDialog.h"

#include "KEPRshParameterLightProfileFrame.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterLightProfileDialog, KEPRshParameterDialog, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaLightProfile")

KEP_DEFINE_TIE(KEPIRshParameterDialog, KEPRshParameterLightProfileDialog)

KEPBaseUnknown* KEPRshParameterLightProfileDialog::CreateItself() {
  return new KEPRshParameterLightProfileDialog();
}

KEPRshParameterLightProfileDialog::~KEPRshParameterLightProfileDialog() {
  KEPModuleTrace::Trace(
      2, "(KEPRshParameterLightProfileDialog::~KEPRshParameterLightProfileDialog) Destructor\n");
  KEPModuleTrace::Trace(
      2, "(KEPRshParameterLightProfileDialog::~KEPRshParameterLightProfileDialog) Done\n");
}

const char* KEPRshParameterLightProfileDialog::DefaultWidgetKind() const {
  return "light-profile";
}

std::vector<KEPString> KEPRshParameterLightProfileDialog::WidgetKinds() const {
  return {};
}

KEPDialog* KEPRshParameterLightProfileDialog::CreateFrame(KEPIRshParameter* parameter,
                                                          KEPDialog* parent, const KEPString& name,
                                                          int style) {
  return new KEPRshParameterLightProfileFrame(parent, parameter, name, style);
}
