#include "KEPVidUserEvent.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "KEPString.h"
#include "KEPVidWidget.h"

namespace {
// A leading '+' that a sign-aware reader would accept, dropped (from_chars takes none).
std::string_view WithoutPlus(std::string_view text) {
  if (text.size() > 1 && text.front() == '+' && text[1] != '-' && text[1] != '+')
    text.remove_prefix(1);
  return text;
}
}  // namespace

const char* KEPVidActionWord(KEPVidAction action) {
  switch (action) {
    case KEPVidAction::Set:
      return "set";
    case KEPVidAction::Type:
      return "type";
    case KEPVidAction::Press:
      return "press";
    case KEPVidAction::Toggle:
      return "toggle";
    case KEPVidAction::Select:
      return "select";
    case KEPVidAction::Expand:
      return "expand";
    case KEPVidAction::Collapse:
      return "collapse";
    case KEPVidAction::Color:
      return "color";
    case KEPVidAction::Choose:
      return "choose";
    case KEPVidAction::Open:
      return "open";
    case KEPVidAction::Close:
      return "close";
    case KEPVidAction::Drag:
      return "drag";
    case KEPVidAction::Ok:
      return "ok";
    case KEPVidAction::Cancel:
      return "cancel";
  }
  return "unknown action";
}

std::string KEPVidQuote(std::string_view text) {
  constexpr std::size_t kShown = 60;
  std::string quoted = "\"";
  quoted.append(text.substr(0, kShown));
  if (text.size() > kShown) quoted += "...";
  quoted += '"';
  return quoted;
}

std::string KEPVidWidgetLabel(const KEPVidWidget* widget) {
  std::string label = widget->GetMetaObject()->Name();
  label += ' ';
  label += widget->GetName().empty() ? std::string("(unnamed)") : KEPVidQuote(widget->GetName());
  return label;
}

HRESULT KEPVidRefuse(const KEPVidWidget* widget, std::string_view what, std::string& error) {
  error = KEPVidWidgetLabel(widget);
  error += ": ";
  error += what;
  return E_INVALIDARG;
}

HRESULT KEPVidRefuseAction(const KEPVidWidget* widget, KEPVidAction action, std::string& error) {
  std::string what = "does not take the action '";
  what += KEPVidActionWord(action);
  what += '\'';
  return KEPVidRefuse(widget, what, error);
}

bool KEPVidCheckReachable(const KEPVidWidget* widget, KEPVidAction action, std::string& error,
                          bool ignoreOwnVisibility) {
  for (const KEPVidWidget* w = widget; w; w = w->GetFather()) {
    const bool hidden = !w->IsVisible() && !(w == widget && ignoreOwnVisibility);
    if (!hidden && w->IsSensitive()) continue;
    std::string what = "cannot be reached by a person (";
    if (w != widget) {
      what += "its ancestor ";
      what += KEPVidWidgetLabel(w);
      what += " is ";
    } else {
      what += "it is ";
    }
    what += hidden ? "invisible" : "insensitive";
    what += "), so '";
    what += KEPVidActionWord(action);
    what += "' is refused";
    KEPVidRefuse(widget, what, error);
    return false;
  }
  return true;
}

HRESULT KEPVidCheckNoArgument(const KEPVidWidget* widget, KEPVidAction action,
                              std::string_view argument, std::string& error) {
  if (KEPTrimBlanks(argument).empty()) return S_OK;
  std::string what = "'";
  what += KEPVidActionWord(action);
  what += "' takes no argument, got ";
  what += KEPVidQuote(argument);
  return KEPVidRefuse(widget, what, error);
}

bool KEPVidReadInt(std::string_view text, int& out, std::string& problem) {
  const std::string_view trimmed = KEPTrimBlanks(text);
  const std::string_view digits = WithoutPlus(trimmed);
  int value = 0;
  const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (ec == std::errc::result_out_of_range) {
    problem = KEPVidQuote(trimmed) + " is outside the integer range";
    return false;
  }
  if (ec != std::errc() || end != digits.data() + digits.size()) {
    problem = KEPVidQuote(trimmed) + " is not an integer";
    return false;
  }
  out = value;
  return true;
}

bool KEPVidReadDouble(std::string_view text, double& out, std::string& problem) {
  const std::string_view trimmed = KEPTrimBlanks(text);
  const std::string_view digits = WithoutPlus(trimmed);
  double value = 0.0;
  const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (ec == std::errc::result_out_of_range && end == digits.data() + digits.size()) {
    problem = KEPVidQuote(trimmed) + " is outside the range of real numbers";
    return false;
  }
  if (ec != std::errc() || end != digits.data() + digits.size()) {
    problem = KEPVidQuote(trimmed) + " is not a number";
    return false;
  }
  if (!std::isfinite(value)) {
    problem = KEPVidQuote(trimmed) + " is not a finite number";
    return false;
  }
  out = value;
  return true;
}

bool KEPVidSameDouble(double a, double b) {
  return a == b || (std::isnan(a) && std::isnan(b));
}

int KEPVidClampInt(int value, int minimum, int maximum) {
  if (value > maximum) value = maximum;
  if (value < minimum) value = minimum;
  return value;
}

void KEPVidSetOption(std::vector<bool>& options, int index, bool on) {
  if (index < 0) return;
  const auto at = static_cast<std::size_t>(index);
  if (at >= options.size()) {
    if (!on) return;
    options.resize(at + 1, false);
  }
  options[at] = on;
}

bool KEPVidGetOption(const std::vector<bool>& options, int index) {
  return index >= 0 && static_cast<std::size_t>(index) < options.size() &&
         options[static_cast<std::size_t>(index)];
}
