#include "KEPRshShaderNode.h"

#include <algorithm>

#include "KEPRshParameterServices.h"

KEP_IMPLEMENT_CLASS(KEPRshShaderNode, KEPBaseUnknown, "System")

KEPRshShaderNode* KEPRshShaderNode::Create(const KEPRshShaderTypeDefinition& type, std::string id,
                                           KEPBaseUnknown* father) {
  auto* node = new KEPRshShaderNode();
  node->SetLateType("KEPRshShader");
  node->type_ = type;
  if (node->type_.configurationId.empty()) node->type_.configurationId = type.name;
  node->id_ = std::move(id);
  node->father_ = father;
  for (const KEPRshParameterDefinition& definition : type.parameters)
    node->parameters_.push_back(KEP_var<KEPRshParameterFeature>::Adopt(
        KEPRshParameterFeature::Create(node, definition.name, definition.defaultValue)));
  return node;
}

KEPRshShaderNode::~KEPRshShaderNode() {
  // Parameters connected to this node lose their connection now.
  if (!pointing_.empty()) KEPRshParameterServices::NoteConnectionChange();
  for (auto& parameter : parameters_) {
    KEPIRshShader* none = nullptr;
    parameter->SetConnectedShader(none);
    parameter->DetachFather();
  }
}

HRESULT KEPRshShaderNode::GetId(KEPString& id) {
  id = id_;
  return S_OK;
}

HRESULT KEPRshShaderNode::GetTypeName(KEPString& typeName) {
  typeName = type_.name;
  return S_OK;
}

HRESULT KEPRshShaderNode::GetConfigurationId(KEPString& configurationId) {
  configurationId = type_.configurationId;
  return S_OK;
}

HRESULT KEPRshShaderNode::GetParameters(KEPListP<KEPIRshParameter>*& parameters) {
  auto* list = new KEPListP<KEPIRshParameter>();
  for (const auto& parameter : parameters_) {
    KEPIRshParameter* item = parameter.Get();
    item->AddRef();
    list->Append(item);
  }
  parameters = list;
  return S_OK;
}

HRESULT KEPRshShaderNode::GetParameter(const KEPString& name, KEPIRshParameter*& parameter) {
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

HRESULT KEPRshShaderNode::GetPointingComponents(std::vector<KEP_var<KEPIRshParameter>>& pointing) {
  pointing.clear();
  for (const KEPBaseUnknown_WR& ref : pointing_)
    if (auto* parameter = dynamic_cast<KEPRshParameterFeature*>(ref.Get()))
      pointing.emplace_back(static_cast<KEPIRshParameter*>(parameter));
  return S_OK;
}

void* KEPRshShaderNode::QueryOwnInterface(const KEPIID& iid) {
  if (iid == KEPIRshShaderResources::IID() && !type_.hasResources) return nullptr;
  return KEPBaseUnknown::QueryOwnInterface(iid);
}

HRESULT KEPRshShaderNode::GetResourceValue(const KEPString& parameterName, const KEPString& key,
                                           KEPUnicodeString& value) {
  for (const KEPRshParameterDefinition& definition : type_.parameters) {
    if (definition.name != parameterName) continue;
    auto it = definition.resources.find(key);
    if (it == definition.resources.end()) return E_FAIL;
    value = KEPUnicodeString::FromUTF8(it->second);
    return S_OK;
  }
  return E_FAIL;
}

HRESULT KEPRshShaderNode::GetFather(KEPBaseUnknown*& father) {
  father = father_;
  if (!father) return E_FAIL;
  father->AddRef();
  return S_OK;
}

HRESULT KEPRshShaderNode::GetAlias(KEPUnicodeString& alias) {
  alias = alias_.IsEmpty() ? KEPUnicodeString::FromUTF8(id_) : alias_;
  return S_OK;
}

HRESULT KEPRshShaderNode::SetAlias(const KEPUnicodeString& alias) {
  alias_ = alias;
  return S_OK;
}

void KEPRshShaderNode::AddParameter(KEPRshParameterFeature* parameter) {
  if (!parameter) return;
  parameters_.emplace_back(parameter);
}

void KEPRshShaderNode::RemoveParameters() {
  for (auto& parameter : parameters_) parameter->DetachFather();
  parameters_.clear();
}

void KEPRshShaderNode::SetResource(const std::string& parameterName, const std::string& key,
                                   const std::string& value) {
  for (KEPRshParameterDefinition& definition : type_.parameters) {
    if (definition.name == parameterName) {
      definition.resources[key] = value;
      return;
    }
  }
  KEPRshParameterDefinition definition;
  definition.name = parameterName;
  definition.resources[key] = value;
  type_.parameters.push_back(std::move(definition));
}

void KEPRshShaderNode::AddPointing(KEPRshParameterFeature* parameter) {
  pointing_.emplace_back(parameter);
}

void KEPRshShaderNode::RemovePointing(KEPRshParameterFeature* parameter) {
  std::erase_if(pointing_, [&](const KEPBaseUnknown_WR& ref) {
    return !ref.IsAlive() || ref.Get() == static_cast<KEPBaseUnknown*>(parameter);
  });
}
