#include "KEPHostShaderNodeLink.h"

#include "KEPExtensionRegistry.h"
#include "KEPIRshShader.h"
#include "KEPRshLateTypes.h"

KEP_IMPLEMENT_CLASS_EX(KEPHostShaderNodeLink, KEPBaseUnknown, "KEPNull", "System",
                       KEPClassKind_Extension, "KEPRshShader")

KEPBaseUnknown* KEPHostShaderNodeLink::Create() {
  return new KEPHostShaderNodeLink();
}

HRESULT KEPHostShaderNodeLink::SetShader(KEPIRshShader*) {
  return E_FAIL;
}

HRESULT KEPHostShaderNodeLink::GetShader(KEPIRshShader*& out) {
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

KEP_DEFINE_TIE(KEPIRshShaderLink, KEPHostShaderNodeLink)

void KEPRegisterShaderNodeLink() {
  KEPExtensionRegistry::DeclareParent(KEPRshShaderLateType, KEPRmaShaderLateType);
  KEPExtensionRegistry::DeclareParent(KEPRshTextureShaderLateType, KEPRshShaderLateType);
  KEPExtensionRegistry::Register(
      {KEPRshShaderLateType, KEPIRshShaderLink::IID().name, KEPHostShaderNodeLink::ClassName(),
       &KEPHostShaderNodeLink::Create, &CreateTIEKEPIRshShaderLinkKEPHostShaderNodeLink});
}
