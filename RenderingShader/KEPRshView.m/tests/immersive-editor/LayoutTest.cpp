// The editor's widget tree: names, grid cells and weights, labels, the widgets the behaviours
// build, the restriction flag and the connection column.
#include "EditorTestSupport.h"
#include "KEPMsgCatalog.h"

namespace keptest {
namespace {

class LayoutTest : public EditorTest {};

void ExpectParameterColumns(const KEPVidWidget* widget, const std::string& what) {
  const auto* grid = dynamic_cast<const KEPVidLayGrid*>(widget);
  ASSERT_NE(grid, nullptr) << what;
  EXPECT_EQ(grid->GetColumnWeight(0), 0.0) << what;
  EXPECT_EQ(grid->GetColumnWeight(1), 1.0) << what;
  EXPECT_EQ(grid->GetColumnWeight(2), 0.0) << what;
}

TEST_F(LayoutTest, GroupsAndRowsAreNamedAndPlaced) {
  Type type("t");
  type.Param("a", Scalar(1)).Param("b", Scalar(1)).Param("c", Scalar(1)).Param("d", Scalar(1));
  KEPHostShaderNode* node = Node(type, {{"GroupCount", "2"},
                                        {"Group0.Name", "First"},
                                        {"Group1.Name", "Second"},
                                        {"a.Group", "Group1"},
                                        {"b.Group", "Group0"},
                                        {"c.Group", "Group1"}});
  TheWorld().Param(node, "c")->SetAlias(KEPUnicodeString::FromUTF8("Colour \xC3\xA9"));
  KEPRshShaderImmLayout* editor = Edit(node);

  EXPECT_EQ(editor->GetName(), "Editor");
  EXPECT_EQ(editor->GetFather(), Root());
  EXPECT_EQ(Layout(editor), (std::vector<std::string>{"ParameterGroup0", "ParameterGroup1",
                                                      "ParameterNoGroupLayout"}));
  for (int row = 0; row < 2; ++row) {
    const std::string name = "ParameterGroup" + std::to_string(row);
    const auto* expander = dynamic_cast<const KEPVidCtlExpander*>(At(editor, name));
    ASSERT_NE(expander, nullptr) << name;
    EXPECT_EQ(expander->GetLabel().ToUTF8(), row == 0 ? "First" : "Second");
    EXPECT_EQ(expander->GetGridCell().row, row);
    EXPECT_EQ(expander->GetGridCell().columnSpan, 3);
    ExpectParameterColumns(At(editor, name + "/" + name + "Layout"), name);
  }
  const KEPVidWidget* loose = At(editor, "ParameterNoGroupLayout");
  ExpectParameterColumns(loose, "no group");
  EXPECT_FALSE(loose->GetLayoutWhenInvisible());
  EXPECT_EQ(loose->GetGridCell().row, 2);
  EXPECT_EQ(loose->GetGridCell().columnSpan, 3);

  // n counts the rows of the whole editor, top to bottom; the alias is the label when given.
  const std::tuple<const char*, int, const char*> rows[] = {
      {"ParameterGroup0/ParameterGroup0Layout", 0, "b"},
      {"ParameterGroup1/ParameterGroup1Layout", 1, "a"},
      {"ParameterGroup1/ParameterGroup1Layout", 2, "Colour \xC3\xA9"},
      {"ParameterNoGroupLayout", 3, "d"}};
  int gridRow = 0;
  std::string lastGrid;
  for (const auto& [gridPath, n, text] : rows) {
    if (gridPath != lastGrid) gridRow = 0;
    lastGrid = gridPath;
    const KEPVidWidget* grid = At(editor, gridPath);
    const std::string number = std::to_string(n);
    const auto* label = dynamic_cast<const KEPVidCtlLabel*>(Child(grid, "ParameterLabel" + number));
    ASSERT_NE(label, nullptr) << n;
    EXPECT_EQ(label->GetText().ToUTF8(), text);
    EXPECT_EQ(label->GetGridCell().row, gridRow);
    EXPECT_EQ(label->GetGridCell().column, 0);
    const KEPVidWidget* widget = Child(grid, "ParameterWidget" + number);
    ASSERT_NE(widget, nullptr) << n;
    EXPECT_EQ(widget->GetGridCell().row, gridRow);
    EXPECT_EQ(widget->GetGridCell().column, 1);
    EXPECT_EQ(widget->GetGridCell().attach, KEPVidAttach_All);
    EXPECT_FALSE(widget->GetLayoutWhenInvisible());
    EXPECT_EQ(Child(grid, "ParameterConnection" + number), nullptr);  // not material-like
    ++gridRow;
  }
}

TEST_F(LayoutTest, OnlyParametersOfNoGroupMakeNoExpander) {
  KEPRshShaderImmLayout* editor = Edit(Node("t", {"a", "b"}, {{"GroupCount", "2"}}));
  EXPECT_EQ(Layout(editor), (std::vector<std::string>{"ParameterNoGroupLayout"}));
  EXPECT_EQ(At(editor, "ParameterNoGroupLayout")->GetGridCell().row, 0);
}

TEST_F(LayoutTest, ANodeWithNothingToShowMakesAnEmptyEditor) {
  EXPECT_EQ(Edit(Node("empty", {}))->GetChildCount(), 0u);
  EXPECT_EQ(Edit(Node("hidden", {"a"}, {{"a.Widget", "none"}}))->GetChildCount(), 0u);
  KEPRshShaderImmLayout* without = Edit(nullptr);
  EXPECT_EQ(without->GetChildCount(), 0u);
  EXPECT_EQ(without->GetShader(), nullptr);
}

TEST_F(LayoutTest, AFailedWidgetLeavesItsRowWithoutAWidget) {
  KEPRshShaderImmLayout* editor = Edit(Node("t", {"a", "broken", "c"},
                                            {{"GroupCount", "1"},
                                             {"a.Group", "Group0"},
                                             {"broken.Group", "Group0"},
                                             {"c.Group", "Group0"}}));
  const KEPVidWidget* grid = At(editor, "ParameterGroup0/ParameterGroup0Layout");
  EXPECT_EQ(Labels(grid), (std::vector<std::string>{"a", "broken", "c"}));
  EXPECT_NE(Child(grid, "ParameterWidget0"), nullptr);
  EXPECT_EQ(Child(grid, "ParameterWidget1"), nullptr);
  EXPECT_NE(Child(grid, "ParameterWidget2"), nullptr);
  EXPECT_EQ(Child(grid, "ParameterWidget2")->GetGridCell().row, 2);
}

TEST_F(LayoutTest, WidgetsAreWhateverTheBehavioursBuild) {
  // The module's own behaviours (no stand-in): a type whose behaviour builds nothing still gets
  // its label; a parameter without an immersive behaviour (a light profile) is not shown.
  KEPRshViewRegister();
  Type type("t");
  type.Param("shader", Void()).Param("profile", LightProfile());
  KEPRshShaderImmLayout* editor = Edit(Node(type));
  const KEPVidWidget* grid = At(editor, "ParameterNoGroupLayout");
  EXPECT_EQ(Labels(grid), (std::vector<std::string>{"shader"}));
}

TEST_F(LayoutTest, ARestrictedEditorDisablesTheRatioTweakerOfScaleUAndTheTypeWidget) {
  for (const bool restricted : {false, true}) {
    KEPRshShaderImmLayout* editor =
        Edit(Node(restricted ? "restricted" : "free", {"scale_u", "type", "scale_v"}), restricted);
    EXPECT_EQ(editor->IsRestricted(), restricted);
    const KEPVidWidget* grid = At(editor, "ParameterNoGroupLayout");
    const std::tuple<const char*, bool, bool> rows[] = {// widget, its tweaker
                                                        {"ParameterWidget0", true, !restricted},
                                                        {"ParameterWidget1", !restricted, true},
                                                        {"ParameterWidget2", true, true}};
    for (const auto& [name, widgetSensitive, tweakerSensitive] : rows) {
      const KEPVidWidget* widget = Child(grid, name);
      ASSERT_NE(widget, nullptr);
      EXPECT_EQ(widget->IsSensitive(), widgetSensitive) << name << " restricted " << restricted;
      EXPECT_EQ(At(widget, "WidgetRatio/ValueTweaker")->IsSensitive(), tweakerSensitive)
          << name << " restricted " << restricted;
    }
  }
}

TEST_F(LayoutTest, TheRestrictionReachesTheTweakerOfTheModulesRatioWidget) {
  KEPRshViewRegister();  // the module's scalar widgets
  const Keys config = {{"scale_u.Widget", "ratio"},
                       {"scale_u.SecondaryParameter", "scale_v"},
                       {"scale_u.Min", "0"},
                       {"scale_u.Max", "10"},
                       {"scale_v.Min", "0"},
                       {"scale_v.Max", "10"},
                       {"type.Widget", "slider"},
                       {"type.Min", "0"},
                       {"type.Max", "3"}};
  for (const bool restricted : {false, true}) {
    KEPRshShaderImmLayout* editor =
        Edit(Node(restricted ? "restricted" : "free", {"scale_u", "scale_v", "type"}, config),
             restricted);
    const KEPVidWidget* grid = At(editor, "ParameterNoGroupLayout");
    const KEPVidWidget* tweaker = At(Child(grid, "ParameterWidget0"), "WidgetRatio/ValueTweaker");
    ASSERT_NE(tweaker, nullptr);
    EXPECT_EQ(tweaker->IsSensitive(), !restricted);
    EXPECT_TRUE(Child(grid, "ParameterWidget0")->IsSensitive());
    EXPECT_EQ(Child(grid, "ParameterWidget2")->IsSensitive(), !restricted);
  }
}

TEST_F(LayoutTest, ConnectableParametersOfMaterialLikeNodesGetAConnectionColumn) {
  TheWorld().Connectable("KEPRmaColor", {{"kep_phen_texture", "Texture"}});
  struct Case {
    const char* type;
    Keys config;
    bool connection;
  };
  const Case cases[] = {
      {"mia_phen_material", {{"p.ConnectableState", "Yes"}}, true},
      {"mia_phen_diffuse", {{"p.ConnectableState", "TRUE"}}, true},
      {"MPM_anything", {{"p.ConnectableState", "1"}}, true},
      {"NRE_glass", {{"p.ConnectableState", "yes"}}, true},
      {"mip_car_paint", {{"p.ConnectableState", "No"}}, false},
      {"mia_phen_emissive", {{"p.ConnectableState", "y"}}, false},
      {"mia_phen_material2", {{"p.ConnectableState", "Yes"}}, false},  // not material-like
      {"kep_phen_light_point", {{"p.ConnectableState", "Yes"}}, false},
      {"xMPM", {{"p.ConnectableState", "Yes"}}, false},
      {"diamond", {}, false},  // nothing connects to a scalar
  };
  for (const Case& c : cases) {
    KEPRshShaderImmLayout* editor = Edit(Node(c.type, {"p"}, c.config));
    const KEPVidWidget* grid = At(editor, "ParameterNoGroupLayout");
    const auto* button = dynamic_cast<const KEPVidCtlButton*>(Child(grid, "ParameterConnection0"));
    EXPECT_EQ(button != nullptr, c.connection) << c.type;
    EXPECT_EQ(Child(grid, "ParameterConnectedShader0") != nullptr, c.connection) << c.type;
  }
  // Without ".ConnectableState" the shader manager answers: something connects to colours.
  Type colours("mia_phen_clear_glass");
  colours.Param("tint", Color(1, 1, 1));
  const KEPVidWidget* grid = At(Edit(Node(colours)), "ParameterNoGroupLayout");
  EXPECT_NE(Child(grid, "ParameterConnection0"), nullptr);
}

TEST_F(LayoutTest, TheConnectionButtonFollowsTheParametersConnection) {
  TheWorld().Add(Type("kep_phen_texture").Param("gamma", Scalar(1)));
  KEPHostShaderNode* node =
      Node("mia_phen_material", {"plain", "linked", "after"},
           {{"plain.ConnectableState", "Yes"}, {"linked.ConnectableState", "Yes"}});
  KEPHostShaderNode* texture = TheWorld().Node("kep_phen_texture", "tiles");
  texture->SetAlias(KEPUnicodeString::FromUTF8("Floor tiles"));
  texture->SetFather(node);  // a sub-shader of the material, as a loaded document makes it
  ASSERT_EQ(TheWorld().Param(node, "linked")->SetConnectedShader(texture), S_OK);

  const KEPVidWidget* grid = At(Edit(node), "ParameterNoGroupLayout");
  struct Case {
    int n;
    int row;
    const char* icon;
    const char* help;
    const char* connectedLabel;
  };
  const Case cases[] = {{0, 0, "I_RmaConnect.png", "connect.Help", "No Shader Connected"},
                        {1, 2, "I_RmaDisconnect.png", "disconnect.Help", "Floor tiles"}};
  for (const Case& c : cases) {
    const std::string number = std::to_string(c.n);
    const auto* button =
        dynamic_cast<const KEPVidCtlButton*>(Child(grid, "ParameterConnection" + number));
    ASSERT_NE(button, nullptr) << c.n;
    EXPECT_EQ(button->GetIcon(), c.icon);
    EXPECT_EQ(button->GetHelpText(), KEPMsgCatalog::BuildMessage("KEPRshShaderFrame", c.help));
    EXPECT_FALSE(button->GetHelpText().IsEmpty());
    EXPECT_EQ(button->GetGridCell().row, c.row);
    EXPECT_EQ(button->GetGridCell().column, 2);
    // The connected shader's place below the row: hidden and giving up its space while nothing
    // is connected; the sub-shader's own editor once something is, with the row's value widget
    // disabled.
    const auto* connected =
        dynamic_cast<const KEPVidCtlExpander*>(Child(grid, "ParameterConnectedShader" + number));
    ASSERT_NE(connected, nullptr) << c.n;
    EXPECT_EQ(connected->GetLabel().ToUTF8(), c.connectedLabel);
    const bool isConnected = c.n == 1;
    EXPECT_EQ(connected->IsVisible(), isConnected);
    const KEPVidWidget* subEditor = connected->FindNamedChild("ConnectedShaderEditor");
    EXPECT_EQ(subEditor != nullptr, isConnected);
    if (subEditor) {
      EXPECT_NE(subEditor->FindNamedChild("ParameterLabel0"), nullptr);
    }
    if (const KEPVidWidget* widget = grid->FindNamedChild("ParameterWidget" + number)) {
      EXPECT_EQ(widget->IsSensitive(), !isConnected);
    }
    EXPECT_FALSE(connected->GetLayoutWhenInvisible());
    EXPECT_EQ(connected->GetGridCell().row, c.row + 1);
    EXPECT_EQ(connected->GetGridCell().columnSpan, 3);
    EXPECT_NE(Child(connected, "ParameterConnectedShader" + number + "Layout"), nullptr);
  }
  // The next row comes below the connected shader's row.
  EXPECT_EQ(Child(grid, "ParameterLabel2")->GetGridCell().row, 4);
  EXPECT_EQ(Child(grid, "ParameterConnection2"), nullptr);
}

}  // namespace
}  // namespace keptest
