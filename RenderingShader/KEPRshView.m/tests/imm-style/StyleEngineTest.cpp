// The style engine on a control of the test's own, introspectable as a module's control is: the
// parts built from the bundled sheet and their names, what they show and when they refresh, what
// a person's change writes, and the lifetimes of controls, parts and model observers.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "KEPISYPIntrospectable.h"
#include "KEPParmDictionary.h"
#include "KEPRshModelEvents.h"
#include "KEPSYPMetaClass.h"
#include "KEPTestSupport.h"
#include "KEPVidCtlDoubleSpinBox.h"
#include "KEPVidCtlEditor.h"
#include "KEPVidCtlLabel.h"
#include "KEPVidCtlSlider.h"
#include "KEPVidLayGrid.h"
#include "KEPVidTree.h"
#include "KEP_var.h"

namespace style_engine_test {

/// What the controls edit: a value shared by every control made on it, as a parameter is shared
/// by the editors that show it.
struct Model {
  double value = 0.25;
  KEPMathPoint2D values{0.25, 0.5};
  int writes = 0;
};

/// A value control published like the module's: soft and hard ranges, a value, a point, a
/// magnitude, a precision. A write that changes the value announces "Value" and tells the
/// model's observers, as a parameter write does.
class Ranged : public KEPVidCtl {
  KEP_DECLARE_CLASS
 public:
  explicit Ranged(Model* m = nullptr, KEPVidWidget* father = nullptr,
                  const KEPString& name = "Ranged")
      : KEPVidCtl(father, name), model(m) {}

  HRESULT Write(double next) {
    if (next == model->value) return S_OK;
    model->value = next;
    Written("Value");
    return S_OK;
  }
  HRESULT WritePoint(const KEPMathPoint2D& next) {
    if (next == model->values) return S_OK;
    model->values = next;
    Written("Value");  // as the ratio control does
    return S_OK;
  }
  void Announce(const char* property) {
    GetIntrospectionAdapter()->DispatchModifyProperty(property);
  }

  Model* model;
  double softMinimum = 0, softMaximum = 1, hardMinimum = -10, hardMaximum = 10;
  int precision = 2;
  KEPICkeMagnitude* magnitude = nullptr;

 protected:
  ~Ranged() override = default;

 private:
  void Written(const char* property) {
    ++model->writes;
    Announce(property);
    KEPRshModelEvents::NoteParameterChange(nullptr, KEPRshParameterChangeKind::Value);
  }
};
KEP_IMPLEMENT_CLASS(Ranged, KEPVidCtl, "Test")

}  // namespace style_engine_test

