#include "KEPHostShaderNode.h"

#include <algorithm>
#include <unordered_set>

#include "KEPHostShaderDocument.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshLateTypes.h"
#include "KEPRshParameterServices.h"

KEP_IMPLEMENT_CLASS(KEPHostShaderNode, KEPBaseUnknown, "System")

KEPHostShaderNode* KEPHostShaderNode::Create(const KEPHostShaderTypeDefinition& type,
                                             std::string id, KEPBaseUnknown* father) {
  auto* node = new KEPHostShaderNode();
  node->SetLateType(type.isTexture ? KEPRshTextureShaderLateType : KEPRshShaderLateType);
  node->type_ = type;
  if (node->type_.configurationId.empty()) node->type_.configurationId = type.name;
  node->id_ = std::move(id);
  node->father_ = father;
  for (const KEPHostParameterDefinition& definition : type.parameters)
    node->parameters_.push_back(KEP_var<KEPHostParameter>::Adopt(
        KEPHostParameter::Create(node, definition.name, definition.defaultValue)));
  return node;
}

KEPHostShaderNode::~KEPHostShaderNode() {
  // A renderer may be following a connection to this node: it holds the lock for its frame.
  KEPRdgRenderLock lock;
  // Parameters connected to this node lose their connection now.
  if (!pointing_.empty()) KEPRshParameterServices::NoteConnectionChange();
  for (auto& parameter : parameters_) parameter->DetachFather();
}

HRESULT KEPHostShaderNode::GetId(KEPString& id) {
  id = id_;
  return S_OK;
}

HRESULT KEPHostShaderNode::GetTypeName(KEPString& typeName) {
  typeName = type_.name;
  return S_OK;
}

HRESULT KEPHostShaderNode::GetOutputType(KEPString& featureType) {
  if (!type_.output) return E_NOTIMPL;
  featureType = *type_.output;
  return S_OK;
}

HRESULT KEPHostShaderNode::GetConfigurationId(KEPString& configurationId) {
  configurationId = type_.configurationId;
  return S_OK;
}

HRESULT KEPHostShaderNode::GetConfiguration(KEPString& configurationId) {
  return GetConfigurationId(configurationId);
}

HRESULT KEPHostShaderNode::GetParameters(KEPListP<KEPIRshParameter>*& parameters) {
  auto* list = new KEPListP<KEPIRshParameter>();
  for (const auto& parameter : parameters_) {
    KEPIRshParameter* item = parameter.Get();
    item->AddRef();
    list->Append(item);
  }
  parameters = list;
  return S_OK;
}

HRESULT KEPHostShaderNode::GetParameter(const KEPString& name, KEPIRshParameter*& parameter) {
  for (const auto& p : parameters_) {
    KEPString pname;
    p->GetName(pname);
    if (pname == name) {
      parameter = p.Get();
      parameter->AddRef();
      return S_OK;
    }
  }
  return E_FAIL;
}

HRESULT KEPHostShaderNode::GetPointingComponents(std::vector<KEP_var<KEPIRshParameter>>& pointing) {
  pointing.clear();
  for (const KEPBaseUnknown_WR& ref : pointing_)
    if (auto* parameter = dynamic_cast<KEPHostParameter*>(ref.Get()))
      pointing.emplace_back(static_cast<KEPIRshParameter*>(parameter));
  return S_OK;
}

void* KEPHostShaderNode::QueryOwnInterface(const KEPIID& iid) {
  if (iid == KEPIRshShaderResources::IID() && !type_.hasResources) return nullptr;
  return KEPBaseUnknown::QueryOwnInterface(iid);
}

HRESULT KEPHostShaderNode::GetResourceValue(const KEPString& parameterName, const KEPString& key,
                                            KEPUnicodeString& value) {
  for (const KEPHostParameterDefinition& definition : type_.parameters) {
    if (definition.name != parameterName) continue;
    auto it = definition.resources.find(key);
    if (it == definition.resources.end()) return E_FAIL;
    value = KEPUnicodeString::FromUTF8(it->second);
    return S_OK;
  }
  return E_FAIL;
}

HRESULT KEPHostShaderNode::GetFather(KEPBaseUnknown*& father) {
  father = father_;
  if (!father) return E_FAIL;
  father->AddRef();
  return S_OK;
}

