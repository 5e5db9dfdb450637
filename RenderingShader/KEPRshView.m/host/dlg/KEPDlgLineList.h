// KEPDlgLineList: the lines and the single selection shared by the combo and the selector list.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <string>
#include <vector>

#include "KEPDialog.h"

class KEPDlgLineList : public KEPDialog {
  KEP_DECLARE_CLASS
 public:
  explicit KEPDlgLineList(KEPDialog* father = nullptr, const KEPString& name = KEPString(),
                          int style = 0);

  /// Inserts `count` lines before line `position` (-1 or past the end: after the last); with
  /// KEPDlgLineReplace in `flags` they replace every line. A selection that no longer names a
  /// line is cleared; inserted lines move it with its line.
  void SetLine(const KEPUnicodeString* lines, int count, int position = -1, int flags = 0);
  void SetLine(const KEPUnicodeString& line, int position = -1, int flags = 0) {
    SetLine(&line, 1, position, flags);
  }
  void ClearLine();
  int GetLineCount() const { return static_cast<int>(lines_.size()); }
  /// Line `index`, or an empty text outside the lines.
  KEPUnicodeString GetLine(int index) const;

  /// Selects line `index` (-1: nothing); an index outside the lines is traced and changes
  /// nothing. The select notification follows a change when `notify` is not 0.
  void SetSelect(int index, int notify = 0);
  /// The selected line, or -1.
  int GetSelect() const { return selected_; }
  /// The number of selected lines (0 or 1).
  int GetSelectCount() const { return selected_ < 0 ? 0 : 1; }
  void SetVisibleTextWidth(int characters) { textWidth_ = characters; }
  int GetVisibleTextWidth() const { return textWidth_; }

  void DescribeState(KEPVidStateWriter& writer) const override;
  /// Select: a line's index, or else the first line whose text is exactly the argument; always
  /// notifies.
  HRESULT InjectUserEvent(KEPVidAction action, std::string_view argument,
                          std::string& error) override;

 protected:
  ~KEPDlgLineList() override;
  /// The notification a selection sends.
  virtual KEPNotification* SelectNotification() const = 0;

 private:
  std::vector<KEPUnicodeString> lines_;
  int selected_ = -1;
  int textWidth_ = 0;
};

#pragma GCC visibility pop
