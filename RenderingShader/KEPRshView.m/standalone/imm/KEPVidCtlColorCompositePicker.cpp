#include "KEPVidCtlColorCompositePicker.h"

#include <cmath>

#include "KEPString.h"
#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPVidCtlColorCompositePicker, KEPVidCtl, "System")

KEPVidCtlColorCompositePicker::KEPVidCtlColorCompositePicker(KEPVidWidget* father,
                                                             const KEPString& name,
                                                             const KEPString& style, int size)
    : KEPVidCtl(father, name), style_(style), size_(size) {}

KEPVidCtlColorCompositePicker::~KEPVidCtlColorCompositePicker() = default;

std::vector<KEPString> KEPVidCtlColorCompositePicker::GetModes() const {
  std::vector<KEPString> modes;
  std::string_view rest = modeList_;
  while (!rest.empty()) {
    const std::size_t bar = rest.find('|');
    const std::string_view mode = rest.substr(0, bar);
    if (!mode.empty()) modes.emplace_back(mode);
    if (bar == std::string_view::npos) break;
    rest.remove_prefix(bar + 1);
  }
  return modes;
}

void KEPVidCtlColorCompositePicker::SetOption(int index, bool on) {
  KEPVidSetOption(options_, index, on);
}

bool KEPVidCtlColorCompositePicker::GetOption(int index) const {
  return KEPVidGetOption(options_, index);
}

void KEPVidCtlColorCompositePicker::SetColor(const KEPVidColor& color) {
  if (color == color_) return;
  color_ = color;
  Raise(KEPVidEvent::ColorChanged);
}

void KEPVidCtlColorCompositePicker::DescribeState(KEPVidStateWriter& writer) const {
  KEPVidCtl::DescribeState(writer);
  writer.Text("style", style_);
  writer.Int("size", size_);
  writer.TextList("modes", GetModes());
  const std::vector<int> options(options_.begin(), options_.end());
  writer.IntList("options", options);
  const int channels[] = {color_.red, color_.green, color_.blue, color_.alpha};
  writer.IntList("color", channels);
}

HRESULT KEPVidCtlColorCompositePicker::InjectUserEvent(KEPVidAction action,
                                                       std::string_view argument,
                                                       std::string& error) {
  if (action != KEPVidAction::Color) return KEPVidRefuseAction(this, action, error);
  if (!KEPVidCheckReachable(this, action, error)) return E_INVALIDARG;
  // "r g b [a]", each a number in 0..1, brought to 8 bits.
  int channels[4] = {0, 0, 0, 255};
  int count = 0;
  std::string_view rest = KEPTrimBlanks(argument);
  while (!rest.empty()) {
    const std::size_t blank = rest.find_first_of(" \t");
    const std::string_view word = rest.substr(0, blank);
    if (count == 4) {
      return KEPVidRefuse(this, KEPVidQuote(argument) + " has more than four components", error);
    }
    double value = 0.0;
    std::string problem;
    if (!KEPVidReadDouble(word, value, problem)) return KEPVidRefuse(this, problem, error);
    if (value < 0.0 || value > 1.0)
      return KEPVidRefuse(this, KEPVidQuote(word) + " is outside 0..1", error);
    channels[count++] = static_cast<int>(std::lround(value * 255.0));
    rest = blank == std::string_view::npos ? std::string_view() : KEPTrimBlanks(rest.substr(blank));
  }
  if (count < 3) {
    return KEPVidRefuse(
        this, KEPVidQuote(argument) + " is not a colour (\"r g b [a]\", each in 0..1)", error);
  }
  SetColor({channels[0], channels[1], channels[2], channels[3]});
  return S_OK;
}
