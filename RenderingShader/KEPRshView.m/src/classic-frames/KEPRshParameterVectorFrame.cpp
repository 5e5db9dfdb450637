#include "KEPRshParameterVectorFrame.h"

#include "KEPDlgLabel.h"
#include "KEPDlgSpinner.h"
#include "KEPIRshParameterDialog.h"
#include "KEPRbaScalarSlider.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshFrameUnits.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS(KEPRshParameterVectorFrame, KEPRshParameterFrame, "RenderingShader")

namespace {
constexpr int kSpinnerStyle = 0x60000;
constexpr int kSliderStyle = 0xa0000;
constexpr const char* kComponentNames[4] = {"X", "Y", "Z", "W"};

/// The number of sliders a kind asks for, 0 for the spinner layout.
int SliderCount(const KEPString& widget) {
  if (widget == "sliderx2") return 2;
  if (widget == "sliderx3") return 3;
  if (widget == "sliderx4") return 4;
  return 0;
}

KEPDlgLabel* MakeLabel(KEPDialog* father, const char* name, const KEPUnicodeString& title, int row,
                       int column) {
  auto* label = new KEPDlgLabel(father, name);
  label->SetTitle(title);
  label->SetGridConstraints(row, column, 1, 1, KEPDlgGridAll);
  return label;
}
}  // namespace

KEPRshParameterVectorFrame::KEPRshParameterVectorFrame(KEPDialog* parent,
                                                       KEPIRshParameter* parameter,
                                                       const KEPString& name, int style)
    : KEPRshParameterFrame(parent, parameter, name, style) {
  if (!parameter) return;
  if (const KEP_var<KEPIRshParameterDialog> behaviour =
          KEPQueryVar<KEPIRshParameterDialog>(parameter))
    behaviour->GetWidget(widget_);
  widget_ = KEPToLower(widget_);
  const int count = SliderCount(widget_);
  if (count > 0)
    BuildSliders(parameter, count);
  else
    BuildSpinners(parameter);
}

KEPRshParameterVectorFrame::~KEPRshParameterVectorFrame() {
  KEPModuleTrace::Trace(2,
                        "(KEPRshParameterVectorFrame::~KEPRshParameterVectorFrame) Destructor\n");
  KEPModuleTrace::Trace(2, "(KEPRshParameterVectorFrame::~KEPRshParameterVectorFrame) Done\n");
}

KEPDlgSpinner* KEPRshParameterVectorFrame::GetSpinner(int component) const {
  switch (component) {
    case 0:
      return xSpinner_;
    case 1:
      return ySpinner_;
    case 2:
      return zSpinner_;
    default:
      return nullptr;
  }
}

KEPRbaScalarSlider* KEPRshParameterVectorFrame::GetSlider(int component) const {
  if (component < 0 || component >= sliderCount_) return nullptr;
  return sliders_[static_cast<std::size_t>(component)];
}

void KEPRshParameterVectorFrame::BuildSpinners(KEPIRshParameter* parameter) {
  float minimum = -100000.0f, maximum = 100000.0f, step = 1.0f;
  if (const KEP_var<KEPIRshParameterDialog> behaviour =
          KEPQueryVar<KEPIRshParameterDialog>(parameter))
    behaviour->GetTypedRange(minimum, maximum, step);
  const auto makeSpinner = [&](const char* name, int column) {
    auto* spinner = new KEPDlgSpinner(this, name, kSpinnerStyle);
    spinner->SetGridConstraints(0, column, 1, 1, KEPDlgGridAll);
    spinner->SetMinMaxStep(minimum, maximum, step, 0);
    spinner->SetFormat("%.4f");
    spinner->SetVisibleTextWidth(4);
    AddCallback(spinner, spinner->GetSpinnerModifyNotification(), this,
                &KEPRshParameterVectorFrame::ParameterModifiedCB);
    return spinner;
  };
  // The Y and Z titles begin with a space: it separates them from the spinner before.
  MakeLabel(this, "xLabel", KEPUnicodeString::FromUTF8("X"), 0, 0);
  xSpinner_ = makeSpinner("xSpinner", 1);
  MakeLabel(this, "yLabel", KEPUnicodeString::FromUTF8(" Y"), 0, 2);
  ySpinner_ = makeSpinner("ySpinner", 3);
  if (widget_ != "vector2d") {
    MakeLabel(this, "zLabel", KEPUnicodeString::FromUTF8(" Z"), 0, 4);
    zSpinner_ = makeSpinner("zSpinner", 5);
  }
  float xyzw[4] = {0.0f, 0.0f, 0.0f, 0.0f};
  if (FAILED(parameter->GetVectorValue(xyzw))) return;
  xSpinner_->SetValue(xyzw[0]);
  ySpinner_->SetValue(xyzw[1]);
  if (zSpinner_) zSpinner_->SetValue(xyzw[2]);
}

