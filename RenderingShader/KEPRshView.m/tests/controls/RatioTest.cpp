// The ratio control: its own fallbacks, each coordinate in its own unit, writes of one or both
// coordinates, attaching (announcements and the updating flag), the render lock around both
// writes, a bad introspection implementation, and its description and adapter.
#include <atomic>
#include <cmath>
#include <numbers>
#include <thread>

#include "ControlsTestSupport.h"
#include "KEPRshUIScalarRatio.h"
#include "KEPRshUIScalarSoftHardRange.h"

namespace keptest {
namespace {

using Ratio = KEPRshUIScalarRatio;
const std::string kChannel = "KEPRshUIScalarRatio";
const std::vector<std::string> kAttached = {"Values",          "HardMinimum", "HardMaximum",
                                            "SoftMinimum",     "SoftMaximum", "Magnitude",
                                            "DecimalPrecision"};

KEP_var<Ratio> RatioOf(KEPIRshParameter* primary, KEPIRshParameter* secondary) {
  auto ratio = KEP_var<Ratio>::Adopt(new Ratio());
  ratio->SetParameters(primary, secondary);
  return ratio;
}

float Stored(KEPIRshParameter* parameter) {
  float value = -1.0f;
  parameter->GetScalarValue(value);
  return value;
}

class RatioTest : public ControlsTest {};

TEST_F(RatioTest, WithoutParametersReadsZeroToOneAndThePointZeroOne) {
  const auto [x, y] = HostPair(0.5f, 0.25f);
  const auto outlived = RatioOf(x, y);
  EndWorld();
  const auto empty = KEP_var<Ratio>::Adopt(new Ratio());
  for (Ratio* ratio : {empty.Get(), outlived.Get()}) {
    TraceCapture trace;
    EXPECT_EQ(ratio->GetValues(), (KEPMathPoint2D{0.0, 1.0}));
    EXPECT_EQ(ratio->GetHardMinimum(), 0.0);
    EXPECT_EQ(ratio->GetHardMaximum(), 1.0);
    EXPECT_EQ(ratio->GetSoftMinimum(), 0.0);
    EXPECT_EQ(ratio->GetSoftMaximum(), 1.0);
    EXPECT_EQ(ratio->GetDecimalPrecision(), 1);
    EXPECT_FALSE(ratio->GetMagnitude());
    ratio->SetValues({3.0, 4.0});
    if (ratio != empty.Get()) continue;
    // The secondary is read first; the hard maximum's message says 0.0 though it answers 1.0.
    EXPECT_EQ(trace.Texts(kChannel), (std::vector<std::string>{
                                         "{ name = , value (default) = 1.0 }",
                                         "{ name = , value (default) = 0.0 }",
                                         "No parameter { hard minimum (default) = 0.0 }",
                                         "No parameter { hard maximum (default) = 0.0 }",
                                         "No parameter { soft minimum (default) = 0.0 }",
                                         "No parameter { soft maximum (default) = 1.0 }",
                                         "{ name = , magnitude = none }",
                                     }));
  }

  // The maxima answer 1.0 too when the primary's range cannot be read, with or without units.
  const auto p = Scripted("x");
  p->hardResult = p->softResult = E_FAIL;
  const auto ratio = RatioOf(p.Get(), Scripted("y").Get());
  TraceCapture trace;
  EXPECT_EQ(ratio->GetHardMaximum(), 1.0);
  p->unit = KEPParmDictionary::FindUnit(u"m");
  p->magnitude = KEPParmDictionary::FindMagnitude(KEPParmDictionary::LengthType);
  EXPECT_EQ(ratio->GetSoftMaximum(), 1.0);
  EXPECT_EQ(ratio->GetSoftMinimum(), 0.0);
  EXPECT_EQ(TextsAt(trace, kChannel, KEPTraceLevel::Error),
            (std::vector<std::string>{
                "{ name = x, hard maximum = 1.000 }",
                "Cannot read range { name = x, soft maximum (default) = 1.0 }",
                "Cannot read range { name = x, soft minimum (default) = 0.0 }",
            }));
}

TEST_F(RatioTest, EachCoordinateIsInTheCurrentUnitOfItsOwnMagnitude) {
  const auto [x, y] = HostPair(0.5f, std::numbers::pi_v<float> / 2,
                               {{"x.Unit", "m"},
                                {"x.Magnitude", "LENGTH"},
                                {"x.HardMin", "0"},
                                {"x.HardMax", "2"},
                                {"y.Unit", "rad"},
                                {"y.Magnitude", "ANGLE"}});
  KEPICkeMagnitude* angle = KEPParmDictionary::FindMagnitude(KEPParmDictionary::AngleType);
  ASSERT_EQ(angle->SetCurrentUnit(KEPParmDictionary::FindUnit(u"deg")), S_OK);
  const auto ratio = RatioOf(x, y);
  TraceCapture trace;
  const KEPMathPoint2D values = ratio->GetValues();
  EXPECT_DOUBLE_EQ(values.x, 500.0);
  EXPECT_NEAR(values.y, 90.0, 1e-4);
  EXPECT_DOUBLE_EQ(ratio->GetHardMaximum(), 2000.0);
  const std::vector<std::string> texts = trace.Texts(kChannel);
  ASSERT_GE(texts.size(), 2u);
  EXPECT_EQ(texts[0],
            "{ name = y, value (current) = 90.000, value (parameter) = 1.571, unit (current) = "
            "deg, unit (parameter) = rad }");
  EXPECT_EQ(texts[1],
            "{ name = x, value (current) = 500.000, value (parameter) = 0.500, unit (current) = "
            "mm, unit (parameter) = m }");

  ratio->SetValues({250.0, 45.0});
  EXPECT_EQ(Stored(x), 0.25f);
  EXPECT_FLOAT_EQ(Stored(y), std::numbers::pi_v<float> / 4);
}

TEST_F(RatioTest, WritesOnlyTheCoordinatesThatDifferAndAFailedXLetsYThrough) {
  const auto [x, y] = HostPair(1.0f, 2.0f);
  const auto ratio = RatioOf(x, y);
  ratio->SetValues({1.0, 3.0});
  ratio->SetValues({1.0, 3.0});
  EXPECT_EQ(x->WriteCount(), 0u);
  EXPECT_EQ(y->WriteCount(), 1u);
  EXPECT_EQ(Stored(y), 3.0f);
  std::vector<std::string> announced = kAttached;
  announced.push_back("Value");  // the written coordinate's, not "Values"
  EXPECT_EQ(AdapterOf(ratio.Get())->GetDispatched(), announced);

  const auto primary = Scripted("x"), secondary = Scripted("y");
  primary->writeResult = E_FAIL;
  const auto scripted = RatioOf(primary.Get(), secondary.Get());
  TraceCapture trace;
  scripted->SetValues({5.0, 6.0});
  EXPECT_EQ(primary->writes, std::vector<float>{5.0f});
  EXPECT_EQ(secondary->writes, std::vector<float>{6.0f});
  EXPECT_EQ(AdapterOf(scripted.Get())->GetDispatched(), announced);
  EXPECT_EQ(TextsAt(trace, kChannel, KEPTraceLevel::Error),
            std::vector<std::string>{"{ name = x, previous = 0.000, next = 5.000, unit = none }"});
}

TEST_F(RatioTest, AttachingAnnouncesInOrderAndIgnoresValuesSetMeanwhile) {
  const auto [x, y] = HostPair(1.0f, 2.0f);
  const auto ratio = KEP_var<Ratio>::Adopt(new Ratio());
  KEPSYPIntrospectableAdapter* adapter = AdapterOf(ratio.Get());
  ASSERT_NE(adapter, nullptr);
  // A bound part that answers every announcement by writing its own point.
  const int token = adapter->AddListener([&](std::string_view) { ratio->SetValues({7.0, 7.0}); });
  ratio->SetParameters(x, y);
  EXPECT_EQ(adapter->GetDispatched(), kAttached);
  EXPECT_EQ(x->WriteCount() + y->WriteCount(), 0u);

  adapter->RemoveListener(token);
  ratio->SetValues({7.0, 7.0});
  EXPECT_EQ(ratio->GetValues(), (KEPMathPoint2D{7.0, 7.0}));
}

TEST_F(RatioTest, ARendererNeverSeesOneCoordinateWrittenWithoutTheOther) {
  const auto [x, y] = HostPair(0.0f, 0.0f);
  const auto ratio = RatioOf(x, y);
  std::atomic<bool> done{false};
  std::atomic<int> reads{0}, torn{0};
  std::thread renderer([&, x = x, y = y] {
    while (!done) {
      const std::lock_guard<std::recursive_mutex> frame(KEPRdgRenderLock::Mutex());
      float a = 0.0f, b = 0.0f;
      x->GetScalarValue(a);
      y->GetScalarValue(b);
      if (a != b) ++torn;
      ++reads;
    }
  });
  for (int i = 1; i <= 20000 || reads < 100; ++i)
    ratio->SetValues({static_cast<double>(i), static_cast<double>(i)});
  done = true;
  renderer.join();
  EXPECT_EQ(torn, 0);
}

class BadAdapter : public KEPSYPIntrospectableAdapter {
 public:
  using KEPSYPIntrospectableAdapter::KEPSYPIntrospectableAdapter;
  KEPIUnknown* GetImplementation() override { return GetObject(); }
};

KEPSYPIntrospectableAdapter* CreateBadAdapter(KEPBaseUnknown* object) {
  return new BadAdapter(object);
}

TEST_F(RatioTest, ABadIntrospectionImplementationIsAssertedAndTheRatioGoesOn) {
  KEPSYPRegistry::RegisterAdapter("KEPRshUIScalarRatio", &CreateBadAdapter);
  struct Restore {
    ~Restore() { KEPRshViewRegister(); }
  } restore;
  const auto [x, y] = HostPair(1.0f, 2.0f);
  TraceCapture trace;
  const auto ratio = RatioOf(x, y);
  ratio->SetValues({3.0, 4.0});
  EXPECT_EQ(ratio->GetValues(), (KEPMathPoint2D{3.0, 4.0}));
  std::size_t assertions = 0;
  for (const KEPTraceEntry& entry : trace.Entries()) {
    if (entry.level != KEPTraceLevel::Assertion) continue;
    ++assertions;
    EXPECT_EQ(entry.text,
              "AssertionFailed:( introspectable_adapter != NULL ) && \"Bad Introspectable "
              "implementation!\"");
    EXPECT_EQ(entry.file, Ratio::SourcePath());
  }
  EXPECT_EQ(assertions, kAttached.size() + 2);
}

TEST_F(RatioTest, DescribedWithoutBaseAndIntrospectedThroughItsOwnAdapter) {
  const KEPSYPMetaClass* meta = KEPSYPRegistry::Find("KEPRshUIScalarRatio");
  ASSERT_NE(meta, nullptr);
  EXPECT_EQ(meta->GetBaseName(), "");
  using Entry = std::tuple<std::string, std::string, bool>;
  std::vector<Entry> entries;
  for (const KEPSYPProperty& property : meta->GetOwnProperties())
    entries.emplace_back(property.name, property.type, property.set != nullptr);
  EXPECT_EQ(entries, (std::vector<Entry>{{"HardMinimum", "double", false},
                                         {"HardMaximum", "double", false},
                                         {"SoftMinimum", "double", false},
                                         {"SoftMaximum", "double", false},
                                         {"Magnitude", "KEPICkeMagnitude", false},
                                         {"Values", "KEPMathPoint2D", true},
                                         {"DecimalPrecision", "int", false}}));
  ASSERT_EQ(meta->GetAllProperties().size(), 7u);
  EXPECT_EQ(meta->GetOwnProperties()[0].batch, meta->GetOwnProperties()[5].batch);
  EXPECT_NE(meta->GetOwnProperties()[5].batch, meta->GetOwnProperties()[6].batch);

  const auto [x, y] = HostPair(1.0f, 2.0f);
  const auto ratio = RatioOf(x, y);
  EXPECT_EQ(KEPSYPRegistry::FindAdapter(ratio.Get()),
            &CreateBOAKEPISYPIntrospectableKEPRshUIScalarRatioSYPIntro);
  const auto other = KEP_var<KEPRshUIScalarSoftHardRange>::Adopt(new KEPRshUIScalarSoftHardRange());
  EXPECT_EQ(CreateBOAKEPISYPIntrospectableKEPRshUIScalarRatioSYPIntro(other.Get()), nullptr);

  KEPSYPIntrospectableAdapter* adapter = AdapterOf(ratio.Get());
  ASSERT_NE(adapter, nullptr);
  EXPECT_EQ(adapter->GetSYPMetaClass(), meta);
  KEPSYPValue value;
  ASSERT_EQ(adapter->GetProperty("Values", value), S_OK);
  EXPECT_EQ(std::get<KEPMathPoint2D>(value), (KEPMathPoint2D{1.0, 2.0}));
  EXPECT_EQ(adapter->SetProperty("Values", KEPSYPValue(KEPMathPoint2D{3.0, 4.0})), S_OK);
  EXPECT_EQ(adapter->SetProperty("Values", KEPSYPValue(5.0)), E_INVALIDARG);
  EXPECT_EQ(ratio->GetValues(), (KEPMathPoint2D{3.0, 4.0}));
}

}  // namespace
}  // namespace keptest
