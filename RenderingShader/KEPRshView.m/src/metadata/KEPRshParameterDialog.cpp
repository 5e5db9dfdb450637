#include "KEPRshParameterDialog.h"

#include "KEPIRshParameter.h"
#include "KEP_var.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterDialog, KEPBaseUnknown, "KEPNull", "RenderingShader",
                       KEPClassKind_Implementation, "")

KEPRshParameterDialog::~KEPRshParameterDialog() = default;

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
  return ReadIntegerRange(min, max, step);
}

// --- Enumeration: the integer type's

HRESULT KEPRshParameterDialog::GetEnumValue(int, int&) {
  return E_NOTIMPL;
}

HRESULT KEPRshParameterDialog::GetEnumIndex(int, int&) {
  return E_NOTIMPL;
}

// --- Widget choice

HRESULT KEPRshParameterDialog::ChooseWidgetKind(KEPString& kind) {
  KEPString chosen;
  if (FAILED(GetWidget(chosen))) chosen = DefaultWidgetKind();
  kind = std::move(chosen);
  return S_OK;
}

// --- Frame

HRESULT KEPRshParameterDialog::BuildFrame(KEPDialog* parent, const KEPString& name,
                                          KEPDialog** frame) {
  if (!parent || !frame) return E_FAIL;
  const KEP_var<KEPIRshParameter> parameter = KEPQueryVar<KEPIRshParameter>(GetExtendedObject());
  if (!parameter) return E_FAIL;
  KEPDialog* built = CreateFrame(parameter.Get(), parent, name, kFrameStyle);
  if (!built) return E_FAIL;
  *frame = built;
  return S_OK;  // the temporary reference to the parameter goes with `parameter`
}

KEPDialog* KEPRshParameterDialog::CreateFrame(KEPIRshParameter*, KEPDialog*, const KEPString&,
                                              int) {
  return nullptr;
}
