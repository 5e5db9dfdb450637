// The classic frame of a colour parameter: one row of three labelled spinners, red, green and
// blue, over the parameter's range (0 to 1 in steps of 0.01 unless configured). A change writes
// the three channels back under the render lock; the stored alpha is kept as it is.
#pragma once

#include <array>

#include "KEPRshParameterFrame.h"

class KEPDlgSpinner;

class KEPRshParameterColorFrame : public KEPRshParameterFrame {
  KEP_DECLARE_CLASS
 public:
  KEPRshParameterColorFrame(KEPDialog* parent, KEPIRshParameter* parameter, const KEPString& name,
                            int style);

  void ParameterModifiedCB(KEPDialog* sender, KEPNotification* notification, KEPDlgClientData data);

  /// Spinner of channel 0 (red) to 2 (blue), or null in an empty frame.
  KEPDlgSpinner* GetSpinner(int channel) const;

 protected:
  ~KEPRshParameterColorFrame() override;

 private:
  void ShowParameterValue() override;

  std::array<KEPDlgSpinner*, 3> spinners_{};
};
