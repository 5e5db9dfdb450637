// The grey-level spinner of a colour: the mean it reads, the grey it writes (and when it does
// not), the step from the precision, the hard range, the fallbacks of a spinner without its
// parameter, failures, announcements, the render lock and its introspection description.
#include <array>
#include <cmath>
#include <limits>

#include "ControlsTestSupport.h"
#include "KEPRshModelEvents.h"
#include "KEPRshUICtlScalarSpinner.h"

namespace keptest {
namespace {

using Spinner = KEPRshUICtlScalarSpinner;
const std::string kChannel = "KEPRshUICtlScalarSpinner";

KEP_var<Spinner> SpinnerOn(KEPIUnknown* parameter) {
  const auto layout = KEPQueryVar<KEPIRshParameterImmLayout>(parameter);
  EXPECT_TRUE(layout) << "no layout behaviour";
  return KEP_var<Spinner>::Adopt(new Spinner(layout.Get()));
}

/// A scripted parameter that holds a colour; every colour write notes whether the render lock
/// was held.
class ScriptedColor : public ScriptedParameter {
 public:
  std::array<float, 4> rgba{0.0f, 0.0f, 0.0f, 1.0f};
  std::vector<std::array<float, 4>> colorWrites;
  bool lockedOnEveryWrite = true;