HRESULT KEPHostShaderNode::GetAlias(KEPUnicodeString& alias) {
  alias = alias_.IsEmpty() ? KEPUnicodeString::FromUTF8(id_) : alias_;
  return S_OK;
}

HRESULT KEPHostShaderNode::SetAlias(const KEPUnicodeString& alias) {
  alias_ = alias;
  return S_OK;
}

void KEPHostShaderNode::AddParameter(KEPHostParameter* parameter) {
  if (!parameter) return;
  parameters_.emplace_back(parameter);
}

void KEPHostShaderNode::RemoveParameters() {
  for (auto& parameter : parameters_) parameter->DetachFather();
  parameters_.clear();
}

void KEPHostShaderNode::SetResource(const std::string& parameterName, const std::string& key,
                                    const std::string& value) {
  for (KEPHostParameterDefinition& definition : type_.parameters) {
    if (definition.name == parameterName) {
      definition.resources[key] = value;
      return;
    }
  }
  KEPHostParameterDefinition definition;
  definition.name = parameterName;
  definition.resources[key] = value;
  type_.parameters.push_back(std::move(definition));
}

void KEPHostShaderNode::AddPointing(KEPHostParameter* parameter) {
  pointing_.emplace_back(parameter);
}

void KEPHostShaderNode::RemovePointing(KEPHostParameter* parameter) {
  std::erase_if(pointing_, [&](const KEPBaseUnknown_WR& ref) {
    return !ref.IsAlive() || ref.Get() == static_cast<KEPBaseUnknown*>(parameter);
  });
}

bool KEPHostShaderNode::Reaches(const KEPHostParameter* target) const {
  std::unordered_set<const KEPHostShaderNode*> walked;
  std::vector<const KEPHostShaderNode*> pending{this};
  while (!pending.empty()) {
    const KEPHostShaderNode* node = pending.back();
    pending.pop_back();
    if (!walked.insert(node).second) continue;
    for (const auto& parameter : node->parameters_) {
      if (parameter.Get() == target) return true;
      KEP_var<KEPIRshShader> connected;
      if (FAILED(parameter->GetConnectedShader(*connected.Out())) || !connected) continue;
      if (const auto* next = dynamic_cast<const KEPHostShaderNode*>(connected.Get()))
        pending.push_back(next);
    }
  }
  return false;
}

namespace {
/// The document that owns `node`: the first father up the chain that is a document.
KEPHostShaderDocument* OwningDocument(const KEPHostShaderNode* node) {
  // Fathers never form a cycle (AddSubShader refuses one), but the walk is bounded all the same.
  KEPBaseUnknown* father = node->Father();
  for (int depth = 0; father && depth < 4096; ++depth) {
    if (auto* document = dynamic_cast<KEPHostShaderDocument*>(father)) return document;
    const auto* holder = dynamic_cast<KEPHostShaderNode*>(father);
    if (!holder) return nullptr;
    father = holder->Father();
  }
  return nullptr;
}
}  // namespace

HRESULT KEPHostShaderNode::GetSubShaders(std::vector<KEP_var<KEPIRshShader>>& shaders) {
  shaders.clear();
  const KEPHostShaderDocument* document = OwningDocument(this);
  if (!document) return S_OK;
  for (const auto& node : document->Nodes())
    if (node->Father() == static_cast<KEPBaseUnknown*>(this))
      shaders.emplace_back(static_cast<KEPIRshShader*>(node.Get()));
  return S_OK;
}

HRESULT KEPHostShaderNode::AddSubShader(KEPIRshShader* shader) {
  auto* node = dynamic_cast<KEPHostShaderNode*>(shader);
  if (!node) return E_INVALIDARG;
  KEPHostShaderDocument* document = OwningDocument(this);
  if (!document || OwningDocument(node) != document) return E_INVALIDARG;
  // A node that holds this one (or this one itself) would hold itself.
  for (const KEPHostShaderNode* up = this; up; up = dynamic_cast<KEPHostShaderNode*>(up->Father()))
    if (up == node) return E_FAIL;
  node->SetFather(this);
  return S_OK;
}
