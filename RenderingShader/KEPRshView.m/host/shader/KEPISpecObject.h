#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPBaseUnknown.h"

/// An element of the shader model that knows the element owning it: a parameter's father is
/// its shader node.
class KEPISpecObject : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPISpecObject)
  /// The father with a reference for the caller; E_FAIL and null when there is none.
  virtual HRESULT GetFather(KEPBaseUnknown*& father) = 0;
};

#pragma GCC visibility pop
