// A frame: a classic widget that lays out its children in a grid (each child's grid constraints)
// whose rows and columns may be resizable, or along tabulation lines: a numbered horizontal or
// vertical line holding one edge (or both) of the widgets attached to it.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <initializer_list>
#include <vector>

#include "KEPDialog.h"

class KEPDlgFrame : public KEPDialog {
  KEP_DECLARE_CLASS
 public:
  explicit KEPDlgFrame(KEPDialog* father = nullptr, const KEPString& name = KEPString(),
                       int style = 0);

  /// A resizable row or column takes the room the frame gains when it grows.
  void SetGridRowResizable(int row, int resizable = 1);
  void SetGridColumnResizable(int column, int resizable = 1);
  bool IsGridRowResizable(int row) const;
  bool IsGridColumnResizable(int column) const;

  /// One attachment of a tabulation line: its direction, number, kind (KEPDlgTab...) and the
  /// widgets it holds (borrowed; only the frame's own children are kept).
  struct TabAttachment {
    bool horizontal;
    int line;
    int kind;
    std::vector<KEPDialog*> widgets;
  };
  void SetHorizontalAttachment(int line, int kind, std::initializer_list<KEPDialog*> widgets);
  void SetVerticalAttachment(int line, int kind, std::initializer_list<KEPDialog*> widgets);
  /// The attachments in the order they were made; widgets destroyed since are left out.
  std::vector<TabAttachment> GetTabAttachments() const;

  void DescribeState(KEPVidStateWriter& writer) const override;

 protected:
  ~KEPDlgFrame() override;

 private:
  void AddTab(bool horizontal, int line, int kind, std::initializer_list<KEPDialog*> widgets);
  bool IsChild(const KEPDialog* widget) const;

  std::vector<bool> resizableRows_;
  std::vector<bool> resizableColumns_;
  std::vector<TabAttachment> tabs_;
};

#pragma GCC visibility pop
