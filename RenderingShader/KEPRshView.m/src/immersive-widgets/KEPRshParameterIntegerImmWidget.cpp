#include "KEPRshParameterIntegerImmWidget.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <new>

#include "KEPIRenderingMaterial.h"
#include "KEPIRshParameterImmLayout.h"
#include "KEPIRshShader.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshFlagScope.h"
#include "KEPRshParameterServices.h"
#include "KEPVidCtlButton.h"
#include "KEPVidCtlCheckBox.h"
#include "KEPVidCtlEditor.h"
#include "KEPVidCtlImageCombo.h"
#include "KEPVidCtlSlider.h"
#include "KEPVidCtlSpinBox.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterIntegerImmWidget, KEPRshParameterImmWidget, "KEPNull",
                       "RenderingShader", KEPClassKind_Implementation, "")

namespace {

/// Below this maximum the slider moves in hundredths of the value (a 0..1 switch gets a slider
/// of 100 positions); from it on, in whole units.
constexpr int kWholeUnitMaximum = 2;
constexpr int kHundredths = 100;
/// A combo's lines are counted from the range; a range of millions would make a combo nobody can
/// use and cost a label read per line, so the count stops here.
constexpr long long kMaxComboLines = 4096;

const KEPVidColor kSliderBackground{0, 0, 255, 200};
const KEPVidColor kSpinnerBackground{255, 255, 255, 50};
const KEPVidColor kEditorBackground{255, 255, 255, 150};

/// `value` within the ints (the range arithmetic is done in 64 bits).
int ToInt(long long value) {
  return static_cast<int>(std::clamp<long long>(value, INT_MIN, INT_MAX));
}

/// An editor's number as an integer: toward zero, NaN as 0, beyond the ints their end.
int EditorInteger(double value) {
  if (std::isnan(value)) return 0;
  const double truncated = std::trunc(value);
  if (truncated <= static_cast<double>(INT_MIN)) return INT_MIN;
  if (truncated >= static_cast<double>(INT_MAX)) return INT_MAX;
  return static_cast<int>(truncated);
}

KEPVidGridCell Cell(int column, int attach = KEPVidAttach_All) {
  return {0, column, 1, 1, attach};
}

}  // namespace

KEPRshParameterIntegerImmWidget::KEPRshParameterIntegerImmWidget(KEPIRshParameter* parameter,
                                                                 KEPVidWidget* parent,
                                                                 const KEPString& name)
    : KEPRshParameterImmWidget(parameter, parent, name),
      life_(std::make_shared<KEPRshParameterIntegerImmWidget*>(this)) {
  if (!parameter) return;
  {
    // Building sets the controls' values: none of that is a user edit.
    const KEPRshFlagScope quiet(active_, false);
    Build(parameter);
  }
  if (slider_ || spinner_ || check_ || combo_) {
    observer_ = KEPRshModelEvents::AddParameterObserver(
        [life = life_](KEPIRshParameter* changed, KEPRshParameterChangeKind kind) {
          if (*life) (*life)->OnParameterChanged(changed, kind);
        });
  }
}

KEPRshParameterIntegerImmWidget::~KEPRshParameterIntegerImmWidget() {
  // A control that someone else still holds outlives this widget; its handlers then find no
  // widget behind them.
  *life_ = nullptr;
  if (observer_) KEPRshModelEvents::RemoveObserver(observer_);
}

// --- Construction

void KEPRshParameterIntegerImmWidget::Build(KEPIRshParameter* parameter) {
  grid_ = new (std::nothrow) KEPVidLayGrid(this, "IntegerLayout");
  if (!grid_) return;
  grid_->SetCellSpacing(2, 2);
  grid_->SetColumnWeight(0, 1.0);
  grid_->SetColumnWeight(1, 0.0);
  grid_->SetColumnWeight(2, 0.0);
  grid_->SetGridCell(Cell(0));

  KEPString name;
  typeRule_ = SUCCEEDED(parameter->GetName(name)) && name == "type";
  const KEP_var<KEPIRshParameterImmLayout> layout =
      KEPQueryVar<KEPIRshParameterImmLayout>(parameter);
  KEPString kind;
  // The configured kind, else the type's default, read silently (the builder traced nothing).
  if (layout && FAILED(layout->GetWidget(kind))) layout->GetDefaultWidgetKind(kind);
  kind_ = KEPToLower(kind);

  if (kind_ == "combo")
    BuildCombo(parameter);
  else if (kind_ == "check")
    BuildCheck(parameter);
  else if (kind_ == "slider")
    BuildSliderPair(parameter);
  else
    BuildSpinBox(parameter);
  if (name == "dpi") ApplyDpiRule(parameter);
}

