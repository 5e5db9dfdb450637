// The model object behind a colour parameter's "scalar-spinner" widget: a toolkit control with
// no drawing of its own that edits the colour as one grey level. It publishes the mean of the
// colour's red, green and blue as "Value", the layout's hard range as "Minimum" and "Maximum",
// the layout's decimal precision and the step of one click (10 to the minus precision), and
// writes a value set as the grey (v, v, v) with an opaque alpha. No unit conversion: the values
// are the parameter's own.
//
// The parameter is held only weakly and resolved on every call, so a control that outlives its
// parameter answers the defaults (Minimum 0.0, Maximum 1.0, Value 0.0, DecimalPrecision 1) and
// writes nothing.
//
// Properties (metaclass "KEPRshUICtlScalarSpinner", no base): "Step", "Minimum", "Maximum",
// "Value" (read and write) and "DecimalPrecision"; introspected through its own adapter.
#pragma once

#include <memory>

#include "KEPBaseUnknown_WR.h"
#include "KEPSYPMetaClass.h"
#include "KEPString.h"
#include "KEPTrace.h"
#include "KEPVidCtl.h"
#include "KEP_var.h"

class KEPIRshParameter;
class KEPIRshParameterImmLayout;
class KEPSYPIntrospectableAdapter;

class KEPRshUICtlScalarSpinner : public KEPVidCtl {
  KEP_DECLARE_CLASS
 public:
  /// An empty control: no parameter and no trace channel (the metaclass's creation function).
  KEPRshUICtlScalarSpinner();
  /// A control of the parameter whose layout behaviour is `layout`: opens the trace channel
  /// "KEPRshUICtlScalarSpinner", holds the parameter weakly with its name, and announces "Step",
  /// "Value", "Unit", "Magnitude", "Minimum", "Maximum" (the two without a property of this
  /// class included: whoever binds them by the common names hears of them as of the others).
  explicit KEPRshUICtlScalarSpinner(KEPIRshParameterImmLayout* layout);

  KEPRshUICtlScalarSpinner(const KEPRshUICtlScalarSpinner&) = delete;
  KEPRshUICtlScalarSpinner& operator=(const KEPRshUICtlScalarSpinner&) = delete;

  /// 1 / 10^precision (a negative precision gives a power of ten: -1 gives 10).
  double GetStep() const;
  /// Ends of the layout's hard range; 0.0 and 1.0 when it cannot tell.
  double GetMinimum() const;
  double GetMaximum() const;
  /// (red + green + blue) / 3, computed in single precision; 0.0 when the colour cannot be read.
  double GetValue() const;
  /// Decimals to show; 1 when the layout cannot tell.
  int GetDecimalPrecision() const;

  /// Writes the grey (value, value, value, 1.0) under the render lock and announces "Value",
  /// unless the current Value already equals `value` within the host's default tolerance. A value
  /// that is no finite number is refused (logged, nothing written).
  void SetValue(double value);

  /// The source path that this control's error entries and assertions carry.
  static const char* SourcePath();

 protected:
  ~KEPRshUICtlScalarSpinner() override;

 private:
  KEP_var<KEPIRshParameter> ResolveParameter() const;
  KEP_var<KEPIRshParameterImmLayout> ResolveLayout() const;
  /// An end of the hard range: the minimum or the maximum.
  double ReadRangeEnd(bool minimum) const;
  const char* Name() const { return name_.c_str(); }

  std::unique_ptr<KEPTrace> trace_;  ///< none for an empty control: nothing is logged
  KEPBaseUnknown_WR component_;      ///< the parameter component
  KEPString name_;
};

/// Fills the introspection description of KEPRshUICtlScalarSpinner.
KEP_EXPORT HRESULT
fctCreateKEPRshUICtlScalarSpinnerSYPMetaClassBuilder(KEPSYPMetaClassBuilder& builder);

/// The introspection adapter of a spinner (owned by the caller), or null when `implementation` is
/// not a KEPRshUICtlScalarSpinner.
KEP_EXPORT KEPSYPIntrospectableAdapter*
CreateBOAKEPISYPIntrospectableKEPRshUICtlScalarSpinnerSYPIntro(KEPBaseUnknown* implementation);
