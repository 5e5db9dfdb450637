// The stand-alone host's rendering material: what a material document keeps per root node for
// the renderer. This host renders nothing, so the material only records the kinds it is handed
// and traces each one.
#pragma once

#include <string>
#include <vector>

#include "KEPBaseUnknown.h"
#include "KEPIRenderingMaterial.h"

class KEPHostRenderingMaterial : public KEPBaseUnknown, public KEPIRenderingMaterial {
  KEP_DECLARE_CLASS
 public:
  /// The material of root node `rootId`, with one reference for the caller.
  explicit KEPHostRenderingMaterial(std::string rootId);

  /// Records `type` and traces it on channel "KEPRenderingMaterial". S_OK.
  HRESULT SetMaterialType(int type) override;

  const std::string& RootId() const { return rootId_; }
  /// Every value handed over, oldest first.
  const std::vector<int>& Types() const { return types_; }

 protected:
  ~KEPHostRenderingMaterial() override = default;

 private:
  std::string rootId_;
  std::vector<int> types_;
};
