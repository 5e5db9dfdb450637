#include "KEPHostValue.h"

namespace {
constexpr struct {
  KEPRmaType type;
  const char* name;
} kTypes[] = {
    {KEPRmaType::Boolean, "KEPRmaBoolean"},
    {KEPRmaType::Integer, "KEPRmaInteger"},
    {KEPRmaType::Scalar, "KEPRmaScalar"},
    {KEPRmaType::Color, "KEPRmaColor"},
    {KEPRmaType::Vector, "KEPRmaVector"},
    {KEPRmaType::Texture, "KEPRmaTexture"},
    {KEPRmaType::LightProfile, "KEPRmaLightProfile"},
    {KEPRmaType::Void, "KEPRmaVoid"},
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

KEPHostValue KEPHostValue::Boolean(bool value) {
  KEPHostValue v;
  v.type = KEPRmaType::Boolean;
  v.boolean = value;
  return v;
}

KEPHostValue KEPHostValue::Integer(int value) {
  KEPHostValue v;
  v.type = KEPRmaType::Integer;
  v.integer = value;
  return v;
}

KEPHostValue KEPHostValue::Scalar(float value) {
  KEPHostValue v;
  v.type = KEPRmaType::Scalar;
  v.scalar = value;
  return v;
}

KEPHostValue KEPHostValue::Color(float r, float g, float b, float alpha) {
  KEPHostValue v;
  v.type = KEPRmaType::Color;
  v.components[0] = r;
  v.components[1] = g;
  v.components[2] = b;
  v.components[3] = alpha;
  return v;
}

KEPHostValue KEPHostValue::Vector(std::initializer_list<float> components) {
  KEPHostValue v;
  v.type = KEPRmaType::Vector;
  int i = 0;
  for (float c : components)
    if (i < 4) v.components[i++] = c;
  v.dimension = i < 2 ? 2 : i;
  for (; i < 4; ++i) v.components[i] = 0.0f;
  return v;
}

KEPHostValue KEPHostValue::Texture(KEPIPLMDmtDocument* document) {
  KEPHostValue v;
  v.type = KEPRmaType::Texture;
  v.texture = KEP_var<KEPIPLMDmtDocument>(document);
  return v;
}
