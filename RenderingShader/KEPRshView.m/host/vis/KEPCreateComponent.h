// Components made by late type: an object whose only behaviour is what the extensions
// registered for its late type bring (for example the "KEPRshShaderDelegate" that stands for one
// shader node towards the viewer).
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPBaseUnknown.h"

class KEPLateTypeComponent : public KEPBaseUnknown {
  KEP_DECLARE_CLASS
 public:
  /// A new component of `lateType` with one reference for the caller.
  static KEPLateTypeComponent* Create(const char* lateType);

 private:
  KEPLateTypeComponent() = default;
};

/// A new component of `lateType` with one reference for the caller, or null for an empty name.
/// Queries for interfaces reach the extensions registered for that late type.
KEPBaseUnknown* KEPCreateComponent(const char* lateType);

#pragma GCC visibility pop
