#include "KEPVidStyleValues.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "KEPIRshParameter.h"
#include "KEPIRshParameterImmLayout.h"
#include "KEPParmDictionary.h"
#include "KEPTrace.h"
#include "KEPVidUserEvent.h"
#include "KEP_var.h"

namespace {

KEPSYPValue Box(KEPIUnknown* borrowed) {
  if (!borrowed) return std::monostate{};
  return KEP_var<KEPIUnknown>(borrowed);
}

KEPSYPValue Text(const KEPUnicodeString& text) {
  return KEPString(text.ToUTF8());
}

/// The value of a parameter as its type stores it: an int for integers, a bool for booleans, a
/// double for scalars; empty for the other types and for a value that cannot be read.
KEPSYPValue ParameterValue(KEPIRshParameter& parameter) {
  KEPString type;
  if (FAILED(parameter.GetTypeName(type))) return std::monostate{};
  if (type == "KEPRmaInteger") {
    int value = 0;
    if (SUCCEEDED(parameter.GetIntegerValue(value))) return value;
  } else if (type == "KEPRmaBoolean") {
    unsigned char value = 0;
    if (SUCCEEDED(parameter.GetBooleanValue(value))) return value != 0;
  } else if (type == "KEPRmaScalar") {
    float value = 0.0f;
    if (SUCCEEDED(parameter.GetScalarValue(value))) return static_cast<double>(value);
  }
  return std::monostate{};
}

/// One end of a parameter's range, or its step, from its immersive layout: integers for an
/// integer parameter, doubles otherwise; a range without a step answers a step of 1. An integer
/// without a configured range spans -100000 to 100000 (what its immersive spin box offers, and
/// wider than any switch or count a shader takes); another type answers no value.
KEPSYPValue ParameterRange(KEPIRshParameter& parameter, std::string_view step) {
  const KEP_var<KEPIRshParameterImmLayout> layout =
      KEPQueryVar<KEPIRshParameterImmLayout>(&parameter);
  KEPString type;
  if (!layout || FAILED(parameter.GetTypeName(type))) return std::monostate{};
  const int which = step == "Minimum" ? 0 : (step == "Maximum" ? 1 : 2);
  if (type == "KEPRmaInteger") {
    int range[3] = {-100000, 100000, 1};
    int read[3] = {0, 0, 1};
    if (SUCCEEDED(layout->GetTypedRange(read[0], read[1], read[2])))
      std::copy(std::begin(read), std::end(read), std::begin(range));
    return range[which];
  }
  float range[3] = {0.0f, 0.0f, 1.0f};
  if (FAILED(layout->GetTypedRange(range[0], range[1], range[2]))) return std::monostate{};
  return static_cast<double>(range[which]);
}

}  // namespace

KEPSYPValue KEPVidStyleValues::Read(const std::vector<std::string>& path) {
  if (path.empty() || !object_) return std::monostate{};
  const std::string& name = path.front();
  const KEPSYPValue* property = nullptr;
  for (const auto& [readName, value] : read_)
    if (readName == name) property = &value;
  if (!property) {
    KEPSYPValue value;
    if (FAILED(object_->GetProperty(name, value))) value = std::monostate{};
    read_.emplace_back(name, std::move(value));
    property = &read_.back().second;
  }
  if (path.size() == 1) return *property;
  KEPSYPValue value = Step(*property, path[1]);
  for (std::size_t i = 2; i < path.size(); ++i) value = Step(value, path[i]);
  return value;
}

KEPSYPValue KEPVidStyleValues::Step(const KEPSYPValue& value, std::string_view step) {
  if (const auto* point = std::get_if<KEPMathPoint2D>(&value)) {
    if (step == "x") return point->x;
    if (step == "y") return point->y;
    return std::monostate{};
  }
  const auto* object = std::get_if<KEP_var<KEPIUnknown>>(&value);
  if (!object || !*object) return std::monostate{};
  if (auto magnitude = KEPQueryVar<KEPICkeMagnitude>(*object)) {
    if (step == "Name") return Text(magnitude->Name());
    if (step == "CurrentUnit") return Box(magnitude->CurrentUnit());
    if (step == "BaseUnit") return Box(magnitude->BaseUnit());
  }
  if (auto unit = KEPQueryVar<KEPICkeUnit>(*object)) {
    if (step == "Name") return Text(unit->Name());
    if (step == "Symbol") return Text(unit->Symbol());
    if (step == "Magnitude") return Box(unit->Magnitude());
  }
  if (auto parameter = KEPQueryVar<KEPIRshParameter>(*object)) {
    if (step == "Value") return ParameterValue(*parameter);
    if (step == "Name") {
      KEPString name;
      if (SUCCEEDED(parameter->GetName(name))) return name;
      return std::monostate{};
    }
    if (step == "Minimum" || step == "Maximum" || step == "Step")
      return ParameterRange(*parameter, step);
  }
  if (auto introspectable = KEPQueryVar<KEPISYPIntrospectable>(*object)) {
    KEPSYPValue property;
    if (SUCCEEDED(introspectable->GetProperty(step, property))) return property;
  }
  return std::monostate{};
}

