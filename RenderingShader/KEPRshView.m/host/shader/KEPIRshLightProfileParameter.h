#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPIUnknown.h"
#include "KEPString.h"

/// The value of a light-profile parameter ("KEPRmaLightProfile"): the path of the photometric
/// profile file (UTF-8), empty when no profile is set. Parameters of other types do not offer it.
class KEPIRshLightProfileParameter : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIRshLightProfileParameter)
  virtual HRESULT GetLightProfile(KEPString& path) = 0;
  /// Sets the profile file (empty: no profile), under the render lock, announced to the model's
  /// observers. E_FAIL, nothing written, when the parameter holds no light profile.
  virtual HRESULT SetLightProfile(const KEPString& path) = 0;
};

#pragma GCC visibility pop
