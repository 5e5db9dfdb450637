// A popup: a window that shows its children next to an anchor widget when opened. Invisible
// until opened; opening raises PopupOpened, closing PopupClosed. Its options are boolean
// switches in the toolkit's order (0 modal, 1 closes on a click outside, 2 closes on Escape,
// 3 follows its anchor when the anchor moves).
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <vector>

#include "KEPBaseUnknown_WR.h"
#include "KEPVidCtl.h"

class KEPVidCtlPopup : public KEPVidCtl {
  KEP_DECLARE_CLASS
 public:
  explicit KEPVidCtlPopup(KEPVidWidget* father = nullptr, const KEPString& name = KEPString());

  void SetOption(int index, bool on);
  bool GetOption(int index) const;
  /// Offset of the popup from its anchor, in pixels.
  void SetOffset(int x, int y) {
    offsetX_ = x;
    offsetY_ = y;
  }
  int GetOffsetX() const { return offsetX_; }
  int GetOffsetY() const { return offsetY_; }
  /// The widget the popup opens next to (weak: a destroyed anchor reads null).
  void SetAnchor(KEPVidWidget* anchor);
  KEPVidWidget* GetAnchor() const;
  /// Shows (visible, PopupOpened) or hides (invisible, PopupClosed) the popup.
  void Open();
  void Close();
  bool IsOpen() const { return IsVisible(); }

  void DescribeState(KEPVidStateWriter& writer) const override;
  HRESULT InjectUserEvent(KEPVidAction action, std::string_view argument,
                          std::string& error) override;

 protected:
  ~KEPVidCtlPopup() override;

 private:
  std::vector<bool> options_;
  KEPBaseUnknown_WR anchor_;
  int offsetX_ = 0;
  int offsetY_ = 0;
};

#pragma GCC visibility pop
