#include "KEPShaderLibraryLoader.h"

#include <filesystem>
#include <optional>
#include <set>

#include "KEPFileText.h"
#include "KEPHostValueJson.h"
#include "KEPJsonReader.h"
#include "KEPReaderKeys.h"

namespace {
class Reader {
 public:
  Reader(std::string path, std::string root, KEPLoadResult& result)
      : path_(std::move(path)), root_(std::move(root)), result_(result) {}

  void Library(const KEPJsonValue& json, KEPHostShaderLibrary& library) {
    if (!json.IsObject()) return Error(json, "", "the library must be a JSON object");
    const KEPJsonValue* types = nullptr;
    const KEPJsonValue* connectable = nullptr;
    for (const auto& [name, member] : json.members) {
      if (name == "shaderTypes")
        types = &member;
      else if (name == "connectable")
        connectable = &member;
      else
        Error(member, name, "unknown key (expected shaderTypes, connectable)");
    }
    if (!types) return Error(json, "shaderTypes", "missing");
    if (!types->IsObject()) return Error(*types, "shaderTypes", "expected an object of types");
    if (types->members.size() > KEPShaderLibraryLoader::kMaxTypes)
      return Error(*types, "shaderTypes", "more than 10000 shader types");
    for (const auto& [name, member] : types->members) Type(name, member, library);
    if (connectable) Connectable(*connectable, library);
  }

 private:
  void Error(const KEPJsonValue& at, const std::string& key, const std::string& message) {
    result_.AddError(path_, at.line, key, message);
  }

  bool Text(const KEPJsonValue& json, const std::string& key, std::string& out) {
    if (!json.IsString()) {
      Error(json, key, std::string("expected a string, found ") + json.KindName());
      return false;
    }
    out = json.text;
    return true;
  }

  void Type(const std::string& name, const KEPJsonValue& json, KEPHostShaderLibrary& library) {
    if (name.empty()) return Error(json, name, "empty shader type name");
    if (!json.IsObject()) return Error(json, name, "a shader type must be an object");
    KEPHostShaderTypeDefinition type;
    type.name = name;
    bool sawParameters = false;
    for (const auto& [key, member] : json.members) {
      if (key == "configuration") {
        Text(member, key, type.configurationId);
      } else if (key == "label") {
        Text(member, key, type.label);
      } else if (key == "kind") {
        Kind(member, type);
      } else if (key == "output") {
        Output(member, type);
      } else if (key == "parameters") {
        sawParameters = true;
        Parameters(member, type);
      } else {
        Error(member, key,
              "unknown key in shader type '" + name +
                  "' (expected configuration, label, kind, output, parameters)");
      }
    }
    if (!sawParameters) Error(json, name, "shader type without 'parameters'");
    library.AddType(std::move(type));  // names are unique: repeated keys are refused earlier
  }

  // "material" (the default) or "texture": a texture shader answers the viewer's texture
  // questions for the material it is connected to.
  void Kind(const KEPJsonValue& json, KEPHostShaderTypeDefinition& type) {
    std::string kind;
    if (!Text(json, "kind", kind)) return;
    if (kind == "texture")
      type.isTexture = true;
    else if (kind != "material")
      Error(json, "kind", "'" + kind + "' is not a shader kind (expected material or texture)");
  }

  // The feature type a node of the type yields when connected, or "" for a node that fits any
  // parameter. Reuse of nodes is decided by it, so a wrong name is refused rather than kept.
  void Output(const KEPJsonValue& json, KEPHostShaderTypeDefinition& type) {
    const std::string key = "shaderTypes." + type.name + ".output";
    std::string output;
    if (!Text(json, key, output)) return;
    if (!output.empty() && !KEPRmaTypeFromName(output))
      return Error(json, key,
                   "'" + output +
                       "' is not a feature type (expected KEPRmaBoolean, KEPRmaInteger, "
                       "KEPRmaScalar, KEPRmaColor, KEPRmaVector, KEPRmaTexture, "
                       "KEPRmaLightProfile, KEPRmaVoid or \"\")");
    type.output = std::move(output);
  }

  void Parameters(const KEPJsonValue& json, KEPHostShaderTypeDefinition& type) {
    if (!json.IsArray()) return Error(json, "parameters", "expected a list of parameters");
    if (json.items.size() > KEPShaderLibraryLoader::kMaxParameters)
      return Error(json, "parameters", "more than 10000 parameters");
    std::set<std::string> names;
    for (const KEPJsonValue& item : json.items) {
      KEPHostParameterDefinition parameter;
      if (!Parameter(item, type, parameter)) continue;
      if (!names.insert(parameter.name).second) {
        Error(
            item, "name",
            "repeated parameter name '" + parameter.name + "' in shader type '" + type.name + "'");
        continue;
      }
      if (!parameter.resources.empty()) type.hasResources = true;
      type.parameters.push_back(std::move(parameter));
    }
  }

