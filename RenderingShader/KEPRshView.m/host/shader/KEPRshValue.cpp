#include "KEPRshValue.h"

namespace {
constexpr struct {
  KEPRmaType type;
  const char* name;
} kTypes[] = {
    {KEPRmaType::Boolean, "KEPRmaBoolean"}, {KEPRmaType::Integer, "KEPRmaInteger"},
    {KEPRmaType::Scalar, "KEPRmaScalar"},   {KEPRmaType::Color, "KEPRmaColor"},
    {KEPRmaType::Vector, "KEPRmaVector"},   {KEPRmaType::Texture, "KEPRmaTexture"},
    {KEPRmaType::LightProfile, "KEPRmaLightProfile"}, {KEPRmaType::Void, "KEPRmaVoid"},
};
}  // namespace

const char* KEPRmaTypeName(KEPRmaType type) {
  for (const auto& t : kTypes)
    if (t.type == type) return t.name;
  return "KEPRmaVoid";
}

std::optional<KEPRmaType> KEPRmaTypeFromName(std::string_view name) {
  for (const auto& t : kTypes)
    if (name == t.name) return t.type;
  return std::nullopt;
}
