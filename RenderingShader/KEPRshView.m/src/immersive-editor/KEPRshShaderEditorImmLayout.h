// KEPRshShaderEditorImmLayout: the behaviour through which the host obtains the immersive editor
// of a shader node. A data extension of the late type "KEPRshShader" (so of every node, texture
// shaders included) that builds a KEPRshShaderImmLayout for the node it extends.
#pragma once

#include "KEPBaseUnknown.h"
#include "KEPExtensionRegistry.h"
#include "KEPIRshShaderEditorImmLayout.h"

class KEPRshShaderEditorImmLayout : public KEPBaseUnknown, public KEPIRshShaderEditorImmLayout {
  KEP_DECLARE_CLASS
 public:
  /// A new, detached instance with one reference (the extension registry's creator).
  static KEPBaseUnknown* CreateItself();

  /// E_FAIL without a parent, E_NOINTERFACE when the extended object is no shader,
  /// E_OUTOFMEMORY when the editor could not be made; `editor` is set only on success.
  HRESULT BuildEditor(KEPVidWidget* parent, const char* name, bool restricted,
                      KEPVidWidget*& editor) override;

  KEPRshShaderEditorImmLayout(const KEPRshShaderEditorImmLayout&) = delete;
  KEPRshShaderEditorImmLayout& operator=(const KEPRshShaderEditorImmLayout&) = delete;

 protected:
  KEPRshShaderEditorImmLayout() = default;
  ~KEPRshShaderEditorImmLayout() override = default;
};

KEP_DECLARE_TIE(KEPIRshShaderEditorImmLayout, KEPRshShaderEditorImmLayout)
