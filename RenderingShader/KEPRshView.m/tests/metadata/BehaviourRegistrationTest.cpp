// Behaviours as extensions of the feature types: registration, metaclasses, the lazily resolved
// context and the release of the shader resources.
#include "KEPBaseUnknown_WR.h"
#include "KEPExtensionRegistry.h"
#include "KEPRshParameterDialog.h"
#include "KEPRshParameterImmLayout.h"
#include "MetadataTestSupport.h"

namespace keptest {
namespace {

struct Row {
  const char* lateType;
  KEPHostValue value;
  const char* immersive;
  const char* classic;
};

std::vector<Row> Rows() {
  return {
      {"KEPRmaBoolean", Boolean(true), "KEPRshParameterBooleanImmLayout",
       "KEPRshParameterBooleanDialog"},
      {"KEPRmaInteger", Integer(1), "KEPRshParameterIntegerImmLayout",
       "KEPRshParameterIntegerDialog"},
      {"KEPRmaScalar", Scalar(1), "KEPRshParameterScalarImmLayout", "KEPRshParameterScalarDialog"},
      {"KEPRmaColor", Color(1, 0, 0), "KEPRshParameterColorImmLayout",
       "KEPRshParameterColorDialog"},
      {"KEPRmaVector", Vector({1, 2, 3}), "KEPRshParameterVectorImmLayout",
       "KEPRshParameterVectorDialog"},
      {"KEPRmaTexture", Texture(), "KEPRshParameterTextureImmLayout",
       "KEPRshParameterTextureDialog"},
      {"KEPRmaVoid", Void(), "KEPRshParameterShaderImmLayout", "KEPRshParameterShaderDialog"}};
}

class RegistrationTest : public MetadataTest {};

TEST_F(RegistrationTest, EveryFeatureTypeGetsOneBehaviourPerInterface) {
  World world;
  Type type("all");
  for (const Row& row : Rows()) type.Param(row.lateType, row.value);
  world.Add(type);
  KEPHostShaderNode* node = world.Node("all");
  for (const Row& row : Rows()) {
    SCOPED_TRACE(row.lateType);
    KEPHostParameter* parameter = world.Param(node, row.lateType);
    ASSERT_EQ(parameter->GetLateType(), row.lateType);
    auto imm = KEPQueryVar<KEPIRshParameterImmLayout>(parameter);
    auto imm2 = KEPQueryVar<KEPIRshParameterImmLayout>(parameter);
    auto dlg = KEPQueryVar<KEPIRshParameterDialog>(parameter);
    ASSERT_TRUE(imm);
    ASSERT_TRUE(dlg);
    auto* immObject = dynamic_cast<KEPRshParameterImmLayout*>(imm.Get());
    auto* dlgObject = dynamic_cast<KEPRshParameterDialog*>(dlg.Get());
    ASSERT_NE(immObject, nullptr);
    ASSERT_NE(dlgObject, nullptr);
    EXPECT_EQ(imm.Get(), imm2.Get());
    EXPECT_EQ(parameter->GetExtensionCount(), 2u);
    EXPECT_TRUE(immObject->IsA(row.immersive));
    EXPECT_TRUE(immObject->IsAKindOf("KEPRshParameterImmLayout"));
    EXPECT_TRUE(dlgObject->IsA(row.classic));
    EXPECT_TRUE(dlgObject->IsAKindOf("KEPRshParameterDialog"));
    EXPECT_FALSE(dlgObject->IsAKindOf("KEPRshParameterImmLayout"));
    const KEPMetaClass* meta = immObject->GetMetaObject();
    EXPECT_STREQ(meta->SecondName(), "KEPNull");
    EXPECT_STREQ(meta->Framework(), "RenderingShader");
    EXPECT_STREQ(meta->ExtendedLateType(), row.lateType);
    EXPECT_STREQ(meta->Base()->Name(), "KEPRshParameterImmLayout");
    EXPECT_STREQ(meta->Base()->SecondName(), "KEPNull");
    EXPECT_STREQ(meta->Base()->Framework(), "RenderingShader");
    // The behaviour answers for its parameter, and shares its count.
    EXPECT_TRUE(KEPQueryVar<KEPIRshParameter>(imm));
  }
}

TEST_F(RegistrationTest, LightProfilesHaveAClassicBehaviourAndRegistrationIsRepeatable) {
  KEPRshViewRegister();
  const KEPExtensionEntry* entry =
      KEPExtensionRegistry::Find("KEPRmaLightProfile", "KEPIRshParameterDialog");
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->className, "KEPRshParameterLightProfileDialog");
  EXPECT_EQ(KEPExtensionRegistry::Find("KEPRmaLightProfile", "KEPIRshParameterImmLayout"), nullptr);
  entry = KEPExtensionRegistry::Find("KEPRmaScalar", "KEPIRshParameterImmLayout");
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->className, "KEPRshParameterScalarImmLayout");
}

// --- Context

