#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <vector>

#include "KEPIUnknown.h"
#include "KEPListP.h"
#include "KEPString.h"
#include "KEP_var.h"

class KEPIRshParameter;

/// A shader node: a type, a configuration and an ordered list of parameters.
class KEPIRshShader : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIRshShader)
  /// Identifier of the node inside its document.
  virtual HRESULT GetId(KEPString& id) = 0;
  /// The node's type, fixed for the node's life.
  virtual HRESULT GetTypeName(KEPString& typeName) = 0;
  /// Identifier of the configuration in which the node's keys are looked up.
  virtual HRESULT GetConfigurationId(KEPString& configurationId) = 0;
  /// A new list of the parameters in node order, each element with a reference that the caller
  /// releases; the caller deletes the list.
  virtual HRESULT GetParameters(KEPListP<KEPIRshParameter>*& parameters) = 0;
  /// The first parameter named `name` with a reference for the caller, or E_FAIL.
  virtual HRESULT GetParameter(const KEPString& name, KEPIRshParameter*& parameter) = 0;
  /// The parameters (of any node) connected to this node, in connection order.
  virtual HRESULT GetPointingComponents(std::vector<KEP_var<KEPIRshParameter>>& pointing) = 0;
};

#pragma GCC visibility pop
