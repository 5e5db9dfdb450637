#include "KEPRshShaderHardwareLink.h"

#include "KEPIRshShader.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshShaderHardwareLink, KEPBaseUnknown, "KEPNull", "RenderingShader",
                       KEPClassKind_Extension, "KEPRshShaderDelegate")

KEPBaseUnknown* KEPRshShaderHardwareLink::Create() {
  return new KEPRshShaderHardwareLink();
}

KEPRshShaderHardwareLink::~KEPRshShaderHardwareLink() {
  KEPModuleTrace::Trace(2, "(KEPRshShaderHardwareLink::~KEPRshShaderHardwareLink) Destructor\n");
  ReleaseShader();
  KEPModuleTrace::Trace(2, "(KEPRshShaderHardwareLink::~KEPRshShaderHardwareLink) Done\n");
}

void KEPRshShaderHardwareLink::ReleaseShader() {
  if (KEPIRshShader* shader = shader_) {
    shader_ = nullptr;
    ++changes_;
    shader->Release();
  }
}

HRESULT KEPRshShaderHardwareLink::SetShader(KEPIRshShader* shader) {
  if (!shader) return E_FAIL;
  // Add first: setting the shader already held must not let it go away in between.
  shader->AddRef();
  ReleaseShader();
  shader_ = shader;
  ++changes_;
  return S_OK;
}

HRESULT KEPRshShaderHardwareLink::GetShader(KEPIRshShader*& out) {
  if (!shader_) return E_FAIL;
  shader_->AddRef();
  out = shader_;
  return S_OK;
}

HRESULT KEPRshShaderHardwareLink::ChangeComponentState(int from, int to, const void* context) {
  if (from < KEPComponentState_Deleted && to == KEPComponentState_Deleted) ReleaseShader();
  return KEPBaseUnknown::ChangeComponentState(from, to, context);
}

KEP_DEFINE_TIE(KEPIRshShaderLink, KEPRshShaderHardwareLink)
