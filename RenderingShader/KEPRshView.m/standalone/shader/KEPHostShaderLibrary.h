// The shader library: node types with their ordered parameters, and what connects to what.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "KEPHostValue.h"

struct KEPHostParameterDefinition {
  std::string name;
  KEPHostValue defaultValue;                     ///< its type is the parameter's feature type
  std::map<std::string, std::string> resources;  ///< resource key -> text (UTF-8)
};

struct KEPHostShaderTypeDefinition {
  std::string name;
  std::string configurationId;  ///< defaults to the type name
  std::string label;            ///< display name offered for connection
  bool hasResources = false;    ///< nodes of the type offer KEPIRshShaderResources
  /// A texture shader: its nodes supply a texture image and its placement to the material they
  /// are connected to (late type "KEPRshTextureShader"), and answer the viewer's questions.
  bool isTexture = false;
  std::vector<KEPHostParameterDefinition> parameters;
};

struct KEPHostConnectableEntry {
  std::string type;
  std::string label;
};

class KEPHostShaderLibrary {
 public:
  /// Directory the library was loaded from (empty for one built in memory).
  std::string root;

  /// Adds a type; false when a type of that name exists already.
  bool AddType(KEPHostShaderTypeDefinition type);
  const KEPHostShaderTypeDefinition* FindType(const std::string& name) const;
  const std::vector<KEPHostShaderTypeDefinition>& Types() const { return types_; }

  /// Shader types that can be connected to a parameter of feature type `parameterType`.
  void SetConnectable(const std::string& parameterType, std::vector<KEPHostConnectableEntry> list);
  const std::vector<KEPHostConnectableEntry>& Connectable(const std::string& parameterType) const;

 private:
  std::vector<KEPHostShaderTypeDefinition> types_;
  std::map<std::string, std::size_t> index_;
  std::map<std::string, std::vector<KEPHostConnectableEntry>> connectable_;
};
