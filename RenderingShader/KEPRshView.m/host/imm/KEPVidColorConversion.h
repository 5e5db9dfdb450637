// Colour conversions between RGB and HSL (hue, saturation, lightness), as colour widgets need
// them: a lightness slider moves L and keeps H and S; a picker hands 8-bit channels.
//
// Ranges: R, G, B, S and L are in 0..1; H is in 0..1 as well (a fraction of a turn: 0 red,
// 1/3 green, 2/3 blue), never 1 itself. Inputs are brought into their range first (a NaN reads
// 0, a hue wraps around the turn, anything else is clamped), so the results are always finite.
// A grey (R = G = B, black and white included) has H = 0 and S = 0; converting HSL with S = 0
// gives the grey of lightness L whatever H is.
//
// Round trips: HSL -> RGB -> HSL gives H and S back (to float precision) whenever the colour is
// no grey, that is 0 < S and 0 < L < 1. The byte forms round channels to the nearest of 0..255,
// and bytes -> HSL -> bytes gives the same bytes back.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPVidTypes.h"

/// A colour as hue, saturation and lightness, each in 0..1.
struct KEPVidHSL {
  float hue = 0.0f;
  float saturation = 0.0f;
  float lightness = 0.0f;
};

/// A colour as red, green and blue, each in 0..1.
struct KEPVidRGB {
  float red = 0.0f;
  float green = 0.0f;
  float blue = 0.0f;
};

/// Float forms.
KEPVidHSL KEPVidRGBToHSL(const KEPVidRGB& rgb);
KEPVidRGB KEPVidHSLToRGB(const KEPVidHSL& hsl);

/// Byte forms: the channels of `color` are read as 0..255 (clamped); its alpha is ignored.
KEPVidHSL KEPVidRGBToHSL(const KEPVidColor& color);
/// The colour of `hsl` with channels rounded to 0..255 and the given alpha.
KEPVidColor KEPVidHSLToColor(const KEPVidHSL& hsl, int alpha = 255);
/// A 0..1 channel as a byte (rounded to nearest, clamped; NaN gives 0), and back.
int KEPVidChannelToByte(float channel);
float KEPVidByteToChannel(int byte);

#pragma GCC visibility pop
