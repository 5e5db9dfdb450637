// The model object behind a scalar parameter's "ratio" widget: edits two scalar parameters
// together, the primary (the one laid out) and a secondary one, published as one point "Values"
// (x = primary, y = secondary, each in the current unit of its own magnitude), with the primary's
// hard and soft range, magnitude and decimal precision.
//
// It reads and writes as the soft and hard range control does (same conversions, checks, log
// texts and exact-equality test), with its own fallbacks: minima 0.0, maxima 1.0, x 0.0, y 1.0.
// Both parameters are held weakly; a ratio that outlives them answers (0.0, 1.0) and 0.0 to 1.0.
//
// In C++ it is a toolkit control, so that the widget builder can style it and place it in the
// widget tree; its introspection description names no base (metaclass "KEPRshUIScalarRatio":
// "HardMinimum", "HardMaximum", "SoftMinimum", "SoftMaximum", "Magnitude", "Values",
// "DecimalPrecision") and it is introspected through an adapter registered for it.
#pragma once

#include <memory>

#include "KEPParmDictionary.h"
#include "KEPRshScalarControlParameter.h"
#include "KEPSYPMetaClass.h"
#include "KEPSYPValue.h"
#include "KEPTrace.h"
#include "KEPVidCtl.h"
#include "KEP_var.h"

class KEPIRshParameter;
class KEPSYPIntrospectableAdapter;

class KEPRshUIScalarRatio : public KEPVidCtl {
  KEP_DECLARE_CLASS
 public:
  /// An empty ratio with its trace channel "KEPRshUIScalarRatio" (the metaclass's creation
  /// function); SetParameters makes it live.
  KEPRshUIScalarRatio();

  KEPRshUIScalarRatio(const KEPRshUIScalarRatio&) = delete;
  KEPRshUIScalarRatio& operator=(const KEPRshUIScalarRatio&) = delete;

  /// Holds `primary` and `secondary` (weakly, with their names) and announces "Values",
  /// "HardMinimum", "HardMaximum", "SoftMinimum", "SoftMaximum", "Magnitude", "DecimalPrecision".
  /// A SetValues that arrives while it announces (a bound part reacting) writes nothing. May be
  /// called again to attach other parameters.
  void SetParameters(KEPIRshParameter* primary, KEPIRshParameter* secondary);

  // --- Properties of the primary parameter, in its current unit
  double GetHardMinimum() const;
  double GetHardMaximum() const;
  double GetSoftMinimum() const;
  double GetSoftMaximum() const;
  /// The primary's magnitude (a new reference), or none.
  KEP_var<KEPICkeMagnitude> GetMagnitude() const;
  int GetDecimalPrecision() const;

  /// x = the primary's value, y = the secondary's (read first), each in its current unit.
  KEPMathPoint2D GetValues() const;
  /// Writes x into the primary and y into the secondary, each converted to its parameter's unit
  /// and skipped when already stored exactly; each successful write announces "Value". Both
  /// writes happen under one hold of the render lock, so a renderer sees neither or both.
  void SetValues(const KEPMathPoint2D& values);

  /// The source path that this control's error entries and assertions carry.
  static const char* SourcePath();

 protected:
  ~KEPRshUIScalarRatio() override;

 private:
  std::unique_ptr<KEPTrace> trace_;  ///< before the parameters, which borrow it
  KEPRshScalarControlParameter primary_;
  KEPRshScalarControlParameter secondary_;
  bool updating_ = false;  ///< raised while SetParameters announces
};

/// Fills the introspection description of KEPRshUIScalarRatio.
KEP_EXPORT HRESULT fctCreateKEPRshUIScalarRatioSYPMetaClassBuilder(KEPSYPMetaClassBuilder& builder);

/// The introspection adapter of a ratio (owned by the caller), or null when `implementation` is
/// not a KEPRshUIScalarRatio.
KEP_EXPORT KEPSYPIntrospectableAdapter* CreateBOAKEPISYPIntrospectableKEPRshUIScalarRatioSYPIntro(
    KEPBaseUnknown* implementation);