namespace {

using style_engine_test::Model;
using style_engine_test::Ranged;

Ranged& Of(KEPBaseUnknown* o) {
  return *static_cast<Ranged*>(o);
}

HRESULT BuildRanged(KEPSYPMetaClassBuilder& b) {
  b.SetClass("Ranged", "KEPVidCtl", nullptr);
  static const KEPSYPPropertyEntry properties[] = {
      {"HardMinimum", "double", [](KEPBaseUnknown* o) -> KEPSYPValue { return Of(o).hardMinimum; },
       nullptr},
      {"HardMaximum", "double", [](KEPBaseUnknown* o) -> KEPSYPValue { return Of(o).hardMaximum; },
       nullptr},
      {"SoftMinimum", "double", [](KEPBaseUnknown* o) -> KEPSYPValue { return Of(o).softMinimum; },
       nullptr},
      {"SoftMaximum", "double", [](KEPBaseUnknown* o) -> KEPSYPValue { return Of(o).softMaximum; },
       nullptr},
      {"Value", "double", [](KEPBaseUnknown* o) -> KEPSYPValue { return Of(o).model->value; },
       [](KEPBaseUnknown* o, const KEPSYPValue& v) {
         return std::holds_alternative<double>(v) ? Of(o).Write(std::get<double>(v)) : E_INVALIDARG;
       }},
      {"Values", "KEPMathPoint2D",
       [](KEPBaseUnknown* o) -> KEPSYPValue { return Of(o).model->values; },
       [](KEPBaseUnknown* o, const KEPSYPValue& v) {
         const auto* p = std::get_if<KEPMathPoint2D>(&v);
         return p ? Of(o).WritePoint(*p) : E_INVALIDARG;
       }},
      {"Magnitude", "KEPICkeMagnitude",
       [](KEPBaseUnknown* o) -> KEPSYPValue {
         if (!Of(o).magnitude) return std::monostate{};
         return KEP_var<KEPIUnknown>(Of(o).magnitude);
       },
       nullptr},
      {"Step", "double", [](KEPBaseUnknown*) -> KEPSYPValue { return 0.01; }, nullptr},
      {"Minimum", "double", [](KEPBaseUnknown* o) -> KEPSYPValue { return Of(o).hardMinimum; },
       nullptr},
      {"Maximum", "double", [](KEPBaseUnknown* o) -> KEPSYPValue { return Of(o).hardMaximum; },
       nullptr},
  };
  static const KEPSYPPropertyEntry integers[] = {
      {"DecimalPrecision", "int", [](KEPBaseUnknown* o) -> KEPSYPValue { return Of(o).precision; },
       nullptr}};
  if (FAILED(b.AddProperties(properties, std::size(properties)))) return E_FAIL;
  return b.AddIntegerProperties(integers, 1);
}

using Control = KEP_var<Ranged>;

class StyleEngine : public keptest::Fixture {
 protected:
  void SetUp() override {
    keptest::Fixture::SetUp();
    KEPSYPRegistry::Clear();
    KEPSYPRegistry::RegisterBuilder("Ranged", &BuildRanged);
    root_ = KEP_var<KEPVidWidget>::Adopt(new KEPVidLayGrid(nullptr, "root"));
  }
  void TearDown() override {
    root_.Reset();
    KEPSYPRegistry::Clear();
    keptest::Fixture::TearDown();
  }

  /// A control under the root, styled with `styleClass` of the bundled sheet.
  Ranged* Styled(const char* styleClass, const char* name = "Ranged") {
    auto* control = new Ranged(&model_, root_.Get(), name);
    EXPECT_EQ(control->SetCustomStyle("KEPRshUI.sypstyle", "Default",
                                      KEPUnicodeString::FromUTF8(styleClass)),
              S_OK);
    return control;
  }
  template <class W>
  static W& Part(KEPVidWidget* control, const char* path) {
    std::string error;
    KEPVidWidget* found = KEPVidFindByPath(control, path, error);
    EXPECT_NE(found, nullptr) << error;
    auto* typed = dynamic_cast<W*>(found);
    if (!typed) throw std::runtime_error(std::string("no part ") + path);
    return *typed;
  }
  static HRESULT Person(KEPVidWidget* control, const char* path, KEPVidAction action,
                        const char* argument) {
    std::string error;
    return KEPVidInject(control, path, action, argument, error);
  }
  static std::string Text(const KEPVidCtlEditor& editor) { return editor.GetText().ToUTF8(); }

