// KEPRshQuickReuse: the node that a press of an immersive connection button shares with its
// parameter without asking.
//
// Only nodes of the edited tree are looked at: the nodes its root holds, directly or through nodes
// it holds. A node of another material is offered by the connection dialog, where the user sees
// whose it is, never shared silently.
#pragma once

#include <vector>

#include "KEPIRshParameter.h"
#include "KEPIRshShader.h"
#include "KEPIRshShaderSupport.h"
#include "KEPString.h"
#include "KEP_var.h"

class KEPRshQuickReuse {
 public:
  /// The nodes `root` holds, directly or through the nodes it holds, depth first in the holders'
  /// order; each node once, `root` never. The walk is bounded in depth and in size, so a host
  /// whose holders form a cycle cannot hold the editor. A null entry a holder answers is kept (the
  /// caller asserts on it) and not walked.
  static std::vector<KEP_var<KEPIRshShader>> HeldNodes(KEPIRshShader* root);
  /// Whether a node whose connection type is `nodeType` may be shared with a parameter of
  /// `parameterType`: the types are equal, the parameter has no type, or a vector parameter meets
  /// a void node.
  static bool TypeFits(const KEPString& parameterType, const KEPString& nodeType);
  /// The first of `nodes` that fits `parameter` (of `parameterType`), that exactly one component
  /// other than `parameter` points at, and that `support` does not exclude (the parameter's own
  /// node, or a node from which the parameter is reached); null when there is none or no support.
  static KEP_var<KEPIRshShader> Find(const std::vector<KEP_var<KEPIRshShader>>& nodes,
                                     KEPIRshParameter* parameter, const KEPString& parameterType,
                                     KEPIRshShaderSupport* support);
};
