// The viewer's material answers for physical and other shaders, and the connected-texture
// fall-backs.
#include "HardwareTestSupport.h"

using namespace keptest;
using namespace hwtest;

namespace {

const std::string kChecker = SourcePath("samples/startup/textures/checker.png");

class MaterialQueriesTest : public HardwareFixture {};

Type PhysicalPaint() {
  return Type("MPM_car_paint")
      .Param("default_generic_brdf_diffuse_weight", Scalar(0.9f))
      .Param("default_slot_diffuse_color", Color(0.8f, 0.1f, 0.2f))
      .Param("default_generic_brdf_diffuse_glossiness", Scalar(0.3f))
      .Param("default_generic_brdf_specular_weight", Scalar(0.6f))
      .Param("default_slot_specular_color", Color(1.0f, 0.9f, 0.8f))
      .Param("default_slot_specular_glossiness", Scalar(0.75f))
      .Param("default_slot_transparency", Scalar(0.3f))
      .Param("default_slot_opacity", Scalar(1.0f))
      .Param("repeat_u", Boolean(true))
      .Param("repeat_v", Boolean(false))
      .Param("flip_u", Boolean(true))
      .Param("flip_v", Boolean(false))
      .Param("offset_u", Scalar(0.25f))
      .Param("offset_v", Scalar(0.5f))
      .Param("scale_u", Scalar(2.0f))
      .Param("scale_v", Scalar(8.0f))
      .Param("angle", Scalar(30.0f))
      .Param("type", Integer(3));
}

TEST_F(MaterialQueriesTest, PhysicalShaderReadsSlotsAndBrdf) {
  World world;
  world.Add(PhysicalPaint());
  Delegate delegate(world.Node("MPM_car_paint"));
  auto material = delegate.Material();
  auto mapping = delegate.Mapping();
  auto mm = delegate.MappingMaterial();

  float coef = -1, color[3] = {-1, -1, -1}, gloss = -1;
  material->GetAmbient(coef, color);
  EXPECT_EQ(coef, 0.0f);
  EXPECT_EQ(color[0] + color[1] + color[2], 0.0f);
  material->GetDiffuse(coef, color);
  EXPECT_FLOAT_EQ(coef, 0.9f);
  EXPECT_FLOAT_EQ(color[1], 0.1f);
  material->GetSpecular(coef, color, gloss);
  EXPECT_FLOAT_EQ(coef, 0.6f);
  EXPECT_FLOAT_EQ(color[2], 0.8f);
  EXPECT_FLOAT_EQ(gloss, 0.75f);

  double d = -1;
  EXPECT_EQ(mm->GetLuminosity(d), S_OK);
  EXPECT_EQ(d, 0.0);
  EXPECT_EQ(mm->GetContrast(d), S_OK);
  EXPECT_FLOAT_EQ(static_cast<float>(d), 0.9f);
  EXPECT_EQ(mm->GetShininess(d), S_OK);
  EXPECT_FLOAT_EQ(static_cast<float>(d), 0.6f);
  EXPECT_EQ(mm->GetTransparency(d), S_OK);
  EXPECT_FLOAT_EQ(static_cast<float>(d), 0.3f);
  double r = -1, g = -1, b = -1;
  EXPECT_EQ(mm->GetTransparentColor(r, g, b), S_OK);
  EXPECT_FLOAT_EQ(static_cast<float>(r), 0.8f);
  unsigned char use = 9, repeat = 9;
  EXPECT_EQ(mm->GetUseTranparentColor(use), S_OK);
  EXPECT_EQ(use, 1);
  EXPECT_EQ(mm->GetTextureRepeat(repeat), S_OK);
  EXPECT_EQ(repeat, 0);  // repeat_v is off

  int wu = -1, wv = -1;
  material->GetTextureWrapping(wu, wv);
  EXPECT_EQ(wu, 1);
  EXPECT_EQ(wv, 0);
  unsigned char fu = 9, fv = 9;
  EXPECT_EQ(mapping->GetFlipU(fu), S_OK);
  EXPECT_EQ(mapping->GetFlipV(fv), S_OK);
  EXPECT_EQ(fu, 1);
  EXPECT_EQ(fv, 0);
  EXPECT_EQ(mapping->GetTranslationV(d), S_OK);
  EXPECT_FLOAT_EQ(static_cast<float>(d), 0.5f);
  EXPECT_EQ(mapping->GetScale(d), S_OK);
  EXPECT_FLOAT_EQ(static_cast<float>(d), 2.0f);  // never the V scale
  EXPECT_EQ(mapping->GetRatio(d), S_OK);
  EXPECT_FLOAT_EQ(static_cast<float>(d), 0.25f);
  EXPECT_EQ(mapping->GetRotation(d), S_OK);
  EXPECT_FLOAT_EQ(static_cast<float>(d), 30.0f);
  EXPECT_EQ(mapping->GetSize(d), S_OK);
  EXPECT_FLOAT_EQ(static_cast<float>(d), 2.0f);

  EXPECT_EQ(mapping->SetSize(4.0), S_OK);
  EXPECT_EQ(world.Param(world.Document()->FindNode(world.Document()->Nodes()[0]->Id()), "scale_v")
                ->Value()
                .scalar,
            4.0f);
  double t = 0.125;
  EXPECT_EQ(mapping->SetTranslationU(t), S_OK);
  material->GetTexturePosition(coef, gloss);
  EXPECT_FLOAT_EQ(coef, 0.125f);
}

TEST_F(MaterialQueriesTest, PhysicalShaderMissingParametersLeaveOutputsOrFail) {
  World world;
  world.Add(Type("MPM_bare").Param("x", Scalar(1)));
  Delegate delegate(world.Node("MPM_bare"));
  auto material = delegate.Material();
  auto mapping = delegate.Mapping();
  auto mm = delegate.MappingMaterial();
  float coef = -1, color[3] = {-1, -1, -1}, gloss = -1, u = -1, v = -1;
  material->GetDiffuse(coef, color);
  material->GetSpecular(coef, color, gloss);
  material->GetTexturePosition(u, v);
  material->GetTextureSize(u, v);
  EXPECT_EQ(coef, -1);
  EXPECT_EQ(color[0], -1);
  EXPECT_EQ(gloss, -1);
  EXPECT_EQ(u, -1);
  EXPECT_EQ(material->GetTextureAngle(), 0.0f);
  EXPECT_EQ(material->GetTransparencyCoef(), 0.0f);
  double d = -1, r = -1, g = -1, b = -1;
  unsigned char repeat = 9;
  for (HRESULT hr : {mm->GetContrast(d), mm->GetShininess(d), mm->GetTransparency(d),
                     mm->GetColor(r, g, b), mm->GetTextureRepeat(repeat), mapping->GetRatio(d),
                     mapping->GetSize(d), mapping->SetSize(2.0), mapping->SetTranslationU(d)})
    EXPECT_EQ(hr, E_FAIL);
  EXPECT_EQ(d, -1);
  EXPECT_EQ(r, -1);
  // Translations start from 0 when the offsets are missing.
  EXPECT_EQ(mapping->GetTranslationU(d), S_OK);
  EXPECT_EQ(d, 0.0);
}

TEST_F(MaterialQueriesTest, PhysicalTransparencyCoefficient) {
  struct Row {
    float transparency;
    bool opacity;
    float expected;
  };
  const Row rows[] = {{0.3f, true, 0.7f},
                      {0.8f, true, 0.8f},
                      {1.5f, true, 1.0f},
                      {0.3f, false, 0.0f},
                      {0.5f, true, 0.5f}};
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.transparency << " opacity " << row.opacity);
    World world;
    Type type("MPM_glass");
    type.Param("default_slot_transparency", Scalar(row.transparency));
    if (row.opacity) type.Param("default_slot_opacity", Scalar(0.0f));
    world.Add(type);
    Delegate delegate(world.Node("MPM_glass"));
    EXPECT_FLOAT_EQ(delegate.Material()->GetTransparencyCoef(), row.expected);
  }
}