  Model model_;
  KEP_var<KEPVidWidget> root_;
};

// --- Parts

TEST_F(StyleEngine, TheDynamicSliderIsAGridOfASliderAnEditorAndAUnitLabel) {
  Ranged* control = Styled("dynamic-slider");
  ASSERT_EQ(control->GetChildCount(), 1U);
  auto& grid = Part<KEPVidLayGrid>(control, "WidgetDynamicSlider");
  EXPECT_EQ(grid.GetFather(), control);
  ASSERT_EQ(grid.GetChildCount(), 3U);
  EXPECT_EQ(grid.GetChild(0)->GetName(), "ValueSlider");
  EXPECT_EQ(grid.GetChild(1)->GetName(), "ValueEditor");
  EXPECT_EQ(grid.GetChild(2)->GetName(), "UnitLabel");
  auto& slider = Part<KEPVidCtlSlider>(control, "ValueSlider");
  EXPECT_EQ(slider.GetGridCell(),
            (KEPVidGridCell{0, 0, 1, 1, KEPVidAttach_Left | KEPVidAttach_Right}));
  EXPECT_FALSE(slider.GetTooltip().IsEmpty());
  EXPECT_EQ(Part<KEPVidCtlEditor>(control, "ValueEditor").GetGridCell().column, 1);
  EXPECT_EQ(control->GetStyleClass(), KEPUnicodeString(u"dynamic-slider"));
}

TEST_F(StyleEngine, SliderSpansTheSoftRangeInStepsOfThePrecision) {
  Ranged* control = Styled("dynamic-slider");
  auto& slider = Part<KEPVidCtlSlider>(control, "ValueSlider");
  auto& editor = Part<KEPVidCtlEditor>(control, "ValueEditor");
  EXPECT_EQ(slider.GetMinimum(), 0);
  EXPECT_EQ(slider.GetMaximum(), 100);
  EXPECT_EQ(slider.GetValue(), 25);
  EXPECT_EQ(Text(editor), "0.25");

  control->precision = 3;
  control->softMinimum = -0.5;
  control->Announce("DecimalPrecision");
  EXPECT_EQ(slider.GetMinimum(), -500);
  EXPECT_EQ(slider.GetMaximum(), 1000);
  EXPECT_EQ(slider.GetValue(), 250);
  EXPECT_EQ(Text(editor), "0.250");
  EXPECT_EQ(model_.writes, 0) << "showing a property never writes it";
}

TEST_F(StyleEngine, PartsFollowOnlyTheAnnouncedProperties) {
  Ranged* control = Styled("dynamic-slider");
  auto& slider = Part<KEPVidCtlSlider>(control, "ValueSlider");
  auto& editor = Part<KEPVidCtlEditor>(control, "ValueEditor");
  control->softMaximum = 2;
  model_.value = 1.5;  // behind the control's back: nothing announced
  EXPECT_EQ(slider.GetMaximum(), 100);
  EXPECT_EQ(Text(editor), "0.25");
  control->Announce("Unit");  // nothing is bound to it
  EXPECT_EQ(Text(editor), "0.25");
  control->Announce("SoftMaximum");
  EXPECT_EQ(slider.GetMaximum(), 200);
  EXPECT_EQ(slider.GetValue(), 150) << "the slider's own refresh reads the value too";
  EXPECT_EQ(Text(editor), "0.25") << "the editor reads no soft range";
  control->Announce("Value");
  EXPECT_EQ(Text(editor), "1.50");
  EXPECT_EQ(model_.writes, 0);
}

// --- Soft and hard ranges

TEST_F(StyleEngine, APersonsSliderMoveWritesTheValueOnce) {
  Ranged* control = Styled("dynamic-slider");
  ASSERT_EQ(Person(control, "ValueSlider", KEPVidAction::Set, "40"), S_OK);
  EXPECT_DOUBLE_EQ(model_.value, 0.4);
  EXPECT_EQ(model_.writes, 1) << "the editor's refresh is not written back";
  EXPECT_EQ(Text(Part<KEPVidCtlEditor>(control, "ValueEditor")), "0.40");
}

TEST_F(StyleEngine, TheEditorTakesValuesUpToTheHardRangeAndRefusesBeyond) {
  Ranged* control = Styled("dynamic-slider");
  auto& slider = Part<KEPVidCtlSlider>(control, "ValueSlider");
  auto& editor = Part<KEPVidCtlEditor>(control, "ValueEditor");
  struct Case {
    const char* typed;
    double stored;
    const char* shown;
    int sliderAt;
  };
  const Case cases[] = {
      {"7.5", 7.5, "7.50", 100},     // beyond the soft range: the slider at its end
      {"-10", -10, "-10.00", 0},     // the hard minimum itself
      {"10.001", -10, "-10.00", 0},  // beyond the hard range: refused, the editor reverts
      {"-11", -10, "-10.00", 0},    {"0.5", 0.5, "0.50", 50},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.typed);
    ASSERT_EQ(Person(control, "ValueEditor", KEPVidAction::Type, c.typed), S_OK);
    EXPECT_EQ(model_.value, c.stored);
    EXPECT_EQ(Text(editor), c.shown);
    EXPECT_EQ(slider.GetValue(), c.sliderAt);
  }
  EXPECT_EQ(model_.writes, 3) << "only the accepted values are written";
}

