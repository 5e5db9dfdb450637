// The immersive editor of a shader node: the host asks a shader (late type "KEPRshShader" and its
// children) for this interface and has it build the editor's widget tree under a parent.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPIUnknown.h"
#include "KEPString.h"
#include "KEPTypes.h"

class KEPVidWidget;

class KEPIRshShaderEditorImmLayout : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIRshShaderEditorImmLayout)
  /// Builds the editor of the shader this behaviour extends, named `name`, under `parent` (which
  /// owns it); `editor` receives it (borrowed). `restricted` disables the pieces a restricted
  /// editor may not change (the ratio tweaker of "scale_u", the whole "type" widget). E_FAIL
  /// without a parent, E_OUTOFMEMORY when the editor could not be made.
  virtual HRESULT BuildEditor(KEPVidWidget* parent, const char* name, bool restricted,
                              KEPVidWidget*& editor) = 0;
};

#pragma GCC visibility pop
