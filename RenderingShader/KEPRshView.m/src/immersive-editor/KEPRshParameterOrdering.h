// Order of the parameters inside a configured group of the immersive editor.
//
// Only when the node enables sorting and the recorder's software level
// "LayoutParameterSortingLevel" is 1 (its built-in level; a replayed session that did not record
// it reads 0 and keeps node order), a group's parameters are quick-sorted by their ".SortingOrder":
// a parameter without an order comes first; two without, or one whose order does not read as an
// unsigned number, compare by name (byte-wise). Equal orders may come out either way.
#pragma once

#include <vector>

#include "KEPRshLayoutParameter.h"
#include "KEPString.h"

class KEPRshParameterOrdering {
 public:
  /// Whether groups are sorted at all: the software level "LayoutParameterSortingLevel" is 1.
  /// Read once per process (a capturing recorder records it then) and kept until the host resets
  /// its process state.
  static bool LevelSortsParameters();
  /// Forgets the level read (the host's process reset).
  static void ForgetProcessCache();

  /// Quick-sorts `parameters` with CompareBySortingOrder.
  static void Sort(std::vector<KEPRshLayoutParameter*>& parameters);

  /// -1, 0 or 1. Both must have a behaviour (fatal assertion otherwise). Without an order on
  /// either side: by name; only lhs without: -1; only rhs without: 1; both readable as "%u":
  /// as numbers; otherwise by name.
  static int CompareBySortingOrder(KEPRshLayoutParameter* lhs, KEPRshLayoutParameter* rhs);
  /// -1, 0 or 1. Both must be parameters (fatal assertion otherwise); then CompareNames.
  static int CompareByName(KEPRshLayoutParameter* lhs, KEPRshLayoutParameter* rhs);
  /// A missing name (null) sorts before a name; names compare byte-wise.
  static int CompareNames(const KEPString* lhs, const KEPString* rhs);
};