TEST_F(RegistrationTest, ContextIsResolvedOnceFromTheFather) {
  World world;
  world.Add(Type("mat", "matCfg").Param("x", Scalar(1)));
  KEPHostParameter* parameter = world.Param(world.Node("mat"), "x");
  auto imm = KEPQueryVar<KEPIRshParameterImmLayout>(parameter);
  auto* object = dynamic_cast<KEPRshParameterImmLayout*>(imm.Get());
  EXPECT_EQ(object->GetConfigurationId(), "matCfg");
  EXPECT_EQ(object->GetParameterName(), "x");
  // Losing the father afterwards changes nothing: the context is never resolved again.
  parameter->DetachFather();
  Config("matCfg", {{"x.Widget", "slider"}});
  KEPString kind;
  ASSERT_EQ(imm->GetWidget(kind), S_OK);
  EXPECT_EQ(kind, "slider");
}

TEST_F(RegistrationTest, ParameterWithoutFatherReadsAnEmptyConfiguration) {
  KEPRshViewRegister();
  KEP_var<KEPHostParameter> orphan =
      KEP_var<KEPHostParameter>::Adopt(KEPHostParameter::Create(nullptr, "x", Scalar(1)));
  Config("mat", {{"x.Widget", "slider"}});
  auto imm = KEPQueryVar<KEPIRshParameterImmLayout>(orphan.Get());
  ASSERT_TRUE(imm);
  KEPString kind = "keep";
  EXPECT_EQ(imm->GetWidget(kind), E_FAIL);
  EXPECT_EQ(kind, "keep");
  auto* object = dynamic_cast<KEPRshParameterImmLayout*>(imm.Get());
  EXPECT_EQ(object->GetConfigurationId(), "");
  EXPECT_EQ(object->GetParameterName(), "x");
  // Once the father is attached by a later owner, the behaviour still keeps its first answer.
  Config("", {{"x.Widget", "wheel"}});
  ASSERT_EQ(imm->GetWidget(kind), S_OK);
  EXPECT_EQ(kind, "wheel");
}

TEST_F(RegistrationTest, DeletedStateReleasesTheShaderResources) {
  World world;
  world.Add(Type("res", "resCfg").Param("x", Scalar(1)).Resource("x", "widget", "wheel"));
  KEPHostShaderNode* node = world.Node("res");
  KEPHostParameter* parameter = world.Param(node, "x");
  const ULONG before = node->GetRefCount();
  auto imm = KEPQueryVar<KEPIRshParameterImmLayout>(parameter);
  auto dlg = KEPQueryVar<KEPIRshParameterDialog>(parameter);
  KEPString kind;
  ASSERT_EQ(imm->GetWidget(kind), S_OK);
  ASSERT_EQ(dlg->GetWidget(kind), S_OK);
  EXPECT_EQ(kind, "wheel");
  EXPECT_EQ(node->GetRefCount(), before + 2);  // each behaviour holds the node's resources
  // A move that is not to the deleted state keeps them.
  parameter->ChangeComponentState(KEPComponentState_Created, KEPComponentState_Alive, nullptr);
  EXPECT_EQ(node->GetRefCount(), before + 2);
  parameter->ChangeComponentState(KEPComponentState_Alive, KEPComponentState_Deleted, nullptr);
  EXPECT_EQ(node->GetRefCount(), before);
  EXPECT_EQ(parameter->GetComponentState(), KEPComponentState_Deleted);
  // Without resources, and never resolved again, the readers fall to the configuration.
  Config("resCfg", {{"x.Widget", "slider"}});
  ASSERT_EQ(imm->GetWidget(kind), S_OK);
  EXPECT_EQ(kind, "slider");
}

TEST_F(RegistrationTest, ClosingTheDocumentFreesNodesHeldThroughTheirResources) {
  KEPBaseUnknown_WR node;
  {
    World world;
    world.Add(Type("res").Param("x", Scalar(1)).Resource("x", "widget", "wheel"));
    KEPHostShaderNode* created = world.Node("res");
    node.Set(created);
    KEPString kind;
    ASSERT_EQ(Imm(world.Param(created, "x"))->GetWidget(kind), S_OK);
    ASSERT_EQ(Dlg(world.Param(created, "x"))->GetWidget(kind), S_OK);
  }
  EXPECT_FALSE(node.IsAlive());
}

TEST_F(RegistrationTest, ClassicBehaviourTracesItsDestruction) {
  TraceCapture capture;
  {
    World world;
    world.Add(Type("mat").Param("b", Boolean(true)));
    KEPQueryVar<KEPIRshParameterDialog>(world.Param(world.Node("mat"), "b"));
  }
  EXPECT_TRUE(capture.Contains(
      "(KEPRshParameterBooleanDialog::~KEPRshParameterBooleanDialog) Destructor\n"));
  EXPECT_TRUE(
      capture.Contains("(KEPRshParameterBooleanDialog::~KEPRshParameterBooleanDialog) Done\n"));
}

}  // namespace
}  // namespace keptest
