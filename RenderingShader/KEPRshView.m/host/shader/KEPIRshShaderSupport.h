#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <vector>

#include "KEPIUnknown.h"
#include "KEPString.h"
#include "KEP_var.h"

class KEPIRshParameter;
class KEPIRshShader;

/// The owner of a document's shader nodes.
class KEPIRshShaderSupport : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIRshShaderSupport)
  /// Every node of the document, in creation order.
  virtual HRESULT GetShaders(std::vector<KEP_var<KEPIRshShader>>& shaders) = 0;
  /// The node with document identifier `id` (with a reference), or E_FAIL.
  virtual HRESULT FindShader(const KEPString& id, KEPIRshShader*& shader) = 0;
  /// Creates a node of library type `typeName` with its default values; `id` empty chooses a
  /// fresh identifier. E_FAIL for an unknown type or a taken identifier.
  virtual HRESULT CreateShader(const KEPString& typeName, const KEPString& id,
                               KEPIRshShader*& shader) = 0;
  /// Whether connecting `shader` to `parameter` is refused: the shader owns the parameter, or the
  /// parameter is reachable from the shader through connections (the connection would make a
  /// cycle). E_INVALIDARG for a null argument.
  virtual HRESULT IsConnectionExcluded(KEPIRshParameter* parameter, KEPIRshShader* shader,
                                       bool& excluded) = 0;
};

#pragma GCC visibility pop
