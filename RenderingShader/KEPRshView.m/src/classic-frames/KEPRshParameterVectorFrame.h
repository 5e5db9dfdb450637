// The classic frame of a vector parameter: one row of labelled spinners (x, y and, unless the
// widget is "vector2d", z), or for "sliderx2" to "sliderx4" a column of two to four sliders, one
// per component. Every change writes all components back, under the render lock.
//
// The sliders show a length in the toolkit's length handling (the stored value divided by 1000)
// but write back what they hold, without multiplying by 1000: a slider moved on a length vector
// writes the shown value. The spinners use no unit at all.
#pragma once

#include <array>

#include "KEPRshParameterFrame.h"

class KEPDlgLabel;
class KEPDlgSpinner;
class KEPRbaScalarSlider;

class KEPRshParameterVectorFrame : public KEPRshParameterFrame {
  KEP_DECLARE_CLASS
 public:
  KEPRshParameterVectorFrame(KEPDialog* parent, KEPIRshParameter* parameter, const KEPString& name,
                             int style);

  void ParameterModifiedCB(KEPDialog* sender, KEPNotification* notification, KEPDlgClientData data);

  /// Spinner of component 0 to 2, or null.
  KEPDlgSpinner* GetSpinner(int component) const;
  /// Slider of component 0 to 3, or null.
  KEPRbaScalarSlider* GetSlider(int component) const;
  /// The lower-cased widget kind.
  const KEPString& GetWidgetName() const { return widget_; }

 protected:
  ~KEPRshParameterVectorFrame() override;

 private:
  void BuildSpinners(KEPIRshParameter* parameter);
  void BuildSliders(KEPIRshParameter* parameter, int count);
  void ShowParameterValue() override;

  KEPDlgSpinner* xSpinner_ = nullptr;
  KEPDlgSpinner* ySpinner_ = nullptr;
  KEPDlgSpinner* zSpinner_ = nullptr;
  std::array<KEPRbaScalarSlider*, 4> sliders_{};
  std::array<KEPDlgLabel*, 4> subLabels_{};
  std::array<KEPDlgLabel*, 4> sepLabels_{};
  int sliderCount_ = 0;
  double factor_ = 1.0;  ///< from a component to its slider's value (the unit's factor)
  KEPString widget_;
};
