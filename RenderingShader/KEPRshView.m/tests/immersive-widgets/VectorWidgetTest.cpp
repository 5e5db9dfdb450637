// The vector widget: its form by kind, the unit table of the slider form (with the "K" that
// never matches), tooltips at the edges of plain notation, truncation to whole units, component
// labels, what it writes, its render lock, how it follows the model, and outliving its parameter.
#include <cmath>

#include "ImmWidgetTestSupport.h"
#include "KEPMsgCatalog.h"
#include "KEPRshParameterVectorImmWidget.h"
#include "KEPVidCtlLabel.h"

namespace keptest {
namespace {

class VectorWidgetTest : public ImmWidgetTest {
 protected:
  /// Vector "p" alone in a node of its own; `config` holds keys after the name.
  KEPHostParameter* Vec(std::initializer_list<float> value, const Keys& config) {
    Keys keys;
    for (const auto& [suffix, text] : config) keys.emplace_back("p" + suffix, text);
    return ParamOf(Node({{"p", Vector(value)}}, keys), "p");
  }
  KEPRshParameterVectorImmWidget* Widget(KEPIRshParameter* p) {
    return Make<KEPRshParameterVectorImmWidget>(p);
  }
  static KEPVidCtlSlider* Slider(const KEPVidWidget* w, int i) {
    return dynamic_cast<KEPVidCtlSlider*>(w->FindNamedChild("scalarSlider" + std::to_string(i)));
  }
  static KEPVidCtlDoubleSpinBox* Spinner(const KEPVidWidget* w, int i) {
    return dynamic_cast<KEPVidCtlDoubleSpinBox*>(
        w->FindNamedChild("scalarSpinner" + std::to_string(i)));
  }
  static std::string LabelText(const KEPVidWidget* w, const std::string& name) {
    const auto* label = dynamic_cast<const KEPVidCtlLabel*>(w->FindNamedChild(name));
    return label ? label->GetText().ToUTF8() : "<none>";
  }
  static std::vector<float> Stored(KEPIRshParameter* p) {
    float v[4] = {-1.0f, -1.0f, -1.0f, -1.0f};
    p->GetVectorValue(v);
    return {v[0], v[1], v[2], v[3]};
  }
  static std::string Message(const char* key) {
    return KEPMsgCatalog::BuildMessage("KEPRshShaderFrame", key).ToUTF8();
  }
};

TEST_F(VectorWidgetTest, KindChoosesSpinBoxesSlidersOrNothing) {
  struct Row {
    const char* kind;  // nullptr: none configured
    int spinners, sliders;
  } const rows[] = {
      {nullptr, 3, 0},    {"spinner", 3, 0},  {"vector2d", 3, 0}, {"sliderx2", 0, 2},
      {"SliderX3", 0, 3}, {"sliderx4", 0, 4}, {"no-value", 0, 0},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.kind ? r.kind : "(none)");
    Keys config = {{".Min", "-10"}, {".Max", "10"}};
    if (r.kind) config.emplace_back(".Widget", r.kind);
    const auto* w = Widget(Vec({1.0f, 2.0f, 3.0f, 4.0f}, config));
    int spinners = 0, sliders = 0;
    for (int i = 1; i <= 4; ++i) {
      spinners += Spinner(w, i) ? 1 : 0;
      sliders += Slider(w, i) ? 1 : 0;
    }
    EXPECT_EQ(spinners, r.spinners);
    EXPECT_EQ(sliders, r.sliders);
    const auto* grid = dynamic_cast<const KEPVidLayGrid*>(w->FindNamedChild("VectorLayout"));
    ASSERT_NE(grid, nullptr);
    EXPECT_EQ(std::vector<double>({grid->GetColumnWeight(0), grid->GetColumnWeight(1),
                                   grid->GetColumnWeight(4), grid->GetColumnWeight(5)}),
              std::vector<double>({0.0, 0.3, 0.0, 0.3}));
  }
}

TEST_F(VectorWidgetTest, SpinBoxesShowRawComponentsWithoutUnitOrTooltip) {
  KEPHostParameter* p =
      Vec({1500.25f, -2.5f, 0.125f}, {{".Unit", "m"}, {".Min", "-5000"}, {".Step", "0.5"}});
  const auto* w = Widget(p);
  EXPECT_EQ(std::vector<std::string>({LabelText(w, "labelSpinner1"), LabelText(w, "labelSpinner2"),
                                      LabelText(w, "labelSpinner3")}),
            std::vector<std::string>({"X", "Y", "Z"}));
  for (int i = 1; i <= 3; ++i) {
    SCOPED_TRACE(i);
    // ".Max" missing: the whole range is unreadable and the presets hold.
    EXPECT_EQ(Spinner(w, i)->GetMinimum(), -1000000.0);
    EXPECT_EQ(Spinner(w, i)->GetMaximum(), 1000000.0);
    EXPECT_EQ(Spinner(w, i)->GetSingleStep(), 1.0);
    EXPECT_TRUE(Spinner(w, i)->GetTooltip().IsEmpty());
  }
  EXPECT_EQ(Spinner(w, 1)->GetValue(), 1500.25);
  EXPECT_EQ(Spinner(w, 3)->GetValue(), 0.125);
  EXPECT_EQ(w->GetUnitFactor(), 1.0);

  const auto* ranged =
      Widget(Vec({1.0f, 2.0f, 3.0f}, {{".Min", "-4"}, {".Max", "4"}, {".Step", "0.5"}}));
  EXPECT_EQ(Spinner(ranged, 2)->GetMaximum(), 4.0);
  EXPECT_EQ(Spinner(ranged, 2)->GetSingleStep(), 0.5);
}

TEST_F(VectorWidgetTest, SliderUnitsScaleRangeAndComponentsAndNameTheUnit) {
  struct Row {
    const char* unit;
    const char* message;  // nullptr: no unit message
    int min, max, step, position;
    const char* range;
  } const rows[] = {
      {"mm", "UnitmmTooltip.ShortHelp", -2000, 2000, 100, 1500, "-2.0e+03 to 2.0e+03"},
      {"M", "UnitmTooltip.ShortHelp", -2, 2, 0, 1, "-2.00 to 2.00"},
      {"cm", "UnitcmTooltip.ShortHelp", -200, 200, 10, 150, "-200.00 to 200.00"},
      {"km", "UnitkmTooltip.ShortHelp", 0, 0, 0, 0, "-0.00 to 0.00"},
      // Compared lower-cased, so never the "K" row: no factor and no message.
      {"K", nullptr, -2000, 2000, 100, 1500, "-2.0e+03 to 2.0e+03"},
      {"in", nullptr, -2000, 2000, 100, 1500, "-2.0e+03 to 2.0e+03"},
      {"", nullptr, -2000, 2000, 100, 1500, "-2.0e+03 to 2.0e+03"},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.unit);
    Keys config = {{".Widget", "sliderx2"}, {".Min", "-2000"}, {".Max", "2000"}, {".Step", "100"}};
    if (*r.unit) config.emplace_back(".Unit", r.unit);
    const auto* w = Widget(Vec({1500.9f, -1999.0f}, config));
    KEPVidCtlSlider* slider = Slider(w, 1);
    ASSERT_NE(slider, nullptr);
    EXPECT_EQ(std::vector<int>({slider->GetMinimum(), slider->GetMaximum(), slider->GetSingleStep(),
                                slider->GetValue()}),
              std::vector<int>({r.min, r.max, r.step, r.position}));
    EXPECT_EQ(slider->GetTooltip().ToUTF8(), r.message
                                                 ? Message(r.message) + " (from " + r.range + " )"
                                                 : std::string("value from ") + r.range);
  }
  // Degrees: radians are shown in whole degrees.
  const auto* angles = Widget(Vec(
      {1.5707964f, -0.5f},
      {{".Widget", "sliderx2"}, {".Unit", "DEG"}, {".Min", "-3.1415927"}, {".Max", "3.1415927"}}));
  EXPECT_EQ(Slider(angles, 1)->GetValue(), 90);
  EXPECT_EQ(Slider(angles, 2)->GetValue(), -28);  // -28.6 truncated towards zero
  EXPECT_EQ(Slider(angles, 1)->GetMaximum(), 180);
  EXPECT_EQ(Slider(angles, 1)->GetTooltip().ToUTF8(),
            Message("UnitdegTooltip.ShortHelp") + " (from -180.00 to 180.00 )");
}

