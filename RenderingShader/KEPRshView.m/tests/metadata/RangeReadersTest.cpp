// Range readers: the text range of each base, the soft and hard ranges, the step and its decimal
// precision, and the typed ranges.
#include "MetadataTestSupport.h"

namespace keptest {
namespace {

class RangeTest : public MetadataTest {};

using Texts = std::tuple<HRESULT, std::string, std::string, std::string>;
const Texts kUntouched{E_FAIL, "keep", "keep", "keep"};

template <class Behaviour>
Texts RangeOf(Behaviour behaviour) {
  KEPString min = "keep", max = "keep", step = "keep";
  const HRESULT hr = behaviour->GetRange(min, max, step);
  return {hr, min, max, step};
}

TEST_F(RangeTest, ConfigurationRangeOfEachBase) {
  const Keys minMax = {{".Min", "0"}, {".Max", "5"}};
  const std::tuple<Keys, Texts, Texts> rows[] = {
      {With(minMax, {{".Step", "0.1"}}), {S_OK, "0", "5", "0.1"}, {S_OK, "0", "5", "0.1"}},
      {minMax, {S_OK, "0", "5", ""}, {S_OK, "0", "5", ""}},
      // Only the immersive base stands in the hard keys for a missing ".Min" or ".Max".
      {{{".HardMin", "-2"}, {".Max", "3"}}, {S_OK, "-2", "3", ""}, kUntouched},
      {{{".Min", "0"}, {".HardMax", "10"}}, {S_OK, "0", "10", ""}, kUntouched},
      {With(minMax, {{".HardMin", "-9"}, {".HardMax", "9"}}),
       {S_OK, "0", "5", ""},
       {S_OK, "0", "5", ""}},
      {{{".Min", "0"}, {".Step", "1"}}, kUntouched, kUntouched},
      {{{".Max", "1"}, {".HardMax", "2"}}, kUntouched, kUntouched}};
  for (const auto& [config, immersive, classic] : rows) {
    KEPHostParameter* parameter = Param(Scalar(1), config);
    EXPECT_EQ(RangeOf(Imm(parameter)), immersive);
    EXPECT_EQ(RangeOf(Dlg(parameter)), classic);
  }
}

TEST_F(RangeTest, ResourceRangeIgnoresTheConfigurationAndRepeatsTheMaxAsAMissingStep) {
  const std::pair<Keys, Texts> rows[] = {
      {{{"min", "-5"}, {"max", "5"}, {"step", "0.5"}}, {S_OK, "-5", "5", "0.5"}},
      {{{"min", "0"}, {"max", "9"}}, {S_OK, "0", "9", "9"}},
      {{{"max", "9"}, {"step", "1"}}, kUntouched},
      {{{"min", "0"}, {"step", "1"}}, kUntouched}};
  for (const auto& [resources, expected] : rows) {
    KEPHostParameter* parameter =
        Param(Integer(0), {{".Min", "100"}, {".Max", "200"}, {".Step", "3"}}, resources);
    EXPECT_EQ(RangeOf(Imm(parameter)), expected);
    EXPECT_EQ(RangeOf(Dlg(parameter)), expected);
  }
}

TEST_F(RangeTest, SoftAndHardRangesEachPreferTheirOwnKeys) {
  using Bounds = std::tuple<HRESULT, double, double>;
  const Bounds fails{E_FAIL, -7, -7};
  const Keys minMax = {{".Min", "0"}, {".Max", "100"}};
  const std::tuple<Keys, Bounds, Bounds> rows[] = {
      {With(minMax,
            {{".SoftMin", "0.25"}, {".SoftMax", "50"}, {".HardMin", "-1"}, {".HardMax", "1e3"}}),
       {S_OK, 0.25, 50},
       {S_OK, -1, 1000}},
      {minMax, {S_OK, 0, 100}, {S_OK, 0, 100}},
      {{{".SoftMin", "1"}, {".SoftMax", "2"}}, {S_OK, 1, 2}, fails},
      {{{".HardMin", "1"}, {".HardMax", "2"}}, fails, {S_OK, 1, 2}},
      {{{".SoftMin", "1"}, {".Max", "5"}}, {S_OK, 1, 5}, fails},
      {{{".Min", "1"}, {".HardMax", "5"}}, fails, {S_OK, 1, 5}},
      // A key that is present but unreadable fails; the reader does not fall back past it.
      {With(minMax, {{".SoftMax", "junk"}}), fails, {S_OK, 0, 100}},
      {With(minMax, {{".HardMin", "junk"}}), {S_OK, 0, 100}, fails},
      {{{".Min", "low"}, {".Max", "1"}}, fails, fails}};
  for (const auto& [config, soft, hard] : rows) {
    for (const KEPHostValue& value : {Scalar(1), Color(1, 1, 1)}) {
      auto imm = Imm(Param(value, config));
      double min = -7, max = -7;
      const HRESULT softHr = imm->GetSoftRange(min, max);
      EXPECT_EQ(Bounds(softHr, min, max), soft);
      min = max = -7;
      const HRESULT hardHr = imm->GetHardRange(min, max);
      EXPECT_EQ(Bounds(hardHr, min, max), hard);
    }
  }
}

TEST_F(RangeTest, RangeControlReadersBelongToScalarAndColourOnly) {
  const Keys config = {{".Min", "0"}, {".Max", "1"}, {".Step", "1"}, {".SecondaryParameter", "q"}};
  for (const KEPHostValue& value : {Boolean(true), Integer(0), Vector({0, 0}), Texture(), Void()}) {
    auto imm = Imm(Param(value, config));
    double a = 0, b = 0;
    int precision = 0;
    KEPString name;
    EXPECT_EQ(imm->GetStep(a), E_NOTIMPL);
    EXPECT_EQ(imm->GetDecimalPrecision(precision), E_NOTIMPL);
    EXPECT_EQ(imm->GetSoftRange(a, b), E_NOTIMPL);
    EXPECT_EQ(imm->GetSecondaryParameterName(name), E_NOTIMPL);
    EXPECT_EQ(imm->GetHardRange(a, b), E_NOTIMPL);
  }
}

TEST_F(RangeTest, StepOfScalarFromTheConfigurationOfColourFromItsResources) {
  const Keys half = {{".Step", "0.5"}};
  const std::optional<Keys> none, fifth = Keys{{"step", "0.2"}}, empty = Keys{};
  const std::tuple<KEPHostValue, Keys, std::optional<Keys>, HRESULT, double> rows[] = {
      {Scalar(1), half, none, S_OK, 0.5},
      {Scalar(1), half, fifth, S_OK, 0.5},
      {Scalar(1), {{".Step", "x"}}, none, E_FAIL, -1},
      {Scalar(1), {}, fifth, E_FAIL, -1},
      {Color(1, 1, 1), half, fifth, S_OK, 0.2},
      {Color(1, 1, 1), half, empty, E_FAIL, -1},
      {Color(1, 1, 1), half, none, S_OK, 0.5}};
  for (const auto& [value, config, resources, hr, expected] : rows) {
    double step = -1;
    EXPECT_EQ(Imm(Param(value, config, resources))->GetStep(step), hr);
    EXPECT_DOUBLE_EQ(step, expected);
  }
}

TEST_F(RangeTest, DecimalPrecisionIsOnePlusTheDecimalsOfTheStep) {
  const std::pair<const char*, int> rows[] = {
      {"1", 1},          {"0.5", 2},      {"0.25", 3},   {"10", 1},
      {"0.001", 4},      {"0.1", 2},      {"12.75", 3},  {"-0.05", 3},
      {"2.5e+3", 1},     {"1e300", 1},    {"1e-10", 11}, {"1.5e-9", 11},
      {"0", 1},          {"5e-324", 325}, {"inf", 1},    {"0.3333333333333333", 17},
      {" 0.5 apples", 2}};
  for (const auto& [step, precision] : rows) {
    for (const KEPHostValue& value : {Scalar(1), Color(1, 1, 1)}) {
      int read = -1;
      EXPECT_EQ(Imm(Param(value, {{".Step", step}}))->GetDecimalPrecision(read), S_OK) << step;
      EXPECT_EQ(read, precision) << step;
    }
  }
  // From ".Step" only, never the resources; missing or unreadable fails.
  const std::pair<Keys, std::optional<Keys>> failing[] = {
      {{{".Step", "fine"}}, std::nullopt}, {{}, std::nullopt}, {{}, Keys{{"step", "0.5"}}}};
  for (const auto& [config, resources] : failing) {
    int read = -1;
    EXPECT_EQ(Imm(Param(Color(1, 1, 1), config, resources))->GetDecimalPrecision(read), E_FAIL);
    EXPECT_EQ(read, -1);
  }
}

TEST_F(RangeTest, FloatTypedRanges) {
  using Floats = std::tuple<HRESULT, float, float, float>;  // from the preset -1, -1, 7
  const Floats untouched{E_FAIL, -1.0f, -1.0f, 7.0f};
  const Keys scaled = {
      {".Min", "1"}, {".HardMin", "0"}, {".Max", "5"}, {".Step", "0.5"}, {".Unit", "cm"}};
  const std::tuple<KEPHostValue, bool, Keys, Floats> rows[] = {
      // Immersive scalar and colour: hard keys first, in model units.
      {Scalar(1), false, scaled, {S_OK, 0.0f, 50.0f, 5.0f}},
      {Color(1, 1, 1), false, scaled, {S_OK, 0.0f, 50.0f, 5.0f}},
      {Scalar(1), false, {{".Min", "1"}, {".Max", "5"}, {".Step", "x"}}, {S_OK, 1.0f, 5.0f, 7.0f}},
      {Scalar(1), false, {{".Min", "1"}}, untouched},
      // Classic: the classic range's texts as they are, no unit.
      {Scalar(1), true, scaled, {S_OK, 1.0f, 5.0f, 0.5f}},
      {Scalar(1), true, {{".HardMin", "0"}, {".Max", "5"}}, untouched},
      {Scalar(1), true, {{".Min", "x"}, {".Max", "5"}}, untouched},
      // The other immersive types have no float range.
      {Vector({0, 0}), false, scaled, untouched},
      {Integer(0), false, scaled, untouched}};
  for (const auto& [value, classic, config, expected] : rows) {
    KEPHostParameter* parameter = Param(value, config);
    float min = -1, max = -1, step = 7;
    const HRESULT hr = classic ? Dlg(parameter)->GetTypedRange(min, max, step)
                               : Imm(parameter)->GetTypedRange(min, max, step);
    EXPECT_EQ(Floats(hr, min, max, step), expected);
  }
}

TEST_F(RangeTest, IntegerTypedRangeFollowsTheRangeOfItsBehaviour) {
  using Ints = std::tuple<HRESULT, int, int, int>;  // from the preset -1, -1, 7
  const Ints untouched{E_FAIL, -1, -1, 7};
  const std::tuple<Keys, Ints, Ints> rows[] = {
      {{{".Min", "-3"}, {".Max", "8"}, {".Step", "2"}}, {S_OK, -3, 8, 2}, {S_OK, -3, 8, 2}},
      {{{".Min", " -3x"}, {".Max", "8"}, {".Step", "x"}}, {S_OK, -3, 8, 7}, {S_OK, -3, 8, 7}},
      {{{".HardMin", "-4"}, {".Max", "6"}}, {S_OK, -4, 6, 7}, untouched},
      {{{".Min", "low"}, {".Max", "6"}}, untouched, untouched},
      {{{".Min", "0"}, {".Max", "high"}}, untouched, untouched}};
  for (const auto& [config, immersive, classic] : rows) {
    KEPHostParameter* parameter = Param(Integer(0), config);
    int min = -1, max = -1, step = 7;
    const HRESULT immHr = Imm(parameter)->GetTypedRange(min, max, step);
    EXPECT_EQ(Ints(immHr, min, max, step), immersive);
    min = max = -1, step = 7;
    const HRESULT dlgHr = Dlg(parameter)->GetTypedRange(min, max, step);
    EXPECT_EQ(Ints(dlgHr, min, max, step), classic);
  }
  int min = -1, max = -1, step = 7;
  for (const KEPHostValue& value : {Scalar(1), Boolean(true)})
    EXPECT_EQ(Imm(Param(value, {{".Min", "0"}, {".Max", "1"}}))->GetTypedRange(min, max, step),
              E_FAIL);
  EXPECT_EQ(Ints(E_FAIL, min, max, step), untouched);
}

}  // namespace
}  // namespace keptest
