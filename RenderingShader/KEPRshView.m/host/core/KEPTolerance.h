// The host's default tolerance: how far apart two model values must be before an editor treats
// them as different. Editors compare the value a person typed with the stored one through it, so
// that retyping what is shown (which went through a unit conversion and a float) writes nothing.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

class KEPTolerance {
 public:
  explicit constexpr KEPTolerance(double resolution) : resolution_(resolution) {}
  /// The largest difference between two values that still counts as no change (model units).
  constexpr double GetResolution() const { return resolution_; }
  /// True when `a` and `b` differ by no more than the resolution.
  constexpr bool IsSame(double a, double b) const {
    const double difference = a > b ? a - b : b - a;
    return difference <= resolution_;
  }

 private:
  double resolution_;
};

/// The process-wide default tolerance (a resolution of 1e-6 model units), for the life of the
/// process.
const KEPTolerance& KEPGetDefaultTolerance();

#pragma GCC visibility pop
