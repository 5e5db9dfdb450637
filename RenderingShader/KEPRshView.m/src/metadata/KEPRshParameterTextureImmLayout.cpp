#include "KEPRshParameterTextureImmLayout.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterTextureImmLayout, KEPRshParameterImmLayout, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaTexture")

KEP_DEFINE_TIE(KEPIRshParameterImmLayout, KEPRshParameterTextureImmLayout)

KEPBaseUnknown* KEPRshParameterTextureImmLayout::CreateItself() {
  return new KEPRshParameterTextureImmLayout();
}

const char* KEPRshParameterTextureImmLayout::DefaultWidgetKind() const {
  return "texture";
}

std::vector<KEPString> KEPRshParameterTextureImmLayout::WidgetKinds() const {
  return {};
}
