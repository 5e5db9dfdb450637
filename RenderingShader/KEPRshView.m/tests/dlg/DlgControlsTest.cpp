// The controls' rules: spinner ranges, clamping and float/double modes, unit codes and formats as
// shown, slider drag against release, line selection by index and text, check states, and the
// values a person cannot give.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "DlgTestSupport.h"
#include "KEPDlgCheckButton.h"
#include "KEPDlgCombo.h"
#include "KEPDlgSelectorList.h"
#include "KEPDlgSpinner.h"
#include "KEPParmDictionary.h"
#include "KEPRbaScalarSlider.h"
#include "KEPRbaScalarWheel.h"
#include "KEPTestSupport.h"

using dlgtest::Count;
using dlgtest::Inject;
using dlgtest::MakeRoot;
using dlgtest::Root;

namespace {

class DlgControls : public keptest::Fixture {};

constexpr int kFloat = KEPDlgStyleSpinner;
constexpr int kDouble = KEPDlgStyleSpinner | KEPDlgStyleDouble;

TEST_F(DlgControls, SpinnerKeepsItsValueInsideItsRangeInBothModes) {
  Root root = MakeRoot();
  struct Case {
    int style;
    double minimum, maximum, set, expected;
  };
  const Case cases[] = {
      {kDouble, 0.0, 1.0, 0.5, 0.5},    {kDouble, 0.0, 1.0, 2.0, 1.0},
      {kDouble, -1e6, 1e6, -2e6, -1e6}, {kFloat, 0.0, 1.0, -0.5, 0.0},
      {kFloat, 10.0, 20.0, 15.0, 15.0}, {kDouble, 5.0, 1.0, 3.0, 5.0},  // empty: the minimum
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "style " << c.style << " set " << c.set);
    auto* spinner = new KEPDlgSpinner(root.Get(), "s", c.style);
    spinner->SetMinMaxStep(c.minimum, c.maximum, 1.0);
    spinner->SetValue(c.set);
    EXPECT_EQ(spinner->GetValue(), c.expected);
    EXPECT_EQ(spinner->GetCurrentValue(), static_cast<float>(c.expected));
  }
}

TEST_F(DlgControls, FloatModeNarrowsAndDoubleModeKeepsFullPrecision) {
  Root root = MakeRoot();
  auto* single = new KEPDlgSpinner(root.Get(), "float", kFloat);
  auto* full = new KEPDlgSpinner(root.Get(), "double", kDouble);
  EXPECT_FALSE(single->IsDoubleMode());
  EXPECT_TRUE(full->IsDoubleMode());
  single->SetValue(0.1);
  full->SetValue(0.1);
  EXPECT_EQ(single->GetValue(), static_cast<double>(0.1f));
  EXPECT_EQ(full->GetValue(), 0.1);
  // The float interface works in double mode too, on the same value.
  full->SetCurrentValue(0.25f);
  EXPECT_EQ(full->GetValue(), 0.25);
}

TEST_F(DlgControls, RangeSettersAgreeAndAMovingRangeCarriesTheValue) {
  Root root = MakeRoot();
  auto* spinner = new KEPDlgSpinner(root.Get(), "s", kDouble);
  spinner->SetRange(1000.0f, 10000.0f, 90);
  double minimum = 0, maximum = 0, step = 0;
  spinner->GetMinMaxStep(minimum, maximum, step);
  EXPECT_EQ(minimum, 1000.0);
  EXPECT_EQ(maximum, 10000.0);
  EXPECT_DOUBLE_EQ(step, 100.0);
  EXPECT_EQ(spinner->GetValue(), 1000.0) << "the value 0 was brought to the new minimum";

  spinner->SetMinMaxStep(0.0, 1.0, 0.01);
  float fMin = 0, fMax = 0;
  int steps = 0;
  spinner->GetRange(fMin, fMax, steps);
  EXPECT_EQ(steps, 100);

  int count = 0;
  Count(root.Get(), spinner, "KEPDlgSpinnerModifyNotification", &count);
  spinner->SetValue(0.9);
  spinner->SetMinMaxStep(0.0, 0.5, 0.01, 0);
  EXPECT_EQ(spinner->GetValue(), 0.5);
  EXPECT_EQ(count, 0);
  spinner->SetMinMaxStep(0.0, 0.25, 0.01, 1);
  EXPECT_EQ(count, 1) << "a range that moves the value notifies when asked";
  spinner->SetMinMaxStep(0.0, 0.75, 0.01, 1);
  EXPECT_EQ(count, 1) << "a range that leaves the value notifies nothing";
}

