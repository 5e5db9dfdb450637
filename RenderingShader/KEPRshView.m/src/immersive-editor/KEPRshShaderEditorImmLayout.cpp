#include "KEPRshShaderEditorImmLayout.h"

#include <new>

#include "KEPIRshShader.h"
#include "KEPRshLateTypes.h"
#include "KEPRshShaderImmLayout.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshShaderEditorImmLayout, KEPBaseUnknown, "KEPNull", "RenderingShader",
                       KEPClassKind_Extension, KEPRshShaderLateType)

KEP_DEFINE_TIE(KEPIRshShaderEditorImmLayout, KEPRshShaderEditorImmLayout)

KEPBaseUnknown* KEPRshShaderEditorImmLayout::CreateItself() {
  return new (std::nothrow) KEPRshShaderEditorImmLayout();
}

HRESULT KEPRshShaderEditorImmLayout::BuildEditor(KEPVidWidget* parent, const char* name,
                                                 bool restricted, KEPVidWidget*& editor) {
  if (!parent) return E_FAIL;
  const KEP_var<KEPIRshShader> shader = KEPQueryVar<KEPIRshShader>(GetExtendedObject());
  if (!shader) return E_NOINTERFACE;
  try {
    // The parent takes the creation reference.
    editor = new KEPRshShaderImmLayout(shader.Get(), parent, name ? name : "", restricted);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
  return S_OK;
}
