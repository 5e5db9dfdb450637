#include "RshviewValueLog.h"

#include "KEPHostShaderNode.h"
#include "KEPHostValueJson.h"

namespace {
using Json = nlohmann::ordered_json;

std::string Compact(const Json& value) {
  return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string Label(const Json& value) {
  return value.is_string() ? value.get<std::string>() : std::string("(none)");
}

// The node and name of a host parameter in a fresh {node, parameter, old, new}.
Json Change(KEPHostParameter* host) {
  Json change{{"node", nullptr}, {"parameter", nullptr}, {"old", nullptr}, {"new", nullptr}};
  if (!host) return change;
  KEPString name;
  host->GetName(name);
  change["node"] = host->Father() ? host->Father()->Id() : "";
  change["parameter"] = name;
  return change;
}

std::string Where(const Json& change) {
  return Label(change["node"]) + "." + Label(change["parameter"]) + ": ";
}
}  // namespace

RshviewValueLog::RshviewValueLog(const KEPHostShaderDocument& document, std::string baseDir)
    : document_(document), baseDir_(std::move(baseDir)) {
  for (const auto& node : document.Nodes()) Remember(*node);
}

void RshviewValueLog::Remember(const KEPHostShaderNode& node) {
  nodes_.insert(&node);
  for (const auto& parameter : node.Parameters()) {
    values_[parameter.Get()] = Text(*parameter);
    connections_[parameter.Get()] = ConnectedId(*parameter);
  }
}

Json RshviewValueLog::Write(KEPIRshParameter* parameter) {
  auto* host = dynamic_cast<KEPHostParameter*>(parameter);
  Json write = Change(host);
  if (!host) return write;
  std::string now = Text(*host);
  auto found = values_.find(host);
  if (found != values_.end()) write["old"] = Json::parse(found->second, nullptr, false);
  write["new"] = Json::parse(now, nullptr, false);
  values_[host] = std::move(now);
  return write;
}

Json RshviewValueLog::Connection(KEPIRshParameter* parameter) {
  auto* host = dynamic_cast<KEPHostParameter*>(parameter);
  Json connection = Change(host);
  if (!host) return connection;
  std::string now = ConnectedId(*host);
  std::string& before = connections_[host];
  if (!before.empty()) connection["old"] = before;
  if (!now.empty()) connection["new"] = now;
  before = std::move(now);
  return connection;
}

std::vector<Json> RshviewValueLog::NewNodes() {
  std::vector<Json> created;
  // A document never loses a node (it has no removal), so an unchanged count means no new node;
  // should nodes ever be removed, this shortcut must go and the sets be compared.
  if (nodes_.size() == document_.Nodes().size()) return created;
  for (const auto& node : document_.Nodes()) {
    if (nodes_.count(node.Get())) continue;
    KEPUnicodeString alias;
    node->GetAlias(alias);
    created.push_back({{"id", node->Id()}, {"type", node->TypeName()}, {"alias", alias.ToUTF8()}});
    Remember(*node);
  }
  return created;
}

std::string RshviewValueLog::WriteText(const Json& write) {
  return Where(write) + Compact(write["old"]) + " -> " + Compact(write["new"]);
}

std::string RshviewValueLog::ConnectionText(const Json& connection) {
  return Where(connection) + "connection " + Label(connection["old"]) + " -> " +
         Label(connection["new"]);
}

std::string RshviewValueLog::NodeText(const Json& node) {
  return "new node " + Label(node["id"]) + " (" + Label(node["type"]) + ")";
}

std::string RshviewValueLog::Text(const KEPHostParameter& parameter) const {
  return KEPHostValueJson::Write(parameter.Value(), baseDir_);
}

std::string RshviewValueLog::ConnectedId(KEPHostParameter& parameter) {
  KEPIRshShader* connected = nullptr;
  if (FAILED(parameter.GetConnectedShader(connected)) || !connected) return {};
  const auto hold = KEP_var<KEPIRshShader>::Adopt(connected);
  KEPString id;
  if (FAILED(connected->GetId(id))) return {};
  return id;
}
