#include "KEPShaderDocumentLoader.h"

#include <filesystem>
#include <map>
#include <unordered_map>

#include "KEPFileText.h"
#include "KEPHostValueJson.h"
#include "KEPJsonReader.h"

namespace {
struct NodeEntry {
  const KEPJsonValue* json = nullptr;
  std::string id;
  std::string type;
  const KEPJsonValue* typeJson = nullptr;
  const KEPJsonValue* alias = nullptr;
  const KEPJsonValue* values = nullptr;
  const KEPJsonValue* connections = nullptr;
  std::string container;  ///< id of the node whose subShaders list holds this one
  bool material = false;
};

struct Edge {
  std::size_t target;
  const KEPJsonValue* at;
  std::string parameter;
};

class Reader {
 public:
  Reader(std::string path, KEPLoadResult& result)
      : path_(std::move(path)),
        baseDir_(KEPFileText::Absolute(path_).parent_path().lexically_normal().string()),
        result_(result) {}

  void Error(const KEPJsonValue& at, const std::string& key, const std::string& message) {
    result_.AddError(path_, at.line, key, message);
  }

  // Top level: returns the materials list, or null after an error.
  const KEPJsonValue* Top(const KEPJsonValue& json, std::string& libraryDirectory) {
    if (!json.IsObject()) {
      Error(json, "", "the document must be a JSON object");
      return nullptr;
    }
    const KEPJsonValue* materials = nullptr;
    for (const auto& [name, member] : json.members) {
      if (name == "library") {
        if (!member.IsString() || member.text.empty()) {
          Error(member, name, "expected the library directory as a path");
          continue;
        }
        std::filesystem::path p(member.text);
        if (p.is_relative()) p = std::filesystem::path(baseDir_) / p;
        p = p.lexically_normal();
        std::error_code ec;
        if (!std::filesystem::is_directory(p, ec))
          Error(member, name, "library path '" + p.string() + "' does not exist");
        else
          libraryDirectory = p.string();
      } else if (name == "materials") {
        if (!member.IsArray())
          Error(member, name, "expected a list of nodes");
        else
          materials = &member;
      } else {
        Error(member, name, "unknown key (expected library, materials)");
      }
    }
    if (!materials && result_.Ok()) Error(json, "materials", "missing");
    return materials;
  }

  void Collect(const KEPJsonValue& list, bool material, const std::string& container = {}) {
    for (const KEPJsonValue& item : list.items) {
      if (nodes_.size() >= KEPShaderDocumentLoader::kMaxNodes) {
        Error(item, "", "more than 100000 nodes");
        return;
      }
      Node(item, material, container);
    }
  }

  void Node(const KEPJsonValue& json, bool material, const std::string& container) {
    if (!json.IsObject())
      return Error(json, material ? "materials" : "subShaders",
                   "a node must be an object {id, type, ...}");
    NodeEntry entry;
    entry.json = &json;
    entry.material = material;
    entry.container = container;
    const KEPJsonValue* subShaders = nullptr;
    for (const auto& [key, member] : json.members) {
      if (key == "id") {
        if (!member.IsString() || member.text.empty())
          Error(member, key, "expected a node id");
        else
          entry.id = member.text;
      } else if (key == "type") {
        if (!member.IsString())
          Error(member, key, "expected a shader type name");
        else
          entry.type = member.text, entry.typeJson = &member;
      } else if (key == "alias") {
        if (!member.IsString())
          Error(member, key, "expected a text");
        else
          entry.alias = &member;
      } else if (key == "values") {
        if (!member.IsObject())
          Error(member, key, "expected an object of parameter values");
        else
          entry.values = &member;
      } else if (key == "connections") {
        if (!member.IsObject())
          Error(member, key, "expected an object of parameter -> node id");
        else
          entry.connections = &member;
      } else if (key == "subShaders") {
        if (!member.IsArray())
          Error(member, key, "expected a list of nodes");
        else
          subShaders = &member;
      } else {
        Error(member, key,
              "unknown key in a node (expected id, type, alias, values, connections, subShaders)");
      }
    }
    if (!json.Find("id")) Error(json, "id", "node without an id");
    if (!json.Find("type")) Error(json, "type", "node without a type");
    if (!entry.id.empty()) {
      auto [it, inserted] = index_.emplace(entry.id, nodes_.size());
      if (!inserted)
        Error(*json.Find("id"), "id",
              "duplicate node id '" + entry.id + "' (first at line " +
                  std::to_string(nodes_[it->second].json->line) + ")");
      else
        nodes_.push_back(entry);
    }
    if (subShaders) Collect(*subShaders, false, entry.id);
  }

