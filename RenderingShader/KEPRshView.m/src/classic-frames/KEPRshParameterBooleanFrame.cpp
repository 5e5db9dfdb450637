#include "KEPRshParameterBooleanFrame.h"

#include "KEPDlgCheckButton.h"
#include "KEPRdgRenderLock.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS(KEPRshParameterBooleanFrame, KEPRshParameterFrame, "RenderingShader")

KEPRshParameterBooleanFrame::KEPRshParameterBooleanFrame(KEPDialog* parent,
                                                         KEPIRshParameter* parameter,
                                                         const KEPString& name, int style)
    : KEPRshParameterFrame(parent, parameter, name, style) {
  if (!parameter) return;
  check_ = new KEPDlgCheckButton(this, "booleanCheck", 0);
  check_->SetTitle(KEPUnicodeString());
  AddCallback(check_, check_->GetCheckButtonModifyNotification(), this,
              &KEPRshParameterBooleanFrame::ParameterModifiedCB);
  unsigned char value = 0;
  parameter->GetBooleanValue(value);
  check_->SetState(value != 0 ? KEPDlgCheck : KEPDlgUncheck);
}

KEPRshParameterBooleanFrame::~KEPRshParameterBooleanFrame() {
  KEPModuleTrace::Trace(2,
                        "(KEPRshParameterBooleanFrame::~KEPRshParameterBooleanFrame) Destructor\n");
  KEPModuleTrace::Trace(2, "(KEPRshParameterBooleanFrame::~KEPRshParameterBooleanFrame) Done\n");
}

void KEPRshParameterBooleanFrame::ShowParameterValue() {
  unsigned char value = 0;
  if (check_ && SUCCEEDED(GetParameter()->GetBooleanValue(value)))
    check_->SetState(value != 0 ? KEPDlgCheck : KEPDlgUncheck);
}

void KEPRshParameterBooleanFrame::ParameterModifiedCB(KEPDialog*, KEPNotification*,
                                                      KEPDlgClientData) {
  TraceCallback("KEPRshParameterBooleanFrame::ParameterModifiedCB");
  KEPIRshParameter* parameter = GetParameter();
  if (!parameter || !check_ || IsShowingValue()) return;
  const unsigned char value = check_->GetState() == KEPDlgCheck ? 1 : 0;
  const OwnWrite own(*this);
  const KEPRdgRenderLock lock;
  parameter->SetBooleanValue(value);
}