TEST_F(MaterialQueriesTest, PhysicalMappingType) {
  struct Row {
    std::optional<int> version;
    std::optional<int> type;
    short expected;
  };
  const Row rows[] = {
      {0, 5, 8},
      {std::nullopt, 5, 5},
      {0, 4, 6},
      {std::nullopt, 4, 4},
      {2, 4, 4},
      {0, 2, 2},
      {1, 6, 6},
      {1, 9, 6},
      {0, 7, 6},
      {1, 8, 8},
      {0, std::nullopt, 6},
      {std::nullopt, std::nullopt, 6},
      {1, -1, 6},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message()
                 << "version " << row.version.value_or(-99) << " type " << row.type.value_or(-99));
    World world;
    Type type("MPM_paint");
    type.Param("x", Scalar(0));
    if (row.version) type.Param("RNDMaterialVersion", Integer(*row.version));
    if (row.type) type.Param("type", Integer(*row.type));
    world.Add(type);
    Delegate delegate(world.Node("MPM_paint"));
    short m = -1;
    EXPECT_EQ(delegate.Mapping()->GetMappingType(m), S_OK);
    EXPECT_EQ(m, row.expected);
  }
}

TEST_F(MaterialQueriesTest, OtherShaderLightingDefaults) {
  Startup startup;  // the translucent test reads the type stored by the program search
  startup.SetPath({"A"});
  struct Row {
    const char* type;
    float transparency;
  };
  const Row rows[] = {{"mia_phen_frosted_glass", 0.5f},
                      {"mia_phen_clear_glass", 0.5f},
                      {"mia_phen_reflective_translucent", 0.5f},
                      {"mia_phen_material", 0.0f},
                      {"kep_phen_texture", 0.0f}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.type);
    World world;
    world.Add(Type(row.type).Param("default_slot_diffuse_color", Color(0.1f, 0.2f, 0.3f)));
    Delegate delegate(world.Node(row.type));
    auto material = delegate.Material();
    auto mm = delegate.MappingMaterial();
    EXPECT_FLOAT_EQ(material->GetTransparencyCoef(), row.transparency);
    float coef = -1, color[3] = {-1, -1, -1}, gloss = -1;
    material->GetAmbient(coef, color);
    EXPECT_EQ(color[0], 1.0f);
    material->GetSpecular(coef, color, gloss);
    EXPECT_EQ(coef, 0.0f);
    EXPECT_EQ(color[2], 1.0f);
    EXPECT_EQ(gloss, 0.0f);
    double d = -1, r = -1, g = -1, b = -1;
    EXPECT_EQ(mm->GetLuminosity(d), S_OK);
    EXPECT_EQ(d, 1.0);
    EXPECT_EQ(mm->GetContrast(d), S_OK);
    EXPECT_EQ(d, 1.0);
    EXPECT_EQ(mm->GetTransparency(d), E_FAIL);
    EXPECT_EQ(mm->GetColor(r, g, b), S_OK);
    EXPECT_EQ(r, -1);  // untouched, even with a diffuse colour parameter
    unsigned char repeat = 9;
    EXPECT_EQ(mm->GetTextureRepeat(repeat), E_FAIL);
  }
}

