// One scalar parameter as a value control sees it: held only through a weak reference to the
// parameter component, resolved afresh on every call (as KEPIRshParameter for the stored value and
// as KEPIRshParameterImmLayout for range, unit, magnitude and precision), and read and written in
// the unit that the user currently works in.
//
// The stored value is a float in the parameter's own unit (the layout's unit); the control works
// in doubles in the current unit of the layout's magnitude. Conversions go through the base unit
// and nothing else: no rounding, no clamping.
//
// Every answer that the parameter cannot give is a fallback that the control chooses, logged on
// the control's trace channel (none silences it); error entries carry the control's source path.
#pragma once

#include "KEPBaseUnknown_WR.h"
#include "KEPParmDictionary.h"
#include "KEPString.h"
#include "KEP_var.h"

class KEPTrace;
class KEPIRshParameter;
class KEPIRshParameterImmLayout;

class KEPRshScalarControlParameter {
 public:
  /// Which end of which range a range getter reads.
  enum class RangeEnd { HardMinimum, HardMaximum, SoftMinimum, SoftMaximum };

  /// What a getter answers when the parameter cannot tell, and how its messages write it.
  struct Fallback {
    double value;
    /// The default as messages write it after "(default) = ".
    const char* text;
    /// The same for the message of a control without a parameter, where it may differ.
    const char* noParameterText;
  };

  /// `trace` (borrowed, may be null) and `sourcePath` (a literal) belong to the control.
  KEPRshScalarControlParameter(const KEPTrace* trace, const char* sourcePath)
      : trace_(trace), sourcePath_(sourcePath) {}

  /// Holds the parameter that `parameter` belongs to: any interface of the parameter component,
  /// or of an extension of it (its layout behaviour). Stores the parameter's name for the log
  /// lines. Null, or an object outside the object model, holds nothing.
  void Attach(KEPIUnknown* parameter);
  /// The parameter's name as read when attached (empty when none).
  const KEPString& GetName() const { return name_; }

  /// An end of the hard or soft range, in the current unit.
  double ReadRangeEnd(RangeEnd end, const Fallback& fallback) const;
  /// The stored value, in the current unit.
  double ReadValue(const Fallback& fallback) const;
  /// Writes `next` (in the current unit) converted to the parameter's unit, unless the stored
  /// value equals the converted target exactly. The caller holds the render lock. True when a
  /// write was made and succeeded (the caller then announces it).
  bool WriteValue(double next) const;
  /// Decimals to show; 1 when the layout cannot tell.
  int ReadDecimalPrecision() const;
  /// The parameter's own unit, or none.
  KEP_var<KEPICkeUnit> ReadUnit() const;
  /// The parameter's magnitude, or none.
  KEP_var<KEPICkeMagnitude> ReadMagnitude() const;

 private:
  struct Resolved {
    KEP_var<KEPIRshParameter> parameter;
    KEP_var<KEPIRshParameterImmLayout> layout;
  };
  /// The parameter's interfaces, empty once the component is gone.
  Resolved Resolve() const;

  /// The layout's unit and magnitude; `available` when the magnitude call succeeded and both
  /// are present.
  struct Units {
    KEP_var<KEPICkeUnit> unit;
    KEP_var<KEPICkeMagnitude> magnitude;
    bool available = false;
  };
  static Units ReadUnits(KEPIRshParameterImmLayout* layout);

  const char* Name() const { return name_.c_str(); }

  const KEPTrace* trace_;
  const char* sourcePath_;
  KEPBaseUnknown_WR component_;
  KEPString name_;
};
