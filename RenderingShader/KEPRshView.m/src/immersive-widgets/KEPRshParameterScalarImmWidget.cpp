#include "KEPRshParameterScalarImmWidget.h"

#include <cfloat>
#include <climits>
#include <cmath>
#include <new>
#include <string>

#include "KEPIRshParameterImmLayout.h"
#include "KEPIRshShader.h"
#include "KEPISpecObject.h"
#include "KEPMsgCatalog.h"
#include "KEPParmDictionary.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshFlagScope.h"
#include "KEPRshParameterServices.h"
#include "KEPTolerance.h"
#include "KEPTrace.h"
#include "KEPVidCtlButton.h"
#include "KEPVidCtlDoubleSpinBox.h"
#include "KEPVidCtlEditor.h"
#include "KEPVidCtlSlider.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterScalarImmWidget, KEPRshParameterImmWidget, "KEPNull",
                       "RenderingShader", KEPClassKind_Implementation, "")

namespace {

/// Below this range the slider moves in hundredths of a unit; from it on, in whole units (a
/// hundredth of a larger range would not fit the slider's integers).
constexpr double kFineRangeLimit = 1.0e8;
constexpr float kFineResolution = 100.0f;
/// Lengths arrive in millimetres; their display conversion starts from metres.
constexpr double kMillimetresPerMetre = 1000.0;

const KEPVidColor kSliderBackground{255, 255, 255, 50};
const KEPVidColor kEditorBackground{255, 255, 255, 150};

/// trunc(value) as a slider position; NaN gives 0 and what lies beyond the integers their end.
int TruncateToPosition(float value) {
  if (std::isnan(value)) return 0;
  const double truncated = std::trunc(static_cast<double>(value));
  if (truncated <= static_cast<double>(INT_MIN)) return INT_MIN;
  if (truncated >= static_cast<double>(INT_MAX)) return INT_MAX;
  return static_cast<int>(truncated);
}

/// `value` as a float; a finite value beyond the floats becomes the largest float of its sign.
float Narrow(double value) {
  if (std::isfinite(value) && std::fabs(value) > static_cast<double>(FLT_MAX))
    return value > 0.0 ? FLT_MAX : -FLT_MAX;
  return static_cast<float>(value);
}

KEPVidGridCell Cell(int column) {
  return {0, column, 1, 1, KEPVidAttach_All};
}

}  // namespace

KEPRshParameterScalarImmWidget::KEPRshParameterScalarImmWidget(KEPIRshParameter* parameter,
                                                               KEPVidWidget* parent,
                                                               const KEPString& name)
    : KEPRshParameterImmWidget(parameter, parent, name),
      tolerance_(Narrow(KEPGetDefaultTolerance().GetResolution())),
      life_(std::make_shared<KEPRshParameterScalarImmWidget*>(this)) {
  Build(parameter);
  if (spinner_ || (slider_ && editor_)) {
    observer_ = KEPRshModelEvents::AddParameterObserver(
        [life = life_](KEPIRshParameter* changed, KEPRshParameterChangeKind kind) {
          if (*life) (*life)->OnParameterChanged(changed, kind);
        });
  }
}

KEPRshParameterScalarImmWidget::~KEPRshParameterScalarImmWidget() {
  // A control that someone else still holds outlives this widget; its handlers then find no
  // widget behind them.
  *life_ = nullptr;
  if (observer_) KEPRshModelEvents::RemoveObserver(observer_);
}

// --- Construction

void KEPRshParameterScalarImmWidget::Build(KEPIRshParameter* parameter) {
  grid_ = new (std::nothrow) KEPVidLayGrid(this, "ScalarLayout");
  if (!grid_) return;
  grid_->SetCellSpacing(2, 2);
  grid_->SetColumnWeight(0, 1.0);
  grid_->SetColumnWeight(1, 0.0);
  grid_->SetColumnWeight(2, 0.0);
  grid_->SetGridCell(Cell(0));

  const KEP_var<KEPIRshParameterImmLayout> layout =
      KEPQueryVar<KEPIRshParameterImmLayout>(parameter);
  if (!layout) return;
  // The builder has already traced the kind it resolved; this reads it again, silently, the
  // same way (the configured kind, else the type's default).
  KEPString kind;
  if (FAILED(layout->GetWidget(kind))) layout->GetDefaultWidgetKind(kind);
  kind_ = KEPToLower(kind);
  KEPString unitName;
  layout->GetUnitName(unitName);
  layout->GetMagnitudeName(magnitude_);
  if (FAILED(layout->GetTypedRange(minimum_, maximum_, step_))) return;
  ReadUnits(unitName);

  if (kind_ == "slider" || kind_ == "wheel")
    BuildSliderPair(parameter);
  else if (kind_ != "no-value")
    BuildSpinBox(parameter);
}

