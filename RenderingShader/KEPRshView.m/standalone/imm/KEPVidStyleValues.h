// What a style binding reads: a property of the styled control followed down a path of steps
// ("Magnitude.CurrentUnit.Symbol", "Values.x"), and the conversions of property values to what a
// part shows. Reads of one refresh pass are kept, so that parts bound to the same property read
// it once.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KEPISYPIntrospectable.h"
#include "KEPSYPValue.h"

class KEPVidStyleValues {
 public:
  explicit KEPVidStyleValues(KEPISYPIntrospectable* object) : object_(object) {}

  /// The value at `path`: the property `path[0]` of the object, then each further step into it.
  /// Empty when the property is unknown or a step does not apply.
  KEPSYPValue Read(const std::vector<std::string>& path);

  /// One step into a value: "x" and "y" of a point; "Name", "CurrentUnit" and "BaseUnit" of a
  /// magnitude; "Name", "Symbol" and "Magnitude" of a unit; any property of an introspectable
  /// interface. Empty when the step does not apply.
  static KEPSYPValue Step(const KEPSYPValue& value, std::string_view step);

  // --- Conversions; empty when the value has none.
  static std::optional<double> ToDouble(const KEPSYPValue& value);
  static std::optional<bool> ToBool(const KEPSYPValue& value);
  /// Text of a value (numbers as "%g", booleans "yes"/"no"); empty text for no value.
  static std::string ToText(const KEPSYPValue& value);
  /// `number` rounded to an integer inside the int range; empty for NaN.
  static std::optional<int> ToInt(double number);

 private:
  KEPISYPIntrospectable* object_;
  std::vector<std::pair<std::string, KEPSYPValue>> read_;  ///< properties read so far
};
