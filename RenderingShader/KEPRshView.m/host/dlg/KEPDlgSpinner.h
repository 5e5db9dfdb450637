// A spinner: a number in a range, typed or stepped, shown with a format and a unit.
//
// Two modes share one value: float mode (the spinner style without KEPDlgStyleDouble) keeps the
// value and the range at single precision, as SetRange / SetCurrentValue give them; double mode
// (KEPDlgStyleDouble) keeps full double precision (SetMinMaxStep / SetValue). Either interface
// works in either mode. The value stays inside [minimum, maximum]: a value set outside is brought
// to the nearer end, and a range that moves brings the value with it (an empty range, minimum
// above maximum, holds the minimum). NaN and infinities are refused (traced, nothing changes).
//
// The modify notification follows a change of value when the setter's `notify` is not 0 (code
// setters are silent by default), and every value a person sets.
//
// A unit code (KEPDlgUnit...) chooses how the value shows: with a length code the value is in
// metres and shows in the code's unit ("2.5 cm" for 0.025), with the degree code it is in radians
// and shows in degrees ("45.0 deg" for 0.7854), kelvins show as they are.
// A person types in the unit shown.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <string>

#include "KEPDialog.h"
#include "KEPDlgNotifications.h"

class KEPDlgSpinner : public KEPDialog {
  KEP_DECLARE_CLASS
 public:
  explicit KEPDlgSpinner(KEPDialog* father = nullptr, const KEPString& name = KEPString(),
                         int style = KEPDlgStyleSpinner);

  /// Double mode: the style has KEPDlgStyleDouble.
  bool IsDoubleMode() const { return (GetStyle() & KEPDlgStyleDouble) != 0; }

  // --- Float interface
  /// Range from `minimum` to `maximum` in `steps` steps (step = (maximum - minimum) / steps;
  /// steps below 1 count as 1).
  void SetRange(float minimum, float maximum, int steps, int notify = 0);
  void GetRange(float& minimum, float& maximum, int& steps) const;
  void SetCurrentValue(float value, int notify = 0);
  float GetCurrentValue() const { return static_cast<float>(value_); }

  // --- Double interface
  /// Range and step (a step that is not above 0 leaves the step as it was).
  void SetMinMaxStep(double minimum, double maximum, double step, int notify = 0);
  void GetMinMaxStep(double& minimum, double& maximum, double& step) const;
  void SetValue(double value, int notify = 0);
  double GetValue() const { return value_; }

  // --- Display
  void SetUnit(int unitCode) { unit_ = unitCode; }
  int GetUnit() const { return unit_; }
  /// The magnitude the value measures ("LENGTH"); kept for the caller.
  void SetMagnitude(const KEPString& magnitude) { magnitude_ = magnitude; }
  const KEPString& GetMagnitude() const { return magnitude_; }
  /// Decimals shown when no format is set; `trimZeros` not 0 drops trailing zeros.
  void SetPrecision(int decimals, unsigned char trimZeros = 0);
  int GetPrecision() const { return precision_; }
  /// A printf format with one number conversion ("%.2f", "%d"); the value is converted to what
  /// the conversion reads. A format without exactly one such conversion is traced and not used.
  void SetFormat(const char* format);
  const char* GetFormat() const { return format_.c_str(); }
  void SetVisibleTextWidth(int characters) { textWidth_ = characters; }
  int GetVisibleTextWidth() const { return textWidth_; }
  /// The text shown: the value in its unit, formatted, with the unit's symbol.
  std::string GetValueText() const;

  KEPDlgSpinnerModifyNotification* GetSpinnerModifyNotification() const { return modify_; }

  void DescribeState(KEPVidStateWriter& writer) const override;
  /// Set: a number in the unit shown.
  HRESULT InjectUserEvent(KEPVidAction action, std::string_view argument,
                          std::string& error) override;

 protected:
  ~KEPDlgSpinner() override;

 private:
  // Narrowed to float in float mode.
  double Kept(double value) const;
  // Stores the value brought inside the range; true when it changed.
  bool Store(double value);

  KEPDlgSpinnerModifyNotification* modify_;
  double minimum_ = 0.0;
  double maximum_ = 1.0;
  double step_ = 0.1;
  double value_ = 0.0;
  int steps_ = 10;
  int unit_ = KEPDlgUnitNone;
  int precision_ = -1;
  int textWidth_ = 0;
  unsigned char trimZeros_ = 0;
  KEPString magnitude_;
  std::string format_;
};

#pragma GCC visibility pop