void KEPRshParameterScalarImmWidget::ReadUnits(const KEPString& unitName) {
  // Angles are held in radians, the angle magnitude's base unit. Lengths are held in
  // millimetres and converted as metres: divided by 1000, then taken from metres to the display
  // unit.
  KEPICkeMagnitude* magnitude = nullptr;
  KEPICkeUnit* source = nullptr;
  if (magnitude_ == "angle") {
    magnitude = KEPParmDictionary::FindMagnitude(KEPParmDictionary::AngleType);
    source = magnitude ? magnitude->BaseUnit() : nullptr;
  } else if (magnitude_ == "length") {
    magnitude = KEPParmDictionary::FindMagnitude(KEPParmDictionary::LengthType);
    source = KEPParmDictionary::FindUnit(u"m");
    length_ = true;
  }
  KEPICkeUnit* display = magnitude ? magnitude->CurrentUnit() : nullptr;
  if (!display || !source || source->Magnitude() != magnitude) {
    length_ = false;
    return;
  }
  displayUnit_ = display;
  sourceUnit_ = source;
  // The range is configured in the parameter's unit: without one there is nothing to convert.
  if (!unitName.empty()) {
    minimum_ = Narrow(ToDisplay(minimum_));
    maximum_ = Narrow(ToDisplay(maximum_));
    step_ = Narrow(ToDisplay(step_));
  }
  tooltipPrefix_ =
      KEPMsgCatalog::BuildMessage("KEPRshShaderFrame", "UnitTooltip.ShortHelp") + display->Symbol();
}

KEPUnicodeString KEPRshParameterScalarImmWidget::RangeTooltip(const std::string& minimum,
                                                              const std::string& maximum,
                                                              const char* plainLead,
                                                              const char* unitLead) const {
  if (tooltipPrefix_.IsEmpty())
    return KEPUnicodeString::FromUTF8(plainLead + minimum + " to " + maximum);
  return tooltipPrefix_ + KEPUnicodeString::FromUTF8(unitLead + minimum + " to " + maximum + " )");
}

void KEPRshParameterScalarImmWidget::BuildSpinBox(KEPIRshParameter* parameter) {
  auto* spinner = new (std::nothrow) KEPVidCtlDoubleSpinBox(grid_, "scalarSpinner");
  if (!spinner) return;
  spinner_ = spinner;
  spinner->SetBackgroundColor(kSliderBackground);
  spinner->SetLayoutWhenInvisible(false);
  spinner->SetMinimumSize(50, 5);
  spinner->SetRange(minimum_, maximum_);
  spinner->SetSingleStep(step_);
  spinner->SetMaximumTextLength(20);
  if (displayUnit_) spinner->SetSuffix(displayUnit_->Symbol());
  spinner->SetCorrectionMode(KEPVidCorrection_Nearest);
  spinner->SetTooltip(RangeTooltip(KEPFormat("%.1e", static_cast<double>(minimum_)),
                                   KEPFormat("%.1e", static_cast<double>(maximum_)), "value from ",
                                   " (from "));
  double shown = 0.0;
  if (ShownValue(parameter, shown)) spinner->SetValue(shown);
  spinner->SetGridCell(Cell(0));
  spinner->AddHandler(KEPVidEvent::ValueChanged, [life = life_](KEPVidWidget*, KEPVidEvent) {
    if (*life) (*life)->OnValueChanged();
  });
}