TEST_F(StyleEngine, AValueOutsideTheSoftRangeShowsTheSliderAtTheNearerEndWithoutWriting) {
  model_.value = -3;
  Ranged* control = Styled("dynamic-slider");
  EXPECT_EQ(Part<KEPVidCtlSlider>(control, "ValueSlider").GetValue(), 0);
  EXPECT_EQ(Text(Part<KEPVidCtlEditor>(control, "ValueEditor")), "-3.00");
  model_.value = 42;
  control->Announce("Value");
  EXPECT_EQ(Part<KEPVidCtlSlider>(control, "ValueSlider").GetValue(), 100);
  EXPECT_EQ(model_.value, 42);
  EXPECT_EQ(model_.writes, 0);
}

TEST_F(StyleEngine, TheLabelShowsTheSymbolOfTheCurrentUnit) {
  KEPICkeMagnitude* length = KEPParmDictionary::FindMagnitude(KEPParmDictionary::LengthType);
  ASSERT_NE(length, nullptr);
  ASSERT_EQ(length->SetCurrentUnit(KEPParmDictionary::FindUnit(u"cm")), S_OK);
  Ranged* without = Styled("dynamic-slider", "Without");
  EXPECT_EQ(Part<KEPVidCtlLabel>(without, "UnitLabel").GetText(), KEPUnicodeString());

  auto* control = new Ranged(&model_, root_.Get(), "With");
  control->magnitude = length;
  ASSERT_EQ(control->SetCustomStyle("KEPRshUI.sypstyle", "Default", u"dynamic-slider"), S_OK);
  auto& label = Part<KEPVidCtlLabel>(control, "UnitLabel");
  EXPECT_EQ(label.GetText(), KEPUnicodeString(u"cm"));
  // A change of display unit reaches the label with the next model announcement.
  ASSERT_EQ(length->SetCurrentUnit(KEPParmDictionary::FindUnit(u"in")), S_OK);
  KEPRshModelEvents::NoteParameterChange(nullptr, KEPRshParameterChangeKind::Value);
  EXPECT_EQ(label.GetText(), KEPUnicodeString(u"in"));
}

// --- Two editors of one model

TEST_F(StyleEngine, AModelAnnouncementRefreshesEveryStyledControl) {
  Ranged* a = Styled("dynamic-slider", "A");
  Ranged* b = Styled("dynamic-slider", "B");
  ASSERT_EQ(Person(a, "ValueEditor", KEPVidAction::Type, "0.75"), S_OK);
  EXPECT_EQ(Text(Part<KEPVidCtlEditor>(b, "ValueEditor")), "0.75");
  EXPECT_EQ(Part<KEPVidCtlSlider>(b, "ValueSlider").GetValue(), 75);
  EXPECT_EQ(model_.writes, 1) << "the other editor's refresh writes nothing back";

  model_.value = 0.126;  // another writer: only the model says so
  KEPRshModelEvents::NoteParameterChange(nullptr, KEPRshParameterChangeKind::Value);
  EXPECT_EQ(Text(Part<KEPVidCtlEditor>(a, "ValueEditor")), "0.13");
  EXPECT_EQ(Text(Part<KEPVidCtlEditor>(b, "ValueEditor")), "0.13");
  EXPECT_EQ(model_.writes, 1);
}

