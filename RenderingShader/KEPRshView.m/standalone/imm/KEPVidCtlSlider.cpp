#include "KEPVidCtlSlider.h"

#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPVidCtlSlider, KEPVidCtl, "System")

KEPVidCtlSlider::KEPVidCtlSlider(KEPVidWidget* father, const KEPString& name)
    : KEPVidCtl(father, name) {}

KEPVidCtlSlider::~KEPVidCtlSlider() = default;

void KEPVidCtlSlider::SetRange(int minimum, int maximum) {
  minimum_ = minimum;
  maximum_ = maximum;
  SetValue(value_);
}

void KEPVidCtlSlider::SetValue(int value) {
  value = KEPVidClampInt(value, minimum_, maximum_);
  if (value == value_) return;
  value_ = value;
  Raise(KEPVidEvent::ValueChanged);
}

void KEPVidCtlSlider::DescribeState(KEPVidStateWriter& writer) const {
  KEPVidCtl::DescribeState(writer);
  writer.Int("minimum", minimum_);
  writer.Int("maximum", maximum_);
  writer.Int("value", value_);
  writer.Int("singleStep", singleStep_);
  writer.Int("pageStep", pageStep_);
  writer.Int("tickInterval", tickInterval_);
  writer.Int("tickPosition", tickPosition_);
  writer.Double("barSize", barSize_);
  writer.Double("squareHeightRatio", squareRatio_);
  writer.Bool("magnifier", magnifier_);
}

HRESULT KEPVidCtlSlider::InjectUserEvent(KEPVidAction action, std::string_view argument,
                                         std::string& error) {
  if (action != KEPVidAction::Set) return KEPVidRefuseAction(this, action, error);
  if (!KEPVidCheckReachable(this, action, error)) return E_INVALIDARG;
  int position = 0;
  std::string problem;
  if (!KEPVidReadInt(argument, position, problem)) return KEPVidRefuse(this, problem, error);
  // A person's drag stops at the ends of the range.
  SetValue(position);
  return S_OK;
}
