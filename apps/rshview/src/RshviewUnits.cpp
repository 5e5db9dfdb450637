#include "RshviewUnits.h"

#include <cstdlib>
#include <ostream>
#include <utility>
#include <vector>

#include "KEPParmDictionary.h"
#include "KEPString.h"
#include "KEPSysPreferenceRepository.h"

namespace {

/// The magnitude named `name` in any case (LENGTH, length, Length), or null.
KEPICkeMagnitude* FindMagnitudeAnyCase(const std::string& name) {
  for (KEPICkeMagnitude* magnitude : KEPParmDictionary::Magnitudes())
    if (KEPToUpper(magnitude->Name().ToUTF8()) == KEPToUpper(name)) return magnitude;
  return nullptr;
}

std::string Choices(const KEPICkeMagnitude* magnitude) {
  std::string text;
  for (KEPICkeUnit* unit : KEPParmDictionary::UnitsOf(magnitude))
    text += (text.empty() ? "" : ", ") + unit->Name().ToUTF8();
  return text;
}

std::string MagnitudeChoices() {
  std::string text;
  for (KEPICkeMagnitude* magnitude : KEPParmDictionary::Magnitudes())
    text += (text.empty() ? "" : ", ") + KEPToLower(magnitude->Name().ToUTF8());
  return text;
}

/// The unit `name` of `magnitude`, or null with `message` set.
KEPICkeUnit* UnitOf(KEPICkeMagnitude* magnitude, const std::string& name, std::string& message) {
  KEPICkeUnit* unit = KEPParmDictionary::FindUnit(KEPUnicodeString::FromUTF8(name));
  if (!unit || unit->Magnitude() != magnitude) {
    message = "'" + name + "' is not a unit of " + KEPToLower(magnitude->Name().ToUTF8()) +
              " (units: " + Choices(magnitude) + ")";
    return nullptr;
  }
  return unit;
}

}  // namespace

void RshviewApplyStoredUnits(std::ostream& err) {
  KEPSysPreferenceRepository* repository =
      KEPSysPreferenceRepository::GetRepository(kRshviewUnitsRepository);
  if (!repository) return;
  for (const KEPString& key : repository->Keys()) {
    KEPString name;
    if (FAILED(repository->GetValue(key, name))) continue;
    KEPICkeMagnitude* magnitude = FindMagnitudeAnyCase(key);
    std::string message;
    KEPICkeUnit* unit = magnitude ? UnitOf(magnitude, name, message) : nullptr;
    if (!magnitude) message = "'" + key + "' is not a magnitude (" + MagnitudeChoices() + ")";
    if (!unit) {
      err << "rshview: stored display unit " << key << " = " << name << " ignored: " << message
          << "\n";
      continue;
    }
    magnitude->SetCurrentUnit(unit);
  }
}

bool RshviewApplyUnits(const std::string& list, std::string& message) {
  std::vector<std::pair<KEPICkeMagnitude*, KEPICkeUnit*>> choices;
  std::size_t start = 0;
  while (start <= list.size()) {
    const std::size_t comma = std::min(list.find(',', start), list.size());
    const std::string entry(KEPTrimBlanks(std::string_view(list).substr(start, comma - start)));
    start = comma + 1;
    const std::size_t equals = entry.find('=');
    if (equals == std::string::npos || equals == 0 || equals + 1 == entry.size()) {
      message = "--units: '" + entry + "' is not magnitude=unit (for example length=cm)";
      return false;
    }
    const std::string magnitudeName(KEPTrimBlanks(std::string_view(entry).substr(0, equals)));
    const std::string unitName(KEPTrimBlanks(std::string_view(entry).substr(equals + 1)));
    KEPICkeMagnitude* magnitude = FindMagnitudeAnyCase(magnitudeName);
    if (!magnitude) {
      message = "--units: '" + magnitudeName + "' is not a magnitude (" + MagnitudeChoices() + ")";
      return false;
    }
    KEPICkeUnit* unit = UnitOf(magnitude, unitName, message);
    if (!unit) {
      message.insert(0, "--units: ");
      return false;
    }
    choices.emplace_back(magnitude, unit);
  }
  for (auto& [magnitude, unit] : choices) magnitude->SetCurrentUnit(unit);
  return true;
}

nlohmann::ordered_json RshviewUnitsJson() {
  nlohmann::ordered_json json = nlohmann::ordered_json::object();
  for (KEPICkeMagnitude* magnitude : KEPParmDictionary::Magnitudes()) {
    nlohmann::ordered_json choices = nlohmann::ordered_json::array();
    for (KEPICkeUnit* unit : KEPParmDictionary::UnitsOf(magnitude))
      choices.push_back(unit->Name().ToUTF8());
    json[KEPToLower(magnitude->Name().ToUTF8())] = {
        {"unit", magnitude->CurrentUnit()->Name().ToUTF8()}, {"units", choices}};
  }
  return json;
}

bool RshviewStoreUnits(std::string& message) {
  KEPSysPreferenceRepository* repository =
      KEPSysPreferenceRepository::GetRepository(kRshviewUnitsRepository);
  if (!repository) {
    message = "the preference repository is not available (set KEPRSH_PREFERENCES or HOME)";
    return false;
  }
  for (KEPICkeMagnitude* magnitude : KEPParmDictionary::Magnitudes())
    repository->SetValue(magnitude->Name().ToUTF8(), magnitude->CurrentUnit()->Name().ToUTF8());
  if (FAILED(repository->Commit())) {
    // The file is named where the person chose it; else the host's default place.
    const char* file = std::getenv("KEPRSH_PREFERENCES");
    message = file && *file ? "the choice could not be saved to " + std::string(file)
                            : "the choice could not be saved (see the trace above)";
    return false;
  }
  return true;
}
