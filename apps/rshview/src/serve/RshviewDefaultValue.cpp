#include "RshviewDefaultValue.h"

#include <algorithm>

const KEPHostParameterDefinition* RshviewFindDefinition(const KEPHostShaderLibrary& library,
                                                        const std::string& type,
                                                        const std::string& parameter) {
  const KEPHostShaderTypeDefinition* definition = library.FindType(type);
  if (!definition) return nullptr;
  const auto found =
      std::find_if(definition->parameters.begin(), definition->parameters.end(),
                   [&](const KEPHostParameterDefinition& p) { return p.name == parameter; });
  return found == definition->parameters.end() ? nullptr : &*found;
}

HRESULT RshviewWriteValue(KEPHostParameter& parameter, const KEPHostValue& value) {
  switch (value.type) {
    case KEPRmaType::Boolean:
      return parameter.SetBooleanValue(value.boolean ? 1 : 0);
    case KEPRmaType::Integer:
      return parameter.SetIntegerValue(value.integer);
    case KEPRmaType::Scalar:
      return parameter.SetScalarValue(value.scalar);
    case KEPRmaType::Color:
      return parameter.SetColorValue(value.components[0], value.components[1], value.components[2],
                                     value.components[3]);
    case KEPRmaType::Vector:
      return parameter.SetVectorValue(value.components);
    case KEPRmaType::Texture:
      return parameter.SetTextureValue(value.texture.Get());
    case KEPRmaType::LightProfile:
      return parameter.SetLightProfile(value.lightProfile);
    case KEPRmaType::Void:
      break;
  }
  return E_FAIL;
}
