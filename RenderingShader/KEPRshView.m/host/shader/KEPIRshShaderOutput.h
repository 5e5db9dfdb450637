// KEPIRshShaderOutput: the kind of value a shader node yields to the parameter it is connected to.
// A node's type name says what the node is ("kep_phen_texture"); its output says what it gives
// ("KEPRmaColor"), and that is what decides whether the node can be shared with a parameter.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPIUnknown.h"
#include "KEPString.h"

class KEPIRshShaderOutput : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIRshShaderOutput)
  /// One of the feature type names ("KEPRmaColor", "KEPRmaVoid", ...), or "" for a node that fits
  /// any parameter. E_NOTIMPL when the node's type declares no output: it then has none to
  /// compare, and `featureType` is left untouched.
  virtual HRESULT GetOutputType(KEPString& featureType) = 0;
};

#pragma GCC visibility pop
