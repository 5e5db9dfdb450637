// The controls' rules: ranges and clamping, the correction of typed values, what each control
// reads from a person's action, and the actions a person cannot take.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "KEPRbaImageDocImmSelector.h"
#include "KEPTestSupport.h"
#include "KEPVidCtlButton.h"
#include "KEPVidCtlCheckBox.h"
#include "KEPVidCtlColorCompositePicker.h"
#include "KEPVidCtlDoubleSpinBox.h"
#include "KEPVidCtlEditor.h"
#include "KEPVidCtlExpander.h"
#include "KEPVidCtlImageCombo.h"
#include "KEPVidCtlLabel.h"
#include "KEPVidCtlPopup.h"
#include "KEPVidCtlSlider.h"
#include "KEPVidCtlSpinBox.h"
#include "KEPVidLayGrid.h"
#include "KEP_var.h"

namespace {

using Root = KEP_var<KEPVidWidget>;

// `text` contains `part`; the failure shows both.
::testing::AssertionResult Contains(const std::string& text, const std::string& part) {
  if (text.find(part) != std::string::npos) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "\"" << text << "\" lacks \"" << part << '"';
}

Root MakeRoot() {
  return Root::Adopt(new KEPVidLayGrid(nullptr, "root"));
}

// Counts the notifications of one event.
int Count(KEPVidWidget* widget, KEPVidEvent event, int* counter) {
  return widget->AddHandler(event, [counter](KEPVidWidget*, KEPVidEvent) { ++*counter; });
}

HRESULT Inject(KEPVidWidget* widget, KEPVidAction action, std::string_view argument,
               std::string* error = nullptr) {
  std::string text;
  const HRESULT hr = widget->InjectUserEvent(action, argument, text);
  if (error) *error = text;
  return hr;
}

class ImmControls : public keptest::Fixture {};

// --- Ranges

TEST_F(ImmControls, SliderKeepsItsValueInsideItsRange) {
  Root root = MakeRoot();
  auto* slider = new KEPVidCtlSlider(root.Get(), "s");
  struct Case {
    int minimum, maximum, set, expected;
  } cases[] = {
      {0, 100, 150, 100},  {0, 100, -5, 0}, {0, 100, 100, 100},
      {-10, 10, -11, -10}, {10, 5, 7, 10},  {10, 5, 3, 10},  // an empty range holds its minimum
  };
  for (const Case& c : cases) {
    slider->SetRange(c.minimum, c.maximum);
    slider->SetValue(c.set);
    EXPECT_EQ(slider->GetValue(), c.expected) << c.minimum << ".." << c.maximum << " set " << c.set;
  }
  slider->SetRange(0, 100);
  slider->SetValue(80);
  int changed = 0;
  Count(slider, KEPVidEvent::ValueChanged, &changed);
  slider->SetRange(0, 50);
  EXPECT_EQ(slider->GetValue(), 50);
  EXPECT_EQ(changed, 1) << "a narrowed range moves the value and says so";
  // A person's drag stops at the ends too.
  EXPECT_EQ(Inject(slider, KEPVidAction::Set, "70"), S_OK);
  EXPECT_EQ(slider->GetValue(), 50);
}

TEST_F(ImmControls, SpinBoxesClampCodeAndCorrectWhatAPersonTypes) {
  Root root = MakeRoot();
  auto* spin = new KEPVidCtlSpinBox(root.Get(), "i");
  spin->SetRange(0, 10);
  spin->SetValue(42);
  EXPECT_EQ(spin->GetValue(), 10) << "code gets the nearer end";
  spin->SetValue(4);
  int changed = 0;
  Count(spin, KEPVidEvent::ValueChanged, &changed);
  // Previous (the default): typed text outside the range leaves the value as it was.
  EXPECT_EQ(Inject(spin, KEPVidAction::Set, "11"), S_OK);
  EXPECT_EQ(spin->GetValue(), 4);
  EXPECT_EQ(changed, 0);
  spin->SetCorrectionMode(KEPVidCorrection_Nearest);
  EXPECT_EQ(Inject(spin, KEPVidAction::Set, "-3"), S_OK);
  EXPECT_EQ(spin->GetValue(), 0);
  EXPECT_EQ(changed, 1);

  auto* real = new KEPVidCtlDoubleSpinBox(root.Get(), "d");
  real->SetRange(-1.0, 1.0);
  real->SetValue(0.5);
  real->SetValue(std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(real->GetValue(), 0.5) << "NaN is ignored";
  real->SetRange(std::nan(""), 5.0);
  EXPECT_EQ(real->GetMaximum(), 1.0) << "a range with NaN is ignored";
  real->SetValue(1e300);
  EXPECT_EQ(real->GetValue(), 1.0);
  real->SetValue(0.123456789);
  EXPECT_EQ(real->GetValue(), 0.123456789) << "not rounded to the decimals";
  EXPECT_EQ(Inject(real, KEPVidAction::Set, "2.5"), S_OK);
  EXPECT_EQ(real->GetValue(), 0.123456789);
  real->SetCorrectionMode(KEPVidCorrection_Nearest);
  EXPECT_EQ(Inject(real, KEPVidAction::Set, " 2.5 "), S_OK);
  EXPECT_EQ(real->GetValue(), 1.0);
  EXPECT_EQ(Inject(real, KEPVidAction::Set, "+0.25"), S_OK);
  EXPECT_EQ(real->GetValue(), 0.25);
}

// --- Editor

TEST_F(ImmControls, EditorShowsValuesAndReadsTextByDataType) {
  Root root = MakeRoot();
  auto* editor = new KEPVidCtlEditor(root.Get(), "e");
  editor->SetDataType(KEPVidEditor_Double);
  struct Shown {
    double value;
    const char16_t* text;
  } shown[] = {{0.1, u"0.1"},
               {1.0 / 3.0, u"0.3333333333333333"},
               {1e20, u"1e+20"},
               {-2, u"-2"},
               // A float parameter's value reads as the float it is, not as its double widening.
               {static_cast<double>(0.8f), u"0.8"},
               {static_cast<double>(0.65f), u"0.65"}};
  for (const Shown& s : shown) {
    editor->SetValue(s.value);
    EXPECT_EQ(editor->GetText(), KEPUnicodeString(s.text)) << s.value;
  }
  editor->SetText(u"2.75");
  EXPECT_EQ(editor->GetValue(), 2.75);
  editor->SetText(u"not a number");
  EXPECT_EQ(editor->GetValue(), 2.75) << "code's unreadable text keeps the value";
  EXPECT_EQ(editor->GetText(), KEPUnicodeString(u"not a number"));

  int modified = 0;
  Count(editor, KEPVidEvent::EditModify, &modified);
  EXPECT_EQ(Inject(editor, KEPVidAction::Type, " 1.5 "), S_OK);
  EXPECT_EQ(editor->GetValue(), 1.5);
  EXPECT_EQ(editor->GetText(), KEPUnicodeString(u"1.5"));
  EXPECT_EQ(modified, 1);
}

TEST_F(ImmControls, EditorRefusesTypedTextItsDataTypeCannotRead) {
  struct Case {
    int type;
    const char* typed;
    const char* problem;
  } cases[] = {
      {KEPVidEditor_Double, "abc", "is not a number"},
      {KEPVidEditor_Double, "1.5x", "is not a number"},
      {KEPVidEditor_Double, "", "is not a number"},
      {KEPVidEditor_Double, "nan", "is not a finite number"},
      {KEPVidEditor_Double, "inf", "is not a finite number"},
      {KEPVidEditor_Double, "1e999", "outside the range"},
      {KEPVidEditor_Integer, "1.5", "is not an integer"},
      {KEPVidEditor_Integer, "99999999999", "outside the integer range"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.typed);
    Root root = MakeRoot();
    auto* editor = new KEPVidCtlEditor(root.Get(), "scalarEditor");
    editor->SetDataType(c.type);
    editor->SetValue(3);
    int modified = 0;
    Count(editor, KEPVidEvent::EditModify, &modified);
    std::string error;
    EXPECT_EQ(Inject(editor, KEPVidAction::Type, c.typed, &error), E_INVALIDARG);
    EXPECT_TRUE(Contains(error, "KEPVidCtlEditor \"scalarEditor\""));
    EXPECT_TRUE(Contains(error, c.problem));
    EXPECT_EQ(editor->GetValue(), 3.0);
    EXPECT_EQ(editor->GetText(), KEPUnicodeString(u"3"));
    EXPECT_EQ(modified, 0);
  }
  Root root = MakeRoot();
  auto* text = new KEPVidCtlEditor(root.Get(), "t");
  EXPECT_EQ(Inject(text, KEPVidAction::Type, "anything at all"), S_OK);
  EXPECT_EQ(text->GetText(), KEPUnicodeString(u"anything at all"));
}

// --- Choices: check box, combo, colour, image, popup, expander

TEST_F(ImmControls, CheckBoxAndExpanderFollowAPersonsActions) {
  Root root = MakeRoot();
  auto* check = new KEPVidCtlCheckBox(root.Get(), "c");
  EXPECT_EQ(Inject(check, KEPVidAction::Toggle, ""), S_OK);
  EXPECT_TRUE(check->IsChecked());
  EXPECT_EQ(Inject(check, KEPVidAction::Toggle, "on"), S_OK);
  EXPECT_TRUE(check->IsChecked());
  EXPECT_EQ(Inject(check, KEPVidAction::Toggle, "OFF"), S_OK);
  EXPECT_FALSE(check->IsChecked());
  std::string error;
  EXPECT_EQ(Inject(check, KEPVidAction::Toggle, "maybe", &error), E_INVALIDARG);
  EXPECT_TRUE(Contains(error, "\"maybe\" is not a check state"));

  auto* expander = new KEPVidCtlExpander(root.Get(), "x");
  EXPECT_FALSE(expander->IsExpanded()) << "created closed";
  EXPECT_EQ(Inject(expander, KEPVidAction::Expand, ""), S_OK);
  EXPECT_TRUE(expander->IsExpanded());
  EXPECT_EQ(Inject(expander, KEPVidAction::Collapse, ""), S_OK);
  EXPECT_FALSE(expander->IsExpanded());
  EXPECT_EQ(Inject(expander, KEPVidAction::Expand, "now", &error), E_INVALIDARG);
  EXPECT_TRUE(Contains(error, "'expand' takes no argument"));
}

TEST_F(ImmControls, ComboSelectsByIndexOrLabel) {
  Root root = MakeRoot();
  auto* combo = new KEPVidCtlImageCombo(root.Get(), "integerCombo");
  EXPECT_EQ(combo->AddItem(u"Low", "I_Low.png"), 0);
  EXPECT_EQ(combo->AddItem(u"High"), 1);
  EXPECT_EQ(combo->AddItem(u"0"), 2);
  combo->SetSelect(7);
  EXPECT_EQ(combo->GetSelect(), -1);
  EXPECT_EQ(Inject(combo, KEPVidAction::Select, "High"), S_OK);
  EXPECT_EQ(combo->GetSelect(), 1);
  EXPECT_EQ(Inject(combo, KEPVidAction::Select, "0"), S_OK);
  EXPECT_EQ(combo->GetSelect(), 0) << "a number is an index before it is a label";
  std::string error;
  EXPECT_EQ(Inject(combo, KEPVidAction::Select, "3", &error), E_INVALIDARG);
  EXPECT_TRUE(Contains(error, "there is no entry 3 (the combo has 3 entries)"));
  EXPECT_EQ(Inject(combo, KEPVidAction::Select, "Medium", &error), E_INVALIDARG);
  EXPECT_TRUE(Contains(error, "no entry is labelled \"Medium\" (entries: \"Low\", \"High\""));
  EXPECT_EQ(combo->GetSelect(), 0);
}

TEST_F(ImmControls, ColourPickerReadsChannelsInZeroToOne) {
  Root root = MakeRoot();
  auto* picker = new KEPVidCtlColorCompositePicker(root.Get(), "colorPicker", "VIDColorPicker", 2);
  picker->SetModeList("ColorWheel||ColorSquareS|");
  EXPECT_EQ(picker->GetModes(), (std::vector<KEPString>{"ColorWheel", "ColorSquareS"}));
  EXPECT_EQ(Inject(picker, KEPVidAction::Color, "1 0.5 0"), S_OK);
  EXPECT_EQ(picker->GetColor(), (KEPVidColor{255, 128, 0, 255}));
  EXPECT_EQ(Inject(picker, KEPVidAction::Color, "0 0 0 0.5"), S_OK);
  EXPECT_EQ(picker->GetColor(), (KEPVidColor{0, 0, 0, 128}));
  struct Bad {
    const char* argument;
    const char* problem;
  } bad[] = {
      {"1 2 0", "\"2\" is outside 0..1"},    {"1 0", "is not a colour"},
      {"1 0 0 1 1", "more than four"},       {"red green blue", "\"red\" is not a number"},
      {"0 0 nan", "is not a finite number"}, {"", "is not a colour"},
  };
  for (const Bad& b : bad) {
    std::string error;
    EXPECT_EQ(Inject(picker, KEPVidAction::Color, b.argument, &error), E_INVALIDARG) << b.argument;
    EXPECT_TRUE(Contains(error, b.problem));
  }
  EXPECT_EQ(picker->GetColor(), (KEPVidColor{0, 0, 0, 128}));
}

TEST_F(ImmControls, ImageSelectorTakesOneChoiceAsOneChange) {
  Root root = MakeRoot();
  auto* selector = new KEPRbaImageDocImmSelector(root.Get(), "textureEditor", 0, 4);
  EXPECT_FALSE(selector->HasImage());
  selector->SetResolution(-1);
  selector->SetResolution(std::nan(""));
  EXPECT_EQ(selector->GetResolution(), 72.0);
  int modified = 0;
  Count(selector, KEPVidEvent::EditModify, &modified);
  EXPECT_EQ(
      Inject(selector, KEPVidAction::Choose, "image=\"my wood.png\" groups=bark,,rings dpi=150"),
      S_OK);
  EXPECT_EQ(modified, 1);
  EXPECT_EQ(selector->GetImage(), "my wood.png");
  EXPECT_EQ(selector->GetLayerGroups(), (std::vector<KEPString>{"bark", "rings"}));
  EXPECT_EQ(selector->GetResolution(), 150.0);
  EXPECT_EQ(Inject(selector, KEPVidAction::Choose, "dpi=150"), S_OK);
  EXPECT_EQ(modified, 1) << "the same choice changes nothing";

  struct Bad {
    const char* argument;
    const char* problem;
  } bad[] = {
      {"image=a.png dpi=0", "not positive"},   {"size=3", "\"size\" is not a choice"},
      {"dpi=2 dpi=3", "given twice"},          {"image=\"open", "not closed"},
      {"groups", "not of the form key=value"}, {"  ", "nothing to choose"},
  };
  for (const Bad& b : bad) {
    std::string error;
    EXPECT_EQ(Inject(selector, KEPVidAction::Choose, b.argument, &error), E_INVALIDARG)
        << b.argument;
    EXPECT_TRUE(Contains(error, b.problem));
  }
  EXPECT_EQ(selector->GetImage(), "my wood.png") << "a refused choice changes nothing";
  EXPECT_EQ(modified, 1);
}

TEST_F(ImmControls, PopupOpensHiddenAndForgetsADestroyedAnchor) {
  Root root = MakeRoot();
  auto* popup = new KEPVidCtlPopup(root.Get(), "popup");
  EXPECT_FALSE(popup->IsOpen());
  auto* anchor = new KEPVidCtlButton(root.Get(), "anchor");
  popup->SetAnchor(anchor);
  EXPECT_EQ(popup->GetAnchor(), anchor);
  EXPECT_EQ(Inject(popup, KEPVidAction::Open, ""), S_OK) << "a closed popup can be opened";
  EXPECT_TRUE(popup->IsVisible());
  EXPECT_EQ(Inject(popup, KEPVidAction::Close, ""), S_OK);
  std::string error;
  EXPECT_EQ(Inject(popup, KEPVidAction::Close, "", &error), E_INVALIDARG);
  EXPECT_TRUE(Contains(error, "it is invisible"));
  popup->SetOption(3, true);
  popup->SetOption(-1, true);
  EXPECT_TRUE(popup->GetOption(3));
  EXPECT_FALSE(popup->GetOption(0));
  EXPECT_FALSE(popup->GetOption(99));
  anchor->SetFather(nullptr);
  anchor->Release();
  EXPECT_EQ(popup->GetAnchor(), nullptr);
}

// --- What a person cannot do

struct Refusal {
  const char* name;
  KEPVidAction action;
  const char* argument;
  const char* problem;
};

TEST_F(ImmControls, InjectionRefusesWhatAPersonCannotDo) {
  const Refusal refusals[] = {
      {"wrong action", KEPVidAction::Press, "", "does not take the action 'press'"},
      {"trailing text", KEPVidAction::Set, "12abc", "\"12abc\" is not an integer"},
      {"real number", KEPVidAction::Set, "1.5", "is not an integer"},
      {"above int", KEPVidAction::Set, "2147483648", "outside the integer range"},
      {"below int", KEPVidAction::Set, "-2147483649", "outside the integer range"},
      {"nan", KEPVidAction::Set, "nan", "is not an integer"},
      {"empty", KEPVidAction::Set, "", "is not an integer"},
  };
  for (const Refusal& r : refusals) {
    SCOPED_TRACE(r.name);
    Root root = MakeRoot();
    auto* slider = new KEPVidCtlSlider(root.Get(), "scalarSlider");
    slider->SetValue(5);
    int changed = 0;
    Count(slider, KEPVidEvent::ValueChanged, &changed);
    std::string error;
    EXPECT_EQ(Inject(slider, r.action, r.argument, &error), E_INVALIDARG);
    EXPECT_TRUE(Contains(error, "KEPVidCtlSlider \"scalarSlider\": "));
    EXPECT_TRUE(Contains(error, r.problem));
    EXPECT_EQ(slider->GetValue(), 5);
    EXPECT_EQ(changed, 0);
  }
  // Plain widgets and labels take no action at all.
  Root root = MakeRoot();
  std::string error;
  EXPECT_EQ(Inject(root.Get(), KEPVidAction::Set, "1", &error), E_INVALIDARG);
  EXPECT_TRUE(Contains(error, "KEPVidLayGrid \"root\": does not take the action 'set'"));
  auto* label = new KEPVidCtlLabel(root.Get(), "");
  EXPECT_EQ(Inject(label, KEPVidAction::Type, "x", &error), E_INVALIDARG);
  EXPECT_TRUE(Contains(error, "KEPVidCtlLabel (unnamed)"));
}

TEST_F(ImmControls, InjectionRefusesWidgetsAPersonCannotReach) {
  struct Case {
    const char* name;
    void (*hide)(KEPVidWidget* group, KEPVidWidget* button);
    const char* problem;
  } cases[] = {
      {"insensitive", [](KEPVidWidget*, KEPVidWidget* b) { b->SetSensitivity(false); },
       "(it is insensitive)"},
      {"invisible", [](KEPVidWidget*, KEPVidWidget* b) { b->SetVisibility(false); },
       "(it is invisible)"},
      {"insensitive ancestor", [](KEPVidWidget* g, KEPVidWidget*) { g->SetSensitivity(false); },
       "(its ancestor KEPVidCtlExpander \"ParameterGroup0\" is insensitive)"},
      {"invisible ancestor", [](KEPVidWidget* g, KEPVidWidget*) { g->SetVisibility(false); },
       "(its ancestor KEPVidCtlExpander \"ParameterGroup0\" is invisible)"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Root root = MakeRoot();
    auto* group = new KEPVidCtlExpander(root.Get(), "ParameterGroup0");
    auto* layout = new KEPVidLayGrid(group, "ParameterGroup0Layout");
    auto* button = new KEPVidCtlButton(layout, "ParameterConnection0");
    int pressed = 0;
    Count(button, KEPVidEvent::Pressed, &pressed);
    c.hide(group, button);
    std::string error;
    EXPECT_EQ(Inject(button, KEPVidAction::Press, "", &error), E_INVALIDARG);
    EXPECT_TRUE(Contains(error, "KEPVidCtlButton \"ParameterConnection0\": cannot be reached"));
    EXPECT_TRUE(Contains(error, c.problem));
    EXPECT_EQ(pressed, 0);
  }
}

}  // namespace
