#include "KEPRshParameterVectorImmLayout.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterVectorImmLayout, KEPRshParameterImmLayout, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaVector")

KEP_DEFINE_TIE(KEPIRshParameterImmLayout, KEPRshParameterVectorImmLayout)

KEPBaseUnknown* KEPRshParameterVectorImmLayout::CreateItself() {
  return new KEPRshParameterVectorImmLayout();
}

HRESULT KEPRshParameterVectorImmLayout::GetTypedDefault(float (&value)[4]) {
  return ReadFourFloatDefault(value);
}

const char* KEPRshParameterVectorImmLayout::DefaultWidgetKind() const {
  return "spinner";
}

std::vector<KEPString> KEPRshParameterVectorImmLayout::WidgetKinds() const {
  return {"sliderx2", "sliderx3", "sliderx4", "no-value"};
}
