#include "KEPRshColorPickerModes.h"

#include <optional>

#include "KEPProcessReset.h"
#include "KEPRecord.h"

namespace {

/// The level read; none before the first read and after a process reset.
std::optional<int> gLevel;

}  // namespace

const KEPString& KEPRshColorPickerModes::ModeListOfLevel(int level) {
  static const KEPString kFirstLevel =
      "ColorWheel|ColorSquareS|ColorSlidersAndSpinBoxes|ColorPaletteSimpleColors|ColorHistory";
  static const KEPString kOtherLevels =
      "ColorSquareH|ColorSquareS|ColorSquareV|ColorCircle|ColorSlidersAndSpinBoxes|ColorHistory";
  return level == 1 ? kFirstLevel : kOtherLevels;
}

const KEPString& KEPRshColorPickerModes::ModeList() {
  if (!gLevel) {
    // Registering is idempotent: the hook is there for every reset after the first read.
    KEPRegisterProcessResetHook(&KEPRshColorPickerModes::ForgetProcessCache);
    gLevel = KEPRecord::GetSoftwareLevel("RNDRSHColorParameterColorPicker");
  }
  return ModeListOfLevel(*gLevel);
}

void KEPRshColorPickerModes::ForgetProcessCache() {
  gLevel.reset();
}
