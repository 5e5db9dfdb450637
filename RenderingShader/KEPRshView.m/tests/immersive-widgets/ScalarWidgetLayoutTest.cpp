// What the scalar widget builds from a parameter's configuration: the controls of each kind, the
// slider's two regimes, the tooltips, and the display units of angles and lengths.
#include "ImmWidgetTestSupport.h"
#include "KEPMsgCatalog.h"
#include "KEPParmDictionary.h"

namespace keptest {
namespace {

class ScalarWidgetLayoutTest : public ImmWidgetTest {
 protected:
  static std::string Utf8(const KEPUnicodeString& text) { return text.ToUTF8(); }
  /// Makes `unit` the display unit of its magnitude.
  static void Show(const char16_t* unit) {
    KEPICkeUnit* u = KEPParmDictionary::FindUnit(unit);
    ASSERT_NE(u, nullptr);
    ASSERT_EQ(u->Magnitude()->SetCurrentUnit(u), S_OK);
  }
  /// The catalogue's lead-in of unit tooltips (the catalogue must have it: no key shown).
  static std::string UnitLead() {
    KEPUnicodeString lead;
    EXPECT_EQ(KEPMsgCatalog::GetMessageText("KEPRshShaderFrame", "UnitTooltip.ShortHelp", lead),
              S_OK);
    EXPECT_FALSE(lead.IsEmpty());
    return lead.ToUTF8();
  }
};

TEST_F(ScalarWidgetLayoutTest, SliderPairInBothRegimes) {
  struct Row {
    const char *kind, *min, *max, *step;
    float value;
    int sliderMin, sliderMax, single, page, position;
    const char* tooltip;
  };
  const Row rows[] = {
      // Below 1e8 the slider moves in hundredths.
      {"slider", "0", "1", "0.01", 0.25f, 0, 100, 1, 10, 25, "Value ranges from 0.00 to 1.00"},
      {"wheel", "-5", "5", "0.5", -2.5f, -500, 500, 50, 500, -250,
       "Value ranges from -5.00 to 5.00"},
      // From 1e8 on, in whole units, a page being ten steps.
      {"slider", "0", "1e8", "1000", 2500.0f, 0, 100000000, 1000, 10000, 2500,
       "Value ranges from 0.00 to 100000000.00"},
      {"slider", "-1e9", "1e9", "1", 5.0f, -1000000000, 1000000000, 1, 10, 5,
       "Value ranges from -1000000000.00 to 1000000000.00"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.kind) + " " + row.min + ".." + row.max);
    KEPRshParameterScalarImmWidget* widget = Widget(
        Param(row.value,
              {{".Widget", row.kind}, {".Min", row.min}, {".Max", row.max}, {".Step", row.step}}));
    KEPVidCtlSlider* slider = SliderOf(widget);
    KEPVidCtlEditor* editor = EditorOf(widget);
    ASSERT_NE(slider, nullptr);
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(SpinnerOf(widget), nullptr);
    EXPECT_EQ(slider->GetMinimum(), row.sliderMin);
    EXPECT_EQ(slider->GetMaximum(), row.sliderMax);
    EXPECT_EQ(slider->GetTickInterval(), 10);
    EXPECT_EQ(slider->GetSingleStep(), row.single);
    EXPECT_EQ(slider->GetPageStep(), row.page);
    EXPECT_EQ(slider->GetValue(), row.position);
    EXPECT_DOUBLE_EQ(editor->GetValue(), row.value);
    EXPECT_EQ(editor->GetDataType(), KEPVidEditor_Double);
    for (const KEPVidWidget* control :
         {static_cast<KEPVidWidget*>(slider), static_cast<KEPVidWidget*>(editor)}) {
      EXPECT_EQ(Utf8(control->GetTooltip()), row.tooltip);
      EXPECT_DOUBLE_EQ(control->GetTooltipInitialDelay(), 0.1);
    }
  }
}

TEST_F(ScalarWidgetLayoutTest, SliderRowKeepsItsThirdColumnWithAHiddenButton) {
  KEPRshParameterScalarImmWidget* widget =
      Widget(Param(0.5f, {{".Widget", "slider"}, {".Min", "0"}, {".Max", "1"}}));
  auto* grid = Find<KEPVidLayGrid>(widget, "ScalarLayout");
  ASSERT_NE(grid, nullptr);
  EXPECT_EQ(grid->GetFather(), widget);
  EXPECT_EQ(grid->GetGridCell().attach, KEPVidAttach_All);
  EXPECT_EQ(grid->GetHorizontalSpacing(), 2);
  EXPECT_DOUBLE_EQ(grid->GetColumnWeight(0), 1.0);
  EXPECT_DOUBLE_EQ(grid->GetColumnWeight(1), 0.0);
  EXPECT_DOUBLE_EQ(grid->GetColumnWeight(2), 0.0);
  const int columns[] = {SliderOf(widget)->GetGridCell().column,
                         EditorOf(widget)->GetGridCell().column,
                         Find<KEPVidWidget>(widget, "HidedButton")->GetGridCell().column};
  EXPECT_EQ(columns[0], 0);
  EXPECT_EQ(columns[1], 1);
  EXPECT_EQ(columns[2], 2);
  const KEPVidWidget* button = Find<KEPVidWidget>(widget, "HidedButton");
  EXPECT_FALSE(button->IsVisible());
  EXPECT_TRUE(button->GetLayoutWhenInvisible());
  EXPECT_FALSE(SliderOf(widget)->GetLayoutWhenInvisible());
}

TEST_F(ScalarWidgetLayoutTest, SpinBoxForEveryOtherKind) {
  // "spinner", unknown words, and a kind compared after lower-casing.
  for (const char* kind : {"spinner", "generic", "knob"}) {
    SCOPED_TRACE(kind);
    KEPRshParameterScalarImmWidget* widget =
        Widget(Param(250.0f, {{".Widget", kind}, {".Min", "0"}, {".Max", "1000"}, {".Step", "5"}}));
    KEPVidCtlDoubleSpinBox* spinner = SpinnerOf(widget);
    ASSERT_NE(spinner, nullptr);
    EXPECT_EQ(SliderOf(widget), nullptr);
    EXPECT_EQ(EditorOf(widget), nullptr);
    EXPECT_DOUBLE_EQ(spinner->GetMinimum(), 0.0);
    EXPECT_DOUBLE_EQ(spinner->GetMaximum(), 1000.0);
    EXPECT_DOUBLE_EQ(spinner->GetSingleStep(), 5.0);
    EXPECT_DOUBLE_EQ(spinner->GetValue(), 250.0);
    EXPECT_EQ(spinner->GetMaximumTextLength(), 20);
    EXPECT_EQ(spinner->GetCorrectionMode(), KEPVidCorrection_Nearest);
    EXPECT_TRUE(spinner->GetSuffix().IsEmpty());
    EXPECT_EQ(Utf8(spinner->GetTooltip()), "value from 0.0e+00 to 1.0e+03");
  }
  KEPRshParameterScalarImmWidget* upper =
      Widget(Param(0.5f, {{".Widget", "Slider"}, {".Min", "0"}, {".Max", "1"}}));
  EXPECT_EQ(upper->GetKind(), "slider");
  EXPECT_NE(SliderOf(upper), nullptr);
}

TEST_F(ScalarWidgetLayoutTest, EmptyRowWithoutValueControls) {
  const std::pair<const char*, Keys> cases[] = {
      {"no-value", {{".Widget", "no-value"}, {".Min", "0"}, {".Max", "1"}}},
      {"no kind configured: the scalar default", {{".Min", "0"}, {".Max", "1"}}},
      {"no range", {{".Widget", "slider"}, {".Max", "1"}}},
  };
  for (const auto& [what, config] : cases) {
    SCOPED_TRACE(what);
    KEPRshParameterScalarImmWidget* widget = Widget(Param(0.5f, config));
    const auto* grid = Find<KEPVidLayGrid>(widget, "ScalarLayout");
    ASSERT_NE(grid, nullptr);
    EXPECT_EQ(grid->GetChildCount(), 0u);
  }
  // Nothing to edit, so nothing to follow or write: a model write leaves the row as it is.
  KEPHostParameter* p = Param(0.5f, {{".Widget", "no-value"}, {".Min", "0"}, {".Max", "1"}});
  KEPRshParameterScalarImmWidget* widget = Widget(p);
  EXPECT_EQ(p->SetScalarValue(0.75f), S_OK);
  EXPECT_EQ(Find<KEPVidLayGrid>(widget, "ScalarLayout")->GetChildCount(), 0u);
}

TEST_F(ScalarWidgetLayoutTest, LengthAndAngleShownInTheDisplayUnit) {
  Show(u"cm");
  Show(u"deg");
  // A length stored in millimetres (500 mm), configured in centimetres, shown in centimetres.
  KEPHostParameter* length = Param(500.0f, {{".Widget", "slider"},
                                            {".Unit", "cm"},
                                            {".Magnitude", "length"},
                                            {".Min", "0"},
                                            {".Max", "100"},
                                            {".Step", "0.5"}});
  KEPRshParameterScalarImmWidget* lengthWidget = Widget(length);
  EXPECT_NEAR(EditorOf(lengthWidget)->GetValue(), 50.0, 1e-9);
  EXPECT_EQ(SliderOf(lengthWidget)->GetValue(), 5000);
  EXPECT_EQ(SliderOf(lengthWidget)->GetMaximum(), 10000);
  EXPECT_EQ(SliderOf(lengthWidget)->GetSingleStep(), 50);
  EXPECT_EQ(Utf8(EditorOf(lengthWidget)->GetTooltip()),
            UnitLead() + "cm (ranges from 0.00 to 100.00 )");

  Act(EditorOf(lengthWidget), KEPVidAction::Type, "20");
  EXPECT_NEAR(Stored(length), 200.0f, 1e-3);
  Act(SliderOf(lengthWidget), KEPVidAction::Set, "7550");
  EXPECT_NEAR(Stored(length), 755.0f, 1e-3);
  EXPECT_NEAR(EditorOf(lengthWidget)->GetValue(), 75.5, 1e-9);

  // An angle stored in radians (pi/4), configured and shown in degrees, in a spin box.
  KEPHostParameter* angle = Param(0.78539816f, {{".Widget", "spinner"},
                                                {".Unit", "deg"},
                                                {".Magnitude", "angle"},
                                                {".Min", "0"},
                                                {".Max", "90"},
                                                {".Step", "1"}});
  KEPVidCtlDoubleSpinBox* spinner = SpinnerOf(Widget(angle));
  ASSERT_NE(spinner, nullptr);
  EXPECT_NEAR(spinner->GetValue(), 45.0, 1e-4);
  EXPECT_NEAR(spinner->GetMaximum(), 90.0, 1e-4);
  EXPECT_EQ(Utf8(spinner->GetSuffix()), "deg");
  EXPECT_EQ(Utf8(spinner->GetTooltip()), UnitLead() + "deg (from 0.0e+00 to 9.0e+01 )");
  Act(spinner, KEPVidAction::Set, "30");
  EXPECT_NEAR(Stored(angle), 0.52359878f, 1e-6);
}

TEST_F(ScalarWidgetLayoutTest, UnitRulesFollowTheConfiguredWords) {
  Show(u"cm");
  struct Row {
    const char* what;
    Keys config;
    double shown;   // 500 mm stored
    int sliderMax;  // range 0..100, given in the parameter's unit when it has one
    bool unitTooltip;
  };
  const Row rows[] = {
      // Without ".Unit" the range is taken as shown; the value is still converted.
      {"magnitude without unit", {{".Magnitude", "length"}}, 50.0, 10000, true},
      // The magnitude word is compared as written.
      {"upper-case magnitude", {{".Unit", "cm"}, {".Magnitude", "LENGTH"}}, 500.0, 100000, false},
      {"other magnitude", {{".Unit", "cm"}, {".Magnitude", "mass"}}, 500.0, 100000, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    Keys config = row.config;
    config.insert(config.end(), {{".Widget", "slider"}, {".Min", "0"}, {".Max", "100"}});
    KEPRshParameterScalarImmWidget* widget = Widget(Param(500.0f, config));
    EXPECT_NEAR(EditorOf(widget)->GetValue(), row.shown, 1e-9);
    EXPECT_EQ(SliderOf(widget)->GetMaximum(), row.sliderMax);
    const std::string tooltip = Utf8(SliderOf(widget)->GetTooltip());
    EXPECT_EQ(tooltip.starts_with("Value ranges from "), !row.unitTooltip) << tooltip;
  }
}

}  // namespace
}  // namespace keptest
