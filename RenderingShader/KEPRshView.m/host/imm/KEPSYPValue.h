// Values of introspected properties: a tagged union of the types properties are declared with
// ("bool", "int", "double", "string", "KEPMathPoint2D", and interface types such as
// "KEPICkeUnit", held as a counted reference).
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <variant>

#include "KEPIUnknown.h"
#include "KEPString.h"
#include "KEP_var.h"

/// A point of the plane (a ratio control's pair of values).
struct KEPMathPoint2D {
  double x = 0.0;
  double y = 0.0;
  friend bool operator==(const KEPMathPoint2D&, const KEPMathPoint2D&) = default;
};

/// A property value. Empty (std::monostate) means "no value": an unreadable property, or an
/// interface property whose getter answered none.
using KEPSYPValue = std::variant<std::monostate, bool, int, double, KEPString, KEPMathPoint2D,
                                 KEP_var<KEPIUnknown>>;

/// Boxes an interface pointer that the caller owns a reference of (adopted, null gives empty).
inline KEPSYPValue KEPSYPBoxInterface(KEPIUnknown* adopted) {
  if (!adopted) return std::monostate{};
  return KEP_var<KEPIUnknown>::Adopt(adopted);
}

#pragma GCC visibility pop
