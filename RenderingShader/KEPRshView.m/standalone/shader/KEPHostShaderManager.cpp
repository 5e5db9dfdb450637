#include "KEPHostShaderManager.h"

#include "KEPHostContext.h"
#include "KEPIRshShader.h"
#include "KEPIRshShaderSupport.h"

namespace {
struct InstalledManager {
  std::unique_ptr<KEPHostShaderManager> manager;
};
}  // namespace

KEPRshShaderManager* KEPRshShaderManager::GetManager() {
  return KEPHostContext::State<InstalledManager>().manager.get();
}

void KEPHostShaderManager::Install(const std::shared_ptr<const KEPHostShaderLibrary>& library) {
  KEPHostContext::State<InstalledManager>().manager =
      library ? std::make_unique<KEPHostShaderManager>(library) : nullptr;
}

HRESULT KEPHostShaderManager::GetConnectableShaders(const KEPString& parameterType,
                                                    std::vector<KEPString>& names,
                                                    std::vector<KEPUnicodeString>& labels,
                                                    int requestKind) const {
  names.clear();
  labels.clear();
  if (requestKind != 2) return S_OK;
  for (const KEPHostConnectableEntry& entry : library_->Connectable(parameterType)) {
    names.push_back(entry.type);
    labels.push_back(KEPUnicodeString::FromUTF8(entry.label.empty() ? entry.type : entry.label));
  }
  return S_OK;
}

HRESULT KEPHostShaderManager::CreateShader(const KEPString& typeName, KEPIRshShaderSupport* support,
                                           KEPIRshShader*& shader) const {
  if (!support) return E_INVALIDARG;
  return support->CreateShader(typeName, "", shader);
}
