#include "KEPRshParameterColorDialog.h"

#include "KEPRshParameterColorFrame.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterColorDialog, KEPRshParameterDialog, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaColor")

KEP_DEFINE_TIE(KEPIRshParameterDialog, KEPRshParameterColorDialog)

KEPBaseUnknown* KEPRshParameterColorDialog::CreateItself() {
  return new KEPRshParameterColorDialog();
}

KEPRshParameterColorDialog::~KEPRshParameterColorDialog() {
  KEPModuleTrace::Trace(2,
                        "(KEPRshParameterColorDialog::~KEPRshParameterColorDialog) Destructor\n");
  KEPModuleTrace::Trace(2, "(KEPRshParameterColorDialog::~KEPRshParameterColorDialog) Done\n");
}

HRESULT KEPRshParameterColorDialog::GetTypedDefault(float (&value)[4]) {
  return ReadFourFloatDefault(value);
}

const char* KEPRshParameterColorDialog::DefaultWidgetKind() const {
  return "color";
}

std::vector<KEPString> KEPRshParameterColorDialog::WidgetKinds() const {
  return {};
}

KEPDialog* KEPRshParameterColorDialog::CreateFrame(KEPIRshParameter* parameter, KEPDialog* parent,
                                                   const KEPString& name, int style) {
  return new KEPRshParameterColorFrame(parent, parameter, name, style);
}
