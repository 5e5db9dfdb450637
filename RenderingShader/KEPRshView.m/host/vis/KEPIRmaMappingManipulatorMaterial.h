#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPIUnknown.h"

class KEPTexturePixelImage;

/// The material side of texture placement: colours and coefficients as the mapping tools show
/// them. Every HRESULT operation leaves its outputs untouched when it fails.
class KEPIRmaMappingManipulatorMaterial : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIRmaMappingManipulatorMaterial)
  virtual HRESULT GetColor(double& r, double& g, double& b) = 0;
  virtual HRESULT GetTransparentColor(double& r, double& g, double& b) = 0;
  virtual HRESULT GetUseTranparentColor(unsigned char& use) = 0;
  virtual HRESULT GetLuminosity(double& luminosity) = 0;
  virtual HRESULT GetContrast(double& contrast) = 0;
  virtual HRESULT GetShininess(double& shininess) = 0;
  virtual HRESULT GetTransparency(double& transparency) = 0;
  virtual HRESULT GetTextureRepeat(unsigned char& repeat) = 0;
  /// The texture image with a reference for the caller, or null.
  virtual KEPTexturePixelImage* GetTexturePixelImage() = 0;
};

#pragma GCC visibility pop
