// The notifications the classic toolkit's widgets send. Each widget owns one object of each kind
// it sends (its Get...Notification getter), so a subscriber can name the kind by the object.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPNotification.h"

#define KEP_DLG_NOTIFICATION(Class)      \
  class Class : public KEPNotification { \
    KEP_DECLARE_CLASS                    \
   public:                               \
    Class();                             \
                                         \
   protected:                            \
    ~Class() override;                   \
  };

/// A slider's handle moves while a person drags it.
KEP_DLG_NOTIFICATION(KEPDlgSliderDragNotification)
/// A slider's value was set: a person released the handle, or code set it with notify.
KEP_DLG_NOTIFICATION(KEPDlgSliderModifyNotification)
/// A spinner's value changed.
KEP_DLG_NOTIFICATION(KEPDlgSpinnerModifyNotification)
/// A check button's state changed.
KEP_DLG_NOTIFICATION(KEPDlgCheckButtonModifyNotification)
/// A combo's selection was made.
KEP_DLG_NOTIFICATION(KEPDlgComboSelectNotification)
/// A selector list's selection was made.
KEP_DLG_NOTIFICATION(KEPDlgListSelectNotification)
/// A push button or a menu's push item was activated.
KEP_DLG_NOTIFICATION(KEPDlgActivateNotification)
/// A dialog's OK.
KEP_DLG_NOTIFICATION(KEPDlgDialogOKNotification)
/// A dialog's Cancel.
KEP_DLG_NOTIFICATION(KEPDlgDialogCancelNotification)
/// A dialog's window was closed by its frame's close box.
KEP_DLG_NOTIFICATION(KEPDlgWindowCloseNotification)

#undef KEP_DLG_NOTIFICATION

#pragma GCC visibility pop
