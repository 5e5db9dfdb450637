// Building a parameter's classic frame through its behaviour: the status codes, the frame class
// of every type, the style and name it is made with, and the traces of its life.
#include <algorithm>

#include "FramesTestSupport.h"
#include "KEPDlgLabel.h"
#include "KEPDlgSpinner.h"
#include "KEPRshParameterBooleanFrame.h"
#include "KEPRshParameterColorFrame.h"
#include "KEPRshParameterIntegerFrame.h"
#include "KEPRshParameterLightProfileFrame.h"
#include "KEPRshParameterScalarDialog.h"
#include "KEPRshParameterScalarFrame.h"
#include "KEPRshParameterShaderFrame.h"
#include "KEPRshParameterTextureFrame.h"
#include "KEPRshParameterVectorFrame.h"
#include "KEPRshSetOKNotif.h"

namespace keptest {
namespace {

using FrameBuildingTest = FrameTest;

KEPHostValue LightProfile(const std::string& path = "") {
  KEPHostValue value;
  value.type = KEPRmaType::LightProfile;
  value.lightProfile = path;
  return value;
}

TEST_F(FrameBuildingTest, EachTypeBuildsItsFrameWithTheFrameStyleAndName) {
  struct Row {
    KEPHostValue value;
    const char* frameClass;
  } const rows[] = {
      {KEPHostValue::Boolean(true), "KEPRshParameterBooleanFrame"},
      {KEPHostValue::Integer(3), "KEPRshParameterIntegerFrame"},
      {KEPHostValue::Scalar(0.5f), "KEPRshParameterScalarFrame"},
      {KEPHostValue::Color(1, 0, 0), "KEPRshParameterColorFrame"},
      {KEPHostValue::Vector({1, 2, 3}), "KEPRshParameterVectorFrame"},
      {KEPHostValue::Texture(nullptr), "KEPRshParameterTextureFrame"},
      {LightProfile(), "KEPRshParameterLightProfileFrame"},
      {KEPHostValue::Void(), "KEPRshParameterShaderFrame"},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.frameClass);
    KEPHostParameter* p = Param(r.value);
    KEPDialog* frame = nullptr;
    ASSERT_EQ(KEPQueryVar<KEPIRshParameterDialog>(p)->BuildFrame(Root(), "row7", &frame), S_OK);
    ASSERT_NE(frame, nullptr);
    EXPECT_STREQ(frame->GetMetaObject()->Name(), r.frameClass);
    EXPECT_EQ(frame->GetStyle(), 0xc0000);
    EXPECT_EQ(frame->GetName(), "row7");
    EXPECT_EQ(frame->GetFather(), Root());
  }
}

TEST_F(FrameBuildingTest, MissingArgumentsOrParameterFailGenerically) {
  KEPHostParameter* p = Param(KEPHostValue::Scalar(1.0f));
  const auto behaviour = KEPQueryVar<KEPIRshParameterDialog>(p);
  KEPDialog* frame = Root();  // a failure leaves it as it was
  EXPECT_EQ(behaviour->BuildFrame(nullptr, "f", &frame), static_cast<HRESULT>(0x80004005));
  EXPECT_EQ(behaviour->BuildFrame(Root(), "f", nullptr), static_cast<HRESULT>(0x80004005));
  // A behaviour that extends nothing has no parameter to edit.
  const auto detached = KEP_var<KEPBaseUnknown>::Adopt(KEPRshParameterScalarDialog::CreateItself());
  EXPECT_EQ(KEPQueryVar<KEPIRshParameterDialog>(detached.Get())->BuildFrame(Root(), "f", &frame),
            static_cast<HRESULT>(0x80004005));
  EXPECT_EQ(frame, Root());
  EXPECT_EQ(Root()->GetChildCount(), 0u);
}

TEST_F(FrameBuildingTest, ConnectionOnlyFrameNamesTheConnectedNodeAndFollowsIt) {
  TheModel().Add(Type("tex"));
  KEPHostShaderNode* decal = TheModel().Node("tex", "decal");
  KEPHostParameter* slot = Param(KEPHostValue::Void());
  auto* frame = Build<KEPRshParameterShaderFrame>(slot);
  ASSERT_NE(frame, nullptr);
  const auto shown = [frame] { return frame->GetLabel()->GetTitle().ToUTF8(); };
  EXPECT_EQ(shown(), "No Shader Connected");
  ASSERT_EQ(slot->SetConnectedShader(decal), S_OK);
  EXPECT_EQ(shown(), "decal");
  ASSERT_EQ(slot->SetConnectedShader(nullptr), S_OK);
  EXPECT_EQ(shown(), "No Shader Connected");
  // The frame goes first: later connections reach no observer of it.
  Root()->DeleteChildren();
  EXPECT_EQ(slot->SetConnectedShader(decal), S_OK);
}

TEST_F(FrameBuildingTest, FramesTraceTheirDestructionAtLevelTwo) {
  auto* frame = Build<KEPRshParameterScalarFrame>(Param(KEPHostValue::Scalar(1.0f)));
  ASSERT_NE(frame, nullptr);
  TraceCapture capture(2);
  Root()->DeleteChildren();
  const std::vector<std::string> expected = {
      "(KEPRshParameterScalarFrame::~KEPRshParameterScalarFrame) Destructor\n",
      "(KEPRshParameterScalarFrame::~KEPRshParameterScalarFrame) Done\n",
      "(KEPRshParameterFrame::~KEPRshParameterFrame) Destructor\n",
      "(KEPRshParameterFrame::~KEPRshParameterFrame) Done\n"};
  EXPECT_EQ(capture.Texts("module"), expected);
}

TEST_F(FrameBuildingTest, BuildingWritesNothingEvenWhenTheValueIsOutOfRange) {
  const Keys narrow = {{".Min", "2"}, {".Max", "3"}, {".Step", "1"}};
  struct Row {
    KEPHostValue value;
    const char* widget;
  } const rows[] = {
      {KEPHostValue::Scalar(50.0f), "spinner"},     {KEPHostValue::Scalar(50.0f), "slider"},
      {KEPHostValue::Scalar(50.0f), "wheel"},       {KEPHostValue::Scalar(50.0f), "blackbody"},
      {KEPHostValue::Integer(50), "spinner"},       {KEPHostValue::Integer(50), "slider"},
      {KEPHostValue::Integer(50), "combo"},         {KEPHostValue::Vector({50, 50}), "vector2d"},
      {KEPHostValue::Vector({50, 50}), "sliderx2"}, {KEPHostValue::Color(5, 5, 5), "color"},
  };
  int writes = 0;
  const int token = KEPRshModelEvents::AddParameterObserver(
      [&writes](KEPIRshParameter*, KEPRshParameterChangeKind) { ++writes; });
  for (const Row& r : rows) {
    Keys keys = narrow;
    keys.emplace_back(".Widget", r.widget);
    KEPHostParameter* p = Param(r.value, keys);
    KEPDialog* frame = nullptr;
    EXPECT_EQ(KEPQueryVar<KEPIRshParameterDialog>(p)->BuildFrame(Root(), "f", &frame), S_OK);
  }
  KEPRshModelEvents::RemoveObserver(token);
  EXPECT_EQ(writes, 0);
}

TEST_F(FrameBuildingTest, SetOKNotificationIsOfItsOwnKindAndANotification) {
  const auto notif = KEP_var<KEPRshSetOKNotif>::Adopt(new KEPRshSetOKNotif());
  EXPECT_STREQ(notif->GetNotificationName(), "KEPRshSetOKNotif");
  EXPECT_TRUE(notif->IsAKindOf("KEPRshSetOKNotif"));
  EXPECT_TRUE(notif->IsAKindOf("KEPNotification"));
  EXPECT_FALSE(notif->IsAKindOf("KEPRshSetOK"));
  EXPECT_FALSE(notif->IsAKindOf("KEPDlgSliderModifyNotification"));
  EXPECT_FALSE(notif->IsAKindOf(nullptr));
}

TEST_F(FrameBuildingTest, SensitivityReachesEveryControl) {
  auto* frame = Build<KEPRshParameterVectorFrame>(Param(KEPHostValue::Vector({1, 2, 3})));
  ASSERT_NE(frame, nullptr);
  frame->SetSensitivity(KEPDlgDisable);
  EXPECT_EQ(frame->IsSetSensitivity(), KEPDlgDisable);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(frame->GetSpinner(i)->IsSetSensitivity(), KEPDlgDisable);
  std::string error;
  EXPECT_NE(frame->GetSpinner(0)->InjectUserEvent(KEPVidAction::Set, "4", error), S_OK);
  frame->SetSensitivity(KEPDlgEnable);
  Act(frame->GetSpinner(0), KEPVidAction::Set, "4");
}

}  // namespace
}  // namespace keptest
