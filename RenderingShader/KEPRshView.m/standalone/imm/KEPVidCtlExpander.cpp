#include "KEPVidCtlExpander.h"

#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPVidCtlExpander, KEPVidCtl, "System")

KEPVidCtlExpander::KEPVidCtlExpander(KEPVidWidget* father, const KEPString& name)
    : KEPVidCtl(father, name) {}

KEPVidCtlExpander::~KEPVidCtlExpander() = default;

void KEPVidCtlExpander::SetExpanded(bool expanded) {
  if (expanded == expanded_) return;
  expanded_ = expanded;
  Raise(expanded ? KEPVidEvent::Expanded : KEPVidEvent::Collapsed);
}

void KEPVidCtlExpander::DescribeState(KEPVidStateWriter& writer) const {
  KEPVidCtl::DescribeState(writer);
  writer.Text("label", label_.ToUTF8());
  writer.Bool("expanded", expanded_);
}

HRESULT KEPVidCtlExpander::InjectUserEvent(KEPVidAction action, std::string_view argument,
                                           std::string& error) {
  if (action != KEPVidAction::Expand && action != KEPVidAction::Collapse)
    return KEPVidRefuseAction(this, action, error);
  if (!KEPVidCheckReachable(this, action, error)) return E_INVALIDARG;
  if (FAILED(KEPVidCheckNoArgument(this, action, argument, error))) return E_INVALIDARG;
  SetExpanded(action == KEPVidAction::Expand);
  return S_OK;
}
