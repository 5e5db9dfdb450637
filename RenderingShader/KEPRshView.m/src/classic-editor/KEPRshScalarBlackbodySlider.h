// A colour-temperature slider: a slider whose background shows the colour of a black body across
// the slider's range, coupled with a spinner that shows and takes the same value. It offers the
// spinner's value interface, so that a caller may treat it as a spinner.
//
// Moving the slider copies its value into the spinner and passes the slider's drag or modify
// notification on to the father, whether or not the value changed. Changing the spinner moves the
// slider and sends the modify notification only when the value differs from the slider's.
//
// The style bit KEPDlgStyleDouble selects double precision for both parts; without it the spinner
// works in float mode and the slider's value reaches it narrowed to float.
#pragma once

#include <cstdint>
#include <vector>

#include "KEPDlgFrame.h"
#include "KEPDlgNotifications.h"
#include "KEPTypes.h"

class KEP2DRep;
class KEPDlgSpinner;
class KEPRbaSlider;

class KEP_EXPORT KEPRshScalarBlackbodySlider : public KEPDlgFrame {
  KEP_DECLARE_CLASS
 public:
  /// The style bits the control keeps (double mode and two layout bits); others are dropped.
  static constexpr int kKeptStyle = 0x20000 | 0x200000 | 0x400000;

  /// A slider of `width` × `height` named `name` + "BlackbodySlider" and a spinner named
  /// `name` + "Spinner", both over 0..1 in steps of 0.01.
  KEPRshScalarBlackbodySlider(KEPDialog* parent, const KEPString& name, const int& width,
                              const int& height, int style);

  // --- The spinner's value interface
  float GetCurrentValue() const;
  const char* GetFormat() const;
  const KEPString& GetMagnitude() const;
  void GetMinMaxStep(double& minimum, double& maximum, double& step) const;
  int GetPrecision() const;
  void GetRange(float& minimum, float& maximum, int& steps) const;
  int GetUnit() const;
  double GetValue() const;
  int GetVisibleTextWidth() const;
  int IsSetSensitivity() const override;
  void SetFormat(const char* format);
  void SetMagnitude(const KEPString& magnitude);
  void SetPrecision(int decimals, unsigned char trimZeros = 0);
  void SetUnit(int unitCode);
  void SetVisibleTextWidth(int characters);

  // --- Setters of both parts
  /// Slider over [minimum, maximum] in `steps` steps (steps below 1 count as 1); spinner alike.
  void SetRange(float minimum, float maximum, int steps);
  void SetMinMaxStep(double minimum, double maximum, double step);
  /// Sets the spinner (notifying as asked), then the slider silently to what the spinner kept.
  void SetValue(double value, int notify = 0);
  void SetCurrentValue(float value, int notify = 0);
  /// Slider, then spinner.
  void SetSensitivity(int sensitivity) override;
  void SetSensitivity(bool) = delete;
  /// True once SetValue was called.
  bool IsValueSet() const { return valueSet_; }

  // --- Background of the slider
  void SetSliderBackgroundColor(float red, float green, float blue);
  void SetSliderBackgroundRep(KEP2DRep* rep, int owned);
  /// Paints the slider's background area with the colour of a black body at each column's value
  /// (the range is read as kelvins).
  void SetSliderBackgroundGradient();
  /// The last gradient's pixels (width × height × 3 bytes, RGB), empty before the first.
  const std::vector<std::uint8_t>& GetGradientPixels() const { return pixels_; }

  KEPDlgSliderDragNotification* GetSliderDragNotification() const { return dragNotification_; }
  KEPDlgSliderModifyNotification* GetSliderModifyNotification() const {
    return modifyNotification_;
  }
  KEPRbaSlider* GetSlider() const { return slider_; }
  KEPDlgSpinner* GetSpinner() const { return spinner_; }

 protected:
  ~KEPRshScalarBlackbodySlider() override;

 private:
  bool IsDoubleMode() const { return (style_ & 0x20000) != 0; }
  /// Copies the slider's value into the spinner without notification.
  void CopySliderToSpinner();

  void SliderDragNotificationCB(KEPDialog* sender, KEPNotification* notification,
                                KEPDlgClientData data);
  void SliderModifyNotificationCB(KEPDialog* sender, KEPNotification* notification,
                                  KEPDlgClientData data);
  void SpinnerModifyNotificationCB(KEPDialog* sender, KEPNotification* notification,
                                   KEPDlgClientData data);

  KEPDlgSliderDragNotification* dragNotification_ = nullptr;      ///< one reference
  KEPDlgSliderModifyNotification* modifyNotification_ = nullptr;  ///< one reference
  int style_;
  KEPRbaSlider* slider_ = nullptr;    ///< child (owned by the tree)
  KEPDlgSpinner* spinner_ = nullptr;  ///< child (owned by the tree)
  bool valueSet_ = false;
  std::vector<std::uint8_t> pixels_;
};
