// `rshview material`: everything the viewer can ask of a node's hardware material, asked the way
// the viewer asks it: through a "KEPRshShaderDelegate" component linked to the node.
#include <stdlib.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>

#include "KEPCreateComponent.h"
#include "KEPFileServices.h"
#include "KEPHostContext.h"
#include "KEPIHardwareMaterial.h"
#include "KEPIOpenGLShaderMaterial.h"
#include "KEPIRmaMappingManipulator.h"
#include "KEPIRmaMappingManipulatorMaterial.h"
#include "KEPIRshShaderLink.h"
#include "KEPPixelImage.h"
#include "KEPRshViewModule.h"
#include "RshviewCommands.h"
#include "RshviewNumber.h"
#include "RshviewViewer.h"

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

/// A number, or null for an output the material did not touch.
Json Num(double value) {
  return std::isnan(value) ? Json(nullptr) : Json(RshviewRounded(value));
}

Json WithCode(Json value, HRESULT hr) {
  return Json{{"value", SUCCEEDED(hr) ? std::move(value) : Json(nullptr)},
              {"result", KEPResultName(hr)}};
}

// --- Text form

std::string Text(const Json& value) {
  if (value.is_null()) return "-";
  if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
  if (value.is_number()) return RshviewNumber(value.get<double>());
  if (value.is_string()) return value.get<std::string>();
  if (value.is_array()) {
    std::string text = "(";
    for (std::size_t i = 0; i < value.size(); ++i) text += (i ? ", " : "") + Text(value[i]);
    return text + ")";
  }
  return value.dump();
}

std::string LightText(const Json& light) {
  std::string text =
      "coefficient " + Text(light["coefficient"]) + ", color " + Text(light["color"]);
  if (light.contains("glossiness")) text += ", glossiness " + Text(light["glossiness"]);
  return text;
}

std::string ImageText(const Json& image) {
  if (image.is_null()) return "-";
  return image["path"].get<std::string>() + " (" + std::to_string(image["width"].get<int>()) +
         " x " + std::to_string(image["height"].get<int>()) + ")";
}

// --- The viewer's questions

/// The interfaces through which the viewer asks a material.
struct Viewer {
  KEP_var<KEPIHardwareMaterial> material;
  KEP_var<KEPIOpenGLShaderMaterial> program;
  KEP_var<KEPIRmaMappingManipulator> mapping;
  KEP_var<KEPIRmaMappingManipulatorMaterial> mappingMaterial;
  bool sticker;
};

Json File(const KEPUnicodeString& path) {
  const std::string file = path.ToUTF8();
  return file.empty() ? Json(nullptr) : Json(file);
}

Json Light(float coefficient, const float (&color)[3]) {
  return {{"coefficient", Num(coefficient)},
          {"color", {Num(color[0]), Num(color[1]), Num(color[2])}}};
}

/// A number answered with a result code, by an interface of the viewer's.
template <class Interface>
Json CodedNumber(Interface* object, HRESULT (Interface::*get)(double&)) {
  double value = kUntouched;
  const HRESULT hr = (object->*get)(value);
  return WithCode(Num(value), hr);
}

/// A flag answered with a result code.
template <class Interface>
Json CodedFlag(Interface* object, HRESULT (Interface::*get)(unsigned char&)) {
  unsigned char flag = 0;
  const HRESULT hr = (object->*get)(flag);
  return WithCode(flag != 0, hr);
}

Json CodedColor(KEPIRmaMappingManipulatorMaterial* material,
                HRESULT (KEPIRmaMappingManipulatorMaterial::*get)(double&, double&, double&)) {
  double r = kUntouched, g = kUntouched, b = kUntouched;
  const HRESULT hr = (material->*get)(r, g, b);
  return WithCode(Json{Num(r), Num(g), Num(b)}, hr);
}

using MappingMaterial = KEPIRmaMappingManipulatorMaterial;
using Mapping = KEPIRmaMappingManipulator;

/// One answer of the material: where it goes in JSON (group and key), its label in the text form,
/// how to ask it and, for an answer that is not a plain value or a value with its result code, how
/// to print it. The answers are asked, listed and printed in this order, which is also the order
/// that matters to the program questions: the sticker mode they set stays for those that follow.
struct Answer {
  const char* group;
  const char* key;
  const char* label;
  Json (*ask)(Viewer&);
  std::string (*text)(const Json&) = nullptr;
};

