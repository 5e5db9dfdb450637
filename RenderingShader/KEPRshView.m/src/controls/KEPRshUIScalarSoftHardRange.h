// The model object behind a scalar parameter's "dynamic-slider" widget: a toolkit control with
// no drawing of its own that publishes, as introspectable properties, the parameter's value, hard
// and soft range, unit, magnitude and decimal precision, all in the unit the user currently works
// in, and writes a value set by the user back into the parameter in the parameter's own unit.
//
// It never clamps: the ranges are published for the styled slider to use as its limits, and a
// value set is written whatever the range. It holds no copy of any value and holds its parameter
// only weakly, so a control that outlives its parameter answers the defaults (0.0 for range ends
// and value, 1 for the precision, none for unit and magnitude) and writes nothing.
//
// Properties (metaclass "KEPRshUIScalarSoftHardRange", base "KEPVidCtl"): "HardMinimum",
// "HardMaximum", "SoftMinimum", "SoftMaximum", "Value" (read and write), "Unit", "Magnitude" and
// "DecimalPrecision".
#pragma once

#include <memory>

#include "KEPParmDictionary.h"
#include "KEPRshScalarControlParameter.h"
#include "KEPSYPMetaClass.h"
#include "KEPTrace.h"
#include "KEPVidCtl.h"
#include "KEP_var.h"

class KEPIRshParameterImmLayout;

class KEPRshUIScalarSoftHardRange : public KEPVidCtl {
  KEP_DECLARE_CLASS
 public:
  /// An empty control: no parameter and no trace channel (the metaclass's creation function).
  KEPRshUIScalarSoftHardRange();
  /// A control of the parameter whose layout behaviour is `layout`: opens the trace channel
  /// "KEPRshUIScalarSoftHardRange", holds the parameter weakly with its name, and announces
  /// "Value", "Unit", "Magnitude", "HardMinimum", "HardMaximum", "SoftMinimum", "SoftMaximum".
  explicit KEPRshUIScalarSoftHardRange(KEPIRshParameterImmLayout* layout);

  KEPRshUIScalarSoftHardRange(const KEPRshUIScalarSoftHardRange&) = delete;
  KEPRshUIScalarSoftHardRange& operator=(const KEPRshUIScalarSoftHardRange&) = delete;

  // --- Properties, in the current unit of the parameter's magnitude
  double GetHardMinimum() const;
  double GetHardMaximum() const;
  double GetSoftMinimum() const;
  double GetSoftMaximum() const;
  double GetValue() const;
  /// The parameter's own unit (a new reference), or none.
  KEP_var<KEPICkeUnit> GetUnit() const;
  /// The parameter's magnitude (a new reference), or none; its current unit is the display unit.
  KEP_var<KEPICkeMagnitude> GetMagnitude() const;
  int GetDecimalPrecision() const;

  /// Writes `value` (in the current unit) into the parameter, converted to its unit, and
  /// announces "Value" after a successful write. Nothing is written when the stored value already
  /// equals the target exactly. Runs entirely under the render lock.
  void SetValue(double value);

  /// The source path that this control's error entries and assertions carry.
  static const char* SourcePath();

 protected:
  ~KEPRshUIScalarSoftHardRange() override;

 private:
  std::unique_ptr<KEPTrace> trace_;  ///< before parameter_, which borrows it
  KEPRshScalarControlParameter parameter_;
};

/// Fills the introspection description of KEPRshUIScalarSoftHardRange.
KEP_EXPORT HRESULT
fctCreateKEPRshUIScalarSoftHardRangeSYPMetaClassBuilder(KEPSYPMetaClassBuilder& builder);
