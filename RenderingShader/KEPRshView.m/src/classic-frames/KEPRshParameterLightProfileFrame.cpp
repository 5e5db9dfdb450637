#include "KEPRshParameterLightProfileFrame.h"

#include "KEPDlgPushButton.h"
#include "KEPIRshLightProfileParameter.h"
#include "KEPRdgRenderLock.h"
#include "KEPTrace.h"
#include "KEPVidCtlEditor.h"

KEP_IMPLEMENT_CLASS(KEPRshParameterLightProfileFrame, KEPRshParameterFrame, "RenderingShader")

namespace {
KEPString Trimmed(const KEPString& text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  if (first == KEPString::npos) return {};
  const std::size_t last = text.find_last_not_of(" \t\r\n");
  return text.substr(first, last - first + 1);
}
}  // namespace

KEPRshParameterLightProfileFrame::KEPRshParameterLightProfileFrame(KEPDialog* parent,
                                                                   KEPIRshParameter* parameter,
                                                                   const KEPString& name, int style)
    : KEPRshParameterFrame(parent, parameter, name, style) {
  if (!parameter) return;
  editor_ = new KEPVidCtlEditor(this, "lightProfileEditor");
  editor_->SetDataType(KEPVidEditor_Text);
  editor_->SetCharacterWidth(24);
  KEPVidGridCell cell;
  cell.attach = KEPVidAttach_Left | KEPVidAttach_Right;
  editor_->SetGridCell(cell);
  clear_ = new KEPDlgPushButton(this, "lightProfileClear");
  clear_->SetTitle(KEPUnicodeString::FromUTF8("None"));
  clear_->SetGridConstraints(0, 1, 1, 1, KEPDlgGridLeft);
  ShowValue();
  editorHandler_ = editor_->AddHandler(KEPVidEvent::EditModify, [this](KEPVidWidget*, KEPVidEvent) {
    if (active_ && !IsShowingValue()) Write(Trimmed(editor_->GetText().ToUTF8()));
  });
  AddCallback(clear_, clear_->GetActivateNotification(), this,
              &KEPRshParameterLightProfileFrame::ParameterModifiedCB);
  active_ = true;
}

KEPRshParameterLightProfileFrame::~KEPRshParameterLightProfileFrame() {
  KEPModuleTrace::Trace(
      2, "(KEPRshParameterLightProfileFrame::~KEPRshParameterLightProfileFrame) Destructor\n");
  // The editor may be held elsewhere and outlive the frame: its handler must not.
  if (editor_) editor_->RemoveHandler(editorHandler_);
  KEPModuleTrace::Trace(
      2, "(KEPRshParameterLightProfileFrame::~KEPRshParameterLightProfileFrame) Done\n");
}

void KEPRshParameterLightProfileFrame::ShowValue() {
  KEPIRshParameter* parameter = GetParameter();
  if (!parameter || !editor_) return;
  KEPString path;
  if (const KEP_var<KEPIRshLightProfileParameter> profile =
          KEPQueryVar<KEPIRshLightProfileParameter>(parameter))
    profile->GetLightProfile(path);
  const bool was = active_;
  active_ = false;
  editor_->SetText(KEPUnicodeString::FromUTF8(path));
  active_ = was;
}

void KEPRshParameterLightProfileFrame::ParameterModifiedCB(KEPDialog*, KEPNotification*,
                                                           KEPDlgClientData) {
  TraceCallback("KEPRshParameterLightProfileFrame::ParameterModifiedCB");
  if (active_ && !IsShowingValue()) Write(KEPString());
}

void KEPRshParameterLightProfileFrame::Write(const KEPString& path) {
  KEPIRshParameter* parameter = GetParameter();
  if (!parameter) return;
  if (const KEP_var<KEPIRshLightProfileParameter> profile =
          KEPQueryVar<KEPIRshLightProfileParameter>(parameter)) {
    const OwnWrite own(*this);
    const KEPRdgRenderLock lock;
    profile->SetLightProfile(path);
  }
  ShowValue();
}
