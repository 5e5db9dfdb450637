// The delegate's link and the material's lifecycle: first query, positions, deletion and
// destruction, reference counts and traces.
#include "HardwareTestSupport.h"

using namespace keptest;
using namespace hwtest;

namespace {

class LifecycleTest : public HardwareFixture {};

TEST_F(LifecycleTest, LinkReferenceCounts) {
  World world;
  world.Add(Type("mia_phen_material").Param("x", Scalar(1)));
  KEPHostShaderNode* a = world.Node("mia_phen_material", "a");
  KEPHostShaderNode* b = world.Node("mia_phen_material", "b");
  const ULONG aBefore = a->GetRefCount(), bBefore = b->GetRefCount();
  Delegate delegate;
  auto link = delegate.Link();

  KEPIRshShader* out = reinterpret_cast<KEPIRshShader*>(0x1);
  EXPECT_EQ(link->GetShader(out), E_FAIL);
  EXPECT_EQ(out, reinterpret_cast<KEPIRshShader*>(0x1));

  EXPECT_EQ(link->SetShader(a), S_OK);
  EXPECT_EQ(a->GetRefCount(), aBefore + 1);
  EXPECT_EQ(link->SetShader(a), S_OK);  // the same shader again keeps one reference
  EXPECT_EQ(a->GetRefCount(), aBefore + 1);
  EXPECT_EQ(link->SetShader(b), S_OK);
  EXPECT_EQ(a->GetRefCount(), aBefore);
  EXPECT_EQ(b->GetRefCount(), bBefore + 1);
  EXPECT_EQ(link->SetShader(nullptr), E_FAIL);
  EXPECT_EQ(b->GetRefCount(), bBefore + 1);

  ASSERT_EQ(link->GetShader(out), S_OK);
  EXPECT_EQ(out, static_cast<KEPIRshShader*>(b));
  EXPECT_EQ(b->GetRefCount(), bBefore + 2);
  out->Release();

  link.Reset();
  delegate.Reset();
  EXPECT_EQ(b->GetRefCount(), bBefore);
}

TEST_F(LifecycleTest, DeletionReleasesShaderAndParameters) {
  World world;
  world.Add(Type("MPM_paint").Param("scale_u", Scalar(2)).Param("scale_v", Scalar(4)));
  KEPHostShaderNode* node = world.Node("MPM_paint");
  KEPHostParameter* scale = world.Param(node, "scale_u");
  const ULONG nodeBefore = node->GetRefCount(), paramBefore = scale->GetRefCount();
  Delegate delegate(node);
  double d = 0;
  EXPECT_EQ(delegate.Mapping()->GetRatio(d), S_OK);
  EXPECT_EQ(scale->GetRefCount(), paramBefore + 1);

  delegate.Component()->ChangeComponentState(KEPComponentState_Alive, KEPComponentState_Deleted,
                                             nullptr);
  EXPECT_EQ(scale->GetRefCount(), paramBefore);
  EXPECT_EQ(node->GetRefCount(), nodeBefore);
  // Nothing is linked any more: a physical shader is no longer recognised.
  EXPECT_EQ(delegate.Mapping()->GetRatio(d), E_FAIL);
}

TEST_F(LifecycleTest, DeletionThenRequeryReadsTheParametersAgain) {
  World world;
  world.Add(Type("MPM_paint").Param("a", Scalar(1)).Param("b", Scalar(2)));
  KEPHostShaderNode* node = world.Node("MPM_paint");
  Delegate delegate(node);
  auto program = delegate.Program();
  KEPString b = "b";
  float value = -1;
  program->GetShaderFloatParameter(2, value);
  EXPECT_EQ(program->CheckShaderFloatParameter(b), 2);
  // Deleted only from the material's point of view: the component state goes 1 -> 2 for the
  // material extension alone, the link keeps its shader.
  auto* material = dynamic_cast<KEPBaseUnknown*>(program.Get());
  material->ChangeComponentState(KEPComponentState_Alive, KEPComponentState_Deleted, nullptr);
  // Names are kept and appended again; the positions of an unchanged shader do not move.
  EXPECT_EQ(program->CheckShaderFloatParameter(b), 2);
  program->GetShaderFloatParameter(2, value);
  EXPECT_EQ(value, 2.0f);
  EXPECT_EQ(program->CheckShaderFloatParameter(b), 2);
}

TEST_F(LifecycleTest, ParametersAreReadAtTheFirstQuery) {
  World world;
  world.Add(Type("MPM_paint").Param("x", Scalar(1.5f)));
  KEPHostShaderNode* node = world.Node("MPM_paint");
  Delegate delegate(node);
  auto program = delegate.Program();
  KEPString x = "x";
  EXPECT_EQ(program->CheckShaderFloatParameter(x), -1);  // nothing read yet
  EXPECT_EQ(program->CheckShaderColorParameter(x), -1);
  EXPECT_EQ(program->IsModifiedShaderFloatParameter(1), 2);  // reads the parameters
  EXPECT_EQ(program->CheckShaderFloatParameter(x), 1);

  // A parameter added later is not seen: the list is kept until the component is deleted.
  KEP_var<KEPHostParameter> added =
      KEP_var<KEPHostParameter>::Adopt(KEPHostParameter::Create(node, "late", Scalar(3)));
  node->AddParameter(added.Get());
  KEPString late = "late";
  EXPECT_EQ(program->CheckShaderFloatParameter(late), -1);
  EXPECT_EQ(program->IsModifiedShaderFloatParameter(2), 3);
}

TEST_F(LifecycleTest, PositionalEdges) {
  World world;
  world.Add(Type("MPM_paint")
                .Param("x", Scalar(1.5f))
                .Param("c", Color(0.1f, 0.2f, 0.3f))
                .Param("x", Scalar(9.0f)));
  Delegate delegate(world.Node("MPM_paint"));
  auto program = delegate.Program();
  struct Row {
    int position;
    int modified;
    float value;
  };
  const Row rows[] = {{0, 3, 0.0f}, {1, 2, 1.5f}, {3, 2, 9.0f}, {4, 3, 0.0f}, {-1, 3, 0.0f}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.position);
    EXPECT_EQ(program->IsModifiedShaderFloatParameter(row.position), row.modified);
    EXPECT_EQ(program->IsModifiedShaderColorParameter(row.position), row.modified);
    EXPECT_EQ(program->IsModifiedExternalShaderImageLink(row.position), row.modified);
    float value = -7;
    program->GetShaderFloatParameter(row.position, value);
    EXPECT_EQ(value, row.value);
  }
  KEPString x = "x", missing = "missing";
  EXPECT_EQ(program->CheckShaderFloatParameter(x), 1);  // the first of two
  EXPECT_EQ(program->CheckExternalShaderImagesLink(missing), -1);
  float r = -1, g = -1, b = -1;
  program->GetShaderColorParameter(1, r, g, b);  // a scalar: no colour, untouched
  EXPECT_EQ(r, -1);
  program->GetShaderColorParameter(2, r, g, b);
  EXPECT_FLOAT_EQ(g, 0.2f);
}

