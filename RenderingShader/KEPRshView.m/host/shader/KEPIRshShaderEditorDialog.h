// The classic editor of a shader node: the host asks a shader (late type "KEPRshShader" and its
// children) for this interface and has it build the editor's dialog tree under a parent dialog.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPIUnknown.h"
#include "KEPTypes.h"

class KEPDialog;

class KEPIRshShaderEditorDialog : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIRshShaderEditorDialog)
  /// Builds the editor of the shader this behaviour extends, a frame named "rootFrame", under
  /// `parent` (which owns it); `editor` receives it (borrowed). E_FAIL without a parent,
  /// E_NOINTERFACE when the extended object is no shader, E_OUTOFMEMORY when the editor could not
  /// be made; `editor` is set only on success.
  virtual HRESULT BuildEditor(KEPDialog* parent, KEPDialog*& editor) = 0;
};

#pragma GCC visibility pop
