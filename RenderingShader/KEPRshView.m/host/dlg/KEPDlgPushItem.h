// An item of a menu, with a title and help texts; choosing it sends the activate notification.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPDialog.h"
#include "KEPDlgNotifications.h"

class KEPDlgPushItem : public KEPDialog {
  KEP_DECLARE_CLASS
 public:
  explicit KEPDlgPushItem(KEPDialog* menu = nullptr, const KEPString& name = KEPString(),
                          int style = 0);

  KEPDlgActivateNotification* GetActivateNotification() const { return activate_; }

  /// Press: the person chose the item.
  HRESULT InjectUserEvent(KEPVidAction action, std::string_view argument,
                          std::string& error) override;

 protected:
  ~KEPDlgPushItem() override;

 private:
  KEPDlgActivateNotification* activate_;
};

#pragma GCC visibility pop
