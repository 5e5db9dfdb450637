// A combo: one line chosen among several (see KEPDlgLineList); a selection sends the combo
// select notification.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPDlgLineList.h"
#include "KEPDlgNotifications.h"

class KEPDlgCombo : public KEPDlgLineList {
  KEP_DECLARE_CLASS
 public:
  explicit KEPDlgCombo(KEPDialog* father = nullptr, const KEPString& name = KEPString(),
                       int style = 0);

  KEPDlgComboSelectNotification* GetComboSelectNotification() const { return select_; }

 protected:
  ~KEPDlgCombo() override;
  KEPNotification* SelectNotification() const override { return select_; }

 private:
  KEPDlgComboSelectNotification* select_;
};

#pragma GCC visibility pop
