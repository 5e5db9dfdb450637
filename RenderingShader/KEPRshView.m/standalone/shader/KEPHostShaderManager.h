// The host's shader manager: answers from the shader library that the application loaded.
#pragma once

#include <memory>

#include "KEPHostShaderLibrary.h"
#include "KEPRshShaderManager.h"

class KEPHostShaderManager final : public KEPRshShaderManager {
 public:
  /// Makes the manager of `library` the process's manager (null removes it). The manager is
  /// process state: KEPHostContext::Reset removes it too.
  static void Install(const std::shared_ptr<const KEPHostShaderLibrary>& library);

  explicit KEPHostShaderManager(std::shared_ptr<const KEPHostShaderLibrary> library)
      : library_(std::move(library)) {}
  ~KEPHostShaderManager() override = default;

  HRESULT GetConnectableShaders(const KEPString& parameterType, std::vector<KEPString>& names,
                                std::vector<KEPUnicodeString>& labels,
                                int requestKind) const override;
  HRESULT CreateShader(const KEPString& typeName, KEPIRshShaderSupport* support,
                       KEPIRshShader*& shader) const override;

  const KEPHostShaderLibrary& Library() const { return *library_; }

 private:
  std::shared_ptr<const KEPHostShaderLibrary> library_;
};
