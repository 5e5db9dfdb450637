// The integer widget: its controls by kind, the slider's two regimes, the combo's lines and
// values, the "dpi" and "type" rules, the render lock, following the model; and the integer
// layout's switched builder at both software levels.
#include <chrono>
#include <cstdio>
#include <fstream>
#include <future>
#include <mutex>
#include <string>

#include <unistd.h>

#include "ImmWidgetTestSupport.h"
#include "KEPHostContext.h"
#include "KEPHostRecorder.h"
#include "KEPHostRenderingMaterial.h"
#include "KEPRdgRenderLock.h"
#include "KEPRecord.h"
#include "KEPRshParameterIntegerImmLayout.h"
#include "KEPRshParameterIntegerImmWidget.h"
#include "KEPRshUICtlParameterIntegral1.h"
#include "KEPVidCtlCheckBox.h"
#include "KEPVidCtlImageCombo.h"
#include "KEPVidCtlSpinBox.h"

namespace keptest {
namespace {

class IntegerWidgetTest : public ImmWidgetTest {
 protected:
  /// Integer "p" alone in a node of its own; `config` holds keys after the name.
  KEPHostParameter* IntParam(int value, const Keys& config) {
    Keys keys;
    for (const auto& [suffix, text] : config) keys.emplace_back("p" + suffix, text);
    return ParamOf(Node({{"p", Integer(value)}}, keys), "p");
  }
  KEPRshParameterIntegerImmWidget* IntWidget(KEPIRshParameter* parameter) {
    return new KEPRshParameterIntegerImmWidget(parameter, Root(), "ParameterWidget");
  }
  template <class Control>
  static Control* Child(const KEPVidWidget* w, const char* name) {
    return dynamic_cast<Control*>(w->FindNamedChild(name));
  }
  static int StoredInt(KEPIRshParameter* parameter) {
    int value = -999;
    parameter->GetIntegerValue(value);
    return value;
  }
};

TEST_F(IntegerWidgetTest, ControlsFollowTheKind) {
  // Kinds are lower-cased; only "slider" gets the slider pair ("wheel" is a spin box here).
  struct Row {
    const char* kind;  // null: no ".Widget"
    const char* control;
  };
  for (const Row& row :
       {Row{"combo", "integerCombo"}, Row{"COMBO", "integerCombo"}, Row{"check", "integerCheck"},
        Row{"slider", "integerSlider"}, Row{"wheel", "integerSpinner"},
        Row{"knob", "integerSpinner"}, Row{nullptr, "integerSpinner"}}) {
    SCOPED_TRACE(row.kind ? row.kind : "(none)");
    Keys config = {{".Min", "0"}, {".Max", "4"}};
    if (row.kind) config.emplace_back(".Widget", row.kind);
    const auto* w = IntWidget(IntParam(1, config));
    int found = 0;
    for (const char* name :
         {"integerCombo", "integerCheck", "integerSlider", "integerSpinner", "integerEditor"})
      if (w->FindNamedChild(name)) ++found;
    EXPECT_NE(w->FindNamedChild(row.control), nullptr);
    EXPECT_EQ(found, std::string(row.control) == "integerSlider" ? 2 : 1);
    EXPECT_NE(w->FindNamedChild("IntegerLayout"), nullptr);
  }
  // The check box sits on the widget itself, not in the grid.
  const auto* check = IntWidget(IntParam(3, {{".Widget", "check"}}));
  EXPECT_EQ(check->FindNamedChild("integerCheck")->GetFather(), check);
  EXPECT_TRUE(Child<KEPVidCtlCheckBox>(check, "integerCheck")->IsChecked());
  // Without a parameter the widget stays empty.
  const auto* empty = IntWidget(nullptr);
  EXPECT_EQ(empty->FindNamedChild("IntegerLayout"), nullptr);
}

TEST_F(IntegerWidgetTest, SliderRegimes) {
  struct Row {
    const char* min;
    const char* max;
    int value;
    bool whole;
    int sliderMin, sliderMax, single, page, tick, position;
  };
  // Below a maximum of 2 the slider counts hundredths, its minimum left unscaled.
  for (const Row& row : {Row{"0", "1", 1, false, 0, 100, 1, 10, 10, 100},
                         Row{"0", "255", 128, true, 0, 255, 2, 25, 25, 128},
                         Row{"-1", "1", 0, false, -1, 100, 2, 20, 20, 0},
                         Row{"2", "30", 20, true, 2, 30, 0, 2, 2, 20}}) {
    SCOPED_TRACE(std::string(row.min) + ".." + row.max);
    const auto* w = IntWidget(
        IntParam(row.value, {{".Widget", "slider"}, {".Min", row.min}, {".Max", row.max}}));
    const auto* slider = Child<KEPVidCtlSlider>(w, "integerSlider");
    ASSERT_NE(slider, nullptr);
    EXPECT_EQ(w->IsWholeUnit(), row.whole);
    EXPECT_EQ(slider->GetMinimum(), row.sliderMin);
    EXPECT_EQ(slider->GetMaximum(), row.sliderMax);
    EXPECT_EQ(slider->GetSingleStep(), row.single);
    EXPECT_EQ(slider->GetPageStep(), row.page);
    EXPECT_EQ(slider->GetTickInterval(), row.tick);
    EXPECT_EQ(slider->GetValue(), row.position);
    EXPECT_DOUBLE_EQ(Child<KEPVidCtlEditor>(w, "integerEditor")->GetValue(), row.value);
  }
}

TEST_F(IntegerWidgetTest, SliderAndEditorWrite) {
  KEPHostParameter* p = IntParam(1, {{".Widget", "slider"}, {".Min", "0"}, {".Max", "1"}});
  const auto* w = IntWidget(p);
  // Hundredths divide toward zero: 57 is 0.
  Act(Child<KEPVidCtlSlider>(w, "integerSlider"), KEPVidAction::Set, "57");
  EXPECT_EQ(StoredInt(p), 0);
  EXPECT_DOUBLE_EQ(Child<KEPVidCtlEditor>(w, "integerEditor")->GetValue(), 0.0);
  // The editor writes what is typed, unchecked, and moves the slider.
  Act(Child<KEPVidCtlEditor>(w, "integerEditor"), KEPVidAction::Type, "1");
  EXPECT_EQ(StoredInt(p), 1);
  EXPECT_EQ(Child<KEPVidCtlSlider>(w, "integerSlider")->GetValue(), 100);
  Act(Child<KEPVidCtlEditor>(w, "integerEditor"), KEPVidAction::Type, "7");
  EXPECT_EQ(StoredInt(p), 7);
}

TEST_F(IntegerWidgetTest, ComboLinesAndValues) {
  // -2..2 by 2: three lines, labelled for -2, -1 and 0 (lines step by one).
  KEPHostParameter* p = IntParam(-1, {{".Widget", "combo"},
                                      {".Min", "-2"},
                                      {".Max", "2"},
                                      {".Step", "2"},
                                      {".Enum-2", "minus two"},
                                      {".Enum-1", "minus one"},
                                      {".Enum0", "zero"},
                                      {".Enum1", "one"}});
  const auto* w = IntWidget(p);
  auto* combo = Child<KEPVidCtlImageCombo>(w, "integerCombo");
  ASSERT_NE(combo, nullptr);
  ASSERT_EQ(combo->GetItemCount(), 3);
  EXPECT_EQ(combo->GetItemLabel(0).ToUTF8(), "minus two");
  EXPECT_EQ(combo->GetItemLabel(2).ToUTF8(), "zero");
  EXPECT_EQ(w->GetComboFirstValue(), -2);
  // -1 is the index of no enumeration entry in range: the value itself is taken as the index,
  // which selects nothing.
  EXPECT_EQ(combo->GetSelect(), -1);
  // Line 1 has a label but no value ("zero" is no number): first value + index is written.
  Act(combo, KEPVidAction::Select, "1");
  EXPECT_EQ(StoredInt(p), -1);
}

TEST_F(IntegerWidgetTest, ComboTakesEnumerationValuesAndIndices) {
  KEPHostParameter* p = IntParam(7, {{".Widget", "combo"},
                                     {".Min", "0"},
                                     {".Max", "2"},
                                     {".Enum0", "low"},
                                     {".EnumVal0", "3"},
                                     {".Enum1", "high"},
                                     {".EnumVal1", "7"},
                                     {".Enum2", "2"}});
  const auto* w = IntWidget(p);
  auto* combo = Child<KEPVidCtlImageCombo>(w, "integerCombo");
  EXPECT_EQ(combo->GetSelect(), 1);  // the index of value 7
  Act(combo, KEPVidAction::Select, "0");
  EXPECT_EQ(StoredInt(p), 3);
  Act(combo, KEPVidAction::Select, "2");  // ".Enum2" read as a number
  EXPECT_EQ(StoredInt(p), 2);
  // A write from elsewhere selects the line of the new value.
  p->SetIntegerValue(7);
  EXPECT_EQ(combo->GetSelect(), 1);

  // Enumerations of shader resources.
  KEPHostShaderNode* node = Node({{"q", Integer(20)}});
  node->SetResourcesOffered(true);
  for (const auto& [key, text] : Keys{{"widget", "combo"},
                                      {"min", "0"},
                                      {"max", "1"},
                                      {"enum0", "Ten"},
                                      {"enum1", "Twenty"},
                                      {"enumvalue0", "10"},
                                      {"enumvalue1", "20"},
                                      {"enumindex10", "0"},
                                      {"enumindex20", "1"}})
    node->SetResource("q", key, text);
  KEPHostParameter* q = ParamOf(node, "q");
  auto* resourceCombo = Child<KEPVidCtlImageCombo>(IntWidget(q), "integerCombo");
  ASSERT_EQ(resourceCombo->GetItemCount(), 2);
  EXPECT_EQ(resourceCombo->GetItemLabel(1).ToUTF8(), "Twenty");
  EXPECT_EQ(resourceCombo->GetSelect(), 1);
  Act(resourceCombo, KEPVidAction::Select, "0");
  EXPECT_EQ(StoredInt(q), 10);
}

TEST_F(IntegerWidgetTest, CheckAndSpinBoxWrite) {
  KEPHostParameter* c = IntParam(0, {{".Widget", "check"}});
  Act(IntWidget(c)->FindNamedChild("integerCheck"), KEPVidAction::Toggle, "");
  EXPECT_EQ(StoredInt(c), 1);
  KEPHostParameter* s = IntParam(3, {{".Min", "-5"}, {".Max", "50"}, {".Step", "5"}});
  auto* spinner = Child<KEPVidCtlSpinBox>(IntWidget(s), "integerSpinner");
  EXPECT_EQ(spinner->GetMinimum(), -5);
  EXPECT_EQ(spinner->GetMaximum(), 50);
  EXPECT_EQ(spinner->GetSingleStep(), 5);
  EXPECT_EQ(spinner->GetMaximumTextLength(), 5);
  Act(spinner, KEPVidAction::Set, "-4");
  EXPECT_EQ(StoredInt(s), -4);
  // Without a range the spin box offers -100000..100000.
  auto* wide = Child<KEPVidCtlSpinBox>(IntWidget(IntParam(3, {})), "integerSpinner");
  EXPECT_EQ(wide->GetMinimum(), -100000);
  EXPECT_EQ(wide->GetMaximum(), 100000);
}

TEST_F(IntegerWidgetTest, DpiIsEditableOnlyWithAnSvgMap) {
  for (const auto& [image, editable] :
       {std::pair("maps/plan.SVG", true), std::pair("maps/plan.png", false)}) {
    SCOPED_TRACE(image);
    KEPHostShaderNode* node =
        Node({{"dpi", Integer(300)}, {"map", Texture(image)}}, {{"dpi.Widget", "slider"}});
    const auto* w = IntWidget(ParamOf(node, "dpi"));
    EXPECT_EQ(w->FindNamedChild("integerSlider")->IsSensitive(), editable);
    EXPECT_EQ(w->FindNamedChild("integerEditor")->IsSensitive(), editable);
  }
}

TEST_F(IntegerWidgetTest, TypeGoesToTheMaterialBeforeTheWrite) {
  KEPHostShaderNode* node = Node({{"type", Integer(5)}, {"other", Integer(0)}},
                                 {{"type.Widget", "spinner"}, {"other.Widget", "spinner"}});
  KEPHostParameter* type = ParamOf(node, "type");
  std::vector<std::size_t> handedBeforeWrite;
  const auto material = [&] {
    KEPBaseUnknown* father = nullptr;
    node->GetFather(father);
    const auto document = KEP_var<KEPBaseUnknown>::Adopt(father);
    auto* owner = dynamic_cast<KEPHostShaderDocument*>(document.Get());
    return owner ? owner->FindRenderingMaterial(node->Id()) : nullptr;
  };
  const int token =
      KEPRshModelEvents::AddParameterObserver([&](KEPIRshParameter*, KEPRshParameterChangeKind) {
        handedBeforeWrite.push_back(material() ? material()->Types().size() : 0);
      });
  Act(IntWidget(type)->FindNamedChild("integerSpinner"), KEPVidAction::Set, "3");
  Act(IntWidget(ParamOf(node, "other"))->FindNamedChild("integerSpinner"), KEPVidAction::Set, "3");
  KEPRshModelEvents::RemoveObserver(token);
  ASSERT_NE(material(), nullptr);
  EXPECT_EQ(material()->Types(), std::vector<int>{3});  // only "type" is handed over
  EXPECT_EQ(handedBeforeWrite, (std::vector<std::size_t>{1, 1}));
  EXPECT_EQ(StoredInt(type), 3);

  // A slider pair hands over what the slider picks; typing in its editor writes the value only.
  KEPHostShaderNode* sliding = Node(
      {{"type", Integer(1)}}, {{"type.Widget", "slider"}, {"type.Min", "0"}, {"type.Max", "10"}});
  const auto handed = [&] {
    KEPBaseUnknown* father = nullptr;
    sliding->GetFather(father);
    const auto document = KEP_var<KEPBaseUnknown>::Adopt(father);
    auto* owner = dynamic_cast<KEPHostShaderDocument*>(document.Get());
    auto* found = owner ? owner->FindRenderingMaterial(sliding->Id()) : nullptr;
    return found ? found->Types() : std::vector<int>{};
  };
  KEPVidWidget* pair = IntWidget(ParamOf(sliding, "type"));
  Act(pair->FindNamedChild("integerEditor"), KEPVidAction::Type, "7");
  EXPECT_EQ(StoredInt(ParamOf(sliding, "type")), 7);
  EXPECT_TRUE(handed().empty());
  Act(pair->FindNamedChild("integerSlider"), KEPVidAction::Set, "4");
  EXPECT_EQ(handed(), std::vector<int>{4});
}

TEST_F(IntegerWidgetTest, EveryWriteHoldsTheRenderLock) {
  const auto renderThreadCanLock = [] {
    return std::async(std::launch::async,
                      [] {
                        const bool got = KEPRdgRenderLock::Mutex().try_lock();
                        if (got) KEPRdgRenderLock::Mutex().unlock();
                        return got;
                      })
        .get();
  };
  const auto* slider =
      IntWidget(IntParam(0, {{".Widget", "slider"}, {".Min", "0"}, {".Max", "9"}}));
  const auto* combo = IntWidget(IntParam(0, {{".Widget", "combo"}, {".Min", "0"}, {".Max", "3"}}));
  const auto* check = IntWidget(IntParam(0, {{".Widget", "check"}}));
  const auto* spin = IntWidget(IntParam(0, {}));
  std::vector<bool> lockedOut;
  const int token =
      KEPRshModelEvents::AddParameterObserver([&](KEPIRshParameter*, KEPRshParameterChangeKind) {
        lockedOut.push_back(!renderThreadCanLock());
      });
  Act(slider->FindNamedChild("integerSlider"), KEPVidAction::Set, "4");
  Act(slider->FindNamedChild("integerEditor"), KEPVidAction::Type, "5");
  Act(combo->FindNamedChild("integerCombo"), KEPVidAction::Select, "2");
  Act(check->FindNamedChild("integerCheck"), KEPVidAction::Toggle, "");
  Act(spin->FindNamedChild("integerSpinner"), KEPVidAction::Set, "6");
  KEPRshModelEvents::RemoveObserver(token);
  EXPECT_EQ(lockedOut, std::vector<bool>(5, true));

  // A render thread that holds the lock keeps the write waiting until it lets go.
  KEPHostParameter* p = IntParam(0, {});
  auto* spinner = IntWidget(p)->FindNamedChild("integerSpinner");
  std::promise<void> holding;
  std::promise<void> release;
  auto renderer = std::async(std::launch::async, [&] {
    const std::lock_guard lock(KEPRdgRenderLock::Mutex());
    holding.set_value();
    release.get_future().wait();
    return StoredInt(p);
  });
  holding.get_future().wait();
  auto writer = std::async(std::launch::async, [&] { Act(spinner, KEPVidAction::Set, "8"); });
  EXPECT_EQ(writer.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
  release.set_value();
  EXPECT_EQ(renderer.get(), 0);  // the renderer saw no write while it held the lock
  writer.get();
  EXPECT_EQ(StoredInt(p), 8);
}

TEST_F(IntegerWidgetTest, TwoEditorsOfOneNodeStayInStepWithoutEchoWrites) {
  KEPHostParameter* p = IntParam(2, {{".Widget", "slider"}, {".Min", "0"}, {".Max", "10"}});
  const auto* first = IntWidget(p);
  const auto* second = IntWidget(p);
  int writes = 0;
  const int token = KEPRshModelEvents::AddParameterObserver(
      [&](KEPIRshParameter* changed, KEPRshParameterChangeKind) { writes += changed == p; });
  Act(first->FindNamedChild("integerSlider"), KEPVidAction::Set, "6");
  KEPRshModelEvents::RemoveObserver(token);
  EXPECT_EQ(writes, 1);
  EXPECT_EQ(Child<KEPVidCtlSlider>(second, "integerSlider")->GetValue(), 6);
  EXPECT_DOUBLE_EQ(Child<KEPVidCtlEditor>(second, "integerEditor")->GetValue(), 6.0);
}

TEST_F(IntegerWidgetTest, WidgetOutlivingItsParameterDoesNothing) {
  const auto* w = IntWidget(IntParam(2, {{".Widget", "slider"}, {".Min", "0"}, {".Max", "10"}}));
  DropModel();
  Act(w->FindNamedChild("integerSlider"), KEPVidAction::Set, "6");
  Act(w->FindNamedChild("integerEditor"), KEPVidAction::Type, "3");
  // Nothing to write into, and nothing to show but what the person did.
  EXPECT_EQ(Child<KEPVidCtlSlider>(w, "integerSlider")->GetValue(), 6);
}

// --- The switched builder

class IntegerBuilderTest : public IntegerWidgetTest {
 protected:
  void TearDown() override {
    KEPHostRecorder::Stop();
    KEPRshParameterIntegerImmLayout::ForgetProcessCache();
    std::remove(record_.c_str());
    IntegerWidgetTest::TearDown();
  }
  /// Replays a record that holds `levels` (JSON members), and forgets the level read so far.
  void Replay(const std::string& levels) {
    std::ofstream(record_) << "{ \"softwareLevels\": { " << levels << " } }\n";
    ASSERT_EQ(KEPHostRecorder::StartReplay(record_), S_OK);
    KEPRshParameterIntegerImmLayout::ForgetProcessCache();
  }
  static HRESULT Build(KEPIRshParameter* parameter, KEPVidWidget* parent, KEPVidWidget*& widget) {
    widget = reinterpret_cast<KEPVidWidget*>(&widget);  // a non-null sentinel
    return KEPQueryVar<KEPIRshParameterImmLayout>(parameter)->BuildWidget(parent, "Row1", widget);
  }
  // One file per test process: the tests of this fixture run side by side under ctest.
  std::string record_ =
      ::testing::TempDir() + "integer-builder-record-" + std::to_string(::getpid()) + ".json";
};

TEST_F(IntegerBuilderTest, BuiltInLevelBuildsTheIntrospectableControl) {
  EXPECT_EQ(KEPRecord::GetBuiltInLevel("KEPRmaUIParameterConfiguration"), 1);
  KEPHostParameter* p = IntParam(1, {{".Widget", "check"}});
  KEPVidWidget* widget = nullptr;
  TraceCapture capture;
  // With or without a parent: the control is neither named nor fathered by the builder.
  for (KEPVidWidget* parent : {Root(), static_cast<KEPVidWidget*>(nullptr)}) {
    ASSERT_EQ(Build(p, parent, widget), S_OK);
    const auto control = KEP_var<KEPVidWidget>::Adopt(widget);
    auto* integral = dynamic_cast<KEPRshUICtlParameterIntegral1*>(widget);
    ASSERT_NE(integral, nullptr);
    EXPECT_EQ(integral->GetParameter().Get(), static_cast<KEPIRshParameter*>(p));
    EXPECT_EQ(widget->GetFather(), nullptr);
    EXPECT_EQ(widget->GetName(), "");
  }
  for (const KEPTraceEntry& e : capture.Entries()) EXPECT_NE(e.level, KEPTraceLevel::Assertion);
}

TEST_F(IntegerBuilderTest, OtherLevelsBuildTheImmersiveWidget) {
  Replay("");  // nothing recorded: level 0
  KEPHostParameter* p = IntParam(1, {{".Widget", "check"}});
  KEPVidWidget* widget = nullptr;
  ASSERT_EQ(Build(p, Root(), widget), S_OK);
  ASSERT_NE(dynamic_cast<KEPRshParameterIntegerImmWidget*>(widget), nullptr);
  EXPECT_EQ(widget->GetFather(), Root());
  EXPECT_EQ(widget->GetName(), "Row1");
  EXPECT_EQ(Build(p, nullptr, widget), E_FAIL);
  EXPECT_EQ(widget, nullptr);

  // The level is read once: a record changed later has no effect until the cache is forgotten.
  ASSERT_EQ(KEPHostRecorder::StartReplay(record_), S_OK);
  std::ofstream(record_) << R"({ "softwareLevels": { "KEPRmaUIParameterConfiguration": 1 } })";
  ASSERT_EQ(KEPHostRecorder::StartReplay(record_), S_OK);
  ASSERT_EQ(Build(p, Root(), widget), S_OK);
  EXPECT_NE(dynamic_cast<KEPRshParameterIntegerImmWidget*>(widget), nullptr);
  KEPRunProcessResetHooks();
  ASSERT_EQ(Build(p, Root(), widget), S_OK);
  const auto control = KEP_var<KEPVidWidget>::Adopt(widget);
  EXPECT_NE(dynamic_cast<KEPRshUICtlParameterIntegral1*>(widget), nullptr);
}

TEST_F(IntegerBuilderTest, BehaviourWithoutParameterFailsWithItsAssertion) {
  // A behaviour created on its own extends nothing.
  const auto layout =
      KEP_var<KEPBaseUnknown>::Adopt(KEPRshParameterIntegerImmLayout::CreateItself());
  auto* behaviour = dynamic_cast<KEPRshParameterIntegerImmLayout*>(layout.Get());
  TraceCapture capture;
  KEPVidWidget* widget = Root();
  EXPECT_EQ(behaviour->BuildWidget(Root(), "Row1", widget), E_NOINTERFACE);
  EXPECT_EQ(widget, nullptr);
  ASSERT_EQ(capture.Entries().size(), 1u);
  const KEPTraceEntry& entry = capture.Entries()[0];
  EXPECT_EQ(entry.text, "AssertionFailed:hParameter && \"KEPIRshParameter not available\"");
  EXPECT_EQ(entry.file, "RenderingShader/KEPRshView.m/src/KEPRshParameterIntegerImmLayout");
  EXPECT_EQ(entry.line, 46);
  // At another level it builds an empty widget.
  Replay("\"KEPRmaUIParameterConfiguration\": 2");
  ASSERT_EQ(behaviour->BuildWidget(Root(), "Row1", widget), S_OK);
  EXPECT_EQ(widget->FindNamedChild("IntegerLayout"), nullptr);
}

}  // namespace
}  // namespace keptest
