// The quick sort and the name order beneath the parameter ordering.
#include <algorithm>
#include <random>
#include <vector>

#include "KEPRshParameterOrdering.h"
#include "KEPRshQuickSort.h"
#include "KEPTestSupport.h"

namespace keptest {
namespace {

int ThreeWay(int a, int b) {
  return a < b ? -1 : (a > b ? 1 : 0);
}

TEST(QuickSortTest, SortsListsOfEverySizeAndShape) {
  std::mt19937 random(20261123);
  for (std::size_t size = 0; size <= 70; ++size) {
    for (const int range : {2, 5, 1000}) {  // many equal elements to nearly all distinct
      std::vector<int> values(size);
      for (int& value : values) value = static_cast<int>(random() % static_cast<unsigned>(range));
      std::vector<std::vector<int>> shapes = {values, values, values};
      std::sort(shapes[1].begin(), shapes[1].end());
      std::sort(shapes[2].rbegin(), shapes[2].rend());
      for (std::vector<int>& shape : shapes) {
        std::vector<int*> pointers;
        for (int& value : shape) pointers.push_back(&value);
        KEPRshQuickSort(pointers, [](const int* a, const int* b) { return ThreeWay(*a, *b); });
        std::vector<int> sorted;
        for (const int* pointer : pointers) sorted.push_back(*pointer);
        std::vector<int> expected = shape;
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(sorted, expected) << "size " << size << " range " << range;
      }
    }
  }
}

TEST(QuickSortTest, AnInconsistentComparatorKeepsEveryElementAndFinishes) {
  std::mt19937 random(7);
  for (std::size_t size = 0; size <= 200; size += 7) {
    std::vector<int> values(size);
    for (std::size_t i = 0; i < size; ++i) values[i] = static_cast<int>(i);
    std::vector<int*> pointers;
    for (int& value : values) pointers.push_back(&value);
    // Answers at random, even about an element against itself.
    KEPRshQuickSort(
        pointers, [&random](const int*, const int*) { return static_cast<int>(random() % 3) - 1; });
    std::vector<int> seen;
    for (const int* pointer : pointers) seen.push_back(*pointer);
    std::sort(seen.begin(), seen.end());
    EXPECT_EQ(seen, values) << size;
  }
}

TEST(ParameterOrderingTest, NamesCompareByteWiseAndAMissingNameFirst) {
  const KEPString a = "a", b = "b", upper = "B", accented = "\xC3\xA9", empty;
  const std::tuple<const KEPString*, const KEPString*, int> cases[] = {
      {&a, &b, -1},       {&b, &a, 1},           {&a, &a, 0},          {&upper, &a, -1},
      {&accented, &b, 1},  // bytes compare unsigned: 0xC3 after 'b'
      {&empty, &a, -1},   {nullptr, &empty, -1}, {&empty, nullptr, 1}, {nullptr, nullptr, 0}};
  for (const auto& [lhs, rhs, expected] : cases)
    EXPECT_EQ(KEPRshParameterOrdering::CompareNames(lhs, rhs), expected)
        << (lhs ? *lhs : "(none)") << " vs " << (rhs ? *rhs : "(none)");
}

}  // namespace
}  // namespace keptest