TEST_F(DlgControls, NonFiniteNumbersAreRefused) {
  Root root = MakeRoot();
  auto* spinner = new KEPDlgSpinner(root.Get(), "s", kDouble);
  auto* slider = new KEPRbaSlider(root.Get(), "slider", 110, 16, KEPDlgStyleDouble);
  spinner->SetValue(0.5);
  slider->SetValue(0.5);
  keptest::TraceCapture traces;
  for (const double bad :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
    spinner->SetValue(bad, 1);
    spinner->SetMinMaxStep(bad, 1.0, 0.1);
    slider->SetValue(bad, 1);
    slider->SetRange(0.0, bad, 0.1);
  }
  EXPECT_EQ(spinner->GetValue(), 0.5);
  EXPECT_EQ(slider->GetValue(), 0.5);
  double minimum = 0, maximum = 0, step = 0;
  slider->GetRange(minimum, maximum, step);
  EXPECT_EQ(maximum, 1.0);
  EXPECT_TRUE(traces.Contains("not a finite number"));
  EXPECT_EQ(Inject(spinner, KEPVidAction::Set, "nan"), E_INVALIDARG);
  EXPECT_EQ(Inject(spinner, KEPVidAction::Set, "1e400"), E_INVALIDARG);
  EXPECT_EQ(Inject(spinner, KEPVidAction::Set, "0.5 cm"), E_INVALIDARG) << "trailing text";
}

// A length is held in metres and shown in its code's unit; a person types in the unit shown.
TEST_F(DlgControls, UnitCodesShowTheValueInTheirUnit) {
  Root root = MakeRoot();
  struct Case {
    int unit;
    double value;
    const char* format;
    const char* text;
  };
  const Case cases[] = {
      {KEPDlgUnitMillimetre, 0.025, "%.2f", "25.00 mm"},
      {KEPDlgUnitCentimetre, 0.025, "%.2f", "2.50 cm"},
      {KEPDlgUnitMetre, 0.025, "%.3f", "0.025 m"},
      {KEPDlgUnitKilometre, 1500.0, "%.1f", "1.5 km"},
      {KEPDlgUnitDegree, 0.7853981633974483, "%.1f", "45.0 deg"},  // held in radians
      {KEPDlgUnitKelvin, 6500.0, "%.0f", "6500 K"},
      {KEPDlgUnitNone, 0.025, "%.3f", "0.025"},
      {99, 0.025, "%.3f", "0.025"},  // an unknown code shows the value as it is
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    auto* spinner = new KEPDlgSpinner(root.Get(), "s", kDouble);
    spinner->SetMinMaxStep(-1e6, 1e6, 1.0);
    spinner->SetUnit(c.unit);
    spinner->SetFormat(c.format);
    spinner->SetValue(c.value);
    EXPECT_EQ(spinner->GetValueText(), c.text);
    EXPECT_EQ(spinner->GetUnit(), c.unit);
  }
  auto* spinner = new KEPDlgSpinner(root.Get(), "cm", kDouble);
  spinner->SetUnit(KEPDlgUnitCentimetre);
  ASSERT_EQ(Inject(spinner, KEPVidAction::Set, "2.5"), S_OK);
  EXPECT_DOUBLE_EQ(spinner->GetValue(), 0.025);
  // Typed degrees are held as radians.
  auto* angle = new KEPDlgSpinner(root.Get(), "deg", kDouble);
  angle->SetMinMaxStep(-1e6, 1e6, 1.0);
  angle->SetUnit(KEPDlgUnitDegree);
  ASSERT_EQ(Inject(angle, KEPVidAction::Set, "90"), S_OK);
  EXPECT_NEAR(angle->GetValue(), 1.5707963267948966, 1e-12);
  // The chosen display unit of the length magnitude does not change what a code shows.
  KEPICkeMagnitude* length = KEPParmDictionary::FindMagnitude(KEPParmDictionary::LengthType);
  ASSERT_NE(length, nullptr);
  length->SetCurrentUnit(KEPParmDictionary::FindUnit(KEPUnicodeString(u"in")));
  spinner->SetFormat("%.1f");
  EXPECT_EQ(spinner->GetValueText(), "2.5 cm");
}

