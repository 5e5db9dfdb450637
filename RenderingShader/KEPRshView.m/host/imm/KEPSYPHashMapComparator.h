// Comparators of the introspection's property values, as its maps of values use them: 0 when two
// values count as the same, non-zero otherwise. Introspectable controls compare a value set
// through a property with the one they hold by them, so that setting what is already there is
// no change.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

/// 0 when `a` and `b` differ by no more than the host's default tolerance (KEPTolerance), else
/// -1 when a < b and 1 when a > b. A NaN equals nothing, itself included (1).
int KEPSYPHashMapComparatorDouble(double a, double b);

#pragma GCC visibility pop
