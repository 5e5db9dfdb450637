#include "KEPRshParameterScalarFrame.h"

#include "KEPDlgSpinner.h"
#include "KEPIRshParameterDialog.h"
#include "KEPIRshShaderSupport.h"
#include "KEPISpecObject.h"
#include "KEPRbaScalarSlider.h"
#include "KEPRbaScalarWheel.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshFrameUnits.h"
#include "KEPRshModelEvents.h"
#include "KEPRshScalarBlackbodySlider.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS(KEPRshParameterScalarFrame, KEPRshParameterFrame, "RenderingShader")

namespace {
constexpr const char* kSourcePath = "RenderingShader/KEPRshView.m/src/KEPRshParameterScalarFrame";
constexpr int kSliderWidth = 110;
constexpr int kSliderHeight = 16;
constexpr int kSliderStyle = 0xa0000;
constexpr int kWheelStyle = 0x8a0000;
constexpr int kSpinnerStyle = 0x60000;
constexpr int kFloatAttribute = 2;

/// The father of `object` through KEPISpecObject, with a reference; null when there is none.
template <class Object>
KEP_var<KEPBaseUnknown> FatherOf(Object* object) {
  const KEP_var<KEPISpecObject> specObject = KEPQueryVar<KEPISpecObject>(object);
  KEPBaseUnknown* father = nullptr;
  if (!specObject || FAILED(specObject->GetFather(father))) return {};
  return KEP_var<KEPBaseUnknown>::Adopt(father);
}
}  // namespace

KEPRshParameterScalarFrame::KEPRshParameterScalarFrame(KEPDialog* parent,
                                                       KEPIRshParameter* parameter,
                                                       const KEPString& name, int style)
    : KEPRshParameterFrame(parent, parameter, name, style) {
  if (parameter) Build(parameter);
}

KEPRshParameterScalarFrame::~KEPRshParameterScalarFrame() {
  KEPModuleTrace::Trace(2,
                        "(KEPRshParameterScalarFrame::~KEPRshParameterScalarFrame) Destructor\n");
  KEPModuleTrace::Trace(2, "(KEPRshParameterScalarFrame::~KEPRshParameterScalarFrame) Done\n");
}

void KEPRshParameterScalarFrame::Build(KEPIRshParameter* parameter) {
  const KEP_var<KEPIRshParameterDialog> behaviour = KEPQueryVar<KEPIRshParameterDialog>(parameter);
  KEPString widget;
  if (behaviour) behaviour->GetWidget(widget);
  widget = KEPToLower(widget);

  const KEP_var<KEPISpecObject> feature = KEPQueryVar<KEPISpecObject>(parameter);
  KEP_ASSERT(feature, "hFeature && \"KEPISpecObject not available\"", kSourcePath);
  if (!feature) return;
  if (const KEP_var<KEPBaseUnknown> shader = FatherOf(parameter))
    ownerFeature_.Set(FatherOf(shader.Get()).Get());

  KEPString unitName;
  if (behaviour) behaviour->GetUnitName(unitName);
  const auto readRange = [&behaviour](float minimum, float maximum, float step) {
    struct {
      float minimum, maximum, step;
    } range{minimum, maximum, step};
    if (behaviour) behaviour->GetTypedRange(range.minimum, range.maximum, range.step);
    return range;
  };
  float value = 0.0f;
  const bool hasValue = SUCCEEDED(parameter->GetScalarValue(value));

  if (widget == "slider") {
    slider_ =
        new KEPRbaScalarSlider(this, "scalarSlider", kSliderWidth, kSliderHeight, kSliderStyle);
    AddCallback(slider_, slider_->GetSliderModifyNotification(), this,
                &KEPRshParameterScalarFrame::ParameterModifiedCB);
    AddCallback(slider_, slider_->GetSliderDragNotification(), this,
                &KEPRshParameterScalarFrame::ParameterModifiedCB);
    const KEPRshFrameUnit unit = KEPRshFrameUnitOf(unitName, KEPRshFrameControl::Slider);
    if (unit.code != 0) slider_->SetUnit(unit.code);
    const auto range = readRange(0.0f, 1.0f, 0.01f);
    slider_->SetRange(range.minimum * unit.factor, range.maximum * unit.factor,
                      range.step * unit.factor);
    slider_->SetFormat("%.2f");
    slider_->SetVisibleTextWidth(4);
    slider_->SetTrackSettings(1.0, 1.0, 1.0, 100);
    factor_ = unit.factor;
    if (hasValue) slider_->SetValue(value * unit.factor);
  } else if (widget == "blackbody") {
    blackbodySlider_ = new KEPRshScalarBlackbodySlider(this, "scalarBlackbodySlider", kSliderWidth,
                                                       kSliderHeight, kSliderStyle);
    // Kelvins only: a length unit means nothing to a colour temperature.
    if (KEPToLower(unitName) == "k") blackbodySlider_->SetUnit(KEPDlgUnitKelvin);
    const auto range = readRange(0.0f, 1.0f, 0.01f);
    blackbodySlider_->SetMinMaxStep(range.minimum, range.maximum, range.step);
    blackbodySlider_->SetFormat("%.2f");
    blackbodySlider_->SetVisibleTextWidth(6);
    if (hasValue) blackbodySlider_->SetValue(value);
    blackbodySlider_->SetSliderBackgroundGradient();
    // Hooked last: the control's range set-up notifies when it moves the value, and building the
    // frame must not write into the parameter.
    AddCallback(blackbodySlider_, blackbodySlider_->GetSliderModifyNotification(), this,
                &KEPRshParameterScalarFrame::ParameterModifiedCB);
    AddCallback(blackbodySlider_, blackbodySlider_->GetSliderDragNotification(), this,
                &KEPRshParameterScalarFrame::ParameterModifiedCB);
  } else if (widget == "wheel") {
    wheel_ = new KEPRbaScalarWheel(this, "scalarWheel", kSliderWidth, kSliderHeight, kWheelStyle);
    AddCallback(wheel_, wheel_->GetSliderModifyNotification(), this,
                &KEPRshParameterScalarFrame::ParameterModifiedCB);
    AddCallback(wheel_, wheel_->GetSliderDragNotification(), this,
                &KEPRshParameterScalarFrame::ParameterModifiedCB);
    const KEPRshFrameUnit unit = KEPRshFrameUnitOf(unitName, KEPRshFrameControl::WheelOrSpinner);
    if (unit.code != 0) wheel_->SetUnit(unit.code);
    if (unit.code == KEPDlgUnitKelvin) wheel_->SetCustomUnitSymbol(unitName);
    const auto range = readRange(-1000000.0f, 1000000.0f, 1.0f);
    wheel_->SetRange(range.minimum * unit.factor, range.maximum * unit.factor,
                     range.step * unit.factor);
    wheel_->SetPrecision(4);
    wheel_->SetVisibleTextWidth(4);
    factor_ = unit.factor;
    if (hasValue) wheel_->SetValue(value * unit.factor);
  } else {
    spinner_ = new KEPDlgSpinner(this, "scalarSpinner", kSpinnerStyle);
    AddCallback(spinner_, spinner_->GetSpinnerModifyNotification(), this,
                &KEPRshParameterScalarFrame::ParameterModifiedCB);
    const KEPRshFrameUnit unit = KEPRshFrameUnitOf(unitName, KEPRshFrameControl::WheelOrSpinner);
    if (unit.code != 0) spinner_->SetUnit(unit.code);
    const auto range = readRange(-1000000.0f, 1000000.0f, 1.0f);
    spinner_->SetMinMaxStep(range.minimum * unit.factor, range.maximum * unit.factor,
                            range.step * unit.factor);
    spinner_->SetFormat("%.2f");
    spinner_->SetVisibleTextWidth(4);
    factor_ = unit.factor;
    if (hasValue) spinner_->SetValue(value * unit.factor);
  }
}

