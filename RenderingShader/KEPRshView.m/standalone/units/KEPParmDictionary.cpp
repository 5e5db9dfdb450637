// The process-wide dictionary of magnitudes and units.
//
// Every unit is a linear scale of its magnitude's base unit: ToBase(v) = v * factor. Unit and
// magnitude objects are created once, on the first lookup, and never destroyed: the module keeps
// borrowed pointers to them for as long as it likes, so reference counting is a no-op on them.
// What changes (the display unit chosen per magnitude, and the names hidden by tests) is process
// state, owned by the host context and forgotten on its reset.
#include "KEPParmDictionary.h"
#include "KEPHostUnits.h"

#include <map>
#include <memory>
#include <numbers>
#include <set>
#include <string>

#include "KEPBaseUnknown.h"
#include "KEPHostContext.h"

const double KEPDegreeToRadian = std::numbers::pi / 180.0;
const double KEPRadianToDegree = 180.0 / std::numbers::pi;

const KEPUnicodeString KEPParmDictionary::LengthType = KEPUnicodeString(u"LENGTH");
const KEPUnicodeString KEPParmDictionary::AngleType = KEPUnicodeString(u"ANGLE");

// The unit and magnitude classes are the host's own; nothing outside this file names them.
class KEPCkeMagnitude;

namespace {
/// The display units chosen (by magnitude) and the unit names hidden by RemoveUnitForTest.
struct UnitChoices {
  std::map<const KEPICkeMagnitude*, KEPICkeUnit*> current;
  std::set<KEPUnicodeString> hidden;
};
UnitChoices& Choices() {
  return KEPHostContext::State<UnitChoices>();
}
void SetChosenUnit(KEPICkeUnit* unit) {
  Choices().current[unit->Magnitude()] = unit;
}
}  // namespace

/// One unit: a name, a symbol and the factor that turns a value in this unit into base units.
class KEPCkeUnit final : public KEPBaseUnknown, public KEPICkeUnit {
  KEP_DECLARE_CLASS
 public:
  KEPCkeUnit(std::u16string name, std::u16string symbol, KEPICkeMagnitude* magnitude, double factor)
      : name_(std::move(name)),
        symbol_(std::move(symbol)),
        magnitude_(magnitude),
        factor_(factor) {}

  // Lives for the process: counting references would only invite a premature delete.
  ULONG AddRef() override { return 1; }
  ULONG Release() override { return 1; }

  KEPUnicodeString Name() const override { return name_; }
  KEPUnicodeString Symbol() const override { return symbol_; }
  KEPICkeMagnitude* Magnitude() const override { return magnitude_; }
  double ToBase(double value) const override { return value * factor_; }
  double FromBase(double value) const override { return value / factor_; }

 private:
  KEPUnicodeString name_;
  KEPUnicodeString symbol_;
  KEPICkeMagnitude* magnitude_;
  double factor_;
};

class KEPCkeMagnitude final : public KEPBaseUnknown, public KEPICkeMagnitude {
  KEP_DECLARE_CLASS
 public:
  explicit KEPCkeMagnitude(std::u16string name) : name_(std::move(name)) {}

  ULONG AddRef() override { return 1; }
  ULONG Release() override { return 1; }

  KEPUnicodeString Name() const override { return name_; }
  KEPICkeUnit* BaseUnit() const override { return units_.empty() ? nullptr : units_.front(); }
  KEPICkeUnit* CurrentUnit() const override;
  HRESULT SetCurrentUnit(KEPICkeUnit* unit) override {
    if (!unit || unit->Magnitude() != this) return E_INVALIDARG;
    SetChosenUnit(unit);
    return S_OK;
  }

  /// The first unit added is the base unit.
  void AddUnit(KEPICkeUnit* unit) { units_.push_back(unit); }
  const std::vector<KEPICkeUnit*>& Units() const { return units_; }

 private:
  KEPUnicodeString name_;
  std::vector<KEPICkeUnit*> units_;
};

KEPICkeUnit* KEPCkeMagnitude::CurrentUnit() const {
  const auto& current = Choices().current;
  const auto it = current.find(this);
  return it == current.end() ? BaseUnit() : it->second;
}

KEP_IMPLEMENT_CLASS(KEPCkeUnit, KEPBaseUnknown, "System")
KEP_IMPLEMENT_CLASS(KEPCkeMagnitude, KEPBaseUnknown, "System")

namespace {

struct Dictionary {
  // Owners are never freed (see the file comment); the maps hold borrowed pointers.
  std::vector<KEPCkeMagnitude*> magnitudes;
  std::map<KEPUnicodeString, KEPCkeUnit*> units;

  KEPCkeMagnitude* AddMagnitude(const char16_t* name) {
    auto* magnitude = new KEPCkeMagnitude(name);
    magnitudes.push_back(magnitude);
    return magnitude;
  }

  /// Registers `name` and its upper-case form for one unit object.
  void AddUnit(KEPCkeMagnitude* magnitude, const char16_t* name, const char16_t* symbol,
               double factor) {
    auto* unit = new KEPCkeUnit(name, symbol, magnitude, factor);
    magnitude->AddUnit(unit);
    const KEPUnicodeString key(name);
    units[key] = unit;
    units[key.ToUpper()] = unit;
  }

  Dictionary() {
    KEPCkeMagnitude* length = AddMagnitude(u"LENGTH");
    AddUnit(length, u"mm", u"mm", 1.0);
    AddUnit(length, u"cm", u"cm", 10.0);
    AddUnit(length, u"m", u"m", 1000.0);
    AddUnit(length, u"km", u"km", 1000000.0);
    AddUnit(length, u"in", u"in", 25.4);
    AddUnit(length, u"ft", u"ft", 304.8);

    KEPCkeMagnitude* angle = AddMagnitude(u"ANGLE");
    AddUnit(angle, u"rad", u"rad", 1.0);
    AddUnit(angle, u"deg", u"deg", KEPDegreeToRadian);
  }
};

Dictionary& TheDictionary() {
  static Dictionary* dictionary = new Dictionary;
  return *dictionary;
}

}  // namespace

KEPICkeUnit* KEPParmDictionary::FindUnit(const KEPUnicodeString& name) {
  const auto& units = TheDictionary().units;
  const auto it = units.find(name);
  if (it == units.end() || Choices().hidden.count(name)) return nullptr;
  return it->second;
}

KEPICkeMagnitude* KEPParmDictionary::FindMagnitude(const KEPUnicodeString& name) {
  for (KEPCkeMagnitude* magnitude : TheDictionary().magnitudes)
    if (magnitude->Name() == name) return magnitude;
  return nullptr;
}

void KEPHostUnits::ResetCurrentUnits() {
  Choices().current.clear();
}

std::vector<KEPICkeMagnitude*> KEPParmDictionary::Magnitudes() {
  const auto& magnitudes = TheDictionary().magnitudes;
  return {magnitudes.begin(), magnitudes.end()};
}

std::vector<KEPICkeUnit*> KEPParmDictionary::UnitsOf(const KEPICkeMagnitude* magnitude) {
  for (KEPCkeMagnitude* candidate : TheDictionary().magnitudes)
    if (candidate == magnitude) return candidate->Units();
  return {};
}

bool KEPHostUnits::RemoveUnitForTest(const KEPUnicodeString& name) {
  if (!TheDictionary().units.count(name)) return false;
  return Choices().hidden.insert(name).second;
}

void KEPHostUnits::RestoreUnitsForTest() {
  Choices().hidden.clear();
}
