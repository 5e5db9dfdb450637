// The immersive widget of a boolean parameter: one check box, checked while the value is not
// zero. A click writes the box's state under the render lock; the box follows writes made
// elsewhere (another editor of the same node, a script) without writing back.
#pragma once

#include <memory>

#include "KEPRshModelEvents.h"
#include "KEPRshParameterImmWidget.h"

class KEPVidCtlCheckBox;

class KEPRshParameterBooleanImmWidget : public KEPRshParameterImmWidget {
  KEP_DECLARE_CLASS
 public:
  /// Builds the check box of `parameter` at once; stays empty without a parameter.
  KEPRshParameterBooleanImmWidget(KEPIRshParameter* parameter, KEPVidWidget* parent,
                                  const KEPString& name);

 protected:
  ~KEPRshParameterBooleanImmWidget() override;

 private:
  void OnClicked();
  void OnParameterChanged(KEPIRshParameter* changed, KEPRshParameterChangeKind kind);

  KEPVidCtlCheckBox* check_ = nullptr;  ///< "booleanCheck" (borrowed: this widget owns it)
  /// True while the box shows a value written elsewhere: its notification is no click.
  bool refreshing_ = false;
  int observer_ = 0;  ///< token of the model observer, 0 when none
  /// Points at this widget until it is destroyed: the handlers that the box and the model hold
  /// reach the widget through it.
  std::shared_ptr<KEPRshParameterBooleanImmWidget*> life_;
};
