#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPIUnknown.h"
#include "KEPVisTypes.h"

class KEPTexturePixelImage;

/// What the viewer asks of a material to light and texture a shaded object.
///
/// Getters with a void result leave their outputs as the caller passed them when the material
/// has no answer of its own.
class KEPIHardwareMaterial : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIHardwareMaterial)

  // --- Lighting
  virtual void GetAmbient(float& coefficient, float* const color) = 0;
  virtual void GetDiffuse(float& coefficient, float* const color) = 0;
  virtual void GetSpecular(float& coefficient, float* const color, float& glossiness) = 0;
  virtual float GetTransparencyCoef() = 0;
  virtual float GetReflectivityCoef() = 0;
  /// The environment map, or null.
  virtual KEPRmaEnvironmentPixelImage* GetEnvironmentMap() = 0;
  virtual void GetNonLinearReflection(float& a, float& b) = 0;
  virtual int GetReflectionType() = 0;

  // --- Texture
  /// The texture image with a reference for the caller, or null.
  virtual KEPTexturePixelImage* GetTextureImage() = 0;
  virtual void GetTextureWrapping(int& u, int& v) = 0;
  virtual void GetTextureFlip(unsigned char& u, unsigned char& v) = 0;
  virtual void GetTexturePosition(float& u, float& v) = 0;
  virtual void GetTextureSize(float& u, float& v) = 0;
  virtual float GetTextureAngle() = 0;
  virtual int UseTextureRatio() = 0;
  virtual HRESULT GetMatrix(KEPMathTransformation& matrix) = 0;
  virtual HRESULT SetMatrix(const KEPMathTransformation& matrix) = 0;
};

#pragma GCC visibility pop
