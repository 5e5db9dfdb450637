#include "KEPHostShaderLibrary.h"

bool KEPHostShaderLibrary::AddType(KEPHostShaderTypeDefinition type) {
  if (index_.count(type.name)) return false;
  if (type.configurationId.empty()) type.configurationId = type.name;
  index_[type.name] = types_.size();
  types_.push_back(std::move(type));
  return true;
}

const KEPHostShaderTypeDefinition* KEPHostShaderLibrary::FindType(const std::string& name) const {
  auto it = index_.find(name);
  return it == index_.end() ? nullptr : &types_[it->second];
}

void KEPHostShaderLibrary::SetConnectable(const std::string& parameterType,
                                          std::vector<KEPHostConnectableEntry> list) {
  connectable_[parameterType] = std::move(list);
}

const std::vector<KEPHostConnectableEntry>& KEPHostShaderLibrary::Connectable(
    const std::string& parameterType) const {
  static const std::vector<KEPHostConnectableEntry> none;
  auto it = connectable_.find(parameterType);
  return it == connectable_.end() ? none : it->second;
}
