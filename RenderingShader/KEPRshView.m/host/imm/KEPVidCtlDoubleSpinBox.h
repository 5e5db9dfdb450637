// A spin box of real numbers, shown with `decimals` decimals and a suffix (a unit symbol). Range,
// correction mode and notifications as KEPVidCtlSpinBox; a value is not rounded to the decimals.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPVidCtlSpinBox.h"

class KEPVidCtlDoubleSpinBox : public KEPVidCtl {
  KEP_DECLARE_CLASS
 public:
  explicit KEPVidCtlDoubleSpinBox(KEPVidWidget* father = nullptr,
                                  const KEPString& name = KEPString());

  void SetRange(double minimum, double maximum);
  double GetMinimum() const { return minimum_; }
  double GetMaximum() const { return maximum_; }
  void SetSingleStep(double step) { step_ = step; }
  double GetSingleStep() const { return step_; }
  /// NaN is ignored.
  void SetValue(double value);
  double GetValue() const { return value_; }
  void SetDecimals(int decimals) { decimals_ = decimals; }
  int GetDecimals() const { return decimals_; }
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
  ~KEPVidCtlDoubleSpinBox() override;

 private:
  KEPUnicodeString suffix_;
  double minimum_ = 0.0;
  double maximum_ = 99.99;
  double step_ = 1.0;
  double value_ = 0.0;
  int decimals_ = 2;
  int textLength_ = 0;
  int correction_ = KEPVidCorrection_Previous;
};

#pragma GCC visibility pop
