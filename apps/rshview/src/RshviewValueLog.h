// The text form of every parameter value of a document, and the node connected to every
// parameter, kept to tell a change's old state from its new one: the model's change events say
// which parameter changed, not what it held before. Nodes created while the log runs (by the
// connection dialog) are taken in when first seen, so that their later writes read the same way.
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "KEPHostShaderDocument.h"

class RshviewValueLog {
 public:
  /// Remembers every parameter of `document`; values are written with paths relative to
  /// `baseDir` (the document's directory), as the document file holds them.
  RshviewValueLog(const KEPHostShaderDocument& document, std::string baseDir);

  /// The write of `parameter`: {node, parameter, old, new} (nulls for a parameter that is not the
  /// host's); the log keeps the new value.
  nlohmann::ordered_json Write(KEPIRshParameter* parameter);
  /// The connection change of `parameter`: {node, parameter, old, new}, old and new being the
  /// identifiers of the connected nodes, null for none; the log keeps the new one.
  nlohmann::ordered_json Connection(KEPIRshParameter* parameter);
  /// The nodes of the document that the log has not seen yet, in document order, as {id, type,
  /// alias}; the log takes them in.
  std::vector<nlohmann::ordered_json> NewNodes();

  /// "NODE.PARAMETER: OLD -> NEW" for a write, "NODE.PARAMETER: connection OLD -> NEW" for a
  /// connection ((none) for no node), "new node ID (TYPE)" for a created node.
  static std::string WriteText(const nlohmann::ordered_json& write);
  static std::string ConnectionText(const nlohmann::ordered_json& connection);
  static std::string NodeText(const nlohmann::ordered_json& node);

 private:
  void Remember(const KEPHostShaderNode& node);
  std::string Text(const KEPHostParameter& parameter) const;
  static std::string ConnectedId(KEPHostParameter& parameter);

  const KEPHostShaderDocument& document_;
  std::string baseDir_;
  std::set<const KEPHostShaderNode*> nodes_;
  std::map<const KEPHostParameter*, std::string> values_;
  std::map<const KEPHostParameter*, std::string> connections_;  ///< "" for none
};