const Answer kAnswers[] = {
    // The program, then its sticker sibling; the mode asked for stays set.
    {"program", "file", "program file",
     [](Viewer& v) {
       v.program->SetStickerMode(0);
       return File(v.program->GetExternalShader());
     }},
    {"program", "stickerFile", "sticker program file",
     [](Viewer& v) {
       v.program->SetStickerMode(1);
       return File(v.program->GetExternalShader());
     }},
    {"program", "stickerMode", "sticker mode",
     [](Viewer& v) {
       v.program->SetStickerMode(v.sticker ? 1 : 0);
       return Json(v.program->IsStickerMode() != 0);
     }},
    {"program", "used", "program used",
     [](Viewer& v) { return Json(v.program->GetExternalShader().ToUTF8()); }},
    {"lighting", "ambient", "ambient",
     [](Viewer& v) {
       float coefficient = kUntouched, color[3] = {kUntouched, kUntouched, kUntouched};
       v.material->GetAmbient(coefficient, color);
       return Light(coefficient, color);
     },
     LightText},
    {"lighting", "diffuse", "diffuse",
     [](Viewer& v) {
       float coefficient = kUntouched, color[3] = {kUntouched, kUntouched, kUntouched};
       v.material->GetDiffuse(coefficient, color);
       return Light(coefficient, color);
     },
     LightText},
    {"lighting", "specular", "specular",
     [](Viewer& v) {
       float coefficient = kUntouched, color[3] = {kUntouched, kUntouched, kUntouched};
       float glossiness = kUntouched;
       v.material->GetSpecular(coefficient, color, glossiness);
       Json light = Light(coefficient, color);
       light["glossiness"] = Num(glossiness);
       return light;
     },
     LightText},
    {"lighting", "transparencyCoef", "transparency coefficient",
     [](Viewer& v) { return Num(v.material->GetTransparencyCoef()); }},
    {"lighting", "luminosity", "luminosity",
     [](Viewer& v) {
       return CodedNumber(v.mappingMaterial.Get(), &MappingMaterial::GetLuminosity);
     }},
    {"lighting", "contrast", "contrast",
     [](Viewer& v) { return CodedNumber(v.mappingMaterial.Get(), &MappingMaterial::GetContrast); }},
    {"lighting", "shininess", "shininess",
     [](Viewer& v) {
       return CodedNumber(v.mappingMaterial.Get(), &MappingMaterial::GetShininess);
     }},
    {"lighting", "transparency", "transparency",
     [](Viewer& v) {
       return CodedNumber(v.mappingMaterial.Get(), &MappingMaterial::GetTransparency);
     }},
    {"lighting", "color", "color",
     [](Viewer& v) { return CodedColor(v.mappingMaterial.Get(), &MappingMaterial::GetColor); }},
    {"lighting", "transparentColor", "transparent color",
     [](Viewer& v) {
       return CodedColor(v.mappingMaterial.Get(), &MappingMaterial::GetTransparentColor);
     }},
    {"lighting", "useTransparentColor", "use transparent color",
     [](Viewer& v) {
       return CodedFlag(v.mappingMaterial.Get(), &MappingMaterial::GetUseTranparentColor);
     }},
    {"texture", "image", "texture image",
     [](Viewer& v) {
       auto image = KEP_var<KEPTexturePixelImage>::Adopt(v.material->GetTextureImage());
       return image ? Json{{"path", image->GetPath().ToUTF8()},
                           {"width", image->GetWidth()},
                           {"height", image->GetHeight()}}
                    : Json(nullptr);
     },
     ImageText},
    {"texture", "wrapping", "texture wrapping",
     [](Viewer& v) {
       int u = -1, w = -1;
       v.material->GetTextureWrapping(u, w);
       return Json{u < 0 ? Json(nullptr) : Json(u), w < 0 ? Json(nullptr) : Json(w)};
     }},
    {"texture", "repeat", "texture repeat",
     [](Viewer& v) {
       return CodedFlag(v.mappingMaterial.Get(), &MappingMaterial::GetTextureRepeat);
     }},
    {"texture", "flip", "texture flip",
     [](Viewer& v) {
       unsigned char u = 0xff, w = 0xff;
       v.material->GetTextureFlip(u, w);
       return Json{u == 0xff ? Json(nullptr) : Json(u != 0),
                   w == 0xff ? Json(nullptr) : Json(w != 0)};
     }},
    {"texture", "position", "texture position",
     [](Viewer& v) {
       float u = kUntouched, w = kUntouched;
       v.material->GetTexturePosition(u, w);
       return Json{Num(u), Num(w)};
     }},
    {"texture", "size", "texture size",
     [](Viewer& v) {
       float u = kUntouched, w = kUntouched;
       v.material->GetTextureSize(u, w);
       return Json{Num(u), Num(w)};
     }},
    {"texture", "angle", "texture angle",
     [](Viewer& v) { return Num(v.material->GetTextureAngle()); }},
    {"mapping", "type", "mapping type",
     [](Viewer& v) {
       short type = -1;
       const HRESULT hr = v.mapping->GetMappingType(type);
       return WithCode(type, hr);
     }},
    {"mapping", "ratio", "ratio",
     [](Viewer& v) { return CodedNumber(v.mapping.Get(), &Mapping::GetRatio); }},
    {"mapping", "rotation", "rotation",
     [](Viewer& v) { return CodedNumber(v.mapping.Get(), &Mapping::GetRotation); }},
    {"mapping", "scale", "scale",
     [](Viewer& v) { return CodedNumber(v.mapping.Get(), &Mapping::GetScale); }},
    {"mapping", "flipU", "flip U",
     [](Viewer& v) { return CodedFlag(v.mapping.Get(), &Mapping::GetFlipU); }},
    {"mapping", "flipV", "flip V",
     [](Viewer& v) { return CodedFlag(v.mapping.Get(), &Mapping::GetFlipV); }},
    {"mapping", "translationU", "translation U",
     [](Viewer& v) { return CodedNumber(v.mapping.Get(), &Mapping::GetTranslationU); }},
    {"mapping", "translationV", "translation V",
     [](Viewer& v) { return CodedNumber(v.mapping.Get(), &Mapping::GetTranslationV); }},
    {"mapping", "size", "size",
     [](Viewer& v) { return CodedNumber(v.mapping.Get(), &Mapping::GetSize); }},
};

}  // namespace

