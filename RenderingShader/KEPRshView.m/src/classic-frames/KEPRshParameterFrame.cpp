#include "KEPRshParameterFrame.h"

#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS(KEPRshParameterFrame, KEPDlgFrame, "RenderingShader")

KEPRshParameterFrame::KEPRshParameterFrame(KEPDialog* parent, const KEPString& name, int style)
    : KEPDlgFrame(parent, name, style) {}

KEPRshParameterFrame::KEPRshParameterFrame(KEPDialog* parent, KEPIRshParameter* parameter,
                                           const KEPString& name, int style)
    : KEPDlgFrame(parent, name, style), parameter_(parameter) {}

KEPRshParameterFrame::~KEPRshParameterFrame() {
  KEPModuleTrace::Trace(2, "(KEPRshParameterFrame::~KEPRshParameterFrame) Destructor\n");
  KEPModuleTrace::Trace(2, "(KEPRshParameterFrame::~KEPRshParameterFrame) Done\n");
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
