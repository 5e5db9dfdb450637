#include "KEPDlgFrame.h"

#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPDlgFrame, KEPDialog, "System")

KEPDlgFrame::KEPDlgFrame(KEPDialog* father, const KEPString& name, int style)
    : KEPDialog(father, name, style) {}

KEPDlgFrame::~KEPDlgFrame() = default;

void KEPDlgFrame::SetGridRowResizable(int row, int resizable) {
  KEPVidSetOption(resizableRows_, row, resizable != 0);
}

void KEPDlgFrame::SetGridColumnResizable(int column, int resizable) {
  KEPVidSetOption(resizableColumns_, column, resizable != 0);
}

bool KEPDlgFrame::IsGridRowResizable(int row) const {
  return KEPVidGetOption(resizableRows_, row);
}

bool KEPDlgFrame::IsGridColumnResizable(int column) const {
  return KEPVidGetOption(resizableColumns_, column);
}

void KEPDlgFrame::SetHorizontalAttachment(int line, int kind,
                                          std::initializer_list<KEPDialog*> widgets) {
  AddTab(true, line, kind, widgets);
}

void KEPDlgFrame::SetVerticalAttachment(int line, int kind,
                                        std::initializer_list<KEPDialog*> widgets) {
  AddTab(false, line, kind, widgets);
}

void KEPDlgFrame::AddTab(bool horizontal, int line, int kind,
                         std::initializer_list<KEPDialog*> widgets) {
  TabAttachment tab{horizontal, line, kind, {}};
  // A tabulation line holds the frame's own children only.
  for (KEPDialog* widget : widgets)
    if (IsChild(widget)) tab.widgets.push_back(widget);
  tabs_.push_back(std::move(tab));
}

bool KEPDlgFrame::IsChild(const KEPDialog* widget) const {
  if (!widget) return false;
  for (std::size_t i = 0; i < GetChildCount(); ++i)
    if (GetChild(i) == widget) return true;
  return false;
}

std::vector<KEPDlgFrame::TabAttachment> KEPDlgFrame::GetTabAttachments() const {
  // A widget is only compared by address until it is found among the children again, so a
  // destroyed one is never touched.
  std::vector<TabAttachment> tabs = tabs_;
  for (TabAttachment& tab : tabs)
    std::erase_if(tab.widgets, [this](const KEPDialog* w) { return !IsChild(w); });
  return tabs;
}

void KEPDlgFrame::DescribeState(KEPVidStateWriter& writer) const {
  KEPDialog::DescribeState(writer);
  std::vector<int> rows;
  for (std::size_t i = 0; i < resizableRows_.size(); ++i)
    if (resizableRows_[i]) rows.push_back(static_cast<int>(i));
  std::vector<int> columns;
  for (std::size_t i = 0; i < resizableColumns_.size(); ++i)
    if (resizableColumns_[i]) columns.push_back(static_cast<int>(i));
  writer.IntList("resizableRows", rows);
  writer.IntList("resizableColumns", columns);
  // One text per attachment: "h1 kind=5: slider, spinner".
  std::vector<std::string> tabs;
  for (const TabAttachment& tab : GetTabAttachments()) {
    std::string text = tab.horizontal ? "h" : "v";
    text += std::to_string(tab.line) + " kind=" + std::to_string(tab.kind) + ":";
    for (std::size_t i = 0; i < tab.widgets.size(); ++i) {
      text += i ? ", " : " ";
      text += tab.widgets[i]->GetName();
    }
    tabs.push_back(std::move(text));
  }
  writer.TextList("tabulations", tabs);
}
