// KEPNotification: what a classic widget sends when something happens to it (a value changed, a
// button was pressed, a dialog was confirmed). A subscriber asks for the notifications of one
// sender and one kind; the kind is a class name, and a notification is of a kind when its class
// or one of its bases bears that name (IsAKindOf). A module derives its own notifications.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPBaseUnknown.h"

class KEPNotification : public KEPBaseUnknown {
  KEP_DECLARE_CLASS
 public:
  KEPNotification();

  /// The notification's class name (the metaclass's unless a class says otherwise).
  virtual const char* GetNotificationName() const;
  /// True when the notification is of kind `name`: its class or one of its bases.
  virtual bool IsAKindOf(const char* name) const;

 protected:
  ~KEPNotification() override;
};

#pragma GCC visibility pop