  HRESULT GetColorValue(float& r, float& g, float& b, float* a) override {
    if (FAILED(readResult)) return readResult;
    r = rgba[0];
    g = rgba[1];
    b = rgba[2];
    if (a) *a = rgba[3];
    return S_OK;
  }
  HRESULT SetColorValue(float r, float g, float b, float a) override {
    if (!RenderLockHeldElsewhere()) lockedOnEveryWrite = false;
    colorWrites.push_back({r, g, b, a});
    if (SUCCEEDED(writeResult)) rgba = {r, g, b, a};
    return writeResult;
  }
};

KEP_var<ScriptedColor> ScriptedGrey(float level) {
  auto parameter = KEP_var<ScriptedColor>::Adopt(new ScriptedColor());
  parameter->rgba = {level, level, level, 1.0f};
  return parameter;
}

/// Counts the writes that the model announces for one parameter.
struct WriteCount {
  explicit WriteCount(KEPIRshParameter* parameter)
      : token(KEPRshModelEvents::AddParameterObserver(
            [this, parameter](KEPIRshParameter* p, KEPRshParameterChangeKind) {
              if (p == parameter) ++writes;
            })) {}
  ~WriteCount() { KEPRshModelEvents::RemoveObserver(token); }
  WriteCount(const WriteCount&) = delete;
  WriteCount& operator=(const WriteCount&) = delete;
  int writes = 0;
  int token;
};

std::array<float, 4> Stored(KEPIRshParameter* parameter) {
  std::array<float, 4> rgba{-1.0f, -1.0f, -1.0f, -1.0f};
  parameter->GetColorValue(rgba[0], rgba[1], rgba[2], &rgba[3]);
  return rgba;
}

class ScalarSpinnerTest : public ControlsTest {};

TEST_F(ScalarSpinnerTest, ReadsTheMeanAndWritesAGreyOnlyWhenTheValueDiffers) {
  KEPHostParameter* c = HostColor(0.2f, 0.4f, 0.6f, 0.5f);
  const auto spinner = SpinnerOn(c);
  EXPECT_NEAR(spinner->GetValue(), 0.4, 1e-7);
  const WriteCount count(c);
  TraceCapture trace;
  // The value shown, and what a float keeps of it, are no change.
  for (const double same : {0.4, static_cast<double>(0.4f), 0.4 + 5e-7}) spinner->SetValue(same);
  EXPECT_EQ(count.writes, 0);
  EXPECT_EQ(Stored(c), (std::array<float, 4>{0.2f, 0.4f, 0.6f, 0.5f}));
  EXPECT_EQ(TextsAt(trace, kChannel, KEPTraceLevel::Info).back(),
            "{ name = c, previous = 0.400, next = 0.400, unit = none }");

  trace.Clear();
  spinner->SetValue(0.5);
  EXPECT_EQ(count.writes, 1);
  // The alpha is reset to opaque.
  EXPECT_EQ(Stored(c), (std::array<float, 4>{0.5f, 0.5f, 0.5f, 1.0f}));
  EXPECT_EQ(
      TextsAt(trace, kChannel, KEPTraceLevel::Info),
      (std::vector<std::string>{"{ name = c, previous = 0.400, next = 0.500, unit = none }"}));
  EXPECT_EQ(AdapterOf(spinner.Get())->GetDispatched(),
            (std::vector<std::string>{"Step", "Value", "Unit", "Magnitude", "Minimum", "Maximum",
                                      "Value"}));

  // A value that is no number is refused with an error.
  trace.Clear();
  spinner->SetValue(std::numeric_limits<double>::quiet_NaN());
  spinner->SetValue(std::numeric_limits<double>::infinity());
  EXPECT_EQ(count.writes, 1);
  EXPECT_EQ(TextsAt(trace, kChannel, KEPTraceLevel::Error).size(), 2u);
  // Beyond the range: written as it is (the styled part limits what a person can set).
  spinner->SetValue(3.0);
  EXPECT_EQ(Stored(c)[0], 3.0f);
}

TEST_F(ScalarSpinnerTest, StepIsTenToTheMinusThePrecision) {
  const std::pair<int, double> cases[] = {{3, 0.001}, {0, 1.0},    {-1, 10.0},
                                          {1, 0.1},   {2, 0.01},   {-3, 1000.0},
                                          {7, 1e-7},  {-22, 1e22}, {400, 0.0}};
  const auto p = ScriptedGrey(0.5f);
  const auto spinner = SpinnerOn(p.Get());
  for (const auto& [precision, step] : cases) {
    p->precision = precision;
    EXPECT_DOUBLE_EQ(spinner->GetStep(), step) << precision;
  }
  TraceCapture trace;
  p->precision = 3;
  spinner->GetStep();
  EXPECT_EQ(TextsAt(trace, kChannel, KEPTraceLevel::Info),
            (std::vector<std::string>{"{ name = p, decimal precision = 3 }", "Step is 0.001"}));
  // A precision the layout cannot tell is 1.
  trace.Clear();
  p->precisionResult = E_FAIL;
  EXPECT_DOUBLE_EQ(spinner->GetStep(), 0.1);
  EXPECT_EQ(TextsAt(trace, kChannel, KEPTraceLevel::Error),
            (std::vector<std::string>{"{ name = p, decimal precision = 1 }"}));

  // Through the colour layout: a ".Step" of 0.01 gives a precision of 3.
  const auto host = SpinnerOn(HostColor(0.1f, 0.1f, 0.1f, 1.0f, {{"c.Step", "0.01"}}));
  EXPECT_EQ(host->GetDecimalPrecision(), 3);
  EXPECT_DOUBLE_EQ(host->GetStep(), 0.001);
}

TEST_F(ScalarSpinnerTest, RangeIsTheLayoutsHardRangeOrZeroToOne) {
  const auto ranged = SpinnerOn(HostColor(0, 0, 0, 1, {{"c.Min", "-1"}, {"c.HardMax", "2.5"}}));
  const auto unranged = SpinnerOn(HostColor(0, 0, 0, 1));
  TraceCapture trace;
  EXPECT_EQ(ranged->GetMinimum(), -1.0);
  EXPECT_EQ(ranged->GetMaximum(), 2.5);
  EXPECT_EQ(unranged->GetMinimum(), 0.0);
  EXPECT_EQ(unranged->GetMaximum(), 1.0);
  EXPECT_EQ(TextsAt(trace, kChannel, KEPTraceLevel::Info),
            (std::vector<std::string>{"{ name = c, hard minimum = -1.000 }",
                                      "{ name = c, hard maximum = 2.500 }"}));
  EXPECT_EQ(TextsAt(trace, kChannel, KEPTraceLevel::Error),
            (std::vector<std::string>{"{ name = c, hard minimum = 0.000 }",
                                      "{ name = c, hard maximum = 1.000 }"}));
}

TEST_F(ScalarSpinnerTest, WithoutItsParameterAnswersTheDefaultsAndWritesNothing) {
  const auto outlived = SpinnerOn(HostColor(0.3f, 0.3f, 0.3f, 1.0f, {{"c.Min", "0.2"}}));
  EndWorld();
  const auto empty = KEP_var<Spinner>::Adopt(new Spinner());
  TraceCapture trace;
  for (Spinner* spinner : {empty.Get(), outlived.Get()}) {
    EXPECT_EQ(spinner->GetMinimum(), 0.0);
    EXPECT_EQ(spinner->GetMaximum(), 1.0);
    EXPECT_EQ(spinner->GetValue(), 0.0);
    EXPECT_EQ(spinner->GetDecimalPrecision(), 1);
    spinner->SetValue(0.7);
  }
  EXPECT_EQ(AdapterOf(outlived.Get())->GetDispatched().back(), "Maximum");  // nothing announced
  // The empty spinner has no channel; the one that lost its parameter says so.
  EXPECT_EQ(trace.Texts(), (std::vector<std::string>{
                               "No parameter { hard minimum (default) = 0.0 }",
                               "No parameter { hard maximum (default) = 1.0 }",
                               "{ name = c, value (default) = 0.0 }",
                               "{ name = c, value (default) = 0.0 }",  // SetValue's read
                           }));
  for (const KEPTraceEntry& entry : trace.Entries()) {
    EXPECT_EQ(entry.level, KEPTraceLevel::Error);
    EXPECT_EQ(entry.file, Spinner::SourcePath());
  }
}

TEST_F(ScalarSpinnerTest, FailuresAreErrorsAndWritesHoldTheRenderLock) {
  const auto p = ScriptedGrey(0.25f);
  const auto spinner = SpinnerOn(p.Get());
  const std::size_t built = AdapterOf(spinner.Get())->GetDispatched().size();

  spinner->SetValue(0.75);
  EXPECT_TRUE(p->lockedOnEveryWrite);
  EXPECT_EQ(p->colorWrites, (std::vector<std::array<float, 4>>{{0.75f, 0.75f, 0.75f, 1.0f}}));
  EXPECT_EQ(AdapterOf(spinner.Get())->GetDispatched().size(), built + 1);

  TraceCapture trace;
  p->writeResult = E_FAIL;
  spinner->SetValue(0.5);
  EXPECT_EQ(AdapterOf(spinner.Get())->GetDispatched().size(), built + 1);  // no announcement
  EXPECT_EQ(
      TextsAt(trace, kChannel, KEPTraceLevel::Error),
      (std::vector<std::string>{"{ name = p, previous = 0.750, next = 0.500, unit = none }"}));

  // An unreadable colour reads 0, so setting 0 writes nothing and anything else writes.
  trace.Clear();
  p->readResult = E_FAIL;
  p->writeResult = S_OK;
  EXPECT_EQ(spinner->GetValue(), 0.0);
  const std::size_t writes = p->colorWrites.size();
  spinner->SetValue(0.0);
  EXPECT_EQ(p->colorWrites.size(), writes);
  spinner->SetValue(0.1);
  EXPECT_EQ(p->colorWrites.size(), writes + 1);
  EXPECT_EQ(TextsAt(trace, kChannel, KEPTraceLevel::Error).front(),
            "{ name = p, value (default) = 0.0 }");
}

TEST_F(ScalarSpinnerTest, IntrospectedThroughItsOwnAdapterWithFiveProperties) {
  const KEPSYPMetaClass* meta = KEPSYPRegistry::Find("KEPRshUICtlScalarSpinner");
  ASSERT_NE(meta, nullptr);
  EXPECT_EQ(meta->GetBaseName(), "");
  using Entry = std::tuple<std::string, std::string, bool>;
  std::vector<Entry> entries;
  for (const KEPSYPProperty& property : meta->GetOwnProperties())
    entries.emplace_back(property.name, property.type, property.set != nullptr);
  EXPECT_EQ(entries, (std::vector<Entry>{{"Step", "double", false},
                                         {"Minimum", "double", false},
                                         {"Maximum", "double", false},
                                         {"Value", "double", true},
                                         {"DecimalPrecision", "int", false}}));
  ASSERT_EQ(meta->GetOwnProperties().size(), 5u);
  EXPECT_NE(meta->GetOwnProperties()[3].batch, meta->GetOwnProperties()[4].batch);
  const auto created = KEP_var<KEPBaseUnknown>::Adopt(meta->GetCreator()());
  EXPECT_TRUE(created->IsA("KEPRshUICtlScalarSpinner"));

  KEPHostParameter* c = HostColor(0.1f, 0.2f, 0.3f, 1.0f);
  const auto spinner = SpinnerOn(c);
  EXPECT_EQ(KEPSYPRegistry::FindAdapter(spinner.Get()),
            &CreateBOAKEPISYPIntrospectableKEPRshUICtlScalarSpinnerSYPIntro);
  const auto other = KEP_var<KEPVidCtl>::Adopt(new KEPVidCtl());
  EXPECT_EQ(CreateBOAKEPISYPIntrospectableKEPRshUICtlScalarSpinnerSYPIntro(other.Get()), nullptr);

  // Bound parts read and write through it.
  KEPSYPIntrospectableAdapter* adapter = AdapterOf(spinner.Get());
  ASSERT_NE(adapter, nullptr);
  KEPSYPValue value;
  ASSERT_EQ(adapter->GetProperty("Value", value), S_OK);
  ASSERT_TRUE(std::holds_alternative<double>(value));
  EXPECT_NEAR(std::get<double>(value), 0.2, 1e-7);
  ASSERT_EQ(adapter->GetProperty("DecimalPrecision", value), S_OK);
  EXPECT_EQ(std::get<int>(value), 1);
  EXPECT_EQ(adapter->SetProperty("Value", KEPSYPValue(0.25)), S_OK);
  EXPECT_EQ(adapter->SetProperty("Value", KEPSYPValue(1)), E_INVALIDARG);
  EXPECT_EQ(Stored(c), (std::array<float, 4>{0.25f, 0.25f, 0.25f, 1.0f}));
}

}  // namespace
}  // namespace keptest
