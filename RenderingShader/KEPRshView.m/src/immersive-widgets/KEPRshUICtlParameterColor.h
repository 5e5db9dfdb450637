// The immersive widget of a colour parameter: edits the colour through its lightness (the L of
// HSL). A slider and an editor show the lightness, a colour button shows the colour and opens a
// popup that holds a full colour picker. Moving the slider or typing a lightness keeps the hue and
// the saturation; picking a colour sets all three. Every change is written into the parameter
// under the render lock and traced; the parameter's alpha is never changed.
//
// The widget follows the parameter when someone else writes it (another editor of the same node,
// the grey-level spinner, a script), without writing it back.
#pragma once

#include <memory>

#include "KEPRshModelEvents.h"
#include "KEPRshParameterImmWidget.h"
#include "KEPTrace.h"
#include "KEPVidColorConversion.h"

class KEPVidCtlButton;
class KEPVidCtlColorCompositePicker;
class KEPVidCtlEditor;
class KEPVidCtlPopup;
class KEPVidCtlSlider;

class KEPRshUICtlParameterColor : public KEPRshParameterImmWidget {
  KEP_DECLARE_CLASS
 public:
  /// Builds the controls of `parameter` at once; without a parameter the widget stays empty.
  /// Never fails outward: what cannot be built is left out.
  KEPRshUICtlParameterColor(KEPIRshParameter* parameter, KEPVidWidget* parent,
                            const KEPString& name);

  /// The colour as the widget holds it: red, green, blue as read or written, and its lightness
  /// with the hue and saturation that the slider and the editor keep.
  const KEPVidRGB& GetRGB() const { return rgb_; }
  const KEPVidHSL& GetHSL() const { return hsl_; }

  void DescribeState(KEPVidStateWriter& writer) const override;

 protected:
  ~KEPRshUICtlParameterColor() override;

 private:
  /// Clears `active` for as long as it lives and restores the previous state after.

  // --- Construction
  void Build(KEPIRshParameter* parameter);
  void BuildSlider();
  void BuildEditor();
  void BuildButton();
  void BuildPicker();
  void Place();
  void Connect();

  /// Reads the parameter's colour into rgb_ and alpha_; false (nothing changed) when it cannot.
  bool ReadColor(KEPIRshParameter* parameter);
  /// Shows hsl_ and rgb_ in every control; `picker` too unless the picker is the source.
  void Show(bool picker);
  void ShowLightness();
  void TraceColor() const;

  // --- Handlers
  void OnSliderMoved();
  void OnEditorModified();
  void OnPickerChanged();
  void OnButtonPressed();
  void OnParameterChanged(KEPIRshParameter* changed, KEPRshParameterChangeKind kind);
  /// Takes rgb_ from hsl_ after the lightness changed and writes and shows it (`picker`: see Show).
  void ApplyLightness(KEPIRshParameter* parameter, float lightness);
  /// Writes rgb_ (with the stored alpha) under the render lock with `active` cleared, shows the
  /// colour in the other controls inside the same section, and traces it.
  void Write(KEPIRshParameter* parameter, bool picker);

  KEPTrace trace_{"KEPRshUICtlParameterColor"};
  KEPVidLayGrid* grid_ = nullptr;                    ///< "ColorLayout" (this widget owns it)
  KEPVidCtlButton* button_ = nullptr;                ///< "AmbientColor" (the grid owns the rest)
  KEPVidCtlSlider* slider_ = nullptr;                ///< "colorSlider"
  KEPVidCtlEditor* editor_ = nullptr;                ///< "colorEditor"
  KEPVidCtlColorCompositePicker* picker_ = nullptr;  ///< "colorPicker", inside the popup
  KEPVidCtlPopup* popup_ = nullptr;                  ///< "colorPopup"
  KEPVidRGB rgb_;
  float alpha_ = 1.0f;
  KEPVidHSL hsl_;
  bool active_ = true;  ///< false while the widget itself writes or updates its own controls
  int observer_ = 0;    ///< token of the model observer, 0 when none
  /// Points at this widget until it is destroyed: the handlers that the controls and the model
  /// hold reach the widget through it.
  std::shared_ptr<KEPRshUICtlParameterColor*> life_;
};
