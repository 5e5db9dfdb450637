// The soft and hard range control: fallbacks, unit conversion both ways, the paths without units
// or without a current unit, the exact-equality test before a write, failures, announcements and
// the render lock, and its introspection description.
#include <functional>

#include "ControlsTestSupport.h"
#include "KEPRshUIScalarSoftHardRange.h"

namespace keptest {
namespace {

using Range = KEPRshUIScalarSoftHardRange;
const std::string kChannel = "KEPRshUIScalarSoftHardRange";

KEP_var<Range> RangeOn(KEPIUnknown* parameter) {
  const auto layout = KEPQueryVar<KEPIRshParameterImmLayout>(parameter);
  EXPECT_TRUE(layout) << "no layout behaviour";
  return KEP_var<Range>::Adopt(new Range(layout.Get()));
}

KEPICkeUnit* Metre() {
  return KEPParmDictionary::FindUnit(u"m");
}
KEPICkeMagnitude* Length() {
  return KEPParmDictionary::FindMagnitude(KEPParmDictionary::LengthType);
}

class SoftHardRangeTest : public ControlsTest {};

TEST_F(SoftHardRangeTest, WithoutParameterEveryGetterAnswersZeroAndThePrecisionOne) {
  const auto outlived = RangeOn(HostPair(0.5f, 0.0f, {{"x.Unit", "m"}}).first);
  EndWorld();
  const auto empty = KEP_var<Range>::Adopt(new Range());
  TraceCapture trace;
  for (Range* control : {empty.Get(), outlived.Get()}) {
    EXPECT_EQ(control->GetHardMinimum(), 0.0);
    EXPECT_EQ(control->GetHardMaximum(), 0.0);
    EXPECT_EQ(control->GetSoftMinimum(), 0.0);
    EXPECT_EQ(control->GetSoftMaximum(), 0.0);
    EXPECT_EQ(control->GetValue(), 0.0);
    EXPECT_EQ(control->GetDecimalPrecision(), 1);
    EXPECT_FALSE(control->GetUnit());
    EXPECT_FALSE(control->GetMagnitude());
    control->SetValue(3.0);
  }
  // An empty control has no channel; the one that lost its parameter says so, and SetValue and
  // the precision stay silent.
  EXPECT_EQ(trace.Texts(), (std::vector<std::string>{
                               "No parameter { hard minimum (default) = 0.0 }",
                               "No parameter { hard maximum (default) = 0.0 }",
                               "No parameter { soft minimum (default) = 0.0 }",
                               "No parameter { soft maximum (default) = 0.0 }",
                               "{ name = x, value (default) = 0.0 }",
                               "{ name = x, unit = none }",
                               "{ name = x, magnitude = none }",
                           }));
  for (const KEPTraceEntry& entry : trace.Entries())
    if (entry.level == KEPTraceLevel::Error) {
      EXPECT_EQ(entry.file, Range::SourcePath());
    }
}

TEST_F(SoftHardRangeTest, ShowsMetresInTheUsersUnitAndWritesItBackInMetres) {
  KEPHostParameter* x = HostPair(0.5f, 0.0f,
                                 {{"x.Unit", "m"},
                                  {"x.Magnitude", "LENGTH"},
                                  {"x.HardMin", "-1"},
                                  {"x.HardMax", "2"},
                                  {"x.SoftMin", "0.1"},
                                  {"x.SoftMax", "1"},
                                  {"x.Step", "0.01"}})
                            .first;
  const auto control = RangeOn(x);
  TraceCapture trace;
  EXPECT_DOUBLE_EQ(control->GetValue(), 500.0);
  EXPECT_DOUBLE_EQ(control->GetHardMinimum(), -1000.0);
  EXPECT_DOUBLE_EQ(control->GetHardMaximum(), 2000.0);
  EXPECT_DOUBLE_EQ(control->GetSoftMinimum(), 100.0);
  EXPECT_DOUBLE_EQ(control->GetSoftMaximum(), 1000.0);
  EXPECT_EQ(control->GetDecimalPrecision(), 3);
  EXPECT_EQ(control->GetUnit().Get(), Metre());
  EXPECT_EQ(control->GetMagnitude().Get(), Length());
  control->SetValue(250.0);
  float stored = 0.0f;
  x->GetScalarValue(stored);
  EXPECT_EQ(stored, 0.25f);

  const std::vector<std::string> texts = trace.Texts(kChannel);
  ASSERT_EQ(texts.size(), 9u);
  EXPECT_EQ(texts[0],
            "{ name = x, value (current) = 500.000, value (parameter) = 0.500, unit (current) = "
            "mm, unit (parameter) = m }");
  EXPECT_EQ(texts[2],
            "{ name = x, hard maximum (current) = 2000.000, hard maximum (parameter) = 2.000, "
            "unit (current) = mm, unit (parameter) = m }");
  EXPECT_EQ(texts[8],
            "{ name = x, previous (current) = 500.000, previous (parameter) = 0.500, next "
            "(current) = 250.000, next (parameter) = 0.250, unit (current) = mm, unit "
            "(parameter) = m }");

  // The user's unit is read on every call.
  ASSERT_EQ(Length()->SetCurrentUnit(KEPParmDictionary::FindUnit(u"cm")), S_OK);
  EXPECT_DOUBLE_EQ(control->GetValue(), 25.0);
  control->SetValue(40.0);
  x->GetScalarValue(stored);
  EXPECT_EQ(stored, 0.4f);
}

TEST_F(SoftHardRangeTest, WithoutUnitsOrCurrentUnitReadsAsStoredOrFallsBack) {
  const auto lost = KEP_var<MagnitudeWithoutCurrentUnit>::Adopt(new MagnitudeWithoutCurrentUnit());
  const auto withUnits = [](ScriptedParameter& p) {
    p.unit = Metre();
    p.magnitude = Length();
  };
  const auto lostCurrent = [&](ScriptedParameter& p) {
    p.unit = Metre();
    p.magnitude = lost.Get();
  };
  using Read = std::function<double(const Range&)>;
  const Read hardMin = &Range::GetHardMinimum, hardMax = &Range::GetHardMaximum,
             softMin = &Range::GetSoftMinimum, softMax = &Range::GetSoftMaximum,
             value = &Range::GetValue;
  const Read precision = [](const Range& r) { return r.GetDecimalPrecision(); };
  const auto info = KEPTraceLevel::Info, error = KEPTraceLevel::Error;
  struct Case {
    const char* what;
    std::function<void(ScriptedParameter&)> script;
    Read read;
    double expected;
    KEPTraceLevel level;
    std::string text;
  };
  const Case cases[] = {
      {"unit without magnitude: range as configured",
       [](ScriptedParameter& p) { p.unit = Metre(); }, hardMax, 10.0, info,
       "{ name = p, hard maximum = 10.000 }"},
      {"no units, range unreadable", [](ScriptedParameter& p) { p.hardResult = E_FAIL; }, hardMax,
       0.0, error, "{ name = p, hard maximum = 0.000 }"},
      {"magnitude call failed",
       [&](ScriptedParameter& p) {
         withUnits(p);
         p.magnitudeResult = E_FAIL;
       },
       softMin, 1.0, info, "{ name = p, soft minimum = 1.000 }"},
      {"units, range unreadable",
       [&](ScriptedParameter& p) {
         withUnits(p);
         p.softResult = E_FAIL;
       },
       softMax, 0.0, error, "Cannot read range { name = p, soft maximum (default) = 0.0 }"},
      {"no current unit: range", lostCurrent, hardMin, 0.0, error,
       "No current unit { name = p, hard minimum (default) = 0.0 }"},
      {"no current unit: value as stored", lostCurrent, value, 0.5, KEPTraceLevel::Warning,
       "{ name = p, value (parameter) = 0.500, unit (current) = none, unit (parameter) = m }"},
      {"no unit: value as stored", [](ScriptedParameter&) {}, value, 0.5, info,
       "{ name = p, value = 0.500, unit = none }"},
      {"value unreadable", [](ScriptedParameter& p) { p.readResult = E_FAIL; }, value, 0.0, error,
       "{ name = p, value (default) = 0.0 }"},
      {"precision unreadable", [](ScriptedParameter& p) { p.precisionResult = E_FAIL; }, precision,
       1.0, error, "{ name = p, decimal precision = 1 }"},
      {"precision", [](ScriptedParameter&) {}, precision, 3.0, info,
       "{ name = p, decimal precision = 3 }"},
  };
  for (const Case& c : cases) {
    const auto p = Scripted();
    p->value = 0.5f;
    c.script(*p);
    const auto control = RangeOn(p.Get());
    TraceCapture trace;
    EXPECT_EQ(c.read(*control), c.expected) << c.what;
    ASSERT_EQ(trace.Entries().size(), 1u) << c.what;
    const KEPTraceEntry& entry = trace.Entries()[0];
    EXPECT_EQ(entry.channel, kChannel) << c.what;
    EXPECT_EQ(entry.level, c.level) << c.what;
    EXPECT_EQ(entry.text, c.text) << c.what;
    if (entry.level == error) {
      EXPECT_EQ(entry.file, Range::SourcePath()) << c.what;
    }
  }
}

TEST_F(SoftHardRangeTest, WritesOnlyWhatDiffersExactlyAndNeverClamps) {
  struct Case {
    const char* what;
    bool units;
    float stored;
    double next;
    std::vector<float> writes;
  };
  const Case cases[] = {
      {"no units, already stored", false, 0.25f, 0.25, {}},
      {"no units, not a float: written again", false, 0.1f, 0.1, {0.1f}},
      {"units, already stored once converted", true, 0.25f, 250.0, {}},
      {"units, converted", true, 0.25f, 100.0, {0.1f}},
      {"above the hard range", false, 0.0f, 50.0, {50.0f}},
      {"below the hard range", true, 0.0f, -20000.0, {-20.0f}},
  };
  for (const Case& c : cases) {
    const auto p = Scripted();
    p->value = c.stored;
    if (c.units) {
      p->unit = Metre();
      p->magnitude = Length();
    }
    const auto control = RangeOn(p.Get());
    const std::vector<std::string> built = AdapterOf(control.Get())->GetDispatched();
    control->SetValue(c.next);
    EXPECT_EQ(p->writes, c.writes) << c.what;
    std::vector<std::string> announced = built;
    if (!c.writes.empty()) announced.push_back("Value");
    EXPECT_EQ(AdapterOf(control.Get())->GetDispatched(), announced) << c.what;
  }
}

TEST_F(SoftHardRangeTest, AFailedReadOrWriteIsAnErrorAndAnnouncesNothing) {
  const auto lost = KEP_var<MagnitudeWithoutCurrentUnit>::Adopt(new MagnitudeWithoutCurrentUnit());
  const auto lostCurrent = [&](ScriptedParameter& p) {
    p.unit = Metre();
    p.magnitude = lost.Get();
  };
  struct Case {
    std::function<void(ScriptedParameter&)> script;
    std::vector<float> writes;
    std::string text;
  };
  const Case cases[] = {
      {[](ScriptedParameter& p) { p.readResult = E_FAIL; },
       {},
       "Cannot read current parameter's value"},
      {lostCurrent, {}, "No current unit !"},
      {[](ScriptedParameter& p) { p.writeResult = E_FAIL; },
       {3.0f},
       "{ name = p, previous = 0.000, next = 3.000, unit = none }"},
  };
  for (const Case& c : cases) {
    const auto p = Scripted();
    c.script(*p);
    const auto control = RangeOn(p.Get());
    const std::size_t built = AdapterOf(control.Get())->GetDispatched().size();
    TraceCapture trace;
    control->SetValue(3.0);
    EXPECT_EQ(p->writes, c.writes) << c.text;
    EXPECT_EQ(AdapterOf(control.Get())->GetDispatched().size(), built) << c.text;
    ASSERT_EQ(trace.Entries().size(), 1u) << c.text;
    EXPECT_EQ(trace.Entries()[0].level, KEPTraceLevel::Error) << c.text;
    EXPECT_EQ(trace.Entries()[0].text, c.text);
    EXPECT_EQ(trace.Entries()[0].file, Range::SourcePath());
  }
}

TEST_F(SoftHardRangeTest, AnnouncesWhenBuiltAndAfterAWriteMadeUnderTheRenderLock) {
  const auto p = Scripted();
  p->checkLock = true;
  const auto control = RangeOn(p.Get());
  control->SetValue(2.0);
  control->SetValue(2.0);
  EXPECT_EQ(p->writes, std::vector<float>{2.0f});
  EXPECT_TRUE(p->lockedOnEveryAccess);
  EXPECT_EQ(AdapterOf(control.Get())->GetDispatched(),
            (std::vector<std::string>{"Value", "Unit", "Magnitude", "HardMinimum", "HardMaximum",
                                      "SoftMinimum", "SoftMaximum", "Value"}));
}

TEST_F(SoftHardRangeTest, IsAToolkitControlWithEightIntrospectedProperties) {
  const KEPSYPMetaClass* meta = KEPSYPRegistry::Find("KEPRshUIScalarSoftHardRange");
  ASSERT_NE(meta, nullptr);
  EXPECT_EQ(meta->GetBaseName(), "KEPVidCtl");
  using Entry = std::tuple<std::string, std::string, bool>;
  std::vector<Entry> entries;
  for (const KEPSYPProperty& property : meta->GetOwnProperties())
    entries.emplace_back(property.name, property.type, property.set != nullptr);
  EXPECT_EQ(entries, (std::vector<Entry>{{"HardMinimum", "double", false},
                                         {"HardMaximum", "double", false},
                                         {"SoftMinimum", "double", false},
                                         {"SoftMaximum", "double", false},
                                         {"Value", "double", true},
                                         {"Unit", "KEPICkeUnit", false},
                                         {"Magnitude", "KEPICkeMagnitude", false},
                                         {"DecimalPrecision", "int", false}}));
  ASSERT_EQ(meta->GetOwnProperties().size(), 8u);
  EXPECT_EQ(meta->GetOwnProperties()[0].batch, meta->GetOwnProperties()[6].batch);
  EXPECT_NE(meta->GetOwnProperties()[6].batch, meta->GetOwnProperties()[7].batch);
  const auto created = KEP_var<KEPBaseUnknown>::Adopt(meta->GetCreator()());
  EXPECT_TRUE(created->IsA("KEPRshUIScalarSoftHardRange"));

  // Bound parts read and write through the toolkit's adapter.
  KEPHostParameter* x = HostPair(0.5f, 0.0f, {{"x.Unit", "m"}, {"x.Magnitude", "LENGTH"}}).first;
  const auto control = RangeOn(x);
  KEPSYPIntrospectableAdapter* adapter = AdapterOf(control.Get());
  KEPSYPValue value;
  ASSERT_EQ(adapter->GetProperty("Value", value), S_OK);
  ASSERT_TRUE(std::holds_alternative<double>(value));
  EXPECT_DOUBLE_EQ(std::get<double>(value), 500.0);
  EXPECT_EQ(adapter->SetProperty("Value", KEPSYPValue(250.0)), S_OK);
  EXPECT_EQ(adapter->SetProperty("Value", KEPSYPValue(std::in_place_type<KEPString>, "1")),
            E_INVALIDARG);
  float stored = 0.0f;
  x->GetScalarValue(stored);
  EXPECT_EQ(stored, 0.25f);
}

}  // namespace
}  // namespace keptest
