// The classic frame of a light-profile parameter: a one-line editor "lightProfileEditor" holding
// the path of the photometric profile file, and a push button "lightProfileClear" that removes
// the profile. A path typed (blanks around it dropped) or the removal is written back under the
// render lock; the editor then shows what the parameter holds.
#pragma once

#include "KEPRshParameterFrame.h"

class KEPDlgPushButton;
class KEPVidCtlEditor;

class KEPRshParameterLightProfileFrame : public KEPRshParameterFrame {
  KEP_DECLARE_CLASS
 public:
  KEPRshParameterLightProfileFrame(KEPDialog* parent, KEPIRshParameter* parameter,
                                   const KEPString& name, int style);

  /// The clear button was pressed: the profile is removed.
  void ParameterModifiedCB(KEPDialog* sender, KEPNotification* notification, KEPDlgClientData data);

  KEPVidCtlEditor* GetEditor() const { return editor_; }
  KEPDlgPushButton* GetClearButton() const { return clear_; }

 protected:
  ~KEPRshParameterLightProfileFrame() override;

 private:
  void ShowValue();
  void ShowParameterValue() override { ShowValue(); }
  void Write(const KEPString& path);

  KEPVidCtlEditor* editor_ = nullptr;  ///< child, or none in an empty frame
  KEPDlgPushButton* clear_ = nullptr;  ///< child, or none
  int editorHandler_ = 0;
  bool active_ = false;  ///< false while the frame sets its own editor
};
