// The black-body colour: against values computed apart from this code (a separate double-precision
// integration of the same observer data), against colorimetric tables made by others (illuminant
// A, the Planckian locus), and at the ends of the temperature scale.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "KEPBlackbodyColor.h"

namespace {

struct Expected {
  float kelvin;
  float r, g, b;
};

TEST(BlackbodyColor, MatchesAnIndependentIntegrationAcrossTheSliderRange) {
  // Planck x CIE 1931 2-degree, linear sRGB (D65), white added into gamut, largest component 1,
  // sRGB transfer curve; computed separately in double precision.
  const Expected cases[] = {
      {1000, 1.0f, 0.182f, 0.0f},     {1850, 1.0f, 0.5097f, 0.0f},
      {2700, 1.0f, 0.6766f, 0.3477f}, {4000, 1.0f, 0.8287f, 0.6478f},
      {5000, 1.0f, 0.9022f, 0.8142f}, {6500, 1.0f, 0.9745f, 0.9964f},
      {10000, 0.8034f, 0.852f, 1.0f}, {40000, 0.6203f, 0.7227f, 1.0f},
  };
  for (const Expected& c : cases) {
    float r = -1, g = -1, b = -1;
    BlackbodyColor(c.kelvin, &r, &g, &b);
    EXPECT_NEAR(r, c.r, 2e-3) << c.kelvin << " K";
    EXPECT_NEAR(g, c.g, 2e-3) << c.kelvin << " K";
    EXPECT_NEAR(b, c.b, 2e-3) << c.kelvin << " K";
  }
}

TEST(BlackbodyColor, SixThousandFiveHundredKelvinIsNearlyWhite) {
  float r = 0, g = 0, b = 0;
  BlackbodyColor(6500.0f, &r, &g, &b);
  EXPECT_GT(std::min({r, g, b}), 0.97f);
}

TEST(BlackbodyColor, AgreesWithIlluminantAAndThePlanckianLocus) {
  // Illuminant A: 2848 K with the c2 of its definition, chromaticity (0.44757, 0.40745).
  double x = 0, y = 0, z = 0;
  ASSERT_TRUE(KEPBlackbodyTristimulus(2848.0, 1.435e-2, x, y, z));
  EXPECT_NEAR(x / (x + y + z), 0.44757, 2e-5);
  EXPECT_NEAR(y / (x + y + z), 0.40745, 2e-5);

  // Robertson's (1968) locus in CIE 1960 (u, v) by mired; his tables used c2 = 1.4388e-2.
  const double locus[][3] = {{100, 0.19032, 0.29326}, {200, 0.21142, 0.32312},
                             {300, 0.24010, 0.34308}, {400, 0.27218, 0.35407},
                             {500, 0.30505, 0.35907}, {600, 0.33724, 0.36051}};
  for (const auto& point : locus) {
    ASSERT_TRUE(KEPBlackbodyTristimulus(1e6 / point[0], 1.4388e-2, x, y, z));
    const double d = x + 15 * y + 3 * z;
    EXPECT_NEAR(4 * x / d, point[1], 2e-4) << point[0] << " mired";
    EXPECT_NEAR(6 * y / d, point[2], 2e-4) << point[0] << " mired";
  }
}

TEST(BlackbodyColor, EndsOfTheScale) {
  float r = -1, g = -1, b = -1;
  for (float nothing : {0.0f, -300.0f, std::numeric_limits<float>::quiet_NaN()}) {
    BlackbodyColor(nothing, &r, &g, &b);
    EXPECT_EQ(r + g + b, 0.0f) << nothing;
  }
  // Below the table (computed in full): a dull red, still a colour, not black.
  BlackbodyColor(400.0f, &r, &g, &b);
  EXPECT_EQ(r, 1.0f);
  EXPECT_LT(g, 0.2f);
  // The table's first entry is the limit of infinite temperature; huge values come close to it.
  float ir = 0, ig = 0, ib = 0;
  BlackbodyColor(std::numeric_limits<float>::infinity(), &ir, &ig, &ib);
  BlackbodyColor(1e9f, &r, &g, &b);
  EXPECT_EQ(ib, 1.0f);
  EXPECT_NEAR(r, ir, 1e-3);
  EXPECT_NEAR(g, ig, 1e-3);
  // A caller may ask for fewer components.
  BlackbodyColor(3000.0f, nullptr, &g, nullptr);
  EXPECT_GT(g, 0.0f);
  double x = 7;
  double y = 7;
  double z = 7;
  EXPECT_FALSE(KEPBlackbodyTristimulus(-1.0, 1.4e-2, x, y, z));
  EXPECT_EQ(x, 7);
}

TEST(BlackbodyColor, InterpolationFollowsTheColourSmoothly) {
  // Neighbouring temperatures give neighbouring colours (no seams between table entries) and the
  // red-to-blue order holds: red falls and blue rises with temperature above 6,600 K.
  float pr = 0, pg = 0, pb = 0;
  BlackbodyColor(1000.0f, &pr, &pg, &pb);
  for (float t = 1010.0f; t <= 40000.0f; t += 10.0f) {
    float r = 0, g = 0, b = 0;
    BlackbodyColor(t, &r, &g, &b);
    ASSERT_LT(std::fabs(r - pr) + std::fabs(g - pg) + std::fabs(b - pb), 0.03f) << t;
    if (t > 7000.0f) {
      ASSERT_LE(r, pr + 1e-6f) << t;
      ASSERT_EQ(b, 1.0f) << t;
    }
    pr = r, pg = g, pb = b;
  }
}

}  // namespace
