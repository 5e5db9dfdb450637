#include "KEPRshParameterIntegerFrame.h"

#include <algorithm>
#include <string>
#include <vector>

#include "KEPDlgCheckButton.h"
#include "KEPDlgCombo.h"
#include "KEPDlgLabel.h"
#include "KEPDlgSpinner.h"
#include "KEPIRshParameterDialog.h"
#include "KEPRbaScalarSlider.h"
#include "KEPRdgRenderLock.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS(KEPRshParameterIntegerFrame, KEPRshParameterFrame, "RenderingShader")

namespace {
constexpr int kComboStyle = 0x40000;
constexpr int kSliderStyle = 0xa0000;
constexpr int kSpinnerStyle = 0x60000;
}  // namespace

KEPRshParameterIntegerFrame::KEPRshParameterIntegerFrame(KEPDialog* parent,
                                                         KEPIRshParameter* parameter,
                                                         const KEPString& name, int style)
    : KEPRshParameterFrame(parent, parameter, name, style) {
  if (!parameter) return;
  const KEP_var<KEPIRshParameterDialog> behaviour = KEPQueryVar<KEPIRshParameterDialog>(parameter);
  KEPString widget;
  if (behaviour) behaviour->GetWidget(widget);
  widget = KEPToLower(widget);
  int value = 0;
  const bool hasValue = SUCCEEDED(parameter->GetIntegerValue(value));
  const auto readRange = [&behaviour](int& minimum, int& maximum, int& step) {
    if (behaviour) behaviour->GetTypedRange(minimum, maximum, step);
  };

  if (widget == "combo") {
    BuildCombo(behaviour.Get(), value, hasValue);
  } else if (widget == "slider") {
    int minimum = 0, maximum = 100, step = 1;
    readRange(minimum, maximum, step);
    slider_ = new KEPRbaScalarSlider(this, "integerSlider", 110, 16, kSliderStyle);
    AddCallback(slider_, slider_->GetSliderModifyNotification(), this,
                &KEPRshParameterIntegerFrame::ParameterModifiedCB);
    AddCallback(slider_, slider_->GetSliderDragNotification(), this,
                &KEPRshParameterIntegerFrame::ParameterModifiedCB);
    slider_->SetRange(minimum, maximum, step);
    slider_->SetFormat("%d");
    slider_->SetVisibleTextWidth(4);
    if (hasValue) slider_->SetValue(value);
  } else if (widget == "check") {
    check_ = new KEPDlgCheckButton(this, "integerCheck", 0);
    check_->SetTitle(KEPUnicodeString());
    AddCallback(check_, check_->GetCheckButtonModifyNotification(), this,
                &KEPRshParameterIntegerFrame::ParameterModifiedCB);
    check_->SetState(hasValue && value != 0 ? KEPDlgCheck : KEPDlgUncheck);
  } else {
    int minimum = -100000, maximum = 100000, step = 1;
    readRange(minimum, maximum, step);
    spinner_ = new KEPDlgSpinner(this, "integerSpinner", kSpinnerStyle);
    // Set up before the callback is hooked: bringing the value into the new range notifies,
    // and that must not write into the parameter a value nobody chose.
    spinner_->SetMinMaxStep(minimum, maximum, step, 1);
    spinner_->SetFormat("%d");
    spinner_->SetVisibleTextWidth(4);
    if (hasValue) spinner_->SetValue(value);
    AddCallback(spinner_, spinner_->GetSpinnerModifyNotification(), this,
                &KEPRshParameterIntegerFrame::ParameterModifiedCB);
  }
}

KEPRshParameterIntegerFrame::~KEPRshParameterIntegerFrame() {
  KEPModuleTrace::Trace(2,
                        "(KEPRshParameterIntegerFrame::~KEPRshParameterIntegerFrame) Destructor\n");
  KEPModuleTrace::Trace(2, "(KEPRshParameterIntegerFrame::~KEPRshParameterIntegerFrame) Done\n");
}

