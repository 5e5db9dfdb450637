#include "KEPVidStyleValues.h"

#include <cmath>
#include <limits>

#include "KEPParmDictionary.h"
#include "KEPTrace.h"
#include "KEP_var.h"

namespace {

KEPSYPValue Box(KEPIUnknown* borrowed) {
  if (!borrowed) return std::monostate{};
  return KEP_var<KEPIUnknown>(borrowed);
}

KEPSYPValue Text(const KEPUnicodeString& text) {
  return KEPString(text.ToUTF8());
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
