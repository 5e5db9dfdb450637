#include "KEPRshParameterShaderImmLayout.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterShaderImmLayout, KEPRshParameterImmLayout, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaVoid")

KEP_DEFINE_TIE(KEPIRshParameterImmLayout, KEPRshParameterShaderImmLayout)

KEPBaseUnknown* KEPRshParameterShaderImmLayout::CreateItself() {
  return new KEPRshParameterShaderImmLayout();
}

const char* KEPRshParameterShaderImmLayout::DefaultWidgetKind() const {
  return "shader";
}

std::vector<KEPString> KEPRshParameterShaderImmLayout::WidgetKinds() const {
  return {};
}
