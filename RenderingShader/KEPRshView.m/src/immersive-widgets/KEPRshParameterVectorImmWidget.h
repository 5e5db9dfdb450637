// The immersive widget of a vector parameter: three labelled spin boxes X, Y, Z showing the raw
// components (any kind but the slider kinds), two to four labelled sliders ("sliderx2",
// "sliderx3", "sliderx4") showing whole units of the parameter's unit, or nothing ("no-value").
// A change of any control writes the whole vector under the render lock; the widget follows
// writes made elsewhere (another editor of the same node, a script) without writing back.
#pragma once

#include <memory>

#include "KEPRshModelEvents.h"
#include "KEPRshParameterImmWidget.h"

class KEPIRshParameterImmLayout;
class KEPVidCtlDoubleSpinBox;
class KEPVidCtlSlider;

class KEPRshParameterVectorImmWidget : public KEPRshParameterImmWidget {
  KEP_DECLARE_CLASS
 public:
  /// Builds the controls of `parameter` at once; nothing is built without a parameter, and what
  /// cannot be built is left out.
  KEPRshParameterVectorImmWidget(KEPIRshParameter* parameter, KEPVidWidget* parent,
                                 const KEPString& name);

  /// The widget kind, lower case, as the widget read it.
  const KEPString& GetKind() const { return kind_; }
  /// What the slider form multiplies model values by to show them (1 for the other forms).
  double GetUnitFactor() const { return unitFactor_; }

  void DescribeState(KEPVidStateWriter& writer) const override;

 protected:
  ~KEPRshParameterVectorImmWidget() override;

 private:
  static constexpr int kSpinners = 3;
  static constexpr int kMaxSliders = 4;

  void Build(KEPIRshParameter* parameter);
  void BuildSpinBoxes(KEPIRshParameter* parameter, float minimum, float maximum, float step);
  void BuildSliders(KEPIRshParameter* parameter, KEPIRshParameterImmLayout* layout,
                    const KEPString& unitName, float minimum, float maximum, float step);
  /// Number of sliders of the kind (2 to 4), 0 for the other kinds.
  int SliderCount() const;

  void OnValueChanged();
  void OnParameterChanged(KEPIRshParameter* changed, KEPRshParameterChangeKind kind);
  /// Shows the parameter's current components in every control, without writing them back.
  void Refresh(KEPIRshParameter* parameter);

  KEPVidLayGrid* grid_ = nullptr;  ///< "VectorLayout" (borrowed: this widget owns it)
  KEPVidCtlDoubleSpinBox* spinners_[kSpinners] = {};  ///< "scalarSpinner1".."3"
  KEPVidCtlSlider* sliders_[kMaxSliders] = {};        ///< "scalarSlider1".."4"
  double unitFactor_ = 1.0;
  KEPString kind_;
  /// True while the widget shows a value written elsewhere: the controls' notifications are then
  /// no user edit (the slider form would write its truncated components back).
  bool refreshing_ = false;
  int observer_ = 0;  ///< token of the model observer, 0 when none
  /// Points at this widget until it is destroyed: the handlers that the controls and the model
  /// hold reach the widget through it.
  std::shared_ptr<KEPRshParameterVectorImmWidget*> life_;
};
