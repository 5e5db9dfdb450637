#include "KEPRshParameterTextureDialog.h"

#include "KEPRshParameterTextureFrame.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterTextureDialog, KEPRshParameterDialog, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaTexture")

KEP_DEFINE_TIE(KEPIRshParameterDialog, KEPRshParameterTextureDialog)

KEPBaseUnknown* KEPRshParameterTextureDialog::CreateItself() {
  return new KEPRshParameterTextureDialog();
}

KEPRshParameterTextureDialog::~KEPRshParameterTextureDialog() {
  KEPModuleTrace::Trace(
      2, "(KEPRshParameterTextureDialog::~KEPRshParameterTextureDialog) Destructor\n");
  KEPModuleTrace::Trace(2, "(KEPRshParameterTextureDialog::~KEPRshParameterTextureDialog) Done\n");
}

const char* KEPRshParameterTextureDialog::DefaultWidgetKind() const {
  return "texture";
}

std::vector<KEPString> KEPRshParameterTextureDialog::WidgetKinds() const {
  return {};
}

KEPDialog* KEPRshParameterTextureDialog::CreateFrame(KEPIRshParameter* parameter, KEPDialog* parent,
                                                     const KEPString& name, int style) {
  return new KEPRshParameterTextureFrame(parent, parameter, name, style);
}
