#include "KEPSYPHashMapComparator.h"

#include <cmath>

#include "KEPTolerance.h"

int KEPSYPHashMapComparatorDouble(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return 1;
  if (KEPGetDefaultTolerance().IsSame(a, b)) return 0;
  return a < b ? -1 : 1;
}
