#include "KEPRshParameterShaderFrame.h"

#include "KEPDlgLabel.h"
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
  ShowParameterValue();
}

KEPRshParameterShaderFrame::~KEPRshParameterShaderFrame() {
  KEPModuleTrace::Trace(2,
                        "(KEPRshParameterShaderFrame::~KEPRshParameterShaderFrame) Destructor\n");
  KEPModuleTrace::Trace(2, "(KEPRshParameterShaderFrame::~KEPRshParameterShaderFrame) Done\n");
}

void KEPRshParameterShaderFrame::ShowParameterValue() {
  if (label_) label_->SetTitle(KEPRshParameterShaderImmWidget::ConnectionText(GetParameter()));
}
