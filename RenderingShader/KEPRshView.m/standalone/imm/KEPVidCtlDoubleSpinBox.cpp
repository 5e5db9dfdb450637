#include "KEPVidCtlDoubleSpinBox.h"

#include <cmath>

#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPVidCtlDoubleSpinBox, KEPVidCtl, "System")

namespace {
// `value` brought inside [minimum, maximum]; an empty range (minimum > maximum) gives minimum.
double Clamp(double value, double minimum, double maximum) {
  if (value > maximum) value = maximum;
  if (value < minimum) value = minimum;
  return value;
}
}  // namespace

KEPVidCtlDoubleSpinBox::KEPVidCtlDoubleSpinBox(KEPVidWidget* father, const KEPString& name)
    : KEPVidCtl(father, name) {}

KEPVidCtlDoubleSpinBox::~KEPVidCtlDoubleSpinBox() = default;

void KEPVidCtlDoubleSpinBox::SetRange(double minimum, double maximum) {
  // A bound that is not a number would let any value through; such a range is ignored.
  if (std::isnan(minimum) || std::isnan(maximum)) return;
  minimum_ = minimum;
  maximum_ = maximum;
  SetValue(value_);
}

void KEPVidCtlDoubleSpinBox::SetValue(double value) {
  if (std::isnan(value)) return;
  value = Clamp(value, minimum_, maximum_);
  if (value == value_) return;
  value_ = value;
  Raise(KEPVidEvent::ValueChanged);
}

void KEPVidCtlDoubleSpinBox::DescribeState(KEPVidStateWriter& writer) const {
  KEPVidCtl::DescribeState(writer);
  writer.Double("minimum", minimum_);
  writer.Double("maximum", maximum_);
  writer.Double("singleStep", step_);
  writer.Double("value", value_);
  writer.Int("decimals", decimals_);
  writer.Text("suffix", suffix_.ToUTF8());
  writer.Int("maximumTextLength", textLength_);
  writer.Int("correctionMode", correction_);
}

HRESULT KEPVidCtlDoubleSpinBox::InjectUserEvent(KEPVidAction action, std::string_view argument,
                                                std::string& error) {
  if (action != KEPVidAction::Set) return KEPVidRefuseAction(this, action, error);
  if (!KEPVidCheckReachable(this, action, error)) return E_INVALIDARG;
  double value = 0.0;
  std::string problem;
  if (!KEPVidReadDouble(argument, value, problem)) return KEPVidRefuse(this, problem, error);
  // Typed text outside the range is corrected: to the nearer end, or back to what was there.
  if (value < minimum_ || value > maximum_) {
    if (correction_ != KEPVidCorrection_Nearest) return S_OK;
  }
  SetValue(value);
  return S_OK;
}
