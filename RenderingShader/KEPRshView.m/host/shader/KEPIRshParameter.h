#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <vector>

#include "KEPIUnknown.h"
#include "KEPString.h"

class KEPIRshShader;
class KEPIPLMDmtDocument;

/// A typed parameter of a shader node. Its type name is one of "KEPRmaBoolean",
/// "KEPRmaInteger", "KEPRmaScalar", "KEPRmaColor", "KEPRmaVector", "KEPRmaTexture",
/// "KEPRmaLightProfile", "KEPRmaVoid".
///
/// Value getters answer E_FAIL and leave their outputs untouched when the parameter does not
/// hold that kind of value; boolean, integer and scalar values read and write as one another.
///
/// Threads: values are written on the host's user-interface thread only, each write inside a
/// KEPRdgRenderLock (setters take it themselves). Getters take no lock: a reader on another thread
/// (a renderer) holds the render lock for as long as it reads, typically a whole frame; a reader
/// on the user-interface thread needs none, since no other thread writes.
///
/// Connections: an implementation calls KEPRshParameterServices::NoteConnectionChange() whenever
/// what GetConnectedShader answers changes (a connection made or removed, or the connected node
/// gone). Clients keep what they derived from connections for as long as
/// KEPRshParameterServices::GetConnectionGeneration() is unchanged, so an implementation that
/// does not tell leaves them with stale answers.
class KEPIRshParameter : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIRshParameter)
  virtual HRESULT GetName(KEPString& name) = 0;
  virtual HRESULT GetTypeName(KEPString& typeName) = 0;

  virtual HRESULT GetBooleanValue(unsigned char& value) = 0;
  virtual HRESULT SetBooleanValue(unsigned char value) = 0;
  virtual HRESULT GetIntegerValue(int& value) = 0;
  virtual HRESULT SetIntegerValue(int value) = 0;
  virtual HRESULT GetScalarValue(float& value) = 0;
  virtual HRESULT SetScalarValue(float value) = 0;
  /// Colour as red, green, blue and, when `alpha` is given, alpha.
  virtual HRESULT GetColorValue(float& r, float& g, float& b, float* alpha = nullptr) = 0;
  virtual HRESULT SetColorValue(float r, float g, float b, float alpha = 1.0f) = 0;
  /// Vector of `Dimension()` components (2 to 4); unused components read 0.
  virtual HRESULT GetVectorValue(float (&xyzw)[4]) = 0;
  virtual HRESULT SetVectorValue(const float (&xyzw)[4]) = 0;
  virtual int GetVectorDimension() = 0;
  /// The texture document with a reference for the caller; S_OK with null when none is set.
  virtual HRESULT GetTextureValue(KEPIPLMDmtDocument*& document) = 0;
  virtual HRESULT SetTextureValue(KEPIPLMDmtDocument* document) = 0;

  /// The shader node connected to this parameter with a reference for the caller; E_FAIL and
  /// null when nothing is connected.
  virtual HRESULT GetConnectedShader(KEPIRshShader*& shader) = 0;
  /// Connects `shader` (null disconnects). E_FAIL, with nothing changed, when the connection
  /// would make a cycle (this parameter is reachable from `shader`).
  virtual HRESULT SetConnectedShader(KEPIRshShader* shader) = 0;
};

#pragma GCC visibility pop