TEST_F(DlgControls, FormatsAreAppliedSafely) {
  Root root = MakeRoot();
  auto* spinner = new KEPDlgSpinner(root.Get(), "s", kDouble);
  spinner->SetMinMaxStep(-1e6, 1e6, 1.0);
  spinner->SetValue(2.6);
  struct Case {
    const char* format;
    const char* text;
  };
  const Case cases[] = {
      {"%d", "2"},   // an integer conversion cuts toward zero, as frames reading an int do
      {"%ld", "2"},  // a length modifier does not change the reading
      {"%5.1f", "  2.6"},  {"%.2f%%", "2.60%"},
      {"x=%g!", "x=2.6!"}, {"%s", "x=2.6!"},  // refused: the previous format stays
      {"%n", "x=2.6!"},    {"%f %f", "x=2.6!"},
      {"%*d", "x=2.6!"},   {"%1000f", "x=2.6!"},
  };
  keptest::TraceCapture traces;
  for (const Case& c : cases) {
    spinner->SetFormat(c.format);
    EXPECT_EQ(spinner->GetValueText(), c.text) << c.format;
  }
  EXPECT_TRUE(traces.Contains("refused format = %s"));
  spinner->SetFormat("");
  spinner->SetPrecision(3, 1);
  EXPECT_EQ(spinner->GetValueText(), "2.6") << "trailing zeros dropped";
  spinner->SetPrecision(3);
  EXPECT_EQ(spinner->GetValueText(), "2.600");
}

TEST_F(DlgControls, ADragAndARelease) {
  Root root = MakeRoot();
  auto* slider = new KEPRbaScalarSlider(root.Get(), "scalarSlider", 110, 16, 0xa0000);
  slider->SetRange(0.0, 1.0, 0.01);
  int drags = 0;
  int modifies = 0;
  Count(root.Get(), slider, "KEPDlgSliderDragNotification", &drags);
  Count(root.Get(), slider, "KEPDlgSliderModifyNotification", &modifies);

  EXPECT_EQ(Inject(slider, KEPVidAction::Drag, "0.25"), S_OK);
  EXPECT_EQ(Inject(slider, KEPVidAction::Drag, "0.5"), S_OK);
  EXPECT_EQ(drags, 2);
  EXPECT_EQ(modifies, 0);
  EXPECT_EQ(slider->GetValue(), 0.5);
  EXPECT_EQ(Inject(slider, KEPVidAction::Set, "0.5"), S_OK);
  EXPECT_EQ(modifies, 1) << "a release notifies even where the drag left the value";
  EXPECT_EQ(Inject(slider, KEPVidAction::Drag, "7"), S_OK);
  EXPECT_EQ(slider->GetValue(), 1.0) << "a drag stops at the end";
  slider->SetValue(0.3);
  EXPECT_EQ(drags + modifies, 4) << "code is silent by default";
  slider->SetValue(0.4, 1);
  EXPECT_EQ(modifies, 2) << "code with notify sends a modify, never a drag";
  EXPECT_EQ(drags, 3);
}

TEST_F(DlgControls, ScalarSlidersAndWheelsShowTheirUnitAndPrecision) {
  Root root = MakeRoot();
  auto* slider = new KEPRbaScalarSlider(root.Get(), "scalarSlider", 110, 16, 0xa0000);
  slider->SetRange(0.0, 1.0, 0.001);
  slider->SetUnit(KEPDlgUnitMillimetre);
  slider->SetFormat("%.2f");
  slider->SetValue(0.01);
  EXPECT_EQ(slider->GetValueText(), "10.00 mm");
  ASSERT_EQ(Inject(slider, KEPVidAction::Set, "20"), S_OK);
  EXPECT_DOUBLE_EQ(slider->GetValue(), 0.02);

  auto* wheel = new KEPRbaScalarWheel(root.Get(), "scalarWheel", 110, 16, 0x8a0000);
  wheel->SetRange(-1e6, 1e6, 1.0);
  wheel->SetUnit(KEPDlgUnitKelvin);
  wheel->SetPrecision(4);
  wheel->SetCustomUnitSymbol("k");
  wheel->SetValue(6500.5);
  EXPECT_EQ(wheel->GetValueText(), "6500.5000 k");

  // Without the double bit a slider keeps single precision.
  auto* single = new KEPRbaScalarSlider(root.Get(), "single", 110, 16, 0x80000);
  single->SetValue(0.1);
  EXPECT_EQ(single->GetValue(), static_cast<double>(0.1f));
}

