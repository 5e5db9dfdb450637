// A label: a title shown as text.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPDialog.h"

class KEPDlgLabel : public KEPDialog {
  KEP_DECLARE_CLASS
 public:
  explicit KEPDlgLabel(KEPDialog* father = nullptr, const KEPString& name = KEPString(),
                       int style = 0);

 protected:
  ~KEPDlgLabel() override;
};

#pragma GCC visibility pop
