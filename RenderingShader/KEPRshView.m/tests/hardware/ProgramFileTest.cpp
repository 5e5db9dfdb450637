// Where the viewer's program file comes from: the search orders over "KEPStartupPath", the
// common physical program, the fallback, and the sticker sibling.
#include "HardwareTestSupport.h"
#include "KEPHostContext.h"
#include "KEPRbaImageServices.h"
#include "KEPRshShaderProgramLocator.h"

using namespace keptest;
using namespace hwtest;

namespace {

struct SearchCase {
  const char* what;
  const char* type;
  std::vector<std::pair<std::string, std::string>> files;  // label, relative path
  std::vector<std::string> path;                           // labels; "missing" is never created
  std::string expectLabel;                                 // "" = no file
  std::string expectRelative;
};

class ProgramFileTest : public HardwareFixture {};

TEST_F(ProgramFileTest, SearchOrders) {
  const std::vector<SearchCase> cases = {
      {"physical type uses the common program, never its own",
       "MPM_car_paint",
       {{"A", "shaders/MPM_car_paint.cgfx"}, {"A", "materials/shaders/MPM_material.cgfx"}},
       {"A"},
       "A",
       "materials/shaders/MPM_material.cgfx"},
      {"every directory is tried for the common program before the type's own",
       "MPM_car_paint",
       {{"A", "shaders/MPM_car_paint.cgfx"}, {"B", "shaders/MPM_material.cgfx"}},
       {"A", "B"},
       "B",
       "shaders/MPM_material.cgfx"},
      {"within a directory materials/shaders comes before shaders",
       "MPM_car_paint",
       {{"A", "shaders/MPM_material.cgfx"}, {"A", "materials/shaders/MPM_material.cgfx"}},
       {"A"},
       "A",
       "materials/shaders/MPM_material.cgfx"},
      {"the first directory wins over a later materials/shaders",
       "MPM_car_paint",
       {{"A", "shaders/MPM_material.cgfx"}, {"B", "materials/shaders/MPM_material.cgfx"}},
       {"A", "B"},
       "A",
       "shaders/MPM_material.cgfx"},
      {"physical type without the common program uses its own",
       "MPM_car_paint",
       {{"B", "shaders/MPM_car_paint.cgfx"}, {"A", "materials/shaders/rsh_default.cgfx"}},
       {"A", "B"},
       "B",
       "shaders/MPM_car_paint.cgfx"},
      {"physical type falls back on rsh_default",
       "MPM_glass",
       {{"B", "shaders/rsh_default.cgfx"}},
       {"A", "B"},
       "B",
       "shaders/rsh_default.cgfx"},
      {"an empty segment is kept (it probes /materials/shaders and /shaders), a missing directory "
       "finds nothing",
       "MPM_car_paint",
       {{"B", "shaders/MPM_material.cgfx"}},
       {"missing", "", "B"},
       "B",
       "shaders/MPM_material.cgfx"},
      {"other type: its own program under materials/shaders",
       "mia_phen_material",
       {{"B", "materials/shaders/mia_phen_material.cgfx"},
        {"A", "materials/shaders/rsh_default.cgfx"}},
       {"A", "B"},
       "B",
       "materials/shaders/mia_phen_material.cgfx"},
      {"other type without a program of its own falls back on rsh_default",
       "mia_phen_clear_glass",
       {{"A", "materials/shaders/rsh_default.cgfx"}},
       {"A"},
       "A",
       "materials/shaders/rsh_default.cgfx"},
      {"other type: a program under shaders is not looked at",
       "mia_phen_material",
       {{"A", "shaders/mia_phen_material.cgfx"}, {"A", "materials/shaders/rsh_default.cgfx"}},
       {"A"},
       "A",
       "materials/shaders/rsh_default.cgfx"},
      {"texture type under materials/shaders",
       "kep_phen_texture",
       {{"A", "materials/shaders/kep_phen_texture.cgfx"}},
       {"A"},
       "A",
       "materials/shaders/kep_phen_texture.cgfx"},
      {"nothing anywhere gives no file",
       "mia_phen_material",
       {{"A", "shaders/rsh_default.cgfx"}},
       {"A"},
       "",
       ""},
  };
  for (const SearchCase& c : cases) {
    SCOPED_TRACE(c.what);
    Startup startup;
    for (const auto& [label, relative] : c.files) startup.File(label, relative);
    startup.SetPath(c.path);
    World world;
    world.Add(Type(c.type).Param("x", Scalar(1)));
    Delegate delegate(world.Node(c.type, "n"));
    const std::string expected =
        c.expectLabel.empty() ? "" : startup.Dir(c.expectLabel) + "/" + c.expectRelative;
    EXPECT_EQ(delegate.Program()->GetExternalShader().ToUTF8(), expected);
  }
}

TEST_F(ProgramFileTest, WithoutStartupPathNoShaderHasAProgram) {
  World world;
  world.Add(Type("MPM_car_paint").Param("x", Scalar(1)));
  world.Add(Type("mia_phen_material").Param("x", Scalar(1)));
  world.Add(Type("mia_phen_frosted_glass").Param("x", Scalar(1)));
  for (const char* type : {"MPM_car_paint", "mia_phen_material", "mia_phen_frosted_glass"}) {
    SCOPED_TRACE(type);
    Delegate delegate(world.Node(type));
    EXPECT_TRUE(delegate.Program()->GetExternalShader().IsEmpty());
    // The shader type is stored only by a search along the startup path: no glass answer.
    EXPECT_EQ(delegate.Material()->GetTransparencyCoef(), 0.0f);
  }
}

TEST_F(ProgramFileTest, StartupPathIsReadOnceForTheProcess) {
  Startup startup;
  startup.File("A", "materials/shaders/rsh_default.cgfx");
  startup.File("B", "materials/shaders/rsh_default.cgfx");
  startup.SetPath({"A"});
  World world;
  world.Add(Type("mia_phen_material").Param("x", Scalar(1)));
  Delegate first(world.Node("mia_phen_material", "n1"));
  EXPECT_EQ(first.Program()->GetExternalShader().ToUTF8(),
            startup.Dir("A") + "/materials/shaders/rsh_default.cgfx");
  setenv("KEPStartupPath", startup.Dir("B").c_str(), 1);  // too late: the value is cached
  Delegate second(world.Node("mia_phen_material", "n2"));
  EXPECT_EQ(second.Program()->GetExternalShader().ToUTF8(),
            startup.Dir("A") + "/materials/shaders/rsh_default.cgfx");
}

TEST_F(ProgramFileTest, AMissingStartupPathIsCachedAsMissingUntilAReset) {
  Startup startup;
  const std::string inA = startup.File("A", "materials/shaders/rsh_default.cgfx");
  World world;
  world.Add(Type("mia_phen_material").Param("x", Scalar(1)));
  Delegate before(world.Node("mia_phen_material", "n1"));
  EXPECT_TRUE(before.Program()->GetExternalShader().IsEmpty());
  setenv("KEPStartupPath", startup.Dir("A").c_str(), 1);
  Delegate unset(world.Node("mia_phen_material", "n2"));
  EXPECT_TRUE(unset.Program()->GetExternalShader().IsEmpty()) << "the missing value was not kept";
  KEPRunProcessResetHooks();
  Delegate after(world.Node("mia_phen_material", "n3"));
  EXPECT_EQ(after.Program()->GetExternalShader().ToUTF8(), inA);
}

TEST_F(ProgramFileTest, ForgettingTheProcessCacheReadsTheStartupPathAgain) {
  Startup startup;
  const std::string inA = startup.File("A", "materials/shaders/rsh_default.cgfx");
  const std::string inB = startup.File("B", "shaders/rsh_default.cgfx");
  startup.SetPath({"A"});
  KEPUnicodeString found;
  ASSERT_TRUE(KEPRshShaderProgramLocator::FindByBaseName("rsh_default", found));
  EXPECT_EQ(found.ToUTF8(), inA);
  setenv("KEPStartupPath", startup.Dir("B").c_str(), 1);
  ASSERT_TRUE(KEPRshShaderProgramLocator::FindByBaseName("rsh_default", found));
  EXPECT_EQ(found.ToUTF8(), inA);  // cached for the process
  KEPRshShaderProgramLocator::ForgetProcessCache();
  ASSERT_TRUE(KEPRshShaderProgramLocator::FindByBaseName("rsh_default", found));
  EXPECT_EQ(found.ToUTF8(), inB);

  // A variable unset after the first read is still seen until the cache is forgotten.
  unsetenv("KEPStartupPath");
  EXPECT_TRUE(KEPRshShaderProgramLocator::HasStartupPath());
  KEPRshShaderProgramLocator::ForgetProcessCache();
  EXPECT_FALSE(KEPRshShaderProgramLocator::HasStartupPath());
  found = KEPUnicodeString(u"keep");
  EXPECT_FALSE(KEPRshShaderProgramLocator::FindByBaseName("rsh_default", found));
  EXPECT_FALSE(KEPRshShaderProgramLocator::ResolveAlongStartupPath("mia_phen_material", found));
  EXPECT_EQ(found.ToUTF8(), "keep");
}

TEST_F(ProgramFileTest, AHostResetLooksLikeANewProcessToTheSearch) {
  // The fixture registered the module, and with it the locator's process-reset hook.
  Startup startup;
  startup.File("A", "materials/shaders/rsh_default.cgfx");
  const std::string inB = startup.File("B", "materials/shaders/rsh_default.cgfx");
  startup.SetPath({"A"});
  World world;
  world.Add(Type("mia_phen_material").Param("x", Scalar(1)));
  Delegate first(world.Node("mia_phen_material", "n1"));
  EXPECT_EQ(first.Program()->GetExternalShader().ToUTF8(),
            startup.Dir("A") + "/materials/shaders/rsh_default.cgfx");
  setenv("KEPStartupPath", startup.Dir("B").c_str(), 1);
  KEPRunProcessResetHooks();
  Delegate second(world.Node("mia_phen_material", "n2"));
  EXPECT_EQ(second.Program()->GetExternalShader().ToUTF8(), inB);
  // A program already found stays with its material.
  EXPECT_EQ(first.Program()->GetExternalShader().ToUTF8(),
            startup.Dir("A") + "/materials/shaders/rsh_default.cgfx");
}

TEST(PhysicalShaderType, BeginsWithMPM) {
  for (const char* type : {"MPM", "MPM_car_paint", "MPMx"})
    EXPECT_TRUE(KEPRshIsPhysicalShaderType(type)) << type;
  for (const char* type : {"", "M", "MP", "mpm_car_paint", "xMPM", " MPM", "mia_phen_material"})
    EXPECT_FALSE(KEPRshIsPhysicalShaderType(type)) << type;
}

TEST_F(ProgramFileTest, FileFoundOnceIsKeptForTheObjectsLife) {
  Startup startup;
  const std::string file = startup.File("A", "materials/shaders/MPM_material.cgfx");
  startup.SetPath({"A"});
  World world;
  world.Add(Type("MPM_car_paint").Param("x", Scalar(1)));
  Delegate delegate(world.Node("MPM_car_paint"));
  EXPECT_EQ(delegate.Program()->GetExternalShader().ToUTF8(), file);
  std::filesystem::remove(file);
  EXPECT_EQ(delegate.Program()->GetExternalShader().ToUTF8(), file);
}

TEST_F(ProgramFileTest, StickerModeAsksForTheStkSibling) {
  Startup startup;
  const std::string file = startup.File("A", "materials/shaders/MPM_material.cgfx");
  startup.File("A", "materials/shaders/rsh_default.cgfx");
  startup.SetPath({"A"});
  World world;
  world.Add(Type("MPM_car_paint").Param("x", Scalar(1)));
  world.Add(Type("mia_phen_material").Param("x", Scalar(1)));
  Delegate physical(world.Node("MPM_car_paint"));
  auto program = physical.Program();
  EXPECT_EQ(program->IsStickerMode(), 0);
  program->SetStickerMode(1);
  EXPECT_EQ(program->IsStickerMode(), 1);
  EXPECT_EQ(program->GetExternalShader().ToUTF8(),
            startup.Dir("A") + "/materials/shaders/MPM_material_Stk.cgfx");
  program->SetStickerMode(0);
  EXPECT_EQ(program->GetExternalShader().ToUTF8(), file);

  Delegate other(world.Node("mia_phen_material"));
  other.Program()->SetStickerMode(1);
  EXPECT_EQ(other.Program()->GetExternalShader().ToUTF8(),
            startup.Dir("A") + "/materials/shaders/rsh_default_Stk.cgfx");
}

TEST_F(ProgramFileTest, StickerModeWithoutAProgramGivesAnEmptyPath) {
  World world;
  world.Add(Type("MPM_car_paint").Param("x", Scalar(1)));
  Delegate delegate(world.Node("MPM_car_paint"));
  delegate.Program()->SetStickerMode(1);
  EXPECT_TRUE(delegate.Program()->GetExternalShader().IsEmpty());
}

TEST(SplitPath, BaseKeepsTheDirectory) {
  struct Row {
    const char* path;
    const char* base;
    const char* extension;
  };
  const Row rows[] = {
      {"/s/shaders/MPM_material.cgfx", "/s/shaders/MPM_material", "cgfx"},
      {"/s.d/shaders/noext", "/s.d/shaders/noext", ""},
      {"a.b.c", "a.b", "c"},
      {"C:\\x.y\\file", "C:\\x.y\\file", ""},
      {"", "", ""},
      {"/dir/.hidden", "/dir/", "hidden"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    KEPUnicodeString base, extension;
    KEPRbaImageServices::SplitPath(KEPUnicodeString::FromUTF8(row.path), base, extension);
    EXPECT_EQ(base.ToUTF8(), row.base);
    EXPECT_EQ(extension.ToUTF8(), row.extension);
  }
}

}  // namespace
