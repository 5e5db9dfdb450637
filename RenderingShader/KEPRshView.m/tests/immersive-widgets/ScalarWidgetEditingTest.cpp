// What the scalar widget writes when a person moves its controls, what it refuses, how it keeps
// its own updates from writing twice, how it follows the model, and how it behaves once its
// parameter is gone.
#include <atomic>
#include <future>

#include "ImmWidgetTestSupport.h"
#include "KEPRdgRenderLock.h"

namespace keptest {
namespace {

class ScalarWidgetEditingTest : public ImmWidgetTest {
 protected:
  /// A slider pair over 0..1 in hundredths, holding `value`.
  KEPHostParameter* UnitRange(float value, const char* kind = "slider") {
    return Param(value, {{".Widget", kind}, {".Min", "0"}, {".Max", "1"}, {".Step", "0.01"}});
  }
};

TEST_F(ScalarWidgetEditingTest, EditorAcceptsTheBoundsAndRevertsWhatLiesBeyond) {
  KEPHostParameter* p = UnitRange(0.5f);
  KEPRshParameterScalarImmWidget* widget = Widget(p);
  KEPVidCtlEditor* editor = EditorOf(widget);
  const WriteLog writes(p);

  struct Step {
    const char* typed;
    float stored;        // afterwards
    double shown;        // in the editor afterwards
    int position;        // of the slider afterwards
    std::size_t writes;  // so far
  };
  const Step steps[] = {
      {"1", 1.0f, 1.0, 100, 1},       // the maximum itself
      {"1.01", 1.0f, 1.0, 100, 1},    // above: refused, the editor shows the value again
      {"0", 0.0f, 0.0, 0, 2},         // the minimum itself
      {"-0.01", 0.0f, 0.0, 0, 2},     // below
      {"0.29", 0.29f, 0.29, 29, 3},   // the float just below 0.29 still counts as 0.29
      {"1e300", 0.29f, 0.29, 29, 3},  // far beyond the floats
  };
  for (const Step& step : steps) {
    SCOPED_TRACE(step.typed);
    Act(editor, KEPVidAction::Type, step.typed);
    EXPECT_EQ(Stored(p), step.stored);
    EXPECT_NEAR(editor->GetValue(), step.shown, 1e-7);
    EXPECT_EQ(SliderOf(widget)->GetValue(), step.position);
    EXPECT_EQ(writes.Count(), step.writes);
  }
}

TEST_F(ScalarWidgetEditingTest, ChangesWithinTheToleranceAreDropped) {
  KEPHostParameter* p = UnitRange(0.5f);
  KEPVidCtlEditor* editor = EditorOf(Widget(p));
  const WriteLog writes(p);
  Act(editor, KEPVidAction::Type, "0.5000005");  // 5e-7 above
  Act(editor, KEPVidAction::Type, "0.4999992");  // 8e-7 below
  EXPECT_EQ(writes.Count(), 0u);
  EXPECT_EQ(Stored(p), 0.5f);
  Act(editor, KEPVidAction::Type, "0.500002");
  ASSERT_EQ(writes.Count(), 1u);
  EXPECT_EQ(writes.Values()[0], 0.500002f);
}

TEST_F(ScalarWidgetEditingTest, OwnControlUpdatesDoNotWriteAgain) {
  // The editor moves the slider; the slider's notification must not write a second time.
  KEPHostParameter* fine = UnitRange(0.5f);
  KEPRshParameterScalarImmWidget* widget = Widget(fine);
  {
    const WriteLog writes(fine);
    Act(EditorOf(widget), KEPVidAction::Type, "0.29");
    EXPECT_EQ(writes.Count(), 1u);
    EXPECT_EQ(SliderOf(widget)->GetValue(), 29);
  }
  // The slider shows its value in the editor; in whole units the float written (123456792)
  // differs from what the editor shows by more than the tolerance, so an editor notification
  // taken for an edit would write again.
  KEPHostParameter* wide =
      Param(0.0f, {{".Widget", "slider"}, {".Min", "-1e9"}, {".Max", "1e9"}, {".Step", "1"}});
  KEPRshParameterScalarImmWidget* wideWidget = Widget(wide);
  const WriteLog writes(wide);
  Act(SliderOf(wideWidget), KEPVidAction::Set, "123456789");
  EXPECT_EQ(writes.Count(), 1u);
  EXPECT_EQ(Stored(wide), 123456789.0f);
  EXPECT_DOUBLE_EQ(EditorOf(wideWidget)->GetValue(), 123456789.0);
}

TEST_F(ScalarWidgetEditingTest, SliderAndSpinBoxWriteWhatTheyShow) {
  KEPHostParameter* p = UnitRange(0.5f);
  KEPRshParameterScalarImmWidget* widget = Widget(p);
  const WriteLog writes(p);
  Act(SliderOf(widget), KEPVidAction::Set, "37");
  EXPECT_EQ(Stored(p), 0.37f);
  EXPECT_DOUBLE_EQ(EditorOf(widget)->GetValue(), 0.37);
  EXPECT_EQ(writes.Count(), 1u);

  // The slider's ends are the bounds truncated to hundredths: a position below the lower bound
  // is refused, and the editor shows the stored value again.
  KEPHostParameter* narrow = Param(0.5f, {{".Widget", "slider"}, {".Min", "0.015"}, {".Max", "1"}});
  KEPRshParameterScalarImmWidget* narrowWidget = Widget(narrow);
  EXPECT_EQ(SliderOf(narrowWidget)->GetMinimum(), 1);
  const WriteLog narrowWrites(narrow);
  Act(SliderOf(narrowWidget), KEPVidAction::Set, "1");
  EXPECT_EQ(narrowWrites.Count(), 0u);
  EXPECT_EQ(Stored(narrow), 0.5f);
  EXPECT_DOUBLE_EQ(EditorOf(narrowWidget)->GetValue(), 0.5);

  KEPHostParameter* spun = Param(1.0f, {{".Widget", "spinner"}, {".Min", "0"}, {".Max", "10"}});
  const WriteLog spunWrites(spun);
  Act(SpinnerOf(Widget(spun)), KEPVidAction::Set, "2.5");
  EXPECT_EQ(Stored(spun), 2.5f);
  EXPECT_EQ(spunWrites.Count(), 1u);
}

TEST_F(ScalarWidgetEditingTest, WidgetsFollowWritesMadeElsewhere) {
  // Two editors of one node stay in step, and neither writes back what it was told.
  KEPHostParameter* p = UnitRange(0.5f);
  KEPRshParameterScalarImmWidget* first = Widget(p);
  KEPRshParameterScalarImmWidget* second = Widget(p);
  const WriteLog writes(p);
  Act(EditorOf(first), KEPVidAction::Type, "0.25");
  EXPECT_EQ(SliderOf(second)->GetValue(), 25);
  EXPECT_DOUBLE_EQ(EditorOf(second)->GetValue(), 0.25f);
  EXPECT_EQ(writes.Count(), 1u);

  ASSERT_EQ(p->SetScalarValue(0.75f), S_OK);
  for (const KEPRshParameterScalarImmWidget* widget : {first, second}) {
    EXPECT_EQ(SliderOf(widget)->GetValue(), 75);
    EXPECT_DOUBLE_EQ(EditorOf(widget)->GetValue(), 0.75);
  }
  EXPECT_EQ(writes.Count(), 2u);

  KEPHostParameter* spun = Param(1.0f, {{".Widget", "spinner"}, {".Min", "0"}, {".Max", "10"}});
  KEPVidCtlDoubleSpinBox* spinner = SpinnerOf(Widget(spun));
  const WriteLog spunWrites(spun);
  ASSERT_EQ(spun->SetScalarValue(4.0f), S_OK);
  EXPECT_DOUBLE_EQ(spinner->GetValue(), 4.0);
  EXPECT_EQ(spunWrites.Count(), 1u);

  // Another parameter's write changes nothing here.
  KEPHostParameter* other = UnitRange(0.1f);
  ASSERT_EQ(other->SetScalarValue(0.2f), S_OK);
  EXPECT_EQ(SliderOf(first)->GetValue(), 75);
}

TEST_F(ScalarWidgetEditingTest, ScaleVOfAPhysicalShaderIsShownAsARatio) {
  const Keys config = {{"scale_v.Widget", "slider"},
                       {"scale_v.Min", "0"},
                       {"scale_v.Max", "10"},
                       {"scale_v.Step", "0.1"}};
  KEPHostShaderNode* physical =
      Node({{"scale_u", Scalar(2.0f)}, {"scale_v", Scalar(4.0f)}}, config, "MPM_tiles");
  KEPHostParameter* scaleV = ParamOf(physical, "scale_v");
  KEPRshParameterScalarImmWidget* widget = Widget(scaleV);
  EXPECT_TRUE(widget->IsScaleRatio());
  EXPECT_DOUBLE_EQ(EditorOf(widget)->GetValue(), 0.5);
  EXPECT_EQ(SliderOf(widget)->GetValue(), 50);

  const WriteLog writes(scaleV);
  Act(EditorOf(widget), KEPVidAction::Type, "0.25");  // ratio 0.25: scale_v = 2 / 0.25
  EXPECT_EQ(Stored(scaleV), 8.0f);
  Act(SliderOf(widget), KEPVidAction::Set, "100");  // ratio 1
  EXPECT_EQ(Stored(scaleV), 2.0f);
  // A ratio of 0 has no scale_v: refused.
  Act(SliderOf(widget), KEPVidAction::Set, "0");
  EXPECT_EQ(Stored(scaleV), 2.0f);
  EXPECT_DOUBLE_EQ(EditorOf(widget)->GetValue(), 1.0);
  EXPECT_EQ(writes.Count(), 2u);
  // The ratio moves with scale_u too.
  ASSERT_EQ(ParamOf(physical, "scale_u")->SetScalarValue(3.0f), S_OK);
  EXPECT_DOUBLE_EQ(EditorOf(widget)->GetValue(), 1.5);
  EXPECT_EQ(SliderOf(widget)->GetValue(), 150);

  // Not a physical shader, not scale_v, or no scale_u to divide: the value as it is.
  const std::pair<const char*, std::pair<std::string, KEPHostShaderNode*>> plain[] = {
      {"other shader type",
       {"scale_v",
        Node({{"scale_u", Scalar(2.0f)}, {"scale_v", Scalar(4.0f)}}, config, "mia_tiles")}},
      {"scale_u itself",
       {"scale_u", Node({{"scale_u", Scalar(4.0f)}, {"scale_v", Scalar(2.0f)}},
                        {{"scale_u.Widget", "slider"}, {"scale_u.Min", "0"}, {"scale_u.Max", "10"}},
                        "MPM_tiles_u")}},
      {"no scale_u", {"scale_v", Node({{"scale_v", Scalar(4.0f)}}, config, "MPM_single")}},
  };
  for (const auto& [what, which] : plain) {
    SCOPED_TRACE(what);
    KEPHostParameter* parameter = ParamOf(which.second, which.first);
    KEPRshParameterScalarImmWidget* shown = Widget(parameter);
    EXPECT_DOUBLE_EQ(EditorOf(shown)->GetValue(), 4.0);
    Act(EditorOf(shown), KEPVidAction::Type, "5");
    EXPECT_EQ(Stored(parameter), 5.0f);
  }
}

TEST_F(ScalarWidgetEditingTest, WidgetOutlivingItsParameterDoesNothing) {
  KEPRshParameterScalarImmWidget* pair = Widget(UnitRange(0.5f));
  KEPRshParameterScalarImmWidget* spin = Widget(UnitRange(0.5f, "spinner"));
  DropModel();
  EXPECT_FALSE(pair->GetParameter());
  Act(SliderOf(pair), KEPVidAction::Set, "10");
  Act(EditorOf(pair), KEPVidAction::Type, "0.2");
  Act(SpinnerOf(spin), KEPVidAction::Set, "0.3");
  // The controls keep what the person did; nothing else happened.
  EXPECT_EQ(SliderOf(pair)->GetValue(), 10);
  EXPECT_DOUBLE_EQ(EditorOf(pair)->GetValue(), 0.2);
}

TEST_F(ScalarWidgetEditingTest, WritesHoldTheRenderLock) {
  // A render thread cannot take the lock while a write is announced: the widget holds it around
  // the write (the parameter's own setter has released its hold by then).
  KEPHostParameter* p = UnitRange(0.5f);
  KEPRshParameterScalarImmWidget* widget = Widget(p);
  KEPHostParameter* spun = UnitRange(0.5f, "spinner");
  KEPVidCtlDoubleSpinBox* spinner = SpinnerOf(Widget(spun));
  int announced = 0;
  int lockedOut = 0;
  const int token =
      KEPRshModelEvents::AddParameterObserver([&](KEPIRshParameter*, KEPRshParameterChangeKind) {
        ++announced;
        const bool renderThreadGotIt = std::async(std::launch::async, [] {
                                         std::recursive_mutex& mutex = KEPRdgRenderLock::Mutex();
                                         if (!mutex.try_lock()) return false;
                                         mutex.unlock();
                                         return true;
                                       }).get();
        if (!renderThreadGotIt) ++lockedOut;
      });
  Act(EditorOf(widget), KEPVidAction::Type, "0.25");
  Act(SliderOf(widget), KEPVidAction::Set, "60");
  Act(spinner, KEPVidAction::Set, "0.75");
  KEPRshModelEvents::RemoveObserver(token);
  EXPECT_EQ(announced, 3);
  EXPECT_EQ(lockedOut, 3);
  // Outside a write the lock is free.
  EXPECT_TRUE(std::async(std::launch::async, [] {
                std::recursive_mutex& mutex = KEPRdgRenderLock::Mutex();
                if (!mutex.try_lock()) return false;
                mutex.unlock();
                return true;
              }).get());
}

}  // namespace
}  // namespace keptest