TEST_F(LifecycleTest, UnlinkedDelegateAnswersDefaults) {
  Delegate delegate;
  auto material = delegate.Material();
  auto mapping = delegate.Mapping();
  float coef = -1, color[3] = {-1, -1, -1};
  material->GetAmbient(coef, color);
  EXPECT_EQ(color[0], 1.0f);  // not physical
  EXPECT_EQ(material->GetTextureImage(), nullptr);
  EXPECT_TRUE(delegate.Program()->GetExternalShader().IsEmpty());
  double d = -1;
  EXPECT_EQ(mapping->GetRatio(d), E_FAIL);
  KEPString name = "x";
  EXPECT_EQ(delegate.Program()->CheckShaderFloatParameter(name), -1);
}

TEST_F(LifecycleTest, FixedResults) {
  Delegate delegate;
  auto material = delegate.Material();
  auto program = delegate.Program();
  KEPMathTransformation matrix;
  KEPUnicodeString path = u"keep";
  KEPString name = "x";
  EXPECT_EQ(material->GetMatrix(matrix), E_FAIL);
  EXPECT_EQ(material->SetMatrix(matrix), E_FAIL);
  EXPECT_EQ(program->SetExternalShaderImageLink(1, path), E_FAIL);
  EXPECT_EQ(program->SetInternalShaderImageLink(1, path), E_FAIL);
  for (int v : {program->CheckInternalShaderImagesLink(name), program->GetShaderFloatNbParameter(),
                program->GetNbExternalShaderImagesLink(), program->IsModifiedShaderISLFile(),
                program->GetExternalShaderStatus(), program->IsModifiedShaderStringParameter(1)})
    EXPECT_EQ(v, -1);
  EXPECT_EQ(material->UseTextureRatio(), 1);
  EXPECT_EQ(material->GetEnvironmentMap(), nullptr);
  EXPECT_EQ(program->GetExternalShaderLink(), nullptr);
  float a = 5, b = 5;
  material->GetNonLinearReflection(a, b);
  EXPECT_EQ(a + b, 0.0f);
  program->GetInternalShaderImageLink(1, path);
  EXPECT_EQ(path.ToUTF8(), "keep");
  EXPECT_TRUE(program->GetShaderFloatParameterName(1).empty());
  EXPECT_TRUE(program->GetShaderISLFile().IsEmpty());
}

