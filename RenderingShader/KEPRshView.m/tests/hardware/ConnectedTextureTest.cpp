// The texture shader connected to a material, which answers the questions that the material
// passes on, and the texture images that a material finds in its own parameters.
#include "HardwareTestSupport.h"
#include "KEPTextureDocument.h"

using namespace keptest;
using namespace hwtest;

namespace {

class ConnectedTextureTest : public HardwareFixture {};

const std::string kChecker = SourcePath("samples/startup/textures/checker.png");

KEP_var<KEPIPLMDmtDocument> Document(const std::string& path) {
  return KEP_var<KEPIPLMDmtDocument>::Adopt(
      KEPTextureDocument::Create(KEPUnicodeString::FromUTF8(path)));
}

// The first parameter connected to a texture shader answers: not a bump node connected before
// it, nor a texture connected after it; with nothing connected, the defaults hold.
TEST_F(ConnectedTextureTest, TheFirstConnectedTextureShaderAnswers) {
  World world;
  world.Add(TextureType());
  // A bump node with a placement and a mapping of its own, but not a texture shader.
  world.Add(Type("kep_phen_bump")
                .Param("image", Texture())
                .Param("_uv_mapping", Integer(7))
                .Param("_uv_scale_u", Scalar(5.0f))
                .Param("_uv_scale_v", Scalar(5.0f))
                .Param("_uv_angle", Scalar(10.0f)));
  world.Add(
      Type("mia_phen_material").Param("bump", Void()).Param("map", Void()).Param("later", Void()));
  KEPHostShaderNode* material = world.Node("mia_phen_material");
  KEPHostShaderNode* bump = world.Node("kep_phen_bump");
  KEPHostShaderNode* texture = world.Node("kep_phen_texture");
  KEPHostShaderNode* later = world.Node("kep_phen_texture");
  world.Param(later, "image")->SetValue(Texture());
  world.Param(later, "_uv_scale_u")->SetScalarValue(7.0f);
  world.Param(later, "_uv_angle")->SetScalarValue(20.0f);
  world.Param(later, "_uv_mapping")->SetIntegerValue(5);
  world.Param(material, "bump")->SetConnectedShader(bump);
  world.Param(material, "map")->SetConnectedShader(texture);
  world.Param(material, "later")->SetConnectedShader(later);
  Delegate d(material);
  auto unconnected = Shader("mia_phen_material", "map>");
  Delegate none(unconnected.Get());
  for (const auto& row : Table(R"(
      # question  | the first texture | nothing connected
      image       | checker.png       | none
      size        | 3 6               | 1 1
      flip        | 1 0               | 0 0
      position    | 0.3 0.4           | 0 0
      angle       | 90                | 0
      wrapping    | 1 1               | 0 0
      mappingType | S 4               | E -1
      ratio       | S 0.5             | E -1
      getSize     | S 3               | E -1
      setSize     | S                 | E)")) {
    EXPECT_EQ(Ask(d, row[0]), row[1]) << row[0];
    EXPECT_EQ(Ask(none, row[0]), row[2]) << row[0];
  }
  EXPECT_EQ(world.Param(texture, "_uv_scale_v")->Value().scalar, 1.5f);
  EXPECT_EQ(world.Param(bump, "_uv_scale_v")->Value().scalar, 5.0f);
}

// A parameter of the tests' making that tells of its connection changes, as any implementation
// must: the material follows them after its first question.
TEST_F(ConnectedTextureTest, ConnectionChangesOfAnyParameterAreFollowed) {
  World world;
  world.Add(TextureType());
  KEPHostShaderNode* first = world.Node("kep_phen_texture");
  KEPHostShaderNode* second = world.Node("kep_phen_texture");
  world.Param(second, "_uv_scale_u")->SetScalarValue(7.0f);
  auto shader = Shader("mia_phen_material", "x=1 map>");
  FakeParameter* map = shader->Param("map");
  Delegate d(shader.Get());
  EXPECT_EQ(Ask(d, "size"), "1 1") << "nothing connected yet";
  map->SetConnectedShader(first);
  EXPECT_EQ(Ask(d, "size"), "3 6") << "connected";
  map->SetConnectedShader(second);
  EXPECT_EQ(Ask(d, "size"), "7 6") << "connected to another texture";
  map->SetConnectedShader(nullptr);
  EXPECT_EQ(Ask(d, "size"), "1 1") << "disconnected";
}

TEST_F(ConnectedTextureTest, ALoopOfTexturesEndsInDefaults) {
  World world;
  world.Add(Type("kep_loop").TextureShader().Param("map", Void()));
  KEPHostShaderNode* a = world.Node("kep_loop");
  KEPHostShaderNode* b = world.Node("kep_loop");
  world.Param(a, "map")->SetConnectedShader(b);
  world.Param(b, "map")->SetConnectedShader(a);
  Delegate d(a);
  EXPECT_EQ(Ask(d, "size"), "1 1");
  EXPECT_EQ(Ask(d, "ratio"), "E -1");
}

TEST_F(ConnectedTextureTest, TheImageOfTheFirstTextureParameterThatHasOne) {
  Startup files;
  const std::string other = files.File("other.png", kChecker), lost = files.Dir("lost.png");
  World world;
  world.Add(TextureType());
  auto shader = Shader("mia_phen_material", "none= lost= scalar= own= later= map>",
                       world.Node("kep_phen_texture"));
  const std::pair<const char*, std::string> documents[] = {
      {"lost", lost}, {"scalar", other}, {"own", kChecker}, {"later", other}};
  for (const auto& [name, path] : documents) shader->Param(name)->document = Document(path);
  for (const char* name : {"none", "lost", "own", "later"})
    shader->Param(name)->type = "KEPRmaTexture";
  Delegate d(shader.Get());
  EXPECT_EQ(Ask(d, "image"), "checker.png");
  auto image = KEP_var<KEPTexturePixelImage>::Adopt(d.material->GetTextureImage());
  EXPECT_EQ(KEP_var<KEPTexturePixelImage>::Adopt(d.mappingMaterial->GetTexturePixelImage()).Get(),
            image.Get());
  // The program's image links by position: a document's path whatever the type, else the path
  // left as it was.
  const std::pair<int, std::string> links[] = {
      {1, "kept"}, {2, lost}, {3, other}, {4, kChecker}, {6, "kept"}};
  for (const auto& [position, path] : links) {
    KEPUnicodeString link = u"kept";
    d.program->GetExternalShaderImageLink(position, link);
    EXPECT_EQ(link.ToUTF8(), path) << position;
  }
}

TEST_F(ConnectedTextureTest, ImagesFollowTheDocumentAndAreReleasedOnDeletion) {
  Startup files;
  auto shader = Shader("kep_phen_texture", "image=");
  FakeParameter* image = shader->Param("image");
  image->type = "KEPRmaTexture";
  image->document = Document(files.Dir("later.png"));
  Delegate d(shader.Get());
  EXPECT_EQ(Ask(d, "image"), "none") << "no file yet";
  files.File("later.png", kChecker);
  EXPECT_EQ(Ask(d, "image"), "later.png") << "a failed load is tried again";
  image->document = Document(kChecker);
  EXPECT_EQ(Ask(d, "image"), "checker.png") << "another document";
  KEPUnicodeString link;
  d.program->GetExternalShaderImageLink(1, link);
  EXPECT_EQ(link.ToUTF8(), kChecker);

  auto held = KEP_var<KEPTexturePixelImage>::Adopt(d.material->GetTextureImage());
  auto* document = dynamic_cast<KEPBaseUnknown*>(image->document.Get());
  const ULONG documentRefs = document->GetRefCount(), imageRefs = held->GetRefCount();
  d.component->ChangeComponentState(KEPComponentState_Alive, KEPComponentState_Deleted, nullptr);
  EXPECT_EQ(document->GetRefCount(), documentRefs - 2) << "the image and the link let it go";
  EXPECT_EQ(held->GetRefCount(), imageRefs - 1);
}

}  // namespace
