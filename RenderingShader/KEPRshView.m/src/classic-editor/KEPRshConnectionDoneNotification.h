// The notification a connection dialog sends once a person has finished with it: confirmed (a
// shader may have been connected) or cancelled and closed (nothing changed). It starts at the
// dialog itself and climbs its classic father chain, so the opener hears it in both set-ups: a
// classic frame that made the dialog its child subscribes in its own table; an immersive row,
// which is no classic widget, subscribes in the dialog's table. Its kind is its class name.
#pragma once

#include "KEPNotification.h"

class KEPRshConnectionDoneNotification : public KEPNotification {
  KEP_DECLARE_CLASS
 public:
  KEPRshConnectionDoneNotification();

  const char* GetNotificationName() const override;
  /// True for "KEPRshConnectionDoneNotification"; any other name is asked of KEPNotification.
  bool IsAKindOf(const char* name) const override;

  /// True when the dialog was confirmed, false when it was cancelled or closed.
  bool IsConfirmed() const { return confirmed_; }
  void SetConfirmed(bool confirmed) { confirmed_ = confirmed; }

 protected:
  ~KEPRshConnectionDoneNotification() override;

 private:
  bool confirmed_ = false;
};
