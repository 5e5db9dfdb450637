#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPIUnknown.h"

class KEPIRshShader;

/// Links a component (a shader delegate) to the shader node it stands for. A shader node may
/// carry a link too: it links the node to itself, for the node's life, and cannot be re-pointed.
class KEPIRshShaderLink : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIRshShaderLink)
  /// Holds `shader` (one reference) instead of the previous one; E_FAIL for a null shader.
  virtual HRESULT SetShader(KEPIRshShader* shader) = 0;
  /// The held shader with a reference for the caller; E_FAIL, `out` untouched, when none.
  virtual HRESULT GetShader(KEPIRshShader*& out) = 0;
};

#pragma GCC visibility pop
