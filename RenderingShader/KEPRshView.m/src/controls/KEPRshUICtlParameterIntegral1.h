// The model object behind an integer parameter's introspectable control: publishes the parameter
// ("Parameter") and, when the parameter's widget is a combo (a widget name beginning with
// "combo"), the combo's configuration ("ComboConfiguration"), the text of the shader
// configuration key "<parameter>.ComboConfiguration". It styles itself with the widget name
// (style sheet "KEPRshUI.sypstyle", style "Default"); the sheet's parts read the parameter's
// value, range and the combo's entries through these two properties and write the value back.
//
// Unlike the scalar controls it holds its parameter strongly. Its introspection description
// names no base (metaclass "KEPRshUICtlParameterIntegral1") and it is introspected through an
// adapter registered for it.
#pragma once

#include "KEPIRshParameter.h"
#include "KEPSYPMetaClass.h"
#include "KEPString.h"
#include "KEPVidCtl.h"
#include "KEP_var.h"

class KEPSYPIntrospectableAdapter;

class KEPRshUICtlParameterIntegral1 : public KEPVidCtl {
  KEP_DECLARE_CLASS
 public:
  /// An empty control (the metaclass's creation function); SetParameter makes it live.
  KEPRshUICtlParameterIntegral1();

  KEPRshUICtlParameterIntegral1(const KEPRshUICtlParameterIntegral1&) = delete;
  KEPRshUICtlParameterIntegral1& operator=(const KEPRshUICtlParameterIntegral1&) = delete;

  /// Holds `parameter` (none releases the one held), reads its widget name and, for a combo, its
  /// combo configuration, styles the control by the widget name, and announces "Parameter".
  /// What cannot be read is reported as a non-fatal assertion; a missing name goes on, any other
  /// failure stops before the style and the announcement.
  void SetParameter(KEPIRshParameter* parameter);

  /// The parameter with a reference for the caller, or null.
  KEP_var<KEPIRshParameter> GetParameter() const { return parameter_; }
  /// The combo configuration read by the last SetParameter that read one (empty otherwise).
  const KEPString& GetComboConfiguration() const { return comboConfiguration_; }

  /// The source path that this control's assertions carry.
  static const char* SourcePath();

 protected:
  ~KEPRshUICtlParameterIntegral1() override;

 private:
  /// Steps 2 to 6 of SetParameter: false when it stopped before styling.
  bool ReadAndStyle(KEPIRshParameter* parameter);

  KEPString comboConfiguration_;
  KEP_var<KEPIRshParameter> parameter_;
};

/// Fills the introspection description of KEPRshUICtlParameterIntegral1.
KEP_EXPORT HRESULT
fctCreateKEPRshUICtlParameterIntegral1SYPMetaClassBuilder(KEPSYPMetaClassBuilder& builder);

/// The introspection adapter of the control (owned by the caller), or null when `implementation`
/// is not a KEPRshUICtlParameterIntegral1.
KEP_EXPORT KEPSYPIntrospectableAdapter*
CreateBOAKEPISYPIntrospectableKEPRshUICtlParameterIntegral1SYPIntro(KEPBaseUnknown* implementation);
