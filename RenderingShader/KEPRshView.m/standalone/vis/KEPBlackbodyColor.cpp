#include "KEPBlackbodyColor.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace {

/// One row of the colour-matching functions: wavelength in nm, x̄, ȳ, z̄.
struct CmfRow {
  double nm;
  double x;
  double y;
  double z;
};

// The CIE 1931 2-degree observer, 380 to 780 nm at 1 nm, generated at configure time from
// standalone/vis/data/cie1931_2deg_1nm_380_780.csv.
constexpr CmfRow kCmf[] = {
#include "KEPCie1931Table.inc"
};

/// Tristimulus values of Planck's spectrum, unnormalised. At infinite temperature (`kelvin` is
/// infinity) the spectrum tends to λ^-4 (Rayleigh-Jeans), which keeps the limit's colour.
std::array<double, 3> Integrate(double kelvin, double c2) {
  std::array<double, 3> xyz{0.0, 0.0, 0.0};
  for (const CmfRow& row : kCmf) {
    const double lambda = row.nm * 1e-9;
    double radiance = 0.0;
    if (std::isinf(kelvin)) {
      radiance = 1.0 / (lambda * lambda * lambda * lambda);
    } else {
      // expm1 keeps precision where c2/(λT) is small (very hot bodies).
      radiance = 1.0 / (std::pow(lambda, 5.0) * std::expm1(c2 / (lambda * kelvin)));
    }
    xyz[0] += row.x * radiance;
    xyz[1] += row.y * radiance;
    xyz[2] += row.z * radiance;
  }
  return xyz;
}

double Encode(double linear) {
  return linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1.0 / 2.4) - 0.055;
}

/// The displayed colour at `kelvin` (a positive number or infinity), computed in full.
std::array<float, 3> Compute(double kelvin) {
  const std::array<double, 3> xyz = Integrate(kelvin, KEPSecondRadiationConstant);
  double rgb[3] = {
      3.2406 * xyz[0] - 1.5372 * xyz[1] - 0.4986 * xyz[2],
      -0.9689 * xyz[0] + 1.8758 * xyz[1] + 0.0415 * xyz[2],
      0.0557 * xyz[0] - 0.2040 * xyz[1] + 1.0570 * xyz[2],
  };
  const double lowest = std::min({rgb[0], rgb[1], rgb[2]});
  if (lowest < 0.0)
    for (double& c : rgb) c -= lowest;
  const double highest = std::max({rgb[0], rgb[1], rgb[2]});
  std::array<float, 3> out{0.0f, 0.0f, 0.0f};
  if (!(highest > 0.0) || !std::isfinite(highest)) return out;  // underflow at very low T
  for (int i = 0; i < 3; ++i)
    out[static_cast<std::size_t>(i)] =
        static_cast<float>(std::clamp(Encode(rgb[i] / highest), 0.0, 1.0));
  return out;
}

// The table runs in reciprocal temperature (mired, 10^6 / T), in which the colour changes about
// evenly, from 0 (infinitely hot) to 2000 mired (500 K), one entry a mired: linear interpolation
// stays within 1/1000 of the computed colour, and making the table (once per process) takes about
// 20 ms.
constexpr double kTableMired = 2000.0;
constexpr int kTableSteps = 2000;

const std::vector<std::array<float, 3>>& Table() {
  static const std::vector<std::array<float, 3>> table = [] {
    std::vector<std::array<float, 3>> entries(kTableSteps + 1);
    for (int i = 0; i <= kTableSteps; ++i) {
      const double mired = kTableMired * i / kTableSteps;
      entries[static_cast<std::size_t>(i)] =
          Compute(i == 0 ? std::numeric_limits<double>::infinity() : 1e6 / mired);
    }
    return entries;
  }();
  return table;
}

}  // namespace

void BlackbodyColor(float kelvin, float* r, float* g, float* b) {
  std::array<float, 3> colour{0.0f, 0.0f, 0.0f};
  if (kelvin > 0.0f) {  // false for NaN too
    const double mired = 1e6 / static_cast<double>(kelvin);
    if (mired > kTableMired) {
      colour = Compute(kelvin);
    } else {
      const auto& table = Table();
      const double position = mired / kTableMired * kTableSteps;
      const int below = std::min(static_cast<int>(position), kTableSteps - 1);
      const auto fraction = static_cast<float>(position - below);
      const auto& lo = table[static_cast<std::size_t>(below)];
      const auto& hi = table[static_cast<std::size_t>(below) + 1];
      for (std::size_t i = 0; i < 3; ++i) colour[i] = lo[i] + (hi[i] - lo[i]) * fraction;
    }
  }
  if (r) *r = colour[0];
  if (g) *g = colour[1];
  if (b) *b = colour[2];
}

bool KEPBlackbodyTristimulus(double kelvin, double c2, double& x, double& y, double& z) {
  if (!(kelvin > 0.0) || !(c2 > 0.0)) return false;
  const std::array<double, 3> xyz = Integrate(kelvin, c2);
  if (!(xyz[1] > 0.0) || !std::isfinite(xyz[1])) return false;
  x = xyz[0] / xyz[1];
  y = 1.0;
  z = xyz[2] / xyz[1];
  return true;
}
