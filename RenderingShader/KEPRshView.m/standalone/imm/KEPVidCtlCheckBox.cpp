#include "KEPVidCtlCheckBox.h"

#include "KEPString.h"
#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPVidCtlCheckBox, KEPVidCtl, "System")

KEPVidCtlCheckBox::KEPVidCtlCheckBox(KEPVidWidget* father, const KEPString& name)
    : KEPVidCtl(father, name) {}

KEPVidCtlCheckBox::~KEPVidCtlCheckBox() = default;

void KEPVidCtlCheckBox::SetChecked(bool checked) {
  if (checked == checked_) return;
  checked_ = checked;
  Raise(KEPVidEvent::Toggled);
}

void KEPVidCtlCheckBox::DescribeState(KEPVidStateWriter& writer) const {
  KEPVidCtl::DescribeState(writer);
  writer.Bool("checked", checked_);
  writer.Text("label", label_.ToUTF8());
}

HRESULT KEPVidCtlCheckBox::InjectUserEvent(KEPVidAction action, std::string_view argument,
                                           std::string& error) {
  if (action != KEPVidAction::Toggle) return KEPVidRefuseAction(this, action, error);
  if (!KEPVidCheckReachable(this, action, error)) return E_INVALIDARG;
  const std::string word = KEPToLower(KEPTrimBlanks(argument));
  bool checked = !checked_;
  if (word == "on" || word == "true" || word == "1") {
    checked = true;
  } else if (word == "off" || word == "false" || word == "0") {
    checked = false;
  } else if (!word.empty()) {
    return KEPVidRefuse(
        this, KEPVidQuote(argument) + " is not a check state (on, off, or nothing to flip)", error);
  }
  SetChecked(checked);
  return S_OK;
}
