#include "KEPDlgCheckButton.h"

#include "KEPString.h"
#include "KEPTrace.h"
#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPDlgCheckButton, KEPDialog, "System")

KEPDlgCheckButton::KEPDlgCheckButton(KEPDialog* father, const KEPString& name, int style)
    : KEPDialog(father, name, style), modify_(new KEPDlgCheckButtonModifyNotification()) {}

KEPDlgCheckButton::~KEPDlgCheckButton() {
  modify_->Release();
}

void KEPDlgCheckButton::SetState(int state, int notify) {
  if (state != KEPDlgCheck && state != KEPDlgUncheck) {
    KEPTrace("KEPDlgCheckButton")
        .Warning("{ widget = %s, refused state = 0x%x }", GetName().c_str(),
                 static_cast<unsigned>(state));
    return;
  }
  const bool checked = state == KEPDlgCheck;
  if (checked == checked_) return;
  checked_ = checked;
  if (notify) Notify(modify_);
}

void KEPDlgCheckButton::DescribeState(KEPVidStateWriter& writer) const {
  KEPDialog::DescribeState(writer);
  writer.Bool("checked", checked_);
}

HRESULT KEPDlgCheckButton::InjectUserEvent(KEPVidAction action, std::string_view argument,
                                           std::string& error) {
  if (action != KEPVidAction::Toggle) return KEPVidRefuseAction(this, action, error);
  if (!KEPVidCheckReachable(this, action, error)) return E_INVALIDARG;
  const std::string word = KEPToLower(KEPTrimBlanks(argument));
  bool checked = !checked_;
  if (word == "on" || word == "true" || word == "1") {
    checked = true;
  } else if (word == "off" || word == "false" || word == "0") {
    checked = false;
  } else if (!word.empty()) {
    return KEPVidRefuse(
        this, KEPVidQuote(argument) + " is not a check state (on, off, or nothing to flip)", error);
  }
  checked_ = checked;
  Notify(modify_);
  return S_OK;
}
