#include "KEPDlgCombo.h"

KEP_IMPLEMENT_CLASS(KEPDlgCombo, KEPDlgLineList, "System")

KEPDlgCombo::KEPDlgCombo(KEPDialog* father, const KEPString& name, int style)
    : KEPDlgLineList(father, name, style), select_(new KEPDlgComboSelectNotification()) {}

KEPDlgCombo::~KEPDlgCombo() {
  select_->Release();
}