Type UvMaterial() {
  return Type("mia_phen_material")
      .Param("_uv_mapping", Integer(2))
      .Param("_uv_flip_u", Boolean(false))
      .Param("_uv_flip_v", Boolean(true))
      .Param("_uv_offset_u", Scalar(0.1f))
      .Param("_uv_offset_v", Scalar(0.2f))
      .Param("_uv_scale_u", Scalar(2.0f))
      .Param("_uv_scale_v", Scalar(4.0f))
      .Param("_uv_angle", Scalar(45.0f));
}

TEST_F(MaterialQueriesTest, OtherShaderUvFamily) {
  World world;
  world.Add(UvMaterial());
  KEPHostShaderNode* node = world.Node("mia_phen_material");
  Delegate delegate(node);
  auto material = delegate.Material();
  auto mapping = delegate.Mapping();
  double d = -1;
  EXPECT_EQ(mapping->GetRatio(d), S_OK);
  EXPECT_EQ(d, 0.5);
  EXPECT_EQ(mapping->GetScale(d), S_OK);
  EXPECT_EQ(d, 2.0);
  EXPECT_EQ(mapping->GetSize(d), S_OK);
  EXPECT_EQ(d, 2.0);
  short m = -1;
  EXPECT_EQ(mapping->GetMappingType(m), S_OK);
  EXPECT_EQ(m, 2);
  int wu = -1, wv = -1;
  material->GetTextureWrapping(wu, wv);
  EXPECT_EQ(wu + wv, 2);
  unsigned char fv = 0;
  mapping->GetFlipV(fv);
  EXPECT_EQ(fv, 1);
  EXPECT_EQ(mapping->GetTranslationU(d), S_OK);
  EXPECT_FLOAT_EQ(static_cast<float>(d), 0.1f);
  EXPECT_EQ(mapping->GetRotation(d), S_OK);
  EXPECT_EQ(d, 45.0);

  EXPECT_EQ(mapping->SetSize(3.0), S_OK);
  EXPECT_EQ(world.Param(node, "_uv_scale_u")->Value().scalar, 3.0f);
  EXPECT_EQ(world.Param(node, "_uv_scale_v")->Value().scalar, 1.5f);
  double t = 1.0;
  EXPECT_EQ(mapping->SetTranslationU(t), E_FAIL);  // no "_uv_offset" writes
  EXPECT_EQ(world.Param(node, "_uv_offset_u")->Value().scalar, 0.1f);
}

