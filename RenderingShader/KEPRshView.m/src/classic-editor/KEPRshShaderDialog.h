// KEPRshShaderDialog: the behaviour through which the host obtains the classic editor of a shader
// node. A data extension of the late type "KEPRshShader", which the host gives every shader node
// (texture shaders inherit it), so that every node answers KEPIRshShaderEditorDialog as it answers
// the immersive editor's interface; it builds a KEPRshShaderRootFrame "rootFrame" for that node.
#pragma once

#include "KEPBaseUnknown.h"
#include "KEPExtensionRegistry.h"
#include "KEPIRshShaderEditorDialog.h"

class KEPRshShaderDialog : public KEPBaseUnknown, public KEPIRshShaderEditorDialog {
  KEP_DECLARE_CLASS
 public:
  /// A new, detached instance with one reference (the extension registry's creator).
  static KEPBaseUnknown* CreateItself();

  HRESULT BuildEditor(KEPDialog* parent, KEPDialog*& editor) override;

  KEPRshShaderDialog(const KEPRshShaderDialog&) = delete;
  KEPRshShaderDialog& operator=(const KEPRshShaderDialog&) = delete;

 protected:
  KEPRshShaderDialog() = default;
  ~KEPRshShaderDialog() override;
};

KEP_DECLARE_TIE(KEPIRshShaderEditorDialog, KEPRshShaderDialog)
