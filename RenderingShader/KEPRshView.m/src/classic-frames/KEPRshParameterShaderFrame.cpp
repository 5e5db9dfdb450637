#include "KEPRshParameterShaderFrame.h"

#include "KEPDlgLabel.h"
#include "KEPRshModelEvents.h"
#include "KEPRshParameterShaderImmWidget.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS(KEPRshParameterShaderFrame, KEPRshParameterFrame, "RenderingShader")

KEPRshParameterShaderFrame::KEPRshParameterShaderFrame(KEPDialog* parent,
                                                       KEPIRshParameter* parameter,
                                                       const KEPString& name, int style)
    : KEPRshParameterFrame(parent, parameter, name, style) {
  if (!parameter) return;
  label_ = new KEPDlgLabel(this, "connectedShader");
  label_->SetGridConstraints(0, 0, 1, 1, KEPDlgGridLeft);
  ShowConnection();
  // The frame dies before the model events forget it (the destructor removes the observer), so
  // the observer may call back into it.
  observer_ = KEPRshModelEvents::AddParameterObserver(
      [this](KEPIRshParameter* changed, KEPRshParameterChangeKind kind) {
        if (kind == KEPRshParameterChangeKind::Connection && changed == GetParameter())
          ShowConnection();
      });
}

KEPRshParameterShaderFrame::~KEPRshParameterShaderFrame() {
  KEPModuleTrace::Trace(2,
                        "(KEPRshParameterShaderFrame::~KEPRshParameterShaderFrame) Destructor\n");
  if (observer_) KEPRshModelEvents::RemoveObserver(observer_);
  KEPModuleTrace::Trace(2, "(KEPRshParameterShaderFrame::~KEPRshParameterShaderFrame) Done\n");
}

void KEPRshParameterShaderFrame::ShowConnection() {
  if (label_) label_->SetTitle(KEPRshParameterShaderImmWidget::ConnectionText(GetParameter()));
}
