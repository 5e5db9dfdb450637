#include "KEPNotification.h"

#include "KEPDlgNotifications.h"

KEP_IMPLEMENT_CLASS(KEPNotification, KEPBaseUnknown, "System")

KEPNotification::KEPNotification() = default;
KEPNotification::~KEPNotification() = default;

const char* KEPNotification::GetNotificationName() const {
  return GetMetaObject()->Name();
}

bool KEPNotification::IsAKindOf(const char* name) const {
  return name && GetMetaObject()->IsAKindOf(name);
}

#define KEP_DLG_NOTIFICATION_IMPL(Class)                \
  KEP_IMPLEMENT_CLASS(Class, KEPNotification, "System") \
  Class::Class() = default;                             \
  Class::~Class() = default;

KEP_DLG_NOTIFICATION_IMPL(KEPDlgSliderDragNotification)
KEP_DLG_NOTIFICATION_IMPL(KEPDlgSliderModifyNotification)
KEP_DLG_NOTIFICATION_IMPL(KEPDlgSpinnerModifyNotification)
KEP_DLG_NOTIFICATION_IMPL(KEPDlgCheckButtonModifyNotification)
KEP_DLG_NOTIFICATION_IMPL(KEPDlgComboSelectNotification)
KEP_DLG_NOTIFICATION_IMPL(KEPDlgListSelectNotification)
KEP_DLG_NOTIFICATION_IMPL(KEPDlgActivateNotification)
KEP_DLG_NOTIFICATION_IMPL(KEPDlgDialogOKNotification)
KEP_DLG_NOTIFICATION_IMPL(KEPDlgDialogCancelNotification)
KEP_DLG_NOTIFICATION_IMPL(KEPDlgWindowCloseNotification)
