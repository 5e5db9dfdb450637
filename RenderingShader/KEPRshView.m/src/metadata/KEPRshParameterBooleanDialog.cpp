#include "KEPRshParameterBooleanDialog.h"

#include "KEPRshParameterBooleanFrame.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterBooleanDialog, KEPRshParameterDialog, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaBoolean")

KEP_DEFINE_TIE(KEPIRshParameterDialog, KEPRshParameterBooleanDialog)

KEPBaseUnknown* KEPRshParameterBooleanDialog::CreateItself() {
  return new KEPRshParameterBooleanDialog();
}

KEPRshParameterBooleanDialog::~KEPRshParameterBooleanDialog() {
  KEPModuleTrace::Trace(
      2, "(KEPRshParameterBooleanDialog::~KEPRshParameterBooleanDialog) Destructor\n");
  KEPModuleTrace::Trace(2, "(KEPRshParameterBooleanDialog::~KEPRshParameterBooleanDialog) Done\n");
}

HRESULT KEPRshParameterBooleanDialog::GetTypedDefault(bool& value) {
  return ReadBooleanDefault(value);
}

const char* KEPRshParameterBooleanDialog::DefaultWidgetKind() const {
  return "check";
}

std::vector<KEPString> KEPRshParameterBooleanDialog::WidgetKinds() const {
  return {};
}

KEPDialog* KEPRshParameterBooleanDialog::CreateFrame(KEPIRshParameter* parameter, KEPDialog* parent,
                                                     const KEPString& name, int style) {
  return new KEPRshParameterBooleanFrame(parent, parameter, name, style);
}
