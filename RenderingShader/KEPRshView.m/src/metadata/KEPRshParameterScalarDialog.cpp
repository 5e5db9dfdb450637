#include "KEPRshParameterScalarDialog.h"

#include "KEPRshParameterScalarFrame.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterScalarDialog, KEPRshParameterDialog, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaScalar")

KEP_DEFINE_TIE(KEPIRshParameterDialog, KEPRshParameterScalarDialog)

KEPBaseUnknown* KEPRshParameterScalarDialog::CreateItself() {
  return new KEPRshParameterScalarDialog();
}

KEPRshParameterScalarDialog::~KEPRshParameterScalarDialog() {
  KEPModuleTrace::Trace(2,
                        "(KEPRshParameterScalarDialog::~KEPRshParameterScalarDialog) Destructor\n");
  KEPModuleTrace::Trace(2, "(KEPRshParameterScalarDialog::~KEPRshParameterScalarDialog) Done\n");
}

HRESULT KEPRshParameterScalarDialog::GetTypedDefault(float& value) {
  return ReadScalarDefault(value);
}

const char* KEPRshParameterScalarDialog::DefaultWidgetKind() const {
  return "spinner";
}

std::vector<KEPString> KEPRshParameterScalarDialog::WidgetKinds() const {
  return {"slider", "wheel", "blackbody"};
}

KEPDialog* KEPRshParameterScalarDialog::CreateFrame(KEPIRshParameter* parameter, KEPDialog* parent,
                                                    const KEPString& name, int style) {
  return new KEPRshParameterScalarFrame(parent, parameter, name, style);
}
