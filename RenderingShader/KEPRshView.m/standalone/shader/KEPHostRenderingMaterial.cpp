#include "KEPHostRenderingMaterial.h"

#include <utility>

#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS(KEPHostRenderingMaterial, KEPBaseUnknown, "System")

KEPHostRenderingMaterial::KEPHostRenderingMaterial(std::string rootId)
    : rootId_(std::move(rootId)) {}

HRESULT KEPHostRenderingMaterial::SetMaterialType(int type) {
  static const KEPTrace trace("KEPRenderingMaterial");
  types_.push_back(type);
  trace.Info("Material type handed over { material = %s, type = %d }", rootId_.c_str(), type);
  return S_OK;
}