std::optional<double> KEPVidStyleValues::ToDouble(const KEPSYPValue& value) {
  if (const auto* d = std::get_if<double>(&value)) return *d;
  if (const auto* i = std::get_if<int>(&value)) return *i;
  if (const auto* b = std::get_if<bool>(&value)) return *b ? 1.0 : 0.0;
  return std::nullopt;
}

std::optional<bool> KEPVidStyleValues::ToBool(const KEPSYPValue& value) {
  if (const auto* b = std::get_if<bool>(&value)) return *b;
  if (const auto* i = std::get_if<int>(&value)) return *i != 0;
  if (const auto* d = std::get_if<double>(&value)) return *d != 0.0;
  return std::nullopt;
}

std::string KEPVidStyleValues::ToText(const KEPSYPValue& value) {
  if (const auto* s = std::get_if<KEPString>(&value)) return *s;
  if (const auto* d = std::get_if<double>(&value)) return KEPFormat("%g", *d);
  if (const auto* i = std::get_if<int>(&value)) return KEPFormat("%d", *i);
  if (const auto* b = std::get_if<bool>(&value)) return *b ? "yes" : "no";
  if (const auto* p = std::get_if<KEPMathPoint2D>(&value)) return KEPFormat("%g %g", p->x, p->y);
  return {};
}

std::optional<int> KEPVidStyleValues::ToInt(double number) {
  if (std::isnan(number)) return std::nullopt;
  constexpr double kLow = std::numeric_limits<int>::min();
  constexpr double kHigh = std::numeric_limits<int>::max();
  if (number <= kLow) return std::numeric_limits<int>::min();
  if (number >= kHigh) return std::numeric_limits<int>::max();
  return static_cast<int>(std::lround(number));
}

HRESULT KEPVidStyleValues::WriteParameterValue(const KEPSYPValue& object,
                                               const KEPSYPValue& value) {
  const auto* boxed = std::get_if<KEP_var<KEPIUnknown>>(&object);
  const KEP_var<KEPIRshParameter> parameter =
      boxed ? KEPQueryVar<KEPIRshParameter>(*boxed) : KEP_var<KEPIRshParameter>();
  if (!parameter) return E_NOINTERFACE;
  KEPString type;
  if (FAILED(parameter->GetTypeName(type))) return E_FAIL;
  const std::optional<double> number = ToDouble(value);
  if (!number || std::isnan(*number)) return E_INVALIDARG;
  if (type == "KEPRmaInteger") return parameter->SetIntegerValue(*ToInt(*number));
  if (type == "KEPRmaBoolean") return parameter->SetBooleanValue(*number != 0.0 ? 1 : 0);
  if (type == "KEPRmaScalar") return parameter->SetScalarValue(static_cast<float>(*number));
  return E_NOTIMPL;
}

std::vector<KEPVidStyleValues::ComboEntry> KEPVidStyleValues::ParseComboItems(
    std::string_view text, std::vector<ComboFault>& faults) {
  std::vector<ComboEntry> entries;
  long long next = 0;  // the value of an entry that gives none
  for (std::size_t start = 0; start <= text.size();) {
    std::size_t end = text.find(';', start);
    if (end == std::string_view::npos) end = text.size();
    const std::string_view entry = KEPTrimBlanks(text.substr(start, end - start));
    start = end + 1;
    if (entry.empty()) continue;
    std::string_view rest = entry;
    ComboEntry parsed;
    const std::size_t colon = entry.find(':');
    const std::size_t equals = entry.find('=');
    if (colon != std::string_view::npos && colon < equals) {
      std::string problem;
      if (!KEPVidReadInt(entry.substr(0, colon), parsed.value, problem)) {
        faults.push_back({std::string(entry), "the value before ':' is no integer: " + problem});
        continue;
      }
      rest = entry.substr(colon + 1);
    } else if (next > std::numeric_limits<int>::max()) {
      faults.push_back({std::string(entry), "no value follows the previous entry's"});
      continue;
    } else {
      parsed.value = static_cast<int>(next);
    }
    const std::size_t imageAt = rest.find('=');
    parsed.label = std::string(KEPTrimBlanks(rest.substr(0, imageAt)));
    if (imageAt != std::string_view::npos)
      parsed.image = std::string(KEPTrimBlanks(rest.substr(imageAt + 1)));
    if (parsed.label.empty()) {
      faults.push_back({std::string(entry), "the entry has no label"});
      continue;
    }
    bool repeated = false;
    for (const ComboEntry& other : entries) repeated = repeated || other.value == parsed.value;
    if (repeated) {
      faults.push_back(
          {std::string(entry), KEPFormat("value %d is given to an earlier entry", parsed.value)});
      continue;
    }
    next = static_cast<long long>(parsed.value) + 1;
    entries.push_back(std::move(parsed));
  }
  return entries;
}
