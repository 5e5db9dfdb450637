// Introspection: what a metaclass builder accepts, how the registry finds a class's metaclass and
// adapter along the class chain, and what the adapter does for its object.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "KEPISYPIntrospectable.h"
#include "KEPSYPMetaClass.h"
#include "KEPTestSupport.h"
#include "KEPVidCtl.h"
#include "KEPVidCtlSlider.h"
#include "KEP_var.h"

// --- Test classes: a base control, a derived one, and one further down without a metaclass.
// (Outside the anonymous namespace: their class functions are used through the object model.)
namespace introspection_test {

class Gauge : public KEPVidCtl {
  KEP_DECLARE_CLASS
 public:
  double level = 0.5;
  int ticks = 3;
  KEPMathPoint2D corner{1, 2};
  KEPString label = "dial";
};
KEP_IMPLEMENT_CLASS(Gauge, KEPVidCtl, "Test")

class Dial : public Gauge {
  KEP_DECLARE_CLASS
};
KEP_IMPLEMENT_CLASS(Dial, Gauge, "Test")

class SmallDial : public Dial {
  KEP_DECLARE_CLASS
};
KEP_IMPLEMENT_CLASS(SmallDial, Dial, "Test")
}  // namespace introspection_test

namespace {
using introspection_test::Dial;
using introspection_test::Gauge;
using introspection_test::SmallDial;

Gauge& G(KEPBaseUnknown* o) {
  return *static_cast<Gauge*>(o);
}
KEPSYPValue GetLevel(KEPBaseUnknown* o) {
  return G(o).level;
}
HRESULT SetLevel(KEPBaseUnknown* o, const KEPSYPValue& v) {
  G(o).level = std::get<double>(v);
  return S_OK;
}
KEPSYPValue GetTicks(KEPBaseUnknown* o) {
  return G(o).ticks;
}
KEPSYPValue GetCorner(KEPBaseUnknown* o) {
  return G(o).corner;
}
KEPSYPValue GetLabel(KEPBaseUnknown* o) {
  return G(o).label;
}
HRESULT SetLabel(KEPBaseUnknown* o, const KEPSYPValue& v) {
  G(o).label = std::get<KEPString>(v);
  return S_OK;
}
KEPSYPValue Throws(KEPBaseUnknown*) {
  throw std::runtime_error("broken getter");
}
KEPBaseUnknown* CreateGauge() {
  return new Gauge();
}

HRESULT BuildGauge(KEPSYPMetaClassBuilder& b) {
  b.SetClass("Gauge", "KEPVidCtl", &CreateGauge);
  const KEPSYPPropertyEntry doubles[] = {{"Level", "double", &GetLevel, &SetLevel},
                                         {"Corner", "KEPMathPoint2D", &GetCorner, nullptr},
                                         {"Broken", "double", &Throws, nullptr}};
  if (FAILED(b.AddProperties(doubles, 3))) return E_FAIL;
  const KEPSYPPropertyEntry ints[] = {{"Ticks", "int", &GetTicks, nullptr}};
  return b.AddIntegerProperties(ints, 1);
}
HRESULT BuildDial(KEPSYPMetaClassBuilder& b) {
  b.SetClass("Dial", "Gauge", nullptr);
  const KEPSYPPropertyEntry own[] = {{"Label", "string", &GetLabel, &SetLabel}};
  return b.AddProperties(own, 1);
}
// A dial described on its own: its metaclass names no base.
HRESULT BuildLoneDial(KEPSYPMetaClassBuilder& b) {
  b.SetClass("Dial", nullptr, nullptr);
  const KEPSYPPropertyEntry own[] = {{"Label", "string", &GetLabel, &SetLabel}};
  return b.AddProperties(own, 1);
}

class Introspection : public keptest::Fixture {
 protected:
  void SetUp() override {
    keptest::Fixture::SetUp();
    KEPSYPRegistry::Clear();
  }
  void TearDown() override {
    KEPSYPRegistry::Clear();
    keptest::Fixture::TearDown();
  }
};

std::vector<std::string> Names(const std::vector<const KEPSYPProperty*>& properties) {
  std::vector<std::string> names;
  for (const KEPSYPProperty* p : properties) names.push_back(p->name);
  return names;
}

// --- Builder

KEPSYPValue AnyGetter(KEPBaseUnknown*) {
  return 0;
}

TEST_F(Introspection, BatchesAreRefusedWholeWhenAnyEntryIsBad) {
  struct Case {
    const char* what;
    std::vector<KEPSYPPropertyEntry> entries;
    bool integer;
    const char* reason;
  };
  const std::vector<Case> cases = {
      {"no name",
       {{"A", "int", &AnyGetter, nullptr}, {nullptr, "int", &AnyGetter, nullptr}},
       false,
       "entry 1 has no name"},
      {"empty name", {{"", "int", &AnyGetter, nullptr}}, false, "entry 0 has no name"},
      {"no type", {{"A", "", &AnyGetter, nullptr}}, false, "has no type"},
      {"no getter", {{"A", "int", nullptr, nullptr}}, false, "has no getter"},
      {"repeated in batch",
       {{"A", "int", &AnyGetter, nullptr}, {"A", "int", &AnyGetter, nullptr}},
       false,
       "given twice in the batch"},
      {"already registered", {{"Taken", "int", &AnyGetter, nullptr}}, false, "already registered"},
      {"integer batch of a double",
       {{"A", "int", &AnyGetter, nullptr}, {"B", "double", &AnyGetter, nullptr}},
       true,
       "not \"int\""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    keptest::TraceCapture traces;
    KEPSYPMetaClass meta;
    KEPSYPMetaClassBuilder builder(meta);
    builder.SetClass("Probe", nullptr, nullptr);
    const KEPSYPPropertyEntry taken{"Taken", "int", &AnyGetter, nullptr};
    ASSERT_EQ(builder.AddProperties(&taken, 1), S_OK);
    const int count = static_cast<int>(c.entries.size());
    const HRESULT result = c.integer ? builder.AddIntegerProperties(c.entries.data(), count)
                                     : builder.AddProperties(c.entries.data(), count);
    EXPECT_EQ(result, E_INVALIDARG);
    EXPECT_EQ(meta.GetOwnProperties().size(), 1U) << "nothing of a refused batch is registered";
    EXPECT_TRUE(traces.Contains(c.reason));
  }
}

TEST_F(Introspection, BatchesKeepOrderAndNumberAndCountsAreChecked) {
  KEPSYPMetaClass meta;
  KEPSYPMetaClassBuilder builder(meta);
  builder.SetClass("Probe", nullptr, nullptr);
  const KEPSYPPropertyEntry first[] = {{"B", "double", &AnyGetter, nullptr},
                                       {"A", "double", &AnyGetter, nullptr}};
  const KEPSYPPropertyEntry second[] = {{"C", "int", &AnyGetter, nullptr}};
  EXPECT_EQ(builder.AddProperties(first, 2), S_OK);
  EXPECT_EQ(builder.AddProperties(nullptr, 0), S_OK) << "an empty batch is no batch";
  EXPECT_EQ(builder.AddIntegerProperties(second, 1), S_OK);
  EXPECT_EQ(builder.AddProperties(first, -1), E_INVALIDARG);
  EXPECT_EQ(builder.AddProperties(nullptr, 2), E_INVALIDARG);
  ASSERT_EQ(meta.GetOwnProperties().size(), 3U);
  EXPECT_EQ(meta.GetOwnProperties()[0].name, "B");
  EXPECT_EQ(meta.GetOwnProperties()[0].batch, 1);
  EXPECT_EQ(meta.GetOwnProperties()[1].batch, 1);
  EXPECT_EQ(meta.GetOwnProperties()[2].name, "C");
  EXPECT_EQ(meta.GetOwnProperties()[2].batch, 2);
}

// --- Registry

int gBuilds = 0;
HRESULT CountedGauge(KEPSYPMetaClassBuilder& b) {
  ++gBuilds;
  return BuildGauge(b);
}

TEST_F(Introspection, BuilderRunsOnFirstFindOnly) {
  gBuilds = 0;
  KEPSYPRegistry::RegisterBuilder("Gauge", &CountedGauge);
  EXPECT_EQ(gBuilds, 0);
  const KEPSYPMetaClass* meta = KEPSYPRegistry::Find("Gauge");
  ASSERT_NE(meta, nullptr);
  EXPECT_EQ(KEPSYPRegistry::Find("Gauge"), meta);
  EXPECT_EQ(gBuilds, 1);
  EXPECT_EQ(meta->GetBaseName(), "KEPVidCtl");
  EXPECT_EQ(meta->GetCreator(), &CreateGauge);
  EXPECT_EQ(KEPSYPRegistry::Find("Nothing"), nullptr);
  // Replaced, the builder runs again; the metaclass handed out before stays valid.
  KEPSYPRegistry::RegisterBuilder("Gauge", &BuildLoneDial);
  KEPSYPRegistry::RegisterBuilder("Dial", &BuildLoneDial);
  ASSERT_NE(KEPSYPRegistry::Find("Dial"), nullptr);
  EXPECT_EQ(KEPSYPRegistry::Find("Gauge"), nullptr) << "that builder names another class";
  EXPECT_EQ(meta->GetBaseName(), "KEPVidCtl");
}

HRESULT Failing(KEPSYPMetaClassBuilder& b) {
  b.SetClass("Bad", nullptr, nullptr);
  return E_FAIL;
}
HRESULT WrongName(KEPSYPMetaClassBuilder& b) {
  b.SetClass("Other", nullptr, nullptr);
  return S_OK;
}
HRESULT OwnBase(KEPSYPMetaClassBuilder& b) {
  b.SetClass("Bad", "Bad", nullptr);
  return S_OK;
}
HRESULT Throwing(KEPSYPMetaClassBuilder&) {
  throw std::runtime_error("builder exploded");
}
HRESULT RefusedBatch(KEPSYPMetaClassBuilder& b) {
  b.SetClass("Bad", nullptr, nullptr);
  const KEPSYPPropertyEntry bad[] = {{"X", "double", nullptr, nullptr}};
  return b.AddProperties(bad, 1);
}

TEST_F(Introspection, FailingBuildersAreTracedOnceAndGiveNoMetaclass) {
  struct Case {
    KEPSYPBuilderFunction builder;
    const char* trace;
  };
  const Case cases[] = {{&Failing, "Builder failed { class = Bad, result = 0x80004005 }"},
                        {&WrongName, "Builder named another class { class = Bad, named = Other }"},
                        {&OwnBase, "Class names itself as its base { class = Bad }"},
                        {&Throwing, "Builder threw { class = Bad, what = builder exploded }"},
                        {&RefusedBatch, "Batch refused { class = Bad, batch = 1"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.trace);
    keptest::TraceCapture traces;
    KEPSYPRegistry::RegisterBuilder("Bad", c.builder);
    EXPECT_EQ(KEPSYPRegistry::Find("Bad"), nullptr);
    EXPECT_EQ(KEPSYPRegistry::Find("Bad"), nullptr);
    ASSERT_FALSE(traces.Entries().empty());
    EXPECT_EQ(traces.Entries().front().channel, "KEPSYP");
    EXPECT_EQ(traces.Entries().front().level, KEPTraceLevel::Error);
    EXPECT_TRUE(traces.Contains(c.trace));
    const std::size_t errors = traces.Entries().size();
    EXPECT_LE(errors, 2U) << "a failed class is not built (nor traced) again";
  }
}

TEST_F(Introspection, FindForWalksTheClassChainToTheNearestDescribedClass) {
  KEP_var<Gauge> gauge = KEP_var<Gauge>::Adopt(new Gauge());
  KEP_var<SmallDial> small = KEP_var<SmallDial>::Adopt(new SmallDial());
  EXPECT_EQ(KEPSYPRegistry::FindFor(small.Get()), nullptr);
  EXPECT_EQ(KEPSYPRegistry::FindFor(nullptr), nullptr);

  KEPSYPRegistry::RegisterBuilder("Gauge", &BuildGauge);
  EXPECT_EQ(KEPSYPRegistry::FindFor(small.Get()), KEPSYPRegistry::Find("Gauge"));
  KEPSYPRegistry::RegisterBuilder("Dial", &BuildDial);
  EXPECT_EQ(KEPSYPRegistry::FindFor(small.Get()), KEPSYPRegistry::Find("Dial"));
  EXPECT_EQ(KEPSYPRegistry::FindFor(gauge.Get()), KEPSYPRegistry::Find("Gauge"));
}

TEST_F(Introspection, PropertiesOfABaseMetaclassAreFoundByName) {
  KEPSYPRegistry::RegisterBuilder("Gauge", &BuildGauge);
  KEPSYPRegistry::RegisterBuilder("Dial", &BuildDial);
  const KEPSYPMetaClass* dial = KEPSYPRegistry::Find("Dial");
  ASSERT_NE(dial, nullptr);
  EXPECT_NE(dial->FindProperty("Level"), nullptr);
  EXPECT_NE(dial->FindProperty("Label"), nullptr);
  EXPECT_EQ(dial->FindProperty("Nope"), nullptr);
  EXPECT_EQ(Names(dial->GetAllProperties()),
            (std::vector<std::string>{"Level", "Corner", "Broken", "Ticks", "Label"}));

  KEPSYPRegistry::RegisterBuilder("Dial", &BuildLoneDial);
  const KEPSYPMetaClass* lone = KEPSYPRegistry::Find("Dial");
  EXPECT_EQ(lone->FindProperty("Level"), nullptr) << "no base named: only its own properties";
  EXPECT_EQ(Names(lone->GetAllProperties()), (std::vector<std::string>{"Label"}));
}

HRESULT LoopA(KEPSYPMetaClassBuilder& b) {
  b.SetClass("LoopA", "LoopB", nullptr);
  return S_OK;
}
HRESULT LoopB(KEPSYPMetaClassBuilder& b) {
  b.SetClass("LoopB", "LoopA", nullptr);
  return S_OK;
}

TEST_F(Introspection, ABaseChainThatLoopsEndsTheSearch) {
  KEPSYPRegistry::RegisterBuilder("LoopA", &LoopA);
  KEPSYPRegistry::RegisterBuilder("LoopB", &LoopB);
  const KEPSYPMetaClass* a = KEPSYPRegistry::Find("LoopA");
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(a->FindProperty("Anything"), nullptr);
  EXPECT_TRUE(a->GetAllProperties().empty());
}

// --- Adapters

class GaugeAdapter : public KEPSYPIntrospectableAdapter {
 public:
  using KEPSYPIntrospectableAdapter::KEPSYPIntrospectableAdapter;
};
KEPSYPIntrospectableAdapter* MakeGaugeAdapter(KEPBaseUnknown* object) {
  return dynamic_cast<Gauge*>(object) ? new GaugeAdapter(object) : nullptr;
}
KEPSYPIntrospectableAdapter* RefuseEverything(KEPBaseUnknown*) {
  return nullptr;
}

TEST_F(Introspection, AControlIsIntrospectedThroughTheAdapterOfItsNearestRegisteredClass) {
  KEPSYPRegistry::RegisterAdapter("Gauge", &MakeGaugeAdapter);
  KEP_var<SmallDial> small = KEP_var<SmallDial>::Adopt(new SmallDial());
  EXPECT_EQ(KEPSYPRegistry::FindAdapter(small.Get()), &MakeGaugeAdapter);
  EXPECT_NE(dynamic_cast<GaugeAdapter*>(small->GetIntrospectionAdapter()), nullptr);

  // A factory that turns the object down leaves it to the toolkit's own adapter.
  KEPSYPRegistry::RegisterAdapter("KEPVidCtlSlider", &RefuseEverything);
  KEP_var<KEPVidCtlSlider> slider = KEP_var<KEPVidCtlSlider>::Adopt(new KEPVidCtlSlider());
  KEPSYPIntrospectableAdapter* own = slider->GetIntrospectionAdapter();
  ASSERT_NE(own, nullptr);
  EXPECT_EQ(dynamic_cast<GaugeAdapter*>(own), nullptr);
  EXPECT_EQ(own->GetObject(), slider.Get());
  EXPECT_EQ(slider->GetIntrospectionAdapter(), own) << "created once";
  // Without a metaclass, no property.
  KEPSYPValue value = 3;
  EXPECT_EQ(own->GetSYPMetaClass(), nullptr);
  EXPECT_EQ(own->GetProperty("Value", value), E_FAIL);
  EXPECT_TRUE(std::holds_alternative<std::monostate>(value));
  EXPECT_EQ(own->SetProperty("Value", 1.0), E_FAIL);
}

TEST_F(Introspection, TheAdapterSharesItsControlsIdentityAndCount) {
  KEP_var<Gauge> gauge = KEP_var<Gauge>::Adopt(new Gauge());
  auto introspectable = KEPQueryVar<KEPISYPIntrospectable>(gauge);
  ASSERT_TRUE(introspectable);
  EXPECT_EQ(introspectable.Get(),
            static_cast<KEPISYPIntrospectable*>(gauge->GetIntrospectionAdapter()));
  EXPECT_EQ(introspectable->GetImplementation(), gauge->GetIntrospectionAdapter());
  EXPECT_EQ(gauge->GetRefCount(), 2U) << "the interface counts on the control";
  // Asked through the adapter, the other interfaces are the control's.
  auto back = KEPQueryVar<KEPISYPIntrospectable>(introspectable);
  EXPECT_EQ(back.Get(), introspectable.Get());
  KEPIUnknown* unknown = nullptr;
  const KEPIID missing{"NoSuchInterface", nullptr};
  EXPECT_EQ(introspectable->QueryInterface(missing, reinterpret_cast<void**>(&unknown)),
            E_NOINTERFACE);
  EXPECT_EQ(unknown, nullptr);
  back.Reset();
  introspectable.Reset();
  EXPECT_EQ(gauge->GetRefCount(), 1U);
}

TEST_F(Introspection, PropertiesAreReadAndWrittenWithTheirTypeChecked) {
  KEPSYPRegistry::RegisterBuilder("Gauge", &BuildGauge);
  KEPSYPRegistry::RegisterBuilder("Dial", &BuildDial);
  KEP_var<Dial> dial = KEP_var<Dial>::Adopt(new Dial());
  KEPSYPIntrospectableAdapter& adapter = *dial->GetIntrospectionAdapter();
  EXPECT_EQ(adapter.GetSYPMetaClass(), KEPSYPRegistry::Find("Dial"));

  KEPSYPValue value;
  EXPECT_EQ(adapter.GetProperty("Level", value), S_OK);
  EXPECT_EQ(std::get<double>(value), 0.5);
  EXPECT_EQ(adapter.GetProperty("Label", value), S_OK);
  EXPECT_EQ(std::get<KEPString>(value), "dial");
  EXPECT_EQ(adapter.GetProperty("Nope", value), E_FAIL);
  EXPECT_TRUE(std::holds_alternative<std::monostate>(value));
  {
    keptest::TraceCapture traces;
    EXPECT_EQ(adapter.GetProperty("Broken", value), E_FAIL) << "a throwing getter is a failure";
    EXPECT_TRUE(traces.Contains("Getter threw { class = Dial, property = Broken"));
  }

  struct Write {
    const char* property;
    KEPSYPValue value;
    HRESULT result;
  };
  const Write writes[] = {{"Level", 0.75, S_OK},
                          {"Level", 1, E_INVALIDARG},
                          {"Level", KEPString("1"), E_INVALIDARG},
                          {"Label", KEPString("knob"), S_OK},
                          {"Ticks", 4, E_FAIL},
                          {"Corner", KEPMathPoint2D{}, E_FAIL},
                          {"Nope", 1.0, E_FAIL}};
  for (const Write& w : writes) {
    SCOPED_TRACE(w.property);
    EXPECT_EQ(adapter.SetProperty(w.property, w.value), w.result);
  }
  EXPECT_EQ(dial->level, 0.75);
  EXPECT_EQ(dial->label, "knob");
  EXPECT_EQ(dial->ticks, 3);
}

// --- Announcements

TEST_F(Introspection, ListenersHearAnnouncementsInOrderAndMayChangeTheListDuringOne) {
  KEP_var<Gauge> gauge = KEP_var<Gauge>::Adopt(new Gauge());
  KEPSYPIntrospectableAdapter& adapter = *gauge->GetIntrospectionAdapter();
  std::vector<std::string> heard;
  auto note = [&](const char* who, std::string_view p) { heard.push_back(who + std::string(p)); };
  int second = 0;
  const int first = adapter.AddListener([&](std::string_view p) {
    note("1:", p);
    if (p != "B") return;
    adapter.RemoveListener(second);  // not called by this dispatch any more
    adapter.AddListener([&](std::string_view q) { note("3:", q); });  // from the next one
  });
  second = adapter.AddListener([&](std::string_view p) { note("2:", p); });
  adapter.DispatchModifyProperty("A");
  adapter.DispatchModifyProperty("B");
  adapter.RemoveListener(first);
  adapter.RemoveListener(12345);  // unknown: nothing happens
  adapter.DispatchModifyProperty("C");
  EXPECT_EQ(heard, (std::vector<std::string>{"1:A", "2:A", "1:B", "3:C"}));
  EXPECT_EQ(adapter.GetDispatched(), (std::vector<std::string>{"A", "B", "C"}));
}

TEST_F(Introspection, AControlReleasedByItsListenerLivesUntilTheDispatchEnds) {
  auto* gauge = new Gauge();
  KEPSYPIntrospectableAdapter* adapter = gauge->GetIntrospectionAdapter();
  bool later = false;
  adapter->AddListener([&](std::string_view) { gauge->Release(); });
  adapter->AddListener([&](std::string_view) { later = gauge->level == 0.5; });
  adapter->DispatchModifyProperty("Value");  // ASan: nothing is used after it is freed
  EXPECT_TRUE(later);
}

TEST_F(Introspection, OnlyTheLastAnnouncementsAreKept) {
  KEP_var<Gauge> gauge = KEP_var<Gauge>::Adopt(new Gauge());
  KEPSYPIntrospectableAdapter& adapter = *gauge->GetIntrospectionAdapter();
  const std::size_t total = KEPSYPIntrospectableAdapter::kDispatchedKept + 10;
  for (std::size_t i = 0; i < total; ++i) adapter.DispatchModifyProperty(std::to_string(i));
  EXPECT_EQ(adapter.GetDispatchCount(), total);
  ASSERT_EQ(adapter.GetDispatched().size(), KEPSYPIntrospectableAdapter::kDispatchedKept);
  EXPECT_EQ(adapter.GetDispatched().front(), "10");
  EXPECT_EQ(adapter.GetDispatched().back(), std::to_string(total - 1));
}

}  // namespace
