// The classic frame of a texture parameter: an image-document selector ("textureSelector": the
// image file, its layer groups and its resolution) and, when there are layer groups to choose
// from, the layer chooser titled "SVG Layers Selector" ("svgLayersSelector"), a selector list of
// the groups named by the parameter's ".LayerGroupName" (several separated by commas or
// semicolons) and of those the image already uses.
//
// Every choice is written back as a new texture document (image, groups and resolution) made by
// KEPRshParameterServices::CreateTextureDocument, under the render lock; an empty image clears
// the texture. A choice the host refuses (a missing or unreadable image) writes nothing and the
// controls show the parameter's value again.
#pragma once

#include <vector>

#include "KEPRshParameterFrame.h"

class KEPDlgSelectorList;
class KEPRbaImageDocImmSelector;

class KEPRshParameterTextureFrame : public KEPRshParameterFrame {
  KEP_DECLARE_CLASS
 public:
  KEPRshParameterTextureFrame(KEPDialog* parent, KEPIRshParameter* parameter, const KEPString& name,
                              int style);

  /// A line of the layer chooser was selected: that group alone is written with the image.
  void ParameterModifiedCB(KEPDialog* sender, KEPNotification* notification, KEPDlgClientData data);

  KEPRbaImageDocImmSelector* GetSelector() const { return selector_; }
  KEPDlgSelectorList* GetLayerSelector() const { return layers_; }

 protected:
  ~KEPRshParameterTextureFrame() override;

 private:
  /// Shows the parameter's texture in the controls (without writing it back).
  void ShowValue();
  void ShowParameterValue() override { ShowValue(); }
  /// The selector's image, groups and resolution were chosen.
  void SelectorModified();
  void Write(const KEPString& image, const std::vector<KEPString>& groups, double dpi);

  KEPRbaImageDocImmSelector* selector_ = nullptr;  ///< child, or none in an empty frame
  KEPDlgSelectorList* layers_ = nullptr;           ///< child, or none
  std::vector<KEPString> configuredGroups_;        ///< from ".LayerGroupName"
  int selectorHandler_ = 0;
  bool active_ = false;  ///< false while the frame sets its own controls
};
