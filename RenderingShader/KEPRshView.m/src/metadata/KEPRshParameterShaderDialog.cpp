#include "KEPRshParameterShaderDialog.h"

#include "KEPRshParameterShaderFrame.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterShaderDialog, KEPRshParameterDialog, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaVoid")

KEP_DEFINE_TIE(KEPIRshParameterDialog, KEPRshParameterShaderDialog)

KEPBaseUnknown* KEPRshParameterShaderDialog::CreateItself() {
  return new KEPRshParameterShaderDialog();
}

KEPRshParameterShaderDialog::~KEPRshParameterShaderDialog() {
  KEPModuleTrace::Trace(2,
                        "(KEPRshParameterShaderDialog::~KEPRshParameterShaderDialog) Destructor\n");
  KEPModuleTrace::Trace(2, "(KEPRshParameterShaderDialog::~KEPRshParameterShaderDialog) Done\n");
}

const char* KEPRshParameterShaderDialog::DefaultWidgetKind() const {
  return "shader";
}

std::vector<KEPString> KEPRshParameterShaderDialog::WidgetKinds() const {
  return {};
}

KEPDialog* KEPRshParameterShaderDialog::CreateFrame(KEPIRshParameter* parameter, KEPDialog* parent,
                                                    const KEPString& name, int style) {
  return new KEPRshParameterShaderFrame(parent, parameter, name, style);
}