// A u/v pair whose second value cannot be read (a colour where a number or flag is expected):
// a physical shader answers both or nothing; another shader does not check its reads.
TEST_F(MaterialQueriesTest, UvPairsWithAnUnreadableValue) {
  World world;
  world.Add(Type("MPM_broken")
                .Param("repeat_u", Boolean(true))
                .Param("repeat_v", Color(1, 1, 1))
                .Param("flip_u", Boolean(true))
                .Param("flip_v", Color(1, 1, 1))
                .Param("offset_u", Scalar(0.25f))
                .Param("offset_v", Color(1, 1, 1))
                .Param("scale_u", Scalar(2.0f))
                .Param("scale_v", Color(1, 1, 1)));
  world.Add(Type("mia_phen_material")
                .Param("_uv_flip_u", Boolean(true))
                .Param("_uv_flip_v", Color(1, 1, 1))
                .Param("_uv_offset_u", Scalar(0.25f))
                .Param("_uv_offset_v", Color(1, 1, 1))
                .Param("_uv_scale_u", Scalar(2.0f))
                .Param("_uv_scale_v", Color(1, 1, 1)));
  {
    SCOPED_TRACE("physical");
    Delegate delegate(world.Node("MPM_broken"));
    auto material = delegate.Material();
    int wu = -1, wv = -1;
    material->GetTextureWrapping(wu, wv);
    EXPECT_EQ(wu, -1);
    EXPECT_EQ(wv, -1);
    unsigned char repeat = 9, fu = 9, fv = 9;
    EXPECT_EQ(delegate.MappingMaterial()->GetTextureRepeat(repeat), E_FAIL);
    EXPECT_EQ(repeat, 9);
    material->GetTextureFlip(fu, fv);
    EXPECT_EQ(fu, 9);
    float u = -1, v = -1;
    material->GetTexturePosition(u, v);
    EXPECT_EQ(u, -1);
    material->GetTextureSize(u, v);
    EXPECT_EQ(u, -1);
    double d = -1;
    EXPECT_EQ(delegate.Mapping()->GetRatio(d), E_FAIL);
    EXPECT_EQ(d, -1);
  }
  {
    SCOPED_TRACE("other");
    Delegate delegate(world.Node("mia_phen_material"));
    auto material = delegate.Material();
    unsigned char fu = 9, fv = 9;
    material->GetTextureFlip(fu, fv);
    EXPECT_EQ(fu, 1);
    EXPECT_EQ(fv, 0);
    float u = -1, v = -1;
    material->GetTexturePosition(u, v);
    EXPECT_EQ(u, 0.25f);
    EXPECT_EQ(v, 0.0f);
    material->GetTextureSize(u, v);
    EXPECT_EQ(u, 2.0f);
    EXPECT_EQ(v, 1.0f);
  }
}

