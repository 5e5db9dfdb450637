#include "KEPVidCtlSpinBox.h"

#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPVidCtlSpinBox, KEPVidCtl, "System")

KEPVidCtlSpinBox::KEPVidCtlSpinBox(KEPVidWidget* father, const KEPString& name)
    : KEPVidCtl(father, name) {}

KEPVidCtlSpinBox::~KEPVidCtlSpinBox() = default;

void KEPVidCtlSpinBox::SetRange(int minimum, int maximum) {
  minimum_ = minimum;
  maximum_ = maximum;
  SetValue(value_);
}

void KEPVidCtlSpinBox::SetValue(int value) {
  value = KEPVidClampInt(value, minimum_, maximum_);
  if (value == value_) return;
  value_ = value;
  Raise(KEPVidEvent::ValueChanged);
}

void KEPVidCtlSpinBox::DescribeState(KEPVidStateWriter& writer) const {
  KEPVidCtl::DescribeState(writer);
  writer.Int("minimum", minimum_);
  writer.Int("maximum", maximum_);
  writer.Int("singleStep", step_);
  writer.Int("value", value_);
  writer.Text("suffix", suffix_.ToUTF8());
  writer.Int("maximumTextLength", textLength_);
  writer.Int("correctionMode", correction_);
}

HRESULT KEPVidCtlSpinBox::InjectUserEvent(KEPVidAction action, std::string_view argument,
                                          std::string& error) {
  if (action != KEPVidAction::Set) return KEPVidRefuseAction(this, action, error);
  if (!KEPVidCheckReachable(this, action, error)) return E_INVALIDARG;
  int value = 0;
  std::string problem;
  if (!KEPVidReadInt(argument, value, problem)) return KEPVidRefuse(this, problem, error);
  // Typed text outside the range is corrected: to the nearer end, or back to what was there.
  if (value < minimum_ || value > maximum_) {
    if (correction_ != KEPVidCorrection_Nearest) return S_OK;
  }
  SetValue(value);
  return S_OK;
}
