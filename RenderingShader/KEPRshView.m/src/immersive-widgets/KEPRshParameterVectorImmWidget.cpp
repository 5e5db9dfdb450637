#include "KEPRshParameterVectorImmWidget.h"

#include <cfloat>
#include <climits>
#include <cmath>
#include <new>
#include <string>

#include "KEPIRshParameterImmLayout.h"
#include "KEPMsgCatalog.h"
#include "KEPParmDictionary.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshParameterContext.h"
#include "KEPTrace.h"
#include "KEPVidCtlDoubleSpinBox.h"
#include "KEPVidCtlLabel.h"
#include "KEPVidCtlSlider.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterVectorImmWidget, KEPRshParameterImmWidget, "KEPNull",
                       "RenderingShader", KEPClassKind_Implementation, "")

namespace {

const KEPVidColor kControlBackground{255, 255, 255, 50};
const char* const kAxisNames[] = {"X", "Y", "Z", "W"};

/// trunc(value) as a slider position; NaN gives 0 and what lies beyond the integers their end.
int Truncate(double value) {
  if (std::isnan(value)) return 0;
  const double truncated = std::trunc(value);
  if (truncated <= static_cast<double>(INT_MIN)) return INT_MIN;
  if (truncated >= static_cast<double>(INT_MAX)) return INT_MAX;
  return static_cast<int>(truncated);
}

/// A unit word of the parameter's configuration, its factor from model values (millimetres,
/// radians) to the unit, and the catalogue message that names the unit in the tooltip.
struct VectorUnit {
  const char* word;
  double factor;
  const char* message;
};

/// The factor and message of `unitName` (any case). The "K" row is compared with the lower-cased
/// word too, so it never matches: a kelvin vector is shown as it is and without a message.
VectorUnit FindVectorUnit(const KEPString& unitName) {
  const VectorUnit units[] = {
      {"mm", 1.0, "UnitmmTooltip.ShortHelp"},
      {"m", 0.001, "UnitmTooltip.ShortHelp"},
      {"cm", 0.1, "UnitcmTooltip.ShortHelp"},
      {"km", 0.000001, "UnitkmTooltip.ShortHelp"},
      {"deg", KEPRadianToDegree, "UnitdegTooltip.ShortHelp"},
      {"K", 1.0, "UnitKTooltip.ShortHelp"},
  };
  if (!unitName.empty()) {
    const KEPString lower = KEPToLower(unitName);
    for (const VectorUnit& unit : units)
      if (lower == unit.word) return unit;
  }
  return {"", 1.0, nullptr};
}

/// "%.2f" within [-1000, 1000], "%.1e" beyond the side that `lowEnd` names.
std::string Bound(double value, bool lowEnd) {
  const bool plain = lowEnd ? value >= -1000.0 : value <= 1000.0;
  return plain ? KEPFormat("%.2f", value) : KEPFormat("%.1e", value);
}

/// The configured range in model units; what is missing or unreadable keeps the preset.
void ReadRange(KEPIRshParameterImmLayout* layout, float& minimum, float& maximum, float& step) {
  KEPString texts[3];
  if (FAILED(layout->GetRange(texts[0], texts[1], texts[2]))) return;
  float* bounds[3] = {&minimum, &maximum, &step};
  for (int i = 0; i < 3; ++i) {
    double number = 0.0;
    if (KEPRshParameterContext::ParseDouble(texts[i], number) && std::isfinite(number) &&
        std::fabs(number) <= static_cast<double>(FLT_MAX))
      *bounds[i] = static_cast<float>(number);
  }
}

KEPVidGridCell Cell(int column) {
  return {0, column, 1, 1, KEPVidAttach_All};
}

}  // namespace

KEPRshParameterVectorImmWidget::KEPRshParameterVectorImmWidget(KEPIRshParameter* parameter,
                                                               KEPVidWidget* parent,
                                                               const KEPString& name)
    : KEPRshParameterImmWidget(parameter, parent, name),
      life_(std::make_shared<KEPRshParameterVectorImmWidget*>(this)) {
  if (!parameter) return;
  Build(parameter);
  if (spinners_[0] || sliders_[0]) {
    observer_ = KEPRshModelEvents::AddParameterObserver(
        [life = life_](KEPIRshParameter* changed, KEPRshParameterChangeKind kind) {
          if (*life) (*life)->OnParameterChanged(changed, kind);
        });
  }
}

