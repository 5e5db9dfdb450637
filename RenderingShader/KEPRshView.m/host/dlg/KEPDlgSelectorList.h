// A selector list: lines shown one under the other, one of which may be selected (see
// KEPDlgLineList); a selection sends the list select notification.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPDlgLineList.h"
#include "KEPDlgNotifications.h"

class KEPDlgSelectorList : public KEPDlgLineList {
  KEP_DECLARE_CLASS
 public:
  explicit KEPDlgSelectorList(KEPDialog* father = nullptr, const KEPString& name = KEPString(),
                              int style = 0);

  KEPDlgListSelectNotification* GetListSelectNotification() const { return select_; }

 protected:
  ~KEPDlgSelectorList() override;
  KEPNotification* SelectNotification() const override { return select_; }

 private:
  KEPDlgListSelectNotification* select_;
};

#pragma GCC visibility pop