TEST_F(MaterialQueriesTest, OtherShaderZeroScaleHasNoRatio) {
  World world;
  world.Add(Type("mia_phen_material")
                .Param("_uv_mapping", Integer(0))
                .Param("_uv_scale_u", Scalar(2.0f))
                .Param("_uv_scale_v", Scalar(0.0f)));
  KEPHostShaderNode* node = world.Node("mia_phen_material");
  Delegate delegate(node);
  double d = -1;
  EXPECT_EQ(delegate.Mapping()->GetRatio(d), E_FAIL);
  EXPECT_EQ(delegate.Mapping()->SetSize(5.0), E_FAIL);
  EXPECT_EQ(world.Param(node, "_uv_scale_u")->Value().scalar, 2.0f);
}

// A material without the "_uv_mapping" family, connected through its second parameter to a
// texture node that has the family and an image.
struct ConnectedWorld {
  World world;
  KEPHostShaderNode* material = nullptr;
  KEPHostShaderNode* texture = nullptr;
  ConnectedWorld(bool connect, const std::string& image) {
    world.Add(Type("mia_phen_material").Param("diffuse", Color(1, 1, 1)).Param("map", Void()));
    world.Add(Type("kep_phen_texture")
                  .TextureShader()
                  .Param("image", Texture(image))
                  .Param("_uv_mapping", Integer(4))
                  .Param("_uv_flip_u", Boolean(true))
                  .Param("_uv_flip_v", Boolean(true))
                  .Param("_uv_offset_u", Scalar(0.3f))
                  .Param("_uv_offset_v", Scalar(0.4f))
                  .Param("_uv_scale_u", Scalar(3.0f))
                  .Param("_uv_scale_v", Scalar(6.0f))
                  .Param("_uv_angle", Scalar(90.0f)));
    material = world.Node("mia_phen_material", "mat");
    texture = world.Node("kep_phen_texture", "tex");
    if (connect) {
      EXPECT_EQ(world.Param(material, "map")->SetConnectedShader(texture), S_OK);
    }
  }
};

TEST_F(MaterialQueriesTest, ConnectedTextureAnswersForTheMaterial) {
  ConnectedWorld w(true, kChecker);
  Delegate delegate(w.material);
  auto material = delegate.Material();
  auto mapping = delegate.Mapping();
  unsigned char fu = 0, fv = 0;
  material->GetTextureFlip(fu, fv);
  EXPECT_EQ(fu + fv, 2);
  float u = -1, v = -1;
  material->GetTexturePosition(u, v);
  EXPECT_FLOAT_EQ(u, 0.3f);
  EXPECT_FLOAT_EQ(v, 0.4f);
  material->GetTextureSize(u, v);
  EXPECT_EQ(u, 3.0f);
  EXPECT_EQ(v, 6.0f);
  EXPECT_EQ(material->GetTextureAngle(), 90.0f);
  int wu = 0, wv = 0;
  material->GetTextureWrapping(wu, wv);
  EXPECT_EQ(wu + wv, 2);
  short m = -1;
  EXPECT_EQ(mapping->GetMappingType(m), S_OK);
  EXPECT_EQ(m, 4);
  double d = -1;
  EXPECT_EQ(mapping->GetRatio(d), S_OK);
  EXPECT_EQ(d, 0.5);
  EXPECT_EQ(mapping->GetSize(d), S_OK);
  EXPECT_EQ(d, 3.0);
  EXPECT_EQ(mapping->SetSize(2.0), S_OK);
  EXPECT_EQ(w.world.Param(w.texture, "_uv_scale_v")->Value().scalar, 1.0f);

  KEP_var<KEPTexturePixelImage> image =
      KEP_var<KEPTexturePixelImage>::Adopt(material->GetTextureImage());
  ASSERT_TRUE(image);
  EXPECT_EQ(image->GetWidth(), 16);
  EXPECT_EQ(image->GetPath().ToUTF8(), kChecker);
}

