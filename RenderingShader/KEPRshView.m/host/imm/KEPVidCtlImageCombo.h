// A combo of entries, each a label with an optional image (an icon file name). The selection is
// an entry index, or -1 for none. A change of selection raises Selected.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <vector>

#include "KEPVidCtl.h"

class KEPVidCtlImageCombo : public KEPVidCtl {
  KEP_DECLARE_CLASS
 public:
  explicit KEPVidCtlImageCombo(KEPVidWidget* father = nullptr, const KEPString& name = KEPString());
  /// Appends an entry; returns its index.
  int AddItem(const KEPUnicodeString& label, const KEPString& image = KEPString());
  /// Removes every entry; the selection becomes -1 (raising Selected if it was not).
  void ClearItems();
  int GetItemCount() const { return static_cast<int>(items_.size()); }
  const KEPUnicodeString& GetItemLabel(int index) const {
    return items_[static_cast<std::size_t>(index)].label;
  }
  const KEPString& GetItemImage(int index) const {
    return items_[static_cast<std::size_t>(index)].image;
  }
  /// Selects entry `index`; an index outside the entries selects nothing (-1).
  void SetSelect(int index);
  int GetSelect() const { return selected_; }

  void DescribeState(KEPVidStateWriter& writer) const override;
  /// Select: an entry index, or an entry's label (the first that matches exactly).
  HRESULT InjectUserEvent(KEPVidAction action, std::string_view argument,
                          std::string& error) override;

 protected:
  ~KEPVidCtlImageCombo() override;

 private:
  struct Item {
    KEPUnicodeString label;
    KEPString image;
  };
  std::vector<Item> items_;
  int selected_ = -1;
};

#pragma GCC visibility pop
