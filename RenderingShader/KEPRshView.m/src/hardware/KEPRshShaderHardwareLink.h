// KEPRshShaderHardwareLink: the extension of "KEPRshShaderDelegate" that holds the shader node
// the delegate stands for.
#pragma once

#include "KEPBaseUnknown.h"
#include "KEPExtensionRegistry.h"
#include "KEPIRshShaderLink.h"

class KEPRshShaderHardwareLink : public KEPBaseUnknown, public KEPIRshShaderLink {
  KEP_DECLARE_CLASS
 public:
  /// A new extension object with one reference, for the extension registry.
  static KEPBaseUnknown* Create();
  KEPRshShaderHardwareLink() = default;
  ~KEPRshShaderHardwareLink() override;

  /// Holds `shader` with one reference, releasing the previous one; E_FAIL for null.
  HRESULT SetShader(KEPIRshShader* shader) override;
  /// The held shader with a reference for the caller; E_FAIL (out untouched) when none.
  HRESULT GetShader(KEPIRshShader*& out) override;
  /// Releases the shader when the component moves from a live state to deleted (2).
  HRESULT ChangeComponentState(int from, int to, const void* context) override;

  /// How many times the held shader was set or let go: the material sharing the component keeps
  /// what it read from the shader while this is unchanged.
  unsigned long long Changes() const { return changes_; }

  KEPRshShaderHardwareLink(const KEPRshShaderHardwareLink&) = delete;
  KEPRshShaderHardwareLink& operator=(const KEPRshShaderHardwareLink&) = delete;

 private:
  void ReleaseShader();

  KEPIRshShader* shader_ = nullptr;
  unsigned long long changes_ = 0;
};

KEP_DECLARE_TIE(KEPIRshShaderLink, KEPRshShaderHardwareLink)
