#include "KEPVidCtlImageCombo.h"

#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPVidCtlImageCombo, KEPVidCtl, "System")

KEPVidCtlImageCombo::KEPVidCtlImageCombo(KEPVidWidget* father, const KEPString& name)
    : KEPVidCtl(father, name) {}

KEPVidCtlImageCombo::~KEPVidCtlImageCombo() = default;

int KEPVidCtlImageCombo::AddItem(const KEPUnicodeString& label, const KEPString& image) {
  items_.push_back({label, image});
  return static_cast<int>(items_.size()) - 1;
}

void KEPVidCtlImageCombo::ClearItems() {
  items_.clear();
  SetSelect(-1);
}

void KEPVidCtlImageCombo::SetSelect(int index) {
  if (index < 0 || index >= GetItemCount()) index = -1;
  if (index == selected_) return;
  selected_ = index;
  Raise(KEPVidEvent::Selected);
}

void KEPVidCtlImageCombo::DescribeState(KEPVidStateWriter& writer) const {
  KEPVidCtl::DescribeState(writer);
  std::vector<std::string> labels;
  std::vector<std::string> images;
  labels.reserve(items_.size());
  images.reserve(items_.size());
  bool anyImage = false;
  for (const Item& item : items_) {
    labels.push_back(item.label.ToUTF8());
    images.push_back(item.image);
    anyImage = anyImage || !item.image.empty();
  }
  writer.TextList("items", labels);
  if (anyImage) writer.TextList("images", images);
  writer.Int("selected", selected_);
}

HRESULT KEPVidCtlImageCombo::InjectUserEvent(KEPVidAction action, std::string_view argument,
                                             std::string& error) {
  if (action != KEPVidAction::Select) return KEPVidRefuseAction(this, action, error);
  if (!KEPVidCheckReachable(this, action, error)) return E_INVALIDARG;
  // An index first (so that "2" always means the third entry), then an entry's exact label.
  int index = 0;
  std::string problem;
  if (KEPVidReadInt(argument, index, problem)) {
    if (index < 0 || index >= GetItemCount()) {
      return KEPVidRefuse(this,
                          "there is no entry " + std::to_string(index) + " (the combo has " +
                              std::to_string(GetItemCount()) + " entries)",
                          error);
    }
    SetSelect(index);
    return S_OK;
  }
  const KEPUnicodeString label = KEPUnicodeString::FromUTF8(argument);
  for (int i = 0; i < GetItemCount(); ++i) {
    if (items_[static_cast<std::size_t>(i)].label == label) {
      SetSelect(i);
      return S_OK;
    }
  }
  std::string what = "no entry is labelled " + KEPVidQuote(argument) + " (entries:";
  for (std::size_t i = 0; i < items_.size() && i < 20; ++i)
    what += (i ? ", " : " ") + KEPVidQuote(items_[i].label.ToUTF8());
  if (items_.size() > 20) what += ", ...";
  if (items_.empty()) what += " none";
  what += ')';
  return KEPVidRefuse(this, what, error);
}
