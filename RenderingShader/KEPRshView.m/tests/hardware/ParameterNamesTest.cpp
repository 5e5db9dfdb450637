// Names and positions: a parameter whose name cannot be read shifts the later names against the
// parameter list, duplicates answer with the first, and a re-read after deletion keeps both; and
// the type name that the program search reads twice.
#include "HardwareTestSupport.h"

using namespace keptest;
using namespace hwtest;

namespace {

class ParameterNamesTest : public HardwareFixture {};

/// The material with its by-name lookup in reach of the test.
class ProbeMaterial : public KEPRshShaderHardwareDefault {
 public:
  static KEPBaseUnknown* Make() { return new ProbeMaterial(); }
  KEPIRshParameter* ByName(const char* name) { return GetParameter(std::string_view(name)); }
};
KEP_DEFINE_TIE(KEPIHardwareMaterial, ProbeMaterial)

KEP_var<KEPBaseUnknown> ProbeDelegate(KEPIRshShader* shader) {
  KEPExtensionRegistry::Register({"TestProbeDelegate", KEPIRshShaderLink::IID().name,
                                  "KEPRshShaderHardwareLink", &KEPRshShaderHardwareLink::Create,
                                  &CreateTIEKEPIRshShaderLinkKEPRshShaderHardwareLink});
  KEPExtensionRegistry::Register({"TestProbeDelegate", KEPIHardwareMaterial::IID().name,
                                  "ProbeMaterial", &ProbeMaterial::Make,
                                  &CreateTIEKEPIHardwareMaterialProbeMaterial});
  auto component = KEP_var<KEPBaseUnknown>::Adopt(KEPCreateComponent("TestProbeDelegate"));
  KEPQueryVar<KEPIRshShaderLink>(component)->SetShader(shader);
  return component;
}

TEST_F(ParameterNamesTest, UnreadableNameShiftsLaterNamesAndFirstMatchWins) {
  // Positions:  1 (name unreadable)  2 scale_u  3 null  4 scale_v  5 scale_u
  // Names:      1 scale_u            2 scale_v  3 scale_u
  auto shader = FakeShader::Make({"MPM_fake"}, {FakeParameter::Make("hidden", 5.0f, false),
                                                FakeParameter::Make("scale_u", 2.0f),
                                                {},
                                                FakeParameter::Make("scale_v", 4.0f),
                                                FakeParameter::Make("scale_u", 7.0f)});
  auto component = ProbeDelegate(shader.Get());
  auto material = KEPQueryVar<KEPIHardwareMaterial>(component);
  auto* probe = dynamic_cast<ProbeMaterial*>(material.Get());
  ASSERT_NE(probe, nullptr);

  for (int pass = 0; pass < 2; ++pass) {
    SCOPED_TRACE(pass == 0 ? "first read" : "after deletion and a second read");
    KEPString u = "scale_u", v = "scale_v";
    float f = -1;
    probe->GetShaderFloatParameter(1, f);  // reads the parameters
    EXPECT_EQ(f, 5.0f);
    EXPECT_EQ(probe->CheckShaderFloatParameter(u), 1);
    EXPECT_EQ(probe->CheckShaderFloatParameter(v), 2);
    double d = -1;
    EXPECT_EQ(probe->GetSize(d), S_OK);  // "scale_u" pairs with position 1
    EXPECT_EQ(d, 5.0);
    EXPECT_EQ(probe->GetRatio(d), S_OK);  // 5 / the parameter at position 2
    EXPECT_EQ(d, 2.5);
    EXPECT_EQ(probe->ByName("scale_u"), probe->ByName("scale_u"));
    EXPECT_EQ(probe->IsModifiedShaderFloatParameter(3), 3);
    EXPECT_EQ(probe->IsModifiedShaderFloatParameter(5), 2);
    // Positions 4 and 5 have no name at first: an empty name meets the first of them. The
    // names appended by the second read cover every position.
    float fromEmpty = -1;
    if (KEPIRshParameter* unnamed = probe->ByName("")) unnamed->GetScalarValue(fromEmpty);
    EXPECT_EQ(fromEmpty, pass == 0 ? 4.0f : -1.0f);
    EXPECT_EQ(probe->ByName("hidden"), nullptr);
    probe->ChangeComponentState(KEPComponentState_Alive, KEPComponentState_Deleted, nullptr);
  }
}

TEST_F(ParameterNamesTest, ProgramPathUsesTheFirstTypeReadAndStoresTheSecond) {
  struct Row {
    std::vector<std::string> typeNames;  // answers of successive type name reads
    std::string expectRelative;          // "" = no program
    float transparency;                  // from the stored type
  };
  const Row rows[] = {
      {{"kep_phen_texture", "mia_phen_clear_glass"},
       "materials/shaders/kep_phen_texture.cgfx",
       0.5f},
      // No common, own or default program: the stored type's program is not looked for.
      {{"MPM_fake", "mia_phen_material"}, "", 0.0f},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.typeNames.front());
    Startup startup;
    for (const char* relative :
         {"materials/shaders/kep_phen_texture.cgfx", "materials/shaders/mia_phen_clear_glass.cgfx",
          "materials/shaders/mia_phen_material.cgfx"})
      startup.File("A", relative);
    startup.SetPath({"A"});
    auto shader = FakeShader::Make(row.typeNames, {FakeParameter::Make("x", 1.0f)});
    Delegate delegate(shader.Get());
    EXPECT_EQ(delegate.Program()->GetExternalShader().ToUTF8(),
              row.expectRelative.empty() ? "" : startup.Dir("A") + "/" + row.expectRelative);
    EXPECT_EQ(delegate.Material()->GetTransparencyCoef(), row.transparency);
  }
}

}  // namespace
