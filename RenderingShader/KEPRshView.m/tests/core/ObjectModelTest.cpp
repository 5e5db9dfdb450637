// The host object model: counts, interfaces by identifier, extensions, weak references, states.
#include <gtest/gtest.h>

#include "KEPBaseUnknown_WR.h"
#include "KEPExtensionRegistry.h"
#include "KEPTestSupport.h"
#include "KEP_var.h"

namespace objtest {

class ITalk : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(ITalk)
  virtual int Say() = 0;
};
class IWalk : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(IWalk)
  virtual int Steps() = 0;
};
class ISwim : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(ISwim)
};

inline int gAlive = 0;
inline int gDeletedTransitions = 0;

class Component : public KEPBaseUnknown {
  KEP_DECLARE_CLASS
 public:
  static Component* Create(const char* lateType) {
    auto* c = new Component();
    c->SetLateType(lateType);
    return c;
  }
};
KEP_IMPLEMENT_CLASS(Component, KEPBaseUnknown, "Test")

// One extension class that implements two interfaces.
class Behaviour : public KEPBaseUnknown, public ITalk, public IWalk {
  KEP_DECLARE_CLASS
 public:
  static KEPBaseUnknown* CreateItself() { return new Behaviour(); }
  int Say() override { return 42; }
  int Steps() override { return ++steps_; }
  HRESULT ChangeComponentState(int from, int to, const void* context) override {
    if (from < 2 && to == 2) ++gDeletedTransitions;
    return KEPBaseUnknown::ChangeComponentState(from, to, context);
  }
  Behaviour() { ++gAlive; }
  ~Behaviour() override { --gAlive; }

 private:
  int steps_ = 0;
};
KEP_IMPLEMENT_CLASS_EX(Behaviour, KEPBaseUnknown, "KEPNull", "Test", KEPClassKind_Extension,
                       "Animal")
KEP_DEFINE_TIE(ITalk, Behaviour)
KEP_DEFINE_TIE(IWalk, Behaviour)

// A class that is no talker and asks for ITalk while it is being built, and a talker built on
// it: while its base part is built a talker is not one yet.
class Mute : public KEPBaseUnknown {
 public:
  Mute() {
    ITalk* talk = KEPQuery<ITalk>(this);
    heardWhileBuilt = talk != nullptr;
    if (talk) talk->Release();
  }
  bool heardWhileBuilt = true;
};
class Talker : public Mute, public ITalk {
 public:
  int Say() override { return 7; }
};

}  // namespace objtest

