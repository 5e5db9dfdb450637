// A material document: the shader support that owns every node, and which nodes are materials.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "KEPBaseUnknown.h"
#include "KEPHostShaderLibrary.h"
#include "KEPHostShaderNode.h"
#include "KEPIRshShaderSupport.h"

class KEPHostShaderDocument : public KEPBaseUnknown, public KEPIRshShaderSupport {
  KEP_DECLARE_CLASS
 public:
  /// A new empty document over `library`, with one reference for the caller.
  static KEPHostShaderDocument* Create(std::shared_ptr<const KEPHostShaderLibrary> library);

  HRESULT GetShaders(std::vector<KEP_var<KEPIRshShader>>& shaders) override;
  HRESULT FindShader(const KEPString& id, KEPIRshShader*& shader) override;
  HRESULT CreateShader(const KEPString& typeName, const KEPString& id,
                       KEPIRshShader*& shader) override;

  const std::shared_ptr<const KEPHostShaderLibrary>& Library() const { return library_; }
  const std::vector<KEP_var<KEPHostShaderNode>>& Nodes() const { return nodes_; }
  KEPHostShaderNode* FindNode(const std::string& id) const;
  /// Identifiers of the root nodes (materials and lights), in document order.
  std::vector<std::string> materials;
  /// File the document was read from, if any.
  std::string path;

 private:
  KEPHostShaderDocument() = default;
  ~KEPHostShaderDocument() override;
  std::shared_ptr<const KEPHostShaderLibrary> library_;
  std::vector<KEP_var<KEPHostShaderNode>> nodes_;
  std::unordered_map<std::string, KEPHostShaderNode*> byId_;  ///< every node of nodes_ by id
};
