// KEPDialog: the base of the classic dialog toolkit's widgets.
//
// A classic widget is a node of the host's widget tree (KEPVidWidget), so it is owned, found by
// path, serialised and driven like an immersive one. On top of the tree it keeps the style bits
// it was made with, a title and help texts, its grid constraints with the toolkit's attachment
// bits, visibility and sensitivity in the toolkit's values (KEPDlgShow / KEPDlgHide,
// KEPDlgEnable / KEPDlgDisable), and a table of notification callbacks.
//
// Notifications: a widget subscribes a callback to the notifications of one sender and one kind
// (AddCallback). A notification starts at a widget and climbs its father chain: the first widget
// on the way whose table has callbacks for that sender and kind calls them all, in the order
// they were added, and the notification stops there. Notify starts at the sender itself (so a
// widget may subscribe to its own notifications); SendNotification starts at another widget,
// normally the sender's father, so that a compound widget passes its own notification on.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "KEPDlgTypes.h"
#include "KEPVidWidget.h"

class KEPDialog : public KEPVidWidget {
  KEP_DECLARE_CLASS
 public:
  /// A widget under `father` (which owns it), or a free one; `style` is kept as given.
  explicit KEPDialog(KEPDialog* father = nullptr, const KEPString& name = KEPString(),
                     int style = 0);

  /// The father when it is a classic widget (borrowed), else null.
  KEPDialog* GetFather() const;
  int GetStyle() const { return style_; }

  // --- Visibility and sensitivity, in the toolkit's values
  /// KEPDlgShow or KEPDlgHide; any other value is traced and changes nothing.
  void SetVisibility(int visibility);
  void SetVisibility(bool) = delete;  ///< the toolkit's values are not booleans
  int GetVisibility() const { return IsVisible() ? KEPDlgShow : KEPDlgHide; }
  /// KEPDlgEnable or KEPDlgDisable; any other value is traced and changes nothing. A compound
  /// widget passes it on to its parts.
  virtual void SetSensitivity(int sensitivity);
  void SetSensitivity(bool) = delete;
  virtual int IsSetSensitivity() const { return IsSensitive() ? KEPDlgEnable : KEPDlgDisable; }

  // --- Texts
  void SetTitle(const KEPUnicodeString& title) { title_ = title; }
  const KEPUnicodeString& GetTitle() const { return title_; }
  void SetHelp(const KEPUnicodeString& help) { help_ = help; }
  const KEPUnicodeString& GetHelp() const { return help_; }
  /// The short help is what shows under the pointer: it is the widget's tooltip.
  void SetShortHelp(const KEPUnicodeString& help) { SetTooltip(help); }
  const KEPUnicodeString& GetShortHelp() const { return GetTooltip(); }
  void SetLongHelp(const KEPUnicodeString& help) { longHelp_ = help; }
  const KEPUnicodeString& GetLongHelp() const { return longHelp_; }

  // --- Place in the father's grid
  /// Row, column, spans and attachment bits (KEPDlgGrid...). Spans below 1 count as 1.
  void SetGridConstraints(int row, int column, int rowSpan, int columnSpan, int attachment);
  int GetGridAttachment() const { return attachment_; }
  /// Attaches `child` to the four sides of its cell (it fills it), keeping its row and column.
  void Attach4Sides(KEPDialog* child);

  // --- Notifications
  /// Calls `callback` with `data` for each notification of kind `kind` sent by `sender` that
  /// reaches this widget; returns a token for RemoveCallback (0 when nothing was added).
  int AddCallback(KEPDialog* sender, std::string_view kind, KEPDlgCallback callback,
                  KEPDlgClientData data = 0);
  /// The same, with the kind named by a notification object (its class).
  int AddCallback(KEPDialog* sender, const KEPNotification* kind, KEPDlgCallback callback,
                  KEPDlgClientData data = 0);
  /// A member function of `target` as the callback.
  template <class T, class Kind>
  int AddCallback(KEPDialog* sender, const Kind& kind, T* target,
                  void (T::*method)(KEPDialog*, KEPNotification*, KEPDlgClientData),
                  KEPDlgClientData data = 0) {
    return AddCallback(
        sender, kind,
        [target, method](KEPDialog* s, KEPNotification* n, KEPDlgClientData d) {
          (target->*method)(s, n, d);
        },
        data);
  }
  void RemoveCallback(int token);
  /// Removes every callback subscribed to `sender`.
  void RemoveCallbacksOf(const KEPDialog* sender);
  std::size_t GetCallbackCount() const { return callbacks_.size(); }

  /// Sends `notification` from this widget, starting at this widget itself.
  void Notify(KEPNotification* notification);
  /// Sends `notification` from this widget, starting at `to` (nothing when `to` is null).
  void SendNotification(KEPDialog* to, KEPNotification* notification);
  /// SendNotification to the father.
  void SendNotificationToFather(KEPNotification* notification) {
    SendNotification(GetFather(), notification);
  }

  void DescribeState(KEPVidStateWriter& writer) const override;

 protected:
  ~KEPDialog() override;

 private:
  // Calls the callbacks of this widget that match (sender, notification); false when none does.
  bool Dispatch(std::uint64_t sender, KEPDialog* senderWidget, KEPNotification* notification);

  struct Callback {
    int token;
    std::uint64_t sender;  ///< the sender's serial: a widget made later at the same address
                           ///< never receives what was meant for a dead one
    std::string kind;
    KEPDlgCallback function;
    KEPDlgClientData data;
  };
  std::vector<Callback> callbacks_;
  int nextToken_ = 1;
  std::uint64_t serial_;
  KEPUnicodeString title_;
  KEPUnicodeString help_;
  KEPUnicodeString longHelp_;
  int style_ = 0;
  int attachment_ = 0;
};

#pragma GCC visibility pop
