#include "KEPRshShaderHardwareExt.h"

#include "KEPRshParameterServices.h"

#include <algorithm>
#include <optional>
#include <string>
#include <type_traits>

#include "KEPFileServices.h"
#include "KEPIPLMDmtDocument.h"
#include "KEPIRshShader.h"
#include "KEPIRshShaderLink.h"
#include "KEPPixelImage.h"
#include "KEPRbaImageServices.h"
#include "KEP_var.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshShaderHardwareExt, KEPBaseUnknown, "KEPNull", "RenderingShader",
                       KEPClassKind_Extension, "KEPRshShaderDelegate")

namespace {

constexpr char kPhysicalPrefix[] = "MPM";
constexpr char kProgramExtension[] = "cgfx";
constexpr char kMaterialsShaders[] = "materials/shaders";
constexpr char kShaders[] = "shaders";

// Process-wide: the "KEPStartupPath" value and the directory lists built from it. Built on first
// use and never rebuilt (except by the test hook).
struct StartupDirectories {
  bool valueRead = false;
  std::optional<std::string> value;
  bool listsBuilt = false;
  std::vector<std::string> directories;
  std::vector<std::string> subdirectories;
};

StartupDirectories& Startup() {
  static StartupDirectories startup;
  return startup;
}

const std::optional<std::string>& StartupPathValue() {
  StartupDirectories& startup = Startup();
  if (!startup.valueRead) {
    startup.valueRead = true;
    KEPString value;
    if (SUCCEEDED(KEPGetEnv("KEPStartupPath", value))) startup.value = std::move(value);
  }
  return startup.value;
}

const StartupDirectories& StartupLists() {
  StartupDirectories& startup = Startup();
  if (!startup.listsBuilt) {
    startup.listsBuilt = true;
    if (const auto& value = StartupPathValue()) {
      // Every segment is kept, empty ones included.
      std::string_view rest(*value);
      while (true) {
        const std::size_t end = rest.find(KEPSearchPathSeparator);
        startup.directories.emplace_back(rest.substr(0, end));
        if (end == std::string_view::npos) break;
        rest.remove_prefix(end + 1);
      }
    }
    startup.subdirectories = {kMaterialsShaders, kShaders};
  }
  return startup;
}

bool StartsWithPhysicalPrefix(std::string_view typeName) {
  return typeName.substr(0, 3) == kPhysicalPrefix;
}

bool Read(KEPIRshParameter* parameter, float& value) {
  return SUCCEEDED(parameter->GetScalarValue(value));
}
bool Read(KEPIRshParameter* parameter, unsigned char& value) {
  return SUCCEEDED(parameter->GetBooleanValue(value));
}
bool Read(KEPIRshParameter* parameter, int& value) {
  return SUCCEEDED(parameter->GetIntegerValue(value));
}
bool ReadColor(KEPIRshParameter* parameter, float (&rgb)[3]) {
  return SUCCEEDED(parameter->GetColorValue(rgb[0], rgb[1], rgb[2]));
}

}  // namespace

// --- Construction

KEPRshShaderHardwareExt::KEPRshShaderHardwareExt() = default;

KEPRshShaderHardwareExt::KEPRshShaderHardwareExt(const KEPRshShaderHardwareExt& other)
    : KEPIUnknown(),
      KEPBaseUnknown(other),
      KEPIHardwareMaterial(),
      KEPIOpenGLShaderMaterial(),
      KEPIRmaMappingManipulator(),
      KEPIRmaMappingManipulatorMaterial() {
  CopyFrom(other);
}

KEPRshShaderHardwareExt& KEPRshShaderHardwareExt::operator=(const KEPRshShaderHardwareExt& other) {
  if (this == &other) return *this;
  KEPBaseUnknown::operator=(other);
  CleanUp();
  CopyFrom(other);
  return *this;
}

void KEPRshShaderHardwareExt::CopyFrom(const KEPRshShaderHardwareExt& other) {
  // Member-wise, except that the copy holds references of its own on the parameters instead of
  // sharing the other's list, and finds its own link (it belongs to no component yet).
  parameterNames_ = other.parameterNames_;
  firstPosition_ = other.firstPosition_;
  texturePositions_ = other.texturePositions_;
  std::copy(std::begin(other.readPositions_), std::end(other.readPositions_), readPositions_);
  shaderFile_ = other.shaderFile_;
  shaderType_ = other.shaderType_;
  stickerMode_ = other.stickerMode_;
  if (other.parameters_) {
    parameters_ = new KEPListP<KEPIRshParameter>();
    for (int i = 1; i <= other.parameters_->Size(); ++i) {
      KEPIRshParameter* parameter = (*other.parameters_)[i];
      if (parameter) parameter->AddRef();
      parameters_->Append(parameter);
    }
  }
}

KEPRshShaderHardwareExt::~KEPRshShaderHardwareExt() {
  CleanUp();
}

KEPBaseUnknown* KEPRshShaderHardwareExt::CreateItself() {
  return nullptr;
}

HRESULT KEPRshShaderHardwareExt::ChangeComponentState(int from, int to, const void* context) {
  if (from < KEPComponentState_Deleted && to == KEPComponentState_Deleted) CleanUp();
  return KEPBaseUnknown::ChangeComponentState(from, to, context);
}

void KEPRshShaderHardwareExt::ResetProcessCachesForTests() {
  Startup() = StartupDirectories{};
}

// --- Link and initialisation

