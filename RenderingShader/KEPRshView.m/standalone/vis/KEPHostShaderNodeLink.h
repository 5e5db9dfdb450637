// A shader node linked to itself: lets a node connected to a parameter serve the viewer's
// visualisation interfaces like a delegate does, without a delegate component of its own.
#pragma once

#include "KEPBaseUnknown.h"
#include "KEPIRshShaderLink.h"

/// Extension of the late type "KEPRshShader" (the shader nodes). It holds no reference on its
/// node (it is part of it), so it cannot be re-pointed: SetShader answers E_FAIL.
class KEPHostShaderNodeLink : public KEPBaseUnknown, public KEPIRshShaderLink {
  KEP_DECLARE_CLASS
 public:
  static KEPBaseUnknown* Create();
  HRESULT SetShader(KEPIRshShader* shader) override;
  /// The node this link extends, with a reference for the caller; E_FAIL when detached.
  HRESULT GetShader(KEPIRshShader*& out) override;

 private:
  KEPHostShaderNodeLink() = default;
  /// The node seen as a shader, found once (the cast is costly and the node never changes).
  KEPBaseUnknown* castFrom_ = nullptr;
  KEPIRshShader* shader_ = nullptr;
};

/// Registers KEPIRshShaderLink on "KEPRshShader" with KEPHostShaderNodeLink, and declares the
/// texture shaders' late type a kind of it. Idempotent.
void KEPRegisterShaderNodeLink();
