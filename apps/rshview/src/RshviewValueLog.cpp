#include "RshviewValueLog.h"

#include "KEPHostShaderNode.h"
#include "KEPHostValueJson.h"

RshviewValueLog::RshviewValueLog(const KEPHostShaderDocument& document, std::string baseDir)
    : baseDir_(std::move(baseDir)) {
  for (const auto& node : document.Nodes())
    for (const auto& parameter : node->Parameters()) values_[parameter.Get()] = Text(*parameter);
}

nlohmann::ordered_json RshviewValueLog::Write(KEPIRshParameter* parameter) {
  using Json = nlohmann::ordered_json;
  auto* host = dynamic_cast<KEPHostParameter*>(parameter);
  Json write{{"node", nullptr}, {"parameter", nullptr}, {"old", nullptr}, {"new", nullptr}};
  if (!host) return write;
  KEPString name;
  host->GetName(name);
  write["node"] = host->Father() ? host->Father()->Id() : "";
  write["parameter"] = name;
  std::string now = Text(*host);
  auto found = values_.find(host);
  if (found != values_.end()) write["old"] = Json::parse(found->second, nullptr, false);
  write["new"] = Json::parse(now, nullptr, false);
  values_[host] = std::move(now);
  return write;
}

std::string RshviewValueLog::Text(const KEPHostParameter& parameter) const {
  return KEPHostValueJson::Write(parameter.Value(), baseDir_);
}
