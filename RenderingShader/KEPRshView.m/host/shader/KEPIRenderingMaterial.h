#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPIUnknown.h"

/// The rendering material that owns a shader node (through its root node). A shader's integer
/// parameter named "type" selects the material's kind: editors hand every new value to the
/// material before they write the parameter, so that the material is ready for it. What the
/// material makes of the value is its own business.
class KEPIRenderingMaterial : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIRenderingMaterial)
  /// Takes the new value of the shader's "type" parameter.
  virtual HRESULT SetMaterialType(int type) = 0;
};

#pragma GCC visibility pop
