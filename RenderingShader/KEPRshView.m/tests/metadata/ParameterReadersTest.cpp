// Metadata readers of the behaviour bases: sources (resources or configuration), key forms,
// fallbacks and the outputs left alone on failure.
#include <cmath>

#include "KEPHostShaderManager.h"
#include "KEPParmDictionary.h"
#include "MetadataTestSupport.h"

namespace keptest {
namespace {

using KEPU = KEPUnicodeString;

class ReadersTest : public MetadataTest {
 protected:
  void SetUp() override {
    MetadataTest::SetUp();
    // The fixture's reset ran after the world was built: give the world its manager back.
    KEPHostShaderManager::Install(world.library);
    world.Add(Type("plain", "plainCfg")
                  .Param("x", Scalar(1))
                  .Param("n", Integer(0))
                  .Param("b", Boolean(true))
                  .Param("c", Color(1, 1, 1))
                  .Param("v", Vector({0, 0, 0})));
    world.Add(Type("rich", "richCfg")
                  .Param("x", Scalar(1))
                  .Param("n", Integer(0))
                  .Resource("x", "min", "-5")
                  .Resource("x", "max", "5")
                  .Resource("x", "step", "0.5")
                  .Resource("x", "widget", "wheel")
                  .Resource("x", "default", "2")
                  .Resource("x", "label0", "Lab")
                  .Resource("x", "enum1", "One")
                  .Resource("n", "min", "0")
                  .Resource("n", "max", "9")
                  .Resource("n", "enumvalue-1", "42")
                  .Resource("n", "enumindex7", "3"));
    plain = world.Node("plain");
    rich = world.Node("rich");
  }
  void TearDown() override {
    DeleteAll(rich);
    DeleteAll(plain);
    MetadataTest::TearDown();
  }

  KEP_var<KEPIRshParameterImmLayout> PlainImm(const char* name) {
    return Imm(world.Param(plain, name));
  }
  KEP_var<KEPIRshParameterImmLayout> RichImm(const char* name) {
    return Imm(world.Param(rich, name));
  }

