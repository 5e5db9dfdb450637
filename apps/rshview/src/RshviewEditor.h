// The editor of one node, as the host opens it: a root widget of rshview's own, and under it the
// editor that the node's KEPIRshShaderEditorImmLayout (immersive) or KEPIRshShaderEditorDialog
// (classic) builds.
#pragma once

#include <iosfwd>
#include <string>

#include "KEPHostShaderNode.h"
#include "KEPVidWidget.h"
#include "KEP_var.h"

class RshviewEditor {
 public:
  /// The name the immersive editor is built with; widget paths start below it.
  static constexpr const char* kEditorName = "ShaderEditor";

  /// Builds the immersive editor of `node` (the classic one with `classic`); false with
  /// `message` set when the node offers none or the build failed.
  bool Build(KEPHostShaderNode* node, bool restricted, std::string& message, bool classic = false);
  /// The editor (borrowed), null before a successful Build.
  KEPVidWidget* Editor() const { return editor_; }

 private:
  KEP_var<KEPVidWidget> root_;
  KEPVidWidget* editor_ = nullptr;
};
