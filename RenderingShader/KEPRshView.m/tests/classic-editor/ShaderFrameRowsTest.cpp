// The rows of the shader frame as they are built from real parameter frames: which parameters get
// a row, what the label and the help say, and the connection controls of the material types,
// connected and not, through a person's presses.
#include "ClassicTestSupport.h"
#include "KEPDlgContextualMenu.h"
#include "KEPDlgLabel.h"
#include "KEPDlgPushButton.h"
#include "KEPDlgPushItem.h"
#include "KEPHostConfiguration.h"
#include "KEPRshParameterScalarFrame.h"
#include "KEPVidTree.h"

namespace keptest {
namespace {

class ShaderFrameRowsTest : public ClassicTest {
 protected:
  KEPDialog* Child(KEPRshShaderFrame* frame, const std::string& name) {
    return dynamic_cast<KEPDialog*>(frame->FindNamedChild(name));
  }
  KEPDlgPushButton* Button(KEPRshShaderFrame* frame, const std::string& name) {
    return dynamic_cast<KEPDlgPushButton*>(frame->FindNamedChild(name));
  }
  static std::string Short(const KEPDialog* dialog) { return dialog->GetShortHelp().ToUTF8(); }
};

TEST_F(ShaderFrameRowsTest, RowsLeaveOutHiddenGroupedAndFramelessParameters) {
  // Positions: 1 a, 2 b "None", 3 c "NONE", 4 d "none", 5 e group 2, 6 f group 1, 7 g group
  // "Group0" (a key, not a number), 8 slot (a sub-shader slot: its frame names the connected
  // shader), 9 h.
  Type type("rows");
  type.Param("a", Scalar(0.5f))
      .Param("b", Scalar(0.5f))
      .Param("c", Scalar(0.5f))
      .Param("d", Boolean(true))
      .Param("e", Scalar(0.5f))
      .Param("f", Integer(3))
      .Param("g", Scalar(0.5f))
      .Param("slot", Void())
      .Param("h", Color(1, 0, 0));
  TheWorld().Add(type);
  Config("rows", {{"b.Widget", "None"},
                  {"c.Widget", "NONE"},
                  {"d.Widget", "none"},
                  {"e.Group", "2"},
                  {"f.Group", " 1 "},
                  {"g.Group", "Group0"},
                  {"a.Description", "Amount of a."}});
  KEPHostShaderNode* node = TheWorld().Node("rows");
  TheWorld().Param(node, "a")->SetAlias(KEPUnicodeString::FromUTF8("Alpha"));
  KEPRshShaderFrame* frame = Root(node)->GetShaderFrame();

  struct Row {
    int position;
    const char* label;
  };
  const Row shown[] = {{1, "Alpha"}, {6, "f"}, {7, "g"}, {8, "slot"}, {9, "h"}};
  for (int row = 0; row < 5; ++row) {
    const Row& r = shown[row];
    const std::string i = std::to_string(r.position);
    KEPDialog* label = Child(frame, "parameterLabel" + i);
    KEPDialog* blank = Child(frame, "blankLabel" + i);
    KEPDialog* dialog = Child(frame, "parameterDialog" + i);
    ASSERT_TRUE(label && blank && dialog) << r.position;
    EXPECT_EQ(Title(label), r.label);
    EXPECT_EQ(Title(blank), "-");
    EXPECT_FALSE(blank->IsVisible());
    EXPECT_EQ(label->GetGridCell().row, row) << r.position;
    EXPECT_EQ(dialog->GetGridCell().row, row) << r.position;
    EXPECT_EQ((std::vector<int>{label->GetGridCell().column, blank->GetGridCell().column,
                                dialog->GetGridCell().column}),
              (std::vector<int>{0, 1, 2}));
    // A type outside the material phenomena has no connection controls.
    EXPECT_EQ(Child(frame, "parameterButton" + i), nullptr);
    EXPECT_EQ(Child(frame, "disconnectButton" + i), nullptr);
  }
  for (int position : {2, 3, 4, 5}) {
    EXPECT_EQ(Child(frame, "parameterLabel" + std::to_string(position)), nullptr) << position;
    EXPECT_EQ(Child(frame, "parameterDialog" + std::to_string(position)), nullptr) << position;
  }
  // The description is the short help of the label and of the frame; none gives none.
  EXPECT_EQ(Short(Child(frame, "parameterLabel1")), "Amount of a.");
  EXPECT_EQ(Short(Child(frame, "parameterDialog1")), "Amount of a.");
  EXPECT_EQ(Short(Child(frame, "parameterLabel6")), "");
  EXPECT_NE(dynamic_cast<KEPRshParameterScalarFrame*>(Child(frame, "parameterDialog1")), nullptr);
  EXPECT_EQ(Title(Child(frame, "connectedShader")), "No Shader Connected");
}

TEST_F(ShaderFrameRowsTest, ConnectionControlsShowWhetherAShaderIsConnected) {
  // A colour takes textures, a scalar takes nothing: only the colours get connection controls.
  TheWorld().Connectable("KEPRmaColor", {{"tex", "Texture"}});
  Type material("mia_phen_material");
  material.Param("diffuse", Color(0.5f, 0.5f, 0.5f))
      .Param("tint", Color(1, 1, 1))
      .Param("weight", Scalar(1.0f));
  TheWorld().Add(material);
  TheWorld().Add(Type("tex").Param("gain", Scalar(1.0f)));
  KEPHostShaderNode* node = TheWorld().Node("mia_phen_material");
  KEPHostShaderNode* texture = TheWorld().Node("tex");
  texture->SetAlias(KEPUnicodeString::FromUTF8("Texture"));
  node->SetAlias(KEPUnicodeString::FromUTF8("Material"));
  TheWorld().Param(node, "diffuse")->SetConnectedShader(texture);
  KEPRshShaderRootFrame* root = Root(node);
  KEPRshShaderFrame* frame = root->GetShaderFrame();

  EXPECT_EQ(Child(frame, "parameterButton3"), nullptr);
  EXPECT_EQ(Child(frame, "disconnectButton3"), nullptr);

  struct Expected {
    int position;
    const char* icon;
    const char* pressed;
    const char* title;
    const char* shortHelp;
    bool disconnectShown;
  };
  const Expected rows[] = {
      {1, "I_RmaChild", "I_RmaChildPressed", "Connected shader", "Connected shader", true},
      {2, "I_RmaNewChild", "I_RmaNewChildPressed", "Connect a shader", "Connect a shader", false}};
  for (const Expected& e : rows) {
    const std::string i = std::to_string(e.position);
    KEPDlgPushButton* button = Button(frame, "parameterButton" + i);
    KEPDlgPushButton* disconnect = Button(frame, "disconnectButton" + i);
    ASSERT_TRUE(button && disconnect) << i;
    EXPECT_EQ(button->GetIconName(), e.icon) << i;
    EXPECT_EQ(button->GetPressedIconName(), e.pressed) << i;
    EXPECT_EQ(Title(button), e.title) << i;
    EXPECT_EQ(Short(button), e.shortHelp) << i;
    EXPECT_EQ(button->GetGridCell().column, 3);
    EXPECT_EQ(disconnect->GetGridCell().column, 4);
    EXPECT_EQ(disconnect->GetIconName(), "I_RmaDisconnect");
    EXPECT_EQ(disconnect->GetPressedIconName(), "I_RmaDisconnectPressed");
    EXPECT_EQ(disconnect->GetFocusedIconName(), "I_RmaDisconnectPressed");
    EXPECT_EQ(Title(disconnect), "Disconnect");
    EXPECT_EQ(disconnect->IsVisible(), e.disconnectShown) << i;
    EXPECT_EQ(disconnect->IsSensitive(), e.disconnectShown) << i;
    auto* menu = dynamic_cast<KEPDlgContextualMenu*>(button->FindNamedChild("connectionMenu" + i));
    ASSERT_NE(menu, nullptr) << i;
    auto* edit = dynamic_cast<KEPDlgPushItem*>(menu->FindNamedChild("editItem"));
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(Title(edit), "Edit");
    EXPECT_EQ(edit->IsSensitive(), e.disconnectShown) << i;
    EXPECT_EQ(Title(dynamic_cast<KEPDialog*>(menu->FindNamedChild("connectItem"))), "Connect");
  }
  // The unconnected button's help is the connect action's.
  EXPECT_EQ(Button(frame, "parameterButton2")->GetHelp().ToUTF8(),
            "Connect a shader to this parameter");

  // A person edits the connected shader through the menu: the root frame shows it and its path
  // grows; back again, and disconnecting turns the row into an unconnected one.
  std::string error;
  ASSERT_EQ(KEPVidInject(root, "parameterButton1/connectionMenu1/editItem", KEPVidAction::Press, "",
                         error),
            S_OK)
      << error;
  EXPECT_EQ(root->GetPath(), (std::vector<KEPIRshShader*>{node, texture}));
  EXPECT_EQ(root->GetShaderFrame()->GetShader(), texture);
  EXPECT_EQ(Title(root), "Material - Texture");
  ASSERT_EQ(KEPVidInject(root, "parentButton", KEPVidAction::Press, "", error), S_OK) << error;
  frame = root->GetShaderFrame();
  ASSERT_EQ(KEPVidInject(root, "disconnectButton1", KEPVidAction::Press, "", error), S_OK) << error;
  KEPDlgPushButton* button = Button(frame, "parameterButton1");
  EXPECT_EQ(button->GetIconName(), "I_RmaNewChild");
  EXPECT_EQ(button->GetHelp().ToUTF8(), "Connect a shader to this parameter");
  EXPECT_EQ(Short(button), "Connect a shader");
  EXPECT_FALSE(Button(frame, "disconnectButton1")->IsVisible());
  // Nothing connected any more: editing the row shows nothing new.
  frame->EditCB(frame, nullptr, 1);
  EXPECT_EQ(root->GetPath(), std::vector<KEPIRshShader*>{node});
}

}  // namespace
}  // namespace keptest
