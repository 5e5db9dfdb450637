// A slider over a real range, with a background (a colour, or a 2D representation drawn inside the
// background area). A person dragging the handle sends drag notifications, releasing it a modify
// notification; code sets the value silently unless asked to notify (modify).
//
// The value stays inside [minimum, maximum] (see KEPDlgSpinner); NaN and infinities are refused.
// Without the style bit KEPDlgStyleDouble the value is kept at single precision.
// The background area is the slider's size less a border of 2 pixels on each side.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <string>

#include "KEPDialog.h"
#include "KEPDlgNotifications.h"

class KEP2DRep;

class KEPRbaSlider : public KEPDialog {
  KEP_DECLARE_CLASS
 public:
  /// A slider of `width` × `height` pixels.
  KEPRbaSlider(KEPDialog* father, const KEPString& name, const int& width, const int& height,
               int style = 0);

  void SetRange(double minimum, double maximum, double step);
  void GetRange(double& minimum, double& maximum, double& step) const;
  void SetValue(double value, int notify = 0);
  double GetValue() const { return value_; }
  int GetWidth() const { return width_; }
  int GetHeight() const { return height_; }

  /// The background colour, channels in 0..1 (clamped).
  void SetBackgroundColor(float red, float green, float blue);
  /// The representation drawn in the background area (null: none). With `owned` not 0 the slider
  /// takes over the caller's reference; with 0 it adds one of its own. Either way the slider
  /// releases its reference when the representation is replaced or the slider dies.
  void SetBackgroundRep(KEP2DRep* rep, int owned);
  KEP2DRep* GetBackgroundRep() const { return rep_; }
  bool OwnsBackgroundRep() const { return owned_; }
  /// The background area's size in pixels.
  void GetBackgroundAreaSize(int& width, int& height) const;

  KEPDlgSliderDragNotification* GetSliderDragNotification() const { return drag_; }
  KEPDlgSliderModifyNotification* GetSliderModifyNotification() const { return modify_; }

  /// The value as a person reads it.
  virtual std::string GetValueText() const;

  void DescribeState(KEPVidStateWriter& writer) const override;
  /// Set: the handle released at a number (modify); Drag: the handle moved to it (drag). Both
  /// notify even when the value stays (the person did move the handle).
  HRESULT InjectUserEvent(KEPVidAction action, std::string_view argument,
                          std::string& error) override;

 protected:
  ~KEPRbaSlider() override;
  /// A number a person gives, in what the slider shows, as a value.
  virtual double FromShown(double shown) const { return shown; }
  /// Stores the value brought inside the range; true when it changed.
  bool Store(double value);

 private:
  KEPDlgSliderDragNotification* drag_;
  KEPDlgSliderModifyNotification* modify_;
  KEP2DRep* rep_ = nullptr;  ///< one reference held
  double minimum_ = 0.0;
  double maximum_ = 1.0;
  double step_ = 0.01;
  double value_ = 0.0;
  int width_;
  int height_;
  bool owned_ = false;
};

#pragma GCC visibility pop