KEPRshParameterVectorImmWidget::~KEPRshParameterVectorImmWidget() {
  *life_ = nullptr;
  if (observer_) KEPRshModelEvents::RemoveObserver(observer_);
}

// --- Construction

void KEPRshParameterVectorImmWidget::Build(KEPIRshParameter* parameter) {
  grid_ = new (std::nothrow) KEPVidLayGrid(this, "VectorLayout");
  if (!grid_) return;
  grid_->SetCellSpacing(2, 2);
  // Label columns keep their size; the value columns share the width.
  for (int column = 0; column < 6; ++column)
    grid_->SetColumnWeight(column, column % 2 == 1 ? 0.3 : 0.0);
  grid_->SetGridCell(Cell(0));

  const KEP_var<KEPIRshParameterImmLayout> layout =
      KEPQueryVar<KEPIRshParameterImmLayout>(parameter);
  if (!layout) return;
  KEPString kind;
  if (FAILED(layout->GetWidget(kind))) layout->GetDefaultWidgetKind(kind);
  kind_ = KEPToLower(kind);
  KEPString unitName;
  layout->GetUnitName(unitName);
  float minimum = -1000000.0f;
  float maximum = 1000000.0f;
  float step = 1.0f;
  ReadRange(layout.Get(), minimum, maximum, step);

  if (SliderCount() > 0)
    BuildSliders(parameter, layout.Get(), unitName, minimum, maximum, step);
  else if (kind_ != "no-value")
    BuildSpinBoxes(parameter, minimum, maximum, step);
}

int KEPRshParameterVectorImmWidget::SliderCount() const {
  if (kind_ == "sliderx2") return 2;
  if (kind_ == "sliderx3") return 3;
  if (kind_ == "sliderx4") return 4;
  return 0;
}

void KEPRshParameterVectorImmWidget::BuildSpinBoxes(KEPIRshParameter* parameter, float minimum,
                                                    float maximum, float step) {
  float value[4] = {0.0f, 0.0f, 0.0f, 0.0f};
  const bool read = SUCCEEDED(parameter->GetVectorValue(value));
  for (int i = 0; i < kSpinners; ++i) {
    const std::string number = std::to_string(i + 1);
    if (auto* label = new (std::nothrow) KEPVidCtlLabel(grid_, "labelSpinner" + number)) {
      label->SetText(KEPUnicodeString::FromUTF8(kAxisNames[i]));
      label->SetLayoutWhenInvisible(false);
      label->SetGridCell(Cell(2 * i));
    }
    auto* spinner = new (std::nothrow) KEPVidCtlDoubleSpinBox(grid_, "scalarSpinner" + number);
    if (!spinner) continue;
    spinners_[i] = spinner;
    spinner->SetBackgroundColor(kControlBackground);
    spinner->SetLayoutWhenInvisible(false);
    spinner->SetMinimumSize(50, 5);
    spinner->SetRange(minimum, maximum);
    spinner->SetSingleStep(step);
    if (read) spinner->SetValue(value[i]);
    spinner->SetGridCell(Cell(2 * i + 1));
    spinner->AddHandler(KEPVidEvent::ValueChanged, [life = life_](KEPVidWidget*, KEPVidEvent) {
      if (*life) (*life)->OnValueChanged();
    });
  }
}

