// A material document: the shader support that owns every node, and which nodes are materials.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "KEPBaseUnknown.h"
#include "KEPHostRenderingMaterial.h"
#include "KEPHostShaderLibrary.h"
#include "KEPHostShaderNode.h"
#include "KEPIModelEvents.h"
#include "KEPIRshShaderSupport.h"

class KEPHostShaderDocument : public KEPBaseUnknown,
                              public KEPIRshShaderSupport,
                              public KEPIModelEvents {
  KEP_DECLARE_CLASS
 public:
  /// A new empty document over `library`, with one reference for the caller.
  static KEPHostShaderDocument* Create(std::shared_ptr<const KEPHostShaderLibrary> library);

  HRESULT GetShaders(std::vector<KEP_var<KEPIRshShader>>& shaders) override;
  HRESULT FindShader(const KEPString& id, KEPIRshShader*& shader) override;
  HRESULT CreateShader(const KEPString& typeName, const KEPString& id,
                       KEPIRshShader*& shader) override;
  HRESULT IsConnectionExcluded(KEPIRshParameter* parameter, KEPIRshShader* shader,
                               bool& excluded) override;
  // KEPIModelEvents: passed on to the observers of KEPRshModelEvents
  HRESULT SendBeginShaderModify(const KEPRbaBeginShaderModifyNotification& notification) override;
  HRESULT SendEndShaderModify(const KEPRbaEndShaderModifyNotification& notification) override;

  const std::shared_ptr<const KEPHostShaderLibrary>& Library() const { return library_; }
  const std::vector<KEP_var<KEPHostShaderNode>>& Nodes() const { return nodes_; }
  KEPHostShaderNode* FindNode(const std::string& id) const;
  /// The rendering material whose root node is `rootId`, made on first use, with a reference for
  /// the caller; null when no node has that identifier.
  KEPIRenderingMaterial* GetRenderingMaterial(const std::string& rootId);
  /// The material of `rootId` if one was made (borrowed), else null; lets tools and tests see
  /// what the material was handed.
  KEPHostRenderingMaterial* FindRenderingMaterial(const std::string& rootId) const;
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
  std::unordered_map<std::string, KEP_var<KEPHostRenderingMaterial>> materials_;  ///< by root id
};
