// A dialog window: made hidden, shown with SetVisibility(KEPDlgShow). A person confirms it (OK),
// cancels it, or closes its window; each sends its notification, and the dialog stays as it is
// (its subscribers hide it). While OK is insensitive a person cannot confirm.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPDialog.h"
#include "KEPDlgNotifications.h"

class KEPDlgDialog : public KEPDialog {
  KEP_DECLARE_CLASS
 public:
  explicit KEPDlgDialog(KEPDialog* father = nullptr, const KEPString& name = KEPString(),
                        int style = 0);

  /// KEPDlgEnable or KEPDlgDisable for the OK button.
  void SetOKSensitivity(int sensitivity);
  int GetOKSensitivity() const { return okSensitive_ ? KEPDlgEnable : KEPDlgDisable; }

  KEPDlgDialogOKNotification* GetOKNotification() const { return ok_; }
  KEPDlgDialogCancelNotification* GetCancelNotification() const { return cancel_; }
  KEPDlgWindowCloseNotification* GetWindowCloseNotification() const { return close_; }

  void DescribeState(KEPVidStateWriter& writer) const override;
  /// Ok, Cancel, Close (the window's close box).
  HRESULT InjectUserEvent(KEPVidAction action, std::string_view argument,
                          std::string& error) override;

 protected:
  ~KEPDlgDialog() override;

 private:
  KEPDlgDialogOKNotification* ok_;
  KEPDlgDialogCancelNotification* cancel_;
  KEPDlgWindowCloseNotification* close_;
  bool okSensitive_ = true;
};

#pragma GCC visibility pop
