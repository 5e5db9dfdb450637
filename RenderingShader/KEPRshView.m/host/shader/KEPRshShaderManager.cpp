#include "KEPRshShaderManager.h"

#include "KEPIRshShader.h"
#include "KEPIRshShaderSupport.h"

namespace {
std::unique_ptr<KEPRshShaderManager>& Instance() {
  static std::unique_ptr<KEPRshShaderManager> manager;
  return manager;
}
}  // namespace

KEPRshShaderManager* KEPRshShaderManager::GetManager() { return Instance().get(); }

void KEPRshShaderManager::Install(std::shared_ptr<const KEPRshShaderLibrary> library) {
  Instance().reset(library ? new KEPRshShaderManager(std::move(library)) : nullptr);
}

HRESULT KEPRshShaderManager::GetConnectableShaders(const KEPString& parameterType,
                                                   std::vector<KEPString>& names,
                                                   std::vector<KEPUnicodeString>& labels,
                                                   int requestKind) const {
  names.clear();
  labels.clear();
  if (requestKind != 2) return S_OK;
  for (const KEPRshConnectableEntry& entry : library_->Connectable(parameterType)) {
    names.push_back(entry.type);
    labels.push_back(KEPUnicodeString::FromUTF8(entry.label.empty() ? entry.type : entry.label));
  }
  return S_OK;
}

HRESULT KEPRshShaderManager::CreateShader(const KEPString& typeName, KEPIRshShaderSupport* support,
                                          KEPIRshShader*& shader) const {
  if (!support) return E_INVALIDARG;
  return support->CreateShader(typeName, "", shader);
}
