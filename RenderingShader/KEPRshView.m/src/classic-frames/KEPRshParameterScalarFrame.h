// The classic frame of a scalar parameter: one control chosen by the parameter's widget kind
// ("slider", "blackbody", "wheel", anything else a spinner), set up from its range, unit and
// value. A change is written back into the parameter under the render lock; a successful write
// is followed by a float shader-modify notification about the feature that owns the parameter's
// shader, so that the material updates.
#pragma once

#include "KEPBaseUnknown_WR.h"
#include "KEPRshParameterFrame.h"

class KEPDlgSpinner;
class KEPRbaScalarSlider;
class KEPRbaScalarWheel;
class KEPRshScalarBlackbodySlider;

class KEPRshParameterScalarFrame : public KEPRshParameterFrame {
  KEP_DECLARE_CLASS
 public:
  KEPRshParameterScalarFrame(KEPDialog* parent, KEPIRshParameter* parameter, const KEPString& name,
                             int style);

  /// Reads the existing control and writes its value into the parameter.
  void ParameterModifiedCB(KEPDialog* sender, KEPNotification* notification, KEPDlgClientData data);

  KEPRbaScalarSlider* GetSlider() const { return slider_; }
  KEPRshScalarBlackbodySlider* GetBlackbodySlider() const { return blackbodySlider_; }
  KEPRbaScalarWheel* GetWheel() const { return wheel_; }
  KEPDlgSpinner* GetSpinner() const { return spinner_; }
  /// The feature the change notification is about (borrowed), null when gone or never found.
  KEPBaseUnknown* GetOwnerFeature() const { return ownerFeature_.Get(); }

 protected:
  ~KEPRshParameterScalarFrame() override;

 private:
  void Build(KEPIRshParameter* parameter);
  void ShowParameterValue() override;
  void SendModifyNotification() const;

  KEPRbaScalarSlider* slider_ = nullptr;                    ///< child, or none
  KEPRshScalarBlackbodySlider* blackbodySlider_ = nullptr;  ///< child, or none
  KEPRbaScalarWheel* wheel_ = nullptr;                      ///< child, or none
  KEPDlgSpinner* spinner_ = nullptr;                        ///< child, or none
  double factor_ = 1.0;  ///< from the parameter's value to the control's (the unit's factor)
  /// Weak: the owner (a document or a shader) may go before the frame.
  KEPBaseUnknown_WR ownerFeature_;
};
