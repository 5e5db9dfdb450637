#include "KEPDlgSpinner.h"

#include <algorithm>
#include <cmath>

#include "KEPDlgValueText.h"
#include "KEPTrace.h"
#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPDlgSpinner, KEPDialog, "System")

KEPDlgSpinner::KEPDlgSpinner(KEPDialog* father, const KEPString& name, int style)
    : KEPDialog(father, name, style), modify_(new KEPDlgSpinnerModifyNotification()) {}

KEPDlgSpinner::~KEPDlgSpinner() {
  modify_->Release();
}

double KEPDlgSpinner::Kept(double value) const {
  return IsDoubleMode() ? value : static_cast<double>(static_cast<float>(value));
}

bool KEPDlgSpinner::Store(double value) {
  // An empty range (minimum above maximum) holds its minimum.
  value = Kept(std::max(std::min(value, maximum_), minimum_));
  if (value == value_) return false;
  value_ = value;
  return true;
}

void KEPDlgSpinner::SetRange(float minimum, float maximum, int steps, int notify) {
  if (!KEPDlgCheckFinite(minimum, "KEPDlgSpinner", "range minimum") ||
      !KEPDlgCheckFinite(maximum, "KEPDlgSpinner", "range maximum"))
    return;
  steps_ = std::max(steps, 1);
  minimum_ = Kept(minimum);
  maximum_ = Kept(maximum);
  step_ = (maximum_ - minimum_) / steps_;
  if (Store(value_) && notify) Notify(modify_);
}

void KEPDlgSpinner::GetRange(float& minimum, float& maximum, int& steps) const {
  minimum = static_cast<float>(minimum_);
  maximum = static_cast<float>(maximum_);
  steps = steps_;
}

void KEPDlgSpinner::SetMinMaxStep(double minimum, double maximum, double step, int notify) {
  if (!KEPDlgCheckFinite(minimum, "KEPDlgSpinner", "range minimum") ||
      !KEPDlgCheckFinite(maximum, "KEPDlgSpinner", "range maximum"))
    return;
  minimum_ = Kept(minimum);
  maximum_ = Kept(maximum);
  if (std::isfinite(step) && step > 0.0) step_ = Kept(step);
  // The number of steps the range holds, for the float interface.
  const double steps = step_ > 0.0 ? std::round((maximum_ - minimum_) / step_) : 1.0;
  steps_ = steps >= 1.0 && steps < 2.0e9 ? static_cast<int>(steps) : 1;
  if (Store(value_) && notify) Notify(modify_);
}

void KEPDlgSpinner::GetMinMaxStep(double& minimum, double& maximum, double& step) const {
  minimum = minimum_;
  maximum = maximum_;
  step = step_;
}

void KEPDlgSpinner::SetCurrentValue(float value, int notify) {
  SetValue(static_cast<double>(value), notify);
}

void KEPDlgSpinner::SetValue(double value, int notify) {
  if (!KEPDlgCheckFinite(value, "KEPDlgSpinner", "value")) return;
  if (Store(value) && notify) Notify(modify_);
}

void KEPDlgSpinner::SetPrecision(int decimals, unsigned char trimZeros) {
  precision_ = decimals;
  trimZeros_ = trimZeros;
}

void KEPDlgSpinner::SetFormat(const char* format) {
  const std::string text = format ? format : "";
  if (!text.empty() && !KEPDlgIsNumberFormat(text)) {
    KEPTrace("KEPDlgSpinner")
        .Warning("{ widget = %s, refused format = %s }", GetName().c_str(), text.c_str());
    return;
  }
  format_ = text;
}

std::string KEPDlgSpinner::GetValueText() const {
  return KEPDlgValueText(value_, unit_, format_, precision_, trimZeros_ != 0);
}

void KEPDlgSpinner::DescribeState(KEPVidStateWriter& writer) const {
  KEPDialog::DescribeState(writer);
  writer.Bool("doubleMode", IsDoubleMode());
  writer.Double("minimum", minimum_);
  writer.Double("maximum", maximum_);
  writer.Double("step", step_);
  writer.Double("value", value_);
  writer.Text("text", GetValueText());
  writer.Int("unit", unit_);
  writer.Double("shownPerHeld", KEPDlgToShown(unit_, 1.0));
  writer.Text("format", format_);
  writer.Int("precision", precision_);
  writer.Int("visibleTextWidth", textWidth_);
  if (!magnitude_.empty()) writer.Text("magnitude", magnitude_);
}

HRESULT KEPDlgSpinner::InjectUserEvent(KEPVidAction action, std::string_view argument,
                                       std::string& error) {
  if (action != KEPVidAction::Set) return KEPVidRefuseAction(this, action, error);
  if (!KEPVidCheckReachable(this, action, error)) return E_INVALIDARG;
  double shown = 0.0;
  std::string problem;
  if (!KEPVidReadDouble(argument, shown, problem)) return KEPVidRefuse(this, problem, error);
  const double value = KEPDlgFromShown(unit_, shown);
  if (!std::isfinite(value))
    return KEPVidRefuse(this, KEPVidQuote(argument) + " is too large", error);
  Store(value);
  Notify(modify_);
  return S_OK;
}
