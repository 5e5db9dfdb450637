#include "KEPRshParameterOrdering.h"

#include "KEPRecord.h"
#include "KEPRshQuickSort.h"
#include "KEPRshShaderImmLayoutSource.h"
#include "KEPTrace.h"

namespace {
/// The software level's three states: not read yet, read as 1, read as anything else.
enum class Level { Unread, Sorts, Keeps };
Level gLevel = Level::Unread;
}  // namespace

bool KEPRshParameterOrdering::LevelSortsParameters() {
  if (gLevel == Level::Unread)
    gLevel = KEPRecord::GetSoftwareLevel("LayoutParameterSortingLevel") == 1 ? Level::Sorts
                                                                             : Level::Keeps;
  return gLevel == Level::Sorts;
}

void KEPRshParameterOrdering::ForgetProcessCache() {
  gLevel = Level::Unread;
}

void KEPRshParameterOrdering::Sort(std::vector<KEPRshLayoutParameter*>& parameters) {
  KEPRshQuickSort(parameters, &CompareBySortingOrder);
}

int KEPRshParameterOrdering::CompareBySortingOrder(KEPRshLayoutParameter* lhs,
                                                   KEPRshLayoutParameter* rhs) {
  KEP_ASSERT_FATAL(lhs && lhs->Behaviour(),
                   "( parameter_lhs != NULL_var ) && \"lhs from parameter list is not a "
                   "KEPIRshParameterImmLayout\"",
                   KEPRshShaderImmLayoutSource);
  KEP_ASSERT_FATAL(rhs && rhs->Behaviour(),
                   "( parameter_rhs != NULL_var ) && \"rhs from parameter list is not a "
                   "KEPIRshParameterImmLayout\"",
                   KEPRshShaderImmLayoutSource);
  const KEPString* lhsOrder = lhs->SortingOrder();
  const KEPString* rhsOrder = rhs->SortingOrder();
  if (!lhsOrder) return rhsOrder ? -1 : CompareByName(lhs, rhs);
  if (!rhsOrder) return 1;
  unsigned lhsNumber = 0;
  unsigned rhsNumber = 0;
  if (lhs->SortingNumber(lhsNumber) && rhs->SortingNumber(rhsNumber))
    return lhsNumber < rhsNumber ? -1 : (lhsNumber == rhsNumber ? 0 : 1);
  return CompareByName(lhs, rhs);
}

int KEPRshParameterOrdering::CompareByName(KEPRshLayoutParameter* lhs, KEPRshLayoutParameter* rhs) {
  KEP_ASSERT_FATAL(
      lhs && lhs->Parameter(),
      "( parameter_lhs != NULL_var ) && \"lhs from parameter list is not a KEPIRshParameter\"",
      KEPRshShaderImmLayoutSource);
  KEP_ASSERT_FATAL(
      rhs && rhs->Parameter(),
      "( parameter_rhs != NULL_var ) && \"rhs from parameter list is not a KEPIRshParameter\"",
      KEPRshShaderImmLayoutSource);
  // Every parameter of a group yielded its name when the groups were formed.
  return CompareNames(&lhs->Name(), &rhs->Name());
}

int KEPRshParameterOrdering::CompareNames(const KEPString* lhs, const KEPString* rhs) {
  if (!lhs) return rhs ? -1 : 0;
  if (!rhs) return 1;
  const int order = lhs->compare(*rhs);  // byte-wise: char_traits<char> compares unsigned bytes
  return order < 0 ? -1 : (order > 0 ? 1 : 0);
}
