#include "KEPDlgLineList.h"

#include <algorithm>

#include "KEPNotification.h"
#include "KEPTrace.h"
#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPDlgLineList, KEPDialog, "System")

KEPDlgLineList::KEPDlgLineList(KEPDialog* father, const KEPString& name, int style)
    : KEPDialog(father, name, style) {}

KEPDlgLineList::~KEPDlgLineList() = default;

void KEPDlgLineList::SetLine(const KEPUnicodeString* lines, int count, int position, int flags) {
  if (flags & KEPDlgLineReplace) ClearLine();
  if (!lines || count <= 0) return;
  const int size = GetLineCount();
  if (position < 0 || position > size) position = size;
  lines_.insert(lines_.begin() + position, lines, lines + count);
  if (selected_ >= position) selected_ += count;
}

void KEPDlgLineList::ClearLine() {
  lines_.clear();
  selected_ = -1;
}

KEPUnicodeString KEPDlgLineList::GetLine(int index) const {
  if (index < 0 || index >= GetLineCount()) return KEPUnicodeString();
  return lines_[static_cast<std::size_t>(index)];
}

void KEPDlgLineList::SetSelect(int index, int notify) {
  if (index < -1 || index >= GetLineCount()) {
    KEPTrace(GetMetaObject()->Name())
        .Warning("{ widget = %s, refused selection = %d, lines = %d }", GetName().c_str(), index,
                 GetLineCount());
    return;
  }
  if (index == selected_) return;
  selected_ = index;
  if (notify) Notify(SelectNotification());
}

void KEPDlgLineList::DescribeState(KEPVidStateWriter& writer) const {
  KEPDialog::DescribeState(writer);
  std::vector<std::string> lines;
  lines.reserve(lines_.size());
  for (const KEPUnicodeString& line : lines_) lines.push_back(line.ToUTF8());
  writer.TextList("lines", lines);
  writer.Int("selected", selected_);
  writer.Int("visibleTextWidth", textWidth_);
}

namespace {
// The refusal of a line text that is not there, with the lines that are, so that a script's
// author sees what to write instead: each line whole, as it must be written (the first ones of a
// long list).
std::string NoSuchLine(const std::vector<KEPUnicodeString>& lines, std::string_view argument) {
  constexpr std::size_t kListed = 40;
  std::string what = "no line reads " + KEPVidQuote(argument);
  if (lines.empty()) return what + " (it has no lines)";
  what += " (lines:";
  for (std::size_t i = 0; i < lines.size() && i < kListed; ++i) {
    what += i ? ", \"" : " \"";
    what += lines[i].ToUTF8();
    what += '"';
  }
  if (lines.size() > kListed) what += " and " + std::to_string(lines.size() - kListed) + " more";
  return what + ")";
}
}  // namespace

HRESULT KEPDlgLineList::InjectUserEvent(KEPVidAction action, std::string_view argument,
                                        std::string& error) {
  if (action != KEPVidAction::Select) return KEPVidRefuseAction(this, action, error);
  if (!KEPVidCheckReachable(this, action, error)) return E_INVALIDARG;
  int index = -1;
  std::string problem;
  if (KEPVidReadInt(argument, index, problem)) {
    if (index < 0 || index >= GetLineCount())
      return KEPVidRefuse(this,
                          "line " + std::to_string(index) + " is not one of its " +
                              std::to_string(GetLineCount()) + " lines",
                          error);
  } else {
    const auto it = std::find(lines_.begin(), lines_.end(), KEPUnicodeString::FromUTF8(argument));
    if (it == lines_.end()) return KEPVidRefuse(this, NoSuchLine(lines_, argument), error);
    index = static_cast<int>(it - lines_.begin());
  }
  selected_ = index;
  Notify(SelectNotification());
  return S_OK;
}
