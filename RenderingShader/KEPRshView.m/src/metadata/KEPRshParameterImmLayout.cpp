#include "KEPRshParameterImmLayout.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

#include "KEPIRshParameter.h"
#include "KEPParmDictionary.h"
#include "KEPVidWidget.h"
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
  precision = 1 + DecimalDigits(step);
  return S_OK;
}

int KEPRshParameterImmLayout::DecimalDigits(double number) {
  if (!std::isfinite(number)) return 0;
  // The digits after the point of the shortest decimal text that reads back as `number` (0.1 has
  // one, although the double nearest to it has 55), found in its scientific form d.ddd e±x: the
  // fraction digits of the mantissa, shifted by the exponent. Exact for every double, from
  // 5e-324 (324 digits) to the largest (none).
  char text[32];
  const auto written =
      std::to_chars(text, text + sizeof text, std::fabs(number), std::chars_format::scientific);
  const std::string_view scientific(text, static_cast<std::size_t>(written.ptr - text));
  const std::size_t e = scientific.find('e');
  const std::size_t point = scientific.find('.');
  const int fraction = point < e ? static_cast<int>(e - point - 1) : 0;
  std::string_view exponentText = scientific.substr(e + 1);
  if (exponentText.starts_with('+')) exponentText.remove_prefix(1);
  int exponent = 0;
  std::from_chars(exponentText.data(), exponentText.data() + exponentText.size(), exponent);
  return std::max(0, fraction - exponent);
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
  // Without ".TooltipText" the text is empty, never what the caller held before.
  KEPUnicodeString tip;
  context.Config(".TooltipText", tip);
  text = std::move(tip);
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

HRESULT KEPRshParameterImmLayout::BuildWidget(KEPVidWidget*, const char*, KEPVidWidget*& widget) {
  widget = nullptr;
  return E_NOTIMPL;
}

HRESULT KEPRshParameterImmLayout::BuildOwnWidget(KEPVidWidget* parent, const char* name,
                                                 KEPVidWidget*& widget, WidgetMaker make,
                                                 const char* sourcePath, int line) {
  widget = nullptr;
  if (!parent) return E_FAIL;
  const KEP_var<KEPIRshParameter> parameter = KEPQueryVar<KEPIRshParameter>(this);
  const KEP_var<KEPIRshParameterImmLayout> layout = KEPQueryVar<KEPIRshParameterImmLayout>(this);
  if (!parameter || !layout) return E_NOINTERFACE;

  // Traced here; the widget reads the kind again, silently, and builds what fits it.
  KEPString kind;
  layout->ChooseWidgetKind(kind);
  const KEPString controlName = name ? name : "";
  KEPVidWidget* control = make(parameter.Get(), parent, controlName);
  if (!control) {
    trace_.Error(sourcePath, line, "Widget successfully built");
    return E_FAIL;
  }
  trace_.Info("Widget successfully built");
  control->SetName(controlName);
  if (control->GetFather() != parent) control->SetFather(parent);
  widget = control;
  return S_OK;
}

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