TEST_F(VectorWidgetTest, TooltipTurnsToExponentsBeyondAThousandOnEachSide) {
  struct Row {
    const char *min, *max, *tooltip;
  } const rows[] = {
      {"-1000", "1000", "value from -1000.00 to 1000.00"},
      {"-1000.5", "1000.5", "value from -1.0e+03 to 1.0e+03"},
      {"5000", "100000", "value from 5000.00 to 1.0e+05"},
      {"-100000", "-5000", "value from -1.0e+05 to -5000.00"},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.tooltip);
    const auto* w = Widget(
        Vec({0.0f, 0.0f, 0.0f}, {{".Widget", "sliderx3"}, {".Min", r.min}, {".Max", r.max}}));
    for (int i = 1; i <= 3; ++i) EXPECT_EQ(Slider(w, i)->GetTooltip().ToUTF8(), r.tooltip);
  }
}

TEST_F(VectorWidgetTest, LabelsComeFromTheConfigurationElseTheAxisNames) {
  const auto* w =
      Widget(Vec({0.0f, 0.0f, 0.0f, 1.0f},
                 {{".Widget", "sliderx4"}, {".Label0", "Width"}, {".Label2", "Depth"}}));
  EXPECT_EQ(std::vector<std::string>({LabelText(w, "label1"), LabelText(w, "label2"),
                                      LabelText(w, "label3"), LabelText(w, "label4")}),
            std::vector<std::string>({"Width", "Y", "Depth", "W"}));
}

