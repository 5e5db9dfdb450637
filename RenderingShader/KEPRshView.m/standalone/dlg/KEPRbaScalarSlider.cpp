#include "KEPRbaScalarSlider.h"

#include "KEPDlgValueText.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS(KEPRbaScalarSlider, KEPRbaSlider, "System")

KEPRbaScalarSlider::KEPRbaScalarSlider(KEPDialog* father, const KEPString& name, const int& width,
                                       const int& height, int style)
    : KEPRbaSlider(father, name, width, height, style) {}

KEPRbaScalarSlider::~KEPRbaScalarSlider() = default;

void KEPRbaScalarSlider::SetFormat(const char* format) {
  const std::string text = format ? format : "";
  if (!text.empty() && !KEPDlgIsNumberFormat(text)) {
    KEPTrace("KEPRbaScalarSlider")
        .Warning("{ widget = %s, refused format = %s }", GetName().c_str(), text.c_str());
    return;
  }
  format_ = text;
}

void KEPRbaScalarSlider::SetTrackSettings(double minorTicks, double majorTicks, double dragFactor,
                                          int positions) {
  minorTicks_ = minorTicks;
  majorTicks_ = majorTicks;
  dragFactor_ = dragFactor;
  positions_ = positions;
}

void KEPRbaScalarSlider::GetTrackSettings(double& minorTicks, double& majorTicks,
                                          double& dragFactor, int& positions) const {
  minorTicks = minorTicks_;
  majorTicks = majorTicks_;
  dragFactor = dragFactor_;
  positions = positions_;
}

std::string KEPRbaScalarSlider::GetValueText() const {
  return KEPDlgValueText(GetValue(), unit_, format_, precision_, false, symbol_);
}

double KEPRbaScalarSlider::FromShown(double shown) const {
  return KEPDlgFromShown(unit_, shown);
}

void KEPRbaScalarSlider::DescribeState(KEPVidStateWriter& writer) const {
  KEPRbaSlider::DescribeState(writer);
  writer.Int("unit", unit_);
  writer.Double("shownPerHeld", KEPDlgToShown(unit_, 1.0));
  writer.Text("format", format_);
  writer.Int("visibleTextWidth", textWidth_);
  const double track[] = {minorTicks_, majorTicks_, dragFactor_, static_cast<double>(positions_)};
  writer.DoubleList("track", std::vector<double>(std::begin(track), std::end(track)));
}
