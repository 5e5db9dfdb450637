// Parameters by name and by position, as the viewer's program addresses them: the first question
// reads the list, a name that cannot be read shifts the later names, and a list read again after
// deletion keeps the old positions.
#include "HardwareTestSupport.h"
#include "KEPTextureDocument.h"

using namespace keptest;
using namespace hwtest;

namespace {

class PositionsTest : public HardwareFixture {};

TEST_F(PositionsTest, TheFirstQuestionReadsTheListAndItIsKept) {
  auto shader = Shader("MPM_paint", "x=1.5");
  Delegate d(shader.Get());
  KEPString x = "x", late = "late";
  EXPECT_EQ(d.program->CheckShaderFloatParameter(x), -1) << "nothing read yet";
  EXPECT_EQ(d.program->IsModifiedShaderFloatParameter(1), 2);
  EXPECT_EQ(d.program->CheckShaderFloatParameter(x), 1);
  shader->parameters.push_back(FakeParameter::Make("late", {3}));
  EXPECT_EQ(d.program->CheckShaderColorParameter(late), -1) << "a parameter added later";
  EXPECT_EQ(d.program->IsModifiedShaderColorParameter(2), 3);
}

TEST_F(PositionsTest, ReadersByPosition) {
  auto shader = Shader("MPM_paint", "x=1.5 c=0.1,0.2,0.3 x=9 failing=4! image= ~");
  const std::string path = SourcePath("samples/startup/textures/checker.png");
  shader->Param("image")->document = KEP_var<KEPIPLMDmtDocument>::Adopt(
      KEPTextureDocument::Create(KEPUnicodeString::FromUTF8(path)));
  Delegate d(shader.Get());
  struct Row {
    int position;
    int modified;
    const char* answers;  // float, colour, image link
  };
  const Row rows[] = {
      {-1, 3, "0 -1 -1 -1 kept"},     {0, 3, "0 -1 -1 -1 kept"}, {1, 2, "1.5 1.5 0 0 kept"},
      {2, 2, "0.1 0.1 0.2 0.3 kept"}, {3, 2, "9 9 0 0 kept"},    {4, 2, "0 -1 -1 -1 kept"},
      {5, 2, "0 0 0 0 checker.png"},  {6, 3, "0 -1 -1 -1 kept"}, {7, 3, "0 -1 -1 -1 kept"}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.position);
    KEPIOpenGLShaderMaterial& p = *d.program;
    EXPECT_EQ(p.IsModifiedShaderFloatParameter(row.position), row.modified);
    EXPECT_EQ(p.IsModifiedShaderColorParameter(row.position), row.modified);
    EXPECT_EQ(p.IsModifiedExternalShaderImageLink(row.position), row.modified);
    float f = -1, r = -1, g = -1, b = -1;
    KEPUnicodeString link = u"kept";
    p.GetShaderFloatParameter(row.position, f);
    p.GetShaderColorParameter(row.position, r, g, b);
    p.GetExternalShaderImageLink(row.position, link);
    EXPECT_EQ(Out(f, r, g, b, std::filesystem::path(link.ToUTF8()).filename().string()),
              row.answers);
  }
  const std::pair<const char*, int> names[] = {
      {"x", 1}, {"c", 2}, {"image", 5}, {"X", -1}, {"", -1}};
  for (const auto& [name, position] : names) {
    KEPString text = name;
    EXPECT_EQ(d.program->CheckShaderFloatParameter(text), position) << name;
    EXPECT_EQ(d.program->CheckShaderColorParameter(text), position) << name;
    EXPECT_EQ(d.program->CheckExternalShaderImagesLink(text), position) << name;
  }
}

TEST_F(PositionsTest, AnUnreadableNameShiftsLaterNames) {
  // Positions:  1 (name unreadable)  2 scale_u  3 null  4 scale_v  5 scale_u
  // Names:      1 scale_u            2 scale_v  3 scale_u
  auto shader = Shader("MPM_fake", "?hidden=5 scale_u=2 ~ scale_v=4 scale_u=7");
  Delegate d(shader.Get());
  for (const char* pass : {"first read", "read again after deletion"}) {
    SCOPED_TRACE(pass);
    KEPString u = "scale_u", v = "scale_v", unreadable = "hidden";
    EXPECT_EQ(d.program->IsModifiedShaderFloatParameter(3), 3);
    EXPECT_EQ(d.program->CheckShaderFloatParameter(u), 1);
    EXPECT_EQ(d.program->CheckShaderFloatParameter(v), 2);
    EXPECT_EQ(d.program->CheckShaderFloatParameter(unreadable), -1);
    EXPECT_EQ(Ask(d, "getSize"), "S 5") << "scale_u names position 1";
    EXPECT_EQ(Ask(d, "ratio"), "S 2.5") << "5 / the parameter at position 2";
    d.Ext()->ChangeComponentState(KEPComponentState_Alive, KEPComponentState_Deleted, nullptr);
  }
}

// The program is found for the type read first; the type read second is the one kept (and
// answers the translucency test).
TEST_F(PositionsTest, ProgramPathUsesTheFirstTypeReadAndStoresTheSecond) {
  for (const auto& row : Table(R"(
      # type read first | second            | program                                  | coefficient
      kep_phen_texture  | mia_phen_clear_glass | A/materials/shaders/kep_phen_texture.cgfx | 0.5
      # No common, own or default program; the type kept is not looked for.
      MPM_fake          | mia_phen_material |                                          | 0)")) {
    Startup startup;
    for (const char* type : {"kep_phen_texture", "mia_phen_clear_glass", "mia_phen_material"})
      startup.File(std::string("A/materials/shaders/") + type + ".cgfx");
    startup.SetPath("A");
    auto shader = FakeShader::Make({row[0], row[1]}, {});
    Delegate d(shader.Get());
    EXPECT_EQ(d.program->GetExternalShader().ToUTF8(), row[2].empty() ? "" : startup.Dir(row[2]))
        << row[0];
    EXPECT_EQ(Ask(d, "coefficient"), row[3]) << row[0];
  }
}

}  // namespace
