#include "KEPHostShaderDocument.h"

KEP_IMPLEMENT_CLASS(KEPHostShaderDocument, KEPBaseUnknown, "System")

KEPHostShaderDocument* KEPHostShaderDocument::Create(
    std::shared_ptr<const KEPHostShaderLibrary> library) {
  auto* document = new KEPHostShaderDocument();
  document->library_ = std::move(library);
  return document;
}

KEPHostShaderDocument::~KEPHostShaderDocument() {
  // Closing the document deletes its components: parameters move to the deleted state first, so
  // that their behaviours give back what they hold (a behaviour may hold its node's resources).
  for (auto& node : nodes_) {
    for (const auto& parameter : node->Parameters())
      if (parameter->GetComponentState() < KEPComponentState_Deleted)
        parameter->ChangeComponentState(parameter->GetComponentState(), KEPComponentState_Deleted,
                                        nullptr);
    node->DetachFather();
  }
}

HRESULT KEPHostShaderDocument::GetShaders(std::vector<KEP_var<KEPIRshShader>>& shaders) {
  shaders.clear();
  for (const auto& node : nodes_) shaders.emplace_back(static_cast<KEPIRshShader*>(node.Get()));
  return S_OK;
}

KEPHostShaderNode* KEPHostShaderDocument::FindNode(const std::string& id) const {
  const auto it = byId_.find(id);
  return it == byId_.end() ? nullptr : it->second;
}

KEPIRenderingMaterial* KEPHostShaderDocument::GetRenderingMaterial(const std::string& rootId) {
  if (!FindNode(rootId)) return nullptr;
  auto& material = materials_[rootId];
  if (!material)
    material = KEP_var<KEPHostRenderingMaterial>::Adopt(new KEPHostRenderingMaterial(rootId));
  KEPIRenderingMaterial* answer = material.Get();
  answer->AddRef();
  return answer;
}

KEPHostRenderingMaterial* KEPHostShaderDocument::FindRenderingMaterial(
    const std::string& rootId) const {
  const auto it = materials_.find(rootId);
  return it == materials_.end() ? nullptr : it->second.Get();
}

HRESULT KEPHostShaderDocument::FindShader(const KEPString& id, KEPIRshShader*& shader) {
  KEPHostShaderNode* node = FindNode(id);
  if (!node) return E_FAIL;
  shader = node;
  shader->AddRef();
  return S_OK;
}

HRESULT KEPHostShaderDocument::CreateShader(const KEPString& typeName, const KEPString& id,
                                            KEPIRshShader*& shader) {
  if (!library_) return E_FAIL;
  const KEPHostShaderTypeDefinition* type = library_->FindType(typeName);
  if (!type) return E_FAIL;
  std::string newId = id;
  if (newId.empty()) {
    for (int n = 1;; ++n) {
      newId = typeName + "." + std::to_string(n);
      if (!FindNode(newId)) break;
    }
  } else if (FindNode(newId)) {
    return E_FAIL;
  }
  auto node = KEP_var<KEPHostShaderNode>::Adopt(KEPHostShaderNode::Create(*type, newId, this));
  nodes_.push_back(node);
  byId_.emplace(newId, node.Get());
  shader = node.Get();
  shader->AddRef();
  return S_OK;
}

HRESULT KEPHostShaderDocument::IsConnectionExcluded(KEPIRshParameter* parameter,
                                                    KEPIRshShader* shader, bool& excluded) {
  if (!parameter || !shader) return E_INVALIDARG;
  const auto* target = dynamic_cast<const KEPHostParameter*>(parameter);
  const auto* node = dynamic_cast<const KEPHostShaderNode*>(shader);
  // Components of another model are none of this document's: nothing can be said of them.
  if (!target || !node) return E_INVALIDARG;
  excluded = node == target->Father() || node->Reaches(target);
  return S_OK;
}

HRESULT KEPHostShaderDocument::SendBeginShaderModify(
    const KEPRbaBeginShaderModifyNotification& notification) {
  KEPRshModelEvents::SendBegin(notification);
  return S_OK;
}

HRESULT KEPHostShaderDocument::SendEndShaderModify(
    const KEPRbaEndShaderModifyNotification& notification) {
  KEPRshModelEvents::SendEnd(notification);
  return S_OK;
}
