#include "KEPVidCtlLabel.h"

KEP_IMPLEMENT_CLASS(KEPVidCtlLabel, KEPVidCtl, "System")

KEPVidCtlLabel::KEPVidCtlLabel(KEPVidWidget* father, const KEPString& name)
    : KEPVidCtl(father, name) {}

KEPVidCtlLabel::~KEPVidCtlLabel() = default;

void KEPVidCtlLabel::DescribeState(KEPVidStateWriter& writer) const {
  KEPVidCtl::DescribeState(writer);
  writer.Text("text", text_.ToUTF8());
}
