#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPIUnknown.h"
#include "KEPString.h"

/// Metadata that a shader type carries itself, by (parameter name, lower-case resource key).
class KEPIRshShaderResources : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIRshShaderResources)
  /// E_FAIL and `value` untouched when the type has no such resource.
  virtual HRESULT GetResourceValue(const KEPString& parameterName, const KEPString& key,
                                   KEPUnicodeString& value) = 0;
};

#pragma GCC visibility pop
