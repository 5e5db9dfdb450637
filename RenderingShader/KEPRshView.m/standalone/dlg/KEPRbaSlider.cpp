#include "KEPRbaSlider.h"

#include <algorithm>
#include <cmath>

#include "KEP2DRep.h"
#include "KEPDlgValueText.h"
#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPRbaSlider, KEPDialog, "System")

namespace {
constexpr int kBorder = 2;  ///< pixels around the background area

int Channel(float value) {
  if (!(value > 0.0f)) return 0;  // NaN counts as 0
  if (value >= 1.0f) return 255;
  return static_cast<int>(std::lround(value * 255.0f));
}
}  // namespace

KEPRbaSlider::KEPRbaSlider(KEPDialog* father, const KEPString& name, const int& width,
                           const int& height, int style)
    : KEPDialog(father, name, style),
      drag_(new KEPDlgSliderDragNotification()),
      modify_(new KEPDlgSliderModifyNotification()),
      width_(width),
      height_(height) {
  SetMinimumSize(width, height);
}

KEPRbaSlider::~KEPRbaSlider() {
  if (rep_) rep_->Release();
  modify_->Release();
  drag_->Release();
}

bool KEPRbaSlider::Store(double value) {
  value = std::max(std::min(value, maximum_), minimum_);
  // Without the double style bit a slider keeps single precision, as a float spinner does.
  if ((GetStyle() & KEPDlgStyleDouble) == 0) value = static_cast<double>(static_cast<float>(value));
  if (value == value_) return false;
  value_ = value;
  return true;
}

void KEPRbaSlider::SetRange(double minimum, double maximum, double step) {
  if (!KEPDlgCheckFinite(minimum, "KEPRbaSlider", "range minimum") ||
      !KEPDlgCheckFinite(maximum, "KEPRbaSlider", "range maximum"))
    return;
  minimum_ = minimum;
  maximum_ = maximum;
  if (std::isfinite(step) && step > 0.0) step_ = step;
  Store(value_);
}

void KEPRbaSlider::GetRange(double& minimum, double& maximum, double& step) const {
  minimum = minimum_;
  maximum = maximum_;
  step = step_;
}

void KEPRbaSlider::SetValue(double value, int notify) {
  if (!KEPDlgCheckFinite(value, "KEPRbaSlider", "value")) return;
  if (Store(value) && notify) Notify(modify_);
}

void KEPRbaSlider::SetBackgroundColor(float red, float green, float blue) {
  KEPDialog::SetBackgroundColor(KEPVidColor{Channel(red), Channel(green), Channel(blue), 255});
}

void KEPRbaSlider::SetBackgroundRep(KEP2DRep* rep, int owned) {
  if (rep && !owned) rep->AddRef();
  // Released after the new one is taken: setting the same representation again keeps it.
  KEP2DRep* previous = rep_;
  rep_ = rep;
  owned_ = rep && owned;
  if (previous) previous->Release();
}

void KEPRbaSlider::GetBackgroundAreaSize(int& width, int& height) const {
  width = std::max(width_ - 2 * kBorder, 1);
  height = std::max(height_ - 2 * kBorder, 1);
}

std::string KEPRbaSlider::GetValueText() const {
  return KEPDlgFormatNumber(value_, std::string(), -1, false);
}

void KEPRbaSlider::DescribeState(KEPVidStateWriter& writer) const {
  KEPDialog::DescribeState(writer);
  writer.Double("minimum", minimum_);
  writer.Double("maximum", maximum_);
  writer.Double("step", step_);
  writer.Double("value", value_);
  writer.Text("text", GetValueText());
  const int size[] = {width_, height_};
  writer.IntList("size", size);
  if (rep_) {
    writer.Text("backgroundRep", rep_->GetMetaObject()->Name());
    writer.Bool("ownsBackgroundRep", owned_);
    rep_->DescribeState(writer);
  }
}

HRESULT KEPRbaSlider::InjectUserEvent(KEPVidAction action, std::string_view argument,
                                      std::string& error) {
  if (action != KEPVidAction::Set && action != KEPVidAction::Drag)
    return KEPVidRefuseAction(this, action, error);
  if (!KEPVidCheckReachable(this, action, error)) return E_INVALIDARG;
  double shown = 0.0;
  std::string problem;
  if (!KEPVidReadDouble(argument, shown, problem)) return KEPVidRefuse(this, problem, error);
  const double value = FromShown(shown);
  if (!std::isfinite(value))
    return KEPVidRefuse(this, KEPVidQuote(argument) + " is too large", error);
  Store(value);
  Notify(action == KEPVidAction::Drag ? static_cast<KEPNotification*>(drag_)
                                      : static_cast<KEPNotification*>(modify_));
  return S_OK;
}
