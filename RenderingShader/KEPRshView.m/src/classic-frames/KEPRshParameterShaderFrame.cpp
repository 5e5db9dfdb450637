#include "KEPRshParameterShaderFrame.h"

#include "KEPDlgLabel.h"
#include "KEPIAlias.h"
#include "KEPIRshShader.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS(KEPRshParameterShaderFrame, KEPRshParameterFrame, "RenderingShader")

KEPRshParameterShaderFrame::KEPRshParameterShaderFrame(KEPDialog* parent,
                                                       KEPIRshParameter* parameter,
                                                       const KEPString& name, int style)
    : KEPRshParameterFrame(parent, parameter, name, style) {
  if (!parameter) return;
  label_ = new KEPDlgLabel(this, "shaderLabel");
  label_->SetGridConstraints(0, 0, 1, 1, KEPDlgGridLeft);
  ShowParameterValue();
}

KEPRshParameterShaderFrame::~KEPRshParameterShaderFrame() {
  KEPModuleTrace::Trace(2,
                        "(KEPRshParameterShaderFrame::~KEPRshParameterShaderFrame) Destructor\n");
  KEPModuleTrace::Trace(2, "(KEPRshParameterShaderFrame::~KEPRshParameterShaderFrame) Done\n");
}

void KEPRshParameterShaderFrame::ShowParameterValue() {
  if (!label_) return;
  KEPIRshShader* connected = nullptr;
  const HRESULT hr = GetParameter()->GetConnectedShader(connected);
  const auto shader = KEP_var<KEPIRshShader>::Adopt(connected);
  KEPUnicodeString text;
  if (SUCCEEDED(hr) && shader) {
    if (const KEP_var<KEPIAlias> alias = KEPQueryVar<KEPIAlias>(shader.Get()))
      alias->GetAlias(text);
    if (text.IsEmpty()) {
      KEPString id;
      shader->GetId(id);
      text = KEPUnicodeString::FromUTF8(id);
    }
  }
  if (text.IsEmpty()) text = KEPUnicodeString::FromUTF8(kNoShader);
  label_->SetTitle(text);
}
