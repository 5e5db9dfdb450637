#include "KEPRshShaderDocument.h"

KEP_IMPLEMENT_CLASS(KEPRshShaderDocument, KEPBaseUnknown, "System")

KEPRshShaderDocument* KEPRshShaderDocument::Create(
    std::shared_ptr<const KEPRshShaderLibrary> library) {
  auto* document = new KEPRshShaderDocument();
  document->library_ = std::move(library);
  return document;
}

KEPRshShaderDocument::~KEPRshShaderDocument() {
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

HRESULT KEPRshShaderDocument::GetShaders(std::vector<KEP_var<KEPIRshShader>>& shaders) {
  shaders.clear();
  for (const auto& node : nodes_) shaders.emplace_back(static_cast<KEPIRshShader*>(node.Get()));
  return S_OK;
}

KEPRshShaderNode* KEPRshShaderDocument::FindNode(const std::string& id) const {
  for (const auto& node : nodes_)
    if (node->Id() == id) return node.Get();
  return nullptr;
}

HRESULT KEPRshShaderDocument::FindShader(const KEPString& id, KEPIRshShader*& shader) {
  KEPRshShaderNode* node = FindNode(id);
  if (!node) return E_FAIL;
  shader = node;
  shader->AddRef();
  return S_OK;
}

HRESULT KEPRshShaderDocument::CreateShader(const KEPString& typeName, const KEPString& id,
                                           KEPIRshShader*& shader) {
  if (!library_) return E_FAIL;
  const KEPRshShaderTypeDefinition* type = library_->FindType(typeName);
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
  auto node = KEP_var<KEPRshShaderNode>::Adopt(KEPRshShaderNode::Create(*type, newId, this));
  nodes_.push_back(node);
  shader = node.Get();
  shader->AddRef();
  return S_OK;
}
