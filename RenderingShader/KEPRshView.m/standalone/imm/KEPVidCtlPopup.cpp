#include "KEPVidCtlPopup.h"

#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPVidCtlPopup, KEPVidCtl, "System")

KEPVidCtlPopup::KEPVidCtlPopup(KEPVidWidget* father, const KEPString& name)
    : KEPVidCtl(father, name) {
  SetVisibility(false);
}

KEPVidCtlPopup::~KEPVidCtlPopup() = default;

void KEPVidCtlPopup::SetOption(int index, bool on) {
  KEPVidSetOption(options_, index, on);
}

bool KEPVidCtlPopup::GetOption(int index) const {
  return KEPVidGetOption(options_, index);
}

void KEPVidCtlPopup::SetAnchor(KEPVidWidget* anchor) {
  anchor_.Set(anchor);
}

KEPVidWidget* KEPVidCtlPopup::GetAnchor() const {
  return static_cast<KEPVidWidget*>(anchor_.Get());
}

void KEPVidCtlPopup::Open() {
  if (IsOpen()) return;
  SetVisibility(true);
  Raise(KEPVidEvent::PopupOpened);
}

void KEPVidCtlPopup::Close() {
  if (!IsOpen()) return;
  SetVisibility(false);
  Raise(KEPVidEvent::PopupClosed);
}

void KEPVidCtlPopup::DescribeState(KEPVidStateWriter& writer) const {
  KEPVidCtl::DescribeState(writer);
  const std::vector<int> options(options_.begin(), options_.end());
  writer.IntList("options", options);
  const int offset[] = {offsetX_, offsetY_};
  writer.IntList("offset", offset);
  const KEPVidWidget* anchor = GetAnchor();
  writer.Text("anchor", anchor ? std::string_view(anchor->GetName()) : std::string_view());
  writer.Bool("open", IsOpen());
}

HRESULT KEPVidCtlPopup::InjectUserEvent(KEPVidAction action, std::string_view argument,
                                        std::string& error) {
  if (action != KEPVidAction::Open && action != KEPVidAction::Close)
    return KEPVidRefuseAction(this, action, error);
  // A closed popup is hidden by nature: a person opens it through its anchor, so only its
  // ancestors' visibility counts for opening.
  if (!KEPVidCheckReachable(this, action, error, action == KEPVidAction::Open)) return E_INVALIDARG;
  if (FAILED(KEPVidCheckNoArgument(this, action, argument, error))) return E_INVALIDARG;
  if (action == KEPVidAction::Open)
    Open();
  else
    Close();
  return S_OK;
}