void KEPRshParameterScalarFrame::ShowParameterValue() {
  float value = 0.0f;
  if (FAILED(GetParameter()->GetScalarValue(value))) return;
  if (slider_) slider_->SetValue(value * factor_);
  if (blackbodySlider_) blackbodySlider_->SetValue(value);
  if (wheel_) wheel_->SetValue(value * factor_);
  if (spinner_) spinner_->SetValue(value * factor_);
}

void KEPRshParameterScalarFrame::ParameterModifiedCB(KEPDialog*, KEPNotification*,
                                                     KEPDlgClientData) {
  TraceCallback("KEPRshParameterScalarFrame::ParameterModifiedCB");
  KEPIRshParameter* parameter = GetParameter();
  if (!parameter || IsShowingValue()) return;
  float value = 0.0f;
  int unit = KEPDlgUnitNone;
  if (slider_) {
    value = static_cast<float>(slider_->GetValue());
    unit = slider_->GetUnit();
  } else if (blackbodySlider_) {
    value = static_cast<float>(blackbodySlider_->GetValue());
    unit = blackbodySlider_->GetUnit();
  } else if (wheel_) {
    value = static_cast<float>(wheel_->GetValue());
    unit = wheel_->GetUnit();
  } else if (spinner_) {
    value = static_cast<float>(spinner_->GetValue());
    unit = spinner_->GetUnit();
  } else {
    return;
  }
  value = static_cast<float>(value * KEPRshFrameUnitOutFactor(unit));
  HRESULT written = E_FAIL;
  {
    const OwnWrite own(*this);
    const KEPRdgRenderLock lock;
    written = parameter->SetScalarValue(value);
  }
  if (written == S_OK) SendModifyNotification();
}

void KEPRshParameterScalarFrame::SendModifyNotification() const {
  // Held for the time of the dispatch: an observer may let the owner go.
  const KEP_var<KEPBaseUnknown> owner(ownerFeature_.Get());
  if (!owner) return;
  const KEP_var<KEPIRshShaderSupport> support = KEPQueryVar<KEPIRshShaderSupport>(owner.Get());
  KEPRbaFloatShaderModifyNotification notification;
  notification.feature = owner.Get();
  notification.support = support.Get();
  notification.attributeKind = kFloatAttribute;
  KEPRshModelEvents::SendFloatShaderModify(notification);
}
