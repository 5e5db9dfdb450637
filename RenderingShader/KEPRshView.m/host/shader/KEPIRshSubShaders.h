// KEPIRshSubShaders: the sub-shaders a shader node holds. A material's root node holds the nodes
// made for it, and a document saves them under that node; a node's father (KEPISpecObject) is
// the node that holds it.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <vector>

#include "KEPIUnknown.h"
#include "KEP_var.h"

class KEPIRshShader;

class KEPIRshSubShaders : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIRshSubShaders)
  /// The nodes this node holds directly, in document order.
  virtual HRESULT GetSubShaders(std::vector<KEP_var<KEPIRshShader>>& shaders) = 0;
  /// Makes `shader` (a node of the same document) a sub-shader of this node. E_INVALIDARG for a
  /// null or foreign node, E_FAIL for this node itself or a node that holds this one.
  virtual HRESULT AddSubShader(KEPIRshShader* shader) = 0;
};

#pragma GCC visibility pop
