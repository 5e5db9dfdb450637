// The viewer's material answers, rule by rule: each answer of a physical and of another shader,
// and each way its parameters can be missing or fail to read. Shaders are written as words (see
// Shader); "map>" is a parameter connected to a texture that answers flip 1 0, position 0.3 0.4,
// size 3 6, angle 90 and mapping type 4 (TextureType).
#include <iterator>
#include <optional>

#include "HardwareTestSupport.h"

using namespace keptest;
using namespace hwtest;

namespace {

class MaterialQueriesTest : public HardwareFixture {
 protected:
  void SetUp() override {
    HardwareFixture::SetUp();
    world_.emplace();
    world_->Add(TextureType());
  }
  void TearDown() override {
    world_.reset();
    HardwareFixture::TearDown();
  }
  /// A texture node of its own for each shader: some questions write to it.
  KEPHostShaderNode* Texture() { return world_->Node("kep_phen_texture"); }
  /// The answer to `question` of a material over `type` and `words`, "map>" leading to a
  /// texture when `connected`.
  std::string Answer(const std::string& type, const std::string& words, const std::string& question,
                     bool connected = true) {
    auto shader = Shader(type, words, connected ? Texture() : nullptr);
    return Ask(Delegate(shader.Get()), question);
  }
  std::optional<World> world_;
};

TEST_F(MaterialQueriesTest, TheSameParametersReadAsPhysicalOrOther) {
  // Every parameter that either kind reads, with distinct values: each kind ignores the others.
  const std::string all =
      "default_generic_brdf_diffuse_weight=0.9 default_slot_diffuse_color=0.8,0.1,0.2 "
      "default_generic_brdf_diffuse_glossiness=0.3 default_generic_brdf_specular_weight=0.6 "
      "default_slot_specular_color=1,0.9,0.7 default_slot_specular_glossiness=0.75 "
      "default_slot_transparency=0.3 default_slot_opacity=0 repeat_u=2 repeat_v=0 flip_u=2 "
      "flip_v=0 offset_u=0.25 offset_v=0.5 scale_u=2 scale_v=8 angle=30 type=3 _uv_mapping=2 "
      "_uv_flip_u=0 _uv_flip_v=3 _uv_offset_u=0.125 _uv_offset_v=0.75 _uv_scale_u=4 "
      "_uv_scale_v=2 _uv_angle=45 map>";
  for (const auto& row : Table(R"(
      ambient          | 0 0 0 0            | 0 1 1 1
      diffuse          | 0.9 0.8 0.1 0.2    | 0 1 1 1
      specular         | 0.6 1 0.9 0.7 0.75 | 0 1 1 1 0
      coefficient      | 0.7                | 0
      luminosity       | S 0                | S 1
      contrast         | S 0.9              | S 1
      shininess        | S 0.6              | S 0
      transparency     | S 0.3              | E -1
      color            | S 0.8 0.1 0.2      | S -1 -1 -1
      transparentColor | S 0.8 0.1 0.2      | S -1 -1 -1
      useTransparent   | S 1                | S 0
      repeat           | S 0                | E 9
      wrapping         | 1 0                | 1 1
      flip             | 2 0                | 0 3
      flipU            | S 1                | S 0
      flipV            | S 0                | S 1
      position         | 0.25 0.5           | 0.125 0.75
      translationU     | S 0.25             | S 0.125
      translationV     | S 0.5              | S 0.75
      size             | 2 8                | 4 2
      scale            | S 2                | S 4
      getSize          | S 2                | S 4
      ratio            | S 0.25             | S 2
      angle            | 30                 | 45
      rotation         | S 30               | S 45
      mappingType      | S 3                | S 2
      image            | checker.png        | checker.png)")) {
    EXPECT_EQ(Answer("MPM_paint", all, row[0]), row[1]) << row[0];
    EXPECT_EQ(Answer("mia_phen_material", all, row[0]), row[2]) << row[0];
  }
}

TEST_F(MaterialQueriesTest, PhysicalMeansTheTypeBeginsWithMPM) {
  for (const char* type : {"MPM", "MPMx", "MPM_car_paint"})
    EXPECT_EQ(Answer(type, "", "ambient"), "0 0 0 0") << type;
  for (const char* type : {"xMPM", " MPM", "mpm_car_paint", "MP", ""})
    EXPECT_EQ(Answer(type, "", "ambient"), "0 1 1 1") << type;
}

// A pair of u and v parameters. A physical shader answers both values or leaves its outputs; any
// other reads each unchecked (a failed read leaves the value it starts from) and passes the
// question on to the texture when one is missing ("_uv_mapping" is present). Writes add the
// values stored afterwards ("-" for a missing parameter).
TEST_F(MaterialQueriesTest, PairsOfParameters) {
  const std::pair<const char*, const char*> tables[] = {{"MPM_paint", R"(
  # question     | u and v                    | both     | only u | only v | u fails | v fails
  flip           | flip_u=2 flip_v=3          | 2 3      | 9 9    | 9 9    | 9 9     | 9 9
  position       | offset_u=0.25 offset_v=0.5 | 0.25 0.5 | -1 -1  | -1 -1  | -1 -1   | -1 -1
  size           | scale_u=2 scale_v=8        | 2 8      | -1 -1  | -1 -1  | -1 -1   | -1 -1
  wrapping       | repeat_u=2 repeat_v=0      | 1 0      | -1 -1  | -1 -1  | -1 -1   | -1 -1
  repeat         | repeat_u=2 repeat_v=3      | S 1      | E 9    | E 9    | E 9     | E 9
  repeat         | repeat_u=2 repeat_v=0      | S 0      | E 9    | E 9    | E 9     | E 9
  repeat         | repeat_u=0 repeat_v=3      | S 0      | E 9    | E 9    | E 9     | E 9
  ratio          | scale_u=2 scale_v=8        | S 0.25   | E -1   | E -1   | E -1    | E -1
  getSize        | scale_u=2 scale_v=8        | S 2      | S 2    | E -1   | E -1    | S 2
  setSize        | scale_u=2 scale_v=8        | S 3 3    | E 2 -  | E - 8  | E 2 3   | E 3 8
  setTranslation | offset_u=0.25 offset_v=0.5 | S S 0.125 0.75 | S E 0.125 - | E S - 0.75 |
                                                F S 0.25 0.75  | S F 0.125 0.5)"},
                                                        {"other", R"(
  # question     | u and v                           | both | only u | only v | u fails | v fails
  flip           | _uv_flip_u=2 _uv_flip_v=3          | 2 3      | 1 0     | 1 0     | 0 3     | 2 0
  position       | _uv_offset_u=0.25 _uv_offset_v=0.5 | 0.25 0.5 | 0.3 0.4 | 0.3 0.4 | 0 0.5 |
                                                        0.25 0
  size           | _uv_scale_u=2 _uv_scale_v=8        | 2 8      | 3 6     | 3 6     | 1 8     | 2 1
  ratio          | _uv_scale_u=2 _uv_scale_v=8        | S 0.25   | S 0.5   | S 0.5   | S 0.125 | S 2
  getSize        | _uv_scale_u=2 _uv_scale_v=8        | S 2      | S 3     | S 3     | S 1     | S 2
  setSize        | _uv_scale_u=2 _uv_scale_v=8        | S 3 0.75 | S 2 -   | S - 8   |
                                                        S 2 0.375 | S 3 8
  setTranslation | _uv_offset_u=0.25 _uv_offset_v=0.5 | E E 0.25 0.5 | E E 0.25 - | E E - 0.5 |
                                                        E E 0.25 0.5 | E E 0.25 0.5)"}};
  for (const auto& [kind, table] : tables)
    for (const auto& row : Table(table)) {
      const std::string u = row[1].substr(0, row[1].find(' ')), v = row[1].substr(u.size() + 1);
      const std::string scenarios[] = {u + " " + v, u, v, u + "! " + v, u + " " + v + "!"};
      for (std::size_t i = 0; i < 5; ++i) {
        SCOPED_TRACE(Out(kind, row[0], "with", scenarios[i]));
        auto shader = Shader(kind, scenarios[i] + " _uv_mapping=2 map>", Texture());
        std::string answer = Ask(Delegate(shader.Get()), row[0]);
        if (row[0].starts_with("set"))
          for (const std::string& word : {u, v}) {
            FakeParameter* p = shader->Param(word.substr(0, word.find('=')));
            answer += p ? " " + Out(p->value[0]) : " -";
          }
        EXPECT_EQ(answer, row[2 + i]);
      }
    }
}

// One parameter (the first word; any others stay) read, missing or failing to read, with the
// texture connected and without. A physical shader never asks the texture.
TEST_F(MaterialQueriesTest, SingleParameters) {
  const std::pair<const char*, const char*> tables[] = {{"MPM_paint", R"(
  # question       | parameter                                | read | missing | fails
  contrast         | default_generic_brdf_diffuse_weight=0.9  | S 0.9 | E -1 | F -1
  shininess        | default_generic_brdf_specular_weight=0.6 | S 0.6 | E -1 | F -1
  transparency     | default_slot_transparency=0.3            | S 0.3 | E -1 | F -1
  color            | default_slot_diffuse_color=0.8,0.1,0.2   | S 0.8 0.1 0.2 | E -1 -1 -1 |
                                                                F -1 -1 -1
  transparentColor | default_slot_diffuse_color=0.8,0.1,0.2   | S 0.8 0.1 0.2 | E -1 -1 -1 |
                                                                F -1 -1 -1
  angle            | angle=30                                 | 30    | 0    | 0
  getSize          | scale_u=2                                | S 2   | E -1 | E -1)"},
                                                        {"other", R"(
  # question  | parameter     | read | missing | fails | read, missing without the texture
  angle       | _uv_angle=45  | 45  | 90  | 0   | 45  | 0
  mappingType | _uv_mapping=2 | S 2 | S 4 | S 0 | S 2 | E -1
  wrapping    | _uv_mapping=2 | 1 1 | 1 1 | 1 1 | 1 1 | 0 0
  ratio       | _uv_mapping=2 _uv_scale_u=2 _uv_scale_v=8 | S 0.25 | S 0.5 | S 0.25 | S 0.25 | E -1
  getSize     | _uv_mapping=2 _uv_scale_u=2 _uv_scale_v=8 | S 2    | S 3   | S 2    | S 2    | E -1
  ratio       | _uv_mapping=2 _uv_scale_u=0 _uv_scale_v=8 | E -1   | S 0.5 | E -1   | E -1   | E -1
  ratio       | _uv_mapping=2 _uv_scale_u=2 _uv_scale_v=0 | E -1   | S 0.5 | E -1   | E -1   | E -1
  setSize     | _uv_mapping=2 _uv_scale_u=2 _uv_scale_v=0 | E      | S     | E      | E      | E
  )"}};
  for (const auto& [kind, table] : tables)
    for (const auto& row : Table(table)) {
      const std::string& words = row[1];
      const std::string first = words.substr(0, words.find(' ')),
                        others = words.substr(first.size());
      const std::string scenarios[] = {words, others, first + "!" + others, words, others};
      // A physical row gives three answers: the same without the texture.
      const std::size_t answers = row.size() - 2;
      for (std::size_t i = 0; i < 5; ++i)
        EXPECT_EQ(Answer(kind, scenarios[i] + " map>", row[0], i < 3),
                  row[2 + (i < answers ? i : i - 3)])
            << row[0] << " with " << scenarios[i];
    }
}

TEST_F(MaterialQueriesTest, PhysicalLightingNeedsAllThreeParameters) {
  for (const auto& row : Table(R"(
  diffuse  | default_generic_brdf_diffuse_weight=0.9 | default_slot_diffuse_color=0.8,0.1,0.2 |
             default_generic_brdf_diffuse_glossiness=0.3 | 0.9 0.8 0.1 0.2 | -1 -1 -1 -1
  specular | default_generic_brdf_specular_weight=0.6 | default_slot_specular_color=1,0.9,0.7 |
             default_slot_specular_glossiness=0.75 | 0.6 1 0.9 0.7 0.75 | -1 -1 -1 -1 -1)")) {
    EXPECT_EQ(Answer("MPM_paint", row[1] + " " + row[2] + " " + row[3], row[0]), row[4]);
    for (std::size_t broken = 1; broken <= 3; ++broken)
      for (const char* how : {"missing", "!"}) {
        std::string shader;
        for (std::size_t i = 1; i <= 3; ++i)
          if (i != broken || *how == '!') shader += row[i] + (i == broken ? how : "") + " ";
        EXPECT_EQ(Answer("MPM_paint", shader, row[0]), row[5]) << shader;
      }
  }
}

TEST_F(MaterialQueriesTest, TransparencyCoefficient) {
  Startup startup;  // other shaders answer from the type stored by the program search
  startup.SetPath("A");
  for (const auto& row : Table(R"(
      # type                        | parameters                                | coefficient
      MPM_glass                       | default_slot_transparency=0.3 default_slot_opacity=0  | 0.7
      MPM_glass                       | default_slot_transparency=0.8 default_slot_opacity=0  | 0.8
      MPM_glass                       | default_slot_transparency=1.5 default_slot_opacity=0  | 1
      MPM_glass                       | default_slot_transparency=0.5 default_slot_opacity=0  | 0.5
      MPM_glass                       | default_slot_transparency=0.3 default_slot_opacity=0! | 0.7
      MPM_glass                       | default_slot_transparency=0.3! default_slot_opacity=0 | 0
      MPM_glass                       | default_slot_transparency=0.3                         | 0
      MPM_glass                       | default_slot_opacity=0                                | 0
      mia_phen_clear_glass            |                                                       | 0.5
      mia_phen_colored_glass          |                                                       | 0.5
      mia_phen_frosted_glass          |                                                       | 0.5
      mia_phen_simple_translucent     |                                                       | 0.5
      mia_phen_backside_translucent   |                                                       | 0.5
      mia_phen_reflective_translucent |                                                       | 0.5
      mia_phen_material               | default_slot_transparency=0.3 default_slot_opacity=0  | 0
  )"))
    EXPECT_EQ(Answer(row[0], row[1], "coefficient"), row[2]) << row[0] << " " << row[1];
}

TEST_F(MaterialQueriesTest, PhysicalMappingType) {
  for (const auto& row : Table(R"(
      RNDMaterialVersion=0 type=5  | S 8
      type=5                       | S 5
      RNDMaterialVersion=0 type=4  | S 6
      type=4                       | S 4
      RNDMaterialVersion=2 type=4  | S 4
      RNDMaterialVersion=0 type=0  | S 0
      RNDMaterialVersion=0 type=3  | S 3
      RNDMaterialVersion=0 type=7  | S 6
      RNDMaterialVersion=1 type=6  | S 6
      RNDMaterialVersion=1 type=7  | S 7
      RNDMaterialVersion=1 type=8  | S 8
      RNDMaterialVersion=1 type=9  | S 6
      RNDMaterialVersion=1 type=-1 | S 6
      RNDMaterialVersion=0         | S 6
      RNDMaterialVersion=1! type=5 | S 8
      RNDMaterialVersion=1! type=4 | S 6
      type=5!                      | S 6)"))
    EXPECT_EQ(Answer("MPM_paint", row[0], "mappingType"), row[1]) << row[0];
}

// A derived material whose texture placement is its own: the derived answers follow it.
class ShiftedMaterial : public KEPRshShaderHardwareDefault {
 public:
  static KEPBaseUnknown* Make() { return new ShiftedMaterial(); }
  void GetTextureSize(float& u, float& v) override { u = 6.0f, v = 3.0f; }
  void GetTextureFlip(unsigned char& u, unsigned char& v) override { u = 0, v = 1; }
  float GetTextureAngle() override { return 12.0f; }
  void GetTexturePosition(float& u, float& v) override { u = 0.25f, v = 0.75f; }
};
KEP_DEFINE_TIE(KEPIRmaMappingManipulator, ShiftedMaterial)

TEST_F(MaterialQueriesTest, DerivedOverridesChangeDerivedAnswers) {
  KEPExtensionRegistry::DeclareParent("TestShiftedDelegate", "KEPRshShaderDelegate");
  KEPExtensionRegistry::Register({"TestShiftedDelegate", KEPIRmaMappingManipulator::IID().name,
                                  "ShiftedMaterial", &ShiftedMaterial::Make,
                                  &CreateTIEKEPIRmaMappingManipulatorShiftedMaterial});
  auto shader = Shader("mia_phen_material", "_uv_mapping=0 _uv_scale_u=1 _uv_scale_v=1");
  Delegate d(shader.Get(), "TestShiftedDelegate");
  for (const auto& row : Table(R"(
      ratio        | S 2
      scale        | S 6
      getSize      | S 6
      rotation     | S 12
      flipU        | S 0
      flipV        | S 1
      translationU | S 0.25
      translationV | S 0.75
      setSize      | S)"))
    EXPECT_EQ(Ask(d, row[0]), row[1]) << row[0];
  EXPECT_EQ(shader->Param("_uv_scale_v")->value[0], 6.0f) << "3 times the derived ratio";
}

}  // namespace
