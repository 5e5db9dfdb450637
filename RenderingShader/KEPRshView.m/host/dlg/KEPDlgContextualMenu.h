// A contextual menu on a widget (its father): it holds the items the person chooses from when
// opening the menu on that widget.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPDialog.h"

class KEPDlgContextualMenu : public KEPDialog {
  KEP_DECLARE_CLASS
 public:
  /// The menu of `widget`, which owns it.
  explicit KEPDlgContextualMenu(KEPDialog* widget = nullptr, const KEPString& name = KEPString(),
                                int style = 0);

 protected:
  ~KEPDlgContextualMenu() override;
};

#pragma GCC visibility pop