KEPIRshShaderLink* KEPRshShaderHardwareExt::FindLink() {
  if (link_) return link_;
  // The link is a sibling extension of the same component: it lives exactly as long as the
  // component, so a borrowed pointer stays valid for our whole life.
  KEP_var<KEPIRshShaderLink> link =
      KEPQueryVar<KEPIRshShaderLink>(static_cast<KEPBaseUnknown*>(this));
  link_ = link.Get();
  return link_;
}

void KEPRshShaderHardwareExt::ReadLinkedTypeName(KEPString& typeName) {
  typeName.clear();
  KEPIRshShaderLink* link = FindLink();
  if (!link) return;
  KEP_var<KEPIRshShader> shader;
  if (FAILED(link->GetShader(*shader.Out())) || !shader) return;
  if (FAILED(shader->GetTypeName(typeName))) typeName.clear();
}

KEPString KEPRshShaderHardwareExt::GetLinkedTypeName() {
  KEPString typeName;
  ReadLinkedTypeName(typeName);
  return typeName;
}

bool KEPRshShaderHardwareExt::IsPhysicalShader() {
  // Read afresh for every question, into a buffer that keeps its capacity: no allocation per
  // question once the first name has been read.
  ReadLinkedTypeName(typeNameBuffer_);
  return StartsWithPhysicalPrefix(typeNameBuffer_);
}

bool KEPRshShaderHardwareExt::FindShaderFile(std::string_view baseName, KEPUnicodeString& found) {
  const StartupDirectories& lists = StartupLists();
  for (const std::string& directory : lists.directories) {
    for (const std::string& subdirectory : lists.subdirectories) {
      std::string candidate = directory;
      candidate += KEPPathSeparator;
      candidate += subdirectory;
      candidate += KEPPathSeparator;
      candidate += baseName;
      candidate += '.';
      candidate += kProgramExtension;
      if (KEPFileAccess(candidate.c_str(), 0) == 0) {
        found = KEPUnicodeString::FromUTF8(candidate);
        return true;
      }
    }
  }
  return false;
}

void KEPRshShaderHardwareExt::AppendName(KEPString name) {
  parameterNames_.Append(name);
  firstPosition_.try_emplace(std::move(name), parameterNames_.Size());
}

void KEPRshShaderHardwareExt::Init() {
  if (parameters_) return;
  KEPIRshShaderLink* link = FindLink();
  if (!link) return;
  KEP_var<KEPIRshShader> shader;
  if (FAILED(link->GetShader(*shader.Out())) || !shader) return;

  // The program file is searched once for the object's life.
  KEPString typeName;
  if (shaderFile_.IsEmpty() && SUCCEEDED(shader->GetTypeName(typeName)) &&
      typeName.find(kPhysicalPrefix) == 0) {
    // Every physical shader draws with the common program when there is one.
    for (std::string_view baseName : {std::string_view("MPM_material"), std::string_view(typeName),
                                      std::string_view("rsh_default")})
      if (FindShaderFile(baseName, shaderFile_)) break;
  }
  if (shaderFile_.IsEmpty()) {
    if (const auto& startupPath = StartupPathValue()) {
      // The type is read again for the member; the path is built from the first read.
      shader->GetTypeName(shaderType_);
      std::string relative;
      if (typeName == "kep_phen_texture")
        relative = kMaterialsShaders;
      else if (StartsWithPhysicalPrefix(typeName))
        relative = kShaders;
      else
        relative = kMaterialsShaders;
      relative += KEPPathSeparator;
      relative += typeName;
      relative += '.';
      relative += kProgramExtension;
      KEPString found;
      HRESULT hr = KEPFindPath(relative.c_str(), startupPath->c_str(), found);
      if (FAILED(hr)) {
        const std::string fallback =
            std::string(kMaterialsShaders) + KEPPathSeparator + "rsh_default." + kProgramExtension;
        hr = KEPFindPath(fallback.c_str(), startupPath->c_str(), found);
      }
      if (SUCCEEDED(hr)) shaderFile_ = KEPUnicodeString::FromUTF8(found);
    }
  }

  KEPListP<KEPIRshParameter>* list = nullptr;
  if (FAILED(shader->GetParameters(list))) list = nullptr;
  parameters_ = list;
  if (!parameters_) return;
  texturePositions_.clear();
  for (int i = 1; i <= parameters_->Size(); ++i) {
    KEPIRshParameter* parameter = (*parameters_)[i];
    if (!parameter) continue;
    // A name that cannot be read is skipped: later names then pair with the next positions.
    KEPString name;
    if (SUCCEEDED(parameter->GetName(name))) AppendName(std::move(name));
    KEPString parameterType;
    if (SUCCEEDED(parameter->GetTypeName(parameterType)) && parameterType == "KEPRmaTexture")
      texturePositions_.push_back(i);
  }
  for (int k = 0; k < kReadNameCount; ++k)
    readPositions_[k] = std::max(CheckParameter(kReadNames[k]), 0);
}

KEPIRshParameter* KEPRshShaderHardwareExt::GetReadParameter(int index) {
  Init();
  if (!parameters_) return nullptr;
  const int position = readPositions_[index];
  if (position == 0 || position > parameters_->Size()) return nullptr;
  return (*parameters_)[position];
}

