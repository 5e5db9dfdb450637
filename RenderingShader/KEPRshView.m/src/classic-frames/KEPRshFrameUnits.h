// The unit table of the classic scalar and vector frames: from a parameter's unit name to the
// dialog toolkit's unit code and the factor applied to values going into the control.
//
// The four length units share the factor 0.001: a stored length is taken as millimetres and the
// control, given the unit's code, holds metres and shows them in that unit. Values coming out of a
// control with a length code are multiplied back by 1000 (KEPRshFrameUnitOutFactor).
#pragma once

#include "KEPString.h"

struct KEPRshFrameUnit {
  int code = 0;         ///< toolkit unit code; 0 sets none
  double factor = 1.0;  ///< applied to values going into the control
};

/// Which controls compare the lower-cased unit name against kelvin: the wheel and the spinner
/// match "k"; the slider compares against "K", which a lower-cased name never is, so a slider
/// never shows kelvins.
enum class KEPRshFrameControl { Slider, WheelOrSpinner };

/// The entry of `unitName` (compared in lower case) for `control`.
KEPRshFrameUnit KEPRshFrameUnitOf(const KEPString& unitName, KEPRshFrameControl control);

/// True for the toolkit's length codes (m, mm, cm, km), whose values leave the control in metres.
bool KEPRshIsLengthUnitCode(int code);

/// What a value read from a control with unit `code` is multiplied by to be stored.
double KEPRshFrameUnitOutFactor(int code);
