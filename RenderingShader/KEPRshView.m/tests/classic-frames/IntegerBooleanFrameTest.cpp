// The classic integer and boolean frames: the control each widget kind builds, the combo's lines
// and the values its lines stand for, the check's states, and what a person's change writes.
#include "FramesTestSupport.h"
#include "KEPDlgCheckButton.h"
#include "KEPDlgCombo.h"
#include "KEPDlgLabel.h"
#include "KEPDlgSpinner.h"
#include "KEPRbaScalarSlider.h"
#include "KEPRshParameterBooleanFrame.h"
#include "KEPRshParameterIntegerFrame.h"

namespace keptest {
namespace {

using IntegerFrameTest = FrameTest;

std::vector<std::string> Lines(const KEPDlgCombo* combo) {
  std::vector<std::string> lines;
  for (int i = 0; i < combo->GetLineCount(); ++i) lines.push_back(combo->GetLine(i).ToUTF8());
  return lines;
}

TEST_F(IntegerFrameTest, WidgetKindChoosesTheControlInAnyLetterCase) {
  struct Row {
    const char *kind, *control;
  } const rows[] = {{"COMBO", "integerCombo"},
                    {"Slider", "integerSlider"},
                    {"check", "integerCheck"},
                    {"wheel", "integerSpinner"},
                    {"spinner", "integerSpinner"}};
  for (const Row& r : rows) {
    SCOPED_TRACE(r.kind);
    auto* frame = Build<KEPRshParameterIntegerFrame>(
        Param(KEPHostValue::Integer(1), {{".Widget", r.kind}, {".Min", "0"}, {".Max", "4"}}));
    ASSERT_NE(frame, nullptr);
    EXPECT_NE(frame->FindNamedChild(r.control), nullptr);
    const int built = (frame->GetSlider() != nullptr) + (frame->GetSpinner() != nullptr) +
                      (frame->GetCombo() != nullptr) + (frame->GetCheck() != nullptr);
    EXPECT_EQ(built, 1);
  }
}

TEST_F(IntegerFrameTest, ComboHasALinePerStepLabelledFromTheMinimumInStepsOfOne) {
  struct Row {
    Keys keys;
    std::vector<std::string> lines;
    int base;
  } const rows[] = {
      {{{".Min", "0"},
        {".Max", "10"},
        {".Step", "5"},
        {".Enum0", "Zero"},
        {".Enum1", "One"},
        {".Enum2", "Two"},
        {".Enum5", "Five"}},
       {"Zero", "One", "Two"},
       0},
      // Without labels a line shows its value.
      {{{".Min", "-2"}, {".Max", "2"}, {".Step", "2"}}, {"-2", "-1", "0"}, -2},
      // A step that is not positive counts as 1; an empty range gives no line.
      {{{".Min", "1"}, {".Max", "3"}, {".Step", "0"}}, {"1", "2", "3"}, 1},
      {{{".Min", "3"}, {".Max", "1"}}, {}, 3},
  };
  for (const Row& r : rows) {
    Keys keys = r.keys;
    keys.emplace_back(".Widget", "combo");
    auto* frame = Build<KEPRshParameterIntegerFrame>(Param(KEPHostValue::Integer(0), keys));
    EXPECT_EQ(Lines(frame->GetCombo()), r.lines);
    EXPECT_EQ(frame->GetComboBase(), r.base);
    EXPECT_EQ(frame->GetCombo()->GetStyle(), 0x40000);
    EXPECT_EQ(frame->GetCombo()->GetVisibleTextWidth(), 10);
    auto* separator = dynamic_cast<KEPDlgLabel*>(frame->FindNamedChild("sepLabel"));
    ASSERT_NE(separator, nullptr);
    EXPECT_EQ(separator->GetTitle().ToUTF8(), "-");
    EXPECT_EQ(separator->GetVisibility(), KEPDlgHide);
  }
  // The default range 0..100, and a range too wide to list is cut.
  EXPECT_EQ(
      Build<KEPRshParameterIntegerFrame>(Param(KEPHostValue::Integer(0), {{".Widget", "combo"}}))
          ->GetCombo()
          ->GetLineCount(),
      101);
  EXPECT_EQ(Build<KEPRshParameterIntegerFrame>(
                Param(KEPHostValue::Integer(0),
                      {{".Widget", "combo"}, {".Min", "-2000000000"}, {".Max", "2000000000"}}))
                ->GetCombo()
                ->GetLineCount(),
            KEPRshParameterIntegerFrame::kMaxComboLines);
}

TEST_F(IntegerFrameTest, ComboSelectsTheLineOfTheValueAndWritesTheValueOfTheLine) {
  // Enumeration values: a line stands for its entry's value.
  KEPHostParameter* valued = Param(KEPHostValue::Integer(20), {{".Widget", "combo"},
                                                               {".Min", "0"},
                                                               {".Max", "2"},
                                                               {".EnumVal0", "10"},
                                                               {".EnumVal1", "20"},
                                                               {".EnumVal2", "30"}});
  auto* combo = Build<KEPRshParameterIntegerFrame>(valued)->GetCombo();
  EXPECT_EQ(combo->GetSelect(), 1);
  Act(combo, KEPVidAction::Select, "2");
  EXPECT_EQ(Integer(valued), 30);

  // No enumeration values: the value itself is the line, the line is base + index.
  KEPHostParameter* plain =
      Param(KEPHostValue::Integer(1), {{".Widget", "combo"}, {".Min", "-2"}, {".Max", "2"}});
  combo = Build<KEPRshParameterIntegerFrame>(plain)->GetCombo();
  EXPECT_EQ(combo->GetSelect(), 1);  // the value 1 taken as a line index
  Act(combo, KEPVidAction::Select, "4");
  EXPECT_EQ(Integer(plain), 2);
}

TEST_F(IntegerFrameTest, CheckShowsAnyNonZeroAsCheckedAndWritesOneOrZero) {
  KEPHostParameter* p = Param(KEPHostValue::Integer(7), {{".Widget", "check"}});
  auto* check = Build<KEPRshParameterIntegerFrame>(p)->GetCheck();
  EXPECT_EQ(check->GetState(), KEPDlgCheck);
  EXPECT_TRUE(check->GetTitle().IsEmpty());
  Act(check, KEPVidAction::Toggle, "off");
  EXPECT_EQ(Integer(p), 0);
  Act(check, KEPVidAction::Toggle, "on");
  EXPECT_EQ(Integer(p), 1);
  EXPECT_EQ(
      Build<KEPRshParameterIntegerFrame>(Param(KEPHostValue::Integer(0), {{".Widget", "check"}}))
          ->GetCheck()
          ->GetState(),
      KEPDlgUncheck);
}

TEST_F(IntegerFrameTest, SliderAndSpinnerWriteTheirValueAndBuildingWritesNothing) {
  KEPHostParameter* slid =
      Param(KEPHostValue::Integer(3), {{".Widget", "slider"}, {".Min", "0"}, {".Max", "50"}});
  auto* slider = Build<KEPRshParameterIntegerFrame>(slid)->GetSlider();
  EXPECT_EQ(slider->GetValue(), 3.0);
  EXPECT_STREQ(slider->GetFormat(), "%d");
  Act(slider, KEPVidAction::Drag, "30");
  EXPECT_EQ(Integer(slid), 30);

  // A stored value outside the range is shown clamped but left as it is until a person acts.
  KEPHostParameter* spun = Param(KEPHostValue::Integer(500), {{".Min", "0"}, {".Max", "100"}});
  auto* spinner = Build<KEPRshParameterIntegerFrame>(spun)->GetSpinner();
  EXPECT_EQ(spinner->GetValue(), 100.0);
  EXPECT_EQ(Integer(spun), 500);
  Act(spinner, KEPVidAction::Set, "12");
  EXPECT_EQ(Integer(spun), 12);
  double lo = 0, hi = 0, step = 0;
  Build<KEPRshParameterIntegerFrame>(Param(KEPHostValue::Integer(0)))
      ->GetSpinner()
      ->GetMinMaxStep(lo, hi, step);
  EXPECT_EQ(std::vector<double>({lo, hi, step}), std::vector<double>({-100000, 100000, 1}));
}

TEST_F(IntegerFrameTest, BooleanCheckShowsAndWritesTheValue) {
  KEPHostParameter* p = Param(KEPHostValue::Boolean(true));
  auto* frame = Build<KEPRshParameterBooleanFrame>(p);
  ASSERT_EQ(frame->GetCheck()->GetName(), "booleanCheck");
  EXPECT_EQ(frame->GetCheck()->GetState(), KEPDlgCheck);
  TraceCapture capture(5);
  Act(frame->GetCheck(), KEPVidAction::Toggle);
  unsigned char stored = 1;
  p->GetBooleanValue(stored);
  EXPECT_EQ(stored, 0);
  EXPECT_TRUE(capture.Contains("(KEPRshParameterBooleanFrame::ParameterModifiedCB)\n"));
}

}  // namespace
}  // namespace keptest