TEST_F(VectorWidgetTest, SlidersWriteWholeUnitsBackAndZeroWhatTheKindLacks) {
  KEPHostParameter* metres =
      Vec({1500.0f, 2750.0f, 999.0f, 1.0f},
          {{".Widget", "sliderx3"}, {".Unit", "m"}, {".Min", "-10000"}, {".Max", "10000"}});
  const auto* w = Widget(metres);
  Act(Slider(w, 2), KEPVidAction::Set, "-4");
  // Every component goes through its slider: whole metres, and no fourth slider for w.
  const std::vector<float> stored = Stored(metres);
  EXPECT_NEAR(stored[0], 1000.0f, 1e-3);
  EXPECT_NEAR(stored[1], -4000.0f, 1e-3);
  EXPECT_NEAR(stored[2], 0.0f, 1e-3);
  EXPECT_EQ(stored[3], 0.0f);

  KEPHostParameter* plain = Vec({1.0f, 2.0f, 3.0f}, {{".Min", "-10"}, {".Max", "10"}});
  const auto* spun = Widget(plain);
  Act(Spinner(spun, 3), KEPVidAction::Set, "-7.25");
  EXPECT_EQ(Stored(plain), std::vector<float>({1.0f, 2.0f, -7.25f, 0.0f}));
}

TEST_F(VectorWidgetTest, FollowsWritesMadeElsewhereWithoutWritingBack) {
  KEPHostParameter* p =
      Vec({0.0f, 0.0f, 0.0f},
          {{".Widget", "sliderx3"}, {".Unit", "cm"}, {".Min", "-1000"}, {".Max", "1000"}});
  const auto* first = Widget(p);
  const auto* second = Widget(p);
  int writes = 0;
  const int token = KEPRshModelEvents::AddParameterObserver(
      [&](KEPIRshParameter* changed, auto) { writes += changed == p ? 1 : 0; });
  // A write that the sliders cannot show exactly must stay as written.
  const float written[4] = {123.4f, -56.7f, 8.9f, 0.0f};
  ASSERT_EQ(p->SetVectorValue(written), S_OK);
  EXPECT_EQ(Stored(p), std::vector<float>({123.4f, -56.7f, 8.9f, 0.0f}));
  for (const auto* w : {first, second})
    EXPECT_EQ(std::vector<int>(
                  {Slider(w, 1)->GetValue(), Slider(w, 2)->GetValue(), Slider(w, 3)->GetValue()}),
              std::vector<int>({12, -5, 0}));
  // One editor's move shows in the other.
  Act(Slider(first, 1), KEPVidAction::Set, "40");
  EXPECT_EQ(Slider(second, 1)->GetValue(), 40);
  EXPECT_EQ(writes, 2);
  KEPRshModelEvents::RemoveObserver(token);
}

TEST_F(VectorWidgetTest, WritesHoldTheRenderLockAndOutlivingTheParameterDoesNothing) {
  const auto* sliders =
      Widget(Vec({1.0f, 2.0f}, {{".Widget", "sliderx2"}, {".Min", "-9"}, {".Max", "9"}}));
  const auto* spinners = Widget(Vec({1.0f, 2.0f, 3.0f}, {}));
  std::vector<bool> lockedOut;
  const int token =
      KEPRshModelEvents::AddParameterObserver([&](KEPIRshParameter*, KEPRshParameterChangeKind) {
        lockedOut.push_back(!RenderThreadCanLock());
      });
  Act(Slider(sliders, 1), KEPVidAction::Set, "5");
  Act(Spinner(spinners, 1), KEPVidAction::Set, "5");
  KEPRshModelEvents::RemoveObserver(token);
  EXPECT_EQ(lockedOut, std::vector<bool>({true, true}));

  DropModel();
  EXPECT_FALSE(sliders->GetParameter());
  Act(Slider(sliders, 2), KEPVidAction::Set, "3");
  Act(Spinner(spinners, 2), KEPVidAction::Set, "3");
  // No parameter at all: an empty widget.
  EXPECT_EQ(Widget(nullptr)->GetChildCount(), 0u);
}

}  // namespace
}  // namespace keptest