void KEPRshShaderHardwareExt::CleanUp() {
  if (!parameters_) return;
  for (int i = 1; i <= parameters_->Size(); ++i)
    if (KEPIRshParameter* parameter = (*parameters_)[i]) parameter->Release();
  delete parameters_;
  parameters_ = nullptr;
  texturePositions_.clear();
  connected_ = ConnectedTexture{};
}

// --- Parameter lookup

KEPIRshParameter* KEPRshShaderHardwareExt::GetParameter(int i) {
  Init();
  if (!parameters_ || i < 1 || i > parameters_->Size()) return nullptr;
  return (*parameters_)[i];
}

KEPIRshParameter* KEPRshShaderHardwareExt::GetParameter(std::string_view name) {
  Init();
  if (!parameters_) return nullptr;
  // The first position of a name in the name list is its first match among 1..count, if any.
  // Positions past the end of the name list (names that could not be read) read as empty names,
  // so an empty name that is not in the list meets the first of them.
  auto it = firstPosition_.find(name);
  int position = it == firstPosition_.end() ? 0 : it->second;
  if (position == 0 && name.empty()) position = parameterNames_.Size() + 1;
  if (position == 0 || position > parameters_->Size()) return nullptr;
  return (*parameters_)[position];
}

int KEPRshShaderHardwareExt::CheckParameter(std::string_view name) {
  auto it = firstPosition_.find(name);
  return it == firstPosition_.end() ? -1 : it->second;
}

int KEPRshShaderHardwareExt::IsModifiedParameter(int i) {
  Init();
  return parameters_ && i >= 1 && i <= parameters_->Size() && (*parameters_)[i] ? 2 : 3;
}

KEPIHardwareMaterial* KEPRshShaderHardwareExt::GetConnectedTexture() {
  Init();
  if (!parameters_) return nullptr;
  for (int i = 1; i <= parameters_->Size(); ++i) {
    KEPIRshParameter* parameter = (*parameters_)[i];
    if (!parameter) continue;
    KEP_var<KEPIRshShader> connected;
    if (FAILED(parameter->GetConnectedShader(*connected.Out())) || !connected) continue;
    if (KEPIHardwareMaterial* material = KEPQuery<KEPIHardwareMaterial>(connected.Get()))
      return material;
  }
  return nullptr;
}

bool KEPRshShaderHardwareExt::RefreshConnectedTexture() {
  // The viewer asks every frame and connections change rarely, while finding the connected
  // texture means a walk over the parameters and several interface queries. So what was found is
  // kept, without a reference, for as long as no connection in the model has changed and the
  // object found is alive.
  const unsigned long long generation = KEPRshParameterServices::GetConnectionGeneration();
  if (connected_.generation == generation && parameters_ &&
      (!connected_.material || connected_.object.IsAlive()))
    return connected_.material != nullptr;
  connected_ = ConnectedTexture{};
  auto material = KEP_var<KEPIHardwareMaterial>::Adopt(GetConnectedTexture());
  if (!parameters_) return false;  // not initialised yet: look again next time
  connected_.generation = generation;
  auto* object = dynamic_cast<KEPBaseUnknown*>(material.Get());
  if (!object) return false;
  connected_.object.Set(object);
  connected_.material = material.Get();
  // Borrowed like the material: served by the same component, which outlives neither.
  connected_.mapping = KEPQueryVar<KEPIRmaMappingManipulator>(material).Get();
  return true;
}

template <class Interface, class Ask>
bool KEPRshShaderHardwareExt::AskConnectedTexture(Ask&& ask) {
  if (askingConnected_ || !RefreshConnectedTexture()) return false;
  Interface* target = nullptr;
  if constexpr (std::is_same_v<Interface, KEPIHardwareMaterial>)
    target = connected_.material;
  else
    target = connected_.mapping;
  if (!target) return false;
  askingConnected_ = true;
  ask(*target);
  askingConnected_ = false;
  return true;
}

// --- Lighting

void KEPRshShaderHardwareExt::GetAmbient(float& coefficient, float* const color) {
  const float c = IsPhysicalShader() ? 0.0f : 1.0f;
  coefficient = 0.0f;
  if (color) color[0] = color[1] = color[2] = c;
}

void KEPRshShaderHardwareExt::GetDiffuse(float& coefficient, float* const color) {
  if (!IsPhysicalShader()) {
    coefficient = 0.0f;
    if (color) color[0] = color[1] = color[2] = 1.0f;
    return;
  }
  KEPIRshParameter* weight = GetReadParameter(ReadName("default_generic_brdf_diffuse_weight"));
  KEPIRshParameter* colour = GetReadParameter(ReadName("default_slot_diffuse_color"));
  KEPIRshParameter* glossiness =
      GetReadParameter(ReadName("default_generic_brdf_diffuse_glossiness"));
  if (!weight || !colour || !glossiness) return;
  float w = 0.0f, rgb[3] = {0.0f, 0.0f, 0.0f}, g = 0.0f;
  // The glossiness is required to read although the diffuse answer does not carry it.
  if (!Read(weight, w) || !ReadColor(colour, rgb) || !Read(glossiness, g)) return;
  coefficient = w;
  if (color) color[0] = rgb[0], color[1] = rgb[1], color[2] = rgb[2];
}