namespace {
using namespace objtest;

class ObjectModel : public keptest::Fixture {
 protected:
  void SetUp() override {
    keptest::Fixture::SetUp();
    KEPExtensionRegistry::Register(
        {"Animal", "ITalk", "Behaviour", &Behaviour::CreateItself, &CreateTIEITalkBehaviour});
    KEPExtensionRegistry::Register(
        {"Animal", "IWalk", "Behaviour", &Behaviour::CreateItself, &CreateTIEIWalkBehaviour});
    gAlive = 0;
    gDeletedTransitions = 0;
  }
};

TEST_F(ObjectModel, CountsAndHandles) {
  auto c = KEP_var<Component>::Adopt(Component::Create("Plain"));
  EXPECT_EQ(c->GetRefCount(), 1u);
  {
    KEP_var<Component> copy = c;
    EXPECT_EQ(c->GetRefCount(), 2u);
    KEP_var<Component> moved = std::move(copy);
    EXPECT_EQ(c->GetRefCount(), 2u);
    EXPECT_TRUE(copy == NULL_var);
  }
  EXPECT_EQ(c->GetRefCount(), 1u);
  c = NULL_var;
  EXPECT_TRUE(c == NULL_var);
}

TEST_F(ObjectModel, MissingInterfaceIsNullAndNoInterface) {
  auto c = KEP_var<Component>::Adopt(Component::Create("Plain"));
  void* out = reinterpret_cast<void*>(0x1);
  EXPECT_EQ(c->QueryInterface(ITalk::IID(), &out), E_NOINTERFACE);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(c->QueryInterface(ITalk::IID(), nullptr), E_INVALIDARG);
  EXPECT_EQ(c->GetRefCount(), 1u);
}

TEST_F(ObjectModel, OneExtensionPerComponentSharingItsCount) {
  auto c = KEP_var<Component>::Adopt(Component::Create("Animal"));
  auto talk = KEPQueryVar<ITalk>(c);
  auto walk = KEPQueryVar<IWalk>(c);
  ASSERT_TRUE(talk && walk);
  EXPECT_EQ(gAlive, 1);
  EXPECT_EQ(c->GetExtensionCount(), 1u);
  EXPECT_EQ(talk->Say(), 42);
  walk->Steps();
  EXPECT_EQ(KEPQueryVar<IWalk>(talk)->Steps(), 2) << "the same instance answers both";
  // Two handles on the extension count on the component.
  EXPECT_EQ(c->GetRefCount(), 3u);
  // The extension reaches the component's other interfaces and knows its component.
  auto* behaviour = dynamic_cast<Behaviour*>(talk.Get());
  ASSERT_NE(behaviour, nullptr);
  EXPECT_EQ(behaviour->GetExtendedObject(), c.Get());
  EXPECT_EQ(behaviour->GetLateType(), "Animal");
  EXPECT_FALSE(KEPQueryVar<ISwim>(talk));

  // Another component gets its own instance.
  auto other = KEP_var<Component>::Adopt(Component::Create("Animal"));
  EXPECT_EQ(KEPQueryVar<IWalk>(other)->Steps(), 1);
  EXPECT_EQ(gAlive, 2);
  other.Reset();
  EXPECT_EQ(gAlive, 1);

  // A reference to an extension keeps its component alive.
  Component* raw = c.Get();
  c.Reset();
  walk.Reset();
  EXPECT_EQ(raw->GetRefCount(), 1u);
  EXPECT_EQ(gAlive, 1);
  talk.Reset();
  EXPECT_EQ(gAlive, 0);
}

TEST_F(ObjectModel, StateChangeReachesExtensions) {
  auto c = KEP_var<Component>::Adopt(Component::Create("Animal"));
  auto talk = KEPQueryVar<ITalk>(c);
  c->ChangeComponentState(KEPComponentState_Alive, KEPComponentState_Deleted, nullptr);
  EXPECT_EQ(gDeletedTransitions, 1);
  EXPECT_EQ(c->GetComponentState(), KEPComponentState_Deleted);
  c->ChangeComponentState(KEPComponentState_Deleted, KEPComponentState_Deleted, nullptr);
  EXPECT_EQ(gDeletedTransitions, 1) << "only a move from below 2 to 2 counts";
}

TEST_F(ObjectModel, WeakReferenceReadsNullOnceGone) {
  auto* c = Component::Create("Plain");
  KEPBaseUnknown_WR weak(c);
  KEPBaseUnknown_WR copy = weak;
  EXPECT_EQ(weak.Get(), c);
  EXPECT_EQ(c->GetRefCount(), 1u) << "weak references do not count";
  c->Release();
  EXPECT_EQ(weak.Get(), nullptr);
  EXPECT_FALSE(copy.IsAlive());
}

TEST_F(ObjectModel, MetaClasses) {
  auto c = KEP_var<Component>::Adopt(Component::Create("Animal"));
  EXPECT_TRUE(c->IsAKindOf("Component"));
  EXPECT_TRUE(c->IsAKindOf("KEPBaseUnknown"));
  EXPECT_FALSE(c->IsAKindOf("Behaviour"));
  EXPECT_TRUE(c->IsA("Component"));
  EXPECT_FALSE(c->IsA("KEPBaseUnknown"));
  const KEPMetaClass* meta = Behaviour::MetaObject();
  EXPECT_EQ(meta, Behaviour::MetaObject()) << "created once and cached";
  EXPECT_EQ(meta->Kind(), KEPClassKind_Extension);
  EXPECT_STREQ(meta->ExtendedLateType(), "Animal");
  EXPECT_STREQ(meta->SecondName(), "KEPNull");
  EXPECT_STREQ(meta->Framework(), "Test");
}

TEST_F(ObjectModel, ExtensionWithoutCreatorOrUnregisteredLateTypeIsNoInterface) {
  KEPExtensionRegistry::Register({"Ghost", "ITalk", "Nothing",
                                  [] { return static_cast<KEPBaseUnknown*>(nullptr); },
                                  &CreateTIEITalkBehaviour});
  auto ghost = KEP_var<Component>::Adopt(Component::Create("Ghost"));
  EXPECT_FALSE(KEPQueryVar<ITalk>(ghost));
  EXPECT_EQ(ghost->GetExtensionCount(), 0u);
}

TEST(Assertions, NonFatalGoesToTheSinkAndGoesOn) {
  keptest::TraceCapture capture;
  int after = 0;
  KEP_ASSERT(1 == 2, "( 1 == 2 ) && \"never\"", "RenderingShader/KEPRshView.m/src/Test");
  ++after;
  ASSERT_EQ(capture.Entries().size(), 1u);
  EXPECT_EQ(capture.Entries()[0].text, "AssertionFailed:( 1 == 2 ) && \"never\"");
  EXPECT_EQ(capture.Entries()[0].file, "RenderingShader/KEPRshView.m/src/Test");
  EXPECT_EQ(after, 1);
}

TEST(AssertionsDeathTest, FatalStopsTheProcess) {
  EXPECT_DEATH(KEP_ASSERT_FATAL(false, "( pointed != NULL )", "src/X"),
               "AssertionFailed:\\( pointed != NULL \\) \\(src/X:");
}

TEST(Traces, ChannelsAndModuleLevels) {
  keptest::TraceCapture capture(2);
  KEPTrace channel("KEPRmaUI");
  channel.Info("{ name = %s }", "x");
  channel.Error("src/A", 12, "{ value = %.3f }", 1.5);
  KEPModuleTrace::Trace(2, "(A::~A) Destructor\n");
  KEPModuleTrace::Trace(5, "(A::Callback) hidden\n");
  ASSERT_EQ(capture.Entries().size(), 3u);
  EXPECT_EQ(capture.Entries()[0].channel, "KEPRmaUI");
  EXPECT_EQ(capture.Entries()[1].line, 12);
  EXPECT_EQ(KEPTraceSink::Format(capture.Entries()[1]),
            "[KEPRmaUI] error: { value = 1.500 } (src/A:12)");
  EXPECT_EQ(capture.Entries()[2].text, "(A::~A) Destructor\n");
}

// A query that a class answers no to is remembered per class: another class that has the
// interface, even one built on the first, still answers itself, and a class without it keeps
// reaching its extension query after query.
TEST_F(ObjectModel, AnInterfaceOneClassLacksIsStillFoundOnOthers) {
  auto talker = KEP_var<Talker>::Adopt(new Talker());
  EXPECT_FALSE(talker->heardWhileBuilt) << "a base under construction is no talker";
  for (int round = 0; round < 2; ++round) {
    auto talk = KEPQueryVar<ITalk>(static_cast<KEPBaseUnknown*>(talker.Get()));
    ASSERT_TRUE(talk) << round;
    EXPECT_EQ(talk->Say(), 7) << "the talker's own interface";
    EXPECT_EQ(talker->GetExtensionCount(), 0u);

    auto mute = KEP_var<Mute>::Adopt(new Mute());
    EXPECT_FALSE(KEPQueryVar<ITalk>(mute)) << round;
    mute->SetLateType("Animal");
    for (int query = 0; query < 2; ++query) {
      auto served = KEPQueryVar<ITalk>(mute);
      ASSERT_TRUE(served) << round << " " << query;
      EXPECT_EQ(served->Say(), 42) << "the extension's";
    }
    EXPECT_EQ(mute->GetExtensionCount(), 1u);
  }
}

}  // namespace
