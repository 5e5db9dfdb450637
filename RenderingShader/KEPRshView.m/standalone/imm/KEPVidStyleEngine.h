// The style engine: builds the parts of a styled control from a style sheet entry and binds them
// to the control's introspected properties.
#pragma once

#include <string>

#include "KEPTypes.h"
#include "KEPVidCtl.h"

class KEPVidStyleEngine {
 public:
  /// Builds the parts of class `styleClass` of style `styleName` in sheet `sheet` (a file name in
  /// the resources directory, or an absolute path) as children of `control`, replacing the parts
  /// built for it before. Failures are traced on channel "KEPVidStyle" and build nothing.
  static HRESULT Apply(KEPVidCtl& control, const std::string& sheet, const std::string& styleName,
                       const std::string& styleClass);
};