void KEPRshShaderHardwareExt::GetSpecular(float& coefficient, float* const color,
                                          float& glossiness) {
  if (!IsPhysicalShader()) {
    coefficient = 0.0f;
    if (color) color[0] = color[1] = color[2] = 1.0f;
    glossiness = 0.0f;
    return;
  }
  KEPIRshParameter* weight = GetReadParameter(ReadName("default_generic_brdf_specular_weight"));
  KEPIRshParameter* colour = GetReadParameter(ReadName("default_slot_specular_color"));
  KEPIRshParameter* gloss = GetReadParameter(ReadName("default_slot_specular_glossiness"));
  if (!weight || !colour || !gloss) return;
  float w = 0.0f, rgb[3] = {0.0f, 0.0f, 0.0f}, g = 0.0f;
  if (!Read(weight, w) || !ReadColor(colour, rgb) || !Read(gloss, g)) return;
  coefficient = w;
  if (color) color[0] = rgb[0], color[1] = rgb[1], color[2] = rgb[2];
  glossiness = g;
}

float KEPRshShaderHardwareExt::GetTransparencyCoef() {
  if (IsPhysicalShader()) {
    KEPIRshParameter* transparency = GetReadParameter(ReadName("default_slot_transparency"));
    KEPIRshParameter* opacity = GetReadParameter(ReadName("default_slot_opacity"));
    if (!transparency || !opacity) return 0.0f;
    // The opacity parameter is only required to exist: the opacity is read from the
    // transparency parameter, so the answer is max(t, 1 - t), capped at 1 on the t side.
    float t = 0.0f, o = 1.0f;
    if (!Read(transparency, t) || !Read(transparency, o)) return 0.0f;
    if (1.0f - o > t) return 1.0f - o;
    if (t > 1.0f) return 1.0f;
    return t;
  }
  Init();  // the shader type is stored by the program file search
  static constexpr std::string_view kTranslucentTypes[] = {
      "mia_phen_clear_glass",          "mia_phen_colored_glass",
      "mia_phen_frosted_glass",        "mia_phen_simple_translucent",
      "mia_phen_backside_translucent", "mia_phen_reflective_translucent"};
  for (std::string_view type : kTranslucentTypes)
    if (shaderType_ == type) return 0.5f;
  return 0.0f;
}

HRESULT KEPRshShaderHardwareExt::GetLuminosity(double& luminosity) {
  luminosity = IsPhysicalShader() ? 0.0 : 1.0;
  return S_OK;
}

namespace {
/// A physical scalar read for the mapping-material answers: E_FAIL when missing, the getter's
/// code when it fails, else the value.
HRESULT ReadScalarAnswer(KEPIRshParameter* parameter, double& out) {
  if (!parameter) return E_FAIL;
  float value = 0.0f;
  const HRESULT hr = parameter->GetScalarValue(value);
  if (FAILED(hr)) return hr;
  out = value;
  return S_OK;
}
}  // namespace

HRESULT KEPRshShaderHardwareExt::GetContrast(double& contrast) {
  if (!IsPhysicalShader()) {
    contrast = 1.0;
    return S_OK;
  }
  return ReadScalarAnswer(GetReadParameter(ReadName("default_generic_brdf_diffuse_weight")),
                          contrast);
}

HRESULT KEPRshShaderHardwareExt::GetShininess(double& shininess) {
  if (!IsPhysicalShader()) {
    shininess = 0.0;
    return S_OK;
  }
  return ReadScalarAnswer(GetReadParameter(ReadName("default_generic_brdf_specular_weight")),
                          shininess);
}

HRESULT KEPRshShaderHardwareExt::GetTransparency(double& transparency) {
  if (!IsPhysicalShader()) return E_FAIL;
  return ReadScalarAnswer(GetReadParameter(ReadName("default_slot_transparency")), transparency);
}

HRESULT KEPRshShaderHardwareExt::GetDiffuseColor(double& r, double& g, double& b) {
  if (!IsPhysicalShader()) return S_OK;
  KEPIRshParameter* colour = GetReadParameter(ReadName("default_slot_diffuse_color"));
  if (!colour) return E_FAIL;
  float rgb[3] = {0.0f, 0.0f, 0.0f};
  const HRESULT hr = colour->GetColorValue(rgb[0], rgb[1], rgb[2]);
  if (FAILED(hr)) return hr;
  r = rgb[0], g = rgb[1], b = rgb[2];
  return S_OK;
}

HRESULT KEPRshShaderHardwareExt::GetColor(double& r, double& g, double& b) {
  return GetDiffuseColor(r, g, b);
}

HRESULT KEPRshShaderHardwareExt::GetTransparentColor(double& r, double& g, double& b) {
  return GetDiffuseColor(r, g, b);
}

HRESULT KEPRshShaderHardwareExt::GetUseTranparentColor(unsigned char& use) {
  use = IsPhysicalShader() ? 1 : 0;
  return S_OK;
}

// --- Texture image

KEPTexturePixelImage* KEPRshShaderHardwareExt::GetTextureImage() {
  Init();
  if (parameters_) {
    for (int position : texturePositions_) {
      KEPIRshParameter* parameter = (*parameters_)[position];
      KEP_var<KEPIPLMDmtDocument> document;
      if (!parameter || FAILED(parameter->GetTextureValue(*document.Out())) || !document) continue;
      KEPUnicodeString path;
      if (FAILED(KEPRbaImageServices::GetProjectionPath(document.Get(), path))) continue;
      if (KEPTexturePixelImage* image = KEPTexturePixelImage::GetImage(path, KEPReadOnlyState))
        return image;
    }
  }
  KEPTexturePixelImage* image = nullptr;
  AskConnectedTexture<KEPIHardwareMaterial>(
      [&](KEPIHardwareMaterial& material) { image = material.GetTextureImage(); });
  return image;
}

