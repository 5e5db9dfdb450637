// The colour-temperature slider: its parts, the coupled setters, which moves notify the father,
// the precision of each mode, the gradient painted from the black-body colours, and its traces.
#include "FramesTestSupport.h"
#include "KEP2DImagePixelRep.h"
#include "KEPBlackbodyColor.h"
#include "KEPDlgSpinner.h"
#include "KEPPixelImage.h"
#include "KEPRbaSlider.h"
#include "KEPRshScalarBlackbodySlider.h"

namespace keptest {
namespace {

class BlackbodySliderTest : public FrameTest {
 protected:
  /// A control under the root, `width` × 16 pixels, and counters of what reaches the root.
  KEPRshScalarBlackbodySlider* Make(int style, int width = 110) {
    auto* control = new KEPRshScalarBlackbodySlider(Root(), "temperature", width, 16, style);
    Root()->AddCallback(control, control->GetSliderModifyNotification(),
                        [this](KEPDialog*, KEPNotification*, KEPDlgClientData) { ++modifies_; });
    Root()->AddCallback(control, control->GetSliderDragNotification(),
                        [this](KEPDialog*, KEPNotification*, KEPDlgClientData) { ++drags_; });
    return control;
  }
  int modifies_ = 0;
  int drags_ = 0;
};

TEST_F(BlackbodySliderTest, PartsAreNamedAfterTheControlAndStyledByMode) {
  struct Row {
    int style, sliderStyle, spinnerStyle;
  } const rows[] = {{0, 0xC0000, 0x40000},
                    {0x20000, 0xE0000, 0x60000},
                    {0x7FFFFFFF, 0x6E0000, 0x60000}};  // bits other than the kept ones dropped
  for (const Row& r : rows) {
    SCOPED_TRACE(r.style);
    KEPRshScalarBlackbodySlider* control = Make(r.style);
    EXPECT_EQ(control->GetSlider()->GetName(), "temperatureBlackbodySlider");
    EXPECT_EQ(control->GetSpinner()->GetName(), "temperatureSpinner");
    EXPECT_EQ(control->GetSlider()->GetStyle(), r.sliderStyle);
    EXPECT_EQ(control->GetSpinner()->GetStyle(), r.spinnerStyle);
    double lo = 0, hi = 0, step = 0;
    control->GetSlider()->GetRange(lo, hi, step);
    EXPECT_EQ(std::vector<double>({lo, hi, step}), std::vector<double>({0.0, 1.0, 0.01}));
    EXPECT_FALSE(control->IsValueSet());
  }
}

TEST_F(BlackbodySliderTest, CoupledSettersKeepSliderAndSpinnerTogether) {
  KEPRshScalarBlackbodySlider* control = Make(0x20000);
  control->SetRange(1000.0f, 10000.0f, 90);
  double lo = 0, hi = 0, step = 0;
  control->GetSlider()->GetRange(lo, hi, step);
  EXPECT_EQ(std::vector<double>({lo, hi, step}), std::vector<double>({1000.0, 10000.0, 100.0}));
  float fmin = 0, fmax = 0;
  int steps = 0;
  control->GetRange(fmin, fmax, steps);
  EXPECT_EQ(steps, 90);

  control->SetValue(20000.0);  // clamped by the spinner; the slider takes what it kept
  EXPECT_EQ(control->GetValue(), 10000.0);
  EXPECT_EQ(control->GetSlider()->GetValue(), 10000.0);
  EXPECT_TRUE(control->IsValueSet());
  control->SetMinMaxStep(0.0, 50.0, 5.0);
  control->SetCurrentValue(12.5f);
  EXPECT_EQ(control->GetSlider()->GetValue(), 12.5);
  EXPECT_EQ(modifies_ + drags_, 0);  // setters never notify the father

  control->SetSensitivity(KEPDlgDisable);
  EXPECT_EQ(control->GetSlider()->IsSetSensitivity(), KEPDlgDisable);
  EXPECT_EQ(control->IsSetSensitivity(), KEPDlgDisable);
}

TEST_F(BlackbodySliderTest, SliderAlwaysNotifiesSpinnerOnlyOnAChange) {
  KEPRshScalarBlackbodySlider* control = Make(0x20000);
  control->SetMinMaxStep(1000.0, 10000.0, 100.0);
  control->SetValue(5000.0);
  TraceCapture capture(5);
  Act(control->GetSpinner(), KEPVidAction::Set, "5000");  // the value it already has
  EXPECT_EQ(modifies_, 0);
  Act(control->GetSpinner(), KEPVidAction::Set, "6000");
  EXPECT_EQ(modifies_, 1);
  EXPECT_EQ(control->GetSlider()->GetValue(), 6000.0);

  Act(control->GetSlider(), KEPVidAction::Set, "6000");  // released where it was
  EXPECT_EQ(modifies_, 2);
  Act(control->GetSlider(), KEPVidAction::Drag, "7000");
  EXPECT_EQ(drags_, 1);
  EXPECT_EQ(control->GetValue(), 7000.0);
  EXPECT_TRUE(capture.Contains(
      "(KEPRshScalarBlackbodySlider::SliderDragNotificationCB) Slider value=7000.000000\n"));
  EXPECT_TRUE(capture.Contains(
      "(KEPRshScalarBlackbodySlider::SliderModifyNotificationCB) Slider value=6000.000000\n"));
  EXPECT_TRUE(
      capture.Contains("(KEPRshScalarBlackbodySlider::SpinnerModifyNotificationCB) "
                       "Spinner value=6000.000000, double value=6000.000000\n"));
}

TEST_F(BlackbodySliderTest, DoubleModeKeepsFullPrecisionFloatModeNarrows) {
  KEPRshScalarBlackbodySlider* precise = Make(0x20000);
  Act(precise->GetSlider(), KEPVidAction::Drag, "0.1");
  EXPECT_EQ(precise->GetValue(), 0.1);
  KEPRshScalarBlackbodySlider* narrow = Make(0);
  Act(narrow->GetSlider(), KEPVidAction::Drag, "0.1");
  EXPECT_EQ(narrow->GetValue(), static_cast<double>(0.1f));
  EXPECT_NE(narrow->GetValue(), 0.1);
}

TEST_F(BlackbodySliderTest, GradientColumnsShowTheColourAtTheStartOfTheirShare) {
  KEPRshScalarBlackbodySlider* control = Make(0x20000, 104);  // a background area of 100 × 12
  control->SetMinMaxStep(1000.0, 11000.0, 100.0);
  TraceCapture capture(5);
  control->SetSliderBackgroundGradient();
  EXPECT_TRUE(capture.Contains(
      "(KEPRshScalarBlackbodySlider::SetBackgroundGradient) Updating gradient.\n"));

  const auto* rep = dynamic_cast<KEP2DImagePixelRep*>(control->GetSlider()->GetBackgroundRep());
  ASSERT_NE(rep, nullptr);
  EXPECT_EQ(rep->GetX(), 2.0);
  EXPECT_EQ(rep->GetY(), 2.0);
  EXPECT_EQ(rep->GetControllerId(), 0);
  const KEPPixelImage* image = rep->GetImage();
  ASSERT_EQ(image->GetWidth(), 100);
  ASSERT_EQ(image->GetHeight(), 12);
  EXPECT_EQ(image->GetDeallocationMode(), 2);
  EXPECT_EQ(image->GetPixelWidth(), 1.0f);

  const auto expected = [](float kelvin) {
    float r = 0, g = 0, b = 0;
    BlackbodyColor(kelvin, &r, &g, &b);
    return std::vector<int>(
        {static_cast<int>(r * 255.0f), static_cast<int>(g * 255.0f), static_cast<int>(b * 255.0f)});
  };
  const std::vector<std::uint8_t>& pixels = image->GetPixels();  // RGBA
  const auto at = [&](int row, int column) {
    const std::size_t i = static_cast<std::size_t>(row * 100 + column) * 4;
    return std::vector<int>({pixels[i], pixels[i + 1], pixels[i + 2]});
  };
  for (int row : {0, 11}) {
    EXPECT_EQ(at(row, 0), expected(1000.0f));
    EXPECT_EQ(at(row, 50), expected(6000.0f));
    EXPECT_EQ(at(row, 99), expected(10900.0f));  // one step short of the maximum
  }
  EXPECT_NE(expected(1000.0f), expected(10900.0f));
  EXPECT_EQ(control->GetGradientPixels().size(), 100u * 12u * 3u);

  control->SetMinMaxStep(2000.0, 3000.0, 10.0);
  control->SetSliderBackgroundGradient();  // replaces the image; the old one is released
  const auto* again = dynamic_cast<KEP2DImagePixelRep*>(control->GetSlider()->GetBackgroundRep());
  ASSERT_NE(again, nullptr);
  EXPECT_EQ(std::vector<int>({again->GetImage()->GetPixels()[0], again->GetImage()->GetPixels()[1],
                              again->GetImage()->GetPixels()[2]}),
            expected(2000.0f));
}

TEST_F(BlackbodySliderTest, DestructionTracesTheControlsName) {
  Make(0);
  TraceCapture capture(2);
  Root()->DeleteChildren();
  EXPECT_EQ(capture.Texts("module"),
            std::vector<std::string>(
                {"(KEPRshScalarBlackbodySlider::~KEPRshScalarBlackbodySlider) Destructor of "
                 "'temperature'\n",
                 "(KEPRshScalarBlackbodySlider::~KEPRshScalarBlackbodySlider) Done\n"}));
}

}  // namespace
}  // namespace keptest
