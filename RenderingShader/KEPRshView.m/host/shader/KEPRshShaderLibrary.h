// The shader library: node types with their ordered parameters, and what connects to what.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "KEPRshValue.h"

struct KEPRshParameterDefinition {
  std::string name;
  KEPRshValue defaultValue;  ///< its type is the parameter's feature type
  std::map<std::string, std::string> resources;  ///< resource key -> text (UTF-8)
};

struct KEPRshShaderTypeDefinition {
  std::string name;
  std::string configurationId;  ///< defaults to the type name
  std::string label;            ///< display name offered for connection
  bool hasResources = false;    ///< nodes of the type offer KEPIRshShaderResources
  std::vector<KEPRshParameterDefinition> parameters;
};

struct KEPRshConnectableEntry {
  std::string type;
  std::string label;
};

class KEPRshShaderLibrary {
 public:
  /// Directory the library was loaded from (empty for one built in memory).
  std::string root;

  /// Adds a type; false when a type of that name exists already.
  bool AddType(KEPRshShaderTypeDefinition type);
  const KEPRshShaderTypeDefinition* FindType(const std::string& name) const;
  const std::vector<KEPRshShaderTypeDefinition>& Types() const { return types_; }

  /// Shader types that can be connected to a parameter of feature type `parameterType`.
  void SetConnectable(const std::string& parameterType, std::vector<KEPRshConnectableEntry> list);
  const std::vector<KEPRshConnectableEntry>& Connectable(const std::string& parameterType) const;

 private:
  std::vector<KEPRshShaderTypeDefinition> types_;
  std::map<std::string, std::size_t> index_;
  std::map<std::string, std::vector<KEPRshConnectableEntry>> connectable_;
};
