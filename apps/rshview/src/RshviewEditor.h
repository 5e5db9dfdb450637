// The immersive editor of one node, as the host opens it: a root widget of rshview's own, and
// under it the editor that the node's KEPIRshShaderEditorImmLayout builds.
#pragma once

#include <iosfwd>
#include <string>

#include "KEPHostShaderNode.h"
#include "KEPVidLayGrid.h"
#include "KEP_var.h"

class RshviewEditor {
 public:
  /// The name the editor is built with; widget paths start below it.
  static constexpr const char* kEditorName = "ShaderEditor";

  /// Builds the editor of `node`; false with `message` set when the node offers none or the
  /// build failed.
  bool Build(KEPHostShaderNode* node, bool restricted, std::string& message);
  /// The editor (borrowed), null before a successful Build.
  KEPVidWidget* Editor() const { return editor_; }

 private:
  KEP_var<KEPVidLayGrid> root_;
  KEPVidWidget* editor_ = nullptr;
};
