// Editors of one node stay in step: a write made anywhere else (the model, a second classic
// editor, the immersive editor) shows in every classic frame of the parameter, and showing it
// never writes the parameter again.
#include <functional>

#include "ClassicTestSupport.h"
#include "KEPDlgCheckButton.h"
#include "KEPDlgCombo.h"
#include "KEPDlgSpinner.h"
#include "KEPHostConfiguration.h"
#include "KEPIRshLightProfileParameter.h"
#include "KEPIRshShaderEditorImmLayout.h"
#include "KEPRbaScalarSlider.h"
#include "KEPRshModelEvents.h"
#include "KEPRshParameterBooleanFrame.h"
#include "KEPRshParameterColorFrame.h"
#include "KEPRshParameterIntegerFrame.h"
#include "KEPRshParameterLightProfileFrame.h"
#include "KEPRshParameterScalarFrame.h"
#include "KEPRshParameterVectorFrame.h"
#include "KEPRshScalarBlackbodySlider.h"
#include "KEPVidCtlCheckBox.h"
#include "KEPVidCtlEditor.h"
#include "KEPVidLayGrid.h"
#include "KEPVidTree.h"

namespace keptest {
namespace {

/// The value writes of parameters made while alive.
struct WriteCount {
  WriteCount()
      : token(KEPRshModelEvents::AddParameterObserver(
            [this](KEPIRshParameter*, KEPRshParameterChangeKind kind) {
              if (kind == KEPRshParameterChangeKind::Value) ++count;
            })) {}
  ~WriteCount() { KEPRshModelEvents::RemoveObserver(token); }
  WriteCount(const WriteCount&) = delete;
  WriteCount& operator=(const WriteCount&) = delete;
  int count = 0;
  int token;
};

class EditorsInStepTest : public ClassicTest {
 protected:
  // Positions of the node's parameters (from 1, as the frame rows name them).
  enum { kSlider = 1, kLength, kTemperature, kSwitch, kChoice, kDirection, kColour, kProfile };

  void SetUp() override {
    ClassicTest::SetUp();
    KEPHostValue profile;
    profile.type = KEPRmaType::LightProfile;
    profile.lightProfile = "a.ies";
    Type type("step");
    type.Param("s", Scalar(0.5f))
        .Param("len", Scalar(25.0f))
        .Param("temp", Scalar(5200.0f))
        .Param("on", Boolean(false))
        .Param("count", Integer(2))
        .Param("dir", Vector({1.0f, 2.0f, 3.0f}))
        .Param("col", Color(0.1f, 0.2f, 0.3f))
        .Param("prof", profile);
    TheWorld().Add(type);
    Config("step", {{"s.Widget", "slider"},
                    {"s.Min", "0"},
                    {"s.Max", "10"},
                    {"len.Widget", "spinner"},
                    {"len.Unit", "cm"},
                    {"len.Magnitude", "length"},
                    {"len.Min", "0"},
                    {"len.Max", "1000"},
                    {"temp.Widget", "blackbody"},
                    {"temp.Min", "1000"},
                    {"temp.Max", "12000"},
                    {"temp.Step", "100"},
                    {"count.Widget", "combo"},
                    {"count.Min", "0"},
                    {"count.Max", "3"},
                    {"dir.Widget", "sliderx3"},
                    {"dir.Min", "-10"},
                    {"dir.Max", "10"}});
    node_ = TheWorld().Node("step");
  }

  KEPHostShaderNode* Node() const { return node_; }
  KEPHostParameter* P(const char* name) { return TheWorld().Param(node_, name); }

  template <class Frame>
  static Frame* FrameOf(KEPRshShaderRootFrame* root, int position) {
    auto* frame = dynamic_cast<Frame*>(
        root->GetShaderFrame()->FindNamedChild("parameterDialog" + std::to_string(position)));
    EXPECT_NE(frame, nullptr) << position;
    return frame;
  }