void KEPRshParameterIntegerImmWidget::ReadRange(int& minimum, int& maximum, int& step) const {
  const KEP_var<KEPIRshParameter> parameter = GetParameter();
  const KEP_var<KEPIRshParameterImmLayout> layout =
      KEPQueryVar<KEPIRshParameterImmLayout>(parameter);
  int low = minimum;
  int high = maximum;
  int by = step;
  if (layout && SUCCEEDED(layout->GetTypedRange(low, high, by))) {
    minimum = low;
    maximum = high;
    step = by;
  }
}

int KEPRshParameterIntegerImmWidget::ComboIndex(int value) const {
  const KEP_var<KEPIRshParameterImmLayout> layout =
      KEPQueryVar<KEPIRshParameterImmLayout>(GetParameter());
  int index = value;
  if (!layout || FAILED(layout->GetEnumIndex(value, index))) index = value;
  return index;
}

void KEPRshParameterIntegerImmWidget::BuildCombo(KEPIRshParameter* parameter) {
  auto* combo = new (std::nothrow) KEPVidCtlImageCombo(grid_, "integerCombo");
  if (!combo) return;
  combo_ = combo;
  combo->SetMinimumSize(60, 5);
  int minimum = 0;
  int maximum = 100;
  int step = 1;
  ReadRange(minimum, maximum, step);
  // Lines step by one from the minimum; only their count follows the step. A step that is no
  // positive number counts as 1.
  const long long span = static_cast<long long>(maximum) - minimum;
  const long long count =
      std::clamp<long long>(span / (step > 0 ? step : 1) + 1, 0, kMaxComboLines);
  comboFirst_ = minimum;
  const KEP_var<KEPIRshParameterImmLayout> layout =
      KEPQueryVar<KEPIRshParameterImmLayout>(parameter);
  for (long long i = 0; i < count; ++i) {
    KEPUnicodeString label;
    if (layout) layout->GetEnumLabel(ToInt(minimum + i), label);
    combo->AddItem(label);
  }
  int value = 0;
  if (SUCCEEDED(parameter->GetIntegerValue(value))) combo->SetSelect(ComboIndex(value));
  combo->SetGridCell(Cell(0));
  combo->AddHandler(KEPVidEvent::Selected, [life = life_](KEPVidWidget*, KEPVidEvent) {
    if (*life) (*life)->OnValueChanged();
  });
}

void KEPRshParameterIntegerImmWidget::BuildCheck(KEPIRshParameter* parameter) {
  auto* check = new (std::nothrow) KEPVidCtlCheckBox(this, "integerCheck");
  if (!check) return;
  check_ = check;
  check->SetLabel(KEPUnicodeString());
  int value = 0;
  if (SUCCEEDED(parameter->GetIntegerValue(value))) check->SetChecked(value != 0);
  check->AddHandler(KEPVidEvent::Toggled, [life = life_](KEPVidWidget*, KEPVidEvent) {
    if (*life) (*life)->OnValueChanged();
  });
  check->SetGridCell(Cell(0, KEPVidAttach_None));
}

void KEPRshParameterIntegerImmWidget::BuildSpinBox(KEPIRshParameter* parameter) {
  auto* spinner = new (std::nothrow) KEPVidCtlSpinBox(grid_, "integerSpinner");
  if (!spinner) return;
  spinner_ = spinner;
  spinner->SetBackgroundColor(kSpinnerBackground);
  spinner->SetLayoutWhenInvisible(false);
  spinner->SetMinimumSize(50, 5);
  int minimum = -100000;
  int maximum = 100000;
  int step = 1;
  ReadRange(minimum, maximum, step);
  spinner->SetRange(minimum, maximum);
  spinner->SetSingleStep(step);
  spinner->SetMaximumTextLength(5);
  int value = 0;
  if (SUCCEEDED(parameter->GetIntegerValue(value))) spinner->SetValue(value);
  spinner->SetGridCell(Cell(0));
  spinner->AddHandler(KEPVidEvent::ValueChanged, [life = life_](KEPVidWidget*, KEPVidEvent) {
    if (*life) (*life)->OnValueChanged();
  });
}

