// The colour of a black body (an ideal thermal radiator) at a temperature, as a display shows it.
//
// Planck's law is weighted by the CIE 1931 2-degree colour-matching functions (380 to 780 nm in
// 1 nm steps) to give the tristimulus values X, Y, Z; these become linear sRGB (D65 white). A
// colour outside the sRGB gamut is brought inside by adding white (the same amount to the three
// components) until its smallest component is 0; the colour is then scaled so that its largest
// component is 1 (a black body's brightness is not shown, only its hue), and encoded with the sRGB
// transfer curve. 6,500 K comes out close to white, lower temperatures orange to red, higher ones
// blue. Below about 900 K the locus lies so far outside the gamut that the white added shows as a
// purple tinge; the colour-temperature controls start at 1,000 K.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

/// The colour at temperature `kelvin` as three values in 0..1 (sRGB-encoded). Temperatures from
/// 500 K up (to infinity) are read from a table made on first use and interpolated; lower ones are
/// computed. Zero, negative and NaN temperatures give black. Thread-safe.
void BlackbodyColor(float kelvin, float* r, float* g, float* b);

/// The tristimulus values of a black body at `kelvin` with the second radiation constant `c2` (in
/// metre kelvin), scaled so that Y is 1. For checks against colorimetric tables (which use
/// historical values of c2). False, and the outputs untouched, for temperatures that are not
/// positive numbers.
bool KEPBlackbodyTristimulus(double kelvin, double c2, double& x, double& y, double& z);

/// The second radiation constant c2 = hc/k, in metre kelvin (CODATA 2018).
constexpr double KEPSecondRadiationConstant = 1.438776877e-2;

#pragma GCC visibility pop