KEPTexturePixelImage* KEPRshShaderHardwareExt::GetTexturePixelImage() {
  return GetTextureImage();
}

// --- Texture placement

void KEPRshShaderHardwareExt::GetTextureWrapping(int& u, int& v) {
  if (IsPhysicalShader()) {
    KEPIRshParameter* repeatU = GetReadParameter(ReadName("repeat_u"));
    KEPIRshParameter* repeatV = GetReadParameter(ReadName("repeat_v"));
    unsigned char ru = 0, rv = 0;
    if (!repeatU || !repeatV || !Read(repeatU, ru) || !Read(repeatV, rv)) return;
    u = ru != 0;
    v = rv != 0;
    return;
  }
  u = v = 0;
  if (GetReadParameter(ReadName("_uv_mapping"))) {
    u = v = 1;
    return;
  }
  AskConnectedTexture<KEPIHardwareMaterial>(
      [&](KEPIHardwareMaterial& material) { material.GetTextureWrapping(u, v); });
}

HRESULT KEPRshShaderHardwareExt::GetTextureRepeat(unsigned char& repeat) {
  if (!IsPhysicalShader()) return E_FAIL;
  KEPIRshParameter* repeatU = GetReadParameter(ReadName("repeat_u"));
  KEPIRshParameter* repeatV = GetReadParameter(ReadName("repeat_v"));
  unsigned char ru = 0, rv = 0;
  if (!repeatU || !repeatV || !Read(repeatU, ru) || !Read(repeatV, rv)) return E_FAIL;
  repeat = ru != 0 && rv != 0 ? 1 : 0;
  return S_OK;
}

void KEPRshShaderHardwareExt::GetTextureFlip(unsigned char& u, unsigned char& v) {
  if (IsPhysicalShader()) {
    KEPIRshParameter* flipU = GetReadParameter(ReadName("flip_u"));
    KEPIRshParameter* flipV = GetReadParameter(ReadName("flip_v"));
    unsigned char fu = 0, fv = 0;
    if (!flipU || !flipV || !Read(flipU, fu) || !Read(flipV, fv)) return;
    u = fu, v = fv;
    return;
  }
  u = v = 0;
  KEPIRshParameter* flipU = GetReadParameter(ReadName("_uv_flip_u"));
  KEPIRshParameter* flipV = GetReadParameter(ReadName("_uv_flip_v"));
  if (flipU && flipV) {
    Read(flipU, u);
    Read(flipV, v);
    return;
  }
  AskConnectedTexture<KEPIHardwareMaterial>(
      [&](KEPIHardwareMaterial& material) { material.GetTextureFlip(u, v); });
}

void KEPRshShaderHardwareExt::GetTexturePosition(float& u, float& v) {
  if (IsPhysicalShader()) {
    KEPIRshParameter* offsetU = GetReadParameter(ReadName("offset_u"));
    KEPIRshParameter* offsetV = GetReadParameter(ReadName("offset_v"));
    float ou = 0.0f, ov = 0.0f;
    if (!offsetU || !offsetV || !Read(offsetU, ou) || !Read(offsetV, ov)) return;
    u = ou, v = ov;
    return;
  }
  u = v = 0.0f;
  KEPIRshParameter* offsetU = GetReadParameter(ReadName("_uv_offset_u"));
  KEPIRshParameter* offsetV = GetReadParameter(ReadName("_uv_offset_v"));
  if (offsetU && offsetV) {
    Read(offsetU, u);
    Read(offsetV, v);
    return;
  }
  AskConnectedTexture<KEPIHardwareMaterial>(
      [&](KEPIHardwareMaterial& material) { material.GetTexturePosition(u, v); });
}

void KEPRshShaderHardwareExt::GetTextureSize(float& u, float& v) {
  if (IsPhysicalShader()) {
    KEPIRshParameter* scaleU = GetReadParameter(ReadName("scale_u"));
    KEPIRshParameter* scaleV = GetReadParameter(ReadName("scale_v"));
    float su = 0.0f, sv = 0.0f;
    if (!scaleU || !scaleV || !Read(scaleU, su) || !Read(scaleV, sv)) return;
    u = su, v = sv;
    return;
  }
  u = v = 1.0f;
  KEPIRshParameter* scaleU = GetReadParameter(ReadName("_uv_scale_u"));
  KEPIRshParameter* scaleV = GetReadParameter(ReadName("_uv_scale_v"));
  if (scaleU && scaleV) {
    Read(scaleU, u);
    Read(scaleV, v);
    return;
  }
  AskConnectedTexture<KEPIHardwareMaterial>(
      [&](KEPIHardwareMaterial& material) { material.GetTextureSize(u, v); });
}

float KEPRshShaderHardwareExt::GetTextureAngle() {
  if (IsPhysicalShader()) {
    KEPIRshParameter* angle = GetReadParameter(ReadName("angle"));
    float value = 0.0f;
    if (!angle || !Read(angle, value)) return 0.0f;
    return value;
  }
  if (KEPIRshParameter* angle = GetReadParameter(ReadName("_uv_angle"))) {
    float value = 0.0f;
    Read(angle, value);
    return value;
  }
  float value = 0.0f;
  AskConnectedTexture<KEPIHardwareMaterial>(
      [&](KEPIHardwareMaterial& material) { value = material.GetTextureAngle(); });
  return value;
}

