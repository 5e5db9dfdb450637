// `rshview material`: everything the viewer can ask of a node's hardware material, asked the way
// the viewer asks it: through a "KEPRshShaderDelegate" component linked to the node.
#include <stdlib.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>

#include "KEPCreateComponent.h"
#include "KEPIHardwareMaterial.h"
#include "KEPIOpenGLShaderMaterial.h"
#include "KEPIRmaMappingManipulator.h"
#include "KEPIRmaMappingManipulatorMaterial.h"
#include "KEPIRshShaderLink.h"
#include "KEPPixelImage.h"
#include "KEPRshViewModule.h"
#include "RshviewCommands.h"

const char* const kRshviewMaterialHelp =
    "Usage: rshview material [--library DIR] [--doc FILE] [--node ID|all] [--format text|json]\n"
    "                        [--sticker] [--trace]\n"
    "\n"
    "Prints the viewer's material answers for a node: the CgFX program file (and its \"_Stk\"\n"
    "sticker variant), ambient, diffuse and specular lighting, transparency coefficient,\n"
    "luminosity, contrast, shininess, transparency, colours, the texture image (path and size),\n"
    "wrapping, repeat, flip, position, size and angle, and the mapping answers (type, ratio,\n"
    "rotation, scale, flips, translations, size), each with its result code where the viewer\n"
    "gets one. An answer the material leaves untouched shows as \"-\" (null in JSON).\n"
    "\n"
    "  --node ID    the node to answer for; default: the document's first material\n"
    "  --node all   every node of the document, in document order\n"
    "  --sticker    draw as a sticker: the program becomes the \"_Stk\" sibling\n"
    "\n"
    "The program files are searched under the directories of the environment variable\n"
    "KEPStartupPath (separated by \";\"). When it is not set, rshview sets it to the startup\n"
    "directory next to the library (LIBRARY/../startup), else to the bundled\n"
    "samples/startup.\n"
    "\n"
    "JSON: one node is an object {id, type, physical, program, lighting, texture, mapping};\n"
    "an answer with a result code is {value, result}. With --node all, {\"nodes\": [...]}.\n";

