#include "KEPDlgSelectorList.h"

KEP_IMPLEMENT_CLASS(KEPDlgSelectorList, KEPDlgLineList, "System")

KEPDlgSelectorList::KEPDlgSelectorList(KEPDialog* father, const KEPString& name, int style)
    : KEPDlgLineList(father, name, style), select_(new KEPDlgListSelectNotification()) {}

KEPDlgSelectorList::~KEPDlgSelectorList() {
  select_->Release();
}