void KEPRshParameterIntegerImmWidget::BuildSliderPair(KEPIRshParameter* parameter) {
  if (auto* slider = new (std::nothrow) KEPVidCtlSlider(grid_, "integerSlider")) {
    slider_ = slider;
    slider->SetBarSize(2.0);
    slider->SetTickPosition(0);
    slider->SetBackgroundColor(kSliderBackground);
    slider->SetBackgroundSquareHeightRatio(0.1);
    slider->SetMinimumSize(60, 5);
  }
  if (auto* editor = new (std::nothrow) KEPVidCtlEditor(grid_, "integerEditor")) {
    editor_ = editor;
    editor->SetDataType(KEPVidEditor_Integer);
    editor->SetBackgroundColor(kEditorBackground);
    editor->SetCharacterWidth(5);
    editor->SetLayoutWhenInvisible(false);
    editor->SetMinimumSize(48, 15);
  }
  // An invisible button that keeps the third column, so that rows with and without a connection
  // button line up.
  auto* button = new (std::nothrow) KEPVidCtlButton(grid_, "HidedButton");
  if (button) {
    button->SetVisibility(false);
    button->SetMinimumSize(15, 15);
    button->SetLayoutWhenInvisible(true);
  }

  int minimum = 0;
  int maximum = 100;
  int step = 1;
  ReadRange(minimum, maximum, step);
  const long long span = static_cast<long long>(maximum) - minimum;
  if (slider_) {
    if (maximum < kWholeUnitMaximum) {
      // Hundredths: a 0..1 range becomes 0..100. The minimum is kept unscaled, as the slider of
      // this kind always had it (it only matters for negative minima).
      slider_->SetRange(minimum, ToInt(static_cast<long long>(maximum) * kHundredths));
      slider_->SetTickInterval(ToInt(span * 10));
      slider_->SetSingleStep(ToInt(span));
      slider_->SetPageStep(ToInt(span * 10));
    } else {
      wholeUnit_ = true;
      slider_->SetRange(minimum, maximum);
      slider_->SetTickInterval(ToInt(span / 10));
      slider_->SetSingleStep(ToInt(span / 100));
      slider_->SetPageStep(ToInt(span / 10));
    }
  }

  int value = 0;
  if (SUCCEEDED(parameter->GetIntegerValue(value)) && slider_ && editor_) {
    slider_->SetValue(SliderPosition(value));
    editor_->SetValue(value);
  }

  if (editor_) {
    editor_->AddHandler(KEPVidEvent::EditModify, [life = life_](KEPVidWidget*, KEPVidEvent) {
      if (*life) (*life)->OnEditorModified();
    });
    editor_->SetGridCell(Cell(1));
  }
  if (slider_) {
    slider_->AddHandler(KEPVidEvent::ValueChanged, [life = life_](KEPVidWidget*, KEPVidEvent) {
      if (*life) (*life)->OnValueChanged();
    });
    slider_->SetGridCell(Cell(0));
  }
  if (button) button->SetGridCell(Cell(2));
}

void KEPRshParameterIntegerImmWidget::ApplyDpiRule(KEPIRshParameter* parameter) {
  const auto shader =
      KEP_var<KEPIRshShader>::Adopt(KEPRshParameterServices::FindShaderParent(parameter));
  const bool editable = KEPRshParameterServices::IsSVGMapPresent(shader.Get());
  for (KEPVidWidget* control :
       {static_cast<KEPVidWidget*>(slider_), static_cast<KEPVidWidget*>(spinner_),
        static_cast<KEPVidWidget*>(check_), static_cast<KEPVidWidget*>(combo_),
        static_cast<KEPVidWidget*>(editor_)})
    if (control) control->SetSensitivity(editable);
}