void KEPRshParameterVectorFrame::BuildSliders(KEPIRshParameter* parameter, int count) {
  const KEP_var<KEPIRshParameterDialog> behaviour = KEPQueryVar<KEPIRshParameterDialog>(parameter);
  float minimum = 0.0f, maximum = 1.0f, step = 0.01f;
  if (behaviour) behaviour->GetTypedRange(minimum, maximum, step);
  float xyzw[4] = {0.0f, 0.0f, 0.0f, 0.0f};
  const bool hasValue = SUCCEEDED(parameter->GetVectorValue(xyzw));
  KEPString unitName;
  if (behaviour) behaviour->GetUnitName(unitName);
  const KEPRshFrameUnit unit = KEPRshFrameUnitOf(unitName, KEPRshFrameControl::Slider);

  sliderCount_ = count;
  factor_ = unit.factor;
  for (int i = 0; i < count; ++i) {
    const auto slot = static_cast<std::size_t>(i);
    auto* slider = new KEPRbaScalarSlider(this, "scalarSlider", 110, 16, kSliderStyle);
    sliders_[slot] = slider;
    AddCallback(slider, slider->GetSliderModifyNotification(), this,
                &KEPRshParameterVectorFrame::ParameterModifiedCB);
    AddCallback(slider, slider->GetSliderDragNotification(), this,
                &KEPRshParameterVectorFrame::ParameterModifiedCB);
    slider->SetRange(minimum, maximum, step);
    slider->SetTrackSettings(1.0, 1.0, 1.0, 100);
    slider->SetFormat("%.2f");
    slider->SetVisibleTextWidth(4);
    if (unit.code != 0) slider->SetUnit(unit.code);
    if (hasValue) slider->SetValue(xyzw[slot] * unit.factor);

    KEPUnicodeString label = KEPUnicodeString::FromUTF8(kComponentNames[slot]);
    if (behaviour) behaviour->GetLabel(i, label);
    subLabels_[slot] = MakeLabel(this, "subLabel", label, i, 1);
    sepLabels_[slot] = MakeLabel(this, "sepLabel", KEPUnicodeString::FromUTF8("-"), i, 2);
    sepLabels_[slot]->SetVisibility(KEPDlgHide);
    slider->SetGridConstraints(i, 3, 1, 1, KEPDlgGridAll);
  }
}

void KEPRshParameterVectorFrame::ShowParameterValue() {
  float xyzw[4] = {0.0f, 0.0f, 0.0f, 0.0f};
  if (FAILED(GetParameter()->GetVectorValue(xyzw))) return;
  for (int i = 0; i < sliderCount_; ++i) {
    const auto slot = static_cast<std::size_t>(i);
    sliders_[slot]->SetValue(xyzw[slot] * factor_);
  }
  if (xSpinner_) xSpinner_->SetValue(xyzw[0]);
  if (ySpinner_) ySpinner_->SetValue(xyzw[1]);
  if (zSpinner_) zSpinner_->SetValue(xyzw[2]);
}

void KEPRshParameterVectorFrame::ParameterModifiedCB(KEPDialog*, KEPNotification*,
                                                     KEPDlgClientData) {
  TraceCallback("KEPRshParameterVectorFrame::ParameterModifiedCB");
  KEPIRshParameter* parameter = GetParameter();
  if (!parameter || IsShowingValue()) return;
  float xyzw[4] = {0.0f, 0.0f, 0.0f, 0.0f};
  if (sliderCount_ > 0) {
    for (int i = 0; i < sliderCount_; ++i) {
      const auto slot = static_cast<std::size_t>(i);
      xyzw[slot] = static_cast<float>(sliders_[slot]->GetValue());
    }
  } else {
    if (xSpinner_) xyzw[0] = static_cast<float>(xSpinner_->GetValue());
    if (ySpinner_) xyzw[1] = static_cast<float>(ySpinner_->GetValue());
    if (zSpinner_) xyzw[2] = static_cast<float>(zSpinner_->GetValue());
  }
  const OwnWrite own(*this);
  const KEPRdgRenderLock lock;
  parameter->SetVectorValue(xyzw);
}
