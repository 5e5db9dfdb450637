#include "KEPRshParameterIntegerImmLayout.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterIntegerImmLayout, KEPRshParameterImmLayout, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaInteger")

KEP_DEFINE_TIE(KEPIRshParameterImmLayout, KEPRshParameterIntegerImmLayout)

KEPBaseUnknown* KEPRshParameterIntegerImmLayout::CreateItself() {
  return new KEPRshParameterIntegerImmLayout();
}

HRESULT KEPRshParameterIntegerImmLayout::GetTypedDefault(int& value) {
  return ReadIntegerDefault(value);
}

HRESULT KEPRshParameterIntegerImmLayout::GetTypedRange(int& min, int& max, int& step) {
  return ReadIntegerRange(min, max, step);
}

const char* KEPRshParameterIntegerImmLayout::DefaultWidgetKind() const {
  return "spinner";
}

std::vector<KEPString> KEPRshParameterIntegerImmLayout::WidgetKinds() const {
  return {"slider", "wheel", "combo", "check"};
}
