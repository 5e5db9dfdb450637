// Range readers: the text range of each base, the soft and hard ranges, the step and its decimal
// precision, and the typed ranges.
#include "MetadataTestSupport.h"

namespace keptest {
namespace {

class RangeTest : public MetadataTest {};

TEST_F(RangeTest, TextRangeOfEachBaseFromTheResourcesElseTheConfiguration) {
  using Texts = std::tuple<HRESULT, std::string, std::string, std::string>;
  const Texts none{E_FAIL, "keep", "keep", "keep"};
  const Keys minMax = {{".Min", "0"}, {".Max", "5"}};
  const std::tuple<Keys, std::optional<Keys>, Texts, Texts> rows[] = {
      {With(minMax, {{".Step", "0.1"}}), {}, {S_OK, "0", "5", "0.1"}, {S_OK, "0", "5", "0.1"}},
      {minMax, {}, {S_OK, "0", "5", ""}, {S_OK, "0", "5", ""}},
      // Only the immersive base stands in the hard keys for a missing ".Min" or ".Max".
      {{{".HardMin", "-2"}, {".Max", "3"}}, {}, {S_OK, "-2", "3", ""}, none},
      {{{".Min", "0"}, {".HardMax", "10"}}, {}, {S_OK, "0", "10", ""}, none},
      {With(minMax, {{".HardMin", "-9"}, {".HardMax", "9"}}),
       {},
       {S_OK, "0", "5", ""},
       {S_OK, "0", "5", ""}},
      {{{".Min", "0"}, {".Step", "1"}}, {}, none, none},
      {{{".Max", "1"}, {".HardMax", "2"}}, {}, none, none},
      // Resources: the configuration is not asked; a missing step repeats the max text.
      {minMax,
       Keys{{"min", "-5"}, {"max", "9"}, {"step", "1"}},
       {S_OK, "-5", "9", "1"},
       {S_OK, "-5", "9", "1"}},
      {minMax, Keys{{"min", "-5"}, {"max", "9"}}, {S_OK, "-5", "9", "9"}, {S_OK, "-5", "9", "9"}},
      {minMax, Keys{{"max", "9"}, {"step", "1"}}, none, none},
      {minMax, Keys{{"min", "0"}, {"step", "1"}}, none, none}};
  for (const auto& [config, resources, immersive, classic] : rows) {
    const Behaviours b = Behave(Param(Integer(0), config, resources));
    std::vector<Texts> read;
    b.Each([&](auto* behaviour) {
      KEPString min = "keep", max = "keep", step = "keep";
      const HRESULT hr = behaviour->GetRange(min, max, step);
      read.emplace_back(hr, min, max, step);
    });
    EXPECT_EQ(read, (std::vector<Texts>{immersive, classic}));
  }
}

TEST_F(RangeTest, SoftAndHardRangesEachPreferTheirOwnKeys) {
  using Bounds = std::tuple<HRESULT, double, double>;
  const Bounds none{E_FAIL, -7, -7};
  const Keys minMax = {{".Min", "0"}, {".Max", "100"}};
  const std::tuple<Keys, Bounds, Bounds> rows[] = {
      {With(minMax,
            {{".SoftMin", "0.25"}, {".SoftMax", "50"}, {".HardMin", "-1"}, {".HardMax", "1e3"}}),
       {S_OK, 0.25, 50},
       {S_OK, -1, 1000}},
      {minMax, {S_OK, 0, 100}, {S_OK, 0, 100}},
      {{{".SoftMin", "1"}, {".SoftMax", "2"}}, {S_OK, 1, 2}, none},
      {{{".HardMin", "1"}, {".HardMax", "2"}}, none, {S_OK, 1, 2}},
      {{{".SoftMin", "1"}, {".Max", "5"}}, {S_OK, 1, 5}, none},
      {{{".Min", "1"}, {".HardMax", "5"}}, none, {S_OK, 1, 5}},
      // A key that is present but unreadable fails; the reader does not fall back past it.
      {With(minMax, {{".SoftMax", "junk"}}), none, {S_OK, 0, 100}},
      {With(minMax, {{".HardMin", "junk"}}), {S_OK, 0, 100}, none},
      {{{".Min", "low"}, {".Max", "1"}}, none, none}};
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
    EXPECT_EQ(step, expected);
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

TEST_F(RangeTest, TypedRanges) {
  using Floats = std::tuple<HRESULT, float, float, float>;  // from the preset -1, -1, 7
  using Ints = std::tuple<HRESULT, int, int, int>;
  auto F = [](float min, float max, float step) { return Floats{S_OK, min, max, step}; };
  auto I = [](int min, int max, int step) { return Ints{S_OK, min, max, step}; };
  const Floats noF{E_FAIL, -1.0f, -1.0f, 7.0f};
  const Ints noI{E_FAIL, -1, -1, 7};
  const Keys scaled = {
      {".Min", "1"}, {".HardMin", "0"}, {".Max", "5"}, {".Step", "0.5"}, {".Unit", "cm"}};
  const Keys loose = {{".Min", " -3x"}, {".Max", "8"}, {".Step", "x"}};
  // Immersive scalar and colour: hard keys first, in model units; classic: the texts of its range
  // as they are. Integers: the texts of each base's range read "%d".
  const std::tuple<KEPHostValue, Keys, Floats, Floats, Ints, Ints> rows[] = {
      {Scalar(1), scaled, F(0, 50, 5), F(1, 5, 0.5f), noI, I(1, 5, 0)},
      {Color(1, 1, 1), scaled, F(0, 50, 5), F(1, 5, 0.5f), noI, I(1, 5, 0)},
      {Scalar(1), loose, F(-3, 8, 7), F(-3, 8, 7), noI, I(-3, 8, 7)},
      {Scalar(1), {{".HardMin", "0"}, {".Max", "5"}}, F(0, 5, 7), noF, noI, noI},
      {Scalar(1), {{".Min", "x"}, {".Max", "5"}}, noF, noF, noI, noI},
      {Integer(0),
       {{".Min", "-3"}, {".Max", "8"}, {".Step", "2"}},
       noF,
       F(-3, 8, 2),
       I(-3, 8, 2),
       I(-3, 8, 2)},
      {Integer(0), loose, noF, F(-3, 8, 7), I(-3, 8, 7), I(-3, 8, 7)},
      {Integer(0), {{".HardMin", "-4"}, {".Max", "6"}}, noF, noF, I(-4, 6, 7), noI},
      {Integer(0), {{".Min", "0"}, {".Max", "high"}}, noF, noF, noI, noI},
      {Vector({0, 0}), scaled, noF, F(1, 5, 0.5f), noI, I(1, 5, 0)},
      {Boolean(true), scaled, noF, F(1, 5, 0.5f), noI, I(1, 5, 0)}};
  for (const auto& [value, config, immFloats, dlgFloats, immInts, dlgInts] : rows) {
    const Behaviours b = Behave(Param(value, config));
    std::vector<Floats> floats;
    std::vector<Ints> ints;
    b.Each([&](auto* behaviour) {
      float fmin = -1, fmax = -1, fstep = 7;
      int imin = -1, imax = -1, istep = 7;
      const HRESULT fhr = behaviour->GetTypedRange(fmin, fmax, fstep);
      const HRESULT ihr = behaviour->GetTypedRange(imin, imax, istep);
      floats.emplace_back(fhr, fmin, fmax, fstep);
      ints.emplace_back(ihr, imin, imax, istep);
    });
    EXPECT_EQ(floats, (std::vector<Floats>{immFloats, dlgFloats}));
    EXPECT_EQ(ints, (std::vector<Ints>{immInts, dlgInts}));
  }
}

TEST_F(RangeTest, RangeControlAndClassicEnumerationReadersAreTypeSpecific) {
  const Keys config = {{".Min", "0"},   {".Max", "1"},
                       {".Step", "1"},  {".SecondaryParameter", "q"},
                       {".Enum0", "0"}, {".EnumVal0", "0"}};
  for (const KEPHostValue& value :
       {Boolean(true), Integer(0), Scalar(0), Color(0, 0, 0), Vector({0, 0}), Texture(), Void()}) {
    const bool rangeControls = value.type == KEPRmaType::Scalar || value.type == KEPRmaType::Color;
    const HRESULT controls = rangeControls ? S_OK : E_NOTIMPL;
    const Behaviours b = Behave(Param(value, config));
    double x = 0, y = 0;
    int n = 0;
    KEPString name;
    EXPECT_EQ(b.imm->GetStep(x), controls);
    EXPECT_EQ(b.imm->GetDecimalPrecision(n), controls);
    EXPECT_EQ(b.imm->GetSoftRange(x, y), controls);
    EXPECT_EQ(b.imm->GetSecondaryParameterName(name), controls);
    EXPECT_EQ(b.imm->GetHardRange(x, y), controls);
    // The classic base leaves the enumeration to the integer type.
    const HRESULT enumeration = value.type == KEPRmaType::Integer ? S_OK : E_NOTIMPL;
    EXPECT_EQ(b.dlg->GetEnumValue(0, n), enumeration);
    EXPECT_EQ(b.dlg->GetEnumIndex(0, n), enumeration);
    EXPECT_EQ(b.imm->GetEnumValue(0, n), S_OK);
  }
}

}  // namespace
}  // namespace keptest
