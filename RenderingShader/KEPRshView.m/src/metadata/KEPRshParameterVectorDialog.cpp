#include "KEPRshParameterVectorDialog.h"

#include "KEPRshParameterVectorFrame.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterVectorDialog, KEPRshParameterDialog, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaVector")

KEP_DEFINE_TIE(KEPIRshParameterDialog, KEPRshParameterVectorDialog)

KEPBaseUnknown* KEPRshParameterVectorDialog::CreateItself() {
  return new KEPRshParameterVectorDialog();
}

KEPRshParameterVectorDialog::~KEPRshParameterVectorDialog() {
  KEPModuleTrace::Trace(2,
                        "(KEPRshParameterVectorDialog::~KEPRshParameterVectorDialog) Destructor\n");
  KEPModuleTrace::Trace(2, "(KEPRshParameterVectorDialog::~KEPRshParameterVectorDialog) Done\n");
}

HRESULT KEPRshParameterVectorDialog::GetTypedDefault(float (&value)[4]) {
  return ReadFourFloatDefault(value);
}

const char* KEPRshParameterVectorDialog::DefaultWidgetKind() const {
  return "spinner";
}

std::vector<KEPString> KEPRshParameterVectorDialog::WidgetKinds() const {
  return {"vector2d", "sliderx2", "sliderx3", "sliderx4"};
}

KEPDialog* KEPRshParameterVectorDialog::CreateFrame(KEPIRshParameter* parameter, KEPDialog* parent,
                                                    const KEPString& name, int style) {
  return new KEPRshParameterVectorFrame(parent, parameter, name, style);
}
