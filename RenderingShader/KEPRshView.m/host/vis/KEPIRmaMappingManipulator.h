#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPIUnknown.h"

/// How a texture is placed on a surface: mapping type, ratio, rotation, scale, flips, offsets.
/// Every operation answers S_OK or a failure code; a failure leaves the output untouched.
class KEPIRmaMappingManipulator : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIRmaMappingManipulator)
  virtual HRESULT GetMappingType(short& type) = 0;
  virtual HRESULT GetRatio(double& ratio) = 0;
  virtual HRESULT GetRotation(double& angle) = 0;
  virtual HRESULT GetScale(double& scale) = 0;
  virtual HRESULT GetFlipU(unsigned char& flip) = 0;
  virtual HRESULT GetFlipV(unsigned char& flip) = 0;
  virtual HRESULT GetTranslationU(double& translation) = 0;
  virtual HRESULT GetTranslationV(double& translation) = 0;
  virtual HRESULT GetSize(double& size) = 0;
  virtual HRESULT SetSize(const double& size) = 0;
  virtual HRESULT SetTranslationU(double& translation) = 0;
  virtual HRESULT SetTranslationV(double& translation) = 0;
};

#pragma GCC visibility pop
