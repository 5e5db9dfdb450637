#include "KEPRshShaderHardwareExt.h"

#include <utility>

#include "KEPIPLMDmtDocument.h"
#include "KEPIRshShader.h"
#include "KEPIRshShaderLink.h"
#include "KEPPixelImage.h"
#include "KEPRbaImageServices.h"
#include "KEPRshShaderHardwareLink.h"
#include "KEPRshShaderProgramLocator.h"
#include "KEPRshViewModule.h"
#include "KEP_var.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshShaderHardwareExt, KEPBaseUnknown, "KEPNull", "RenderingShader",
                       KEPClassKind_Extension, "KEPRshShaderDelegate")

namespace {

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

// Member-wise, except that the copy's parameter index holds references of its own, and the copy
// finds its own link and connected texture (it belongs to no component yet).
KEPRshShaderHardwareExt::KEPRshShaderHardwareExt(const KEPRshShaderHardwareExt& other)
    : KEPIUnknown(),
      KEPBaseUnknown(other),
      KEPIHardwareMaterial(),
      KEPIOpenGLShaderMaterial(),
      KEPIRmaMappingManipulator(),
      KEPIRmaMappingManipulatorMaterial(),
      parameters_(other.parameters_),
      shaderFile_(other.shaderFile_),
      shaderType_(other.shaderType_),
      stickerMode_(other.stickerMode_),
      stickerFile_(other.stickerFile_) {}

KEPRshShaderHardwareExt& KEPRshShaderHardwareExt::operator=(const KEPRshShaderHardwareExt& other) {
  if (this == &other) return *this;
  KEPBaseUnknown::operator=(other);
  parameters_ = other.parameters_;
  connected_.Forget();
  textureImage_.Forget();
  imageLinks_.clear();
  shaderFile_ = other.shaderFile_;
  shaderType_ = other.shaderType_;
  stickerMode_ = other.stickerMode_;
  stickerFile_ = other.stickerFile_;
  return *this;
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

// --- Link and initialisation

KEPIRshShaderLink* KEPRshShaderHardwareExt::FindLink() {
  if (link_) return link_;
  // The link is a sibling extension of the same component: it lives exactly as long as the
  // component, so a borrowed pointer stays valid for our whole life.
  KEP_var<KEPIRshShaderLink> link =
      KEPQueryVar<KEPIRshShaderLink>(static_cast<KEPBaseUnknown*>(this));
  link_ = link.Get();
  ownLink_ = dynamic_cast<KEPRshShaderHardwareLink*>(link_);
  nodeLink_ = !ownLink_ && dynamic_cast<KEPIRshShader*>(GetExtendedObject()) != nullptr;
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
  KEPIRshShaderLink* link = FindLink();
  if (!link) return false;
  if (ownLink_) {
    if (physicalKnown_ && physicalLinkChanges_ == ownLink_->Changes()) return physical_;
    physicalLinkChanges_ = ownLink_->Changes();
    physicalShader_ = nullptr;
  } else if (nodeLink_) {
    if (physicalKnown_) return physical_;
  } else {
    KEP_var<KEPIRshShader> shader;
    if (FAILED(link->GetShader(*shader.Out())) || !shader) return false;
    if (physicalKnown_ && shader.Get() == physicalShader_ && physicalShaderAlive_.IsAlive())
      return physical_;
    physicalShader_ = shader.Get();
    physicalShaderAlive_.Set(dynamic_cast<KEPBaseUnknown*>(shader.Get()));
  }
  // Read into a buffer that keeps its capacity: no allocation once the first name was read.
  ReadLinkedTypeName(typeNameBuffer_);
  physical_ = KEPRshIsPhysicalShaderType(typeNameBuffer_);
  physicalKnown_ = true;
  return physical_;
}

void KEPRshShaderHardwareExt::InitFromLinkedShader() {
  KEPIRshShaderLink* link = FindLink();
  if (!link) return;
  KEP_var<KEPIRshShader> shader;
  if (FAILED(link->GetShader(*shader.Out())) || !shader) return;

  // The program file is searched once for the object's life.
  KEPString typeName;
  if (shaderFile_.IsEmpty() && SUCCEEDED(shader->GetTypeName(typeName)) &&
      KEPRshIsPhysicalShaderType(typeName))
    KEPRshShaderProgramLocator::FindPhysicalProgram(typeName, shaderFile_);
  if (shaderFile_.IsEmpty() && KEPRshShaderProgramLocator::HasStartupPath()) {
    // The type is read again for the member; the path is built from the first read.
    shader->GetTypeName(shaderType_);
    KEPRshShaderProgramLocator::ResolveAlongStartupPath(typeName, shaderFile_);
  }

  KEPListP<KEPIRshParameter>* list = nullptr;
  if (FAILED(shader->GetParameters(list))) list = nullptr;
  parameters_.Take(list);
}

void KEPRshShaderHardwareExt::CleanUp() {
  parameters_.Clear();
  connected_.Forget();
  textureImage_.Forget();
  imageLinks_.clear();
}

// --- Parameter lookup

KEPIRshParameter* KEPRshShaderHardwareExt::GetParameter(int i) {
  Init();
  return parameters_.At(i);
}

KEPIRshParameter* KEPRshShaderHardwareExt::GetParameter(std::string_view name) {
  Init();
  return parameters_.ByName(name);
}

int KEPRshShaderHardwareExt::CheckParameter(std::string_view name) {
  return parameters_.PositionOf(name);
}

int KEPRshShaderHardwareExt::IsModifiedParameter(int i) {
  Init();
  return parameters_.At(i) ? 2 : 3;
}

KEPIHardwareMaterial* KEPRshShaderHardwareExt::GetConnectedTexture() {
  Init();
  for (int i = 1; i <= parameters_.Count(); ++i) {
    KEPIRshParameter* parameter = parameters_.At(i);
    if (!parameter) continue;
    KEP_var<KEPIRshShader> connected;
    if (FAILED(parameter->GetConnectedShader(*connected.Out())) || !connected) continue;
    if (KEPIHardwareMaterial* material = KEPQuery<KEPIHardwareMaterial>(connected.Get()))
      return material;
  }
  return nullptr;
}

template <class Interface, class Ask>
bool KEPRshShaderHardwareExt::AskConnectedTexture(Ask&& ask) {
  return connected_.Ask<Interface>(
      [this](KEP_var<KEPIHardwareMaterial>& material) {
        material = KEP_var<KEPIHardwareMaterial>::Adopt(GetConnectedTexture());
        return parameters_.HasList();  // not initialised yet: look again next time
      },
      std::forward<Ask>(ask));
}

template <KEPRshShaderHardwareExt::PairRead how, class T>
bool KEPRshShaderHardwareExt::ReadPair(int nameU, int nameV, T& u, T& v) {
  KEPIRshParameter* parameterU = GetReadParameter(nameU);
  KEPIRshParameter* parameterV = GetReadParameter(nameV);
  if (!parameterU || !parameterV) return false;
  if constexpr (how == PairRead::kUnchecked) {
    Read(parameterU, u);
    Read(parameterV, v);
  } else {
    T readU{}, readV{};
    if (!Read(parameterU, readU) || !Read(parameterV, readV)) return false;
    u = readU, v = readV;
  }
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
  for (int position : parameters_.TexturePositions()) {
    KEPIRshParameter* parameter = parameters_.At(position);
    KEP_var<KEPIPLMDmtDocument> document;
    if (!parameter || FAILED(parameter->GetTextureValue(*document.Out())) || !document) continue;
    if (KEPTexturePixelImage* image = textureImage_.Image(position, document.Get())) return image;
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
    unsigned char ru = 0, rv = 0;
    if (!ReadPair<PairRead::kChecked>(ReadName("repeat_u"), ReadName("repeat_v"), ru, rv)) return;
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
  unsigned char ru = 0, rv = 0;
  if (!ReadPair<PairRead::kChecked>(ReadName("repeat_u"), ReadName("repeat_v"), ru, rv))
    return E_FAIL;
  repeat = ru != 0 && rv != 0 ? 1 : 0;
  return S_OK;
}

void KEPRshShaderHardwareExt::GetTextureFlip(unsigned char& u, unsigned char& v) {
  if (IsPhysicalShader()) {
    ReadPair<PairRead::kChecked>(ReadName("flip_u"), ReadName("flip_v"), u, v);
    return;
  }
  u = v = 0;
  if (ReadPair<PairRead::kUnchecked>(ReadName("_uv_flip_u"), ReadName("_uv_flip_v"), u, v)) return;
  AskConnectedTexture<KEPIHardwareMaterial>(
      [&](KEPIHardwareMaterial& material) { material.GetTextureFlip(u, v); });
}

void KEPRshShaderHardwareExt::GetTexturePosition(float& u, float& v) {
  if (IsPhysicalShader()) {
    ReadPair<PairRead::kChecked>(ReadName("offset_u"), ReadName("offset_v"), u, v);
    return;
  }
  u = v = 0.0f;
  if (ReadPair<PairRead::kUnchecked>(ReadName("_uv_offset_u"), ReadName("_uv_offset_v"), u, v))
    return;
  AskConnectedTexture<KEPIHardwareMaterial>(
      [&](KEPIHardwareMaterial& material) { material.GetTexturePosition(u, v); });
}

void KEPRshShaderHardwareExt::GetTextureSize(float& u, float& v) {
  if (IsPhysicalShader()) {
    ReadPair<PairRead::kChecked>(ReadName("scale_u"), ReadName("scale_v"), u, v);
    return;
  }
  u = v = 1.0f;
  if (ReadPair<PairRead::kUnchecked>(ReadName("_uv_scale_u"), ReadName("_uv_scale_v"), u, v))
    return;
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
    float u = 1.0f, v = 1.0f;
    if (!ReadPair<PairRead::kChecked>(ReadName("scale_u"), ReadName("scale_v"), u, v))
      return E_FAIL;
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

const KEPUnicodeString& KEPRshShaderHardwareExt::GetExternalShader() {
  Init();
  if (!stickerMode_) return shaderFile_;
  // A sticker draws with the sibling program whose name carries "_Stk" before the extension. The
  // program file never changes once found, so its variant is built once.
  if (stickerFile_.IsEmpty() && !shaderFile_.IsEmpty())
    stickerFile_ = KEPRshShaderProgramLocator::StickerVariant(shaderFile_);
  return stickerFile_;
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
  // One entry per position, made the first time the viewer asks for one.
  if (imageLinks_.size() <= static_cast<std::size_t>(position))
    imageLinks_.resize(static_cast<std::size_t>(parameters_.Count()) + 1);
  if (const KEPUnicodeString* found =
          imageLinks_[static_cast<std::size_t>(position)].Path(position, document.Get()))
    path = *found;
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
