// A slider with its value shown beside it as text: a format, a unit code (see KEPDlgSpinner for
// how a unit shows; a person gives numbers in the unit shown), a visible text width, and the
// track settings.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <string>

#include "KEPRbaSlider.h"

class KEPRbaScalarSlider : public KEPRbaSlider {
  KEP_DECLARE_CLASS
 public:
  KEPRbaScalarSlider(KEPDialog* father, const KEPString& name, const int& width, const int& height,
                     int style = 0);

  /// See KEPDlgSpinner::SetFormat.
  void SetFormat(const char* format);
  const char* GetFormat() const { return format_.c_str(); }
  void SetVisibleTextWidth(int characters) { textWidth_ = characters; }
  int GetVisibleTextWidth() const { return textWidth_; }
  void SetUnit(int unitCode) { unit_ = unitCode; }
  int GetUnit() const { return unit_; }
  /// The track: minor and major tick spacing in steps, the drag speed factor, and the number of
  /// positions the track is divided into.
  void SetTrackSettings(double minorTicks, double majorTicks, double dragFactor, int positions);
  void GetTrackSettings(double& minorTicks, double& majorTicks, double& dragFactor,
                        int& positions) const;

  std::string GetValueText() const override;
  void DescribeState(KEPVidStateWriter& writer) const override;

 protected:
  ~KEPRbaScalarSlider() override;
  double FromShown(double shown) const override;

  int precision_ = -1;  ///< decimals when no format is set (the wheel sets it)
  std::string symbol_;  ///< a symbol shown instead of the unit's (the wheel sets it)

 private:
  std::string format_;
  double minorTicks_ = 0.0;
  double majorTicks_ = 0.0;
  double dragFactor_ = 1.0;
  int positions_ = 0;
  int textWidth_ = 0;
  int unit_ = KEPDlgUnitNone;
};

#pragma GCC visibility pop
