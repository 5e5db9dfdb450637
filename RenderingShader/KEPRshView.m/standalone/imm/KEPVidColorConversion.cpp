#include "KEPVidColorConversion.h"

#include <algorithm>
#include <cmath>

namespace {

/// `value` within 0..1; NaN reads 0.
double Unit(float value) {
  if (std::isnan(value)) return 0.0;
  return std::clamp(static_cast<double>(value), 0.0, 1.0);
}

/// A hue as a fraction of a turn in [0, 1); NaN and infinities read 0.
double Turn(float hue) {
  if (!std::isfinite(hue)) return 0.0;
  double turn = std::fmod(static_cast<double>(hue), 1.0);
  if (turn < 0.0) turn += 1.0;
  return turn >= 1.0 ? 0.0 : turn;
}

/// One channel of the HSL -> RGB conversion: `p` and `q` are the lower and upper channel
/// values, `t` the hue shifted for the channel.
double Channel(double p, double q, double t) {
  if (t < 0.0) t += 1.0;
  if (t > 1.0) t -= 1.0;
  if (t < 1.0 / 6.0) return p + (q - p) * 6.0 * t;
  if (t < 0.5) return q;
  if (t < 2.0 / 3.0) return p + (q - p) * (2.0 / 3.0 - t) * 6.0;
  return p;
}

float Narrow(double value) {
  return static_cast<float>(std::clamp(value, 0.0, 1.0));
}

/// The hue of a hue computed in [0, 1] as a float below 1 (a float rounding may reach 1).
float NarrowHue(double turn) {
  const auto hue = static_cast<float>(turn);
  return hue >= 1.0f ? 0.0f : hue;
}

}  // namespace

KEPVidHSL KEPVidRGBToHSL(const KEPVidRGB& rgb) {
  const double r = Unit(rgb.red);
  const double g = Unit(rgb.green);
  const double b = Unit(rgb.blue);
  const double high = std::max({r, g, b});
  const double low = std::min({r, g, b});
  const double lightness = (high + low) / 2.0;
  KEPVidHSL hsl;
  hsl.lightness = Narrow(lightness);
  // A grey (black and white included) has no hue and no saturation; it is also the only case
  // where the divisions below would divide by zero.
  if (high == low) return hsl;
  const double delta = high - low;
  hsl.saturation = Narrow(lightness > 0.5 ? delta / (2.0 - high - low) : delta / (high + low));
  double hue = 0.0;
  if (high == r)
    hue = (g - b) / delta + (g < b ? 6.0 : 0.0);
  else if (high == g)
    hue = (b - r) / delta + 2.0;
  else
    hue = (r - g) / delta + 4.0;
  hsl.hue = NarrowHue(hue / 6.0);
  return hsl;
}

KEPVidRGB KEPVidHSLToRGB(const KEPVidHSL& hsl) {
  const double h = Turn(hsl.hue);
  const double s = Unit(hsl.saturation);
  const double l = Unit(hsl.lightness);
  if (s == 0.0) return {Narrow(l), Narrow(l), Narrow(l)};
  const double q = l < 0.5 ? l * (1.0 + s) : l + s - l * s;
  const double p = 2.0 * l - q;
  return {Narrow(Channel(p, q, h + 1.0 / 3.0)), Narrow(Channel(p, q, h)),
          Narrow(Channel(p, q, h - 1.0 / 3.0))};
}

int KEPVidChannelToByte(float channel) {
  return static_cast<int>(std::lround(Unit(channel) * 255.0));
}

float KEPVidByteToChannel(int byte) {
  return static_cast<float>(std::clamp(byte, 0, 255)) / 255.0f;
}

KEPVidHSL KEPVidRGBToHSL(const KEPVidColor& color) {
  return KEPVidRGBToHSL(KEPVidRGB{KEPVidByteToChannel(color.red), KEPVidByteToChannel(color.green),
                                  KEPVidByteToChannel(color.blue)});
}

KEPVidColor KEPVidHSLToColor(const KEPVidHSL& hsl, int alpha) {
  const KEPVidRGB rgb = KEPVidHSLToRGB(hsl);
  return {KEPVidChannelToByte(rgb.red), KEPVidChannelToByte(rgb.green),
          KEPVidChannelToByte(rgb.blue), std::clamp(alpha, 0, 255)};
}