TEST_F(LifecycleTest, DestructionTraces) {
  World world;
  world.Add(Type("mia_phen_material").Param("x", Scalar(1)));
  TraceCapture capture(2);
  {
    Delegate delegate(world.Node("mia_phen_material"));
    delegate.Material()->GetTransparencyCoef();
  }
  const std::vector<std::string> expected = {
      "(KEPRshShaderHardwareDefault::~KEPRshShaderHardwareDefault) Destructor\n",
      "(KEPRshShaderHardwareDefault::~KEPRshShaderHardwareDefault) Done\n",
      "(KEPRshShaderHardwareLink::~KEPRshShaderHardwareLink) Destructor\n",
      "(KEPRshShaderHardwareLink::~KEPRshShaderHardwareLink) Done\n"};
  EXPECT_EQ(capture.Texts("module"), expected);

  TraceCapture quiet(1);
  { Delegate delegate(world.Node("mia_phen_material")); }
  EXPECT_TRUE(quiet.Texts().empty());
}

TEST_F(LifecycleTest, MetaclassesAndRegistration) {
  KEPRshViewRegister();  // a second registration changes nothing
  for (const KEPMetaClass* meta :
       {KEPRshShaderHardwareDefault::MetaObject(), KEPRshShaderHardwareLink::MetaObject()}) {
    SCOPED_TRACE(meta->Name());
    EXPECT_EQ(meta->Kind(), KEPClassKind_Extension);
    EXPECT_STREQ(meta->ExtendedLateType(), "KEPRshShaderDelegate");
    EXPECT_STREQ(meta->Framework(), "RenderingShader");
    EXPECT_EQ(meta->Base(), KEPBaseUnknown::MetaObject());
  }
  EXPECT_FALSE(KEPRshShaderHardwareDefault::MetaObject()->IsAKindOf("KEPRshShaderHardwareExt"));
  KEPRshShaderHardwareExt plain;
  EXPECT_EQ(plain.CreateItself(), nullptr);

  Delegate delegate;
  auto material = delegate.Material();
  auto mapping = delegate.Mapping();
  // The four visualisation interfaces are one object; the link is another.
  EXPECT_EQ(dynamic_cast<KEPBaseUnknown*>(material.Get()),
            dynamic_cast<KEPBaseUnknown*>(mapping.Get()));
  EXPECT_NE(dynamic_cast<KEPBaseUnknown*>(material.Get()),
            dynamic_cast<KEPBaseUnknown*>(delegate.Link().Get()));
  EXPECT_EQ(delegate.Component()->GetExtensionCount(), 2u);
  EXPECT_EQ(KEPCreateComponent(""), nullptr);
}

}  // namespace