TEST_F(StyleEngine, AControlDestroyedWhileTheModelAnnouncesIsNotRefreshed) {
  Ranged* a = Styled("dynamic-slider", "A");
  auto b = KEP_var<Ranged>::Adopt(new Ranged(&model_, nullptr, "B"));
  ASSERT_EQ(b->SetCustomStyle("KEPRshUI.sypstyle", "Default", u"dynamic-slider"), S_OK);
  // An observer that runs between the two and destroys the second.
  const int killer = KEPRshModelEvents::AddParameterObserver(
      [&](KEPIRshParameter*, KEPRshParameterChangeKind) { b.Reset(); });
  Ranged* c = Styled("dynamic-slider", "C");
  model_.value = 0.5;
  KEPRshModelEvents::NoteParameterChange(nullptr, KEPRshParameterChangeKind::Value);
  EXPECT_FALSE(b);
  EXPECT_EQ(Text(Part<KEPVidCtlEditor>(a, "ValueEditor")), "0.50");
  EXPECT_EQ(Text(Part<KEPVidCtlEditor>(c, "ValueEditor")), "0.50");
  KEPRshModelEvents::RemoveObserver(killer);
  // And one that dies from its own part's change (its row rebuilt on the write).
  KEPVidWidget* slider = &Part<KEPVidCtlSlider>(c, "ValueSlider");
  slider->AddHandler(KEPVidEvent::ValueChanged,
                     [&](KEPVidWidget*, KEPVidEvent) { root_->DeleteChildren(); });
  EXPECT_EQ(Person(c, "ValueSlider", KEPVidAction::Set, "10"), S_OK);
  EXPECT_EQ(root_->GetChildCount(), 0U);
  KEPRshModelEvents::NoteParameterChange(nullptr, KEPRshParameterChangeKind::Value);
}

TEST_F(StyleEngine, APartThatOutlivesItsControlWritesNothing) {
  Ranged* control = Styled("dynamic-slider");
  KEP_var<KEPVidWidget> editor(&Part<KEPVidCtlEditor>(control, "ValueEditor"));
  root_->DeleteChildren();
  std::string error;
  EXPECT_EQ(editor->InjectUserEvent(KEPVidAction::Type, "3", error), S_OK);
  EXPECT_EQ(model_.writes, 0);
  KEPRshModelEvents::NoteParameterChange(nullptr, KEPRshParameterChangeKind::Value);
}

// --- The ratio and the spinner

TEST_F(StyleEngine, TheRatioWritesOneCoordinateAndKeepsTheOther) {
  Ranged* control = Styled("ratio");
  auto& grid = Part<KEPVidLayGrid>(control, "WidgetRatio");
  auto& tweaker = Part<KEPVidCtlSlider>(&grid, "ValueTweaker");
  EXPECT_EQ(tweaker.GetValue(), 25);
  EXPECT_EQ(Text(Part<KEPVidCtlEditor>(control, "ValueYEditor")), "0.50");

  ASSERT_EQ(Person(control, "ValueYEditor", KEPVidAction::Type, "20"), S_OK);
  EXPECT_EQ(model_.values, (KEPMathPoint2D{0.25, 20})) << "y has no range of its own";
  ASSERT_EQ(Person(control, "WidgetRatio/ValueTweaker", KEPVidAction::Set, "60"), S_OK);
  EXPECT_EQ(model_.values, (KEPMathPoint2D{0.6, 20}));
  EXPECT_EQ(Text(Part<KEPVidCtlEditor>(control, "ValueXEditor")), "0.60");
  EXPECT_EQ(model_.writes, 2);

  // The editor disables the tweaker alone; no refresh gives it back.
  tweaker.SetSensitivity(false);
  KEPRshModelEvents::NoteParameterChange(nullptr, KEPRshParameterChangeKind::Value);
  EXPECT_FALSE(tweaker.IsSensitive());
  EXPECT_TRUE(Part<KEPVidCtlEditor>(control, "ValueXEditor").IsSensitive());
  EXPECT_NE(Person(control, "WidgetRatio/ValueTweaker", KEPVidAction::Set, "10"), S_OK);
}

