// The classic frame of a boolean parameter: a check button "booleanCheck" that writes its state
// into the parameter under the render lock.
#pragma once

#include "KEPRshParameterFrame.h"

class KEPDlgCheckButton;

class KEPRshParameterBooleanFrame : public KEPRshParameterFrame {
  KEP_DECLARE_CLASS
 public:
  KEPRshParameterBooleanFrame(KEPDialog* parent, KEPIRshParameter* parameter, const KEPString& name,
                              int style);

  void ParameterModifiedCB(KEPDialog* sender, KEPNotification* notification, KEPDlgClientData data);

  KEPDlgCheckButton* GetCheck() const { return check_; }

 protected:
  ~KEPRshParameterBooleanFrame() override;

 private:
  void ShowParameterValue() override;

  KEPDlgCheckButton* check_ = nullptr;  ///< child, or none in an empty frame
};
