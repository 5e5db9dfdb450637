#include "KEPDlgLabel.h"

KEP_IMPLEMENT_CLASS(KEPDlgLabel, KEPDialog, "System")

KEPDlgLabel::KEPDlgLabel(KEPDialog* father, const KEPString& name, int style)
    : KEPDialog(father, name, style) {}

KEPDlgLabel::~KEPDlgLabel() = default;
