#include "KEPRbaImageDocImmSelector.h"

#include <cmath>

#include "KEPString.h"
#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPRbaImageDocImmSelector, KEPVidCtl, "System")

namespace {
bool IsResolution(double dpi) {
  return std::isfinite(dpi) && dpi > 0.0;
}

// Splits "a,b" at commas; empty names are dropped.
std::vector<KEPString> SplitGroups(std::string_view text) {
  std::vector<KEPString> groups;
  while (!text.empty()) {
    const std::size_t comma = text.find(',');
    const std::string_view group = KEPTrimBlanks(text.substr(0, comma));
    if (!group.empty()) groups.emplace_back(group);
    if (comma == std::string_view::npos) break;
    text.remove_prefix(comma + 1);
  }
  return groups;
}

// The next "key=value" word of `rest` (a value may be double-quoted to hold blanks); false with
// `problem` set when a word is malformed.
bool NextWord(std::string_view& rest, std::string_view& key, std::string& value,
              std::string& problem) {
  rest = KEPTrimBlanks(rest);
  const std::size_t equal = rest.find('=');
  const std::size_t blank = rest.find_first_of(" \t");
  if (equal == std::string_view::npos || (blank != std::string_view::npos && blank < equal)) {
    problem = KEPVidQuote(rest.substr(0, blank)) + " is not of the form key=value";
    return false;
  }
  key = rest.substr(0, equal);
  rest.remove_prefix(equal + 1);
  value.clear();
  if (!rest.empty() && rest.front() == '"') {
    const std::size_t close = rest.find('"', 1);
    if (close == std::string_view::npos) {
      problem = "the quoted value of " + KEPVidQuote(key) + " is not closed";
      return false;
    }
    value.assign(rest.substr(1, close - 1));
    rest.remove_prefix(close + 1);
    if (!rest.empty() && rest.front() != ' ' && rest.front() != '\t') {
      problem = "text follows the quoted value of " + KEPVidQuote(key);
      return false;
    }
  } else {
    const std::size_t end = rest.find_first_of(" \t");
    value.assign(rest.substr(0, end));
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end);
  }
  return true;
}
}  // namespace

KEPRbaImageDocImmSelector::KEPRbaImageDocImmSelector(KEPVidWidget* father, const KEPString& name,
                                                     int options, int flags)
    : KEPVidCtl(father, name), options_(options), flags_(flags) {}

KEPRbaImageDocImmSelector::~KEPRbaImageDocImmSelector() = default;

void KEPRbaImageDocImmSelector::SetImage(const KEPString& path) {
  if (path == image_) return;
  image_ = path;
  Raise(KEPVidEvent::EditModify);
}

void KEPRbaImageDocImmSelector::SetLayerGroups(const std::vector<KEPString>& groups) {
  if (groups == groups_) return;
  groups_ = groups;
  Raise(KEPVidEvent::EditModify);
}

void KEPRbaImageDocImmSelector::SetResolution(double dpi) {
  if (!IsResolution(dpi) || dpi == dpi_) return;
  dpi_ = dpi;
  Raise(KEPVidEvent::EditModify);
}

void KEPRbaImageDocImmSelector::DescribeState(KEPVidStateWriter& writer) const {
  KEPVidCtl::DescribeState(writer);
  writer.Text("image", image_);
  writer.TextList("groups", groups_);
  writer.Double("dpi", dpi_);
  writer.Int("options", options_);
  writer.Int("flags", flags_);
}

HRESULT KEPRbaImageDocImmSelector::InjectUserEvent(KEPVidAction action, std::string_view argument,
                                                   std::string& error) {
  if (action != KEPVidAction::Choose) return KEPVidRefuseAction(this, action, error);
  if (!KEPVidCheckReachable(this, action, error)) return E_INVALIDARG;
  // Read the whole choice first: a malformed word changes nothing.
  KEPString image = image_;
  std::vector<KEPString> groups = groups_;
  double dpi = dpi_;
  bool seen[3] = {false, false, false};
  std::string_view rest = argument;
  std::string value;
  std::string problem;
  if (KEPTrimBlanks(rest).empty())
    return KEPVidRefuse(this, "nothing to choose (image=PATH groups=a,b dpi=N)", error);
  while (!KEPTrimBlanks(rest).empty()) {
    std::string_view key;
    if (!NextWord(rest, key, value, problem)) return KEPVidRefuse(this, problem, error);
    int which = -1;
    if (key == "image") which = 0;
    if (key == "groups") which = 1;
    if (key == "dpi") which = 2;
    if (which < 0) {
      return KEPVidRefuse(this, KEPVidQuote(key) + " is not a choice (image=PATH groups=a,b dpi=N)",
                          error);
    }
    if (seen[which]) return KEPVidRefuse(this, KEPVidQuote(key) + " is given twice", error);
    seen[which] = true;
    if (which == 0) image = value;
    if (which == 1) groups = SplitGroups(value);
    if (which == 2) {
      if (!KEPVidReadDouble(value, dpi, problem)) return KEPVidRefuse(this, problem, error);
      if (!IsResolution(dpi)) {
        return KEPVidRefuse(this, "the resolution " + KEPVidQuote(value) + " is not positive",
                            error);
      }
    }
  }
  if (image == image_ && groups == groups_ && dpi == dpi_) return S_OK;
  image_ = std::move(image);
  groups_ = std::move(groups);
  dpi_ = dpi;
  // One notification for the whole choice.
  Raise(KEPVidEvent::EditModify);
  return S_OK;
}
