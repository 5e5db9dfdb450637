// An expander: a header with a label over a content (its children) that a person opens and
// closes. Opening raises Expanded, closing Collapsed. Created closed.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPVidCtl.h"

class KEPVidCtlExpander : public KEPVidCtl {
  KEP_DECLARE_CLASS
 public:
  explicit KEPVidCtlExpander(KEPVidWidget* father = nullptr, const KEPString& name = KEPString());

  void SetLabel(const KEPUnicodeString& label) { label_ = label; }
  const KEPUnicodeString& GetLabel() const { return label_; }
  /// Opens or closes the content, raising Expanded or Collapsed when the state changes.
  void SetExpanded(bool expanded);
  bool IsExpanded() const { return expanded_; }

  void DescribeState(KEPVidStateWriter& writer) const override;
  HRESULT InjectUserEvent(KEPVidAction action, std::string_view argument,
                          std::string& error) override;

 protected:
  ~KEPVidCtlExpander() override;

 private:
  KEPUnicodeString label_;
  bool expanded_ = false;
};

#pragma GCC visibility pop