TEST_F(MaterialQueriesTest, WithoutConnectedTextureTheDefaultsHold) {
  ConnectedWorld w(false, kChecker);
  Delegate delegate(w.material);
  auto material = delegate.Material();
  auto mapping = delegate.Mapping();
  float u = -1, v = -1;
  material->GetTextureSize(u, v);
  EXPECT_EQ(u, 1.0f);
  EXPECT_EQ(v, 1.0f);
  material->GetTexturePosition(u, v);
  EXPECT_EQ(u, 0.0f);
  EXPECT_EQ(v, 0.0f);
  int wu = -1, wv = -1;
  material->GetTextureWrapping(wu, wv);
  EXPECT_EQ(wu + wv, 0);
  EXPECT_EQ(material->GetTextureAngle(), 0.0f);
  EXPECT_EQ(material->GetTextureImage(), nullptr);
  short m = -1;
  double d = -1;
  EXPECT_EQ(mapping->GetMappingType(m), E_FAIL);
  EXPECT_EQ(mapping->GetRatio(d), E_FAIL);
  EXPECT_EQ(mapping->GetSize(d), E_FAIL);
  EXPECT_EQ(mapping->SetSize(1.0), E_FAIL);
}

TEST_F(MaterialQueriesTest, ConnectionChangesAfterTheFirstQuestionAreSeen) {
  ConnectedWorld w(false, kChecker);
  Delegate delegate(w.material);
  auto material = delegate.Material();
  float u = -1, v = -1;
  material->GetTextureSize(u, v);
  EXPECT_EQ(u, 1.0f) << "nothing connected yet";
  auto* map = w.world.Param(w.material, "map");
  ASSERT_EQ(map->SetConnectedShader(w.texture), S_OK);
  material->GetTextureSize(u, v);
  EXPECT_EQ(u, 3.0f) << "connected after the first question";
  KEPHostShaderNode* other = w.world.Node("kep_phen_texture", "tex2");
  w.world.Param(other, "_uv_scale_u")->SetScalarValue(7.0f);
  map->SetConnectedShader(other);
  material->GetTextureSize(u, v);
  EXPECT_EQ(u, 7.0f) << "re-connected to another texture";
  map->SetConnectedShader(nullptr);
  u = v = -1;
  material->GetTextureSize(u, v);
  EXPECT_EQ(u, 1.0f) << "disconnected";
}

TEST_F(MaterialQueriesTest, ConnectionCycleEndsInDefaults) {
  World world;
  world.Add(Type("mia_phen_material").Param("map", Void()));
  KEPHostShaderNode* a = world.Node("mia_phen_material", "a");
  KEPHostShaderNode* b = world.Node("mia_phen_material", "b");
  world.Param(a, "map")->SetConnectedShader(b);
  world.Param(b, "map")->SetConnectedShader(a);
  Delegate delegate(a);
  float u = -1, v = -1;
  delegate.Material()->GetTextureSize(u, v);
  EXPECT_EQ(u, 1.0f);
  double d = -1;
  EXPECT_EQ(delegate.Mapping()->GetRatio(d), E_FAIL);
}

