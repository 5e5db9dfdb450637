#include "KEPRshLayoutParameter.h"

#include <cstdio>

#include "KEPBaseUnknown.h"

KEPIRshParameterImmLayout* KEPRshLayoutParameter::Behaviour() {
  if (!behaviourQueried_) {
    behaviourQueried_ = true;
    behaviour_ = KEPQueryVar<KEPIRshParameterImmLayout>(parameter_);
  }
  return behaviour_.Get();
}

bool KEPRshLayoutParameter::IsVisible() {
  if (!visibilityRead_) {
    visibilityRead_ = true;
    KEPIRshParameterImmLayout* behaviour = Behaviour();
    KEPString kind;
    visible_ = behaviour && !(SUCCEEDED(behaviour->GetWidget(kind)) && KEPToLower(kind) == "none");
  }
  return visible_;
}

const KEPString* KEPRshLayoutParameter::SortingOrder() {
  if (!orderRead_) {
    orderRead_ = true;
    if (KEPIRshParameterImmLayout* behaviour = Behaviour())
      hasOrder_ = SUCCEEDED(behaviour->GetSortingOrder(order_));
    // The C library's reading: leading blanks skipped, the text after the number ignored, a
    // minus sign wrapping around.
    hasNumber_ = hasOrder_ && std::sscanf(order_.c_str(), "%u", &number_) == 1;
  }
  return hasOrder_ ? &order_ : nullptr;
}

bool KEPRshLayoutParameter::SortingNumber(unsigned& number) {
  SortingOrder();
  if (hasNumber_) number = number_;
  return hasNumber_;
}
