// The classic frame of a connection-only parameter (a sub-shader slot, "KEPRmaVoid"): a label
// "shaderLabel" naming the shader connected to the parameter (its alias), or "No shader". The
// frame edits nothing itself: the shader frame's row buttons connect, disconnect and edit the
// sub-shader. It follows the parameter's connection when it changes.
#pragma once

#include "KEPRshParameterFrame.h"

class KEPDlgLabel;

class KEPRshParameterShaderFrame : public KEPRshParameterFrame {
  KEP_DECLARE_CLASS
 public:
  /// The label's text when nothing is connected.
  static constexpr char kNoShader[] = "No shader";

  KEPRshParameterShaderFrame(KEPDialog* parent, KEPIRshParameter* parameter, const KEPString& name,
                             int style);

  KEPDlgLabel* GetLabel() const { return label_; }

 protected:
  ~KEPRshParameterShaderFrame() override;

 private:
  void ShowParameterValue() override;

  KEPDlgLabel* label_ = nullptr;  ///< child, or none in an empty frame
};
