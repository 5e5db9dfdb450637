// A label: one line of text.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPVidCtl.h"

class KEPVidCtlLabel : public KEPVidCtl {
  KEP_DECLARE_CLASS
 public:
  explicit KEPVidCtlLabel(KEPVidWidget* father = nullptr, const KEPString& name = KEPString());
  void SetText(const KEPUnicodeString& text) { text_ = text; }
  const KEPUnicodeString& GetText() const { return text_; }
  void DescribeState(KEPVidStateWriter& writer) const override;

 protected:
  ~KEPVidCtlLabel() override;

 private:
  KEPUnicodeString text_;
};

#pragma GCC visibility pop
