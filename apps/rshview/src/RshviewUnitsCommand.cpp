// `rshview units`: the display units the editors show lengths and angles in, shown or chosen for
// good.
#include <nlohmann/json.hpp>
#include <ostream>

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
    if (!RshviewStoreUnits(message)) {
      context.err << "rshview units: " << message << "\n";
      return 1;
    }
  }
  const nlohmann::ordered_json json = RshviewUnitsJson();
  if (context.options.format == "json") {
    context.out << json.dump(2) << "\n";
    return 0;
  }
  for (const auto& [name, magnitude] : json.items()) {
    const std::string current = magnitude["unit"].get<std::string>();
    std::string list;
    for (const auto& choice : magnitude["units"])
      list += (list.empty() ? "" : ", ") + choice.get<std::string>();
    context.out << name << std::string(name.size() < 8 ? 8 - name.size() : 1, ' ') << current
                << std::string(current.size() < 4 ? 4 - current.size() : 1, ' ') << "(" << list
                << ")\n";
  }
  return 0;
}