// --- Mapping manipulator answers, derived through the virtual table

HRESULT KEPRshShaderHardwareExt::GetFlipU(unsigned char& flip) {
  unsigned char u = 0, v = 0;
  GetTextureFlip(u, v);
  flip = u != 0;
  return S_OK;
}

HRESULT KEPRshShaderHardwareExt::GetFlipV(unsigned char& flip) {
  unsigned char u = 0, v = 0;
  GetTextureFlip(u, v);
  flip = v != 0;
  return S_OK;
}

HRESULT KEPRshShaderHardwareExt::GetTranslationU(double& translation) {
  float u = 0.0f, v = 0.0f;
  GetTexturePosition(u, v);
  translation = u;
  return S_OK;
}

HRESULT KEPRshShaderHardwareExt::GetTranslationV(double& translation) {
  float u = 0.0f, v = 0.0f;
  GetTexturePosition(u, v);
  translation = v;
  return S_OK;
}

HRESULT KEPRshShaderHardwareExt::GetScale(double& scale) {
  float u = 0.0f, v = 0.0f;
  GetTextureSize(u, v);
  scale = u;  // the V size is never reported here
  return S_OK;
}

HRESULT KEPRshShaderHardwareExt::GetRotation(double& angle) {
  angle = GetTextureAngle();
  return S_OK;
}

HRESULT KEPRshShaderHardwareExt::GetRatio(double& ratio) {
  if (IsPhysicalShader()) {
    KEPIRshParameter* scaleU = GetReadParameter(ReadName("scale_u"));
    KEPIRshParameter* scaleV = GetReadParameter(ReadName("scale_v"));
    if (!scaleU || !scaleV) return E_FAIL;
    float u = 1.0f, v = 1.0f;
    if (!Read(scaleU, u) || !Read(scaleV, v)) return E_FAIL;
    ratio = u / v;
    return S_OK;
  }
  if (GetReadParameter(ReadName("_uv_mapping"))) {
    float u = 0.0f, v = 0.0f;
    GetTextureSize(u, v);
    if (u == 0.0f || v == 0.0f) return E_FAIL;
    ratio = u / v;
    return S_OK;
  }
  HRESULT hr = E_FAIL;
  AskConnectedTexture<KEPIRmaMappingManipulator>(
      [&](KEPIRmaMappingManipulator& manipulator) { hr = manipulator.GetRatio(ratio); });
  return hr;
}

HRESULT KEPRshShaderHardwareExt::GetSize(double& size) {
  if (IsPhysicalShader()) {
    KEPIRshParameter* scaleU = GetReadParameter(ReadName("scale_u"));
    float u = 1.0f;
    if (!scaleU || !Read(scaleU, u)) return E_FAIL;
    size = u;
    return S_OK;
  }
  if (GetReadParameter(ReadName("_uv_mapping"))) {
    float u = 0.0f, v = 0.0f;
    GetTextureSize(u, v);
    size = u;
    return S_OK;
  }
  HRESULT hr = E_FAIL;
  AskConnectedTexture<KEPIRmaMappingManipulator>(
      [&](KEPIRmaMappingManipulator& manipulator) { hr = manipulator.GetSize(size); });
  return hr;
}

HRESULT KEPRshShaderHardwareExt::SetSize(const double& size) {
  if (IsPhysicalShader()) {
    KEPIRshParameter* scaleU = GetReadParameter(ReadName("scale_u"));
    KEPIRshParameter* scaleV = GetReadParameter(ReadName("scale_v"));
    if (!scaleU || !scaleV) return E_FAIL;
    const float value = static_cast<float>(size);
    const bool wroteU = SUCCEEDED(scaleU->SetScalarValue(value));
    const bool wroteV = SUCCEEDED(scaleV->SetScalarValue(value));
    return wroteU && wroteV ? S_OK : E_FAIL;
  }
  KEPIRshParameter* scaleU = GetReadParameter(ReadName("_uv_scale_u"));
  KEPIRshParameter* scaleV = GetReadParameter(ReadName("_uv_scale_v"));
  if (scaleU && scaleV) {
    double ratio = 0.0;
    GetRatio(ratio);
    if (ratio == 0.0) return E_FAIL;
    scaleU->SetScalarValue(static_cast<float>(size));
    scaleV->SetScalarValue(static_cast<float>(ratio * size));
    return S_OK;
  }
  HRESULT hr = E_FAIL;
  AskConnectedTexture<KEPIRmaMappingManipulator>(
      [&](KEPIRmaMappingManipulator& manipulator) { hr = manipulator.SetSize(size); });
  return hr;
}

HRESULT KEPRshShaderHardwareExt::SetTranslationU(double& translation) {
  if (!IsPhysicalShader()) return E_FAIL;
  KEPIRshParameter* offset = GetReadParameter(ReadName("offset_u"));
  if (!offset) return E_FAIL;
  return offset->SetScalarValue(static_cast<float>(translation));
}

HRESULT KEPRshShaderHardwareExt::SetTranslationV(double& translation) {
  if (!IsPhysicalShader()) return E_FAIL;
  KEPIRshParameter* offset = GetReadParameter(ReadName("offset_v"));
  if (!offset) return E_FAIL;
  return offset->SetScalarValue(static_cast<float>(translation));
}

