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
  /// One entry of a combo's `items` text.
  struct ComboEntry {
    int value = 0;
    std::string label;
    std::string image;
  };
  /// An entry of an `items` text that was left out, and why.
  struct ComboFault {
    std::string entry;
    std::string reason;
  };
  /// Reads a combo's `items` text: entries separated by ';', each `[value:]label[=image]`, blanks
  /// around each piece ignored and empty entries skipped. An entry without a value takes the one
  /// after the previous entry's (the first 0), so a text without values numbers its entries from
  /// 0. A ':' counts as the value's end only before any '=' (an image path may hold one).
  /// Entries with a value that is no integer, without a label, or repeating a value are left out
  /// and reported in `faults`.
  static std::vector<ComboEntry> ParseComboItems(std::string_view text,
                                                 std::vector<ComboFault>& faults);

  explicit KEPVidStyleValues(KEPISYPIntrospectable* object) : object_(object) {}

  /// The value at `path`: the property `path[0]` of the object, then each further step into it.
  /// Empty when the property is unknown or a step does not apply.
  KEPSYPValue Read(const std::vector<std::string>& path);

  /// One step into a value: "x" and "y" of a point; "Name", "CurrentUnit" and "BaseUnit" of a
  /// magnitude; "Name", "Symbol" and "Magnitude" of a unit; "Value", "Name", "Minimum",
  /// "Maximum" and "Step" of a shader parameter (KEPIRshParameter; the range from its immersive
  /// layout); any property of an introspectable interface. Empty when the step does not apply.
  static KEPSYPValue Step(const KEPSYPValue& value, std::string_view step);

  // --- Conversions; empty when the value has none.
  static std::optional<double> ToDouble(const KEPSYPValue& value);
  static std::optional<bool> ToBool(const KEPSYPValue& value);
  /// Text of a value (numbers as "%g", booleans "yes"/"no"); empty text for no value.
  static std::string ToText(const KEPSYPValue& value);
  /// `number` rounded to an integer inside the int range; empty for NaN.
  static std::optional<int> ToInt(double number);

  /// Writes `value` into the parameter that `object` (a property's value) holds, through the
  /// parameter's setter of its type (which takes the render lock): an integer rounded, a boolean
  /// from any number, a scalar as a float. E_NOINTERFACE when `object` is no parameter,
  /// E_INVALIDARG when the value does not convert, E_NOTIMPL for a type not written this way.
  static HRESULT WriteParameterValue(const KEPSYPValue& object, const KEPSYPValue& value);

 private:
  KEPISYPIntrospectable* object_;
  std::vector<std::pair<std::string, KEPSYPValue>> read_;  ///< properties read so far
};
