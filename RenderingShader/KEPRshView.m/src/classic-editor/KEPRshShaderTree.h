// KEPRshShaderTree: what the editors need to know of the tree of shader nodes around a parameter:
// the node that owns it, the shader support (the document) above it, the root shader of the
// material, whether a parameter can be reached from a node through connections, and the type a
// node is matched by when it is offered for reuse.
#pragma once

#include "KEPIRshParameter.h"
#include "KEPIRshShader.h"
#include "KEPIRshShaderSupport.h"
#include "KEP_var.h"

class KEPRshShaderTree {
 public:
  /// The node that owns `parameter` (its father), or null.
  static KEP_var<KEPIRshShader> OwningShader(KEPIRshParameter* parameter);
  /// The first object up the father chain of `from` (itself included) that owns shader nodes, or
  /// null. The climb is bounded, so fathers that form a cycle cannot hold the editor.
  static KEP_var<KEPIRshShaderSupport> FindShaderSupport(KEPIUnknown* from);
  /// The material's root node: the last shader up the father chain of `shader` (itself when its
  /// father is no shader).
  static KEP_var<KEPIRshShader> RootShader(KEPIRshShader* shader);
  /// True when `target` is a parameter of `from` or of a node reached from it through
  /// connections, depth first. Each node is walked once and the walk is bounded, so a model that
  /// already holds a cycle, or shares nodes, cannot make it hang.
  static bool Reaches(KEPIRshShader* from, KEPIRshParameter* target);
  /// The type that decides which parameters `node` may be connected to: the feature type of its
  /// output when the node answers one (KEPIRshShaderOutput, possibly ""), else its type name, so
  /// that a host without outputs keeps comparing type names.
  static KEPString ConnectionType(KEPIRshShader* node);
  /// What a person knows `object` by: its alias when it has one, else `fallback`.
  static KEPUnicodeString Alias(KEPIUnknown* object, const KEPUnicodeString& fallback = {});
};
