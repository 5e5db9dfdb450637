// The delegate's link and the material's life: what each holds, deletion, copies, what a material
// keeps between questions, destruction and registration.
#include "HardwareTestSupport.h"

using namespace keptest;
using namespace hwtest;

namespace {

class LifecycleTest : public HardwareFixture {};

TEST_F(LifecycleTest, LinkHoldsOneReferenceOnItsShader) {
  auto a = Shader("a", ""), b = Shader("b", "");
  const ULONG aBefore = a->GetRefCount(), bBefore = b->GetRefCount();
  Delegate d;
  KEPIRshShader* out = b.Get();
  EXPECT_EQ(d.link->GetShader(out), E_FAIL);
  EXPECT_EQ(out, b.Get()) << "untouched";
  for (FakeShader* shader : {a.Get(), a.Get(), b.Get()}) EXPECT_EQ(d.link->SetShader(shader), S_OK);
  EXPECT_EQ(d.link->SetShader(nullptr), E_FAIL);
  EXPECT_EQ(a->GetRefCount(), aBefore);
  EXPECT_EQ(b->GetRefCount(), bBefore + 1);
  ASSERT_EQ(d.link->GetShader(out), S_OK);
  EXPECT_EQ(out, b.Get());
  EXPECT_EQ(b->GetRefCount(), bBefore + 2);
  out->Release();
  d = Delegate();
  EXPECT_EQ(b->GetRefCount(), bBefore);
}

TEST_F(LifecycleTest, OnlyTheMoveToDeletedReleases) {
  // From, to, and whether the material lets its parameters go and the link its shader.
  const std::array<int, 3> rows[] = {{1, 2, 1}, {0, 2, 1}, {2, 2, 0}, {1, 3, 0}, {0, 1, 0}};
  for (const auto& [from, to, releases] : rows) {
    SCOPED_TRACE(Out(from, "->", to));
    auto shader = Shader("MPM_paint", "x=1");
    FakeParameter* x = shader->Param("x");
    Delegate d(shader.Get());
    EXPECT_EQ(d.program->IsModifiedShaderFloatParameter(1), 2);  // reads the parameters
    const ULONG xBefore = x->GetRefCount(), shaderBefore = shader->GetRefCount();
    for (KEPIUnknown* extension :
         {static_cast<KEPIUnknown*>(d.material.Get()), static_cast<KEPIUnknown*>(d.link.Get())}) {
      auto* object = dynamic_cast<KEPBaseUnknown*>(extension);
      EXPECT_EQ(object->ChangeComponentState(from, to, nullptr), S_OK);
      EXPECT_EQ(object->GetComponentState(), to);
    }
    EXPECT_EQ(x->GetRefCount(), xBefore - static_cast<ULONG>(releases));
    EXPECT_EQ(shader->GetRefCount(), shaderBefore - static_cast<ULONG>(releases));
  }
}

/// A link of the tests' own making, which can be pointed at another shader.
class ForeignLink : public KEPBaseUnknown, public KEPIRshShaderLink {
 public:
  static KEPBaseUnknown* Make() { return new ForeignLink(); }
  HRESULT SetShader(KEPIRshShader* shader) override {
    shader_ = KEP_var<KEPIRshShader>(shader);
    return S_OK;
  }
  HRESULT GetShader(KEPIRshShader*& out) override {
    out = KEP_var<KEPIRshShader>(shader_).Detach();
    return out ? S_OK : E_FAIL;
  }