  /// What each classic frame of the node shows, one text per parameter.
  static std::vector<std::string> Shown(KEPRshShaderRootFrame* root) {
    const auto number = [](double v) { return std::to_string(v); };
    std::vector<std::string> shown;
    shown.push_back(
        number(FrameOf<KEPRshParameterScalarFrame>(root, kSlider)->GetSlider()->GetValue()));
    shown.push_back(
        number(FrameOf<KEPRshParameterScalarFrame>(root, kLength)->GetSpinner()->GetValue()));
    shown.push_back(number(
        FrameOf<KEPRshParameterScalarFrame>(root, kTemperature)->GetBlackbodySlider()->GetValue()));
    shown.push_back(FrameOf<KEPRshParameterBooleanFrame>(root, kSwitch)->GetCheck()->GetState() ==
                            KEPDlgCheck
                        ? "on"
                        : "off");
    shown.push_back(std::to_string(
        FrameOf<KEPRshParameterIntegerFrame>(root, kChoice)->GetCombo()->GetSelect()));
    auto* vector = FrameOf<KEPRshParameterVectorFrame>(root, kDirection);
    std::string components;
    for (int i = 0; i < 3; ++i) components += number(vector->GetSlider(i)->GetValue()) + " ";
    shown.push_back(components);
    auto* colour = FrameOf<KEPRshParameterColorFrame>(root, kColour);
    std::string channels;
    for (int i = 0; i < 3; ++i) channels += number(colour->GetSpinner(i)->GetValue()) + " ";
    shown.push_back(channels);
    shown.push_back(
        FrameOf<KEPRshParameterLightProfileFrame>(root, kProfile)->GetEditor()->GetText().ToUTF8());
    return shown;
  }

  static void Act(KEPVidWidget* root, const std::string& path, KEPVidAction action,
                  const std::string& argument = "") {
    std::string error;
    ASSERT_EQ(KEPVidInject(root, path, action, argument, error), S_OK) << path << ": " << error;
  }

