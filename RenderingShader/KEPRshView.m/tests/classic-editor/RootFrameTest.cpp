// The root frame: its container, the path of edited shaders with the title and the parent
// button, going back, and the references it holds.
#include "ClassicTestSupport.h"
#include "KEPDlgContainer.h"
#include "KEPDlgPushButton.h"
#include "KEPIRshShaderEditorDialog.h"
#include "KEPVidTree.h"

namespace keptest {
namespace {

class RootFrameTest : public ClassicTest {};

void Press(KEPVidWidget* root, const std::string& path) {
  std::string error;
  ASSERT_TRUE(SUCCEEDED(KEPVidInject(root, path, KEPVidAction::Press, "", error))) << error;
}

TEST_F(RootFrameTest, ContainerSizeDependsOnTheParentName) {
  struct Case {
    const char* parent;
    int width, height;
  };
  const Case cases[] = {{"physicalLightContainer", 200, 400},
                        {"parent", 290, 360},
                        {"PhysicalLightContainer", 290, 360},
                        {"physicalLightContainer2", 290, 360}};
  KEPHostShaderNode* node = Aliased("t", "Glass");
  for (const Case& c : cases) {
    KEPRshShaderRootFrame* root = Root(node, c.parent);
    int x = 0, y = 0, width = 0, height = 0;
    root->GetContainer()->GetRectDimensions(x, y, width, height);
    EXPECT_EQ((std::vector<int>{x, y, width, height}), (std::vector<int>{1, 1, c.width, c.height}))
        << c.parent;
    EXPECT_EQ(root->GetContainer()->GetGridCell().row, 1) << c.parent;
    EXPECT_EQ(root->GetParentButton()->GetGridCell().row, 0) << c.parent;
    EXPECT_TRUE(root->IsGridColumnResizable(0) && root->IsGridRowResizable(1)) << c.parent;
    EXPECT_FALSE(root->IsGridRowResizable(0)) << c.parent;
  }
}

TEST_F(RootFrameTest, EveryNodeBuildsItsEditorThroughTheHost) {
  KEPHostShaderNode* node = Aliased("kep_phen_texture", "Checker");
  auto behaviour = KEPQueryVar<KEPIRshShaderEditorDialog>(static_cast<KEPIRshShader*>(node));
  ASSERT_TRUE(behaviour);
  KEPDialog* editor = nullptr;
  EXPECT_EQ(behaviour->BuildEditor(nullptr, editor), E_FAIL);
  EXPECT_EQ(editor, nullptr);
  ASSERT_EQ(behaviour->BuildEditor(Parent(), editor), S_OK);
  ASSERT_NE(editor, nullptr);
  EXPECT_EQ(editor->GetName(), "rootFrame");
  EXPECT_EQ(editor->GetFather(), Parent());
  auto* root = dynamic_cast<KEPRshShaderRootFrame*>(editor);
  ASSERT_NE(root, nullptr);
  EXPECT_EQ(root->GetPath(), std::vector<KEPIRshShader*>{node});
  EXPECT_EQ(root->GetShaderFrame()->GetName(), "shaderFrame");
  EXPECT_EQ(root->GetShaderFrame()->GetStyle() & 0xC0000, 0xC0000);
}

TEST_F(RootFrameTest, EditingDownAndGoingBackWalksThePath) {
  KEPHostShaderNode* glass = Aliased("glass", "Glass");
  KEPHostShaderNode* tint = Aliased("tint", "Tint");
  KEPHostShaderNode* noise = Aliased("noise", "Noise");
  Connect(glass, tint);
  Connect(tint, noise);
  KEPRshShaderRootFrame* root = Root(glass);
  KEPDlgPushButton* back = root->GetParentButton();
  EXPECT_EQ(Title(root), "Glass");
  EXPECT_EQ(back->GetVisibility(), KEPDlgHide);
  EXPECT_EQ(back->GetIconName(), "I_RmaParent");
  EXPECT_EQ(back->GetPressedIconName(), "I_RmaParentPressed");

  EditRow(root, 1);
  EXPECT_EQ(Title(root), "Glass - Tint");
  EXPECT_EQ(back->GetVisibility(), KEPDlgShow);
  EditRow(root, 1);
  EXPECT_EQ(Title(root), "Glass - Tint - Noise");
  EXPECT_EQ(root->GetPath(), (std::vector<KEPIRshShader*>{glass, tint, noise}));
  // The container holds the frame of the shader shown, and only that one.
  ASSERT_EQ(root->GetContainer()->GetChildCount(), 1u);
  EXPECT_EQ(root->GetContainer()->GetChild(0), root->GetShaderFrame());
  EXPECT_EQ(root->GetShaderFrame()->GetShader(), noise);

  // Noise has nothing connected: editing it changes nothing.
  EditRow(root, 1);
  EXPECT_EQ(root->GetPath().size(), 3u);

  Press(Parent(), "rootFrame/parentButton");
  EXPECT_EQ(Title(root), "Glass - Tint");
  EXPECT_EQ(root->GetShaderFrame()->GetShader(), tint);
  EXPECT_EQ(back->GetVisibility(), KEPDlgShow);
  Press(Parent(), "rootFrame/parentButton");
  EXPECT_EQ(Title(root), "Glass");
  EXPECT_EQ(root->GetPath(), std::vector<KEPIRshShader*>{glass});
  EXPECT_EQ(root->GetShaderFrame()->GetShader(), glass);
  EXPECT_EQ(back->GetVisibility(), KEPDlgHide);

  // With one shader on the path, going back does nothing.
  KEPRshShaderFrame* shown = root->GetShaderFrame();
  root->GoBack();
  EXPECT_EQ(root->GetShaderFrame(), shown);
  EXPECT_EQ(Title(root), "Glass");
}

TEST_F(RootFrameTest, ReferencesAreGivenBackWithTheFrame) {
  KEPHostShaderNode* glass = Aliased("glass", "Glass");
  KEPHostShaderNode* tint = Aliased("tint", "Tint");
  Connect(glass, tint);
  const ULONG glassCount = glass->GetRefCount();
  const ULONG tintCount = tint->GetRefCount();
  {
    TraceCapture trace(2);
    KEPRshShaderRootFrame* root = Root(glass);
    EditRow(root, 1);
    EXPECT_GT(tint->GetRefCount(), tintCount);
    root->GoBack();
    EXPECT_EQ(tint->GetRefCount(), tintCount);  // the path and the frame let go of it
    EditRow(root, 1);
    Parent()->DeleteChildren();
    EXPECT_EQ(glass->GetRefCount(), glassCount);
    EXPECT_EQ(tint->GetRefCount(), tintCount);
    const std::vector<std::string> texts = trace.Texts("module");
    const std::vector<std::string> expected = {
        "(KEPRshShaderFrame::~KEPRshShaderFrame) Destructor\n",
        "(KEPRshShaderFrame::~KEPRshShaderFrame) Done\n",
        "(KEPRshShaderRootFrame::~KEPRshShaderRootFrame) Destructor\n",
        "(KEPRshShaderRootFrame::~KEPRshShaderRootFrame) Done\n"};
    for (const std::string& text : expected)
      EXPECT_NE(std::find(texts.begin(), texts.end(), text), texts.end()) << text;
  }
}

TEST_F(RootFrameTest, NoShaderLeavesTheContainerEmpty) {
  KEPRshShaderRootFrame* root = Root(nullptr);
  EXPECT_EQ(root->GetShaderFrame(), nullptr);
  EXPECT_EQ(root->GetContainer()->GetChildCount(), 0u);
  EXPECT_TRUE(root->GetPath().empty());
  EXPECT_EQ(Title(root), "");
  root->GoBack();
  EXPECT_EQ(root->GetParentButton()->GetVisibility(), KEPDlgHide);
}

}  // namespace
}  // namespace keptest
