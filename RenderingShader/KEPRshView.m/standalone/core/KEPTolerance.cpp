#include "KEPTolerance.h"

const KEPTolerance& KEPGetDefaultTolerance() {
  // One millionth of a model unit: far below what an editor shows (a slider resolves hundredths,
  // an editor about seven significant digits of a float), far above the noise of a unit
  // conversion of values of everyday size.
  static constexpr KEPTolerance tolerance(1e-6);
  return tolerance;
}