 private:
  KEPHostShaderNode* node_ = nullptr;
};

TEST_F(EditorsInStepTest, EveryClassicFrameShowsAWriteOfTheModelWithoutWritingBack) {
  KEPRshShaderRootFrame* first = Root(Node());
  KEPRshShaderRootFrame* second = new KEPRshShaderRootFrame(Parent(), "second", 0, Node());
  const std::vector<std::string> before = Shown(first);
  EXPECT_EQ(Shown(second), before);

  struct Case {
    const char* what;
    std::function<void()> write;
    std::size_t index;
    std::string shown;
  };
  const float xyzw[4] = {4.0f, -5.0f, 6.0f, 0.0f};
  const Case cases[] = {
      {"slider", [&] { P("s")->SetScalarValue(7.5f); }, 0, std::to_string(7.5)},
      // 40 mm is shown as 0.04 m, which the toolkit shows in centimetres.
      {"length", [&] { P("len")->SetScalarValue(40.0f); }, 1, std::to_string(0.04)},
      {"temperature", [&] { P("temp")->SetScalarValue(3300.0f); }, 2, std::to_string(3300.0)},
      {"boolean", [&] { P("on")->SetBooleanValue(1); }, 3, "on"},
      {"combo", [&] { P("count")->SetIntegerValue(3); }, 4, "3"},
      {"vector", [&] { P("dir")->SetVectorValue(xyzw); }, 5,
       std::to_string(4.0) + " " + std::to_string(-5.0) + " " + std::to_string(6.0) + " "},
      {"colour", [&] { P("col")->SetColorValue(0.5f, 0.25f, 1.0f, 1.0f); }, 6,
       std::to_string(0.5) + " " + std::to_string(0.25) + " " + std::to_string(1.0) + " "},
      {"profile",
       [&] { KEPQueryVar<KEPIRshLightProfileParameter>(P("prof"))->SetLightProfile("b.ies"); }, 7,
       "b.ies"},
  };
  std::vector<std::string> expected = before;
  for (const Case& c : cases) {
    WriteCount writes;
    c.write();
    EXPECT_EQ(writes.count, 1) << c.what;  // the model's own write, and nothing from the frames
    expected[c.index] = c.shown;
    EXPECT_EQ(Shown(first), expected) << c.what;
    EXPECT_EQ(Shown(second), expected) << c.what;
  }
}

TEST_F(EditorsInStepTest, APersonsEditInOneClassicEditorShowsInTheOther) {
  KEPRshShaderRootFrame* first = Root(Node());
  KEPRshShaderRootFrame* second = new KEPRshShaderRootFrame(Parent(), "second", 0, Node());
  struct Case {
    std::string path;
    KEPVidAction action;
    std::string argument;
  };
  const Case cases[] = {
      {"parameterDialog1/scalarSlider", KEPVidAction::Set, "2.5"},
      {"parameterDialog2/scalarSpinner", KEPVidAction::Set, "7"},
      {"parameterDialog3/scalarBlackbodySliderSpinner", KEPVidAction::Set, "4500"},
      {"parameterDialog4/booleanCheck", KEPVidAction::Toggle, "on"},
      {"parameterDialog5/integerCombo", KEPVidAction::Select, "1"},
      {"parameterDialog6/scalarSlider[1]", KEPVidAction::Set, "-3"},
      {"parameterDialog7/greenSpinner", KEPVidAction::Set, "0.75"},
      {"parameterDialog8/lightProfileEditor", KEPVidAction::Type, "c.ies"},
  };
  for (const Case& c : cases) {
    WriteCount writes;
    Act(first, c.path, c.action, c.argument);
    EXPECT_EQ(writes.count, 1) << c.path;
    EXPECT_EQ(Shown(second), Shown(first)) << c.path;
  }
  // What the second editor shows is the model's value: 7 cm is 70 mm.
  float length = 0.0f;
  P("len")->GetScalarValue(length);
  EXPECT_FLOAT_EQ(length, 70.0f);
}

TEST_F(EditorsInStepTest, ClassicAndImmersiveEditorsOfOneNodeStayInStep) {
  KEPRshShaderRootFrame* classic = Root(Node());
  const auto layout =
      KEPQueryVar<KEPIRshShaderEditorImmLayout>(static_cast<KEPIRshShader*>(Node()));
  ASSERT_TRUE(layout);
  const auto grid = KEP_var<KEPVidLayGrid>::Adopt(new KEPVidLayGrid(nullptr, "immersiveRoot"));
  KEPVidWidget* immersive = nullptr;
  ASSERT_EQ(layout->BuildEditor(grid.Get(), "ShaderEditor", false, immersive), S_OK);

  {
    WriteCount writes;
    Act(immersive, "ParameterWidget0/scalarEditor", KEPVidAction::Type, "4");
    EXPECT_EQ(writes.count, 1);
    EXPECT_EQ(FrameOf<KEPRshParameterScalarFrame>(classic, kSlider)->GetSlider()->GetValue(), 4.0);
  }
  {
    WriteCount writes;
    Act(immersive, "ParameterWidget3/booleanCheck", KEPVidAction::Toggle, "on");
    EXPECT_EQ(writes.count, 1);
    EXPECT_EQ(FrameOf<KEPRshParameterBooleanFrame>(classic, kSwitch)->GetCheck()->GetState(),
              KEPDlgCheck);
  }
  {
    WriteCount writes;
    Act(classic, "parameterDialog4/booleanCheck", KEPVidAction::Toggle, "off");
    EXPECT_EQ(writes.count, 1);
    std::string error;
    auto* check = dynamic_cast<KEPVidCtlCheckBox*>(
        KEPVidFindByPath(immersive, "ParameterWidget3/booleanCheck", error));
    ASSERT_NE(check, nullptr) << error;
    EXPECT_FALSE(check->IsChecked());
  }
  {
    WriteCount writes;
    Act(classic, "parameterDialog1/scalarSlider", KEPVidAction::Set, "6");
    EXPECT_EQ(writes.count, 1);
    std::string error;
    auto* editor = dynamic_cast<KEPVidCtlEditor*>(
        KEPVidFindByPath(immersive, "ParameterWidget0/scalarEditor", error));
    ASSERT_NE(editor, nullptr) << error;
    EXPECT_DOUBLE_EQ(editor->GetValue(), 6.0);
  }
}

}  // namespace
}  // namespace keptest
