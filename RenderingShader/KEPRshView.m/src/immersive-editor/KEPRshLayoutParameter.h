// One parameter of a shader node as the immersive editor lays it out. What the editor reads of
// the parameter (its behaviour, widget kind, group and sorting order) is read at most once per
// layout, on first use, however many groups look at the parameter and however often the sort
// compares it.
#pragma once

#include <utility>

#include "KEPIRshParameter.h"
#include "KEPIRshParameterImmLayout.h"
#include "KEPString.h"
#include "KEP_var.h"

class KEPRshLayoutParameter {
 public:
  /// `parameter` (may be null for a list entry that is no parameter) and its name.
  KEPRshLayoutParameter(KEP_var<KEPIRshParameter> parameter, KEPString name)
      : parameter_(std::move(parameter)), name_(std::move(name)) {}

  /// Borrowed; null when the list entry was no parameter.
  KEPIRshParameter* Parameter() const { return parameter_.Get(); }
  const KEPString& Name() const { return name_; }

  /// The parameter's ".Group", as the editor read it; null when the key is missing.
  const KEPString* Group() const { return hasGroup_ ? &group_ : nullptr; }
  void SetGroup(KEPString group) {
    group_ = std::move(group);
    hasGroup_ = true;
  }

  /// The immersive behaviour (borrowed), or null when the parameter has none.
  KEPIRshParameterImmLayout* Behaviour();
  /// Shown unless the widget kind is "none" in any case; a parameter without a behaviour is
  /// hidden, one without a configured kind shown.
  bool IsVisible();
  /// ".SortingOrder" as text; null when the parameter has none (or no behaviour to ask).
  const KEPString* SortingOrder();
  /// The sorting order read "%u"; false when there is none or it does not read as a number.
  bool SortingNumber(unsigned& number);

 private:
  KEP_var<KEPIRshParameter> parameter_;
  KEPString name_;
  KEPString group_;
  bool hasGroup_ = false;

  KEP_var<KEPIRshParameterImmLayout> behaviour_;
  bool behaviourQueried_ = false;
  bool visibilityRead_ = false;
  bool visible_ = false;
  KEPString order_;
  bool orderRead_ = false;
  bool hasOrder_ = false;
  bool hasNumber_ = false;
  unsigned number_ = 0;
};
