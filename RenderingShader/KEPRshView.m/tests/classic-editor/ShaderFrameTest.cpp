// The shader frame: which shaders get rows, and what its connect, disconnect and edit actions do
// to the model.
#include "ClassicTestSupport.h"
#include "KEPDlgLabel.h"
#include "KEPDlgPushButton.h"
#include "KEPMsgCatalog.h"
#include "KEPRshModelEvents.h"
#include "KEPRshParameterShaderFrame.h"
#include "KEPVidTree.h"

namespace keptest {
namespace {

class ShaderFrameTest : public ClassicTest {
 protected:
  /// A frame of `shader` under the parent (which owns it).
  KEPRshShaderFrame* Frame(KEPIRshShader* shader) {
    return new KEPRshShaderFrame(Parent(), "shaderFrame", 0xC0000, shader);
  }
};

TEST_F(ShaderFrameTest, ConnectableTypesAreTheMaterialPhenomena) {
  const std::pair<const char*, bool> cases[] = {{"mia_phen_material", true},
                                                {"mia_phen_emissive", true},
                                                {"mip_car_paint", true},
                                                {"mip_metallic_paint", true},
                                                {"mia_phen_reflective_translucent", true},
                                                {"kep_phen_texture", false},
                                                {"MIA_PHEN_MATERIAL", false},
                                                {"mia_phen_material ", false},
                                                {"mia_phen", false},
                                                {"", false}};
  for (const auto& [type, connectable] : cases)
    EXPECT_EQ(KEPRshShaderFrame::IsConnectableType(type), connectable) << type;
}

TEST_F(ShaderFrameTest, PhysicalShaderAndNoShaderGiveEmptyFrames) {
  KEPHostShaderNode* physical = Aliased("MPM_material", "Physical");
  for (KEPIRshShader* shader :
       {static_cast<KEPIRshShader*>(physical), static_cast<KEPIRshShader*>(nullptr)}) {
    KEPRshShaderFrame* frame = Frame(shader);
    EXPECT_EQ(frame->GetChildCount(), 0u);
    EXPECT_EQ(frame->GetStyle(), 0xC0001);
    // Actions on an empty frame find no parameter and change nothing.
    frame->EditCB(frame, nullptr, 1);
    frame->DisconnectCB(frame, nullptr, 1);
  }
}

TEST_F(ShaderFrameTest, DisconnectIsOneAnnouncedModification) {
  KEPHostShaderNode* material = Aliased("mia_phen_material", "Material");
  KEPHostShaderNode* bump = Aliased("bump", "Bump");
  Connect(material, bump);
  std::vector<std::string> events;
  const int token = KEPRshModelEvents::AddShaderModifyObserver(
      [&](const KEPRbaShaderModifyNotification& n, bool begin) {
        events.push_back(std::string(begin ? "begin " : "end ") + n.changeClass + " " +
                         (n.shader == material ? "material" : "other") + " kind " +
                         std::to_string(n.attributeKind) + " flag " + std::to_string(n.flag));
      });
  const int parameters = KEPRshModelEvents::AddParameterObserver(
      [&](KEPIRshParameter*, KEPRshParameterChangeKind kind) {
        if (kind == KEPRshParameterChangeKind::Connection) events.push_back("connection");
      });
  KEPRshShaderFrame* frame = Frame(material);
  frame->DisconnectCB(frame, nullptr, 1);
  KEPRshModelEvents::RemoveObserver(token);
  KEPRshModelEvents::RemoveObserver(parameters);
  EXPECT_EQ(events, (std::vector<std::string>{"begin KEPIGraphicMaterial material kind 2 flag 0",
                                              "connection",
                                              "end KEPIGraphicMaterial material kind 2 flag 1"}));
  KEPIRshShader* connected = nullptr;
  EXPECT_TRUE(FAILED(TheWorld().Param(material, "slot")->GetConnectedShader(connected)));
  EXPECT_EQ(connected, nullptr);
}

TEST_F(ShaderFrameTest, ASlotRowNamesItsShaderAndPressingDisconnectResetsTheRow) {
  KEPHostShaderNode* material = Aliased("mia_phen_material", "Material");
  KEPHostShaderNode* bump = Aliased("bump", "Bump");
  TheWorld().Connectable("KEPRmaVoid", {{"bump", "Bump map"}});
  Connect(material, bump);
  KEPRshShaderFrame* frame = Frame(material);
  const auto* slotFrame =
      dynamic_cast<KEPRshParameterShaderFrame*>(frame->FindNamedChild("parameterDialog1"));
  ASSERT_NE(slotFrame, nullptr) << "a connection-only parameter has a row of its own";
  EXPECT_EQ(slotFrame->GetLabel()->GetTitle().ToUTF8(), "Bump");
  auto* button = dynamic_cast<KEPDlgPushButton*>(frame->FindNamedChild("parameterButton1"));
  auto* disconnect = dynamic_cast<KEPDlgPushButton*>(frame->FindNamedChild("disconnectButton1"));
  ASSERT_NE(button, nullptr);
  ASSERT_NE(disconnect, nullptr);
  EXPECT_EQ(button->GetIconName(), "I_RmaChild");
  EXPECT_EQ(button->GetTitle().ToUTF8(), "Connected shader");
  EXPECT_EQ(disconnect->GetVisibility(), KEPDlgShow);

  std::string error;
  ASSERT_EQ(KEPVidInject(frame, "disconnectButton1", KEPVidAction::Press, "", error), S_OK)
      << error;
  EXPECT_EQ(slotFrame->GetLabel()->GetTitle().ToUTF8(), "No Shader Connected");
  EXPECT_EQ(button->GetIconName(), "I_RmaNewChild");
  EXPECT_EQ(button->GetPressedIconName(), "I_RmaNewChildPressed");
  EXPECT_EQ(button->GetTitle().ToUTF8(), "Connect a shader") << "the title goes with the icon";
  EXPECT_EQ(button->GetHelp(), KEPMsgCatalog::BuildMessage("KEPRshShaderFrame", "connect.Help"));
  EXPECT_EQ(disconnect->GetVisibility(), KEPDlgHide);
  EXPECT_FALSE(disconnect->IsSensitive());
}

TEST_F(ShaderFrameTest, RowButtonsFollowConnectionsMadeElsewhere) {
  KEPHostShaderNode* material = Aliased("mia_phen_material", "Material");
  KEPHostShaderNode* bump = Aliased("bump", "Bump");
  TheWorld().Connectable("KEPRmaVoid", {{"bump", "Bump map"}});
  KEPRshShaderFrame* frame = Frame(material);
  auto* button = dynamic_cast<KEPDlgPushButton*>(frame->FindNamedChild("parameterButton1"));
  auto* disconnect = dynamic_cast<KEPDlgPushButton*>(frame->FindNamedChild("disconnectButton1"));
  ASSERT_NE(button, nullptr);
  ASSERT_NE(disconnect, nullptr);
  ASSERT_EQ(button->GetIconName(), "I_RmaNewChild");

  // Another editor (here the model itself) connects and disconnects.
  Connect(material, bump);
  EXPECT_EQ(button->GetIconName(), "I_RmaChild");
  EXPECT_EQ(button->GetTitle().ToUTF8(), "Connected shader");
  EXPECT_EQ(disconnect->GetVisibility(), KEPDlgShow);
  EXPECT_TRUE(disconnect->IsSensitive());
  ASSERT_EQ(TheWorld().Param(material, "slot")->SetConnectedShader(nullptr), S_OK);
  EXPECT_EQ(button->GetIconName(), "I_RmaNewChild");
  EXPECT_EQ(button->GetTitle().ToUTF8(), "Connect a shader");
  EXPECT_EQ(disconnect->GetVisibility(), KEPDlgHide);
  EXPECT_FALSE(disconnect->IsSensitive());
}

TEST_F(ShaderFrameTest, ConnectOpensTheConnectionDialogUnderTheFrame) {
  KEPHostShaderNode* material = Aliased("mia_phen_material", "Material");
  KEPRshShaderRootFrame* root = Root(material);
  KEPRshShaderFrame* frame = root->GetShaderFrame();
  TraceCapture trace(5);
  frame->ConnectCB(frame, nullptr, 1);
  EXPECT_TRUE(trace.Contains("(KEPRshShaderFrame::ConnectCB)\n"));
  KEPIRshShader* connected = nullptr;
  EXPECT_TRUE(FAILED(TheWorld().Param(material, "slot")->GetConnectedShader(connected)));
  KEPVidWidget* dialog = root->FindNamedChild("connectionDialog");
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(dialog->GetFather(), frame);
  EXPECT_TRUE(dialog->IsVisible());
}

TEST_F(ShaderFrameTest, DetachedFrameActsOnNothing) {
  KEPHostShaderNode* material = Aliased("mia_phen_material", "Material");
  KEPHostShaderNode* bump = Aliased("bump", "Bump");
  Connect(material, bump);
  KEPRshShaderFrame* frame = Frame(material);
  frame->DetachShader();
  EXPECT_EQ(frame->GetShader(), nullptr);
  frame->DisconnectCB(frame, nullptr, 1);
  KEPIRshShader* connected = nullptr;
  ASSERT_TRUE(SUCCEEDED(TheWorld().Param(material, "slot")->GetConnectedShader(connected)));
  EXPECT_EQ(connected, bump);
  connected->Release();
}

}  // namespace
}  // namespace keptest
