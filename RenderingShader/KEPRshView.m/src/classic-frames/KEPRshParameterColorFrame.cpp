#include "KEPRshParameterColorFrame.h"

#include "KEPDlgLabel.h"
#include "KEPDlgSpinner.h"
#include "KEPIRshParameterDialog.h"
#include "KEPRdgRenderLock.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS(KEPRshParameterColorFrame, KEPRshParameterFrame, "RenderingShader")

namespace {
constexpr int kSpinnerStyle = 0x60000;
struct Channel {
  const char* label;
  const char* title;
  const char* spinner;
};
constexpr Channel kChannels[3] = {{"redLabel", "R", "redSpinner"},
                                  {"greenLabel", " G", "greenSpinner"},
                                  {"blueLabel", " B", "blueSpinner"}};
}  // namespace

KEPRshParameterColorFrame::KEPRshParameterColorFrame(KEPDialog* parent, KEPIRshParameter* parameter,
                                                     const KEPString& name, int style)
    : KEPRshParameterFrame(parent, parameter, name, style) {
  if (!parameter) return;
  float minimum = 0.0f, maximum = 1.0f, step = 0.01f;
  if (const KEP_var<KEPIRshParameterDialog> behaviour =
          KEPQueryVar<KEPIRshParameterDialog>(parameter))
    behaviour->GetTypedRange(minimum, maximum, step);
  float rgb[3] = {0.0f, 0.0f, 0.0f};
  const bool hasValue = SUCCEEDED(parameter->GetColorValue(rgb[0], rgb[1], rgb[2]));
  for (std::size_t i = 0; i < 3; ++i) {
    const int column = 2 * static_cast<int>(i);
    auto* label = new KEPDlgLabel(this, kChannels[i].label);
    label->SetTitle(KEPUnicodeString::FromUTF8(kChannels[i].title));
    label->SetGridConstraints(0, column, 1, 1, KEPDlgGridAll);
    auto* spinner = new KEPDlgSpinner(this, kChannels[i].spinner, kSpinnerStyle);
    spinner->SetGridConstraints(0, column + 1, 1, 1, KEPDlgGridAll);
    spinner->SetMinMaxStep(minimum, maximum, step);
    spinner->SetFormat("%.3f");
    spinner->SetVisibleTextWidth(4);
    if (hasValue) spinner->SetValue(rgb[i]);
    AddCallback(spinner, spinner->GetSpinnerModifyNotification(), this,
                &KEPRshParameterColorFrame::ParameterModifiedCB);
    spinners_[i] = spinner;
  }
}

KEPRshParameterColorFrame::~KEPRshParameterColorFrame() {
  KEPModuleTrace::Trace(2, "(KEPRshParameterColorFrame::~KEPRshParameterColorFrame) Destructor\n");
  KEPModuleTrace::Trace(2, "(KEPRshParameterColorFrame::~KEPRshParameterColorFrame) Done\n");
}

KEPDlgSpinner* KEPRshParameterColorFrame::GetSpinner(int channel) const {
  if (channel < 0 || channel > 2) return nullptr;
  return spinners_[static_cast<std::size_t>(channel)];
}

void KEPRshParameterColorFrame::ShowParameterValue() {
  float rgb[3] = {0.0f, 0.0f, 0.0f};
  if (!spinners_[0] || FAILED(GetParameter()->GetColorValue(rgb[0], rgb[1], rgb[2]))) return;
  for (std::size_t i = 0; i < 3; ++i) spinners_[i]->SetValue(rgb[i]);
}

void KEPRshParameterColorFrame::ParameterModifiedCB(KEPDialog*, KEPNotification*,
                                                    KEPDlgClientData) {
  TraceCallback("KEPRshParameterColorFrame::ParameterModifiedCB");
  KEPIRshParameter* parameter = GetParameter();
  if (!parameter || !spinners_[0] || IsShowingValue()) return;
  float r = 0.0f, g = 0.0f, b = 0.0f, alpha = 1.0f;
  parameter->GetColorValue(r, g, b, &alpha);
  const OwnWrite own(*this);
  const KEPRdgRenderLock lock;
  parameter->SetColorValue(static_cast<float>(spinners_[0]->GetValue()),
                           static_cast<float>(spinners_[1]->GetValue()),
                           static_cast<float>(spinners_[2]->GetValue()), alpha);
}