int KEPRshParameterIntegerImmWidget::SliderPosition(int value) const {
  return wholeUnit_ ? value : ToInt(static_cast<long long>(value) * kHundredths);
}

// --- Handlers

void KEPRshParameterIntegerImmWidget::Write(KEPIRshParameter* parameter, int value,
                                            bool tellMaterial) {
  const KEPRdgRenderLock lock;
  const KEPRshFlagScope quiet(active_, false);
  if (typeRule_ && tellMaterial) {
    // The material learns its new kind before the parameter says so.
    const auto shader =
        KEP_var<KEPIRshShader>::Adopt(KEPRshParameterServices::FindShaderParent(parameter));
    const auto material = KEP_var<KEPIRenderingMaterial>::Adopt(
        KEPRshParameterServices::FindRenderingMaterial(shader.Get()));
    if (material) material->SetMaterialType(value);
  }
  parameter->SetIntegerValue(value);
}

void KEPRshParameterIntegerImmWidget::OnValueChanged() {
  if (!active_) return;
  const KEP_var<KEPIRshParameter> parameter = GetParameter();
  if (!parameter) return;
  int value = 0;
  if (slider_ && editor_) {
    const int position = slider_->GetValue();
    value = wholeUnit_ ? position : position / kHundredths;
    const KEPRshFlagScope quiet(active_, false);
    editor_->SetValue(value);
  } else if (spinner_) {
    value = spinner_->GetValue();
  } else if (combo_) {
    const int index = combo_->GetSelect();
    if (index < 0) return;  // the selection was cleared: nothing chosen to write
    value = ToInt(static_cast<long long>(comboFirst_) + index);
    const KEP_var<KEPIRshParameterImmLayout> layout =
        KEPQueryVar<KEPIRshParameterImmLayout>(parameter);
    int enumValue = 0;
    if (layout && SUCCEEDED(layout->GetEnumValue(index, enumValue))) value = enumValue;
  } else if (check_) {
    value = check_->IsChecked() ? 1 : 0;
  } else {
    return;
  }
  Write(parameter.Get(), value, true);
}

void KEPRshParameterIntegerImmWidget::OnEditorModified() {
  if (!active_ || !editor_) return;
  const KEP_var<KEPIRshParameter> parameter = GetParameter();
  if (!parameter) return;
  const int value = EditorInteger(editor_->GetValue());
  if (slider_) {
    const KEPRshFlagScope quiet(active_, false);
    slider_->SetValue(SliderPosition(value));
  }
  // Typing in the editor writes the value only; the material hears of a "type" change from the
  // controls a person picks from.
  Write(parameter.Get(), value, false);
}

void KEPRshParameterIntegerImmWidget::OnParameterChanged(KEPIRshParameter* changed,
                                                         KEPRshParameterChangeKind kind) {
  // Not active: the widget wrote this itself and its controls already show it.
  if (!active_ || kind != KEPRshParameterChangeKind::Value || !changed) return;
  const KEP_var<KEPIRshParameter> parameter = GetParameter();
  if (!parameter || changed != parameter.Get()) return;
  Refresh(parameter.Get());
}

void KEPRshParameterIntegerImmWidget::Refresh(KEPIRshParameter* parameter) {
  int value = 0;
  if (FAILED(parameter->GetIntegerValue(value))) return;
  const KEPRshFlagScope quiet(active_, false);
  if (slider_ && editor_) {
    slider_->SetValue(SliderPosition(value));
    editor_->SetValue(value);
  } else if (spinner_) {
    spinner_->SetValue(value);
  } else if (combo_) {
    combo_->SetSelect(ComboIndex(value));
  } else if (check_) {
    check_->SetChecked(value != 0);
  }
}

// --- State

void KEPRshParameterIntegerImmWidget::DescribeState(KEPVidStateWriter& writer) const {
  KEPRshParameterImmWidget::DescribeState(writer);
  writer.Text("kind", kind_);
  if (combo_) writer.Int("comboFirstValue", comboFirst_);
  if (slider_) writer.Bool("wholeUnit", wholeUnit_);
}
