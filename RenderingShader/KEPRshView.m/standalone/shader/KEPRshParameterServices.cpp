#include "KEPRshParameterServices.h"

#include <atomic>

#include "KEPHostShaderDocument.h"
#include "KEPIPLMDmtDocument.h"
#include "KEPIRenderingMaterial.h"
#include "KEPIRshParameter.h"
#include "KEPIRshShader.h"
#include "KEPISpecObject.h"

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
