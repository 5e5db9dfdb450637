#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPIUnknown.h"

class KEPIRshShader;

/// What a parameter tells of its place in the model beyond KEPIRshParameter.
class KEPIRshParameterPrivate : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIRshParameterPrivate)
  /// The shader node that owns the parameter, with a reference for the caller; E_FAIL and null
  /// when the parameter belongs to none.
  virtual HRESULT GetParentShader(KEPIRshShader*& shader) = 0;
};

#pragma GCC visibility pop
