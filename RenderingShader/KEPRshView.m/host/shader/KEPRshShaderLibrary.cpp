#include "KEPRshShaderLibrary.h"

bool KEPRshShaderLibrary::AddType(KEPRshShaderTypeDefinition type) {
  if (index_.count(type.name)) return false;
  if (type.configurationId.empty()) type.configurationId = type.name;
  index_[type.name] = types_.size();
  types_.push_back(std::move(type));
  return true;
}

const KEPRshShaderTypeDefinition* KEPRshShaderLibrary::FindType(const std::string& name) const {
  auto it = index_.find(name);
  return it == index_.end() ? nullptr : &types_[it->second];
}

void KEPRshShaderLibrary::SetConnectable(const std::string& parameterType,
                                         std::vector<KEPRshConnectableEntry> list) {
  connectable_[parameterType] = std::move(list);
}

const std::vector<KEPRshConnectableEntry>& KEPRshShaderLibrary::Connectable(
    const std::string& parameterType) const {
  static const std::vector<KEPRshConnectableEntry> none;
  auto it = connectable_.find(parameterType);
  return it == connectable_.end() ? none : it->second;
}
