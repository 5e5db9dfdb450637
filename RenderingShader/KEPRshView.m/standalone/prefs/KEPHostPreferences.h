// The host's side of the preference repositories: where they are kept, and forgetting them.
#pragma once

#include <string>

#include "KEPSysPreferenceRepository.h"

class KEPHostPreferences {
 public:
  /// The preference file: $KEPRSH_PREFERENCES when set, else
  /// $XDG_CONFIG_HOME/rshview/preferences.json, else $HOME/.config/rshview/preferences.json;
  /// empty when none of those variables is set.
  static std::string FilePath();
  /// Forgets every repository; the next request reads the file again (from FilePath as it is
  /// then). Pointers handed out before become invalid.
  static void Unload();
  /// Makes GetRepository answer null for `name` (or available again); survives Unload.
  static void SetUnavailableForTest(const KEPString& name, bool unavailable);
};
