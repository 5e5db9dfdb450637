// The immersive widget of a texture parameter: an image-document selector showing the
// parameter's image, its layer groups and its resolution (the undefined image when it has none).
// A person's choice becomes a new texture document of the parameter, written under the render
// lock; an image the host cannot read is refused and the selector shows the parameter's image
// again. The selector follows writes made elsewhere without writing back.
#pragma once

#include <memory>

#include "KEPRshModelEvents.h"
#include "KEPRshParameterImmWidget.h"

class KEPRbaImageDocImmSelector;

class KEPRshParameterTextureImmWidget : public KEPRshParameterImmWidget {
  KEP_DECLARE_CLASS
 public:
  /// Builds the selector of `parameter` at once; stays empty without a parameter.
  KEPRshParameterTextureImmWidget(KEPIRshParameter* parameter, KEPVidWidget* parent,
                                  const KEPString& name);

 protected:
  ~KEPRshParameterTextureImmWidget() override;

 private:
  /// Shows the parameter's image, groups and resolution, or the undefined image.
  void Show(KEPIRshParameter* parameter);
  void OnChosen();
  void OnParameterChanged(KEPIRshParameter* changed, KEPRshParameterChangeKind kind);

  KEPVidLayGrid* grid_ = nullptr;                  ///< "TextureLayout" (borrowed)
  KEPRbaImageDocImmSelector* selector_ = nullptr;  ///< "textureEditor" (borrowed)
  /// True while the selector shows the parameter's value: its notifications are no choice.
  bool refreshing_ = false;
  int observer_ = 0;  ///< token of the model observer, 0 when none
  /// Points at this widget until it is destroyed: the handlers that the selector and the model
  /// hold reach the widget through it.
  std::shared_ptr<KEPRshParameterTextureImmWidget*> life_;
};
