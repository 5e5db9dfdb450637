#include "KEPRshParameterColorImmLayout.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterColorImmLayout, KEPRshParameterImmLayout, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaColor")

KEP_DEFINE_TIE(KEPIRshParameterImmLayout, KEPRshParameterColorImmLayout)

KEPBaseUnknown* KEPRshParameterColorImmLayout::CreateItself() {
  return new KEPRshParameterColorImmLayout();
}

HRESULT KEPRshParameterColorImmLayout::GetTypedDefault(float (&value)[4]) {
  return ReadFourFloatDefault(value);
}

HRESULT KEPRshParameterColorImmLayout::GetTypedRange(float& min, float& max, float& step) {
  return ReadModelUnitRange(min, max, step);
}

HRESULT KEPRshParameterColorImmLayout::GetStep(double& step) {
  // Colour nodes usually carry their metadata as shader resources: ask them first.
  return ReadStep(true, step);
}

HRESULT KEPRshParameterColorImmLayout::GetDecimalPrecision(int& precision) {
  return ReadDecimalPrecision(precision);
}

HRESULT KEPRshParameterColorImmLayout::GetSoftRange(double& min, double& max) {
  return ReadSoftRange(min, max);
}

HRESULT KEPRshParameterColorImmLayout::GetSecondaryParameterName(KEPString& name) {
  return ReadSecondaryParameterName(name);
}

HRESULT KEPRshParameterColorImmLayout::GetHardRange(double& min, double& max) {
  return ReadHardRange(min, max);
}

const char* KEPRshParameterColorImmLayout::DefaultWidgetKind() const {
  return "color";
}

std::vector<KEPString> KEPRshParameterColorImmLayout::WidgetKinds() const {
  return {"scalar-spinner", "color"};
}
