// Where the viewer's program file comes from: the search orders over "KEPStartupPath", the
// common physical program, the fallback, and the sticker sibling.
#include "HardwareTestSupport.h"
#include "KEPHostContext.h"
#include "KEPRshShaderProgramLocator.h"

using namespace keptest;
using namespace hwtest;

namespace {

class ProgramFileTest : public HardwareFixture {};

TEST_F(ProgramFileTest, SearchOrders) {
  // Files are created in a temporary folder, ".cgfx" added; "missing" is never created.
  for (const auto& row : Table(R"(
  # type        | files |
  #               startup path | program found ("-": none)
  # A physical type uses the common program, never its own.
  MPM_car_paint | A/shaders/MPM_car_paint A/materials/shaders/MPM_material |
                  A | A/materials/shaders/MPM_material
  # Every directory is tried for the common program before the type's own.
  MPM_car_paint | A/shaders/MPM_car_paint B/shaders/MPM_material |
                  A;B | B/shaders/MPM_material
  # In a directory, materials/shaders comes before shaders; the first directory comes first.
  MPM_car_paint | A/shaders/MPM_material A/materials/shaders/MPM_material |
                  A | A/materials/shaders/MPM_material
  MPM_car_paint | A/shaders/MPM_material B/materials/shaders/MPM_material |
                  A;B | A/shaders/MPM_material
  # A physical type without the common program uses its own, else rsh_default.
  MPM_car_paint | B/shaders/MPM_car_paint A/materials/shaders/rsh_default |
                  A;B | B/shaders/MPM_car_paint
  MPM_glass     | B/shaders/rsh_default |
                  A;B | B/shaders/rsh_default
  # An empty segment is kept (it looks at /materials/shaders and /shaders).
  MPM_car_paint | B/shaders/MPM_material |
                  missing;;B | B/shaders/MPM_material
  # Another type: its own program under materials/shaders, else rsh_default there, else none.
  mia_phen_material | B/materials/shaders/mia_phen_material A/materials/shaders/rsh_default |
                      A;B | B/materials/shaders/mia_phen_material
  mia_phen_clear_glass | A/materials/shaders/rsh_default |
                         A | A/materials/shaders/rsh_default
  mia_phen_material | A/shaders/mia_phen_material A/materials/shaders/rsh_default |
                      A | A/materials/shaders/rsh_default
  kep_phen_texture  | A/materials/shaders/kep_phen_texture |
                      A | A/materials/shaders/kep_phen_texture
  mia_phen_material | A/shaders/rsh_default |
                      A | -
  )")) {
    SCOPED_TRACE(Out(row[0], "with", row[1]));
    Startup startup;
    std::istringstream files(row[1]);
    for (std::string file; files >> file;) startup.File(file + ".cgfx");
    startup.SetPath(row[2]);
    auto shader = Shader(row[0], "");
    EXPECT_EQ(Delegate(shader.Get()).program->GetExternalShader().ToUTF8(),
              row[3] == "-" ? "" : startup.Dir(row[3]) + ".cgfx");
  }
}

TEST_F(ProgramFileTest, WithoutStartupPathNoShaderHasAProgram) {
  for (const char* type : {"MPM_car_paint", "mia_phen_material", "mia_phen_frosted_glass"}) {
    auto shader = Shader(type, "");
    Delegate d(shader.Get());
    EXPECT_TRUE(d.program->GetExternalShader().IsEmpty()) << type;
    // The shader type is stored only by a search along the startup path: no glass answer.
    EXPECT_EQ(Ask(d, "coefficient"), "0") << type;
  }
}

// The value of "KEPStartupPath" (or its absence) is read once for the process; a host reset
// makes the search read it again, and a program already found stays with its material.
TEST_F(ProgramFileTest, TheStartupPathIsReadOnceUntilAReset) {
  Startup startup;
  const std::string inA = startup.File("A/materials/shaders/rsh_default.cgfx");
  const std::string inB = startup.File("B/materials/shaders/rsh_default.cgfx");
  auto shader = Shader("mia_phen_material", "");
  auto programOf = [&] { return Delegate(shader.Get()).program->GetExternalShader().ToUTF8(); };
  EXPECT_EQ(programOf(), "");
  setenv("KEPStartupPath", startup.Dir("A").c_str(), 1);
  EXPECT_EQ(programOf(), "") << "the missing value is kept";
  KEPRunProcessResetHooks();
  Delegate first(shader.Get());
  EXPECT_EQ(first.program->GetExternalShader().ToUTF8(), inA);
  setenv("KEPStartupPath", startup.Dir("B").c_str(), 1);
  EXPECT_EQ(programOf(), inA) << "the value is kept";
  KEPRunProcessResetHooks();
  EXPECT_EQ(programOf(), inB);
  std::filesystem::remove(inA);
  EXPECT_EQ(first.program->GetExternalShader().ToUTF8(), inA);
}

TEST_F(ProgramFileTest, StickerModeAsksForTheStkSibling) {
  Startup startup;
  const std::string file = startup.File("A/materials/shaders/MPM_material.cgfx");
  startup.SetPath("A");
  auto shader = Shader("MPM_car_paint", "");
  Delegate d(shader.Get());
  KEPIOpenGLShaderMaterial& p = *d.program;
  EXPECT_EQ(p.IsStickerMode(), 0);
  p.SetStickerMode(1);
  EXPECT_EQ(p.IsStickerMode(), 1);
  const KEPUnicodeString& sticker = p.GetExternalShader();
  EXPECT_EQ(sticker.ToUTF8(), startup.Dir("A") + "/materials/shaders/MPM_material_Stk.cgfx");
  p.SetStickerMode(0);
  EXPECT_EQ(p.GetExternalShader().ToUTF8(), file);
  p.SetStickerMode(2);
  EXPECT_EQ(p.GetExternalShader().ToUTF8(), sticker.ToUTF8());
  EXPECT_EQ(sticker.ToUTF8(), startup.Dir("A") + "/materials/shaders/MPM_material_Stk.cgfx")
      << "the path handed out stays as it was";

  unsetenv("KEPStartupPath");
  KEPRunProcessResetHooks();
  Delegate none(shader.Get());
  none.program->SetStickerMode(1);
  EXPECT_TRUE(none.program->GetExternalShader().IsEmpty());
}

TEST(StickerVariant, StkBeforeTheExtension) {
  const std::pair<const char*, const char*> rows[] = {
      {"/s/shaders/MPM_material.cgfx", "/s/shaders/MPM_material_Stk.cgfx"},
      {"/s.d/shaders/noext", "/s.d/shaders/noext"},
      {"a.b.c", "a.b_Stk.c"},
      {"/dir/.hidden", "/dir/_Stk.hidden"},
      {"", ""},
  };
  for (const auto& [path, sticker] : rows)
    EXPECT_EQ(KEPRshShaderProgramLocator::StickerVariant(KEPUnicodeString::FromUTF8(path)).ToUTF8(),
              sticker)
        << path;
}

}  // namespace
