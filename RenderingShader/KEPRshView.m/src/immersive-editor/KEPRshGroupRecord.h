// One configured parameter group of a shader node, as the immersive editor reads it from the
// node's configuration: "Group" + number is the key that parameters name in their ".Group",
// key + ".Name" the display name and key + ".Order" the place among the groups when sorting.
#pragma once

#include <limits>

#include "KEPString.h"

struct KEPRshGroupRecord {
  /// The group number i of "Group" + i.
  unsigned long long number = 0;
  /// "Group" + number.
  KEPString key;
  /// key + ".Name"; empty when missing.
  KEPUnicodeString name;
  /// key + ".Order" read as an unsigned 64-bit number; the largest value when missing or not a
  /// number, so that such a group goes last.
  unsigned long long order = std::numeric_limits<unsigned long long>::max();
};
