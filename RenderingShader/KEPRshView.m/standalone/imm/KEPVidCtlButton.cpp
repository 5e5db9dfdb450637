#include "KEPVidCtlButton.h"

#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPVidCtlButton, KEPVidCtl, "System")

KEPVidCtlButton::KEPVidCtlButton(KEPVidWidget* father, const KEPString& name)
    : KEPVidCtl(father, name) {}

KEPVidCtlButton::~KEPVidCtlButton() = default;

void KEPVidCtlButton::Press() {
  Raise(KEPVidEvent::Pressed);
}

void KEPVidCtlButton::DescribeState(KEPVidStateWriter& writer) const {
  KEPVidCtl::DescribeState(writer);
  writer.Text("label", label_.ToUTF8());
  writer.Text("icon", icon_);
  if (hasColor_) {
    const int channels[] = {color_.red, color_.green, color_.blue, color_.alpha};
    writer.IntList("color", channels);
  }
  writer.Text("help", help_.ToUTF8());
}

HRESULT KEPVidCtlButton::InjectUserEvent(KEPVidAction action, std::string_view argument,
                                         std::string& error) {
  if (action != KEPVidAction::Press) return KEPVidRefuseAction(this, action, error);
  if (!KEPVidCheckReachable(this, action, error)) return E_INVALIDARG;
  if (FAILED(KEPVidCheckNoArgument(this, action, argument, error))) return E_INVALIDARG;
  Press();
  return S_OK;
}
