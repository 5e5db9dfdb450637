#include "KEPRshParameterIntegerImmLayout.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterIntegerImmLayout, KEPRshParameterImmLayout, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaInteger")

KEP_DEFINE_TIE(KEPIRshParameterImmLayout, KEPRshParameterIntegerImmLayout)

KEPBaseUnknown* KEPRshParameterIntegerImmLayout::CreateItself() {
  return new KEPRshParameterIntegerImmLayout();
}

HRESULT KEPRshParameterIntegerImmLayout::GetTypedDefault(int& value) {
  KEPString text;
  if (FAILED(GetDefault(text))) return E_FAIL;
  return KEPRshParameterContext::ParseInt(text, value) ? S_OK : E_FAIL;
}

HRESULT KEPRshParameterIntegerImmLayout::GetTypedRange(int& min, int& max, int& step) {
  KEPString minText, maxText, stepText;
  if (FAILED(GetRange(minText, maxText, stepText))) return E_FAIL;
  return KEPRshParameterContext::ParseIntRange(minText, maxText, stepText, min, max, step) ? S_OK
                                                                                           : E_FAIL;
}

const char* KEPRshParameterIntegerImmLayout::DefaultWidgetKind() const {
  return "spinner";
}

std::vector<KEPString> KEPRshParameterIntegerImmLayout::WidgetKinds() const {
  return {"slider", "wheel", "combo", "check"};
}