  bool Parameter(const KEPJsonValue& json, const KEPHostShaderTypeDefinition& owner,
                 KEPHostParameterDefinition& parameter) {
    if (!json.IsObject()) {
      Error(json, "parameters", "a parameter must be an object {name, type, default}");
      return false;
    }
    const KEPJsonValue* name = json.Find("name");
    const KEPJsonValue* type = json.Find("type");
    const KEPJsonValue* value = json.Find("default");
    const KEPJsonValue* resources = json.Find("resources");
    bool ok = true;
    for (const auto& [key, member] : json.members) {
      if (key != "name" && key != "type" && key != "default" && key != "resources") {
        Error(member, key, "unknown key in a parameter (expected name, type, default, resources)");
        ok = false;
      }
    }
    if (!name) return Error(json, "name", "parameter without a name"), false;
    if (!Text(*name, "name", parameter.name)) return false;
    if (parameter.name.empty()) return Error(*name, "name", "empty parameter name"), false;
    if (!type)
      return Error(json, "type", "parameter '" + parameter.name + "' without a type"), false;
    std::string typeName;
    if (!Text(*type, "type", typeName)) return false;
    const auto rmaType = KEPRmaTypeFromName(typeName);
    if (!rmaType) {
      Error(*type, "type", "unknown parameter type '" + typeName + "'");
      return false;
    }
    parameter.defaultValue.type = *rmaType;
    if (value) {
      std::string message;
      if (!KEPHostValueJson::Read(*value, *rmaType, 0, root_, parameter.defaultValue, message)) {
        Error(*value, "default",
              "parameter '" + parameter.name + "' of type " + typeName + ": " + message);
        ok = false;
      }
    } else if (*rmaType == KEPRmaType::Vector) {
      Error(json, "default",
            "vector parameter '" + parameter.name +
                "' needs a default: it gives the number of components");
      ok = false;
    }
    if (resources) ok = Resources(*resources, owner, parameter) && ok;
    return ok;
  }

  bool Resources(const KEPJsonValue& json, const KEPHostShaderTypeDefinition& owner,
                 KEPHostParameterDefinition& parameter) {
    if (!json.IsObject()) return Error(json, "resources", "expected an object of texts"), false;
    if (json.members.size() > KEPShaderLibraryLoader::kMaxResources)
      return Error(json, "resources", "more than 1000 resources"), false;
    bool ok = true;
    for (const auto& [key, member] : json.members) {
      std::string text;
      if (!Text(member, key, text)) {
        ok = false;
        continue;
      }
      // The readers parse some resources as numbers: a text they take differently from how it
      // looks, or a key they never ask for, is kept and reported.
      if (std::optional<KEPValueFinding> finding = KEPReaderKeys::ResourceEntry(key, text)) {
        KEPLoadIssue warning;
        warning.file = path_;
        warning.line = member.line;
        warning.key = key;
        warning.message = std::move(finding->message);
        warning.hint = std::move(finding->hint);
        warning.shaderType = owner.name;
        warning.parameter = parameter.name;
        result_.AddWarning(std::move(warning));
      }
      parameter.resources[key] = std::move(text);
    }
    return ok;
  }

  void Connectable(const KEPJsonValue& json, KEPHostShaderLibrary& library) {
    if (!json.IsObject())
      return Error(json, "connectable", "expected an object of parameter types");
    for (const auto& [parameterType, list] : json.members) {
      if (!KEPRmaTypeFromName(parameterType)) {
        Error(list, parameterType, "unknown parameter type '" + parameterType + "'");
        continue;
      }
      if (!list.IsArray()) {
        Error(list, parameterType, "expected a list of {type, label}");
        continue;
      }
      if (list.items.size() > KEPShaderLibraryLoader::kMaxConnectable) {
        Error(list, parameterType, "more than 10000 connectable types");
        continue;
      }
      std::vector<KEPHostConnectableEntry> entries;
      for (const KEPJsonValue& item : list.items) {
        if (!item.IsObject()) {
          Error(item, parameterType, "expected {type, label}");
          continue;
        }
        KEPHostConnectableEntry entry;
        entry.line = item.line;
        for (const auto& [key, member] : item.members) {
          if (key == "type")
            Text(member, key, entry.type);
          else if (key == "label")
            Text(member, key, entry.label);
          else
            Error(member, key, "unknown key in a connectable entry (expected type, label)");
        }
        if (entry.type.empty()) {
          Error(item, "type", "connectable entry without a shader type");
        } else if (!library.FindType(entry.type)) {
          Error(*item.Find("type"), "type", "unknown shader type '" + entry.type + "'");
        } else {
          entries.push_back(std::move(entry));
        }
      }
      library.SetConnectable(parameterType, std::move(entries));
    }
  }

  std::string path_;
  std::string root_;
  KEPLoadResult& result_;
};
}  // namespace

KEPLoadResult KEPShaderLibraryLoader::Load(const std::string& directory,
                                           KEPHostShaderLibrary& library) {
  std::error_code ec;
  if (!std::filesystem::is_directory(directory, ec)) {
    KEPLoadResult result;
    result.AddError(directory, 0, "", "library directory does not exist");
    return result;
  }
  return LoadFile((std::filesystem::path(directory) / "library.json").string(), library);
}

KEPLoadResult KEPShaderLibraryLoader::LoadFile(const std::string& path,
                                               KEPHostShaderLibrary& library) {
  std::string text, message;
  if (!KEPFileText::Read(path, text, message)) {
    KEPLoadResult result;
    result.AddError(path, 0, "", message);
    return result;
  }
  return LoadText(path, text, library);
}

KEPLoadResult KEPShaderLibraryLoader::LoadText(const std::string& path, const std::string& text,
                                               KEPHostShaderLibrary& library) {
  KEPLoadResult result;
  int line = 0;
  if (!KEPFileText::IsValidUTF8(text, line)) {
    result.AddError(path, line, "", "invalid UTF-8");
    return result;
  }
  std::string key, message;
  KEPJsonValue json;
  if (!KEPJsonReader::Parse(text, json, line, key, message)) {
    result.AddError(path, line, key, message);
    return result;
  }
  const std::string root = KEPFileText::Absolute(path).parent_path().lexically_normal().string();
  KEPHostShaderLibrary loaded;
  loaded.root = root;
  Reader(path, root, result).Library(json, loaded);
  if (result.Ok()) library = std::move(loaded);
  return result;
}