  World world;
  KEPHostShaderNode* plain = nullptr;
  KEPHostShaderNode* rich = nullptr;
};

// Both configurations carry the same keys, so a reader that picked the wrong source shows it.
void ConfigureBoth(std::initializer_list<std::pair<std::string, std::string>> kv) {
  Config("plainCfg", kv);
  Config("richCfg", kv);
}

TEST_F(ReadersTest, ResourceFormsWinWhenTheShaderOffersResources) {
  ConfigureBoth({{"x.Min", "0"},
                 {"x.Max", "1"},
                 {"x.Step", "0.1"},
                 {"x.Widget", "slider"},
                 {"x.Default", "7"},
                 {"x.Label0", "CfgLab"},
                 {"x.Enum1", "CfgOne"}});
  for (bool withResources : {true, false}) {
    SCOPED_TRACE(withResources ? "resources" : "configuration");
    auto imm = withResources ? RichImm("x") : PlainImm("x");
    auto dlg = Dlg(world.Param(withResources ? rich : plain, "x"));
    KEPString min, max, step, widget, def;
    KEPU label, enumLabel;
    ASSERT_EQ(imm->GetRange(min, max, step), S_OK);
    EXPECT_EQ(min + "|" + max + "|" + step, withResources ? "-5|5|0.5" : "0|1|0.1");
    ASSERT_EQ(imm->GetWidget(widget), S_OK);
    EXPECT_EQ(widget, withResources ? "wheel" : "slider");
    ASSERT_EQ(dlg->GetDefault(def), S_OK);
    EXPECT_EQ(def, withResources ? "2" : "7");
    ASSERT_EQ(imm->GetLabel(0, label), S_OK);
    EXPECT_EQ(label.ToUTF8(), withResources ? "Lab" : "CfgLab");
    ASSERT_EQ(dlg->GetEnumLabel(1, enumLabel), S_OK);
    EXPECT_EQ(enumLabel.ToUTF8(), withResources ? "One" : "CfgOne");
  }
}

TEST_F(ReadersTest, ConfigurationOnlyReadersIgnoreResources) {
  Config("richCfg", {{"x.Description", "Desc"},
                     {"x.Group", "Group1"},
                     {"x.Unit", "cm"},
                     {"x.Magnitude", "LENGTH"},
                     {"x.SortingOrder", "4"},
                     {"x.LayerGroupName", "layers"},
                     {"x.ConnectableState", "Yes"}});
  auto imm = RichImm("x");
  KEPU description, group;
  KEPString unit, magnitude, order, layer, connectable;
  EXPECT_EQ(imm->GetDescription(description), S_OK);
  EXPECT_EQ(imm->GetGroup(group), S_OK);
  EXPECT_EQ(imm->GetUnitName(unit), S_OK);
  EXPECT_EQ(imm->GetMagnitudeName(magnitude), S_OK);
  EXPECT_EQ(imm->GetSortingOrder(order), S_OK);
  EXPECT_EQ(imm->GetLayerGroupName(layer), S_OK);
  EXPECT_EQ(imm->GetConnectableState(connectable), S_OK);
  EXPECT_EQ(description.ToUTF8() + group.ToUTF8() + unit + magnitude + order + layer + connectable,
            "DescGroup1cmLENGTH4layersYes");
}

TEST_F(ReadersTest, MissingKeysFailAndLeaveOutputsAlone) {
  auto imm = PlainImm("x");
  auto dlg = Dlg(world.Param(plain, "x"));
  KEPString text = "keep";
  KEPU unicode(u"keep");
  int number = 99;
  EXPECT_EQ(imm->GetWidget(text), E_FAIL);
  EXPECT_EQ(imm->GetDefault(text), E_FAIL);
  EXPECT_EQ(imm->GetSortingOrder(text), E_FAIL);
  EXPECT_EQ(dlg->GetUnitName(text), E_FAIL);
  EXPECT_EQ(imm->GetDescription(unicode), E_FAIL);
  EXPECT_EQ(imm->GetLabel(3, unicode), E_FAIL);
  EXPECT_EQ(imm->GetEnumValue(0, number), E_FAIL);
  KEPString min = "keep", max = "keep", step = "keep";
  EXPECT_EQ(imm->GetRange(min, max, step), E_FAIL);
  EXPECT_EQ(text + unicode.ToUTF8() + min + max + step, "keepkeepkeepkeepkeep");
  EXPECT_EQ(number, 99);
}

TEST_F(ReadersTest, IndicesAreAppendedAsPlainDecimals) {
  Config("plainCfg", {{"x.Label2", "two"}, {"x.Label-1", "minus"}, {"x.Label02", "padded"}});
  auto imm = PlainImm("x");
  KEPU label;
  ASSERT_EQ(imm->GetLabel(2, label), S_OK);
  EXPECT_EQ(label.ToUTF8(), "two");
  ASSERT_EQ(imm->GetLabel(-1, label), S_OK);
  EXPECT_EQ(label.ToUTF8(), "minus");
  int value = 0;
  ASSERT_EQ(RichImm("n")->GetEnumValue(-1, value), S_OK);  // resource "enumvalue-1"
  EXPECT_EQ(value, 42);
}

// --- Ranges

TEST_F(ReadersTest, HardMinOnlyServesTheImmersiveRangeButNotTheClassicOne) {
  Config("plainCfg", {{"x.HardMin", "-2"}, {"x.Max", "3"}});
  KEPString min = "keep", max = "keep", step = "keep";
  EXPECT_EQ(Dlg(world.Param(plain, "x"))->GetRange(min, max, step), E_FAIL);
  EXPECT_EQ(min + max + step, "keepkeepkeep");
  ASSERT_EQ(PlainImm("x")->GetRange(min, max, step), S_OK);
  EXPECT_EQ(min, "-2");
  EXPECT_EQ(max, "3");
  EXPECT_EQ(step, "");  // no ".Step": left empty, not an error
}

TEST_F(ReadersTest, ImmersiveRangePrefersMinOverHardMin) {
  Config("plainCfg", {{"x.Min", "0"}, {"x.HardMin", "-10"}, {"x.HardMax", "10"}});
  KEPString min, max, step;
  ASSERT_EQ(PlainImm("x")->GetRange(min, max, step), S_OK);
  EXPECT_EQ(min + "/" + max, "0/10");
}

TEST_F(ReadersTest, ResourceRangeWithoutStepRepeatsTheMaxText) {
  KEPString min, max, step = "keep";
  ASSERT_EQ(RichImm("n")->GetRange(min, max, step), S_OK);
  EXPECT_EQ(min + "/" + max + "/" + step, "0/9/9");
}

TEST_F(ReadersTest, SoftAndHardRangesPreferTheirOwnKeysOverMin) {
  Config("plainCfg", {{"x.Min", "0"},
                      {"x.SoftMin", "0.25"},
                      {"x.Max", "100"},
                      {"x.HardMax", "1e3"},
                      {"x.SoftMax", "junk"}});
  auto imm = PlainImm("x");
  double low = -1, high = -1;
  // ".SoftMax" is present but unreadable: the reader fails rather than falling back.
  EXPECT_EQ(imm->GetSoftRange(low, high), E_FAIL);
  EXPECT_EQ(low, -1);
  ASSERT_EQ(imm->GetHardRange(low, high), S_OK);
  EXPECT_DOUBLE_EQ(low, 0.0);
  EXPECT_DOUBLE_EQ(high, 1000.0);
  Config("plainCfg", {{"x.SoftMax", "50"}});
  ASSERT_EQ(imm->GetSoftRange(low, high), S_OK);
  EXPECT_DOUBLE_EQ(low, 0.25);
  EXPECT_DOUBLE_EQ(high, 50.0);
  KEPString min, max, step;
  ASSERT_EQ(imm->GetRange(min, max, step), S_OK);
  EXPECT_EQ(min, "0");  // the immersive base range keeps ".Min"
}

TEST_F(ReadersTest, RangeControlReadersBelongToScalarAndColourOnly) {
  Config("plainCfg", {{"n.Step", "1"}, {"c.Step", "0.25"}, {"c.Min", "0"}, {"c.Max", "1"}});
  double a = 0, b = 0;
  int precision = 0;
  KEPString name;
  for (const char* p : {"n", "b", "v"}) {
    auto imm = PlainImm(p);
    EXPECT_EQ(imm->GetStep(a), E_NOTIMPL) << p;
    EXPECT_EQ(imm->GetDecimalPrecision(precision), E_NOTIMPL) << p;
    EXPECT_EQ(imm->GetSoftRange(a, b), E_NOTIMPL) << p;
    EXPECT_EQ(imm->GetSecondaryParameterName(name), E_NOTIMPL) << p;
    EXPECT_EQ(imm->GetHardRange(a, b), E_NOTIMPL) << p;
  }
  auto color = PlainImm("c");
  ASSERT_EQ(color->GetStep(a), S_OK);
  EXPECT_DOUBLE_EQ(a, 0.25);
  ASSERT_EQ(color->GetHardRange(a, b), S_OK);
  EXPECT_DOUBLE_EQ(b, 1.0);
}

TEST_F(ReadersTest, DecimalPrecisionCountsTheDigitsOfTheStep) {
  const std::pair<const char*, int> rows[] = {
      {"1", 1}, {"0.5", 2}, {"0.25", 3}, {"10", 1}, {"0.001", 4}};
  for (const auto& [stepText, expected] : rows) {
    Config("plainCfg", {{"x.Step", stepText}});
    int precision = 0;
    // A fresh node each time: the configuration is read on every call anyway.
    ASSERT_EQ(PlainImm("x")->GetDecimalPrecision(precision), S_OK) << stepText;
    EXPECT_EQ(precision, expected) << stepText;
  }
  Config("plainCfg", {{"x.Step", "fine"}});
  int precision = 7;
  EXPECT_EQ(PlainImm("x")->GetDecimalPrecision(precision), E_FAIL);
  EXPECT_EQ(precision, 7);
}

// --- Enumerations

TEST_F(ReadersTest, EnumValueFallsBackToTheLabelReadAsANumber) {
  Config("plainCfg",
         {{"n.EnumVal1", "5"}, {"n.Enum1", "99"}, {"n.Enum2", "7"}, {"n.Enum3", "Seven"}});
  auto imm = PlainImm("n");
  int value = -100;
  ASSERT_EQ(imm->GetEnumValue(1, value), S_OK);
  EXPECT_EQ(value, 5);
  ASSERT_EQ(imm->GetEnumValue(2, value), S_OK);
  EXPECT_EQ(value, 7);
  EXPECT_EQ(imm->GetEnumValue(3, value), E_FAIL);
  EXPECT_EQ(value, 7);
}

TEST_F(ReadersTest, EnumIndexSearchesTheRangeInOrder) {
  Config("plainCfg", {{"n.Min", "0"},
                      {"n.Max", "3"},
                      {"n.EnumVal1", "10"},
                      {"n.Enum2", "20"},
                      {"n.EnumVal3", "20"},
                      {"n.Enum4", "40"}});  // outside the range
  auto imm = PlainImm("n");
  auto dlg = Dlg(world.Param(plain, "n"));
  const std::pair<int, int> hits[] = {{10, 1}, {20, 2}};
  for (const auto& [value, index] : hits) {
    int found = -5;
    ASSERT_EQ(imm->GetEnumIndex(value, found), S_OK) << value;
    EXPECT_EQ(found, index);
    ASSERT_EQ(dlg->GetEnumIndex(value, found), S_OK) << value;  // the classic integer type too
    EXPECT_EQ(found, index);
  }
  int found = -5;
  EXPECT_EQ(imm->GetEnumIndex(40, found), E_FAIL);
  EXPECT_EQ(imm->GetEnumIndex(-1, found), E_FAIL);  // missing ".EnumVal" keys never match -1
  EXPECT_EQ(found, -5);
}

TEST_F(ReadersTest, EnumIndexOverAnAbsurdRangeEndsInsteadOfHoldingTheEditor) {
  Config("plainCfg",
         {{"n.Min", "-2147483648"}, {"n.Max", "2147483647"}, {"n.Enum-2147483643", "9"}});
  int index = -5;
  ASSERT_EQ(PlainImm("n")->GetEnumIndex(9, index), S_OK);
  EXPECT_EQ(index, -2147483643);
  EXPECT_EQ(PlainImm("n")->GetEnumIndex(10, index), E_FAIL);  // returns, after 2^16 indices
}

TEST_F(ReadersTest, EnumIndexNeedsANumericRangeAndUsesResourcesWhenOffered) {
  Config("plainCfg", {{"n.Min", "low"}, {"n.Max", "3"}, {"n.Enum0", "0"}});
  int index = -5;
  EXPECT_EQ(PlainImm("n")->GetEnumIndex(0, index), E_FAIL);
  ASSERT_EQ(RichImm("n")->GetEnumIndex(7, index), S_OK);
  EXPECT_EQ(index, 3);
}

TEST_F(ReadersTest, EnumerationReadersOfTheClassicBaseBelongToTheIntegerType) {
  int out = 0;
  EXPECT_EQ(Dlg(world.Param(plain, "x"))->GetEnumValue(0, out), E_NOTIMPL);
  EXPECT_EQ(Dlg(world.Param(plain, "x"))->GetEnumIndex(0, out), E_NOTIMPL);
  Config("plainCfg", {{"n.Enum0", "3"}});
  ASSERT_EQ(Dlg(world.Param(plain, "n"))->GetEnumValue(0, out), S_OK);
  EXPECT_EQ(out, 3);
}

// --- Units

TEST_F(ReadersTest, UnitFactorScalesKnownUnitsInAnyCase) {
  const std::pair<const char*, double> rows[] = {{"CM", 10.0},
                                                 {"cm", 10.0},
                                                 {"m", 1000.0},
                                                 {"Km", 1e6},
                                                 {"mm", 1.0},
                                                 {"in", 1.0},
                                                 {"deg", KEPDegreeToRadian},
                                                 {"parsec", 1.0}};
  for (const auto& [unit, factor] : rows) {
    World local;
    local.Add(Type("t").Param("x", Scalar(1)));
    Config("t", {{"x.Unit", unit}});
    auto imm = Imm(local.Param(local.Node("t"), "x"));
    float value = 2.5f;
    ASSERT_EQ(imm->ConvertToModelUnit(value), S_OK) << unit;
    EXPECT_FLOAT_EQ(value, static_cast<float>(2.5f * static_cast<float>(factor))) << unit;
  }
}

TEST_F(ReadersTest, UnitFactorIsComputedOnce) {
  Config("plainCfg", {{"x.Unit", "cm"}});
  auto imm = PlainImm("x");
  float value = 1.0f;
  imm->ConvertToModelUnit(value);
  Config("plainCfg", {{"x.Unit", "m"}});
  value = 1.0f;
  imm->ConvertToModelUnit(value);
  EXPECT_FLOAT_EQ(value, 10.0f);
}

TEST_F(ReadersTest, UnitAndMagnitudeObjectsComeFromTheDictionary) {
  Config("plainCfg", {{"x.Unit", "Cm"}, {"x.Magnitude", "length"}});
  auto imm = PlainImm("x");
  KEPICkeUnit* unit = nullptr;
  ASSERT_EQ(imm->GetUnit(unit), S_OK);  // found through its upper-case name
  ASSERT_NE(unit, nullptr);
  EXPECT_DOUBLE_EQ(unit->ToBase(1.0), 10.0);
  unit->Release();
  KEPICkeMagnitude* magnitude = nullptr;
  ASSERT_EQ(imm->GetMagnitude(magnitude), S_OK);
  ASSERT_NE(magnitude, nullptr);
  EXPECT_EQ(magnitude->Name().ToUTF8(), "LENGTH");
  magnitude->Release();
}

TEST_F(ReadersTest, UnknownUnitFailsTheObjectReaderButNotTheFactor) {
  Config("plainCfg", {{"x.Unit", "parsec"}, {"x.Magnitude", "Mood"}});
  auto imm = PlainImm("x");
  auto* sentinel = reinterpret_cast<KEPICkeUnit*>(0x1);
  KEPICkeUnit* unit = sentinel;
  EXPECT_EQ(imm->GetUnit(unit), E_FAIL);
  EXPECT_EQ(unit, sentinel);
  KEPICkeMagnitude* magnitude = nullptr;
  EXPECT_EQ(imm->GetMagnitude(magnitude), E_FAIL);
  EXPECT_EQ(magnitude, nullptr);
  float value = 3.0f;
  EXPECT_EQ(imm->ConvertToModelUnit(value), S_OK);
  EXPECT_FLOAT_EQ(value, 3.0f);
  KEPString name;
  EXPECT_EQ(Dlg(world.Param(plain, "x"))->GetUnit(unit), E_FAIL);
  ASSERT_EQ(imm->GetUnitName(name), S_OK);
  EXPECT_EQ(name, "parsec");
}

// --- Typed readers

TEST_F(ReadersTest, BooleanDefaultText) {
  const std::tuple<const char*, HRESULT, bool> rows[] = {
      {"on", S_OK, true}, {"TRUE", S_OK, true}, {"Off", S_OK, false},   {"false", S_OK, false},
      {"0", S_OK, false}, {"12", S_OK, true},   {"maybe", E_FAIL, true}};
  for (const auto& [text, hr, expected] : rows) {
    Config("plainCfg", {{"b.Default", text}});
    bool value = true;
    EXPECT_EQ(PlainImm("b")->GetTypedDefault(value), hr) << text;
    EXPECT_EQ(value, expected) << text;
    value = true;
    EXPECT_EQ(Dlg(world.Param(plain, "b"))->GetTypedDefault(value), hr) << text;
    EXPECT_EQ(value, expected) << text;
  }
}

TEST_F(ReadersTest, TypedDefaultsByType) {
  Config("plainCfg", {{"b.Default", ""},
                      {"n.Default", "12"},
                      {"x.Default", "0.5"},
                      {"c.Default", "[0.1, 0.2, 0.3]"},
                      {"v.Default", "1 2"}});
  int n = 0;
  ASSERT_EQ(PlainImm("n")->GetTypedDefault(n), S_OK);
  EXPECT_EQ(n, 12);
  float x = 0;
  ASSERT_EQ(PlainImm("x")->GetTypedDefault(x), S_OK);
  EXPECT_FLOAT_EQ(x, 0.5f);
  float c[4] = {9, 9, 9, 1};
  ASSERT_EQ(PlainImm("c")->GetTypedDefault(c), S_OK);
  EXPECT_FLOAT_EQ(c[2], 0.3f);
  EXPECT_FLOAT_EQ(c[3], 1.0f);  // alpha not given: kept
  float v[4] = {9, 9, 9, 9};
  ASSERT_EQ(PlainImm("v")->GetTypedDefault(v), S_OK);
  EXPECT_FLOAT_EQ(v[1], 2.0f);
  EXPECT_FLOAT_EQ(v[2], 9.0f);
  // The wrong form for a type is a failure, as is any typed read of the base types.
  EXPECT_EQ(PlainImm("x")->GetTypedDefault(n), E_FAIL);
  EXPECT_EQ(PlainImm("n")->GetTypedDefault(x), E_FAIL);
  bool b = false;
  EXPECT_EQ(PlainImm("b")->GetTypedDefault(b), E_FAIL);  // an empty text is no boolean
  Config("plainCfg", {{"b.Default", "on"}});
  b = false;
  EXPECT_EQ(PlainImm("b")->GetTypedDefault(b), S_OK);
  EXPECT_TRUE(b);
}

TEST_F(ReadersTest, BothBehavioursOfAParameterReadTheSameTypedDefault) {
  Config("plainCfg", {{"n.Default", " 12 apples"},
                      {"x.Default", "2.5e-1"},
                      {"c.Default", "(0.1, 0.2)"},
                      {"v.Default", "1,2,3,4"}});
  int nImm = 0, nDlg = 0;
  float xImm = 0, xDlg = 0;
  float cImm[4] = {9, 9, 9, 9}, cDlg[4] = {9, 9, 9, 9};
  float vImm[4] = {}, vDlg[4] = {};
  ASSERT_EQ(PlainImm("n")->GetTypedDefault(nImm), S_OK);
  ASSERT_EQ(Dlg(world.Param(plain, "n"))->GetTypedDefault(nDlg), S_OK);
  ASSERT_EQ(PlainImm("x")->GetTypedDefault(xImm), S_OK);
  ASSERT_EQ(Dlg(world.Param(plain, "x"))->GetTypedDefault(xDlg), S_OK);
  ASSERT_EQ(PlainImm("c")->GetTypedDefault(cImm), S_OK);
  ASSERT_EQ(Dlg(world.Param(plain, "c"))->GetTypedDefault(cDlg), S_OK);
  ASSERT_EQ(PlainImm("v")->GetTypedDefault(vImm), S_OK);
  ASSERT_EQ(Dlg(world.Param(plain, "v"))->GetTypedDefault(vDlg), S_OK);
  EXPECT_EQ(nImm, 12);  // leading blanks skipped, trailing text ignored
  EXPECT_EQ(nDlg, nImm);
  EXPECT_FLOAT_EQ(xImm, 0.25f);
  EXPECT_EQ(xDlg, xImm);
  EXPECT_FLOAT_EQ(cImm[1], 0.2f);
  EXPECT_FLOAT_EQ(cImm[2], 9.0f);
  EXPECT_FLOAT_EQ(vImm[3], 4.0f);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(cDlg[i], cImm[i]) << i;
    EXPECT_EQ(vDlg[i], vImm[i]) << i;
  }
}

TEST_F(ReadersTest, IntegerTypedRangeFollowsTheRangeOfItsBehaviour) {
  // Only the immersive range stands in ".HardMin" for a missing ".Min".
  Config("plainCfg", {{"n.HardMin", "-4"}, {"n.Max", "6"}, {"n.Step", "2"}});
  int min = 0, max = 0, step = 1;
  ASSERT_EQ(PlainImm("n")->GetTypedRange(min, max, step), S_OK);
  EXPECT_EQ(min, -4);
  EXPECT_EQ(max, 6);
  EXPECT_EQ(step, 2);
  min = max = 0, step = 1;
  EXPECT_EQ(Dlg(world.Param(plain, "n"))->GetTypedRange(min, max, step), E_FAIL);
  EXPECT_EQ(min, 0);  // outputs untouched
  EXPECT_EQ(step, 1);
  Config("plainCfg", {{"n.Min", "-1"}});
  ASSERT_EQ(Dlg(world.Param(plain, "n"))->GetTypedRange(min, max, step), S_OK);
  EXPECT_EQ(min, -1);
  EXPECT_EQ(step, 2);
}

TEST_F(ReadersTest, BooleanWithoutAnyDefaultReadsTrue) {
  bool value = false;
  EXPECT_EQ(PlainImm("b")->GetTypedDefault(value), S_OK);
  EXPECT_TRUE(value);
}

TEST_F(ReadersTest, ScalarTypedRangeUsesHardKeysAndModelUnits) {
  Config("plainCfg",
         {{"x.Min", "1"}, {"x.HardMin", "0"}, {"x.Max", "5"}, {"x.Step", "0.5"}, {"x.Unit", "cm"}});
  float min = -1, max = -1, step = -1;
  ASSERT_EQ(PlainImm("x")->GetTypedRange(min, max, step), S_OK);
  EXPECT_FLOAT_EQ(min, 0.0f);
  EXPECT_FLOAT_EQ(max, 50.0f);
  EXPECT_FLOAT_EQ(step, 5.0f);
  int imin = 0, imax = 0, istep = 0;
  EXPECT_EQ(PlainImm("x")->GetTypedRange(imin, imax, istep), E_FAIL);
  EXPECT_EQ(PlainImm("v")->GetTypedRange(min, max, step), E_FAIL);
}

TEST_F(ReadersTest, IntegerTypedRangeKeepsThePresetStep) {
  Config("plainCfg", {{"n.Min", "-3"}, {"n.Max", "8"}});
  int min = 0, max = 0, step = 1;
  ASSERT_EQ(PlainImm("n")->GetTypedRange(min, max, step), S_OK);
  EXPECT_EQ(min, -3);
  EXPECT_EQ(max, 8);
  EXPECT_EQ(step, 1);
  float fmin = 0, fmax = 0, fstep = 0.01f;
  ASSERT_EQ(Dlg(world.Param(plain, "n"))->GetTypedRange(fmin, fmax, fstep), S_OK);
  EXPECT_FLOAT_EQ(fmax, 8.0f);
  EXPECT_FLOAT_EQ(fstep, 0.01f);
}

// --- Tooltip

TEST_F(ReadersTest, TooltipResultIsThatOfTheImage) {
  auto imm = PlainImm("x");
  KEPU text(u"keep");
  KEPString image = "keep";
  Config("plainCfg", {{"x.TooltipText", "Hello"}});
  EXPECT_EQ(imm->GetTooltip(text, image), E_FAIL);
  EXPECT_EQ(text.ToUTF8() + "/" + image, "Hello/keep");
  Config("plainCfg", {{"x.TooltipImage", "tip.png"}});
  ASSERT_EQ(imm->GetTooltip(text, image), S_OK);
  EXPECT_EQ(image, "tip.png");
  Config("richCfg", {{"x.TooltipImage", "only.png"}});
  text = KEPU(u"keep");
  ASSERT_EQ(RichImm("x")->GetTooltip(text, image), S_OK);
  EXPECT_EQ(text.ToUTF8() + "/" + image, "keep/only.png");
}

// --- Connectable state

TEST_F(ReadersTest, ConnectableStateFromKeyOrShaderManager) {
  world.Add(Type("tex").Param("t", Texture()));
  world.Connectable("KEPRmaColor", {{"tex", "Texture"}});
  Config("plainCfg", {{"v.ConnectableState", "Maybe"}});
  const std::tuple<const char*, const char*, HRESULT> rows[] = {
      {"c", "Yes", S_OK}, {"x", "No", S_OK}, {"v", "Maybe", S_OK}};
  for (const auto& [name, expected, hr] : rows) {
    KEPString state;
    EXPECT_EQ(PlainImm(name)->GetConnectableState(state), hr) << name;
    EXPECT_EQ(state, expected) << name;
    state.clear();
    EXPECT_EQ(Dlg(world.Param(plain, name))->GetConnectableState(state), hr) << name;
    EXPECT_EQ(state, expected) << name;
  }
}

TEST_F(ReadersTest, ConnectableStateWithoutManagerIsNoAndFailure) {
  KEPHostShaderManager::Install(nullptr);
  KEPString state = "keep";
  EXPECT_EQ(PlainImm("c")->GetConnectableState(state), E_FAIL);
  EXPECT_EQ(state, "No");
}

}  // namespace
}  // namespace keptest
