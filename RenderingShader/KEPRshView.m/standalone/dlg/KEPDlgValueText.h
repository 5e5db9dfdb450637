// How the classic toolkit shows a number: the unit codes (what a value is held in, what it shows
// in, through the units dictionary), and a printf-style format applied safely (the value is
// converted to what the format's one conversion reads; anything else is not used).
#pragma once

#include <string>
#include <string_view>

/// The symbol a unit code shows ("cm", "deg", "K"); empty for no unit or an unknown code.
std::string KEPDlgUnitSymbol(int unitCode);
/// A held value as shown in the code's unit (unchanged without a known code).
double KEPDlgToShown(int unitCode, double value);
/// A shown value (what a person types) as held.
double KEPDlgFromShown(int unitCode, double shown);

/// True when `format` holds exactly one number conversion (d, i, u, f, F, e, E, g, G, with
/// flags, width and precision, no '*') and otherwise only text and "%%".
bool KEPDlgIsNumberFormat(std::string_view format);
/// `value` written with `format` when it is a number format, else with `decimals` decimals
/// (negative: the shortest text that reads back the same); trailing zeros dropped when `trim`.
std::string KEPDlgFormatNumber(double value, const std::string& format, int decimals, bool trim);
/// The text a spinner or slider shows: the number, then a blank and `symbol` when there is one.
std::string KEPDlgValueText(double value, int unitCode, const std::string& format, int decimals,
                            bool trim, const std::string& customSymbol = std::string());
/// Reads a finite number or traces the refusal of `what` on channel `channel`; false if refused.
bool KEPDlgCheckFinite(double value, const char* channel, const char* what);
