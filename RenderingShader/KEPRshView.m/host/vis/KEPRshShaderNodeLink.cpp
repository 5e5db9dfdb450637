#include "KEPRshShaderNodeLink.h"

#include "KEPExtensionRegistry.h"
#include "KEPIRshShader.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshShaderNodeLink, KEPBaseUnknown, "KEPNull", "System",
                       KEPClassKind_Extension, "KEPRshShader")

KEPBaseUnknown* KEPRshShaderNodeLink::Create() {
  return new KEPRshShaderNodeLink();
}

HRESULT KEPRshShaderNodeLink::SetShader(KEPIRshShader*) {
  return E_FAIL;
}

HRESULT KEPRshShaderNodeLink::GetShader(KEPIRshShader*& out) {
  KEPBaseUnknown* node = GetExtendedObject();
  if (!node) return E_FAIL;
  // The node's own interface, never an extension: a node is a KEPIRshShader by itself.
  if (castFrom_ != node) {
    castFrom_ = node;
    shader_ = dynamic_cast<KEPIRshShader*>(node);
  }
  if (!shader_) return E_FAIL;
  shader_->AddRef();
  out = shader_;
  return S_OK;
}

KEP_DEFINE_TIE(KEPIRshShaderLink, KEPRshShaderNodeLink)

void KEPRegisterShaderNodeLink() {
  KEPExtensionRegistry::Register({"KEPRshShader", KEPIRshShaderLink::IID().name,
                                  KEPRshShaderNodeLink::ClassName(), &KEPRshShaderNodeLink::Create,
                                  &CreateTIEKEPIRshShaderLinkKEPRshShaderNodeLink});
}
