// `rshview units`: the display units the editors show lengths and angles in, shown or chosen for
// good.
#include <nlohmann/json.hpp>
#include <ostream>

#include "KEPParmDictionary.h"
#include "KEPSysPreferenceRepository.h"
#include "RshviewCommands.h"
#include "RshviewUnits.h"

const char* const kRshviewUnitsHelp =
    "Usage: rshview units [MAGNITUDE=UNIT...] [--format text|json]\n"
    "\n"
    "Without arguments, prints each magnitude's display unit and the units to choose from.\n"
    "With arguments, chooses display units for good (for example 'rshview units length=cm\n"
    "angle=deg'): the editors of every later run show values in them. --units on dump and\n"
    "drive chooses units for that run only.\n"
    "\n"
    "The choice is kept in the preference repository \"KEPRshDisplayUnits\" of the preference\n"
    "file ($KEPRSH_PREFERENCES, else $XDG_CONFIG_HOME/rshview/preferences.json, else\n"
    "~/.config/rshview/preferences.json), which is written atomically.\n";

int RunUnitsCommand(RshviewContext& context) {
  const std::vector<std::string>& arguments = context.options.arguments;
  if (!arguments.empty()) {
    std::string list;
    for (const std::string& argument : arguments) list += (list.empty() ? "" : ",") + argument;
    std::string message;
    if (!RshviewApplyUnits(list, message)) {
      context.err << "rshview units: " << message.substr(message.find(' ') + 1) << "\n";
      return 2;
    }
    KEPSysPreferenceRepository* repository =
        KEPSysPreferenceRepository::GetRepository(kRshviewUnitsRepository);
    if (!repository) {
      context.err << "rshview units: the preference repository is not available (set "
                     "KEPRSH_PREFERENCES or HOME)\n";
      return 1;
    }
    for (KEPICkeMagnitude* magnitude : KEPParmDictionary::Magnitudes())
      repository->SetValue(magnitude->Name().ToUTF8(), magnitude->CurrentUnit()->Name().ToUTF8());
    if (FAILED(repository->Commit())) {
      context.err << "rshview units: the choice could not be saved (see the trace above)\n";
      return 1;
    }
  }
  nlohmann::ordered_json json = nlohmann::ordered_json::object();
  for (KEPICkeMagnitude* magnitude : KEPParmDictionary::Magnitudes()) {
    nlohmann::ordered_json choices = nlohmann::ordered_json::array();
    for (KEPICkeUnit* unit : KEPParmDictionary::UnitsOf(magnitude))
      choices.push_back(unit->Name().ToUTF8());
    const std::string name = KEPToLower(magnitude->Name().ToUTF8());
    const std::string current = magnitude->CurrentUnit()->Name().ToUTF8();
    json[name] = {{"unit", current}, {"units", choices}};
    if (context.options.format == "text") {
      std::string list;
      for (const auto& choice : choices)
        list += (list.empty() ? "" : ", ") + choice.get<std::string>();
      context.out << name << std::string(name.size() < 8 ? 8 - name.size() : 1, ' ') << current
                  << std::string(current.size() < 4 ? 4 - current.size() : 1, ' ') << "(" << list
                  << ")\n";
    }
  }
  if (context.options.format == "json") context.out << json.dump(2) << "\n";
  return 0;
}