void KEPRshParameterIntegerFrame::BuildCombo(KEPIRshParameterDialog* behaviour, int value,
                                             bool hasValue) {
  auto* separator = new KEPDlgLabel(this, "sepLabel");
  separator->SetTitle(KEPUnicodeString::FromUTF8("-"));
  separator->SetVisibility(KEPDlgHide);
  combo_ = new KEPDlgCombo(this, "integerCombo", kComboStyle);
  combo_->SetVisibleTextWidth(10);
  AddCallback(combo_, combo_->GetComboSelectNotification(), this,
              &KEPRshParameterIntegerFrame::ParameterModifiedCB);

  int minimum = 0, maximum = 100, step = 1;
  if (behaviour) behaviour->GetTypedRange(minimum, maximum, step);
  comboBase_ = minimum;
  // In 64 bits: the span of two ints does not fit in one. A step that is not positive counts as 1
  // and an empty range gives no line.
  const long long span = static_cast<long long>(maximum) - minimum;
  const long long count =
      span < 0 ? 0 : std::min<long long>(span / std::max(step, 1) + 1, kMaxComboLines);
  std::vector<KEPUnicodeString> lines;
  lines.reserve(static_cast<std::size_t>(count));
  for (long long i = 0; i < count; ++i) {
    // The labels run over min, min + 1, ... whatever the step: only the count uses it.
    const int entry = static_cast<int>(minimum + i);
    KEPUnicodeString label;
    if (!behaviour || FAILED(behaviour->GetEnumLabel(entry, label)))
      label = KEPUnicodeString::FromUTF8(std::to_string(entry));
    lines.push_back(std::move(label));
  }
  combo_->SetLine(lines.data(), static_cast<int>(lines.size()), -1, KEPDlgLineReplace);

  if (hasValue) combo_->SetSelect(ComboIndex(behaviour, value));
}

int KEPRshParameterIntegerFrame::ComboIndex(KEPIRshParameterDialog* behaviour, int value) {
  int index = value;
  if (behaviour) behaviour->GetEnumIndex(value, index);
  return index;
}

void KEPRshParameterIntegerFrame::ShowParameterValue() {
  KEPIRshParameter* parameter = GetParameter();
  int value = 0;
  if (FAILED(parameter->GetIntegerValue(value))) return;
  if (slider_) slider_->SetValue(value);
  if (spinner_) spinner_->SetValue(value);
  if (check_) check_->SetState(value != 0 ? KEPDlgCheck : KEPDlgUncheck);
  if (combo_) {
    const KEP_var<KEPIRshParameterDialog> behaviour =
        KEPQueryVar<KEPIRshParameterDialog>(parameter);
    combo_->SetSelect(ComboIndex(behaviour.Get(), value));
  }
}

void KEPRshParameterIntegerFrame::ParameterModifiedCB(KEPDialog*, KEPNotification*,
                                                      KEPDlgClientData) {
  TraceCallback("KEPRshParameterIntegerFrame::ParameterModifiedCB");
  KEPIRshParameter* parameter = GetParameter();
  if (!parameter || IsShowingValue()) return;
  int value = 0;
  if (slider_) {
    value = static_cast<int>(slider_->GetValue());
  } else if (spinner_) {
    value = static_cast<int>(spinner_->GetValue());
  } else if (combo_) {
    const int index = combo_->GetSelect();
    if (index < 0) return;  // nothing chosen: nothing to write
    value = comboBase_ + index;
    if (const KEP_var<KEPIRshParameterDialog> behaviour =
            KEPQueryVar<KEPIRshParameterDialog>(parameter))
      behaviour->GetEnumValue(index, value);
  } else if (check_) {
    value = check_->GetState() == KEPDlgCheck ? 1 : 0;
  } else {
    return;
  }
  const OwnWrite own(*this);
  const KEPRdgRenderLock lock;
  parameter->SetIntegerValue(value);
}