TEST_F(StyleEngine, TheScalarSpinnerSpansTheRangeByItsStep) {
  Ranged* control = Styled("scalar-spinner");
  auto& spin = Part<KEPVidCtlDoubleSpinBox>(control, "ValueSpinner");
  EXPECT_EQ(spin.GetMinimum(), -10);
  EXPECT_EQ(spin.GetMaximum(), 10);
  EXPECT_DOUBLE_EQ(spin.GetSingleStep(), 0.01);
  EXPECT_EQ(spin.GetDecimals(), 2);
  EXPECT_DOUBLE_EQ(spin.GetValue(), 0.25);
  ASSERT_EQ(Person(control, "ValueSpinner", KEPVidAction::Set, "0.5"), S_OK);
  EXPECT_DOUBLE_EQ(model_.value, 0.5);
  EXPECT_EQ(model_.writes, 1);
}

// --- Sheets, styles and classes that cannot be used

class StyleEngineSheets : public StyleEngine {
 protected:
  void SetUp() override {
    StyleEngine::SetUp();
    dir_ = std::filesystem::temp_directory_path() /
           ("keprsh_style_engine_" + std::to_string(::getpid()) + "_" +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::create_directories(dir_);
  }
  void TearDown() override {
    std::error_code ec;
    std::filesystem::remove_all(dir_, ec);
    StyleEngine::TearDown();
  }
  std::string Write(const std::string& text) const {
    const std::string path = (dir_ / "test.sypstyle").string();
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  std::filesystem::path dir_;
};

TEST_F(StyleEngineSheets, WhatCannotBeFoundIsTracedAndBuildsNothing) {
  const std::string good = Write("style S {\n class c {\n  part label L {\n  }\n }\n}\n");
  const std::string missing = (dir_ / "none.sypstyle").string();
  struct Case {
    std::string sheet, style, styleClass, trace;
  };
  const Case cases[] = {
      {missing, "S", "c", "Style sheet unusable { control = Ranged, file = " + missing},
      {good, "T", "c", "Style not found { control = Ranged, file = " + good + ", style = T }"},
      {good, "S", "d",
       "Class not found { control = Ranged, file = " + good + ", line = 1, style = S, class = d }"},
      {"", "S", "c", "No style sheet given"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.trace);
    keptest::TraceCapture traces;
    auto* control = new Ranged(&model_, root_.Get());
    EXPECT_EQ(control->SetCustomStyle(c.sheet, c.style, KEPUnicodeString::FromUTF8(c.styleClass)),
              E_FAIL);
    EXPECT_EQ(control->GetChildCount(), 0U);
    EXPECT_TRUE(traces.Contains(c.trace));
    EXPECT_EQ(traces.Entries().back().channel, "KEPVidStyle");
  }
}

TEST_F(StyleEngineSheets, AMalformedSheetsErrorsAreTracedOnceWithFileAndLine) {
  const std::string path = Write("style S {\n class c {\n  part knob K {\n  }\n }\n}\n");
  keptest::TraceCapture traces;
  auto* a = new Ranged(&model_, root_.Get(), "A");
  auto* b = new Ranged(&model_, root_.Get(), "B");
  EXPECT_EQ(a->SetCustomStyle(path, "S", u"c"), E_FAIL);
  EXPECT_EQ(b->SetCustomStyle(path, "S", u"c"), E_FAIL);
  int faults = 0;
  for (const std::string& text : traces.Texts("KEPVidStyle"))
    faults += text.find(path + ":3: key 'knob': unknown part kind") != std::string::npos ? 1 : 0;
  EXPECT_EQ(faults, 1);
  EXPECT_TRUE(
      traces.Contains("Style sheet unusable { control = B, file = " + path + ", errors = 1 }"));
}

TEST_F(StyleEngineSheets, ABindingToAPropertyTheControlLacksIsTracedAndShowsNothing) {
  const std::string path = Write(
      "style S {\n class c {\n  part label L {\n   text <- Colour\n  }\n"
      "  part slider V {\n   value <-> HardMinimum\n  }\n }\n}\n");
  keptest::TraceCapture traces;
  auto* control = new Ranged(&model_, root_.Get());
  ASSERT_EQ(control->SetCustomStyle(path, "S", u"c"), S_OK);
  EXPECT_TRUE(traces.Contains(path + ":4: key 'text': the control has no such property"));
  EXPECT_TRUE(traces.Contains(path + ":7: key 'value': the property is read-only"));
  EXPECT_EQ(Part<KEPVidCtlLabel>(control, "L").GetText(), KEPUnicodeString());
  EXPECT_EQ(Person(control, "V", KEPVidAction::Set, "3"), S_OK);
  EXPECT_TRUE(
      traces.Contains("Write failed { control = Ranged, part = V, property = HardMinimum, "
                      "result = E_FAIL }"));
  EXPECT_EQ(control->hardMinimum, -10);
}

TEST_F(StyleEngineSheets, LiteralsSetTheLookOnce) {
  const std::string path = Write(
      "style S {\n class c {\n  part grid G {\n   column-weights = 0 2.5\n   spacing = 3 4\n"
      "   part label L {\n    cell = 1 2 1 3\n    attach = all\n    minimum-size = 10 20\n"
      "    background = #ff000080\n    tooltip = \"tip\"\n    tooltip-delay = 1.5\n"
      "    visible = no\n    layout-when-invisible = no\n    text = \"fixed\"\n   }\n  }\n }\n}\n");
  // A control without any property of its own: the literals are all it gets.
  auto* control = new KEPVidCtl(root_.Get(), "Plain");
  ASSERT_EQ(control->SetCustomStyle(path, "S", u"c"), S_OK);
  auto& grid = Part<KEPVidLayGrid>(control, "G");
  EXPECT_EQ(grid.GetColumnWeight(1), 2.5);
  EXPECT_EQ(grid.GetHorizontalSpacing(), 3);
  EXPECT_EQ(grid.GetVerticalSpacing(), 4);
  auto& label = Part<KEPVidCtlLabel>(control, "L");
  EXPECT_EQ(label.GetGridCell(), (KEPVidGridCell{1, 2, 1, 3, KEPVidAttach_All}));
  EXPECT_EQ(label.GetMinimumWidth(), 10);
  EXPECT_EQ(label.GetBackgroundColor(), (KEPVidColor{255, 0, 0, 128}));
  EXPECT_EQ(label.GetTooltip(), KEPUnicodeString(u"tip"));
  EXPECT_EQ(label.GetTooltipInitialDelay(), 1.5);
  EXPECT_FALSE(label.IsVisible());
  EXPECT_FALSE(label.GetLayoutWhenInvisible());
  EXPECT_EQ(label.GetText(), KEPUnicodeString(u"fixed"));
}

TEST_F(StyleEngine, ANewStyleReplacesThePartsOfTheLastOne) {
  Ranged* control = Styled("dynamic-slider");
  KEP_var<KEPVidWidget> old(&Part<KEPVidCtlSlider>(control, "ValueSlider"));
  ASSERT_EQ(control->SetCustomStyle("KEPRshUI.sypstyle", "Default", u"ratio"), S_OK);
  ASSERT_EQ(control->GetChildCount(), 1U);
  EXPECT_EQ(control->GetChild(0)->GetName(), "WidgetRatio");
  EXPECT_EQ(old->GetRefCount(), 1U) << "only this test still holds the old part";
  std::string error;
  EXPECT_EQ(old->InjectUserEvent(KEPVidAction::Set, "80", error), S_OK);
  EXPECT_EQ(model_.writes, 0) << "the old part is no longer bound";
  // A style that cannot be built leaves no parts either (the sheet's catch-all class takes any
  // class name, so the style is what is missing here).
  EXPECT_EQ(control->SetCustomStyle("KEPRshUI.sypstyle", "NoSuchStyle", u"ratio"), E_FAIL);
  EXPECT_EQ(control->GetChildCount(), 0U);
}

}  // namespace