Json RshviewMaterialAnswers(KEPHostShaderNode& node, bool sticker) {
  Json json;
  json["id"] = node.Id();
  json["type"] = node.TypeName();
  json["physical"] = KEPRshIsPhysicalShaderType(node.TypeName());

  auto delegate = KEP_var<KEPBaseUnknown>::Adopt(KEPCreateComponent("KEPRshShaderDelegate"));
  auto link = KEPQueryVar<KEPIRshShaderLink>(delegate);
  Viewer viewer{KEPQueryVar<KEPIHardwareMaterial>(delegate),
                KEPQueryVar<KEPIOpenGLShaderMaterial>(delegate),
                KEPQueryVar<KEPIRmaMappingManipulator>(delegate),
                KEPQueryVar<KEPIRmaMappingManipulatorMaterial>(delegate), sticker};
  if (!link || !viewer.material || !viewer.program || !viewer.mapping || !viewer.mappingMaterial) {
    json["error"] = "the module's hardware material is not registered";
    return json;
  }
  link->SetShader(&node);
  for (const Answer& answer : kAnswers) json[answer.group][answer.key] = answer.ask(viewer);
  return json;
}

// For this host session only: the real environment stays as it is, and the next run decides
// afresh.
void RshviewEnsureStartupPath(const std::string& library) {
  KEPString value;
  if (SUCCEEDED(KEPGetEnv("KEPStartupPath", value))) return;
  std::error_code ec;
  fs::path startup = fs::path(library) / ".." / "startup";
  if (!fs::is_directory(startup, ec)) startup = fs::path(RshviewSamplesDirectory()) / "startup";
  KEPHostContext::SetEnvironment("KEPStartupPath", fs::weakly_canonical(startup, ec).string());
}

namespace {

void Row(std::ostream& out, const Answer& answer, const Json& value) {
  std::string line = "  " + std::string(answer.label);
  line.resize(28, ' ');
  if (answer.text) {
    out << line << answer.text(value) << "\n";
  } else if (value.is_object() && value.contains("result")) {
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
  for (const Answer& answer : kAnswers) Row(out, answer, node[answer.group][answer.key]);
}

}  // namespace

int RunMaterialCommand(RshviewContext& context) {
  std::vector<KEPHostShaderNode*> nodes;
  if (const int code = RshviewSelectNodes(context, "material", nodes)) return code;
  const std::string& wanted = context.options.node;

  RshviewEnsureStartupPath(context.options.library);
  Json all = Json::array();
  for (KEPHostShaderNode* node : nodes)
    all.push_back(RshviewMaterialAnswers(*node, context.options.sticker));
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
