// A check button with a title; its state is KEPDlgCheck or KEPDlgUncheck.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPDialog.h"
#include "KEPDlgNotifications.h"

class KEPDlgCheckButton : public KEPDialog {
  KEP_DECLARE_CLASS
 public:
  explicit KEPDlgCheckButton(KEPDialog* father = nullptr, const KEPString& name = KEPString(),
                             int style = 0);

  /// KEPDlgCheck or KEPDlgUncheck (any other value is traced and changes nothing); the modify
  /// notification follows a change when `notify` is not 0.
  void SetState(int state, int notify = 0);
  int GetState() const { return checked_ ? KEPDlgCheck : KEPDlgUncheck; }

  KEPDlgCheckButtonModifyNotification* GetCheckButtonModifyNotification() const { return modify_; }

  void DescribeState(KEPVidStateWriter& writer) const override;
  /// Toggle: "on", "off", or nothing to flip; always notifies.
  HRESULT InjectUserEvent(KEPVidAction action, std::string_view argument,
                          std::string& error) override;

 protected:
  ~KEPDlgCheckButton() override;

 private:
  KEPDlgCheckButtonModifyNotification* modify_;
  bool checked_ = false;
};

#pragma GCC visibility pop
