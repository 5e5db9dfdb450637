#include "KEPRshParameterScalarImmLayout.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterScalarImmLayout, KEPRshParameterImmLayout, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaScalar")

KEP_DEFINE_TIE(KEPIRshParameterImmLayout, KEPRshParameterScalarImmLayout)

KEPBaseUnknown* KEPRshParameterScalarImmLayout::CreateItself() {
  return new KEPRshParameterScalarImmLayout();
}

HRESULT KEPRshParameterScalarImmLayout::GetTypedDefault(float& value) {
  return ReadScalarDefault(value);
}

HRESULT KEPRshParameterScalarImmLayout::GetTypedRange(float& min, float& max, float& step) {
  return ReadModelUnitRange(min, max, step);
}

HRESULT KEPRshParameterScalarImmLayout::GetStep(double& step) {
  return ReadStep(false, step);
}

HRESULT KEPRshParameterScalarImmLayout::GetDecimalPrecision(int& precision) {
  return ReadDecimalPrecision(precision);
}

HRESULT KEPRshParameterScalarImmLayout::GetSoftRange(double& min, double& max) {
  return ReadSoftRange(min, max);
}

HRESULT KEPRshParameterScalarImmLayout::GetSecondaryParameterName(KEPString& name) {
  return ReadSecondaryParameterName(name);
}

HRESULT KEPRshParameterScalarImmLayout::GetHardRange(double& min, double& max) {
  return ReadHardRange(min, max);
}

const char* KEPRshParameterScalarImmLayout::DefaultWidgetKind() const {
  return "no-value";
}

std::vector<KEPString> KEPRshParameterScalarImmLayout::WidgetKinds() const {
  return {"slider", "wheel", "spinner", "ratio", "dynamic-slider", "no-value", "generic"};
}
