#include "KEPRshQuickReuse.h"

#include <unordered_set>

#include "KEPBaseUnknown.h"
#include "KEPIRshSubShaders.h"
#include "KEPRshShaderImmLayoutSource.h"
#include "KEPRshShaderTree.h"
#include "KEPTrace.h"

namespace {
constexpr int kMaxHoldingDepth = 64;
constexpr std::size_t kMaxHeldNodes = 100000;

void CollectHeld(KEPIRshShader* holder, int depth, std::unordered_set<KEPIRshShader*>& seen,
                 std::vector<KEP_var<KEPIRshShader>>& nodes) {
  const KEP_var<KEPIRshSubShaders> subShaders = KEPQueryVar<KEPIRshSubShaders>(holder);
  std::vector<KEP_var<KEPIRshShader>> held;
  if (!subShaders || FAILED(subShaders->GetSubShaders(held))) return;
  for (KEP_var<KEPIRshShader>& node : held) {
    if (nodes.size() >= kMaxHeldNodes) return;
    if (!node) {
      nodes.push_back(std::move(node));
      continue;
    }
    if (!seen.insert(node.Get()).second) continue;
    KEPIRshShader* walked = node.Get();
    nodes.push_back(std::move(node));
    if (depth + 1 < kMaxHoldingDepth) CollectHeld(walked, depth + 1, seen, nodes);
  }
}
}  // namespace

std::vector<KEP_var<KEPIRshShader>> KEPRshQuickReuse::HeldNodes(KEPIRshShader* root) {
  std::vector<KEP_var<KEPIRshShader>> nodes;
  if (!root) return nodes;
  std::unordered_set<KEPIRshShader*> seen{root};
  CollectHeld(root, 0, seen, nodes);
  return nodes;
}

bool KEPRshQuickReuse::TypeFits(const KEPString& parameterType, const KEPString& nodeType) {
  return nodeType == parameterType || parameterType.empty() ||
         (parameterType == "KEPRmaVector" && nodeType == "KEPRmaVoid");
}

KEP_var<KEPIRshShader> KEPRshQuickReuse::Find(const std::vector<KEP_var<KEPIRshShader>>& nodes,
                                              KEPIRshParameter* parameter,
                                              const KEPString& parameterType,
                                              KEPIRshShaderSupport* support) {
  for (const KEP_var<KEPIRshShader>& shader_node : nodes) {
    KEP_ASSERT_FATAL(static_cast<bool>(shader_node),
                     "( shader_node != NULL ) && \"Shader node is not a KEPIRshShader\"",
                     KEPRshShaderImmLayoutSource);
    const auto* shader_node_feature = dynamic_cast<const KEPBaseUnknown*>(shader_node.Get());
    KEP_ASSERT_FATAL(shader_node_feature != nullptr,
                     "( shader_node_feature != NULL_var ) && \"Shader Node is not a feature\"",
                     KEPRshShaderImmLayoutSource);
    if (!TypeFits(parameterType, KEPRshShaderTree::ConnectionType(shader_node.Get()))) continue;
    std::vector<KEP_var<KEPIRshParameter>> pointing;
    if (FAILED(shader_node->GetPointingComponents(pointing))) pointing.clear();
    int others = 0;
    for (const KEP_var<KEPIRshParameter>& pointed : pointing) {
      KEP_ASSERT_FATAL(static_cast<bool>(pointed),
                       "( pointed != NULL ) && \"Pointed Component is NULL\"",
                       KEPRshShaderImmLayoutSource);
      if (pointed.Get() != parameter) ++others;
    }
    if (others != 1) continue;
    // Without the document's own exclusion tests a node could be the parameter's own or close a
    // cycle: nothing is shared unasked then.
    bool excluded = true;
    if (!support || FAILED(support->IsConnectionExcluded(parameter, shader_node.Get(), excluded)) ||
        excluded)
      continue;
    return shader_node;
  }
  return {};
}
