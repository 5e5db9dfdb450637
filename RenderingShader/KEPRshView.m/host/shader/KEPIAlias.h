#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPIUnknown.h"
#include "KEPString.h"

/// The user-visible name of a shader node or a parameter.
class KEPIAlias : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIAlias)
  virtual HRESULT GetAlias(KEPUnicodeString& alias) = 0;
  virtual HRESULT SetAlias(const KEPUnicodeString& alias) = 0;
};

#pragma GCC visibility pop