  void Build(KEPHostShaderDocument& document, const KEPHostShaderLibrary& library) {
    if (!WithinParameterLimit(library)) return;
    for (const NodeEntry& entry : nodes_) {
      if (!entry.typeJson) continue;
      if (!library.FindType(entry.type)) {
        Error(*entry.typeJson, "type", "unknown shader type '" + entry.type + "'");
        continue;
      }
      KEP_var<KEPIRshShader> created;
      if (FAILED(document.CreateShader(entry.type, entry.id, *created.Out()))) {
        Error(*entry.json, "id", "cannot create node '" + entry.id + "'");
        continue;
      }
      KEPHostShaderNode* node = document.FindNode(entry.id);
      if (entry.alias) node->SetAlias(KEPUnicodeString::FromUTF8(entry.alias->text));
      if (entry.values) Values(entry, *node);
      if (entry.material) document.materials.push_back(entry.id);
    }
    // A sub-shader's father is the shader that holds it, as in the host's model of a material.
    for (const NodeEntry& entry : nodes_) {
      if (entry.container.empty()) continue;
      KEPHostShaderNode* node = document.FindNode(entry.id);
      KEPHostShaderNode* container = document.FindNode(entry.container);
      if (node && container) node->SetFather(container);
    }
  }

  // A node holds an object per parameter of its type, so that a short text could ask for a
  // great many: counted before any node is made.
  bool WithinParameterLimit(const KEPHostShaderLibrary& library) {
    std::size_t parameters = 0;
    for (const NodeEntry& entry : nodes_) {
      const KEPHostShaderTypeDefinition* type =
          entry.typeJson ? library.FindType(entry.type) : nullptr;
      if (!type) continue;
      parameters += type->parameters.size();
      if (parameters > KEPShaderDocumentLoader::kMaxParameters) {
        Error(*entry.typeJson, "type",
              "the nodes have more than " +
                  std::to_string(KEPShaderDocumentLoader::kMaxParameters) + " parameters");
        return false;
      }
    }
    return true;
  }

  void Values(const NodeEntry& entry, KEPHostShaderNode& node) {
    const auto parameters = ParametersByName(node);
    for (const auto& [name, value] : entry.values->members) {
      KEPHostParameter* parameter = Find(parameters, name);
      if (!parameter) {
        Error(value, name, "unknown parameter name for shader type '" + entry.type + "'");
        continue;
      }
      KEPHostValue read = parameter->Value();
      const int dimension = read.type == KEPRmaType::Vector ? read.dimension : 0;
      std::string message;
      if (!KEPHostValueJson::Read(value, read.type, dimension, baseDir_, read, message)) {
        Error(value, name, std::string(KEPRmaTypeName(read.type)) + ": " + message);
        continue;
      }
      parameter->SetValue(std::move(read));
    }
  }

  void Connections(KEPHostShaderDocument& document) {
    edges_.assign(nodes_.size(), {});
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
      const NodeEntry& entry = nodes_[i];
      if (!entry.connections) continue;
      KEPHostShaderNode* node = document.FindNode(entry.id);
      const auto parameters = node ? ParametersByName(*node) : ParameterIndex();
      for (const auto& [name, target] : entry.connections->members) {
        if (!target.IsString()) {
          Error(target, name, "expected the id of the connected node");
          continue;
        }
        auto it = index_.find(target.text);
        if (it == index_.end()) {
          Error(target, name, "connection to missing node '" + target.text + "'");
          continue;
        }
        if (!node) continue;  // its type was unknown: already reported
        KEPHostParameter* parameter = Find(parameters, name);
        if (!parameter) {
          Error(target, name, "unknown parameter name for shader type '" + entry.type + "'");
          continue;
        }
        edges_[i].push_back({it->second, &target, name});
        KEPHostShaderNode* connected = document.FindNode(target.text);
        if (connected) parameter->SetConnectedShader(connected);
      }
    }
    FindCycles();
  }

 private:
  // A node's parameters by name, built once per node: a node can list as many values and
  // connections as its type has parameters, so a search per name would cost their product.
  using ParameterIndex = std::unordered_map<std::string, KEPHostParameter*>;
  static ParameterIndex ParametersByName(const KEPHostShaderNode& node) {
    ParameterIndex index;
    for (const auto& parameter : node.Parameters()) {
      KEPString name;
      parameter->GetName(name);
      index.emplace(std::move(name), parameter.Get());  // the first of a name, as GetParameter
    }
    return index;
  }
  static KEPHostParameter* Find(const ParameterIndex& index, const std::string& name) {
    const auto it = index.find(name);
    return it == index.end() ? nullptr : it->second;
  }

