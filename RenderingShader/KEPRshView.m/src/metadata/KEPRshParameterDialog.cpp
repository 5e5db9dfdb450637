#include "KEPRshParameterDialog.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterDialog, KEPBaseUnknown, "KEPNull", "RenderingShader",
                       KEPClassKind_Implementation, "")

KEPRshParameterDialog::~KEPRshParameterDialog() {
  context_.ReleaseResources();
}

HRESULT KEPRshParameterDialog::ChangeComponentState(int from, int to, const void* context) {
  if (from < KEPComponentState_Deleted && to == KEPComponentState_Deleted)
    context_.ReleaseResources();
  return KEPBaseUnknown::ChangeComponentState(from, to, context);
}

const KEPRshParameterContext& KEPRshParameterDialog::Context() {
  context_.Resolve(GetExtendedObject());
  return context_;
}

const KEPString& KEPRshParameterDialog::GetConfigurationId() {
  return Context().ConfigurationId();
}

const KEPString& KEPRshParameterDialog::GetParameterName() {
  return Context().ParameterName();
}

// --- Texts

HRESULT KEPRshParameterDialog::GetDescription(KEPUnicodeString& description) {
  return Context().Config(".Description", description);
}

HRESULT KEPRshParameterDialog::GetGroup(KEPUnicodeString& group) {
  return Context().Config(".Group", group);
}

HRESULT KEPRshParameterDialog::GetDefault(KEPString& value) {
  return Context().ResourceOrConfig("default", ".Default", value);
}

HRESULT KEPRshParameterDialog::GetTypedDefault(bool&) {
  return E_FAIL;
}
HRESULT KEPRshParameterDialog::GetTypedDefault(int&) {
  return E_FAIL;
}
HRESULT KEPRshParameterDialog::GetTypedDefault(float&) {
  return E_FAIL;
}
HRESULT KEPRshParameterDialog::GetTypedDefault(float (&)[4]) {
  return E_FAIL;
}

// --- Range: never the hard keys

HRESULT KEPRshParameterDialog::GetRange(KEPString& min, KEPString& max, KEPString& step) {
  return Context().Range(false, min, max, step);
}

HRESULT KEPRshParameterDialog::GetTypedRange(float& min, float& max, float& step) {
  KEPString minText, maxText, stepText;
  if (FAILED(GetRange(minText, maxText, stepText))) return E_FAIL;
  double low = 0.0, high = 0.0, increment = 0.0;
  if (!KEPRshParameterContext::ParseDouble(minText, low) ||
      !KEPRshParameterContext::ParseDouble(maxText, high))
    return E_FAIL;
  min = static_cast<float>(low);
  max = static_cast<float>(high);
  if (KEPRshParameterContext::ParseDouble(stepText, increment))
    step = static_cast<float>(increment);
  return S_OK;
}

HRESULT KEPRshParameterDialog::GetTypedRange(int& min, int& max, int& step) {
  KEPString minText, maxText, stepText;
  if (FAILED(GetRange(minText, maxText, stepText))) return E_FAIL;
  return KEPRshParameterContext::ParseIntRange(minText, maxText, stepText, min, max, step) ? S_OK
                                                                                           : E_FAIL;
}

// --- Enumeration and labels

HRESULT KEPRshParameterDialog::GetEnumLabel(int index, KEPUnicodeString& label) {
  return Context().ResourceOrConfig(KEPRshParameterContext::Indexed("enum", index),
                                    KEPRshParameterContext::Indexed(".Enum", index), label);
}

HRESULT KEPRshParameterDialog::GetEnumValue(int, int&) {
  return E_NOTIMPL;
}

HRESULT KEPRshParameterDialog::GetEnumIndex(int, int&) {
  return E_NOTIMPL;
}

HRESULT KEPRshParameterDialog::GetLabel(int index, KEPUnicodeString& label) {
  return Context().ResourceOrConfig(KEPRshParameterContext::Indexed("label", index),
                                    KEPRshParameterContext::Indexed(".Label", index), label);
}

// --- Widget, unit and the rest

HRESULT KEPRshParameterDialog::GetWidget(KEPString& kind) {
  return Context().ResourceOrConfig("widget", ".Widget", kind);
}

HRESULT KEPRshParameterDialog::GetUnit(KEPICkeUnit*& unit) {
  return Context().Unit(unit);
}

HRESULT KEPRshParameterDialog::GetUnitName(KEPString& unit) {
  return Context().Config(".Unit", unit);
}

HRESULT KEPRshParameterDialog::GetSortingOrder(KEPString& order) {
  return Context().Config(".SortingOrder", order);
}

HRESULT KEPRshParameterDialog::GetConnectableState(KEPString& state) {
  return Context().ConnectableState(GetExtendedObject(), state);
}

HRESULT KEPRshParameterDialog::GetLayerGroupName(KEPString& name) {
  return Context().Config(".LayerGroupName", name);
}

// --- Widget choice

HRESULT KEPRshParameterDialog::ChooseWidgetKind(KEPString& kind) {
  KEPString chosen;
  if (FAILED(GetWidget(chosen))) chosen = DefaultWidgetKind();
  kind = std::move(chosen);
  return S_OK;
}

HRESULT KEPRshParameterDialog::GetDefaultWidgetKind(KEPString& kind) {
  kind = DefaultWidgetKind();
  return S_OK;
}

HRESULT KEPRshParameterDialog::GetWidgetKinds(std::vector<KEPString>& kinds) {
  kinds = WidgetKinds();
  return S_OK;
}