TEST_F(DlgControls, LinesAreSelectedByIndexOrByText) {
  Root root = MakeRoot();
  auto* combo = new KEPDlgCombo(root.Get(), "integerCombo", 0x40000);
  auto* list = new KEPDlgSelectorList(root.Get(), "shaderSelector");
  for (KEPDlgLineList* lines :
       {static_cast<KEPDlgLineList*>(combo), static_cast<KEPDlgLineList*>(list)}) {
    SCOPED_TRACE(lines->GetName());
    const KEPUnicodeString first[] = {KEPUnicodeString(u"Glass"), KEPUnicodeString(u"3")};
    lines->SetLine(first, 2, -1, KEPDlgLineReplace);
    lines->SetLine(KEPUnicodeString(u"Tint"));
    lines->SetSelect(1);
    lines->SetLine(KEPUnicodeString(u"Noise"), 0);  // inserted before: the selection moves with it
    EXPECT_EQ(lines->GetLineCount(), 4);
    EXPECT_EQ(lines->GetSelect(), 2);
    EXPECT_EQ(lines->GetLine(2).ToUTF8(), "3");

    int count = 0;
    Count(root.Get(), lines, "KEPNotification", &count);
    EXPECT_EQ(Inject(lines, KEPVidAction::Select, "Tint"), S_OK);
    EXPECT_EQ(lines->GetSelect(), 3);
    EXPECT_EQ(Inject(lines, KEPVidAction::Select, "3"), S_OK);
    EXPECT_EQ(lines->GetSelect(), 3) << "a number is an index first";
    EXPECT_EQ(count, 2) << "a person's selection always notifies";
    std::string error;
    EXPECT_EQ(Inject(lines, KEPVidAction::Select, "4", &error), E_INVALIDARG);
    EXPECT_NE(error.find("not one of its 4 lines"), std::string::npos) << error;
    EXPECT_EQ(Inject(lines, KEPVidAction::Select, "glass", &error), E_INVALIDARG);
    EXPECT_NE(error.find("no line reads \"glass\""), std::string::npos) << error;

    keptest::TraceCapture traces;
    lines->SetSelect(9, 1);
    EXPECT_EQ(lines->GetSelect(), 3);
    EXPECT_EQ(lines->GetSelectCount(), 1);
    lines->SetSelect(-1);
    EXPECT_EQ(lines->GetSelectCount(), 0);
    lines->SetSelect(0);
    lines->SetLine(nullptr, 0, -1, KEPDlgLineReplace);
    EXPECT_EQ(lines->GetSelect(), -1) << "replacing the lines clears the selection";
    EXPECT_EQ(count, 2);
  }
}

TEST_F(DlgControls, CheckStates) {
  Root root = MakeRoot();
  auto* check = new KEPDlgCheckButton(root.Get(), "booleanCheck");
  EXPECT_EQ(check->GetState(), KEPDlgUncheck);
  check->SetState(KEPDlgCheck);
  EXPECT_EQ(check->GetState(), KEPDlgCheck);
  keptest::TraceCapture traces;
  check->SetState(1);
  EXPECT_EQ(check->GetState(), KEPDlgCheck) << "1 is not a check state";
  EXPECT_TRUE(traces.Contains("refused state = 0x1"));

  int count = 0;
  Count(root.Get(), check, "KEPDlgCheckButtonModifyNotification", &count);
  struct Case {
    const char* argument;
    int expected;
  };
  const Case cases[] = {{"", KEPDlgUncheck},
                        {"", KEPDlgCheck},
                        {"off", KEPDlgUncheck},
                        {"OFF", KEPDlgUncheck},
                        {"on", KEPDlgCheck}};
  for (const Case& c : cases) {
    ASSERT_EQ(Inject(check, KEPVidAction::Toggle, c.argument), S_OK);
    EXPECT_EQ(check->GetState(), c.expected) << c.argument;
  }
  EXPECT_EQ(count, 5);
  EXPECT_EQ(Inject(check, KEPVidAction::Toggle, "maybe"), E_INVALIDARG);
  EXPECT_EQ(Inject(check, KEPVidAction::Set, "1"), E_INVALIDARG);
}

}  // namespace
