// The classic vector frame: the spinner row (two or three components), the slider column (two to
// four) with the length asymmetry of the sliders, and the components written on every change.
#include "FramesTestSupport.h"
#include "KEPDlgLabel.h"
#include "KEPDlgSpinner.h"
#include "KEPRbaScalarSlider.h"
#include "KEPRshParameterVectorFrame.h"

namespace keptest {
namespace {

using VectorFrameTest = FrameTest;

std::vector<float> Stored(KEPIRshParameter* p) {
  float xyzw[4] = {-1, -1, -1, -1};
  p->GetVectorValue(xyzw);
  return {xyzw[0], xyzw[1], xyzw[2], xyzw[3]};
}

std::string Title(const KEPVidWidget* frame, const char* name) {
  const auto* label = dynamic_cast<const KEPDlgLabel*>(frame->FindNamedChild(name));
  return label ? label->GetTitle().ToUTF8() : "(missing)";
}

TEST_F(VectorFrameTest, Vector2dShowsTwoSpinnersAndWritesZeroForZAndW) {
  KEPHostParameter* p = Param(KEPHostValue::Vector({1, 2, 3, 4}), {{".Widget", "Vector2D"}});
  auto* frame = Build<KEPRshParameterVectorFrame>(p);
  EXPECT_EQ(frame->GetSpinner(0)->GetValue(), 1.0);
  EXPECT_EQ(frame->GetSpinner(1)->GetValue(), 2.0);
  EXPECT_EQ(frame->GetSpinner(2), nullptr);
  EXPECT_EQ(frame->FindNamedChild("zLabel"), nullptr);
  Act(frame->GetSpinner(1), KEPVidAction::Set, "5");
  EXPECT_EQ(Stored(p), std::vector<float>({1, 5, 0, 0}));
}

TEST_F(VectorFrameTest, OtherKindsShowThreeLabelledSpinnersWithoutUnits) {
  KEPHostParameter* p = Param(KEPHostValue::Vector({10, 20, 30}),
                              {{".Widget", "arrows"}, {".Unit", "mm"}, {".Min", "-50"}});
  auto* frame = Build<KEPRshParameterVectorFrame>(p);
  EXPECT_EQ(std::vector<std::string>(
                {Title(frame, "xLabel"), Title(frame, "yLabel"), Title(frame, "zLabel")}),
            std::vector<std::string>({"X", " Y", " Z"}));
  for (int i = 0; i < 3; ++i) {
    KEPDlgSpinner* spinner = frame->GetSpinner(i);
    EXPECT_EQ(spinner->GetValue(), 10.0 * (i + 1));
    EXPECT_EQ(spinner->GetUnit(), 0);
    EXPECT_STREQ(spinner->GetFormat(), "%.4f");
  }
  // ".Max" missing: the range cannot be read and the defaults stay.
  double lo = 0, hi = 0, step = 0;
  frame->GetSpinner(0)->GetMinMaxStep(lo, hi, step);
  EXPECT_EQ(std::vector<double>({lo, hi, step}), std::vector<double>({-100000, 100000, 1}));
  Act(frame->GetSpinner(2), KEPVidAction::Set, "-7.5");
  EXPECT_EQ(Stored(p), std::vector<float>({10, 20, -7.5f, 0}));
}

TEST_F(VectorFrameTest, SlidersShowLengthsScaledButWriteWhatTheyHold) {
  KEPHostParameter* p = Param(KEPHostValue::Vector({10, 20, 30}),
                              {{".Widget", "sliderx3"}, {".Unit", "mm"}, {".Label1", "Depth"}});
  auto* frame = Build<KEPRshParameterVectorFrame>(p);
  const double shown[3] = {0.01, 0.02, 0.03};
  for (int i = 0; i < 3; ++i) {
    EXPECT_NEAR(frame->GetSlider(i)->GetValue(), shown[i], 1e-9);
    EXPECT_EQ(frame->GetSlider(i)->GetUnit(), 45);
  }
  EXPECT_EQ(frame->GetSlider(3), nullptr);
  Act(frame->GetSlider(1), KEPVidAction::Set, "25");  // millimetres shown: 0.025 held
  const std::vector<float> written = Stored(p);
  EXPECT_FLOAT_EQ(written[0], 0.01f);
  EXPECT_FLOAT_EQ(written[1], 0.025f);
  EXPECT_FLOAT_EQ(written[2], 0.03f);
  EXPECT_EQ(written[3], 0.0f);
}

TEST_F(VectorFrameTest, SliderRowsCarryTheComponentLabelAndAHiddenSeparator) {
  auto* frame = Build<KEPRshParameterVectorFrame>(
      Param(KEPHostValue::Vector({0.1f, 0.2f, 0.3f, 0.4f}),
            {{".Widget", "SLIDERX4"}, {".Unit", "K"}, {".Label1", "Green"}}));
  std::vector<std::string> labels;
  int separators = 0;
  for (std::size_t i = 0; i < frame->GetChildCount(); ++i) {
    const auto* label = dynamic_cast<const KEPDlgLabel*>(frame->GetChild(i));
    if (label && label->GetName() == "subLabel") labels.push_back(label->GetTitle().ToUTF8());
    if (label && label->GetName() == "sepLabel" && label->GetVisibility() == KEPDlgHide)
      ++separators;
  }
  EXPECT_EQ(labels, std::vector<std::string>({"X", "Green", "Z", "W"}));
  EXPECT_EQ(separators, 4);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(frame->GetSlider(i)->GetUnit(), 0);  // a slider never takes kelvins
    EXPECT_EQ(frame->GetSlider(i)->GetName(), "scalarSlider");
  }
}

}  // namespace
}  // namespace keptest
