// Shared set-up of the metadata tests: a registered module, a world, and behaviour handles.
#pragma once

#include "KEPIRshParameterDialog.h"
#include "KEPIRshParameterImmLayout.h"
#include "KEPRshViewModule.h"
#include "KEPTestSupport.h"
#include "KEP_var.h"

namespace keptest {

class MetadataTest : public Fixture {
 protected:
  void SetUp() override {
    Fixture::SetUp();
    KEPRshViewRegister();
  }

  static KEP_var<KEPIRshParameterImmLayout> Imm(KEPBaseUnknown* parameter) {
    return KEPQueryVar<KEPIRshParameterImmLayout>(parameter);
  }
  static KEP_var<KEPIRshParameterDialog> Dlg(KEPBaseUnknown* parameter) {
    return KEPQueryVar<KEPIRshParameterDialog>(parameter);
  }
  /// Moves a parameter to the deleted state, as the host does before dropping it; this is what
  /// lets a behaviour give back the shader it holds through the shader resources.
  static void Delete(KEPBaseUnknown* parameter) {
    parameter->ChangeComponentState(KEPComponentState_Alive, KEPComponentState_Deleted, nullptr);
  }
  static void DeleteAll(KEPHostShaderNode* node) {
    for (const auto& parameter : node->Parameters()) Delete(parameter.Get());
  }
};

}  // namespace keptest
