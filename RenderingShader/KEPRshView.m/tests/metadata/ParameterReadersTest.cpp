// The text readers of the behaviour bases: the source each asks (resources or configuration),
// what a missing key gives, tooltip, connectable state, units and typed defaults.
#include <array>

#include "KEPHostShaderManager.h"
#include "KEPParmDictionary.h"
#include "MetadataTestSupport.h"

namespace keptest {
namespace {

class ReadersTest : public MetadataTest {};

// The outputs a reader may write, preset so that an untouched one shows.
struct Out {
  KEPString text = "keep";
  KEPUnicodeString unicode = u"keep";
  int number = -99;
  std::string Written() const {
    if (number != -99) return std::to_string(number);
    return unicode.ToUTF8() != "keep" ? unicode.ToUTF8() : text;
  }
};
using B = const Behaviours&;
using Read = HRESULT (*)(B b, Out& o);

TEST_F(ReadersTest, EachReaderAsksItsResourceKeyWhenOfferedElseItsConfigurationKey) {
  // A null resource key: the reader has no resource form and always reads the configuration,
  // even when resources of the same name in lower case exist.
  const std::tuple<const char*, const char*, Read> rows[] = {
      {"default", ".Default", [](B b, Out& o) { return b.imm->GetDefault(o.text); }},
      {"widget", ".Widget", [](B b, Out& o) { return b.dlg->GetWidget(o.text); }},
      {"label2", ".Label2", [](B b, Out& o) { return b.imm->GetLabel(2, o.unicode); }},
      {"enum-1", ".Enum-1", [](B b, Out& o) { return b.dlg->GetEnumLabel(-1, o.unicode); }},
      {"enumvalue3", ".EnumVal3", [](B b, Out& o) { return b.imm->GetEnumValue(3, o.number); }},
      {"enumvalue3", ".EnumVal3", [](B b, Out& o) { return b.dlg->GetEnumValue(3, o.number); }},
      {nullptr, ".Description", [](B b, Out& o) { return b.imm->GetDescription(o.unicode); }},
      {nullptr, ".Group", [](B b, Out& o) { return b.dlg->GetGroup(o.unicode); }},
      {nullptr, ".Unit", [](B b, Out& o) { return b.dlg->GetUnitName(o.text); }},
      {nullptr, ".Magnitude", [](B b, Out& o) { return b.imm->GetMagnitudeName(o.text); }},
      {nullptr, ".SortingOrder", [](B b, Out& o) { return b.imm->GetSortingOrder(o.text); }},
      {nullptr, ".LayerGroupName", [](B b, Out& o) { return b.dlg->GetLayerGroupName(o.text); }},
      {nullptr, ".SecondaryParameter",
       [](B b, Out& o) { return b.imm->GetSecondaryParameterName(o.text); }}};
  for (const auto& [key, suffix, read] : rows) {
    std::string lower = std::string(suffix).substr(1);
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const std::string resourceKey = key ? key : lower;
    const bool scalarOnly = lower == "secondaryparameter";  // the others read for any type
    const std::tuple<std::optional<Keys>, Keys, HRESULT, const char*> passes[] = {
        {Keys{{resourceKey, "5"}}, {{suffix, "6"}}, S_OK, key ? "5" : "6"},
        {Keys{}, {{suffix, "6"}}, key ? E_FAIL : S_OK, key ? "keep" : "6"},
        {std::nullopt, {{suffix, "6"}}, S_OK, "6"},
        {std::nullopt, {}, E_FAIL, "keep"}};
    for (const auto& [resources, config, hr, expected] : passes) {
      Out out;
      const KEPHostValue value = scalarOnly ? Scalar(0) : Integer(0);
      EXPECT_EQ(read(Behave(Param(value, config, resources)), out), hr) << suffix;
      EXPECT_EQ(out.Written(), expected) << suffix;
    }
  }
}

TEST_F(ReadersTest, TooltipTextIsEmptyWhenMissingAndTheResultIsTheImages) {
  const Keys text = {{".TooltipText", "Hello"}}, image = {{".TooltipImage", "tip.png"}};
  const std::tuple<Keys, HRESULT, const char*, const char*> rows[] = {
      {With(text, image), S_OK, "Hello", "tip.png"},
      {text, E_FAIL, "Hello", "keep"},
      {image, S_OK, "", "tip.png"},
      {{}, E_FAIL, "", "keep"}};
  for (const auto& [config, hr, expectedText, expectedImage] : rows) {
    Out out;
    EXPECT_EQ(Imm(Param(Scalar(1), config, Keys{}))->GetTooltip(out.unicode, out.text), hr);
    EXPECT_EQ(out.unicode.ToUTF8(), expectedText);
    EXPECT_EQ(out.text, expectedImage);
  }
}

TEST_F(ReadersTest, ConnectableStateFromTheKeyElseTheShaderManager) {
  TheWorld().Connectable("KEPRmaColor", {{"tex", "Texture"}});
  const Keys maybe = {{".ConnectableState", "Maybe"}};
  const std::tuple<KEPHostValue, Keys, bool, HRESULT, const char*> rows[] = {
      {Color(1, 1, 1), {}, true, S_OK, "Yes"},
      {Scalar(1), {}, true, S_OK, "No"},
      {Scalar(1), maybe, true, S_OK, "Maybe"},
      {Scalar(1), maybe, false, S_OK, "Maybe"},
      {Color(1, 1, 1), {}, false, E_FAIL, "No"}};
  for (const auto& [value, config, manager, hr, expected] : rows) {
    const Behaviours b = Behave(Param(value, config));
    KEPHostShaderManager::Install(manager ? TheWorld().library : nullptr);
    KEPString imm = "keep", dlg = "keep";
    EXPECT_EQ(b.imm->GetConnectableState(imm), hr) << expected;
    EXPECT_EQ(imm, expected);
    EXPECT_EQ(b.dlg->GetConnectableState(dlg), hr) << expected;
    EXPECT_EQ(dlg, expected);
  }
}

// --- Units

TEST_F(ReadersTest, UnitFactorScalesKnownUnitsInAnyCaseOnce) {
  const std::pair<const char*, double> rows[] = {
      {"CM", 10.0}, {"cm", 10.0}, {"m", 1000.0}, {"Km", 1e6},     {"mm", 1.0},
      {"in", 1.0},  {"ft", 1.0},  {"", 1.0},     {"parsec", 1.0}, {"DEG", KEPDegreeToRadian}};
  for (const auto& [unit, factor] : rows) {
    std::string id;
    auto imm = Imm(Param(Scalar(1), {{".Unit", unit}}, std::nullopt, &id));
    for (const char* later : {"km", "mm"}) {  // the factor is not read again
      float value = 2.5f;
      EXPECT_EQ(imm->ConvertToModelUnit(value), S_OK) << unit;
      EXPECT_FLOAT_EQ(value, 2.5f * static_cast<float>(factor)) << unit;
      KEPHostConfiguration::SetValue(id, "p.Unit", later);
    }
  }
}

TEST_F(ReadersTest, UnitAndMagnitudeAsWrittenElseInUpperCase) {
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {".Unit", "cm", "cm"},
      {".Unit", "Cm", "cm"},
      {".Unit", "parsec", nullptr},
      {".Unit", {}, nullptr},
      {".Magnitude", "LENGTH", "LENGTH"},
      {".Magnitude", "length", "LENGTH"},
      {".Magnitude", "Mood", nullptr},
      {".Magnitude", {}, nullptr}};
  for (const auto& [suffix, name, found] : rows) {
    auto imm = Imm(Param(Scalar(1), name ? Keys{{suffix, name}} : Keys{}));
    auto* unit = reinterpret_cast<KEPICkeUnit*>(0x1);  // untouched on failure
    auto* magnitude = reinterpret_cast<KEPICkeMagnitude*>(0x1);
    const bool isUnit = std::string(suffix) == ".Unit";
    const HRESULT hr = isUnit ? imm->GetUnit(unit) : imm->GetMagnitude(magnitude);
    EXPECT_EQ(hr, found ? S_OK : E_FAIL) << (name ? name : "none");
    if (FAILED(hr)) {
      EXPECT_EQ(isUnit ? static_cast<void*>(unit) : magnitude, reinterpret_cast<void*>(0x1));
      continue;
    }
    EXPECT_EQ((isUnit ? unit->Name() : magnitude->Name()).ToUTF8(), found);
    if (isUnit) unit->Release();
    if (!isUnit) magnitude->Release();
  }
}

// --- Typed defaults

TEST_F(ReadersTest, EachTypeReadsOnlyItsOwnFormOfDefault) {
  // "1 2" reads in every form, so only the type's choice of form decides.
  const std::pair<KEPHostValue, std::string> rows[] = {
      {Boolean(true), "bool"}, {Integer(0), "int"}, {Scalar(0), "float"}, {Color(0, 0, 0), "4"},
      {Vector({0, 0}), "4"},   {Texture(), ""},     {Void(), ""}};
  for (const auto& row : rows) {
    const std::string& form = row.second;
    const Behaviours b = Behave(Param(row.first, {{".Default", "1 2"}}));
    bool flag = false;
    int number = 0;
    float scalar = 0, four[4] = {};
    b.Each([&](auto* behaviour) {
      EXPECT_EQ(behaviour->GetTypedDefault(flag), form == "bool" ? S_OK : E_FAIL) << form;
      EXPECT_EQ(behaviour->GetTypedDefault(number), form == "int" ? S_OK : E_FAIL) << form;
      EXPECT_EQ(behaviour->GetTypedDefault(scalar), form == "float" ? S_OK : E_FAIL) << form;
      EXPECT_EQ(behaviour->GetTypedDefault(four), form == "4" ? S_OK : E_FAIL) << form;
    });
  }
}

TEST_F(ReadersTest, BooleanDefaultText) {
  const std::tuple<const char*, HRESULT, bool> rows[] = {
      {"on", S_OK, true},   {"TRUE", S_OK, true}, {"Off", S_OK, false},     {"false", S_OK, false},
      {"0", S_OK, false},   {" 12", S_OK, true},  {"maybe", E_FAIL, false}, {"", E_FAIL, false},
      {nullptr, S_OK, true}};  // null: no default configured at all
  for (const auto& [text, hr, value] : rows) {
    auto imm = Imm(Param(Boolean(true), text ? Keys{{".Default", text}} : Keys{}));
    for (bool preset : {false, true}) {
      bool read = preset;
      EXPECT_EQ(imm->GetTypedDefault(read), hr) << (text ? text : "none");
      EXPECT_EQ(read, SUCCEEDED(hr) ? value : preset) << (text ? text : "none");
    }
  }
}

TEST_F(ReadersTest, NumericDefaultTexts) {
  using Four = std::array<float, 4>;  // from the preset {9, 9, 9, 9}
  const std::tuple<KEPHostValue, const char*, HRESULT, Four> rows[] = {
      {Integer(0), " 12 apples", S_OK, {12, 9, 9, 9}},
      {Integer(0), "apples", E_FAIL, {9, 9, 9, 9}},
      {Integer(0), nullptr, E_FAIL, {9, 9, 9, 9}},
      {Scalar(0), "2.5e-1", S_OK, {0.25f, 9, 9, 9}},
      {Scalar(0), "x1", E_FAIL, {9, 9, 9, 9}},
      {Color(0, 0, 0), "[0.1, 0.2, 0.3]", S_OK, {0.1f, 0.2f, 0.3f, 9}},
      {Color(0, 0, 0), "(0.1, 0.2)", S_OK, {0.1f, 0.2f, 9, 9}},
      {Vector({0, 0}), "1,2,3,4,5", S_OK, {1, 2, 3, 4}},
      {Vector({0, 0}), "7", E_FAIL, {9, 9, 9, 9}},
      {Vector({0, 0}), "1 x 3", E_FAIL, {9, 9, 9, 9}}};
  // The parsers are shared; which type uses which is the test above.
  for (const auto& [value, text, hr, expected] : rows) {
    auto imm = Imm(Param(value, text ? Keys{{".Default", text}} : Keys{}));
    float four[4] = {9, 9, 9, 9};
    int number = 9;
    const HRESULT read = value.type == KEPRmaType::Integer  ? imm->GetTypedDefault(number)
                         : value.type == KEPRmaType::Scalar ? imm->GetTypedDefault(four[0])
                                                            : imm->GetTypedDefault(four);
    if (value.type == KEPRmaType::Integer) four[0] = static_cast<float>(number);
    EXPECT_EQ(read, hr) << (text ? text : "none");
    EXPECT_EQ(Four({four[0], four[1], four[2], four[3]}), expected) << (text ? text : "none");
  }
}

}  // namespace
}  // namespace keptest