HRESULT KEPRshShaderHardwareExt::GetMappingType(short& type) {
  if (!IsPhysicalShader()) {
    if (KEPIRshParameter* mapping = GetReadParameter(ReadName("_uv_mapping"))) {
      int value = 0;
      Read(mapping, value);
      type = static_cast<short>(value);
      return S_OK;
    }
    HRESULT hr = E_FAIL;
    AskConnectedTexture<KEPIRmaMappingManipulator>(
        [&](KEPIRmaMappingManipulator& manipulator) { hr = manipulator.GetMappingType(type); });
    return hr;
  }
  int version = 1;
  if (KEPIRshParameter* versionParameter = GetReadParameter(ReadName("RNDMaterialVersion")))
    if (!Read(versionParameter, version)) version = 0;
  int mappingType = 0;
  KEPIRshParameter* typeParameter = GetReadParameter(ReadName("type"));
  if (!typeParameter || !Read(typeParameter, mappingType)) {
    type = 6;
    return S_OK;
  }
  if (version == 0) {
    // Materials of version 0 numbered the types differently.
    switch (mappingType) {
      case 0:
      case 1:
      case 2:
      case 3:
        type = static_cast<short>(mappingType);
        break;
      case 5:
        type = 8;
        break;
      default:
        type = 6;
        break;
    }
    return S_OK;
  }
  switch (mappingType) {
    case 0:
    case 1:
    case 2:
    case 3:
    case 4:
    case 5:
    case 7:
    case 8:
      type = static_cast<short>(mappingType);
      break;
    default:
      type = 6;
      break;
  }
  return S_OK;
}

// --- Program file

KEPUnicodeString KEPRshShaderHardwareExt::GetExternalShader() {
  Init();
  if (!stickerMode_) return shaderFile_;
  // A sticker draws with the sibling program whose name carries "_Stk" before the extension.
  KEPUnicodeString base, extension;
  KEPRbaImageServices::SplitPath(shaderFile_, base, extension);
  const std::u16string original = base.Str() + u"." + extension.Str();
  const std::u16string sticker = base.Str() + u"_Stk." + extension.Str();
  KEPUnicodeString result = shaderFile_;
  const std::size_t at = result.Str().find(original);
  if (at != std::u16string::npos) result.Str().replace(at, original.size(), sticker);
  return result;
}

unsigned char KEPRshShaderHardwareExt::IsStickerMode() {
  return stickerMode_;
}
void KEPRshShaderHardwareExt::SetStickerMode(unsigned char sticker) {
  stickerMode_ = sticker;
}

// --- Program parameters by position

int KEPRshShaderHardwareExt::CheckShaderFloatParameter(KEPString& name) {
  return CheckParameter(name);
}
int KEPRshShaderHardwareExt::CheckShaderColorParameter(KEPString& name) {
  return CheckParameter(name);
}
int KEPRshShaderHardwareExt::CheckExternalShaderImagesLink(KEPString& name) {
  return CheckParameter(name);
}
int KEPRshShaderHardwareExt::IsModifiedShaderFloatParameter(int position) {
  return IsModifiedParameter(position);
}
int KEPRshShaderHardwareExt::IsModifiedShaderColorParameter(int position) {
  return IsModifiedParameter(position);
}
int KEPRshShaderHardwareExt::IsModifiedExternalShaderImageLink(int position) {
  return IsModifiedParameter(position);
}

void KEPRshShaderHardwareExt::GetShaderFloatParameter(int position, float& value) {
  value = 0.0f;
  if (KEPIRshParameter* parameter = GetParameter(position)) Read(parameter, value);
}

void KEPRshShaderHardwareExt::GetShaderColorParameter(int position, float& r, float& g, float& b) {
  KEPIRshParameter* parameter = GetParameter(position);
  float rgb[3] = {0.0f, 0.0f, 0.0f};
  if (!parameter || !ReadColor(parameter, rgb)) return;
  r = rgb[0], g = rgb[1], b = rgb[2];
}

void KEPRshShaderHardwareExt::GetExternalShaderImageLink(int position, KEPUnicodeString& path) {
  KEPIRshParameter* parameter = GetParameter(position);
  if (!parameter) return;
  KEP_var<KEPIPLMDmtDocument> document;
  if (FAILED(parameter->GetTextureValue(*document.Out())) || !document) return;
  KEPUnicodeString found;
  if (SUCCEEDED(KEPRbaImageServices::GetProjectionPath(document.Get(), found))) path = found;
}

// --- Fixed results

HRESULT KEPRshShaderHardwareExt::GetMatrix(KEPMathTransformation&) {
  return E_FAIL;
}
HRESULT KEPRshShaderHardwareExt::SetMatrix(const KEPMathTransformation&) {
  return E_FAIL;
}
HRESULT KEPRshShaderHardwareExt::SetExternalShaderImageLink(int, KEPUnicodeString&) {
  return E_FAIL;
}
HRESULT KEPRshShaderHardwareExt::SetInternalShaderImageLink(int, KEPUnicodeString&) {
  return E_FAIL;
}

