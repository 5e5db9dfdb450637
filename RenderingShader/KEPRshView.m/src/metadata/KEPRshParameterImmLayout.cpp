#include "KEPRshParameterImmLayout.h"

#include <cmath>

#include "KEPIRshParameter.h"
#include "KEPParmDictionary.h"
#include "KEP_var.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterImmLayout, KEPBaseUnknown, "KEPNull", "RenderingShader",
                       KEPClassKind_Implementation, "")

KEPRshParameterImmLayout::KEPRshParameterImmLayout() : trace_("KEPRshParameterConfiguration") {}

KEPRshParameterImmLayout::~KEPRshParameterImmLayout() {
  context_.ReleaseResources();
}

HRESULT KEPRshParameterImmLayout::ChangeComponentState(int from, int to, const void* context) {
  if (from < KEPComponentState_Deleted && to == KEPComponentState_Deleted)
    context_.ReleaseResources();
  return KEPBaseUnknown::ChangeComponentState(from, to, context);
}

const KEPRshParameterContext& KEPRshParameterImmLayout::Context() {
  context_.Resolve(GetExtendedObject());
  return context_;
}

const KEPString& KEPRshParameterImmLayout::GetConfigurationId() {
  return Context().ConfigurationId();
}

const KEPString& KEPRshParameterImmLayout::GetParameterName() {
  return Context().ParameterName();
}

// --- Texts

HRESULT KEPRshParameterImmLayout::GetDescription(KEPUnicodeString& description) {
  return Context().Config(".Description", description);
}

HRESULT KEPRshParameterImmLayout::GetGroup(KEPUnicodeString& group) {
  return Context().Config(".Group", group);
}

HRESULT KEPRshParameterImmLayout::GetDefault(KEPString& value) {
  return Context().ResourceOrConfig("default", ".Default", value);
}

// --- Typed readers: the types that have a stored form override these.

HRESULT KEPRshParameterImmLayout::GetTypedDefault(bool&) {
  return E_FAIL;
}
HRESULT KEPRshParameterImmLayout::GetTypedDefault(int&) {
  return E_FAIL;
}
HRESULT KEPRshParameterImmLayout::GetTypedDefault(float&) {
  return E_FAIL;
}
HRESULT KEPRshParameterImmLayout::GetTypedDefault(float (&)[4]) {
  return E_FAIL;
}

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

HRESULT KEPRshParameterImmLayout::ReadFourFloatDefault(float (&value)[4]) {
  KEPString text;
  if (FAILED(GetDefault(text))) return E_FAIL;
  return KEPRshParameterContext::ParseFourFloats(text, value) ? S_OK : E_FAIL;
}

// --- Enumeration and labels

HRESULT KEPRshParameterImmLayout::GetEnumLabel(int index, KEPUnicodeString& label) {
  return Context().ResourceOrConfig(KEPRshParameterContext::Indexed("enum", index),
                                    KEPRshParameterContext::Indexed(".Enum", index), label);
}

HRESULT KEPRshParameterImmLayout::GetEnumValue(int index, int& value) {
  return Context().EnumValue(index, value);
}

HRESULT KEPRshParameterImmLayout::GetEnumIndex(int value, int& index) {
  return Context().EnumIndex(true, value, index);
}

HRESULT KEPRshParameterImmLayout::GetLabel(int index, KEPUnicodeString& label) {
  return Context().ResourceOrConfig(KEPRshParameterContext::Indexed("label", index),
                                    KEPRshParameterContext::Indexed(".Label", index), label);
}

// --- Widget, units and the rest

HRESULT KEPRshParameterImmLayout::GetWidget(KEPString& kind) {
  return Context().ResourceOrConfig("widget", ".Widget", kind);
}

HRESULT KEPRshParameterImmLayout::GetUnit(KEPICkeUnit*& unit) {
  return Context().Unit(unit);
}

HRESULT KEPRshParameterImmLayout::GetUnitName(KEPString& unit) {
  return Context().Config(".Unit", unit);
}

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

HRESULT KEPRshParameterImmLayout::GetSortingOrder(KEPString& order) {
  return Context().Config(".SortingOrder", order);
}

HRESULT KEPRshParameterImmLayout::GetConnectableState(KEPString& state) {
  return Context().ConnectableState(GetExtendedObject(), state);
}

HRESULT KEPRshParameterImmLayout::GetLayerGroupName(KEPString& name) {
  return Context().Config(".LayerGroupName", name);
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

HRESULT KEPRshParameterImmLayout::GetDefaultWidgetKind(KEPString& kind) {
  kind = DefaultWidgetKind();
  return S_OK;
}

HRESULT KEPRshParameterImmLayout::GetWidgetKinds(std::vector<KEPString>& kinds) {
  kinds = WidgetKinds();
  return S_OK;
}