  // Iterative depth-first search (a document can hold many nodes): a connection that reaches a
  // node on the current path closes a cycle.
  void FindCycles() {
    enum : char { White, Grey, Black };
    std::vector<char> colour(nodes_.size(), White);
    for (std::size_t root = 0; root < nodes_.size(); ++root) {
      if (colour[root] != White) continue;
      std::vector<std::pair<std::size_t, std::size_t>> stack{{root, 0}};
      colour[root] = Grey;
      while (!stack.empty()) {
        auto& [node, next] = stack.back();
        if (next == edges_[node].size()) {
          colour[node] = Black;
          stack.pop_back();
          continue;
        }
        const Edge& edge = edges_[node][next++];
        if (colour[edge.target] == Grey) {
          std::string chain;
          bool on = false;
          for (const auto& frame : stack) {
            on = on || frame.first == edge.target;
            if (on) chain += nodes_[frame.first].id + " -> ";
          }
          chain += nodes_[edge.target].id;
          Error(*edge.at, edge.parameter, "connection cycle: " + chain);
        } else if (colour[edge.target] == White) {
          colour[edge.target] = Grey;
          stack.push_back({edge.target, 0});
        }
      }
    }
  }

  std::string path_;
  std::string baseDir_;
  KEPLoadResult& result_;
  std::vector<NodeEntry> nodes_;
  std::map<std::string, std::size_t> index_;
  std::vector<std::vector<Edge>> edges_;
};

bool ParseJson(const std::string& path, const std::string& text, KEPJsonValue& json,
               KEPLoadResult& result) {
  int line = 0;
  if (!KEPFileText::IsValidUTF8(text, line)) {
    result.AddError(path, line, "", "invalid UTF-8");
    return false;
  }
  std::string key, message;
  if (!KEPJsonReader::Parse(text, json, line, key, message)) {
    result.AddError(path, line, key, message);
    return false;
  }
  return true;
}

bool ReadJson(const std::string& path, KEPJsonValue& json, KEPLoadResult& result) {
  std::string text, message;
  if (!KEPFileText::Read(path, text, message)) {
    result.AddError(path, 0, "", message);
    return false;
  }
  return ParseJson(path, text, json, result);
}
}  // namespace

KEPLoadResult KEPShaderDocumentLoader::ReadLibraryPath(const std::string& path,
                                                       std::string& libraryDirectory) {
  KEPLoadResult result;
  KEPJsonValue json;
  if (!ReadJson(path, json, result)) return result;
  std::string directory;
  Reader(path, result).Top(json, directory);
  if (result.Ok()) libraryDirectory = directory;
  return result;
}

KEPLoadResult KEPShaderDocumentLoader::Load(
    const std::string& path, const std::shared_ptr<const KEPHostShaderLibrary>& library,
    KEP_var<KEPHostShaderDocument>& document) {
  KEPLoadResult result;
  std::string text, message;
  if (!library) {
    result.AddError(path, 0, "", "no shader library to read the document with");
  } else if (!KEPFileText::Read(path, text, message)) {
    result.AddError(path, 0, "", message);
  } else {
    result = LoadText(path, text, library, document);
  }
  return result;
}

KEPLoadResult KEPShaderDocumentLoader::LoadText(
    const std::string& path, const std::string& text,
    const std::shared_ptr<const KEPHostShaderLibrary>& library,
    KEP_var<KEPHostShaderDocument>& document) {
  KEPLoadResult result;
  if (!library) {
    result.AddError(path, 0, "", "no shader library to read the document with");
    return result;
  }
  KEPJsonValue json;
  if (!ParseJson(path, text, json, result)) return result;
  Reader reader(path, result);
  std::string libraryDirectory;
  const KEPJsonValue* materials = reader.Top(json, libraryDirectory);
  if (!materials) return result;
  reader.Collect(*materials, true);
  auto loaded = KEP_var<KEPHostShaderDocument>::Adopt(KEPHostShaderDocument::Create(library));
  reader.Build(*loaded, *library);
  reader.Connections(*loaded);
  if (!result.Ok()) return result;
  loaded->path = path;
  document = std::move(loaded);
  return result;
}
