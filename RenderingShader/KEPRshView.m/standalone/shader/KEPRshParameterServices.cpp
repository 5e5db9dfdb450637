#include "KEPRshParameterServices.h"

#include <atomic>
#include <cmath>
#include <filesystem>

#include "KEPFileText.h"
#include "KEPHostShaderDocument.h"
#include "KEPIPLMDmtDocument.h"
#include "KEPIRenderingMaterial.h"
#include "KEPIRshParameter.h"
#include "KEPIRshShader.h"
#include "KEPISpecObject.h"
#include "KEPPixelImage.h"
#include "KEPTextureDocument.h"
#include "KEPTrace.h"

KEPIRshShader* KEPRshParameterServices::FindShaderParent(KEPIRshParameter* parameter) {
  auto specObject = KEPQueryVar<KEPISpecObject>(parameter);
  if (!specObject) return nullptr;
  KEPBaseUnknown* father = nullptr;
  if (FAILED(specObject->GetFather(father)) || !father) return nullptr;
  KEPIRshShader* shader = KEPQuery<KEPIRshShader>(father);
  father->Release();
  return shader;
}

HRESULT KEPRshParameterServices::RetrieveParameterValue(KEPIRshParameter* parameter,
                                                        const KEPString& name, float& value) {
  auto shader = KEP_var<KEPIRshShader>::Adopt(FindShaderParent(parameter));
  if (!shader) return E_FAIL;
  KEP_var<KEPIRshParameter> sibling;
  if (FAILED(shader->GetParameter(name, *sibling.Out()))) return E_FAIL;
  return sibling->GetScalarValue(value);
}

HRESULT KEPRshParameterServices::RetrieveGroupList(KEPIRshParameter* parameter,
                                                   std::vector<KEPString>& groups) {
  if (!parameter) return E_INVALIDARG;
  KEP_var<KEPIPLMDmtDocument> document;
  if (FAILED(parameter->GetTextureValue(*document.Out())) || !document) return E_FAIL;
  return document->GetGroups(groups);
}

HRESULT KEPRshParameterServices::RetrieveDpi(KEPIRshParameter* parameter, double& dpi) {
  dpi = 72.0;
  if (!parameter) return E_INVALIDARG;
  KEP_var<KEPIPLMDmtDocument> document;
  if (SUCCEEDED(parameter->GetTextureValue(*document.Out())) && document) {
    double stored = 0.0;
    if (SUCCEEDED(document->GetDpi(stored)) && stored > 0.0) dpi = stored;
  }
  return S_OK;
}

namespace {
constexpr const char* kServicesSource =
    "RenderingShader/KEPRshView.m/standalone/shader/KEPRshParameterServices";

/// The directory against which the material document holding `parameter` resolves relative
/// texture paths; empty when the parameter is in no document read from a file.
std::string DocumentDirectory(KEPIRshParameter* parameter) {
  const auto* hostParameter = dynamic_cast<KEPHostParameter*>(parameter);
  KEPBaseUnknown* owner = hostParameter ? hostParameter->Father() : nullptr;
  // A sub-shader's father is the shader that holds it; the document is further up. The walk is
  // bounded so that a father loop cannot hang it.
  for (int depth = 0; owner && depth < 1000; ++depth) {
    if (const auto* document = dynamic_cast<KEPHostShaderDocument*>(owner)) {
      if (document->path.empty()) return {};
      return KEPFileText::Absolute(document->path).parent_path().lexically_normal().string();
    }
    auto* node = dynamic_cast<KEPHostShaderNode*>(owner);
    if (!node) return {};
    KEPBaseUnknown* father = nullptr;
    if (FAILED(node->GetFather(father)) || !father) return {};
    father->Release();  // the document or the holding shader outlives this walk
    owner = father;
  }
  return {};
}
}  // namespace

HRESULT KEPRshParameterServices::CreateTextureDocument(KEPIRshParameter* parameter,
                                                       const KEPString& path,
                                                       const std::vector<KEPString>& groups,
                                                       double dpi, KEPIPLMDmtDocument*& document) {
  if (!parameter || path.empty() || !std::isfinite(dpi) || dpi <= 0.0) return E_INVALIDARG;
  std::filesystem::path resolved(path);
  if (resolved.is_relative()) {
    const std::string directory = DocumentDirectory(parameter);
    if (!directory.empty()) resolved = std::filesystem::path(directory) / resolved;
  }
  const KEPString full = resolved.lexically_normal().string();
  const KEPUnicodeString image = KEPUnicodeString::FromUTF8(full);
  static const KEPTrace trace("KEPRshParameterServices");
  std::error_code error;
  if (!std::filesystem::is_regular_file(resolved, error)) {
    trace.Error(kServicesSource, __LINE__, "Texture image refused { path = %s, reason = %s }",
                full.c_str(), "no such file");
    return E_FAIL;
  }
  // The host draws PNG images only: an image it cannot decode would leave the texture blank.
  const auto pixels =
      KEP_var<KEPTexturePixelImage>::Adopt(KEPTexturePixelImage::GetImage(image, KEPReadOnlyState));
  if (!pixels) {
    trace.Error(kServicesSource, __LINE__, "Texture image refused { path = %s, reason = %s }",
                full.c_str(), "not a readable PNG image");
    return E_FAIL;
  }
  document = KEPTextureDocument::Create(image, dpi, groups);
  return S_OK;
}

bool KEPRshParameterServices::IsSVGMapPresent(KEPIRshShader* shader) {
  if (!shader) return false;
  KEPListP<KEPIRshParameter>* list = nullptr;
  if (FAILED(shader->GetParameters(list)) || !list) return false;
  bool found = false;
  for (int i = 1; i <= list->Size(); ++i) {
    KEPIRshParameter* p = (*list)[i];
    KEP_var<KEPIPLMDmtDocument> document;
    if (!found && p && SUCCEEDED(p->GetTextureValue(*document.Out())) && document) {
      KEPUnicodeString path;
      document->GetImagePath(path);
      const std::string text = KEPToLower(path.ToUTF8());
      found = text.ends_with(".svg");
    }
    if (p) p->Release();
  }
  delete list;
  return found;
}

KEPIRenderingMaterial* KEPRshParameterServices::FindRenderingMaterial(KEPIRshShader* shader) {
  // Up the sub-shader fathers to the root node, whose father is the document that holds the
  // material. Fathers form no loop in a loaded document; the bound keeps a broken one finite.
  constexpr int kMaxDepth = 4096;
  auto* node = dynamic_cast<KEPHostShaderNode*>(shader);
  for (int depth = 0; node && depth < kMaxDepth; ++depth) {
    KEPBaseUnknown* father = nullptr;
    if (FAILED(node->GetFather(father)) || !father) return nullptr;
    const auto owner = KEP_var<KEPBaseUnknown>::Adopt(father);
    if (auto* document = dynamic_cast<KEPHostShaderDocument*>(owner.Get()))
      return document->GetRenderingMaterial(node->Id());
    node = dynamic_cast<KEPHostShaderNode*>(owner.Get());
  }
  return nullptr;
}

namespace {
std::atomic<unsigned long long> gConnectionGeneration{1};
}  // namespace

unsigned long long KEPRshParameterServices::GetConnectionGeneration() {
  return gConnectionGeneration.load(std::memory_order_acquire);
}

void KEPRshParameterServices::NoteConnectionChange() {
  gConnectionGeneration.fetch_add(1, std::memory_order_acq_rel);
}
