// A slider over integer positions. Its value stays inside [minimum, maximum] (a value set
// outside is brought to the nearer end; with minimum > maximum the range is empty and the value
// is the minimum). A change of value raises ValueChanged.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPVidCtl.h"

class KEPVidCtlSlider : public KEPVidCtl {
  KEP_DECLARE_CLASS
 public:
  explicit KEPVidCtlSlider(KEPVidWidget* father = nullptr, const KEPString& name = KEPString());

  /// Sets the range; the value is brought inside it (raising ValueChanged if it moves).
  void SetRange(int minimum, int maximum);
  int GetMinimum() const { return minimum_; }
  int GetMaximum() const { return maximum_; }
  void SetValue(int value);
  int GetValue() const { return value_; }
  void SetTickInterval(int interval) { tickInterval_ = interval; }
  int GetTickInterval() const { return tickInterval_; }
  void SetSingleStep(int step) { singleStep_ = step; }
  int GetSingleStep() const { return singleStep_; }
  void SetPageStep(int step) { pageStep_ = step; }
  int GetPageStep() const { return pageStep_; }
  /// Relative thickness of the bar.
  void SetBarSize(double size) { barSize_ = size; }
  double GetBarSize() const { return barSize_; }
  /// 0 no ticks, 1 above, 2 below, 3 both sides.
  void SetTickPosition(int position) { tickPosition_ = position; }
  int GetTickPosition() const { return tickPosition_; }
  /// Height of the background square relative to the slider's height.
  void SetBackgroundSquareHeightRatio(double ratio) { squareRatio_ = ratio; }
  double GetBackgroundSquareHeightRatio() const { return squareRatio_; }
  /// The magnifier enlarges the handle under the pointer.
  void SetMagnifier(bool on) { magnifier_ = on; }
  bool GetMagnifier() const { return magnifier_; }

  void DescribeState(KEPVidStateWriter& writer) const override;
  /// Set: an integer position ("%d" is not enough: trailing text is an error).
  HRESULT InjectUserEvent(KEPVidAction action, std::string_view argument,
                          std::string& error) override;

 protected:
  ~KEPVidCtlSlider() override;

 private:
  int minimum_ = 0;
  int maximum_ = 100;
  int value_ = 0;
  int tickInterval_ = 0;
  int singleStep_ = 1;
  int pageStep_ = 10;
  int tickPosition_ = 0;
  double barSize_ = 1.0;
  double squareRatio_ = 0.0;
  bool magnifier_ = true;
};

#pragma GCC visibility pop
