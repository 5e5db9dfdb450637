#include "KEPVidCtl.h"

#include "KEPISYPIntrospectable.h"

KEP_IMPLEMENT_CLASS(KEPVidCtl, KEPVidWidget, "System")

KEPVidCtl::KEPVidCtl(KEPVidWidget* father, const KEPString& name) : KEPVidWidget(father, name) {}

KEPVidCtl::~KEPVidCtl() {
  delete adapter_;
}

void KEPVidCtl::DescribeState(KEPVidStateWriter& writer) const {
  KEPVidWidget::DescribeState(writer);
  if (!styleSheet_.empty()) writer.Text("styleSheet", styleSheet_);
  if (!styleName_.empty()) writer.Text("styleName", styleName_);
  if (!styleClass_.IsEmpty()) writer.Text("styleClass", styleClass_.ToUTF8());
}
