#include "KEPShaderDocumentWriter.h"

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "KEPAtomicFile.h"
#include "KEPFileText.h"
#include "KEPHostValueJson.h"

namespace {
using Json = nlohmann::ordered_json;

class Writer {
 public:
  Writer(KEPHostShaderDocument& document, std::string baseDir)
      : document_(document), baseDir_(std::move(baseDir)) {}

  Json Document() {
    Json json = Json::object();
    if (document_.Library() && !document_.Library()->root.empty())
      json["library"] = Relative(document_.Library()->root);
    // Materials first, so that a node connected from two places is written under the first.
    std::vector<KEPHostShaderNode*> roots;
    for (const std::string& id : document_.materials)
      if (KEPHostShaderNode* node = document_.FindNode(id); node && placed_.insert(node).second)
        roots.push_back(node);
    std::vector<Json> written;
    for (KEPHostShaderNode* node : roots) written.push_back(Node(*node));
    for (const auto& node : document_.Nodes()) {
      if (placed_.count(node.Get())) continue;
      placed_.insert(node.Get());
      Json orphan = Node(*node);
      if (written.empty())
        written.push_back(std::move(orphan));
      else
        written.front()["subShaders"].push_back(std::move(orphan));
    }
    json["materials"] = Json::array();
    for (Json& node : written) json["materials"].push_back(std::move(node));
    return json;
  }

 private:
  std::string Relative(const std::string& path) const {
    const std::filesystem::path relative =
        std::filesystem::path(path).lexically_normal().lexically_relative(baseDir_);
    return relative.empty() ? path : relative.generic_string();
  }

  // Sub-shaders nest at most this deep, so that the file stays far below the reader's nesting
  // limit; deeper nodes are written as orphans.
  static constexpr int kMaxNesting = 16;

  Json Node(KEPHostShaderNode& node, int depth = 0) {
    Json json = Json::object();
    json["id"] = node.Id();
    json["type"] = node.TypeName();
    KEPUnicodeString alias;
    node.GetAlias(alias);
    if (alias.ToUTF8() != node.Id()) json["alias"] = alias.ToUTF8();
    Json values = Json::object();
    Json connections = Json::object();
    std::vector<KEPHostShaderNode*> children;
    // The nodes this node holds come first, so that a node made for a material is saved under
    // it wherever it is connected.
    if (depth < kMaxNesting)
      for (const auto& held : document_.Nodes())
        if (held->Father() == static_cast<KEPBaseUnknown*>(&node) &&
            placed_.insert(held.Get()).second)
          children.push_back(held.Get());
    for (const auto& parameter : node.Parameters()) {
      KEPString name;
      parameter->GetName(name);
      if (parameter->Value().type != KEPRmaType::Void)
        values[name] = Json::parse(KEPHostValueJson::Write(parameter->Value(), baseDir_));
      KEP_var<KEPIRshShader> connected;
      if (FAILED(parameter->GetConnectedShader(*connected.Out())) || !connected) continue;
      KEPString id;
      connected->GetId(id);
      connections[name] = id;
      KEPHostShaderNode* target = document_.FindNode(id);
      // A node held by another node is saved under its holder.
      if (target && depth < kMaxNesting && !dynamic_cast<KEPHostShaderNode*>(target->Father()) &&
          placed_.insert(target).second)
        children.push_back(target);
    }
    if (!values.empty()) json["values"] = std::move(values);
    if (!connections.empty()) json["connections"] = std::move(connections);
    if (!children.empty()) {
      json["subShaders"] = Json::array();
      for (KEPHostShaderNode* child : children)
        json["subShaders"].push_back(Node(*child, depth + 1));
    }
    return json;
  }

  KEPHostShaderDocument& document_;
  std::filesystem::path baseDir_;
  std::set<const KEPHostShaderNode*> placed_;
};
}  // namespace

std::string KEPShaderDocumentWriter::Format(KEPHostShaderDocument& document,
                                            const std::string& path, Paths paths) {
  // No base directory: every path is written as it is held.
  const std::string baseDir =
      paths == Paths::Absolute
          ? std::string()
          : KEPFileText::Absolute(path).parent_path().lexically_normal().string();
  return Writer(document, baseDir).Document().dump(2, ' ', false, Json::error_handler_t::replace) +
         "\n";
}

KEPLoadResult KEPShaderDocumentWriter::Save(KEPHostShaderDocument& document,
                                            const std::string& path, Paths paths) {
  KEPLoadResult result;
  std::string error;
  try {
    if (!KEPWriteFileAtomically(path, Format(document, path, paths), error)) {
      // The error starts with the path, which AddError puts in front anyway.
      const std::string prefix = path + ": ";
      result.AddError(path, 0, "", error.starts_with(prefix) ? error.substr(prefix.size()) : error);
    }
  } catch (const std::exception& e) {  // no memory for the text: nothing was written
    result.AddError(path, 0, "", std::string("cannot save: ") + e.what());
  }
  return result;
}
