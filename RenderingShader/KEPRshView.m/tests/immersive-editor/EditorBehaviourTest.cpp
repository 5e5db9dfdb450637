// The behaviour through which the host obtains a node's editor.
#include "EditorTestSupport.h"
#include "KEPIRshShaderEditorImmLayout.h"

namespace keptest {
namespace {

class EditorBehaviourTest : public EditorTest {};

TEST_F(EditorBehaviourTest, EveryShaderNodeBuildsItsEditorUnderAParent) {
  Type texture("texture_node");
  texture.Param("gamma", Scalar(1)).TextureShader();
  KEPHostShaderNode* nodes[] = {Node("mia_phen_material", {"diffuse"}), Node(texture)};
  for (KEPHostShaderNode* node : nodes) {
    const auto behaviour = KEPQueryVar<KEPIRshShaderEditorImmLayout>(node);
    ASSERT_NE(behaviour, NULL_var) << node->Id();

    KEPVidWidget* editor = nullptr;
    EXPECT_EQ(behaviour->BuildEditor(nullptr, "Shader editor", false, editor), E_FAIL);
    EXPECT_EQ(editor, nullptr);

    for (const bool restricted : {false, true}) {
      ASSERT_EQ(behaviour->BuildEditor(Root(), "Shader editor", restricted, editor), S_OK);
      const auto* built = dynamic_cast<const KEPRshShaderImmLayout*>(editor);
      ASSERT_NE(built, nullptr);
      EXPECT_EQ(built->GetName(), "Shader editor");
      EXPECT_EQ(built->GetFather(), Root());
      EXPECT_EQ(built->IsRestricted(), restricted);
      EXPECT_EQ(built->GetShader(), static_cast<KEPIRshShader*>(node));
      EXPECT_TRUE(built->IsAKindOf("KEPVidLayGrid"));
      EXPECT_EQ(Layout(built), (std::vector<std::string>{"ParameterNoGroupLayout"}));
    }
    ASSERT_EQ(behaviour->BuildEditor(Root(), nullptr, false, editor), S_OK);
    EXPECT_EQ(editor->GetName(), "");
    EXPECT_EQ(Root()->GetChildCount(), 3u);
    Root()->DeleteChildren();
  }
}

TEST_F(EditorBehaviourTest, TheEditorKeepsItsShaderAliveAndLetsItGo) {
  KEPHostShaderNode* node = Node("t", {"a"});
  const ULONG before = node->GetRefCount();
  Edit(node);
  EXPECT_EQ(node->GetRefCount(), before + 1);
  Root()->DeleteChildren();
  EXPECT_EQ(node->GetRefCount(), before);
}

}  // namespace
}  // namespace keptest
