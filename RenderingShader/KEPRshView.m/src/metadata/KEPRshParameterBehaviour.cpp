#include "KEPRshParameterBehaviour.h"

template <class Interface>
KEPRshParameterBehaviour<Interface>::~KEPRshParameterBehaviour() {
  context_.ReleaseResources();
}

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::ChangeComponentState(int from, int to,
                                                                  const void* context) {
  if (from < KEPComponentState_Deleted && to == KEPComponentState_Deleted)
    context_.ReleaseResources();
  return KEPBaseUnknown::ChangeComponentState(from, to, context);
}

template <class Interface>
const KEPRshParameterContext& KEPRshParameterBehaviour<Interface>::Context() {
  context_.Resolve(GetExtendedObject());
  return context_;
}

template <class Interface>
const KEPString& KEPRshParameterBehaviour<Interface>::GetConfigurationId() {
  return Context().ConfigurationId();
}

template <class Interface>
const KEPString& KEPRshParameterBehaviour<Interface>::GetParameterName() {
  return Context().ParameterName();
}

// --- Texts

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::GetDescription(KEPUnicodeString& description) {
  return Context().Config(".Description", description);
}

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::GetGroup(KEPUnicodeString& group) {
  return Context().Config(".Group", group);
}

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::GetDefault(KEPString& value) {
  return Context().ResourceOrConfig("default", ".Default", value);
}

// --- Typed defaults

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::GetTypedDefault(bool&) {
  return E_FAIL;
}
template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::GetTypedDefault(int&) {
  return E_FAIL;
}
template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::GetTypedDefault(float&) {
  return E_FAIL;
}
template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::GetTypedDefault(float (&)[4]) {
  return E_FAIL;
}

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::ReadBooleanDefault(bool& value) {
  KEPString text;
  if (FAILED(GetDefault(text))) {
    // No default configured at all: a boolean is on.
    value = true;
    return S_OK;
  }
  return KEPRshParameterContext::ParseBoolean(text, value) ? S_OK : E_FAIL;
}

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::ReadIntegerDefault(int& value) {
  KEPString text;
  if (FAILED(GetDefault(text))) return E_FAIL;
  return KEPRshParameterContext::ParseInt(text, value) ? S_OK : E_FAIL;
}

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::ReadScalarDefault(float& value) {
  KEPString text;
  double number = 0.0;
  if (FAILED(GetDefault(text)) || !KEPRshParameterContext::ParseDouble(text, number)) return E_FAIL;
  value = static_cast<float>(number);
  return S_OK;
}

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::ReadFourFloatDefault(float (&value)[4]) {
  KEPString text;
  if (FAILED(GetDefault(text))) return E_FAIL;
  return KEPRshParameterContext::ParseFourFloats(text, value) ? S_OK : E_FAIL;
}

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::ReadIntegerRange(int& min, int& max, int& step) {
  KEPString minText, maxText, stepText;
  // The base's own range: the immersive one falls back to the hard keys, the classic one not.
  if (FAILED(this->GetRange(minText, maxText, stepText))) return E_FAIL;
  return KEPRshParameterContext::ParseIntRange(minText, maxText, stepText, min, max, step) ? S_OK
                                                                                           : E_FAIL;
}

// --- Enumeration labels and component labels

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::GetEnumLabel(int index, KEPUnicodeString& label) {
  return Context().ResourceOrConfig(KEPRshParameterContext::Indexed("enum", index),
                                    KEPRshParameterContext::Indexed(".Enum", index), label);
}

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::GetLabel(int index, KEPUnicodeString& label) {
  return Context().ResourceOrConfig(KEPRshParameterContext::Indexed("label", index),
                                    KEPRshParameterContext::Indexed(".Label", index), label);
}

// --- Widget, unit and the rest

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::GetWidget(KEPString& kind) {
  return Context().ResourceOrConfig("widget", ".Widget", kind);
}

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::GetUnit(KEPICkeUnit*& unit) {
  return Context().Unit(unit);
}

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::GetUnitName(KEPString& unit) {
  return Context().Config(".Unit", unit);
}

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::GetSortingOrder(KEPString& order) {
  return Context().Config(".SortingOrder", order);
}

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::GetConnectableState(KEPString& state) {
  return Context().ConnectableState(GetExtendedObject(), state);
}

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::GetLayerGroupName(KEPString& name) {
  return Context().Config(".LayerGroupName", name);
}

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::GetDefaultWidgetKind(KEPString& kind) {
  kind = DefaultWidgetKind();
  return S_OK;
}

template <class Interface>
HRESULT KEPRshParameterBehaviour<Interface>::GetWidgetKinds(std::vector<KEPString>& kinds) {
  kinds = WidgetKinds();
  return S_OK;
}

template class KEPRshParameterBehaviour<KEPIRshParameterDialog>;
template class KEPRshParameterBehaviour<KEPIRshParameterImmLayout>;
