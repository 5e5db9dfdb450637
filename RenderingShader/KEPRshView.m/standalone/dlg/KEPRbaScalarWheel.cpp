#include "KEPRbaScalarWheel.h"

KEP_IMPLEMENT_CLASS(KEPRbaScalarWheel, KEPRbaScalarSlider, "System")

KEPRbaScalarWheel::KEPRbaScalarWheel(KEPDialog* father, const KEPString& name, const int& width,
                                     const int& height, int style)
    : KEPRbaScalarSlider(father, name, width, height, style) {}

KEPRbaScalarWheel::~KEPRbaScalarWheel() = default;

void KEPRbaScalarWheel::DescribeState(KEPVidStateWriter& writer) const {
  KEPRbaScalarSlider::DescribeState(writer);
  writer.Int("precision", precision_);
  writer.Text("unitSymbol", symbol_);
}
