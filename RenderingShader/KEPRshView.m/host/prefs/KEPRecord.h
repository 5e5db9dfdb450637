// The capture/replay recorder's software levels.
//
// A software level selects between the behaviours of one setting (for example whether the editor
// sorts parameters inside a group). Each named setting has a built-in level. While the recorder
// captures a session it writes every level asked for into the record file; while it replays a
// session it answers the levels read from the record file, and 0 for a level the record lacks,
// so a replay behaves as the session it replays.
//
// The recorder starts in the mode given by the environment on first use:
//   KEPRSH_RECORD_MODE = capture | replay   and   KEPRSH_RECORD = path of the record file.
// Record file (JSON): { "softwareLevels": { "<setting>": <level>, ... } }. A setting name that
// is not valid UTF-8 is kept with U+FFFD in place of its bad bytes, when capturing and replaying
// alike.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <map>
#include <string>

#include "KEPString.h"
#include "KEPTypes.h"

enum class KEPRecordMode { Off, Capture, Replay };

class KEPRecord {
 public:
  /// The level in force for setting `name`: the built-in level when off or capturing (and, when
  /// capturing, recorded under `name`), the recorded level when replaying (0 when not recorded).
  static int GetSoftwareLevel(const KEPString& name);
  /// The host's built-in level of `name`; 1 for every setting the host knows nothing special of.
  static int GetBuiltInLevel(const KEPString& name);

  static KEPRecordMode GetMode();
};

#pragma GCC visibility pop