namespace {
using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

constexpr float kUntouched = std::numeric_limits<float>::quiet_NaN();

std::string Number(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%g", value);
  return text;
}

/// A number, or null for an output the material did not touch.
Json Num(double value) {
  return std::isnan(value) ? Json(nullptr) : Json(std::stod(Number(value)));
}

Json WithCode(Json value, HRESULT hr) {
  return Json{{"value", SUCCEEDED(hr) ? std::move(value) : Json(nullptr)},
              {"result", KEPResultName(hr)}};
}

void EnsureStartupPath(const RshviewContext& context) {
  if (std::getenv("KEPStartupPath")) return;
  std::error_code ec;
  fs::path startup = fs::path(context.options.library) / ".." / "startup";
  if (!fs::is_directory(startup, ec)) startup = fs::path(RSHVIEW_DEFAULT_SAMPLES) / "startup";
  setenv("KEPStartupPath", fs::weakly_canonical(startup, ec).string().c_str(), 1);
}

Json Answers(KEPRshShaderNode& node, bool sticker) {
  Json json;
  json["id"] = node.Id();
  json["type"] = node.TypeName();
  json["physical"] = KEPRshIsPhysicalShaderType(node.TypeName());

  auto delegate = KEP_var<KEPBaseUnknown>::Adopt(KEPCreateComponent("KEPRshShaderDelegate"));
  auto link = KEPQueryVar<KEPIRshShaderLink>(delegate);
  auto material = KEPQueryVar<KEPIHardwareMaterial>(delegate);
  auto program = KEPQueryVar<KEPIOpenGLShaderMaterial>(delegate);
  auto mapping = KEPQueryVar<KEPIRmaMappingManipulator>(delegate);
  auto mappingMaterial = KEPQueryVar<KEPIRmaMappingManipulatorMaterial>(delegate);
  if (!link || !material || !program || !mapping || !mappingMaterial) {
    json["error"] = "the module's hardware material is not registered";
    return json;
  }
  link->SetShader(&node);

  // The program, then its sticker sibling; the mode asked for stays set.
  program->SetStickerMode(0);
  const std::string file = program->GetExternalShader().ToUTF8();
  program->SetStickerMode(1);
  const std::string stickerFile = program->GetExternalShader().ToUTF8();
  program->SetStickerMode(sticker ? 1 : 0);
  json["program"] = {{"file", file.empty() ? Json(nullptr) : Json(file)},
                     {"stickerFile", stickerFile.empty() ? Json(nullptr) : Json(stickerFile)},
                     {"stickerMode", program->IsStickerMode() != 0},
                     {"used", program->GetExternalShader().ToUTF8()}};

  Json lighting;
  {
    float coef = kUntouched, c[3] = {kUntouched, kUntouched, kUntouched};
    material->GetAmbient(coef, c);
    lighting["ambient"] = {{"coefficient", Num(coef)},
                           {"color", {Num(c[0]), Num(c[1]), Num(c[2])}}};
  }
  {
    float coef = kUntouched, c[3] = {kUntouched, kUntouched, kUntouched};
    material->GetDiffuse(coef, c);
    lighting["diffuse"] = {{"coefficient", Num(coef)},
                           {"color", {Num(c[0]), Num(c[1]), Num(c[2])}}};
  }
  {
    float coef = kUntouched, c[3] = {kUntouched, kUntouched, kUntouched}, gloss = kUntouched;
    material->GetSpecular(coef, c, gloss);
    lighting["specular"] = {{"coefficient", Num(coef)},
                            {"color", {Num(c[0]), Num(c[1]), Num(c[2])}},
                            {"glossiness", Num(gloss)}};
  }
  lighting["transparencyCoef"] = Num(material->GetTransparencyCoef());
  auto scalar = [&](HRESULT (KEPIRmaMappingManipulatorMaterial::*get)(double&)) {
    double value = kUntouched;
    const HRESULT hr = (mappingMaterial.Get()->*get)(value);
    return WithCode(Num(value), hr);
  };
  lighting["luminosity"] = scalar(&KEPIRmaMappingManipulatorMaterial::GetLuminosity);
  lighting["contrast"] = scalar(&KEPIRmaMappingManipulatorMaterial::GetContrast);
  lighting["shininess"] = scalar(&KEPIRmaMappingManipulatorMaterial::GetShininess);
  lighting["transparency"] = scalar(&KEPIRmaMappingManipulatorMaterial::GetTransparency);
  {
    double r = kUntouched, g = kUntouched, b = kUntouched;
    HRESULT hr = mappingMaterial->GetColor(r, g, b);
    lighting["color"] = WithCode(Json{Num(r), Num(g), Num(b)}, hr);
    r = g = b = kUntouched;
    hr = mappingMaterial->GetTransparentColor(r, g, b);
    lighting["transparentColor"] = WithCode(Json{Num(r), Num(g), Num(b)}, hr);
    unsigned char use = 0;
    hr = mappingMaterial->GetUseTranparentColor(use);
    lighting["useTransparentColor"] = WithCode(use != 0, hr);
  }
  json["lighting"] = std::move(lighting);

  Json texture;
  {
    auto image = KEP_var<KEPTexturePixelImage>::Adopt(material->GetTextureImage());
    texture["image"] = image ? Json{{"path", image->GetPath().ToUTF8()},
                                    {"width", image->GetWidth()},
                                    {"height", image->GetHeight()}}
                             : Json(nullptr);
    int wu = -1, wv = -1;
    material->GetTextureWrapping(wu, wv);
    texture["wrapping"] = {wu < 0 ? Json(nullptr) : Json(wu), wv < 0 ? Json(nullptr) : Json(wv)};
    unsigned char repeat = 0;
    const HRESULT hr = mappingMaterial->GetTextureRepeat(repeat);
    texture["repeat"] = WithCode(repeat != 0, hr);
    unsigned char fu = 0xff, fv = 0xff;
    material->GetTextureFlip(fu, fv);
    texture["flip"] = {fu == 0xff ? Json(nullptr) : Json(fu != 0),
                       fv == 0xff ? Json(nullptr) : Json(fv != 0)};
    float u = kUntouched, v = kUntouched;
    material->GetTexturePosition(u, v);
    texture["position"] = {Num(u), Num(v)};
    u = v = kUntouched;
    material->GetTextureSize(u, v);
    texture["size"] = {Num(u), Num(v)};
    texture["angle"] = Num(material->GetTextureAngle());
  }
  json["texture"] = std::move(texture);

  Json map;
  {
    short type = -1;
    HRESULT hr = mapping->GetMappingType(type);
    map["type"] = WithCode(type, hr);
    auto number = [&](HRESULT (KEPIRmaMappingManipulator::*get)(double&)) {
      double value = kUntouched;
      const HRESULT code = (mapping.Get()->*get)(value);
      return WithCode(Num(value), code);
    };
    map["ratio"] = number(&KEPIRmaMappingManipulator::GetRatio);
    map["rotation"] = number(&KEPIRmaMappingManipulator::GetRotation);
    map["scale"] = number(&KEPIRmaMappingManipulator::GetScale);
    unsigned char flip = 0;
    hr = mapping->GetFlipU(flip);
    map["flipU"] = WithCode(flip != 0, hr);
    hr = mapping->GetFlipV(flip);
    map["flipV"] = WithCode(flip != 0, hr);
    map["translationU"] = number(&KEPIRmaMappingManipulator::GetTranslationU);
    map["translationV"] = number(&KEPIRmaMappingManipulator::GetTranslationV);
    map["size"] = number(&KEPIRmaMappingManipulator::GetSize);
  }
  json["mapping"] = std::move(map);
  return json;
}

std::string Text(const Json& value) {
  if (value.is_null()) return "-";
  if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
  if (value.is_number()) return Number(value.get<double>());
  if (value.is_string()) return value.get<std::string>();
  if (value.is_array()) {
    std::string text = "(";
    for (std::size_t i = 0; i < value.size(); ++i) text += (i ? ", " : "") + Text(value[i]);
    return text + ")";
  }
  return value.dump();
}

void Row(std::ostream& out, const std::string& label, const Json& value) {
  std::string line = "  " + label;
  line.resize(28, ' ');
  if (value.is_object() && value.contains("result")) {
    std::string shown = Text(value["value"]);
    if (shown.size() < 28) shown.resize(28, ' ');
    out << line << shown << "  " << value["result"].get<std::string>() << "\n";
  } else {
    out << line << Text(value) << "\n";
  }
}

void PrintText(const Json& node, std::ostream& out) {
  out << "Node " << node["id"].get<std::string>() << "  type " << node["type"].get<std::string>()
      << (node["physical"].get<bool>() ? "  (physical)" : "") << "\n";
  if (node.contains("error")) {
    out << "  " << node["error"].get<std::string>() << "\n";
    return;
  }
  const Json& program = node["program"];
  Row(out, "program file", program["file"]);
  Row(out, "sticker program file", program["stickerFile"]);
  Row(out, "sticker mode", program["stickerMode"]);
  Row(out, "program used", program["used"]);
  const Json& l = node["lighting"];
  for (const char* kind : {"ambient", "diffuse", "specular"}) {
    const Json& answer = l[kind];
    std::string text =
        "coefficient " + Text(answer["coefficient"]) + ", color " + Text(answer["color"]);
    if (answer.contains("glossiness")) text += ", glossiness " + Text(answer["glossiness"]);
    Row(out, kind, text);
  }
  Row(out, "transparency coefficient", l["transparencyCoef"]);
  Row(out, "luminosity", l["luminosity"]);
  Row(out, "contrast", l["contrast"]);
  Row(out, "shininess", l["shininess"]);
  Row(out, "transparency", l["transparency"]);
  Row(out, "color", l["color"]);
  Row(out, "transparent color", l["transparentColor"]);
  Row(out, "use transparent color", l["useTransparentColor"]);
  const Json& t = node["texture"];
  const Json& image = t["image"];
  Row(out, "texture image",
      image.is_null() ? Json(nullptr)
                      : Json(image["path"].get<std::string>() + " (" +
                             std::to_string(image["width"].get<int>()) + " x " +
                             std::to_string(image["height"].get<int>()) + ")"));
  Row(out, "texture wrapping", t["wrapping"]);
  Row(out, "texture repeat", t["repeat"]);
  Row(out, "texture flip", t["flip"]);
  Row(out, "texture position", t["position"]);
  Row(out, "texture size", t["size"]);
  Row(out, "texture angle", t["angle"]);
  const Json& m = node["mapping"];
  Row(out, "mapping type", m["type"]);
  Row(out, "ratio", m["ratio"]);
  Row(out, "rotation", m["rotation"]);
  Row(out, "scale", m["scale"]);
  Row(out, "flip U", m["flipU"]);
  Row(out, "flip V", m["flipV"]);
  Row(out, "translation U", m["translationU"]);
  Row(out, "translation V", m["translationV"]);
  Row(out, "size", m["size"]);
}

}  // namespace

int RunMaterialCommand(RshviewContext& context) {
  std::vector<KEPRshShaderNode*> nodes;
  if (const int code = RshviewSelectNodes(context, "material", nodes)) return code;
  const std::string& wanted = context.options.node;

  EnsureStartupPath(context);
  Json all = Json::array();
  for (KEPRshShaderNode* node : nodes) all.push_back(Answers(*node, context.options.sticker));
  if (context.options.format == "json") {
    context.out << (wanted == "all" ? Json{{"nodes", all}} : all.front())
                       .dump(2, ' ', false, Json::error_handler_t::replace)
                << "\n";
    return 0;
  }
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (i) context.out << "\n";
    PrintText(all[i], context.out);
  }
  return 0;
}