 private:
  KEP_var<KEPIRshShader> shader_;
};
KEP_DEFINE_TIE(KEPIRshShaderLink, ForeignLink)

TEST_F(LifecycleTest, PhysicalAnswerFollowsTheLinkedShader) {
  KEPExtensionRegistry::DeclareParent("TestForeignDelegate", "KEPRshShaderDelegate");
  KEPExtensionRegistry::Register({"TestForeignDelegate", KEPIRshShaderLink::IID().name,
                                  "ForeignLink", &ForeignLink::Make,
                                  &CreateTIEKEPIRshShaderLinkForeignLink});
  auto physical = Shader("MPM_paint", ""), other = Shader("mia_phen_material", "");
  for (const char* lateType : {"KEPRshShaderDelegate", "TestForeignDelegate"}) {
    SCOPED_TRACE(lateType);
    Delegate d(nullptr, lateType);
    EXPECT_EQ(Ask(d, "ambient"), "0 1 1 1") << "nothing linked";
    for (FakeShader* shader : {physical.Get(), other.Get(), physical.Get()}) {
      d.link->SetShader(shader);
      EXPECT_EQ(Ask(d, "ambient"), shader == physical.Get() ? "0 0 0 0" : "0 1 1 1");
    }
  }
  // A texture node answers through the host's own link to the node itself.
  World world;
  world.Add(TextureType("MPM_texture"));
  auto material = KEPQueryVar<KEPIHardwareMaterial>(world.Node("MPM_texture"));
  float coefficient = -1, color[3] = {-1, -1, -1};
  material->GetAmbient(coefficient, color);
  EXPECT_EQ(Out(coefficient, color[0], color[1], color[2]), "0 0 0 0");
}

TEST_F(LifecycleTest, QuestionsAskedBeforeTheLinkAreNotKept) {
  World world;
  world.Add(TextureType());
  auto shader = Shader("mia_phen_material", "x=1.5 map>", world.Node("kep_phen_texture"));
  Delegate d;
  EXPECT_EQ(Ask(d, "size"), "1 1");
  EXPECT_EQ(Ask(d, "image"), "none");
  float value = -1;
  d.program->GetShaderFloatParameter(1, value);
  EXPECT_EQ(value, 0.0f);
  d.link->SetShader(shader.Get());
  EXPECT_EQ(Ask(d, "size"), "3 6");
  EXPECT_EQ(Ask(d, "image"), "checker.png");
  d.program->GetShaderFloatParameter(1, value);
  EXPECT_EQ(value, 1.5f);
}

// A copy holds references of its own on the same parameters, and keeps the program file and the
// sticker mode; it finds its connected texture for itself, and an assigned material forgets the
// one it had found.
TEST_F(LifecycleTest, CopiesAndAssignments) {
  Startup startup;
  startup.File("A/materials/shaders/rsh_default.cgfx");
  startup.SetPath("A");
  World world;
  world.Add(TextureType());
  KEPHostShaderNode* second = world.Node("kep_phen_texture", "t2");
  world.Param(second, "_uv_scale_u")->SetScalarValue(7.0f);
  auto first = Shader("mia_phen_material", "x=1.5 map>", world.Node("kep_phen_texture", "t1"));
  auto other = Shader("mia_phen_material", "x=2.5 map>", second);
  FakeParameter* x = first->Param("x");
  FakeParameter* otherX = other->Param("x");
  const ULONG xBefore = x->GetRefCount(), otherBefore = otherX->GetRefCount();
  Delegate d(first.Get());
  d.program->SetStickerMode(1);
  const std::string program = d.program->GetExternalShader().ToUTF8();
  EXPECT_EQ(program, startup.Dir("A") + "/materials/shaders/rsh_default_Stk.cgfx");
  {
    Delegate otherDelegate(other.Get());
    EXPECT_EQ(Ask(otherDelegate, "size"), "7 6");
    KEPRshShaderHardwareExt copy(*d.Ext());
    KEPRshShaderHardwareExt assigned(*otherDelegate.Ext());
    float u = -1, v = -1;
    assigned.GetTextureSize(u, v);
    EXPECT_EQ(Out(u, v), "7 6");
    EXPECT_EQ(otherX->GetRefCount(), otherBefore + 2);
    assigned = *d.Ext();
    KEPRshShaderHardwareExt& same = assigned;
    assigned = same;
    EXPECT_EQ(otherX->GetRefCount(), otherBefore + 1);
    EXPECT_EQ(x->GetRefCount(), xBefore + 3);
    for (KEPRshShaderHardwareExt* object : {&copy, &assigned}) {
      EXPECT_EQ(object->IsStickerMode(), 1);
      EXPECT_EQ(object->GetExternalShader().ToUTF8(), program);
      KEPString name = "x";
      EXPECT_EQ(object->CheckShaderFloatParameter(name), 1);
      float value = -1;
      object->GetShaderFloatParameter(1, value);
      EXPECT_EQ(value, 1.5f);
      object->GetTextureSize(u, v);
      EXPECT_EQ(Out(u, v), "3 6");
    }
  }
  EXPECT_EQ(x->GetRefCount(), xBefore + 1);
}

TEST_F(LifecycleTest, DestructionTraces) {
  auto shader = Shader("mia_phen_material", "x=1");
  TraceCapture capture(2);
  Delegate(shader.Get()).material->GetTransparencyCoef();
  const std::vector<std::string> expected = {
      "(KEPRshShaderHardwareDefault::~KEPRshShaderHardwareDefault) Destructor\n",
      "(KEPRshShaderHardwareDefault::~KEPRshShaderHardwareDefault) Done\n",
      "(KEPRshShaderHardwareLink::~KEPRshShaderHardwareLink) Destructor\n",
      "(KEPRshShaderHardwareLink::~KEPRshShaderHardwareLink) Done\n"};
  EXPECT_EQ(capture.Texts("module"), expected);
  TraceCapture quiet(1);
  Delegate{shader.Get()};
  EXPECT_TRUE(quiet.Texts().empty());
}

TEST_F(LifecycleTest, RegisteredAsExtensionsOfTheDelegate) {
  for (const KEPMetaClass* meta :
       {KEPRshShaderHardwareDefault::MetaObject(), KEPRshShaderHardwareLink::MetaObject()}) {
    SCOPED_TRACE(meta->Name());
    EXPECT_EQ(meta->Kind(), KEPClassKind_Extension);
    EXPECT_STREQ(meta->ExtendedLateType(), "KEPRshShaderDelegate");
    EXPECT_STREQ(meta->Framework(), "RenderingShader");
    EXPECT_EQ(meta->Base(), KEPBaseUnknown::MetaObject());
  }
  EXPECT_EQ(KEPRshShaderHardwareExt().CreateItself(), nullptr);
  Delegate d;
  // The four visualisation interfaces are one object; the link is another.
  auto* material = dynamic_cast<KEPBaseUnknown*>(d.material.Get());
  EXPECT_EQ(material, dynamic_cast<KEPBaseUnknown*>(d.program.Get()));
  EXPECT_EQ(material, dynamic_cast<KEPBaseUnknown*>(d.mapping.Get()));
  EXPECT_EQ(material, dynamic_cast<KEPBaseUnknown*>(d.mappingMaterial.Get()));
  EXPECT_NE(material, dynamic_cast<KEPBaseUnknown*>(d.link.Get()));
  EXPECT_EQ(d.component->GetExtensionCount(), 2u);
}

TEST_F(LifecycleTest, FixedAnswers) {
  Delegate d;
  KEPIHardwareMaterial& m = *d.material;
  KEPIOpenGLShaderMaterial& p = *d.program;
  KEPMathTransformation matrix;
  KEPUnicodeString path = u"kept";
  KEPString name = "x";
  for (HRESULT hr : {m.GetMatrix(matrix), m.SetMatrix(matrix),
                     p.SetExternalShaderImageLink(1, path), p.SetInternalShaderImageLink(1, path)})
    EXPECT_EQ(hr, E_FAIL);
  for (int answer : {p.CheckInternalShaderImagesLink(name), p.CheckShaderStringParameter(name),
                     p.GetExternalShaderStatus(), p.GetExternalShaderType(),
                     p.GetNbExternalShaderImageParamName(), p.GetNbExternalShaderImagesLink(),
                     p.GetNbInternalShaderImageParamName(), p.GetNbInternalShaderImagesLink(),
                     p.GetShaderColorNbParameter(), p.GetShaderFloatNbParameter(),
                     p.GetShaderStringNbParameter(), p.GetShaderType(),
                     p.IsModifiedInternalShaderImageLink(1), p.IsModifiedShaderISLFile(),
                     p.IsModifiedShaderStringParameter(1), p.IsResetParametersShaderISLFile()})
    EXPECT_EQ(answer, -1);
  EXPECT_EQ(m.UseTextureRatio(), 1);
  EXPECT_EQ(m.GetReflectivityCoef(), 0.0f);
  EXPECT_EQ(m.GetReflectionType(), 0);
  EXPECT_EQ(m.GetEnvironmentMap(), nullptr);
  EXPECT_EQ(p.GetExternalShaderLink(), nullptr);
  float a = 5, b = 5;
  m.GetNonLinearReflection(a, b);
  EXPECT_EQ(Out(a, b), "0 0");
  p.GetInternalShaderImageLink(1, path);
  p.GetShaderStringParameter(1, path);
  EXPECT_EQ(path.ToUTF8(), "kept");
  EXPECT_TRUE(p.GetShaderFloatParameterName(1).empty());
  EXPECT_TRUE(p.GetShaderISLFile().IsEmpty());
}

}  // namespace