int KEPRshShaderHardwareExt::CheckInternalShaderImagesLink(KEPString&) {
  return -1;
}
int KEPRshShaderHardwareExt::CheckShaderStringParameter(KEPString&) {
  return -1;
}
int KEPRshShaderHardwareExt::GetExternalShaderStatus() {
  return -1;
}
int KEPRshShaderHardwareExt::GetExternalShaderType() {
  return -1;
}
int KEPRshShaderHardwareExt::GetNbExternalShaderImageParamName() {
  return -1;
}
int KEPRshShaderHardwareExt::GetNbExternalShaderImagesLink() {
  return -1;
}
int KEPRshShaderHardwareExt::GetNbInternalShaderImageParamName() {
  return -1;
}
int KEPRshShaderHardwareExt::GetNbInternalShaderImagesLink() {
  return -1;
}
int KEPRshShaderHardwareExt::GetShaderColorNbParameter() {
  return -1;
}
int KEPRshShaderHardwareExt::GetShaderFloatNbParameter() {
  return -1;
}
int KEPRshShaderHardwareExt::GetShaderStringNbParameter() {
  return -1;
}
int KEPRshShaderHardwareExt::GetShaderType() {
  return -1;
}
int KEPRshShaderHardwareExt::IsModifiedInternalShaderImageLink(int) {
  return -1;
}
int KEPRshShaderHardwareExt::IsModifiedShaderISLFile() {
  return -1;
}
int KEPRshShaderHardwareExt::IsModifiedShaderStringParameter(int) {
  return -1;
}
int KEPRshShaderHardwareExt::IsResetParametersShaderISLFile() {
  return -1;
}

KEPILinkableObject* KEPRshShaderHardwareExt::GetExternalShaderLink() {
  return nullptr;
}
KEPRmaEnvironmentPixelImage* KEPRshShaderHardwareExt::GetEnvironmentMap() {
  return nullptr;
}
int KEPRshShaderHardwareExt::GetReflectionType() {
  return 0;
}
int KEPRshShaderHardwareExt::UpdateSubstanceOutputMaps(const KEPString&) {
  return 0;
}
int KEPRshShaderHardwareExt::UseTextureRatio() {
  return 1;
}
float KEPRshShaderHardwareExt::GetReflectivityCoef() {
  return 0.0f;
}
void KEPRshShaderHardwareExt::GetNonLinearReflection(float& a, float& b) {
  a = b = 0.0f;
}

KEPUnicodeString KEPRshShaderHardwareExt::GetPrevShaderExtFile() {
  return {};
}
KEPUnicodeString KEPRshShaderHardwareExt::GetShaderISLFile() {
  return {};
}
KEPString KEPRshShaderHardwareExt::GetExternalShaderImagesLinkName(int) {
  return {};
}
KEPString KEPRshShaderHardwareExt::GetInternalShaderImagesLinkName(int) {
  return {};
}
KEPString KEPRshShaderHardwareExt::GetShaderColorParameterName(int) {
  return {};
}
KEPString KEPRshShaderHardwareExt::GetShaderFloatParameterName(int) {
  return {};
}
KEPString KEPRshShaderHardwareExt::GetShaderStringParameterName(int) {
  return {};
}

void KEPRshShaderHardwareExt::GenerateSubstanceOutputMaps(unsigned char) {}
void KEPRshShaderHardwareExt::GetExternalShaderImageLink(int, KEPIPLMDmtDocument*&) {}
void KEPRshShaderHardwareExt::GetInternalShaderImageLink(int, KEPIPLMDmtDocument*&) {}
void KEPRshShaderHardwareExt::GetInternalShaderImageLink(int, KEPUnicodeString&) {}
void KEPRshShaderHardwareExt::GetShaderStringParameter(int, KEPUnicodeString&) {}
void KEPRshShaderHardwareExt::ModifyExternalShaderImageLink(int, KEPIPLMDmtDocument*, int) {}
void KEPRshShaderHardwareExt::ModifyExternalShaderImageLink(int, KEPUnicodeString&, int) {}
void KEPRshShaderHardwareExt::ModifyExternalShaderLink(KEPIPLMDmtDocument*) {}
void KEPRshShaderHardwareExt::ModifyInternalShaderImageLink(int, KEPIPLMDmtDocument*) {}
void KEPRshShaderHardwareExt::ModifyInternalShaderImageLink(int, KEPUnicodeString&) {}
void KEPRshShaderHardwareExt::ModifyShaderColorParameter(int, float, float, float, int) {}
void KEPRshShaderHardwareExt::ModifyShaderFloatParameter(int, float, int) {}
void KEPRshShaderHardwareExt::ModifyShaderISLFile(KEPUnicodeString&) {}
void KEPRshShaderHardwareExt::ModifyShaderStringParameter(int, KEPUnicodeString&, int) {}
void KEPRshShaderHardwareExt::ResetParametersExternalShader(int) {}
void KEPRshShaderHardwareExt::ResetParametersInternalShader() {}
void KEPRshShaderHardwareExt::SetExternalShaderImageLink(int, KEPIPLMDmtDocument*) {}
void KEPRshShaderHardwareExt::SetExternalShaderImagesLinkName(int, KEPUnicodeString&) {}
void KEPRshShaderHardwareExt::SetExternalShaderLink(KEPIPLMDmtDocument*) {}
void KEPRshShaderHardwareExt::SetInternalShaderImageLink(int, KEPIPLMDmtDocument*) {}
void KEPRshShaderHardwareExt::SetInternalShaderImagesLinkName(int, KEPUnicodeString&) {}
void KEPRshShaderHardwareExt::SetShaderColorParameter(int, float, float, float) {}
void KEPRshShaderHardwareExt::SetShaderFloatParameter(int, float) {}
void KEPRshShaderHardwareExt::SetShaderISLFile(KEPUnicodeString&) {}
void KEPRshShaderHardwareExt::SetShaderStringParameter(int, KEPUnicodeString&) {}
