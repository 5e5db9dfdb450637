// What the toolkit's controls share when a person's action is injected: the action's word, the
// refusals (unreachable widget, action the class does not take, unreadable argument) with a text
// that names the widget, and strict readers of the numbers an argument carries.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "KEPTypes.h"
#include "KEPVidTypes.h"

class KEPVidWidget;

/// The word of an action ("set", "type", "press", ...).
const char* KEPVidActionWord(KEPVidAction action);

/// `Class "name"` of a widget, as messages name it.
std::string KEPVidWidgetLabel(const KEPVidWidget* widget);

/// Sets `error` to the widget's label, ": " and `what`; returns E_INVALIDARG.
HRESULT KEPVidRefuse(const KEPVidWidget* widget, std::string_view what, std::string& error);

/// The refusal of an action the widget's class does not take.
HRESULT KEPVidRefuseAction(const KEPVidWidget* widget, KEPVidAction action, std::string& error);

/// True when a person can reach the widget: it and every ancestor are visible and sensitive.
/// `ignoreOwnVisibility` lets a hidden popup be opened. Otherwise sets `error` and answers false.
bool KEPVidCheckReachable(const KEPVidWidget* widget, KEPVidAction action, std::string& error,
                          bool ignoreOwnVisibility = false);

/// The refusal of an argument given to an action that takes none; S_OK when it is blank.
HRESULT KEPVidCheckNoArgument(const KEPVidWidget* widget, KEPVidAction action,
                              std::string_view argument, std::string& error);

/// Reads the whole of `text` (blanks around it allowed) as an int: no trailing text, no value
/// outside the int range. On failure `problem` says why.
bool KEPVidReadInt(std::string_view text, int& out, std::string& problem);
/// Reads the whole of `text` as a finite real number (a leading '+' allowed).
bool KEPVidReadDouble(std::string_view text, double& out, std::string& problem);

/// Equality of doubles where NaN equals NaN: a state set to what it holds changes nothing.
bool KEPVidSameDouble(double a, double b);

/// `text` in double quotes, for messages (at most 60 bytes of it).
std::string KEPVidQuote(std::string_view text);

/// `value` brought inside [minimum, maximum]; an empty range (minimum > maximum) gives minimum.
int KEPVidClampInt(int value, int minimum, int maximum);

/// Boolean option `index` of a list that grows as options are switched on (off beyond its end).
void KEPVidSetOption(std::vector<bool>& options, int index, bool on);
bool KEPVidGetOption(const std::vector<bool>& options, int index);
