#include "KEPDlgPushItem.h"

#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPDlgPushItem, KEPDialog, "System")

KEPDlgPushItem::KEPDlgPushItem(KEPDialog* menu, const KEPString& name, int style)
    : KEPDialog(menu, name, style), activate_(new KEPDlgActivateNotification()) {}

KEPDlgPushItem::~KEPDlgPushItem() {
  activate_->Release();
}

HRESULT KEPDlgPushItem::InjectUserEvent(KEPVidAction action, std::string_view argument,
                                        std::string& error) {
  if (action != KEPVidAction::Press) return KEPVidRefuseAction(this, action, error);
  if (!KEPVidCheckReachable(this, action, error)) return E_INVALIDARG;
  if (FAILED(KEPVidCheckNoArgument(this, action, argument, error))) return E_INVALIDARG;
  Notify(activate_);
  return S_OK;
}
