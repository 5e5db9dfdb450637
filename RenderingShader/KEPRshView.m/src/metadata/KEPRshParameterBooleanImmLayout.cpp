#include "KEPRshParameterBooleanImmLayout.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterBooleanImmLayout, KEPRshParameterImmLayout, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaBoolean")

KEP_DEFINE_TIE(KEPIRshParameterImmLayout, KEPRshParameterBooleanImmLayout)

KEPBaseUnknown* KEPRshParameterBooleanImmLayout::CreateItself() {
  return new KEPRshParameterBooleanImmLayout();
}

HRESULT KEPRshParameterBooleanImmLayout::GetTypedDefault(bool& value) {
  KEPString text;
  if (FAILED(GetDefault(text))) {
    // No default configured at all: a boolean is on.
    value = true;
    return S_OK;
  }
  return KEPRshParameterContext::ParseBoolean(text, value) ? S_OK : E_FAIL;
}

const char* KEPRshParameterBooleanImmLayout::DefaultWidgetKind() const {
  return "check";
}

std::vector<KEPString> KEPRshParameterBooleanImmLayout::WidgetKinds() const {
  return {};
}
