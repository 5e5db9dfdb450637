#include "RshviewEditor.h"

#include "KEPDlgFrame.h"
#include "KEPIRshShaderEditorDialog.h"
#include "KEPIRshShaderEditorImmLayout.h"
#include "KEPVidLayGrid.h"

namespace {
std::string BuildFailure(KEPHostShaderNode* node, HRESULT hr) {
  return "the editor of node '" + node->Id() + "' could not be built (" + KEPResultName(hr) + ")";
}
}  // namespace

bool RshviewEditor::Build(KEPHostShaderNode* node, bool restricted, std::string& message,
                          bool classic) {
  editor_ = nullptr;
  auto* shader = static_cast<KEPIRshShader*>(node);
  if (classic) {
    // A classic editor stands in a classic parent dialog.
    auto* root = new KEPDlgFrame(nullptr, "rshview");
    root_ = KEP_var<KEPVidWidget>::Adopt(root);
    auto dialog = KEPQueryVar<KEPIRshShaderEditorDialog>(shader);
    if (!dialog) {
      message = "node '" + node->Id() + "' offers no classic editor";
      return false;
    }
    KEPDialog* editor = nullptr;
    const HRESULT hr = dialog->BuildEditor(root, editor);
    if (FAILED(hr) || !editor) {
      message = BuildFailure(node, hr);
      return false;
    }
    editor_ = editor;
    return true;
  }
  auto* root = new KEPVidLayGrid(nullptr, "rshview");
  root_ = KEP_var<KEPVidWidget>::Adopt(root);
  auto layout = KEPQueryVar<KEPIRshShaderEditorImmLayout>(shader);
  if (!layout) {
    message = "node '" + node->Id() + "' offers no immersive editor";
    return false;
  }
  KEPVidWidget* editor = nullptr;
  const HRESULT hr = layout->BuildEditor(root, kEditorName, restricted, editor);
  if (FAILED(hr) || !editor) {
    message = BuildFailure(node, hr);
    return false;
  }
  editor_ = editor;
  return true;
}
