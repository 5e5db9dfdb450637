#include "KEPDlgContextualMenu.h"

KEP_IMPLEMENT_CLASS(KEPDlgContextualMenu, KEPDialog, "System")

KEPDlgContextualMenu::KEPDlgContextualMenu(KEPDialog* widget, const KEPString& name, int style)
    : KEPDialog(widget, name, style) {}

KEPDlgContextualMenu::~KEPDlgContextualMenu() = default;
