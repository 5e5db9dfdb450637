#include "KEPHostValueJson.h"

#include <cfloat>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "KEPTextureDocument.h"

namespace {
constexpr std::size_t kMaxGroups = 1000;

std::string Resolve(const std::string& path, const std::string& baseDir) {
  if (path.empty()) return path;
  std::filesystem::path p(path);
  if (p.is_absolute() || baseDir.empty()) return p.lexically_normal().string();
  return (std::filesystem::path(baseDir) / p).lexically_normal().string();
}

std::string Relative(const std::string& path, const std::string& baseDir) {
  if (path.empty() || baseDir.empty()) return path;
  std::filesystem::path p(path);
  if (!p.is_absolute()) return path;
  const std::filesystem::path relative =
      p.lexically_normal().lexically_relative(std::filesystem::path(baseDir).lexically_normal());
  if (relative.empty()) return path;
  return relative.generic_string();
}

// The shortest decimal that reads back as `value`, as a double, so that 0.3f is written "0.3".
double Shortest(float value) {
  char text[32];
  const char* end = std::to_chars(text, text + sizeof text, value).ptr;
  double shortest = value;
  std::from_chars(text, end, shortest);
  return shortest;
}

bool Float(const KEPJsonValue& json, float& out) {
  if (!json.IsNumber() || std::fabs(json.number) > FLT_MAX) return false;
  out = static_cast<float>(json.number);
  return true;
}

bool Components(const KEPJsonValue& json, std::size_t min, std::size_t max, float* out) {
  if (!json.IsArray() || json.items.size() < min || json.items.size() > max) return false;
  for (std::size_t i = 0; i < json.items.size(); ++i)
    if (!Float(json.items[i], out[i])) return false;
  return true;
}

bool Texture(const KEPJsonValue& json, const std::string& baseDir, KEPHostValue& out,
             std::string& message) {
  if (json.IsNull()) {
    out.texture = NULL_var;
    return true;
  }
  if (!json.IsObject()) {
    message = "expected a texture object {\"image\": path, \"dpi\": number, \"groups\": [...]}";
    return false;
  }
  std::string image;
  std::optional<double> dpi;
  std::vector<KEPString> groups;
  for (const auto& [name, member] : json.members) {
    if (name == "image") {
      if (!member.IsString()) return message = "texture 'image' must be a path", false;
      image = member.text;
    } else if (name == "dpi") {
      if (!member.IsNumber() || member.number <= 0.0 || member.number > 1e6)
        return message = "texture 'dpi' must be a number above 0 and at most 1000000", false;
      dpi = member.number;
    } else if (name == "groups") {
      if (!member.IsArray()) return message = "texture 'groups' must be a list of names", false;
      if (member.items.size() > kMaxGroups)
        return message = "texture 'groups' holds more than 1000 names", false;
      for (const KEPJsonValue& group : member.items) {
        if (!group.IsString()) return message = "texture 'groups' must be a list of names", false;
        groups.push_back(group.text);
      }
    } else {
      message = "unknown texture member '" + name + "' (expected image, dpi, groups)";
      return false;
    }
  }
  if (image.empty()) return message = "texture object without 'image'", false;
  out.texture = KEP_var<KEPIPLMDmtDocument>::Adopt(KEPTextureDocument::Create(
      KEPUnicodeString::FromUTF8(Resolve(image, baseDir)), dpi, std::move(groups)));
  return true;
}
}  // namespace

bool KEPHostValueJson::Read(const KEPJsonValue& json, KEPRmaType type, int dimension,
                            const std::string& baseDir, KEPHostValue& out, std::string& message) {
  KEPHostValue value = out;
  value.type = type;
  switch (type) {
    case KEPRmaType::Boolean:
      if (!json.IsBoolean()) return message = "expected true or false", false;
      value.boolean = json.boolean;
      break;
    case KEPRmaType::Integer:
      if (!json.IsNumber() || json.number != std::floor(json.number) ||
          json.number < -2147483648.0 || json.number > 2147483647.0)
        return message = "expected a 32-bit integer", false;
      value.integer = static_cast<int>(json.number);
      break;
    case KEPRmaType::Scalar:
      if (!Float(json, value.scalar))
        return message = "expected a finite number within the single-precision range", false;
      break;
    case KEPRmaType::Color: {
      float c[4] = {0.0f, 0.0f, 0.0f, 1.0f};
      if (!Components(json, 3, 4, c))
        return message = "expected a colour [r, g, b] or [r, g, b, a] of finite numbers", false;
      std::copy(c, c + 4, value.components);
      break;
    }
    case KEPRmaType::Vector: {
      float c[4] = {0.0f, 0.0f, 0.0f, 0.0f};
      const std::size_t min = dimension > 0 ? static_cast<std::size_t>(dimension) : 2;
      const std::size_t max = dimension > 0 ? static_cast<std::size_t>(dimension) : 4;
      if (!Components(json, min, max, c)) {
        message = dimension > 0
                      ? "expected a vector of " + std::to_string(dimension) + " finite numbers"
                      : "expected a vector [x, y], [x, y, z] or [x, y, z, w] of "
                        "finite numbers";
        return false;
      }
      std::copy(c, c + 4, value.components);
      value.dimension = static_cast<int>(json.items.size());
      break;
    }
    case KEPRmaType::Texture:
      if (!Texture(json, baseDir, value, message)) return false;
      break;
    case KEPRmaType::LightProfile:
      if (json.IsNull()) {
        value.lightProfile.clear();
      } else if (json.IsString()) {
        value.lightProfile = Resolve(json.text, baseDir);
      } else {
        return message = "expected a light-profile path or null", false;
      }
      break;
    case KEPRmaType::Void:
      if (!json.IsNull()) return message = "a KEPRmaVoid slot holds no value (use null)", false;
      break;
  }
  out = std::move(value);
  return true;
}

std::string KEPHostValueJson::Write(const KEPHostValue& value, const std::string& baseDir) {
  nlohmann::ordered_json json;
  switch (value.type) {
    case KEPRmaType::Boolean:
      json = value.boolean;
      break;
    case KEPRmaType::Integer:
      json = value.integer;
      break;
    case KEPRmaType::Scalar:
      json = Shortest(value.scalar);
      break;
    case KEPRmaType::Color:
      json = {Shortest(value.components[0]), Shortest(value.components[1]),
              Shortest(value.components[2]), Shortest(value.components[3])};
      break;
    case KEPRmaType::Vector:
      json = nlohmann::ordered_json::array();
      for (int i = 0; i < value.dimension && i < 4; ++i)
        json.push_back(Shortest(value.components[i]));
      break;
    case KEPRmaType::Texture: {
      if (!value.texture) {
        json = nullptr;
        break;
      }
      KEPUnicodeString path;
      value.texture->GetImagePath(path);
      json["image"] = Relative(path.ToUTF8(), baseDir);
      double dpi = 0.0;
      if (SUCCEEDED(value.texture->GetDpi(dpi))) json["dpi"] = dpi;
      std::vector<KEPString> groups;
      value.texture->GetGroups(groups);
      if (!groups.empty()) json["groups"] = groups;
      break;
    }
    case KEPRmaType::LightProfile:
      json = value.lightProfile.empty()
                 ? nlohmann::ordered_json(nullptr)
                 : nlohmann::ordered_json(Relative(value.lightProfile, baseDir));
      break;
    case KEPRmaType::Void:
      json = nullptr;
      break;
  }
  return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}
