// The modes of the colour widgets' picker, chosen by the recorder's software level
// "RNDRSHColorParameterColorPicker" (built-in level 1). The level is read once per process, on
// the first widget built (a capturing recorder records it then), and kept until the host resets
// its process state: a reset host reads it again, as a new process would.
#pragma once

#include "KEPString.h"

class KEPRshColorPickerModes {
 public:
  /// The "|"-separated mode list of the level in force: at level 1 the wheel, the S square, the
  /// sliders with spin boxes, the simple palette and the history; at any other level the H, S
  /// and V squares, the circle, the sliders with spin boxes and the history.
  static const KEPString& ModeList();
  /// The mode list of `level`, without reading the recorder.
  static const KEPString& ModeListOfLevel(int level);
  /// Forgets the level read (the host's process reset).
  static void ForgetProcessCache();
};
