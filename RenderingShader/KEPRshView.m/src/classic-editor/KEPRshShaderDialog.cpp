#include "KEPRshShaderDialog.h"

#include <new>

#include "KEPIRshShader.h"
#include "KEPRshLateTypes.h"
#include "KEPRshShaderRootFrame.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshShaderDialog, KEPBaseUnknown, "KEPNull", "RenderingShader",
                       KEPClassKind_Extension, KEPRmaShaderLateType)

KEP_DEFINE_TIE(KEPIRshShaderEditorDialog, KEPRshShaderDialog)

KEPBaseUnknown* KEPRshShaderDialog::CreateItself() {
  return new (std::nothrow) KEPRshShaderDialog();
}

KEPRshShaderDialog::~KEPRshShaderDialog() {
  KEPModuleTrace::Trace(2, "(KEPRshShaderDialog::~KEPRshShaderDialog) Destructor\n");
  KEPModuleTrace::Trace(2, "(KEPRshShaderDialog::~KEPRshShaderDialog) Done\n");
}

HRESULT KEPRshShaderDialog::BuildEditor(KEPDialog* parent, KEPDialog*& editor) {
  if (!parent) return E_FAIL;
  const KEP_var<KEPIRshShader> shader = KEPQueryVar<KEPIRshShader>(GetExtendedObject());
  if (!shader) return E_NOINTERFACE;
  try {
    // The parent takes the creation reference; the frame takes its own on the shader.
    editor = new KEPRshShaderRootFrame(parent, "rootFrame", 0, shader.Get());
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
  return S_OK;
}
