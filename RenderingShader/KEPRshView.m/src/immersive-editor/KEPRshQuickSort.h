// The quick sort of pointer lists with which the immersive editor orders the parameters of a
// group: in place and not stable (elements that compare equal may come out in any order), driven
// by a three-way comparator (negative, zero or positive).
//
// The comparator need not describe a consistent order (a parameter whose sorting order does not
// read as a number is placed by name against each neighbour): every element is compared only
// with the pivot of its range and both scans are bounded by the range, so an inconsistent
// comparator misplaces elements but never reads outside the list or fails to finish. The smaller
// side is sorted first by recursion and the larger one in the loop, so the depth stays below
// log2 of the size.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

template <class T, class Compare>
void KEPRshQuickSortRange(std::vector<T>& items, std::ptrdiff_t lo, std::ptrdiff_t hi,
                          Compare& compare) {
  while (lo < hi) {
    const T pivot = items[static_cast<std::size_t>(lo + (hi - lo) / 2)];
    std::ptrdiff_t i = lo;
    std::ptrdiff_t j = hi;
    while (i <= j) {
      while (i < hi && compare(items[static_cast<std::size_t>(i)], pivot) < 0) ++i;
      while (j > lo && compare(pivot, items[static_cast<std::size_t>(j)]) < 0) --j;
      if (i <= j) {
        std::swap(items[static_cast<std::size_t>(i)], items[static_cast<std::size_t>(j)]);
        ++i;
        --j;
      }
    }
    // [lo, j] and [i, hi] are both shorter than [lo, hi]: at least one swap happened, or the
    // scans crossed with i > lo and j < hi.
    if (j - lo < hi - i) {
      KEPRshQuickSortRange(items, lo, j, compare);
      lo = i;
    } else {
      KEPRshQuickSortRange(items, i, hi, compare);
      hi = j;
    }
  }
}

/// Sorts `items` by `compare(lhs, rhs)`, which answers a negative number when lhs goes first, a
/// positive one when rhs does, and 0 when either order will do.
template <class T, class Compare>
void KEPRshQuickSort(std::vector<T>& items, Compare compare) {
  if (items.size() < 2) return;
  KEPRshQuickSortRange(items, 0, static_cast<std::ptrdiff_t>(items.size()) - 1, compare);
}
