// The display units a person works in: chosen for good with `rshview units` (kept in the
// preference repository "KEPRshDisplayUnits", one text value per magnitude), or for one run with
// `--units length=cm,angle=deg`.
#pragma once

#include <iosfwd>
#include <nlohmann/json.hpp>
#include <string>

/// The preference repository that keeps the chosen display units.
inline constexpr const char* kRshviewUnitsRepository = "KEPRshDisplayUnits";

/// Sets each magnitude's display unit from the preference repository. A stored unit that is not
/// known, or measures another magnitude, is reported on `err` and left out.
void RshviewApplyStoredUnits(std::ostream& err);

/// Sets display units from "magnitude=unit[,magnitude=unit...]" (magnitude names in any case).
/// False with `message` naming the bad entry and the choices; nothing is changed then.
bool RshviewApplyUnits(const std::string& list, std::string& message);

/// Each magnitude (lower-case name) with its display unit and the units to choose from:
/// {"length": {"unit": "mm", "units": ["mm", ...]}, ...}.
nlohmann::ordered_json RshviewUnitsJson();

/// Keeps the current display units for good in the preference repository (committed
/// atomically); false with `message` set when that fails.
bool RshviewStoreUnits(std::string& message);
