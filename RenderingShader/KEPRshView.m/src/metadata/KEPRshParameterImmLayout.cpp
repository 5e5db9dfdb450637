#include "KEPRshParameterImmLayout.h"

#include <cmath>

#include "KEPIRshParameter.h"
#include "KEPParmDictionary.h"
#include "KEP_var.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterImmLayout, KEPBaseUnknown, "KEPNull", "RenderingShader",
                       KEPClassKind_Implementation, "")

KEPRshParameterImmLayout::KEPRshParameterImmLayout() : trace_("KEPRshParameterConfiguration") {}

KEPRshParameterImmLayout::~KEPRshParameterImmLayout() = default;

// --- Ranges

HRESULT KEPRshParameterImmLayout::GetRange(KEPString& min, KEPString& max, KEPString& step) {
  return Context().Range(true, min, max, step);
}

HRESULT KEPRshParameterImmLayout::GetTypedRange(float&, float&, float&) {
  return E_FAIL;
}
HRESULT KEPRshParameterImmLayout::GetTypedRange(int&, int&, int&) {
  return E_FAIL;
}

// --- Range controls: only the scalar and colour behaviours offer them.

HRESULT KEPRshParameterImmLayout::GetStep(double&) {
  return E_NOTIMPL;
}
HRESULT KEPRshParameterImmLayout::GetDecimalPrecision(int&) {
  return E_NOTIMPL;
}
HRESULT KEPRshParameterImmLayout::GetSoftRange(double&, double&) {
  return E_NOTIMPL;
}
HRESULT KEPRshParameterImmLayout::GetSecondaryParameterName(KEPString&) {
  return E_NOTIMPL;
}
HRESULT KEPRshParameterImmLayout::GetHardRange(double&, double&) {
  return E_NOTIMPL;
}

HRESULT KEPRshParameterImmLayout::ReadModelUnitRange(float& min, float& max, float& step) {
  double low = 0.0, high = 0.0;
  if (FAILED(ReadHardRange(low, high))) return E_FAIL;
  float lowF = static_cast<float>(low);
  float highF = static_cast<float>(high);
  ConvertToModelUnit(lowF);
  ConvertToModelUnit(highF);
  min = lowF;
  max = highF;
  double increment = 0.0;
  if (SUCCEEDED(ReadStep(false, increment))) {
    float stepF = static_cast<float>(increment);
    ConvertToModelUnit(stepF);
    step = stepF;
  }
  return S_OK;
}

HRESULT KEPRshParameterImmLayout::ReadStep(bool useResources, double& step) {
  const KEPRshParameterContext& context = Context();
  KEPString text;
  if (useResources) {
    if (FAILED(context.ResourceOrConfig("step", ".Step", text))) return E_FAIL;
  } else if (FAILED(context.Config(".Step", text))) {
    return E_FAIL;
  }
  return KEPRshParameterContext::ParseDouble(text, step) ? S_OK : E_FAIL;
}

HRESULT KEPRshParameterImmLayout::ReadDecimalPrecision(int& precision) {
  double step = 0.0;
  if (FAILED(ReadStep(false, step))) return E_FAIL;
  // One more decimal for every digit the step needs after the point; bounded for steps such as
  // 1/3 that never become whole.
  int count = 1;
  double scaled = std::fabs(step);
  while (count < 16 && std::fabs(scaled - std::round(scaled)) > 1e-9 * std::fmax(1.0, scaled)) {
    scaled *= 10.0;
    ++count;
  }
  precision = count;
  return S_OK;
}

HRESULT KEPRshParameterImmLayout::ReadSoftRange(double& min, double& max) {
  return Context().DoubleRange(".SoftMin", ".Min", ".SoftMax", ".Max", min, max);
}

HRESULT KEPRshParameterImmLayout::ReadHardRange(double& min, double& max) {
  return Context().DoubleRange(".HardMin", ".Min", ".HardMax", ".Max", min, max);
}

HRESULT KEPRshParameterImmLayout::ReadSecondaryParameterName(KEPString& name) {
  return Context().Config(".SecondaryParameter", name);
}

// --- Enumeration

HRESULT KEPRshParameterImmLayout::GetEnumValue(int index, int& value) {
  return Context().EnumValue(index, value);
}

HRESULT KEPRshParameterImmLayout::GetEnumIndex(int value, int& index) {
  return Context().EnumIndex(true, value, index);
}

// --- Magnitude, tooltip and units

HRESULT KEPRshParameterImmLayout::GetMagnitude(KEPICkeMagnitude*& magnitude) {
  return Context().Magnitude(magnitude);
}

HRESULT KEPRshParameterImmLayout::GetMagnitudeName(KEPString& magnitude) {
  return Context().Config(".Magnitude", magnitude);
}

HRESULT KEPRshParameterImmLayout::GetTooltip(KEPUnicodeString& text, KEPString& image) {
  const KEPRshParameterContext& context = Context();
  context.Config(".TooltipText", text);
  return context.Config(".TooltipImage", image);
}

HRESULT KEPRshParameterImmLayout::ConvertToModelUnit(float& value) {
  if (unitFactor_ == 0.0) {
    unitFactor_ = 1.0;
    KEPString unit;
    if (SUCCEEDED(GetUnitName(unit))) {
      const KEPString lower = KEPToLower(unit);
      if (lower == "mm")
        unitFactor_ = 1.0;
      else if (lower == "cm")
        unitFactor_ = 10.0;
      else if (lower == "m")
        unitFactor_ = 1000.0;
      else if (lower == "km")
        unitFactor_ = 1000000.0;
      else if (lower == "deg")
        unitFactor_ = KEPDegreeToRadian;
    }
  }
  value *= static_cast<float>(unitFactor_);
  return S_OK;
}

// --- Widget choice

HRESULT KEPRshParameterImmLayout::ChooseWidgetKind(KEPString& kind) {
  const KEPString& name = Context().ParameterName();
  KEPString typeName;
  if (KEP_var<KEPIRshParameter> parameter = KEPQueryVar<KEPIRshParameter>(GetExtendedObject()))
    parameter->GetTypeName(typeName);
  KEPString chosen;
  if (SUCCEEDED(GetWidget(chosen))) {
    trace_.Info("Parameter %s's widget is %s { type = %s }", name.c_str(), chosen.c_str(),
                typeName.c_str());
  } else {
    chosen = DefaultWidgetKind();
    trace_.Warning("Parameter %s's widget defaulted to %s { type = %s }", name.c_str(),
                   chosen.c_str(), typeName.c_str());
  }
  kind = std::move(chosen);
  return S_OK;
}
