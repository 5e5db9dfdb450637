#include "KEPDlgDialog.h"

#include "KEPTrace.h"
#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPDlgDialog, KEPDialog, "System")

KEPDlgDialog::KEPDlgDialog(KEPDialog* father, const KEPString& name, int style)
    : KEPDialog(father, name, style),
      ok_(new KEPDlgDialogOKNotification()),
      cancel_(new KEPDlgDialogCancelNotification()),
      close_(new KEPDlgWindowCloseNotification()) {
  // A window shows when its builder has filled it.
  SetVisibility(KEPDlgHide);
}

KEPDlgDialog::~KEPDlgDialog() {
  close_->Release();
  cancel_->Release();
  ok_->Release();
}

void KEPDlgDialog::SetOKSensitivity(int sensitivity) {
  if (sensitivity != KEPDlgEnable && sensitivity != KEPDlgDisable) {
    KEPTrace("KEPDlgDialog")
        .Warning("{ widget = %s, refused OK sensitivity = %d }", GetName().c_str(), sensitivity);
    return;
  }
  okSensitive_ = sensitivity == KEPDlgEnable;
}

void KEPDlgDialog::DescribeState(KEPVidStateWriter& writer) const {
  KEPDialog::DescribeState(writer);
  writer.Bool("okSensitive", okSensitive_);
}

HRESULT KEPDlgDialog::InjectUserEvent(KEPVidAction action, std::string_view argument,
                                      std::string& error) {
  if (action != KEPVidAction::Ok && action != KEPVidAction::Cancel && action != KEPVidAction::Close)
    return KEPVidRefuseAction(this, action, error);
  if (!KEPVidCheckReachable(this, action, error)) return E_INVALIDARG;
  if (FAILED(KEPVidCheckNoArgument(this, action, argument, error))) return E_INVALIDARG;
  if (action == KEPVidAction::Ok) {
    if (!okSensitive_) return KEPVidRefuse(this, "its OK button is insensitive", error);
    Notify(ok_);
  } else if (action == KEPVidAction::Cancel) {
    Notify(cancel_);
  } else {
    Notify(close_);
  }
  return S_OK;
}
