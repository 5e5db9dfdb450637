#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPIUnknown.h"
#include "KEPString.h"
#include "KEPVisTypes.h"

class KEPIPLMDmtDocument;

/// A material drawn with an external OpenGL (CgFX) program: the program file and the program's
/// parameters, addressed by the position that the Check... operations return.
///
/// Operations answering an int return -1 for "not offered"; IsModified... answer 2 for a
/// parameter that exists and 3 otherwise.
class KEPIOpenGLShaderMaterial : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIOpenGLShaderMaterial)

  // --- Program file
  /// Full path of the program file; empty when none was found. The viewer asks on every frame,
  /// so the answer is the material's own string, valid until the material's next call; copy it
  /// to keep it.
  virtual const KEPUnicodeString& GetExternalShader() = 0;
  virtual unsigned char IsStickerMode() = 0;
  virtual void SetStickerMode(unsigned char sticker) = 0;
  virtual KEPILinkableObject* GetExternalShaderLink() = 0;
  virtual void SetExternalShaderLink(KEPIPLMDmtDocument* document) = 0;
  virtual void ModifyExternalShaderLink(KEPIPLMDmtDocument* document) = 0;
  virtual KEPUnicodeString GetPrevShaderExtFile() = 0;
  virtual int GetExternalShaderStatus() = 0;
  virtual int GetExternalShaderType() = 0;
  virtual int GetShaderType() = 0;
  virtual void ResetParametersExternalShader(int mode) = 0;
  virtual void ResetParametersInternalShader() = 0;

  // --- Float parameters
  virtual int CheckShaderFloatParameter(KEPString& name) = 0;
  virtual int IsModifiedShaderFloatParameter(int position) = 0;
  virtual void GetShaderFloatParameter(int position, float& value) = 0;
  virtual int GetShaderFloatNbParameter() = 0;
  virtual KEPString GetShaderFloatParameterName(int position) = 0;
  virtual void SetShaderFloatParameter(int position, float value) = 0;
  virtual void ModifyShaderFloatParameter(int position, float value, int mode) = 0;

  // --- Colour parameters
  virtual int CheckShaderColorParameter(KEPString& name) = 0;
  virtual int IsModifiedShaderColorParameter(int position) = 0;
  virtual void GetShaderColorParameter(int position, float& r, float& g, float& b) = 0;
  virtual int GetShaderColorNbParameter() = 0;
  virtual KEPString GetShaderColorParameterName(int position) = 0;
  virtual void SetShaderColorParameter(int position, float r, float g, float b) = 0;
  virtual void ModifyShaderColorParameter(int position, float r, float g, float b, int mode) = 0;

  // --- String parameters
  virtual int CheckShaderStringParameter(KEPString& name) = 0;
  virtual int IsModifiedShaderStringParameter(int position) = 0;
  virtual void GetShaderStringParameter(int position, KEPUnicodeString& value) = 0;
  virtual int GetShaderStringNbParameter() = 0;
  virtual KEPString GetShaderStringParameterName(int position) = 0;
  virtual void SetShaderStringParameter(int position, KEPUnicodeString& value) = 0;
  virtual void ModifyShaderStringParameter(int position, KEPUnicodeString& value, int mode) = 0;

  // --- External images (texture parameters of the program)
  virtual int CheckExternalShaderImagesLink(KEPString& name) = 0;
  virtual int IsModifiedExternalShaderImageLink(int position) = 0;
  virtual void GetExternalShaderImageLink(int position, KEPIPLMDmtDocument*& document) = 0;
  virtual void GetExternalShaderImageLink(int position, KEPUnicodeString& path) = 0;
  virtual int GetNbExternalShaderImageParamName() = 0;
  virtual int GetNbExternalShaderImagesLink() = 0;
  virtual KEPString GetExternalShaderImagesLinkName(int position) = 0;
  virtual void SetExternalShaderImagesLinkName(int position, KEPUnicodeString& name) = 0;
  virtual void SetExternalShaderImageLink(int position, KEPIPLMDmtDocument* document) = 0;
  virtual HRESULT SetExternalShaderImageLink(int position, KEPUnicodeString& path) = 0;
  virtual void ModifyExternalShaderImageLink(int position, KEPIPLMDmtDocument* document,
                                             int mode) = 0;
  virtual void ModifyExternalShaderImageLink(int position, KEPUnicodeString& path, int mode) = 0;

  // --- Internal images
  virtual int CheckInternalShaderImagesLink(KEPString& name) = 0;
  virtual int IsModifiedInternalShaderImageLink(int position) = 0;
  virtual void GetInternalShaderImageLink(int position, KEPIPLMDmtDocument*& document) = 0;
  virtual void GetInternalShaderImageLink(int position, KEPUnicodeString& path) = 0;
  virtual int GetNbInternalShaderImageParamName() = 0;
  virtual int GetNbInternalShaderImagesLink() = 0;
  virtual KEPString GetInternalShaderImagesLinkName(int position) = 0;
  virtual void SetInternalShaderImagesLinkName(int position, KEPUnicodeString& name) = 0;
  virtual void SetInternalShaderImageLink(int position, KEPIPLMDmtDocument* document) = 0;
  virtual HRESULT SetInternalShaderImageLink(int position, KEPUnicodeString& path) = 0;
  virtual void ModifyInternalShaderImageLink(int position, KEPIPLMDmtDocument* document) = 0;
  virtual void ModifyInternalShaderImageLink(int position, KEPUnicodeString& path) = 0;

  // --- ISL program file
  virtual KEPUnicodeString GetShaderISLFile() = 0;
  virtual void SetShaderISLFile(KEPUnicodeString& path) = 0;
  virtual void ModifyShaderISLFile(KEPUnicodeString& path) = 0;
  virtual int IsModifiedShaderISLFile() = 0;
  virtual int IsResetParametersShaderISLFile() = 0;

  // --- Substance output maps
  virtual int UpdateSubstanceOutputMaps(const KEPString& output) = 0;
  virtual void GenerateSubstanceOutputMaps(unsigned char generate) = 0;
};

#pragma GCC visibility pop
