// A push button with a label, an icon (a file name in the resources' icons), a colour and a
// help text. Pressing raises Pressed.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPVidCtl.h"

class KEPVidCtlButton : public KEPVidCtl {
  KEP_DECLARE_CLASS
 public:
  explicit KEPVidCtlButton(KEPVidWidget* father = nullptr, const KEPString& name = KEPString());
  void SetLabel(const KEPUnicodeString& label) { label_ = label; }
  const KEPUnicodeString& GetLabel() const { return label_; }
  void SetIcon(const KEPString& icon) { icon_ = icon; }
  const KEPString& GetIcon() const { return icon_; }
  /// The button's face colour (a colour button shows the colour it edits).
  void SetColor(const KEPVidColor& color) {
    color_ = color;
    hasColor_ = true;
  }
  bool HasColor() const { return hasColor_; }
  const KEPVidColor& GetColor() const { return color_; }
  void SetHelpText(const KEPUnicodeString& help) { help_ = help; }
  const KEPUnicodeString& GetHelpText() const { return help_; }
  /// Raises Pressed, as a person's press does.
  void Press();

  void DescribeState(KEPVidStateWriter& writer) const override;
  HRESULT InjectUserEvent(KEPVidAction action, std::string_view argument,
                          std::string& error) override;

 protected:
  ~KEPVidCtlButton() override;

 private:
  KEPUnicodeString label_;
  KEPString icon_;
  KEPUnicodeString help_;
  KEPVidColor color_;
  bool hasColor_ = false;
};

#pragma GCC visibility pop
