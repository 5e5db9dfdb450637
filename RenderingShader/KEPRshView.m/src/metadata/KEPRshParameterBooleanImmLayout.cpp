#include "KEPRshParameterBooleanImmLayout.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterBooleanImmLayout, KEPRshParameterImmLayout, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaBoolean")

KEP_DEFINE_TIE(KEPIRshParameterImmLayout, KEPRshParameterBooleanImmLayout)

KEPBaseUnknown* KEPRshParameterBooleanImmLayout::CreateItself() {
  return new KEPRshParameterBooleanImmLayout();
}

HRESULT KEPRshParameterBooleanImmLayout::GetTypedDefault(bool& value) {
  return ReadBooleanDefault(value);
}

const char* KEPRshParameterBooleanImmLayout::DefaultWidgetKind() const {
  return "check";
}

std::vector<KEPString> KEPRshParameterBooleanImmLayout::WidgetKinds() const {
  return {};
}
