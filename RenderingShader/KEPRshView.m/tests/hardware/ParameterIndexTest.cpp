// The material's parameter index on its own: the references it holds, and those of its copies.
#include "HardwareTestSupport.h"
#include "KEPRshShaderParameterIndex.h"

using namespace keptest;
using namespace hwtest;

namespace {

class ParameterIndexTest : public HardwareFixture {};

/// A list as a shader hands it out: one reference per non-null element, for the receiver.
KEPListP<KEPIRshParameter>* ListOf(std::initializer_list<FakeParameter*> parameters) {
  auto* list = new KEPListP<KEPIRshParameter>();
  for (FakeParameter* p : parameters) {
    if (p) p->AddRef();
    list->Append(p);
  }
  return list;
}

TEST_F(ParameterIndexTest, CopiesHoldReferencesOfTheirOwn) {
  auto a = FakeParameter::Make("scale_u", 2.0f), b = FakeParameter::Make("scale_v", 4.0f);
  auto c = FakeParameter::Make("c", 1.0f);
  const ULONG aBefore = a->GetRefCount(), bBefore = b->GetRefCount(), cBefore = c->GetRefCount();
  {
    KEPRshShaderParameterIndex index;
    index.Take(ListOf({a.Get(), b.Get()}));
    EXPECT_EQ(a->GetRefCount(), aBefore + 1);

    KEPRshShaderParameterIndex copy(index);
    EXPECT_EQ(a->GetRefCount(), aBefore + 2);
    EXPECT_EQ(b->GetRefCount(), bBefore + 2);
    EXPECT_EQ(copy.ByName("scale_v"), b.Get());
    EXPECT_EQ(copy.Read(KEPRshShaderParameterIndex::ReadName("scale_u")), a.Get());
    EXPECT_EQ(copy.PositionOf("scale_v"), 2);

    KEPRshShaderParameterIndex assigned;
    assigned.Take(ListOf({c.Get()}));
    EXPECT_EQ(c->GetRefCount(), cBefore + 1);
    assigned = index;  // releases its own, then takes references of its own
    EXPECT_EQ(c->GetRefCount(), cBefore);
    EXPECT_EQ(a->GetRefCount(), aBefore + 3);
    EXPECT_EQ(assigned.PositionOf("c"), -1);
    KEPRshShaderParameterIndex& same = assigned;
    assigned = same;
    EXPECT_EQ(a->GetRefCount(), aBefore + 3);

    // Clearing releases this index's references only; the names stay, the parameters go.
    index.Clear();
    EXPECT_EQ(a->GetRefCount(), aBefore + 2);
    EXPECT_FALSE(index.HasList());
    EXPECT_EQ(index.PositionOf("scale_u"), 1);
    EXPECT_EQ(index.At(1), nullptr);
    EXPECT_EQ(index.Read(KEPRshShaderParameterIndex::ReadName("scale_u")), nullptr);
    EXPECT_EQ(copy.At(1), a.Get());

    // A copy of a cleared index has the names and no list.
    KEPRshShaderParameterIndex fromCleared(index);
    EXPECT_FALSE(fromCleared.HasList());
    EXPECT_EQ(fromCleared.PositionOf("scale_v"), 2);
    EXPECT_EQ(a->GetRefCount(), aBefore + 2);
  }
  EXPECT_EQ(a->GetRefCount(), aBefore);
  EXPECT_EQ(b->GetRefCount(), bBefore);
  EXPECT_EQ(c->GetRefCount(), cBefore);
}

TEST_F(ParameterIndexTest, ACopiedMaterialHoldsReferencesOfItsOwn) {
  World world;
  world.Add(Type("MPM_paint").Param("scale_u", Scalar(2)).Param("scale_v", Scalar(4)));
  KEPHostShaderNode* node = world.Node("MPM_paint");
  KEPHostParameter* scale = world.Param(node, "scale_u");
  const ULONG before = scale->GetRefCount();
  Delegate delegate(node);
  double ratio = 0;
  ASSERT_EQ(delegate.Mapping()->GetRatio(ratio), S_OK);  // reads the parameters
  EXPECT_EQ(scale->GetRefCount(), before + 1);
  auto* material = dynamic_cast<KEPRshShaderHardwareExt*>(delegate.Material().Get());
  ASSERT_NE(material, nullptr);
  {
    KEPRshShaderHardwareExt copy(*material);
    EXPECT_EQ(scale->GetRefCount(), before + 2);
    KEPString name = "scale_v";
    EXPECT_EQ(copy.CheckShaderFloatParameter(name), 2);
    KEPRshShaderHardwareExt assigned;
    assigned = *material;
    EXPECT_EQ(scale->GetRefCount(), before + 3);
  }
  EXPECT_EQ(scale->GetRefCount(), before + 1);
  delegate.Reset();
  EXPECT_EQ(scale->GetRefCount(), before);
}

}  // namespace
