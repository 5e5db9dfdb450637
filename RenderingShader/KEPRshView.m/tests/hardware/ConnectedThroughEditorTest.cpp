// The viewer's material follows a texture shader connected and disconnected through the
// connection dialog: its cached connection is dropped when the model tells of the change.
#include "HardwareTestSupport.h"
#include "KEPDlgLineList.h"
#include "KEPRshConnectionDialog.h"

using namespace keptest;
using namespace hwtest;

namespace {

class ConnectedThroughEditorTest : public HardwareFixture {};

HRESULT Inject(KEPVidWidget* widget, KEPVidAction action, std::string_view argument = {}) {
  std::string error;
  return widget->InjectUserEvent(action, argument, error);
}

TEST_F(ConnectedThroughEditorTest, TheMaterialAnswersFromATextureConnectedInTheDialog) {
  World world;
  world.Add(TextureType());
  world.Add(Type("mia_phen_material").Param("map", Void()));
  world.Connectable("KEPRmaVoid", {{"kep_phen_texture", "Texture"}});
  KEPHostShaderNode* material = world.Node("mia_phen_material");
  Delegate d(material);
  EXPECT_EQ(Ask(d, "size"), "1 1") << "nothing connected yet";

  const auto dialog = KEP_var<KEPRshConnectionDialog>::Adopt(new KEPRshConnectionDialog(
      nullptr, "connectionDialog", 0, world.Document(), world.Param(material, "map")));
  dialog->SetVisibility(KEPDlgShow);
  ASSERT_EQ(dialog->GetChooser()->GetLine(0).ToUTF8().rfind("Texture ", 0), 0u);
  ASSERT_EQ(Inject(dialog.Get(), KEPVidAction::Ok), S_OK);
  EXPECT_EQ(Ask(d, "size"), "3 6") << "the new texture's own values";

  ASSERT_EQ(world.Param(material, "map")->SetConnectedShader(nullptr), S_OK);
  EXPECT_EQ(Ask(d, "size"), "1 1") << "disconnected";
}

}  // namespace
