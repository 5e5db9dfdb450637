#include "RshviewConnectableCheck.h"

#include "KEPHostValue.h"

namespace {
constexpr KEPRmaType kFeatureTypes[] = {
    KEPRmaType::Boolean, KEPRmaType::Integer,      KEPRmaType::Scalar,  KEPRmaType::Color,
    KEPRmaType::Vector,  KEPRmaType::LightProfile, KEPRmaType::Texture, KEPRmaType::Void};

/// The connection dialog's rule for offering an existing node: its output is empty, or equals
/// the parameter's type, or the parameter is a slot (KEPRmaVoid) and the node yields a vector.
bool DialogOffers(const std::string& parameterType, const std::string& output) {
  return output.empty() || output == parameterType ||
         (parameterType == "KEPRmaVoid" && output == "KEPRmaVector");
}

std::string Accepted(const std::string& parameterType) {
  return parameterType == "KEPRmaVoid" ? "KEPRmaVoid, KEPRmaVector or \"\""
                                       : parameterType + " or \"\"";
}
}  // namespace

KEPLoadResult RshviewCheckConnectableOutputs(const KEPHostShaderLibrary& library,
                                             const std::string& file) {
  KEPLoadResult result;
  for (const KEPRmaType featureType : kFeatureTypes) {
    const std::string parameterType = KEPRmaTypeName(featureType);
    for (const KEPHostConnectableEntry& entry : library.Connectable(parameterType)) {
      const KEPHostShaderTypeDefinition* type = library.FindType(entry.type);
      if (!type) continue;  // the loader refuses such an entry
      KEPLoadIssue warning;
      warning.file = file;
      warning.line = entry.line;
      warning.key = "connectable." + parameterType;
      warning.shaderType = type->name;
      if (!type->output) {
        // Without an output the node is compared by its type name, which fits only when the type
        // is named after a feature type.
        if (DialogOffers(parameterType, type->name)) continue;
        warning.message = "shader type '" + type->name +
                          "' declares no output: its nodes are never offered for reuse";
        warning.hint = "add \"output\": \"" + parameterType + "\" to shaderTypes." + type->name +
                       " (\"\" fits any parameter)";
      } else if (!DialogOffers(parameterType, *type->output)) {
        warning.message = "shader type '" + type->name + "' yields " + *type->output +
                          ", which a " + parameterType +
                          " parameter does not take: its nodes are made new here, never reused";
        warning.hint =
            "a " + parameterType + " parameter reuses nodes that yield " + Accepted(parameterType);
      } else {
        continue;
      }
      result.AddWarning(std::move(warning));
    }
  }
  return result;
}