void KEPRshParameterScalarImmWidget::BuildSliderPair(KEPIRshParameter* parameter) {
  if (auto* slider = new (std::nothrow) KEPVidCtlSlider(grid_, "scalarSlider")) {
    slider_ = slider;
    slider->SetBarSize(1.0);
    slider->SetTickPosition(0);
    slider->SetBackgroundColor(kSliderBackground);
    slider->SetBackgroundSquareHeightRatio(0.1);
    slider->SetLayoutWhenInvisible(false);
    slider->SetMinimumSize(60, 5);
    slider->SetMagnifier(false);
  }
  if (auto* editor = new (std::nothrow) KEPVidCtlEditor(grid_, "scalarEditor")) {
    editor_ = editor;
    editor->SetDataType(KEPVidEditor_Double);
    editor->SetBackgroundColor(kEditorBackground);
    editor->SetLayoutWhenInvisible(false);
    editor->SetMinimumSize(48, 15);
  }
  if (!slider_ || !editor_) return;

  range_ = std::fabs(static_cast<double>(maximum_) - static_cast<double>(minimum_));
  // The slider works in integers: hundredths of the display unit, or whole units for a range
  // too wide for hundredths. Products are taken in float, the precision of the bounds, so that
  // a step of 0.01 gives one position and not a truncated 0.99999.
  const float resolution = range_ < kFineRangeLimit ? kFineResolution : 1.0f;
  slider_->SetRange(TruncateToPosition(minimum_ * resolution),
                    TruncateToPosition(maximum_ * resolution));
  slider_->SetTickInterval(10);
  slider_->SetSingleStep(TruncateToPosition(step_ * resolution));
  slider_->SetPageStep(TruncateToPosition(step_ * resolution * 10.0f));

  const KEPUnicodeString tooltip = RangeTooltip(KEPFormat("%.2f", static_cast<double>(minimum_)),
                                                KEPFormat("%.2f", static_cast<double>(maximum_)),
                                                "Value ranges from ", " (ranges from ");
  editor_->SetTooltip(tooltip);
  editor_->SetTooltipInitialDelay(0.1);
  slider_->SetTooltip(tooltip);
  slider_->SetTooltipInitialDelay(0.1);

  scaleRatio_ = AppliesScaleRatio(parameter);
  double shown = 0.0;
  if (ShownValue(parameter, shown)) {
    slider_->SetValue(SliderPosition(shown));
    editor_->SetValue(shown);
  }

  slider_->SetGridCell(Cell(0));
  editor_->SetGridCell({0, 1, 1, 1, KEPVidAttach_All});
  // An invisible button that keeps the third column, so that rows with and without a connection
  // button line up.
  if (auto* button = new (std::nothrow) KEPVidCtlButton(grid_, "HidedButton")) {
    button->SetVisibility(false);
    button->SetMinimumSize(15, 15);
    button->SetLayoutWhenInvisible(true);
    button->SetGridCell({0, 2, 1, 1, KEPVidAttach_All});
  }

  editor_->AddHandler(KEPVidEvent::EditModify, [life = life_](KEPVidWidget*, KEPVidEvent) {
    if (*life) (*life)->OnEditorModified();
  });
  slider_->AddHandler(KEPVidEvent::ValueChanged, [life = life_](KEPVidWidget*, KEPVidEvent) {
    if (*life) (*life)->OnValueChanged();
  });
}

bool KEPRshParameterScalarImmWidget::AppliesScaleRatio(KEPIRshParameter* parameter) const {
  KEPString name;
  if (!parameter || FAILED(parameter->GetName(name)) || name != "scale_v") return false;
  const KEP_var<KEPISpecObject> specObject = KEPQueryVar<KEPISpecObject>(parameter);
  KEPBaseUnknown* father = nullptr;
  if (!specObject || FAILED(specObject->GetFather(father)) || !father) return false;
  const KEP_var<KEPBaseUnknown> owner = KEP_var<KEPBaseUnknown>::Adopt(father);
  const KEP_var<KEPIRshShader> shader = KEPQueryVar<KEPIRshShader>(owner);
  KEPString type;
  return shader && SUCCEEDED(shader->GetTypeName(type)) && type.starts_with("MPM");
}

// --- Conversions

double KEPRshParameterScalarImmWidget::ToDisplay(double model) const {
  if (!displayUnit_) return model;
  const double source = length_ ? model / kMillimetresPerMetre : model;
  return displayUnit_->FromBase(sourceUnit_->ToBase(source));
}

double KEPRshParameterScalarImmWidget::ToModel(double display) const {
  if (!displayUnit_) return display;
  const double source = sourceUnit_->FromBase(displayUnit_->ToBase(display));
  return length_ ? source * kMillimetresPerMetre : source;
}

bool KEPRshParameterScalarImmWidget::ApplyScaleRatio(KEPIRshParameter* parameter,
                                                     double& value) const {
  float scaleU = 0.0f;
  if (FAILED(KEPRshParameterServices::RetrieveParameterValue(parameter, "scale_u", scaleU)))
    return true;
  const double ratio = static_cast<double>(scaleU) / value;
  if (!std::isfinite(ratio)) return false;
  value = ratio;
  return true;
}

bool KEPRshParameterScalarImmWidget::ShownValue(KEPIRshParameter* parameter, double& shown) const {
  float value = 0.0f;
  if (!parameter || FAILED(parameter->GetScalarValue(value))) return false;
  double converted = ToDisplay(value);
  if (scaleRatio_) ApplyScaleRatio(parameter, converted);
  shown = converted;
  return true;
}

int KEPRshParameterScalarImmWidget::SliderPosition(double shown) const {
  const float resolution = range_ < kFineRangeLimit ? kFineResolution : 1.0f;
  return TruncateToPosition(Narrow(shown) * resolution);
}

