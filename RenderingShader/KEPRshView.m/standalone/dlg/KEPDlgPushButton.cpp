#include "KEPDlgPushButton.h"

#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPDlgPushButton, KEPDialog, "System")

KEPDlgPushButton::KEPDlgPushButton(KEPDialog* father, const KEPString& name, int style)
    : KEPDialog(father, name, style), activate_(new KEPDlgActivateNotification()) {}

KEPDlgPushButton::~KEPDlgPushButton() {
  activate_->Release();
}

void KEPDlgPushButton::SetIconName(const KEPString& normal, const KEPString& pressed,
                                   const KEPString& focused) {
  icon_ = normal;
  pressed_ = pressed;
  focused_ = focused;
}

void KEPDlgPushButton::DescribeState(KEPVidStateWriter& writer) const {
  KEPDialog::DescribeState(writer);
  writer.Text("icon", icon_);
  writer.Text("pressedIcon", GetPressedIconName());
  writer.Text("focusedIcon", GetFocusedIconName());
}

HRESULT KEPDlgPushButton::InjectUserEvent(KEPVidAction action, std::string_view argument,
                                          std::string& error) {
  if (action != KEPVidAction::Press) return KEPVidRefuseAction(this, action, error);
  if (!KEPVidCheckReachable(this, action, error)) return E_INVALIDARG;
  if (FAILED(KEPVidCheckNoArgument(this, action, argument, error))) return E_INVALIDARG;
  Notify(activate_);
  return S_OK;
}
