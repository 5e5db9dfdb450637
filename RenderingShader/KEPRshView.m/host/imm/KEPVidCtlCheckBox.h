// A check box with a label. A change of state raises Toggled.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPVidCtl.h"

class KEPVidCtlCheckBox : public KEPVidCtl {
  KEP_DECLARE_CLASS
 public:
  explicit KEPVidCtlCheckBox(KEPVidWidget* father = nullptr, const KEPString& name = KEPString());
  void SetChecked(bool checked);
  bool IsChecked() const { return checked_; }
  void SetLabel(const KEPUnicodeString& label) { label_ = label; }
  const KEPUnicodeString& GetLabel() const { return label_; }

  void DescribeState(KEPVidStateWriter& writer) const override;
  HRESULT InjectUserEvent(KEPVidAction action, std::string_view argument,
                          std::string& error) override;

 protected:
  ~KEPVidCtlCheckBox() override;

 private:
  KEPUnicodeString label_;
  bool checked_ = false;
};

#pragma GCC visibility pop
