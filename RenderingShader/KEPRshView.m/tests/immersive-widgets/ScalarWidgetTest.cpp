// The scalar widget: the controls it builds from the configuration, its units, what it writes
// or refuses when a person acts, its echo guard, how it follows the model, and its render lock.
#include <future>

#include "ImmWidgetTestSupport.h"
#include "KEPMsgCatalog.h"
#include "KEPParmDictionary.h"
#include "KEPRdgRenderLock.h"

namespace keptest {
namespace {

class ScalarWidgetTest : public ImmWidgetTest {
 protected:
  static std::string Tip(const KEPVidWidget* w) { return w->GetTooltip().ToUTF8(); }
  static void ShowIn(const char16_t* unit) {
    KEPICkeUnit* u = KEPParmDictionary::FindUnit(unit);
    ASSERT_EQ(u->Magnitude()->SetCurrentUnit(u), S_OK);
  }
  /// The catalogue's lead-in of unit tooltips; the catalogue must have the key.
  static std::string UnitLead() {
    KEPUnicodeString lead;
    EXPECT_EQ(KEPMsgCatalog::GetMessageText("KEPRshShaderFrame", "UnitTooltip.ShortHelp", lead),
              S_OK);
    return lead.ToUTF8();
  }
};

TEST_F(ScalarWidgetTest, SliderPairInHundredthsBelow1e8AndInWholeUnitsFromIt) {
  struct Row {
    const char *kind, *min, *max, *step;
    float value;
    int sliderMin, sliderMax, single, page, position;
    const char* tooltip;
  } const rows[] = {
      {"slider", "0", "1", "0.01", 0.25f, 0, 100, 1, 10, 25, "Value ranges from 0.00 to 1.00"},
      {"slider", "0", "1e8", "1000", 2500.0f, 0, 100000000, 1000, 10000, 2500,
       "Value ranges from 0.00 to 100000000.00"},
      {"slider", "-1e9", "1e9", "1", 5.0f, -1000000000, 1000000000, 1, 10, 5,
       "Value ranges from -1000000000.00 to 1000000000.00"},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.tooltip);
    const auto* w = Widget(
        Param(r.value, {{".Widget", r.kind}, {".Min", r.min}, {".Max", r.max}, {".Step", r.step}}));
    KEPVidCtlSlider* slider = SliderOf(w);
    ASSERT_TRUE(slider && EditorOf(w) && !SpinnerOf(w));
    EXPECT_EQ(std::vector<int>({slider->GetMinimum(), slider->GetMaximum(), slider->GetSingleStep(),
                                slider->GetPageStep(), slider->GetValue()}),
              std::vector<int>({r.sliderMin, r.sliderMax, r.single, r.page, r.position}));
    EXPECT_DOUBLE_EQ(EditorOf(w)->GetValue(), r.value);
    EXPECT_EQ(Tip(slider), r.tooltip);
    EXPECT_EQ(Tip(EditorOf(w)), r.tooltip);
    EXPECT_FALSE(w->FindNamedChild("HidedButton")->IsVisible());
  }
}

TEST_F(ScalarWidgetTest, SpinBoxForOtherKindsAndNothingForNoValue) {
  for (const char* kind : {"spinner", "generic", "Ratio"}) {
    SCOPED_TRACE(kind);
    KEPVidCtlDoubleSpinBox* spinner =
        SpinnerOf(Widget(Param(250.0f, {{".Widget", kind}, {".Min", "0"}, {".Max", "1000"}})));
    ASSERT_NE(spinner, nullptr);
    EXPECT_EQ(spinner->GetMaximum(), 1000.0);
    EXPECT_EQ(spinner->GetValue(), 250.0);
    EXPECT_EQ(Tip(spinner), "value from 0.0e+00 to 1.0e+03");
  }
  EXPECT_NE(SliderOf(Widget(Param(0.5f, {{".Widget", "WHEEL"}, {".Max", "1"}, {".Min", "0"}}))),
            nullptr);
  // No-value (also the default kind), and a range that cannot be read: an empty row.
  for (const Keys& config : {Keys{{".Widget", "no-value"}, {".Min", "0"}, {".Max", "1"}},
                             Keys{{".Min", "0"}, {".Max", "1"}}, Keys{{".Widget", "slider"}}}) {
    KEPHostParameter* p = Param(0.5f, config);
    const KEPVidWidget* w = Widget(p);
    ASSERT_EQ(p->SetScalarValue(0.7f), S_OK);  // nothing follows it either
    EXPECT_EQ(w->FindNamedChild("ScalarLayout")->GetChildCount(), 0u);
  }
}

TEST_F(ScalarWidgetTest, LengthsAndAnglesInTheDisplayUnitBothWays) {
  ShowIn(u"cm");
  ShowIn(u"deg");
  // 500 mm stored, configured in centimetres, shown in centimetres.
  KEPHostParameter* length = Param(500.0f, {{".Widget", "slider"},
                                            {".Unit", "cm"},
                                            {".Magnitude", "length"},
                                            {".Min", "0"},
                                            {".Max", "100"},
                                            {".Step", "0.5"}});
  const auto* w = Widget(length);
  EXPECT_NEAR(EditorOf(w)->GetValue(), 50.0, 1e-9);
  EXPECT_EQ(SliderOf(w)->GetValue(), 5000);
  EXPECT_EQ(SliderOf(w)->GetMaximum(), 10000);
  EXPECT_EQ(Tip(EditorOf(w)), UnitLead() + "cm (ranges from 0.00 to 100.00 )");
  Act(EditorOf(w), KEPVidAction::Type, "20");
  EXPECT_NEAR(Stored(length), 200.0f, 1e-3);
  Act(SliderOf(w), KEPVidAction::Set, "7550");
  EXPECT_NEAR(Stored(length), 755.0f, 1e-3);

  // pi/4 stored in radians, configured and shown in degrees.
  KEPHostParameter* angle = Param(0.78539816f, {{".Widget", "spinner"},
                                                {".Unit", "deg"},
                                                {".Magnitude", "angle"},
                                                {".Min", "0"},
                                                {".Max", "90"}});
  KEPVidCtlDoubleSpinBox* spinner = SpinnerOf(Widget(angle));
  EXPECT_NEAR(spinner->GetValue(), 45.0, 1e-4);
  EXPECT_EQ(spinner->GetSuffix().ToUTF8(), "deg");
  EXPECT_EQ(Tip(spinner), UnitLead() + "deg (from 0.0e+00 to 9.0e+01 )");
  Act(spinner, KEPVidAction::Set, "30");
  EXPECT_NEAR(Stored(angle), 0.52359878f, 1e-6);

  // The magnitude word is compared as written: "LENGTH" converts nothing.
  const auto* upper = Widget(Param(500.0f, {{".Widget", "slider"},
                                            {".Unit", "cm"},
                                            {".Magnitude", "LENGTH"},
                                            {".Min", "0"},
                                            {".Max", "100"}}));
  EXPECT_EQ(EditorOf(upper)->GetValue(), 500.0);
  EXPECT_EQ(Tip(SliderOf(upper)), "Value ranges from 0.00 to 1000.00");
}

TEST_F(ScalarWidgetTest, EditorAcceptsTheBoundsRevertsBeyondAndDropsTinyChanges) {
  KEPHostParameter* p = UnitRange(0.5f);
  const auto* w = Widget(p);
  const WriteLog writes(p);
  struct Step {
    const char* typed;
    float stored;
    double shown;
    int position;
  } const steps[] = {
      {"1", 1.0f, 1.0, 100},
      {"1.01", 1.0f, 1.0, 100},  // above the maximum: refused, the editor reverts
      {"0", 0.0f, 0.0, 0},
      {"-0.01", 0.0f, 0.0, 0},
      {"1e300", 0.0f, 0.0, 0},
      {"0.29", 0.29f, 0.29, 29},            // the float just below 0.29 counts as 0.29
      {"0.2900008", 0.29f, 0.2900008, 29},  // within the tolerance: nothing written
      {"0.290002", 0.290002f, 0.290002, 29},
  };
  for (const Step& s : steps) {
    SCOPED_TRACE(s.typed);
    Act(EditorOf(w), KEPVidAction::Type, s.typed);
    EXPECT_EQ(Stored(p), s.stored);
    EXPECT_NEAR(EditorOf(w)->GetValue(), s.shown, 1e-9);
    EXPECT_EQ(SliderOf(w)->GetValue(), s.position);
  }
  EXPECT_EQ(writes.values, std::vector<float>({1.0f, 0.0f, 0.29f, 0.290002f}));
}

TEST_F(ScalarWidgetTest, OwnControlUpdatesDoNotWriteAgain) {
  // The editor moves the slider: one write, not a second from the slider's notification.
  KEPHostParameter* fine = UnitRange(0.5f);
  const auto* w = Widget(fine);
  const WriteLog fineWrites(fine);
  Act(EditorOf(w), KEPVidAction::Type, "0.37");
  EXPECT_EQ(fineWrites.values, std::vector<float>({0.37f}));
  EXPECT_EQ(SliderOf(w)->GetValue(), 37);
  // The slider shows its value in the editor; in whole units the float written (123456792)
  // differs from it by more than the tolerance, so the editor's notification must be ignored.
  KEPHostParameter* wide =
      Param(0.0f, {{".Widget", "slider"}, {".Min", "-1e9"}, {".Max", "1e9"}, {".Step", "1"}});
  const auto* wideWidget = Widget(wide);
  const WriteLog wideWrites(wide);
  Act(SliderOf(wideWidget), KEPVidAction::Set, "123456789");
  EXPECT_EQ(wideWrites.values, std::vector<float>({123456789.0f}));
  EXPECT_EQ(EditorOf(wideWidget)->GetValue(), 123456789.0);
}

TEST_F(ScalarWidgetTest, WidgetsFollowWritesMadeElsewhereWithoutWritingBack) {
  KEPHostParameter* p = UnitRange(0.5f);
  const auto* first = Widget(p);
  const auto* second = Widget(p);
  KEPHostParameter* spun = UnitRange(0.5f, "spinner");
  KEPVidCtlDoubleSpinBox* spinner = SpinnerOf(Widget(spun));
  const WriteLog writes(p);
  Act(EditorOf(first), KEPVidAction::Type, "0.25");
  EXPECT_EQ(SliderOf(second)->GetValue(), 25);
  ASSERT_EQ(p->SetScalarValue(0.75f), S_OK);
  for (const auto* w : {first, second}) {
    EXPECT_EQ(SliderOf(w)->GetValue(), 75);
    EXPECT_EQ(EditorOf(w)->GetValue(), 0.75);
  }
  EXPECT_EQ(writes.values, std::vector<float>({0.25f, 0.75f}));
  ASSERT_EQ(spun->SetScalarValue(0.4f), S_OK);
  EXPECT_DOUBLE_EQ(spinner->GetValue(), 0.4f);
}

TEST_F(ScalarWidgetTest, ScaleVOfAPhysicalShaderIsShownAsTheRatioOfScaleU) {
  const Keys config = {{"scale_v.Widget", "slider"}, {"scale_v.Min", "0"}, {"scale_v.Max", "10"}};
  KEPHostShaderNode* node =
      Node({{"scale_u", Scalar(2.0f)}, {"scale_v", Scalar(4.0f)}}, config, "MPM_tiles");
  KEPHostParameter* scaleV = ParamOf(node, "scale_v");
  const auto* w = Widget(scaleV);
  EXPECT_EQ(EditorOf(w)->GetValue(), 0.5);
  EXPECT_EQ(SliderOf(w)->GetValue(), 50);
  Act(EditorOf(w), KEPVidAction::Type, "0.25");
  EXPECT_EQ(Stored(scaleV), 8.0f);
  Act(SliderOf(w), KEPVidAction::Set, "100");
  EXPECT_EQ(Stored(scaleV), 2.0f);
  Act(SliderOf(w), KEPVidAction::Set, "0");  // a ratio of 0 has no scale_v
  EXPECT_EQ(Stored(scaleV), 2.0f);
  ASSERT_EQ(ParamOf(node, "scale_u")->SetScalarValue(3.0f), S_OK);
  EXPECT_EQ(EditorOf(w)->GetValue(), 1.5);

  // Another shader type, or no scale_u to divide: the value as it is.
  for (KEPHostShaderNode* plain :
       {Node({{"scale_u", Scalar(2.0f)}, {"scale_v", Scalar(4.0f)}}, config, "mia_tiles"),
        Node({{"scale_v", Scalar(4.0f)}}, config, "MPM_single")}) {
    KEPHostParameter* v = ParamOf(plain, "scale_v");
    const auto* shown = Widget(v);
    EXPECT_EQ(EditorOf(shown)->GetValue(), 4.0);
    Act(EditorOf(shown), KEPVidAction::Type, "5");
    EXPECT_EQ(Stored(v), 5.0f);
  }
}

TEST_F(ScalarWidgetTest, WidgetOutlivingItsParameterDoesNothing) {
  const auto* pair = Widget(UnitRange(0.5f));
  const auto* spin = Widget(UnitRange(0.5f, "spinner"));
  DropModel();
  EXPECT_FALSE(pair->GetParameter());
  Act(SliderOf(pair), KEPVidAction::Set, "10");
  Act(EditorOf(pair), KEPVidAction::Type, "0.2");
  Act(SpinnerOf(spin), KEPVidAction::Set, "0.3");
}

TEST_F(ScalarWidgetTest, WritesHoldTheRenderLockAgainstARenderThread) {
  // The parameter's setter has released its own hold when the write is announced; the widget's
  // hold must still keep a render thread out.
  const auto renderThreadCanLock = [] {
    return std::async(std::launch::async,
                      [] {
                        const bool got = KEPRdgRenderLock::Mutex().try_lock();
                        if (got) KEPRdgRenderLock::Mutex().unlock();
                        return got;
                      })
        .get();
  };
  const auto* w = Widget(UnitRange(0.5f));
  KEPVidCtlDoubleSpinBox* spinner = SpinnerOf(Widget(UnitRange(0.5f, "spinner")));
  std::vector<bool> lockedOut;
  const int token =
      KEPRshModelEvents::AddParameterObserver([&](KEPIRshParameter*, KEPRshParameterChangeKind) {
        lockedOut.push_back(!renderThreadCanLock());
      });
  Act(EditorOf(w), KEPVidAction::Type, "0.25");
  Act(SliderOf(w), KEPVidAction::Set, "60");
  Act(spinner, KEPVidAction::Set, "0.75");
  KEPRshModelEvents::RemoveObserver(token);
  EXPECT_EQ(lockedOut, std::vector<bool>({true, true, true}));
  EXPECT_TRUE(renderThreadCanLock());
}

}  // namespace
}  // namespace keptest
