// An integer spin box. Its value stays inside [minimum, maximum]: code that sets a value outside
// gets the nearer end. What a person types outside the range follows the correction mode:
// KEPVidCorrection_Previous (0) keeps the previous value, KEPVidCorrection_Nearest (1) takes the
// nearer end. A change of value raises ValueChanged.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPVidCtl.h"

enum KEPVidCorrectionMode : int {
  KEPVidCorrection_Previous = 0,
  KEPVidCorrection_Nearest = 1,
};

class KEPVidCtlSpinBox : public KEPVidCtl {
  KEP_DECLARE_CLASS
 public:
  explicit KEPVidCtlSpinBox(KEPVidWidget* father = nullptr, const KEPString& name = KEPString());

  void SetRange(int minimum, int maximum);
  int GetMinimum() const { return minimum_; }
  int GetMaximum() const { return maximum_; }
  void SetSingleStep(int step) { step_ = step; }
  int GetSingleStep() const { return step_; }
  void SetValue(int value);
  int GetValue() const { return value_; }
  void SetSuffix(const KEPUnicodeString& suffix) { suffix_ = suffix; }
  const KEPUnicodeString& GetSuffix() const { return suffix_; }
  void SetMaximumTextLength(int characters) { textLength_ = characters; }
  int GetMaximumTextLength() const { return textLength_; }
  void SetCorrectionMode(int mode) { correction_ = mode; }
  int GetCorrectionMode() const { return correction_; }

  void DescribeState(KEPVidStateWriter& writer) const override;
  HRESULT InjectUserEvent(KEPVidAction action, std::string_view argument,
                          std::string& error) override;

 protected:
  ~KEPVidCtlSpinBox() override;

 private:
  KEPUnicodeString suffix_;
  int minimum_ = 0;
  int maximum_ = 99;
  int step_ = 1;
  int value_ = 0;
  int textLength_ = 0;
  int correction_ = KEPVidCorrection_Previous;
};

#pragma GCC visibility pop
