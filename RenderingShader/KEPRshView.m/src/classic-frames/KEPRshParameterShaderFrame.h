// The classic frame of a connection-only (shader-valued) parameter: a label "connectedShader"
// naming the node connected to the parameter ("No Shader Connected" when none), kept up to date
// when the connection changes. The row's connection buttons, not this frame, change it.
#pragma once

#include "KEPRshParameterFrame.h"

class KEPDlgLabel;

class KEPRshParameterShaderFrame : public KEPRshParameterFrame {
  KEP_DECLARE_CLASS
 public:
  KEPRshParameterShaderFrame(KEPDialog* parent, KEPIRshParameter* parameter, const KEPString& name,
                             int style);

  KEPDlgLabel* GetLabel() const { return label_; }

 protected:
  ~KEPRshParameterShaderFrame() override;
  void ShowParameterValue() override;

 private:
  KEPDlgLabel* label_ = nullptr;  ///< child, or none in an empty frame
};
