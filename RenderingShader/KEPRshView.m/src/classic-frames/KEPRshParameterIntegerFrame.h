// The classic frame of an integer parameter, by widget kind: a combo of the enumeration's labels
// ("combo"), a slider ("slider"), a check button ("check") or a spinner (anything else). A change
// is written back into the parameter under the render lock.
//
// The combo has one line per step of the range, labelled with the enumeration labels of the
// values min, min + 1, ... (the step sets only how many lines there are); a line becomes a value
// through the enumeration's value of its index when there is one, else min + index.
#pragma once

#include "KEPRshParameterFrame.h"

class KEPDlgCheckButton;
class KEPDlgCombo;
class KEPDlgSpinner;
class KEPIRshParameterDialog;
class KEPRbaScalarSlider;

class KEPRshParameterIntegerFrame : public KEPRshParameterFrame {
  KEP_DECLARE_CLASS
 public:
  /// The most combo lines made; a wider range is cut there (the rest could not be chosen anyway).
  static constexpr int kMaxComboLines = 10000;

  KEPRshParameterIntegerFrame(KEPDialog* parent, KEPIRshParameter* parameter, const KEPString& name,
                              int style);

  void ParameterModifiedCB(KEPDialog* sender, KEPNotification* notification, KEPDlgClientData data);

  KEPRbaScalarSlider* GetSlider() const { return slider_; }
  KEPDlgSpinner* GetSpinner() const { return spinner_; }
  KEPDlgCombo* GetCombo() const { return combo_; }
  KEPDlgCheckButton* GetCheck() const { return check_; }
  int GetComboBase() const { return comboBase_; }

 protected:
  ~KEPRshParameterIntegerFrame() override;

 private:
  void BuildCombo(KEPIRshParameterDialog* behaviour, int value, bool hasValue);
  void ShowParameterValue() override;
  /// The combo line of `value`: the enumeration's index when it has one, else the value itself.
  static int ComboIndex(KEPIRshParameterDialog* behaviour, int value);

  KEPRbaScalarSlider* slider_ = nullptr;  ///< child, or none
  KEPDlgSpinner* spinner_ = nullptr;      ///< child, or none
  KEPDlgCombo* combo_ = nullptr;          ///< child, or none
  KEPDlgCheckButton* check_ = nullptr;    ///< child, or none
  int comboBase_ = 0;
};
