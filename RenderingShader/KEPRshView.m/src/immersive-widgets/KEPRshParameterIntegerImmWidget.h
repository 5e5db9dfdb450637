// The immersive widget of an integer parameter, by widget kind: a combo of the enumeration's
// labels ("combo"), a check box ("check"), a slider with an editor beside it ("slider"), or a
// spin box (any other kind). It writes what the user changes back into the parameter under the
// render lock and follows the parameter when someone else writes it.
//
// Two names are special: a "dpi" parameter is editable only when its shader holds a vector (SVG)
// map, and every new value of a "type" parameter is handed to the rendering material that owns
// the shader before the parameter is written.
#pragma once

#include <memory>

#include "KEPRshModelEvents.h"
#include "KEPRshParameterImmWidget.h"

class KEPVidCtlCheckBox;
class KEPVidCtlEditor;
class KEPVidCtlImageCombo;
class KEPVidCtlSlider;
class KEPVidCtlSpinBox;

class KEPRshParameterIntegerImmWidget : public KEPRshParameterImmWidget {
  KEP_DECLARE_CLASS
 public:
  /// Builds the controls of `parameter` at once; without a parameter the widget stays empty.
  /// Never fails outward: what cannot be built is left out.
  KEPRshParameterIntegerImmWidget(KEPIRshParameter* parameter, KEPVidWidget* parent,
                                  const KEPString& name);

  /// The widget kind, lower case, as the widget read it ("" without a parameter or layout).
  const KEPString& GetKind() const { return kind_; }
  /// The value of the combo's first line.
  int GetComboFirstValue() const { return comboFirst_; }
  /// Whether the slider works in whole units (false: in hundredths of the value).
  bool IsWholeUnit() const { return wholeUnit_; }

  void DescribeState(KEPVidStateWriter& writer) const override;

 protected:
  ~KEPRshParameterIntegerImmWidget() override;

 private:
  /// Clears `active` for as long as it lives and restores the previous state after.

  void Build(KEPIRshParameter* parameter);
  void BuildCombo(KEPIRshParameter* parameter);
  void BuildCheck(KEPIRshParameter* parameter);
  void BuildSpinBox(KEPIRshParameter* parameter);
  void BuildSliderPair(KEPIRshParameter* parameter);
  /// The "dpi" rule: the controls are sensitive only when the owning shader has an SVG map.
  void ApplyDpiRule(KEPIRshParameter* parameter);
  /// The range with the presets given, as the layout answers it (the presets when it fails).
  void ReadRange(int& minimum, int& maximum, int& step) const;
  /// The combo line of `value`: the layout's index of it, else the value itself.
  int ComboIndex(int value) const;
  /// The slider position of `value` in the slider's regime.
  int SliderPosition(int value) const;

  // --- Handlers
  void OnValueChanged();
  void OnEditorModified();
  void OnParameterChanged(KEPIRshParameter* changed, KEPRshParameterChangeKind kind);
  /// Shows the parameter's current value in every control, without writing it back.
  void Refresh(KEPIRshParameter* parameter);
  /// Under the render lock, with `active` cleared: hands a "type" value to the material (when
  /// `tellMaterial`), then writes `value` into the parameter.
  void Write(KEPIRshParameter* parameter, int value, bool tellMaterial);

  KEPVidLayGrid* grid_ = nullptr;         ///< "IntegerLayout" (borrowed: this widget owns it)
  KEPVidCtlSlider* slider_ = nullptr;     ///< "integerSlider" (borrowed: the grid owns it)
  KEPVidCtlSpinBox* spinner_ = nullptr;   ///< "integerSpinner"
  KEPVidCtlCheckBox* check_ = nullptr;    ///< "integerCheck" (this widget owns it)
  KEPVidCtlImageCombo* combo_ = nullptr;  ///< "integerCombo"
  KEPVidCtlEditor* editor_ = nullptr;     ///< "integerEditor"
  int comboFirst_ = 0;
  bool wholeUnit_ = false;
  bool active_ = true;     ///< false while the widget itself writes or updates its own controls
  bool typeRule_ = false;  ///< the parameter is named "type"
  KEPString kind_;
  int observer_ = 0;  ///< token of the model observer, 0 when none
  /// Points at this widget until it is destroyed: the handlers that the controls and the model
  /// hold reach the widget through it.
  std::shared_ptr<KEPRshParameterIntegerImmWidget*> life_;
};
