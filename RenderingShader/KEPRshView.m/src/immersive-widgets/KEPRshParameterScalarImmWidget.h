// The immersive widget of a scalar parameter: a slider with an editor beside it ("slider",
// "wheel"), a spin box (any other kind), or nothing ("no-value"). It shows the value in the
// user's display unit when the parameter is an angle or a length, writes what the user changes
// back into the parameter under the render lock, and follows the parameter when someone else
// writes it (another editor of the same node, a script).
//
// A "scale_v" parameter of a physical shader (type "MPM...") is shown as the ratio scale_u ÷
// scale_v, the way such shaders present their tiling.
#pragma once

#include <memory>
#include <string>

#include "KEPRshModelEvents.h"
#include "KEPRshParameterImmWidget.h"

class KEPICkeUnit;
class KEPVidCtlDoubleSpinBox;
class KEPVidCtlEditor;
class KEPVidCtlSlider;

class KEPRshParameterScalarImmWidget : public KEPRshParameterImmWidget {
  KEP_DECLARE_CLASS
 public:
  /// Builds the controls of `parameter` at once (see the file comment); never fails outward: what
  /// cannot be built is left out, at worst leaving an empty grid.
  KEPRshParameterScalarImmWidget(KEPIRshParameter* parameter, KEPVidWidget* parent,
                                 const KEPString& name);

  /// The widget kind, lower case, as the widget read it ("" when the layout was missing).
  const KEPString& GetKind() const { return kind_; }
  /// Whether the value is shown as scale_u ÷ scale_v.
  bool IsScaleRatio() const { return scaleRatio_; }

  void DescribeState(KEPVidStateWriter& writer) const override;

 protected:
  ~KEPRshParameterScalarImmWidget() override;

 private:
  /// Clears `active` for as long as it lives and restores the previous state after.

  void Build(KEPIRshParameter* parameter);
  /// The display unit of an angle or a length, its tooltip prefix, and the range converted to it
  /// when the parameter has a unit of its own.
  void ReadUnits(const KEPString& unitName);
  void BuildSpinBox(KEPIRshParameter* parameter);
  void BuildSliderPair(KEPIRshParameter* parameter);
  /// "<plainLead><min> to <max>", or with a unit "<prefix><unitLead><min> to <max> )".
  KEPUnicodeString RangeTooltip(const std::string& minimum, const std::string& maximum,
                                const char* plainLead, const char* unitLead) const;
  bool AppliesScaleRatio(KEPIRshParameter* parameter) const;

  // --- Conversions between the parameter's model value and what the controls show.
  double ToDisplay(double model) const;
  double ToModel(double display) const;
  /// The parameter's value as the controls show it (converted, and as a ratio under the scale
  /// rule); false when the value cannot be read.
  bool ShownValue(KEPIRshParameter* parameter, double& shown) const;
  /// Turns `value` into scale_u ÷ `value` (the ratio is its own inverse); leaves it as it is
  /// without a readable scale_u. False, with `value` untouched, when the quotient is no finite
  /// number (a zero divisor).
  bool ApplyScaleRatio(KEPIRshParameter* parameter, double& value) const;
  /// The slider position of a shown value, in the regime of the range.
  int SliderPosition(double shown) const;
  /// Whether a shown value lies within the bounds (the bounds themselves included).
  bool InRange(double shown) const;

  // --- Handlers
  /// Puts the editor back to the parameter's value after a refused input.
  void ShowRefused(KEPIRshParameter* parameter);
  void OnValueChanged();
  void OnEditorModified();
  void OnParameterChanged(KEPIRshParameter* changed, KEPRshParameterChangeKind kind);
  /// Shows the parameter's current value in every control, without writing it back.
  void Refresh(KEPIRshParameter* parameter);
  /// Writes `model` into the parameter under the render lock with `active` cleared; `after` runs
  /// inside the same section (the widget's own control updates, whose echo is not a user edit).
  template <class After>
  void Write(KEPIRshParameter* parameter, double model, After after);

  KEPVidCtlSlider* slider_ = nullptr;          ///< "scalarSlider" (borrowed: the grid owns it)
  KEPVidLayGrid* grid_ = nullptr;              ///< "ScalarLayout" (borrowed: this widget owns it)
  KEPVidCtlEditor* editor_ = nullptr;          ///< "scalarEditor"
  KEPVidCtlDoubleSpinBox* spinner_ = nullptr;  ///< "scalarSpinner"
  KEPString magnitude_;                        ///< as the layout names it ("angle", "length", ...)
  double range_ = 0.0;    ///< |maximum − minimum|, once the slider pair exists
  float minimum_ = 0.0f;  ///< bounds and step in display units
  float maximum_ = 1.0f;
  float step_ = 1.0f;
  float tolerance_ = 0.0f;
  bool active_ = true;  ///< false while the widget itself writes or updates its own controls
  bool scaleRatio_ = false;
  KEPString kind_;
  // Units are borrowed: they live for the process. Without a display unit nothing is converted.
  KEPICkeUnit* displayUnit_ = nullptr;  ///< the unit the user works in
  KEPICkeUnit* sourceUnit_ = nullptr;   ///< what the conversion starts from: radian, or metre
  bool length_ = false;                 ///< the model value is a length in millimetres
  KEPUnicodeString tooltipPrefix_;
  int observer_ = 0;  ///< token of the model observer, 0 when none
  /// Points at this widget until it is destroyed: the handlers that the controls and the model
  /// hold reach the widget through it.
  std::shared_ptr<KEPRshParameterScalarImmWidget*> life_;
};
