#include "RshviewEditor.h"

#include "KEPIRshShaderEditorImmLayout.h"

bool RshviewEditor::Build(KEPHostShaderNode* node, bool restricted, std::string& message) {
  editor_ = nullptr;
  root_ = KEP_var<KEPVidLayGrid>::Adopt(new KEPVidLayGrid(nullptr, "rshview"));
  auto layout = KEPQueryVar<KEPIRshShaderEditorImmLayout>(static_cast<KEPIRshShader*>(node));
  if (!layout) {
    message = "node '" + node->Id() + "' offers no immersive editor";
    return false;
  }
  KEPVidWidget* editor = nullptr;
  const HRESULT hr = layout->BuildEditor(root_.Get(), kEditorName, restricted, editor);
  if (FAILED(hr) || !editor) {
    message =
        "the editor of node '" + node->Id() + "' could not be built (" + KEPResultName(hr) + ")";
    return false;
  }
  editor_ = editor;
  return true;
}
