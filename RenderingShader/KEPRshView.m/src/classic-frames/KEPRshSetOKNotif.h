// The notification a parameter frame's owner sends to say that the edit is to be confirmed (the
// editor's OK). Its kind is its class name, "KEPRshSetOKNotif".
#pragma once

#include "KEPNotification.h"

class KEPRshSetOKNotif : public KEPNotification {
  KEP_DECLARE_CLASS
 public:
  KEPRshSetOKNotif();

  const char* GetNotificationName() const override;
  /// True for "KEPRshSetOKNotif"; any other name is asked of KEPNotification.
  bool IsAKindOf(const char* name) const override;

 protected:
  ~KEPRshSetOKNotif() override;
};
