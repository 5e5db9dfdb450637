// Behaviours as extensions of the feature types: registration, metaclasses, destruction traces,
// the lazily resolved context and the release of the shader resources.
#include "KEPExtensionRegistry.h"
#include "KEPRshParameterDialog.h"
#include "KEPRshParameterImmLayout.h"
#include "MetadataTestSupport.h"

namespace keptest {
namespace {

class RegistrationTest : public MetadataTest {};

KEPHostValue LightProfile() {
  KEPHostValue value;
  value.type = KEPRmaType::LightProfile;
  return value;
}

using Row = std::tuple<KEPHostValue, const char*, const char*>;  // null: no immersive behaviour

std::vector<Row> Rows() {
  return {{Boolean(true), "KEPRshParameterBooleanImmLayout", "KEPRshParameterBooleanDialog"},
          {Integer(1), "KEPRshParameterIntegerImmLayout", "KEPRshParameterIntegerDialog"},
          {Scalar(1), "KEPRshParameterScalarImmLayout", "KEPRshParameterScalarDialog"},
          {Color(1, 0, 0), "KEPRshParameterColorImmLayout", "KEPRshParameterColorDialog"},
          {Vector({1, 2, 3}), "KEPRshParameterVectorImmLayout", "KEPRshParameterVectorDialog"},
          {Texture(), "KEPRshParameterTextureImmLayout", "KEPRshParameterTextureDialog"},
          {Void(), "KEPRshParameterShaderImmLayout", "KEPRshParameterShaderDialog"},
          {LightProfile(), nullptr, "KEPRshParameterLightProfileDialog"}};
}

TEST_F(RegistrationTest, EachFeatureTypeGetsItsBehaviourClasses) {
  for (const auto& [value, immersive, classic] : Rows()) {
    KEPHostParameter* parameter = Param(value);
    const std::string lateType = parameter->GetLateType();
    auto* imm = dynamic_cast<KEPRshParameterImmLayout*>(Imm(parameter).Get());
    auto* dlg = dynamic_cast<KEPRshParameterDialog*>(Dlg(parameter).Get());
    ASSERT_NE(dlg, nullptr) << lateType;
    EXPECT_TRUE(dlg->IsA(classic)) << lateType;
    EXPECT_EQ(imm == nullptr, immersive == nullptr) << lateType;
    EXPECT_TRUE(!imm || imm->IsA(immersive)) << lateType;
    for (KEPBaseUnknown* object :
         {static_cast<KEPBaseUnknown*>(imm), static_cast<KEPBaseUnknown*>(dlg)}) {
      if (!object) continue;
      const KEPMetaClass* meta = object->GetMetaObject();
      EXPECT_EQ(meta->ExtendedLateType(), lateType);
      for (const KEPMetaClass* m : {meta, meta->Base()}) {
        EXPECT_STREQ(m->SecondName(), "KEPNull");
        EXPECT_STREQ(m->Framework(), "RenderingShader");
      }
      EXPECT_STREQ(meta->Base()->Name(),
                   object == dlg ? "KEPRshParameterDialog" : "KEPRshParameterImmLayout");
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

TEST_F(RegistrationTest, ContextIsResolvedOnceOnFirstUse) {
  std::string id;
  KEPHostParameter* parameter = Param(Scalar(1), {}, std::nullopt, &id);
  auto imm = Imm(parameter);
  auto* object = dynamic_cast<KEPRshParameterImmLayout*>(imm.Get());
  EXPECT_EQ(object->GetConfigurationId(), id);
  EXPECT_EQ(object->GetParameterName(), "p");
  parameter->DetachFather();  // changes nothing: the context is never resolved again
  Config(id, {{"p.Widget", "slider"}});
  KEPString kind;
  ASSERT_EQ(imm->GetWidget(kind), S_OK);
  EXPECT_EQ(kind, "slider");
  // A parameter without father reads the configuration with the empty identifier.
  KEP_var<KEPHostParameter> orphan =
      KEP_var<KEPHostParameter>::Adopt(KEPHostParameter::Create(nullptr, "x", Scalar(1)));
  Config("", {{"x.Widget", "wheel"}});
  ASSERT_EQ(Imm(orphan.Get())->GetWidget(kind), S_OK);
  EXPECT_EQ(kind, "wheel");
}

TEST_F(RegistrationTest, OnlyTheMoveToDeletedReleasesTheShaderResources) {
  std::string id;
  KEPHostParameter* parameter = Param(Scalar(1), {}, Keys{{"widget", "wheel"}}, &id);
  KEPBaseUnknown* node = nullptr;
  ASSERT_EQ(parameter->GetFather(node), S_OK);
  node->Release();  // GetFather handed out a reference; the document keeps its own
  const ULONG before = node->GetRefCount();
  const Behaviours b = Behave(parameter);
  KEPString kind;
  ASSERT_EQ(b.imm->GetWidget(kind), S_OK);
  ASSERT_EQ(b.dlg->GetWidget(kind), S_OK);
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
  Config(id, {{"p.Widget", "slider"}});  // without resources the readers use the configuration
  ASSERT_EQ(b.imm->GetWidget(kind), S_OK);
  EXPECT_EQ(kind, "slider");
}

}  // namespace
}  // namespace keptest
