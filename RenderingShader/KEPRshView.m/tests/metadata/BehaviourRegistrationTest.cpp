// Behaviours as extensions of the feature types: registration, metaclasses, destruction traces,
// the lazily resolved context and the release of the shader resources.
#include "KEPRshParameterDialog.h"
#include "KEPRshParameterImmLayout.h"
#include "MetadataTestSupport.h"

namespace keptest {
namespace {

class RegistrationTest : public MetadataTest {};

using Row = std::tuple<KEPHostValue, const char*, const char*>;  // null: no immersive behaviour

std::vector<Row> Rows() {
  KEPHostValue lightProfile;
  lightProfile.type = KEPRmaType::LightProfile;
  return {{Boolean(true), "KEPRshParameterBooleanImmLayout", "KEPRshParameterBooleanDialog"},
          {Integer(1), "KEPRshParameterIntegerImmLayout", "KEPRshParameterIntegerDialog"},
          {Scalar(1), "KEPRshParameterScalarImmLayout", "KEPRshParameterScalarDialog"},
          {Color(1, 0, 0), "KEPRshParameterColorImmLayout", "KEPRshParameterColorDialog"},
          {Vector({1, 2, 3}), "KEPRshParameterVectorImmLayout", "KEPRshParameterVectorDialog"},
          {Texture(), "KEPRshParameterTextureImmLayout", "KEPRshParameterTextureDialog"},
          {Void(), "KEPRshParameterShaderImmLayout", "KEPRshParameterShaderDialog"},
          {lightProfile, nullptr, "KEPRshParameterLightProfileDialog"}};
}

TEST_F(RegistrationTest, EachFeatureTypeGetsItsBehaviourClasses) {
  for (const auto& [value, immersive, classic] : Rows()) {
    KEPHostParameter* parameter = Param(value);
    const std::string lateType = parameter->GetLateType();
    auto* imm = dynamic_cast<KEPRshParameterImmLayout*>(Imm(parameter).Get());
    auto* dlg = dynamic_cast<KEPRshParameterDialog*>(Dlg(parameter).Get());
    ASSERT_TRUE(dlg && dlg->IsA(classic)) << lateType;
    ASSERT_EQ(imm == nullptr, immersive == nullptr) << lateType;
    EXPECT_TRUE(!imm || imm->IsA(immersive)) << lateType;
    const std::pair<KEPBaseUnknown*, const char*> bases[] = {{imm, "KEPRshParameterImmLayout"},
                                                             {dlg, "KEPRshParameterDialog"}};
    for (const auto& [object, base] : bases) {
      if (!object) continue;
      const KEPMetaClass* meta = object->GetMetaObject();
      EXPECT_EQ(meta->ExtendedLateType(), lateType);
      EXPECT_STREQ(meta->Base()->Name(), base);
      for (const KEPMetaClass* m : {meta, meta->Base()}) {
        EXPECT_STREQ(m->SecondName(), "KEPNull");
        EXPECT_STREQ(m->Framework(), "RenderingShader");
      }
    }
  }
}

TEST_F(RegistrationTest, ClassicBehavioursTraceTheirDestruction) {
  for (const auto& [value, immersive, classic] : Rows()) {
    TraceCapture capture;
    {
      World world;
      world.Add(Type("mat").Param("p", value));
      Dlg(world.Param(world.Node("mat"), "p"));
    }
    const std::string prefix = "(" + std::string(classic) + "::~" + classic + ") ";
    EXPECT_EQ(capture.Texts(),
              (std::vector<std::string>{prefix + "Destructor\n", prefix + "Done\n"}));
  }
}

TEST_F(RegistrationTest, ContextComesFromTheFatherShaderAndTheParameter) {
  std::string id;
  auto* object = dynamic_cast<KEPRshParameterImmLayout*>(Imm(Param(Scalar(1), {}, {}, &id)).Get());
  EXPECT_EQ(object->GetConfigurationId(), id);
  EXPECT_EQ(object->GetParameterName(), "p");
  // A parameter without father reads the configuration with the empty identifier.
  KEP_var<KEPHostParameter> orphan =
      KEP_var<KEPHostParameter>::Adopt(KEPHostParameter::Create(nullptr, "x", Scalar(1)));
  Config("", {{"x.Widget", "wheel"}});
  KEPString kind;
  ASSERT_EQ(Imm(orphan.Get())->GetWidget(kind), S_OK);
  EXPECT_EQ(kind, "wheel");
}

TEST_F(RegistrationTest, OnlyTheMoveToDeletedReleasesTheShaderResourcesForGood) {
  std::string id;
  KEPHostParameter* parameter = Param(Scalar(1), {}, Keys{{"widget", "wheel"}}, &id);
  KEPBaseUnknown* node = nullptr;
  ASSERT_EQ(parameter->GetFather(node), S_OK);
  node->Release();  // GetFather handed out a reference; the document keeps its own
  const ULONG before = node->GetRefCount();
  const Behaviours b = Behave(parameter);
  KEPString kind;
  b.Each([&](auto* behaviour) { ASSERT_EQ(behaviour->GetWidget(kind), S_OK); });
  EXPECT_EQ(kind, "wheel");
  EXPECT_EQ(node->GetRefCount(), before + 2);  // each behaviour holds the node's resources
  const std::pair<int, int> keeping[] = {{KEPComponentState_Created, KEPComponentState_Alive},
                                         {KEPComponentState_Deleted, KEPComponentState_Deleted}};
  for (const auto& [from, to] : keeping) {
    parameter->ChangeComponentState(from, to, nullptr);
    EXPECT_EQ(node->GetRefCount(), before + 2) << from << " -> " << to;
  }
  parameter->ChangeComponentState(KEPComponentState_Alive, KEPComponentState_Deleted, nullptr);
  EXPECT_EQ(node->GetRefCount(), before);
  // The context is not resolved again: without resources the readers use the configuration.
  Config(id, {{"p.Widget", "slider"}});
  b.Each([&](auto* behaviour) { ASSERT_EQ(behaviour->GetWidget(kind), S_OK); });
  EXPECT_EQ(kind, "slider");
  EXPECT_EQ(node->GetRefCount(), before);
}

}  // namespace
}  // namespace keptest
