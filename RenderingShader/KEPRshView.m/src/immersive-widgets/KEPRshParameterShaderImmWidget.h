// The immersive widget of a connection-only parameter: a read-only label naming the node
// connected to the parameter (its alias, else the label of its type, else its type name), or
// "No Shader Connected". The editor's connection column connects and disconnects; this label
// follows every connection change of the parameter, whoever makes it.
#pragma once

#include <memory>

#include "KEPRshModelEvents.h"
#include "KEPRshParameterImmWidget.h"

class KEPVidCtlLabel;

class KEPRshParameterShaderImmWidget : public KEPRshParameterImmWidget {
  KEP_DECLARE_CLASS
 public:
  /// Builds the label of `parameter` at once; stays empty without a parameter.
  KEPRshParameterShaderImmWidget(KEPIRshParameter* parameter, KEPVidWidget* parent,
                                 const KEPString& name);

  /// What names the node connected to `parameter`, or "No Shader Connected".
  static KEPUnicodeString ConnectionText(KEPIRshParameter* parameter);

 protected:
  ~KEPRshParameterShaderImmWidget() override;

 private:
  void OnParameterChanged(KEPIRshParameter* changed, KEPRshParameterChangeKind kind);

  KEPVidCtlLabel* label_ = nullptr;  ///< "connectedShader" (borrowed: this widget owns it)
  int observer_ = 0;                 ///< token of the model observer, 0 when none
  /// Points at this widget until it is destroyed: the model's observer reaches it through it.
  std::shared_ptr<KEPRshParameterShaderImmWidget*> life_;
};
