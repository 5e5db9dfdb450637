// The shader library: node types with their ordered parameters, and what connects to what.
#pragma once

#include <map>
#include <memory>
#include <optional>
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
  /// The feature type a node of this type yields when it is connected ("KEPRmaColor"), "" for a
  /// node that fits any parameter; none when the library does not say, and then nodes of the type
  /// are never offered for reuse.
  std::optional<std::string> output;
  std::vector<KEPHostParameterDefinition> parameters;
};

struct KEPHostConnectableEntry {
  std::string type;
  std::string label;
  int line = 0;  ///< where library.json lists it (0 for a library built in memory)
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