bool KEPRshParameterScalarImmWidget::InRange(double shown) const {
  if (std::isnan(shown)) return false;
  // The bounds are floats: what a person types is compared at their precision, so that typing
  // the maximum as shown ("0.29") is accepted although 0.29f lies just below 0.29.
  const float value = Narrow(shown);
  return value >= minimum_ && value <= maximum_ && std::fabs(shown) <= static_cast<double>(FLT_MAX);
}

// --- Handlers

template <class After>
void KEPRshParameterScalarImmWidget::Write(KEPIRshParameter* parameter, double model, After after) {
  const KEPRdgRenderLock lock;
  const KEPRshFlagScope quiet(active_, false);
  parameter->SetScalarValue(Narrow(model));
  after();
}

void KEPRshParameterScalarImmWidget::ShowRefused(KEPIRshParameter* parameter) {
  double shown = 0.0;
  if (!ShownValue(parameter, shown)) return;
  const KEPRshFlagScope quiet(active_, false);
  editor_->SetValue(shown);
}

void KEPRshParameterScalarImmWidget::OnValueChanged() {
  if (!active_) return;
  const KEP_var<KEPIRshParameter> parameter = GetParameter();
  if (!parameter) return;

  if (!slider_) {
    if (spinner_) Write(parameter.Get(), ToModel(spinner_->GetValue()), [] {});
    return;
  }
  if (!editor_) return;
  double shown = slider_->GetValue();
  if (range_ < kFineRangeLimit) shown /= static_cast<double>(kFineResolution);
  if (!InRange(shown)) {
    ShowRefused(parameter.Get());
    return;
  }
  double value = shown;
  if (scaleRatio_ && !ApplyScaleRatio(parameter.Get(), value)) {
    ShowRefused(parameter.Get());
    return;
  }
  Write(parameter.Get(), ToModel(value), [&] { editor_->SetValue(shown); });
}

void KEPRshParameterScalarImmWidget::OnEditorModified() {
  if (!active_ || !slider_ || !editor_) return;
  const KEP_var<KEPIRshParameter> parameter = GetParameter();
  if (!parameter) return;
  float old = 0.0f;
  if (FAILED(parameter->GetScalarValue(old))) return;

  const double typed = editor_->GetValue();
  if (!InRange(typed)) {
    ShowRefused(parameter.Get());
    return;
  }
  double value = typed;
  if (scaleRatio_ && !ApplyScaleRatio(parameter.Get(), value)) {
    ShowRefused(parameter.Get());
    return;
  }
  value = ToModel(value);
  // A change within the tolerance is what retyping the shown value gives: nothing to write.
  if (!(std::fabs(value - static_cast<double>(old)) > static_cast<double>(tolerance_))) return;
  Write(parameter.Get(), value, [&] { slider_->SetValue(SliderPosition(typed)); });
}

void KEPRshParameterScalarImmWidget::OnParameterChanged(KEPIRshParameter* changed,
                                                        KEPRshParameterChangeKind kind) {
  // Not active: the widget wrote this itself and its controls already show it.
  if (!active_ || kind != KEPRshParameterChangeKind::Value || !changed) return;
  const KEP_var<KEPIRshParameter> parameter = GetParameter();
  if (!parameter) return;
  if (changed != parameter.Get()) {
    if (!scaleRatio_) return;
    // The shown ratio also moves with the sibling scale_u of the same node.
    KEPString name;
    if (FAILED(changed->GetName(name)) || name != "scale_u") return;
    const auto owner =
        KEP_var<KEPIRshShader>::Adopt(KEPRshParameterServices::FindShaderParent(parameter.Get()));
    const auto changedOwner =
        KEP_var<KEPIRshShader>::Adopt(KEPRshParameterServices::FindShaderParent(changed));
    if (!owner || owner.Get() != changedOwner.Get()) return;
  }
  Refresh(parameter.Get());
}

void KEPRshParameterScalarImmWidget::Refresh(KEPIRshParameter* parameter) {
  double shown = 0.0;
  if (!ShownValue(parameter, shown)) return;
  const KEPRshFlagScope quiet(active_, false);
  if (slider_ && editor_) {
    slider_->SetValue(SliderPosition(shown));
    editor_->SetValue(shown);
  } else if (spinner_) {
    spinner_->SetValue(shown);
  }
}

// --- State

void KEPRshParameterScalarImmWidget::DescribeState(KEPVidStateWriter& writer) const {
  KEPRshParameterImmWidget::DescribeState(writer);
  writer.Text("kind", kind_);
  writer.Text("magnitude", magnitude_);
  writer.Bool("scaleRatio", scaleRatio_);
}
