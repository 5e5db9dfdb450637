// Units and magnitudes. Every magnitude (LENGTH, ANGLE, ...) has a base unit (millimetre,
// radian) in which models store values, and a current display unit that the user chooses.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <vector>

#include "KEPIUnknown.h"
#include "KEPString.h"
#include "KEPTypes.h"

class KEPICkeMagnitude;

/// The host's degree-to-radian constant (pi/180).
extern const double KEPDegreeToRadian;
/// The host's radian-to-degree constant (180/pi).
extern const double KEPRadianToDegree;

class KEPICkeUnit : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPICkeUnit)
  /// Name as registered ("mm", "deg", ...).
  virtual KEPUnicodeString Name() const = 0;
  /// Symbol shown after a value ("mm", "deg", "in").
  virtual KEPUnicodeString Symbol() const = 0;
  /// The magnitude this unit measures (borrowed).
  virtual KEPICkeMagnitude* Magnitude() const = 0;
  /// Value in this unit -> value in the magnitude's base unit.
  virtual double ToBase(double value) const = 0;
  /// Value in the magnitude's base unit -> value in this unit.
  virtual double FromBase(double value) const = 0;
};

class KEPICkeMagnitude : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPICkeMagnitude)
  virtual KEPUnicodeString Name() const = 0;
  /// The base (model) unit, borrowed.
  virtual KEPICkeUnit* BaseUnit() const = 0;
  /// The unit the user currently works in, borrowed.
  virtual KEPICkeUnit* CurrentUnit() const = 0;
  /// Chooses the display unit; E_INVALIDARG when `unit` does not measure this magnitude.
  virtual HRESULT SetCurrentUnit(KEPICkeUnit* unit) = 0;
};

class KEPParmDictionary {
 public:
  /// Names of the magnitudes every host offers, for FindMagnitude.
  static const KEPUnicodeString LengthType;  ///< "LENGTH", base unit millimetre
  static const KEPUnicodeString AngleType;   ///< "ANGLE", base unit radian

  /// The unit named exactly `name` (borrowed, lives for the process), or null if unknown.
  static KEPICkeUnit* FindUnit(const KEPUnicodeString& name);
  /// The magnitude named exactly `name` (borrowed), or null if unknown.
  static KEPICkeMagnitude* FindMagnitude(const KEPUnicodeString& name);

  // --- Listing (for tools that offer the user a choice of display unit)
  /// Every magnitude, in registration order (borrowed).
  static std::vector<KEPICkeMagnitude*> Magnitudes();
  /// The distinct units measuring `magnitude`, base unit first (borrowed); empty for null.
  static std::vector<KEPICkeUnit*> UnitsOf(const KEPICkeMagnitude* magnitude);
};

#pragma GCC visibility pop
