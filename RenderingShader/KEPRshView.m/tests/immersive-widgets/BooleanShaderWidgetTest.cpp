// The boolean widget (its box, clicks, render lock, following the model) and the connection-only
// widget (the name of what is connected, following connections); both outliving the parameter.
#include "ImmWidgetTestSupport.h"
#include "KEPRshParameterBooleanImmWidget.h"
#include "KEPRshParameterShaderImmWidget.h"
#include "KEPVidCtlCheckBox.h"
#include "KEPVidCtlLabel.h"

namespace keptest {
namespace {

class BooleanShaderWidgetTest : public ImmWidgetTest {
 protected:
  static KEPVidCtlCheckBox* Box(const KEPVidWidget* w) {
    return dynamic_cast<KEPVidCtlCheckBox*>(w->FindNamedChild("booleanCheck"));
  }
  static std::string Shown(const KEPVidWidget* w) {
    const auto* label = dynamic_cast<const KEPVidCtlLabel*>(w->FindNamedChild("connectedShader"));
    return label ? label->GetText().ToUTF8() : "<none>";
  }
  static bool Stored(KEPIRshParameter* p) {
    unsigned char value = 7;
    p->GetBooleanValue(value);
    return value != 0;
  }
};

TEST_F(BooleanShaderWidgetTest, BoxShowsTheValueAndClicksWriteUnderTheRenderLock) {
  KEPHostShaderNode* node = Node({{"on", Boolean(true)}, {"off", Boolean(false)}});
  KEPHostParameter* on = ParamOf(node, "on");
  const auto* onWidget = Make<KEPRshParameterBooleanImmWidget>(on);
  const auto* offWidget = Make<KEPRshParameterBooleanImmWidget>(ParamOf(node, "off"));
  ASSERT_NE(Box(onWidget), nullptr);
  EXPECT_TRUE(Box(onWidget)->IsChecked());
  EXPECT_FALSE(Box(offWidget)->IsChecked());
  EXPECT_TRUE(Box(onWidget)->GetLabel().IsEmpty());

  std::vector<bool> lockedOut;
  const int token =
      KEPRshModelEvents::AddParameterObserver([&](KEPIRshParameter*, KEPRshParameterChangeKind) {
        lockedOut.push_back(!RenderThreadCanLock());
      });
  Act(Box(onWidget), KEPVidAction::Toggle, "");
  EXPECT_FALSE(Stored(on));
  Act(Box(offWidget), KEPVidAction::Toggle, "on");
  EXPECT_TRUE(Stored(ParamOf(node, "off")));
  KEPRshModelEvents::RemoveObserver(token);
  EXPECT_EQ(lockedOut, std::vector<bool>({true, true}));
}

TEST_F(BooleanShaderWidgetTest, BoxFollowsWritesMadeElsewhereWithoutWritingBack) {
  KEPHostParameter* p = ParamOf(Node({{"b", Boolean(false)}}), "b");
  const auto* first = Make<KEPRshParameterBooleanImmWidget>(p);
  const auto* second = Make<KEPRshParameterBooleanImmWidget>(p);
  const unsigned long long before = p->WriteCount();
  ASSERT_EQ(p->SetBooleanValue(1), S_OK);
  EXPECT_TRUE(Box(first)->IsChecked());
  EXPECT_TRUE(Box(second)->IsChecked());
  Act(Box(first), KEPVidAction::Toggle, "off");
  EXPECT_FALSE(Box(second)->IsChecked());
  EXPECT_EQ(p->WriteCount(), before + 2);
}

TEST_F(BooleanShaderWidgetTest, ConnectionLabelNamesWhatIsConnectedAndFollowsIt) {
  TheWorld().Add(Type("tex"));
  KEPHostShaderNode* node = Node({{"slot", Void()}, {"other", Void()}});
  KEPHostParameter* slot = ParamOf(node, "slot");
  KEPHostShaderNode* texture = TheWorld().Node("tex", "decal");
  const auto* w = Make<KEPRshParameterShaderImmWidget>(slot);
  EXPECT_EQ(Shown(w), "No Shader Connected");

  ASSERT_EQ(slot->SetConnectedShader(texture), S_OK);
  EXPECT_EQ(Shown(w), "decal");  // the host's alias of a node is its identifier unless given
  ASSERT_EQ(texture->SetAlias(KEPUnicodeString::FromUTF8("Checker decal")), S_OK);
  ASSERT_EQ(ParamOf(node, "other")->SetConnectedShader(texture), S_OK);  // another row
  EXPECT_EQ(Shown(Make<KEPRshParameterShaderImmWidget>(slot)), "Checker decal");

  ASSERT_EQ(slot->SetConnectedShader(nullptr), S_OK);
  EXPECT_EQ(Shown(w), "No Shader Connected");
}

TEST_F(BooleanShaderWidgetTest, WidgetsOutlivingTheirParameterDoNothing) {
  KEPHostShaderNode* node = Node({{"b", Boolean(true)}, {"s", Void()}});
  const auto* box = Make<KEPRshParameterBooleanImmWidget>(ParamOf(node, "b"));
  const auto* slot = Make<KEPRshParameterShaderImmWidget>(ParamOf(node, "s"));
  DropModel();
  EXPECT_FALSE(box->GetParameter());
  Act(Box(box), KEPVidAction::Toggle, "");
  EXPECT_EQ(Shown(slot), "No Shader Connected");
  EXPECT_EQ(Make<KEPRshParameterBooleanImmWidget>(nullptr)->GetChildCount(), 0u);
  EXPECT_EQ(Make<KEPRshParameterShaderImmWidget>(nullptr)->GetChildCount(), 0u);
}

}  // namespace
}  // namespace keptest