void KEPRshParameterVectorImmWidget::BuildSliders(KEPIRshParameter* parameter,
                                                  KEPIRshParameterImmLayout* layout,
                                                  const KEPString& unitName, float minimum,
                                                  float maximum, float step) {
  float value[4] = {0.0f, 0.0f, 0.0f, 0.0f};
  parameter->GetVectorValue(value);

  // Values are held in millimetres and radians; the factor shows them in the parameter's unit.
  const VectorUnit unit = FindVectorUnit(unitName);
  unitFactor_ = unit.factor;
  const double shownMinimum = static_cast<double>(minimum) * unitFactor_;
  const double shownMaximum = static_cast<double>(maximum) * unitFactor_;
  const double shownStep = static_cast<double>(step) * unitFactor_;

  const std::string range = Bound(shownMinimum, true) + " to " + Bound(shownMaximum, false);
  const KEPUnicodeString tooltip =
      unit.message ? KEPMsgCatalog::BuildMessage("KEPRshShaderFrame", unit.message) +
                         KEPUnicodeString::FromUTF8(" (from " + range + " )")
                   : KEPUnicodeString::FromUTF8("value from " + range);

  const int count = SliderCount();
  for (int i = 0; i < count; ++i) {
    const std::string number = std::to_string(i + 1);
    if (auto* label = new (std::nothrow) KEPVidCtlLabel(grid_, "label" + number)) {
      KEPUnicodeString text;
      if (FAILED(layout->GetLabel(i, text))) text = KEPUnicodeString::FromUTF8(kAxisNames[i]);
      label->SetText(text);
      label->SetLayoutWhenInvisible(false);
      label->SetGridCell(Cell(2 * i));
    }
    auto* slider = new (std::nothrow) KEPVidCtlSlider(grid_, "scalarSlider" + number);
    if (!slider) continue;
    sliders_[i] = slider;
    slider->SetBarSize(1.0);
    slider->SetTickPosition(0);
    slider->SetBackgroundColor(kControlBackground);
    slider->SetBackgroundSquareHeightRatio(0.1);
    slider->SetLayoutWhenInvisible(false);
    slider->SetMinimumSize(60, 5);
    // Whole units of the shown unit: a fraction of a unit is lost.
    slider->SetRange(Truncate(shownMinimum), Truncate(shownMaximum));
    slider->SetSingleStep(Truncate(shownStep));
    slider->SetTooltip(tooltip);
    slider->SetValue(Truncate(static_cast<double>(value[i]) * unitFactor_));
    slider->SetGridCell(Cell(2 * i + 1));
    slider->AddHandler(KEPVidEvent::ValueChanged, [life = life_](KEPVidWidget*, KEPVidEvent) {
      if (*life) (*life)->OnValueChanged();
    });
  }
}

// --- Handlers

void KEPRshParameterVectorImmWidget::OnValueChanged() {
  if (refreshing_) return;
  const KEP_var<KEPIRshParameter> parameter = GetParameter();
  if (!parameter) return;
  float value[4] = {0.0f, 0.0f, 0.0f, 0.0f};
  const int count = SliderCount();
  if (count == 0) {
    if (!spinners_[0] || !spinners_[1] || !spinners_[2]) return;
    for (int i = 0; i < kSpinners; ++i) value[i] = static_cast<float>(spinners_[i]->GetValue());
  } else if (sliders_[0] && sliders_[1]) {
    // A component whose slider is missing stays 0, like the components beyond the kind.
    for (int i = 0; i < count; ++i) {
      if (sliders_[i])
        value[i] = static_cast<float>(static_cast<double>(sliders_[i]->GetValue()) / unitFactor_);
    }
  }
  const KEPRdgRenderLock lock;
  parameter->SetVectorValue(value);
}

void KEPRshParameterVectorImmWidget::OnParameterChanged(KEPIRshParameter* changed,
                                                        KEPRshParameterChangeKind kind) {
  if (kind != KEPRshParameterChangeKind::Value || !changed) return;
  const KEP_var<KEPIRshParameter> parameter = GetParameter();
  if (parameter && changed == parameter.Get()) Refresh(parameter.Get());
}

void KEPRshParameterVectorImmWidget::Refresh(KEPIRshParameter* parameter) {
  float value[4] = {0.0f, 0.0f, 0.0f, 0.0f};
  if (FAILED(parameter->GetVectorValue(value))) return;
  refreshing_ = true;
  for (int i = 0; i < kSpinners; ++i)
    if (spinners_[i]) spinners_[i]->SetValue(value[i]);
  for (int i = 0; i < kMaxSliders; ++i)
    if (sliders_[i]) sliders_[i]->SetValue(Truncate(static_cast<double>(value[i]) * unitFactor_));
  refreshing_ = false;
}

// --- State

void KEPRshParameterVectorImmWidget::DescribeState(KEPVidStateWriter& writer) const {
  KEPRshParameterImmWidget::DescribeState(writer);
  writer.Text("kind", kind_);
  writer.Double("unitFactor", unitFactor_);
}
