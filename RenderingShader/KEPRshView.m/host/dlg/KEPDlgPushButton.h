// A push button with a title or icons (normal, pressed, focused); pressing it sends the
// activate notification.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPDialog.h"
#include "KEPDlgNotifications.h"

class KEPDlgPushButton : public KEPDialog {
  KEP_DECLARE_CLASS
 public:
  explicit KEPDlgPushButton(KEPDialog* father = nullptr, const KEPString& name = KEPString(),
                            int style = 0);

  /// The icons by resource name; an empty pressed or focused icon shows the normal one.
  void SetIconName(const KEPString& normal, const KEPString& pressed = KEPString(),
                   const KEPString& focused = KEPString());
  const KEPString& GetIconName() const { return icon_; }
  const KEPString& GetPressedIconName() const { return pressed_.empty() ? icon_ : pressed_; }
  const KEPString& GetFocusedIconName() const { return focused_.empty() ? icon_ : focused_; }

  KEPDlgActivateNotification* GetActivateNotification() const { return activate_; }

  void DescribeState(KEPVidStateWriter& writer) const override;
  /// Press.
  HRESULT InjectUserEvent(KEPVidAction action, std::string_view argument,
                          std::string& error) override;

 protected:
  ~KEPDlgPushButton() override;

 private:
  KEPDlgActivateNotification* activate_;
  KEPString icon_;
  KEPString pressed_;
  KEPString focused_;
};

#pragma GCC visibility pop
