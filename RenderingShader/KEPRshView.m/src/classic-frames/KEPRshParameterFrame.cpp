#include "KEPRshParameterFrame.h"

#include "KEPRshModelEvents.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS(KEPRshParameterFrame, KEPDlgFrame, "RenderingShader")

KEPRshParameterFrame::KEPRshParameterFrame(KEPDialog* parent, const KEPString& name, int style)
    : KEPDlgFrame(parent, name, style) {}

KEPRshParameterFrame::KEPRshParameterFrame(KEPDialog* parent, KEPIRshParameter* parameter,
                                           const KEPString& name, int style)
    : KEPDlgFrame(parent, name, style), parameter_(parameter) {
  if (!parameter) return;
  // The observer reaches the frame through `this`: the destructor removes it, and removal is safe
  // during a dispatch, so it never runs on a frame that is gone.
  observer_ = KEPRshModelEvents::AddParameterObserver(
      [this](KEPIRshParameter* changed, KEPRshParameterChangeKind) {
        OnParameterChanged(changed);
      });
}

KEPRshParameterFrame::~KEPRshParameterFrame() {
  KEPModuleTrace::Trace(2, "(KEPRshParameterFrame::~KEPRshParameterFrame) Destructor\n");
  if (observer_) KEPRshModelEvents::RemoveObserver(observer_);
  KEPModuleTrace::Trace(2, "(KEPRshParameterFrame::~KEPRshParameterFrame) Done\n");
}

void KEPRshParameterFrame::OnParameterChanged(KEPIRshParameter* changed) {
  if (writing_ || showing_ || !changed || changed != parameter_.Get()) return;
  showing_ = true;
  ShowParameterValue();
  showing_ = false;
}

void KEPRshParameterFrame::SetSensitivity(int sensitivity) {
  if (sensitivity != KEPDlgEnable && sensitivity != KEPDlgDisable) {
    KEPDlgFrame::SetSensitivity(sensitivity);  // traced and refused there
    return;
  }
  KEPDlgFrame::SetSensitivity(sensitivity);
  for (std::size_t i = 0; i < GetChildCount(); ++i) {
    KEPVidWidget* child = GetChild(i);
    if (auto* control = dynamic_cast<KEPDialog*>(child))
      control->SetSensitivity(sensitivity);
    else
      child->SetSensitivity(sensitivity == KEPDlgEnable);
  }
}

void KEPRshParameterFrame::TraceCallback(const char* method) {
  if (KEPModuleTrace::IsEnabled(5)) KEPModuleTrace::Trace(5, "(%s)\n", method);
}