TEST_F(MaterialQueriesTest, TextureImageFromTheFirstTextureParameter) {
  World world;
  world.Add(Type("kep_phen_texture")
                .Param("empty", Texture(""))
                .Param("broken", Texture("/nonexistent/image.png"))
                .Param("image", Texture(kChecker)));
  Delegate delegate(world.Node("kep_phen_texture"));
  KEP_var<KEPTexturePixelImage> image =
      KEP_var<KEPTexturePixelImage>::Adopt(delegate.Material()->GetTextureImage());
  ASSERT_TRUE(image);
  EXPECT_EQ(image->GetHeight(), 16);
  KEP_var<KEPTexturePixelImage> again =
      KEP_var<KEPTexturePixelImage>::Adopt(delegate.MappingMaterial()->GetTexturePixelImage());
  EXPECT_EQ(again.Get(), image.Get());

  auto program = delegate.Program();
  KEPString name = "image";
  const int position = program->CheckExternalShaderImagesLink(name);
  EXPECT_EQ(position, 3);
  KEPUnicodeString path = u"unchanged";
  program->GetExternalShaderImageLink(1, path);  // no document
  EXPECT_EQ(path.ToUTF8(), "unchanged");
  program->GetExternalShaderImageLink(position, path);
  EXPECT_EQ(path.ToUTF8(), kChecker);
}

// A derived material whose texture placement is its own: the derived answers follow it.
class ShiftedMaterial : public KEPRshShaderHardwareDefault {
 public:
  static KEPBaseUnknown* Make() { return new ShiftedMaterial(); }
  void GetTextureSize(float& u, float& v) override { u = 6.0f, v = 3.0f; }
  void GetTextureFlip(unsigned char& u, unsigned char& v) override { u = 1, v = 0; }
  float GetTextureAngle() override { return 12.0f; }
  void GetTexturePosition(float& u, float& v) override { u = 0.25f, v = 0.75f; }
};
KEP_DEFINE_TIE(KEPIRmaMappingManipulator, ShiftedMaterial)

TEST_F(MaterialQueriesTest, DerivedOverridesChangeDerivedAnswers) {
  KEPExtensionRegistry::Register({"TestShiftedDelegate", KEPIRshShaderLink::IID().name,
                                  "KEPRshShaderHardwareLink", &KEPRshShaderHardwareLink::Create,
                                  &CreateTIEKEPIRshShaderLinkKEPRshShaderHardwareLink});
  KEPExtensionRegistry::Register({"TestShiftedDelegate", KEPIRmaMappingManipulator::IID().name,
                                  "ShiftedMaterial", &ShiftedMaterial::Make,
                                  &CreateTIEKEPIRmaMappingManipulatorShiftedMaterial});
  World world;
  world.Add(Type("mia_phen_material")
                .Param("_uv_mapping", Integer(0))
                .Param("_uv_scale_u", Scalar(1.0f))
                .Param("_uv_scale_v", Scalar(1.0f)));
  KEPHostShaderNode* node = world.Node("mia_phen_material");
  auto component = KEP_var<KEPBaseUnknown>::Adopt(KEPCreateComponent("TestShiftedDelegate"));
  KEPQueryVar<KEPIRshShaderLink>(component)->SetShader(node);
  auto mapping = KEPQueryVar<KEPIRmaMappingManipulator>(component);
  double d = -1;
  EXPECT_EQ(mapping->GetRatio(d), S_OK);
  EXPECT_EQ(d, 2.0);
  EXPECT_EQ(mapping->GetScale(d), S_OK);
  EXPECT_EQ(d, 6.0);
  EXPECT_EQ(mapping->GetSize(d), S_OK);
  EXPECT_EQ(d, 6.0);
  EXPECT_EQ(mapping->GetRotation(d), S_OK);
  EXPECT_EQ(d, 12.0);
  unsigned char flip = 0;
  mapping->GetFlipU(flip);
  EXPECT_EQ(flip, 1);
  EXPECT_EQ(mapping->GetTranslationV(d), S_OK);
  EXPECT_EQ(d, 0.75);
  // SetSize takes its ratio from GetRatio, which follows the derived size (6 / 3).
  EXPECT_EQ(mapping->SetSize(3.0), S_OK);
  EXPECT_EQ(world.Param(node, "_uv_scale_v")->Value().scalar, 6.0f);
}

}  // namespace
