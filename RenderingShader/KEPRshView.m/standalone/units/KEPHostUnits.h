// The host's side of the unit dictionary: resetting the display units, and hiding units in tests.
#pragma once

#include "KEPParmDictionary.h"

class KEPHostUnits {
 public:
  /// Restores every magnitude's display unit to its base unit.
  static void ResetCurrentUnits();
  /// Makes the unit registered under `name` unknown to FindUnit (the object itself stays alive,
  /// so pointers handed out earlier remain valid). Returns false when `name` is not registered.
  static bool RemoveUnitForTest(const KEPUnicodeString& name);
  /// Registers again every name removed with RemoveUnitForTest.
  static void RestoreUnitsForTest();
};
