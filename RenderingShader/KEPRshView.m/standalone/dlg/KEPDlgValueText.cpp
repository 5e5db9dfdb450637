#include "KEPDlgValueText.h"

#include <charconv>
#include <cmath>
#include <cstdio>

#include "KEPDlgTypes.h"
#include "KEPParmDictionary.h"
#include "KEPTrace.h"

namespace {

struct UnitCode {
  int code;
  const char16_t* held;   ///< the dictionary unit a value is held in (null: no dictionary unit)
  const char16_t* shown;  ///< the dictionary unit it shows in
  const char* symbol;
};

constexpr UnitCode kUnits[] = {
    {KEPDlgUnitDegree, u"rad", u"deg", "deg"}, {KEPDlgUnitMetre, u"m", u"m", "m"},
    {KEPDlgUnitMillimetre, u"m", u"mm", "mm"}, {KEPDlgUnitCentimetre, u"m", u"cm", "cm"},
    {KEPDlgUnitKilometre, u"m", u"km", "km"},  {KEPDlgUnitKelvin, nullptr, nullptr, "K"},
};

const UnitCode* FindCode(int code) {
  for (const UnitCode& unit : kUnits)
    if (unit.code == code) return &unit;
  return nullptr;
}

// Converts between the held and the shown unit through the dictionary's base unit.
double Convert(int code, double value, bool toShown) {
  const UnitCode* unit = FindCode(code);
  if (!unit || !unit->held) return value;
  KEPICkeUnit* held = KEPParmDictionary::FindUnit(KEPUnicodeString(unit->held));
  KEPICkeUnit* shown = KEPParmDictionary::FindUnit(KEPUnicodeString(unit->shown));
  if (!held || !shown) return value;
  return toShown ? shown->FromBase(held->ToBase(value)) : held->FromBase(shown->ToBase(value));
}

// The one conversion of a number format: where it starts and ends, and its letter.
struct Conversion {
  std::size_t begin = 0;
  std::size_t end = 0;
  char letter = 0;
  std::string flagsWidthPrecision;
};

bool FindConversion(std::string_view format, Conversion& out) {
  constexpr std::size_t kMaxDigits = 2;  // width and precision below 100: no runaway output
  int found = 0;
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%') continue;
    if (i + 1 < format.size() && format[i + 1] == '%') {
      ++i;
      continue;
    }
    Conversion c;
    c.begin = i;
    std::size_t j = i + 1;
    while (j < format.size() && std::string_view("-+ #0").find(format[j]) != std::string_view::npos)
      c.flagsWidthPrecision += format[j++];
    std::size_t digits = 0;
    while (j < format.size() && format[j] >= '0' && format[j] <= '9') {
      c.flagsWidthPrecision += format[j++];
      if (++digits > kMaxDigits) return false;
    }
    if (j < format.size() && format[j] == '.') {
      c.flagsWidthPrecision += format[j++];
      digits = 0;
      while (j < format.size() && format[j] >= '0' && format[j] <= '9') {
        c.flagsWidthPrecision += format[j++];
        if (++digits > kMaxDigits) return false;
      }
    }
    // Length modifiers name the caller's type; the value is converted to what the letter reads.
    while (j < format.size() && (format[j] == 'l' || format[j] == 'h' || format[j] == 'L')) ++j;
    if (j >= format.size()) return false;
    c.letter = format[j];
    if (std::string_view("diufFeEgG").find(c.letter) == std::string_view::npos) return false;
    c.end = j + 1;
    out = c;
    ++found;
    i = j;
  }
  return found == 1;
}

// The literal text of a format part, with "%%" read as "%".
std::string Literal(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    out += text[i];
    if (text[i] == '%' && i + 1 < text.size() && text[i + 1] == '%') ++i;
  }
  return out;
}

std::string TrimZeros(std::string text) {
  const std::size_t dot = text.find('.');
  if (dot == std::string::npos || text.find_first_of("eE") != std::string::npos) return text;
  std::size_t last = text.find_last_not_of('0');
  if (last == dot) --last;
  text.erase(last + 1);
  return text;
}

}  // namespace

std::string KEPDlgUnitSymbol(int unitCode) {
  const UnitCode* unit = FindCode(unitCode);
  return unit ? std::string(unit->symbol) : std::string();
}

double KEPDlgToShown(int unitCode, double value) {
  return Convert(unitCode, value, true);
}

double KEPDlgFromShown(int unitCode, double shown) {
  return Convert(unitCode, shown, false);
}

bool KEPDlgIsNumberFormat(std::string_view format) {
  Conversion c;
  return FindConversion(format, c);
}

std::string KEPDlgFormatNumber(double value, const std::string& format, int decimals, bool trim) {
  char buffer[256];
  Conversion c;
  std::string text;
  if (FindConversion(format, c)) {
    std::string conversion = "%" + c.flagsWidthPrecision;
    int written = 0;
    if (c.letter == 'd' || c.letter == 'i' || c.letter == 'u') {
      // An integer conversion shows the value cut toward zero, as the frames that read an
      // integer out of a control do, so that what is shown is what gets written (within the
      // range of long long).
      constexpr double kLimit = 9.0e18;
      const double rounded = std::trunc(std::fmax(-kLimit, std::fmin(kLimit, value)));
      conversion += "lld";
      written = std::snprintf(buffer, sizeof buffer, conversion.c_str(),  // NOLINT: checked format
                              static_cast<long long>(rounded));
    } else {
      conversion += c.letter;
      written = std::snprintf(buffer, sizeof buffer, conversion.c_str(), value);  // NOLINT
    }
    text = Literal(std::string_view(format).substr(0, c.begin));
    if (written > 0)
      text.append(buffer,
                  std::min<std::size_t>(sizeof buffer - 1, static_cast<std::size_t>(written)));
    text += Literal(std::string_view(format).substr(c.end));
    return trim ? TrimZeros(text) : text;
  }
  if (decimals >= 0) {
    std::snprintf(buffer, sizeof buffer, "%.*f", std::min(decimals, 30), value);
    text = buffer;
  } else {
    const auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
    text.assign(buffer, ec == std::errc() ? end : buffer);
  }
  return trim ? TrimZeros(text) : text;
}

std::string KEPDlgValueText(double value, int unitCode, const std::string& format, int decimals,
                            bool trim, const std::string& customSymbol) {
  std::string text = KEPDlgFormatNumber(KEPDlgToShown(unitCode, value), format, decimals, trim);
  const std::string symbol = customSymbol.empty() ? KEPDlgUnitSymbol(unitCode) : customSymbol;
  if (!symbol.empty()) {
    text += ' ';
    text += symbol;
  }
  return text;
}

bool KEPDlgCheckFinite(double value, const char* channel, const char* what) {
  if (std::isfinite(value)) return true;
  KEPTrace(channel).Warning("{ refused = %s, reason = not a finite number }", what);
  return false;
}
