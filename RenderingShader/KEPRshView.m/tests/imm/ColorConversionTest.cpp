// The host's RGB/HSL conversions (float and byte forms), the editor's float data type, and the
// introspection's double comparator.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "KEPSYPHashMapComparator.h"
#include "KEPVidColorConversion.h"
#include "KEPVidCtlEditor.h"
#include "KEP_var.h"

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

bool Finite(const KEPVidHSL& hsl) {
  return std::isfinite(hsl.hue) && std::isfinite(hsl.saturation) && std::isfinite(hsl.lightness);
}

TEST(ColorConversionTest, KnownColoursBothWays) {
  struct Case {
    const char* what;
    KEPVidRGB rgb;
    KEPVidHSL hsl;
  };
  const Case cases[] = {
      {"black", {0, 0, 0}, {0, 0, 0}},
      {"white", {1, 1, 1}, {0, 0, 1}},
      {"mid grey", {0.5f, 0.5f, 0.5f}, {0, 0, 0.5f}},
      {"red", {1, 0, 0}, {0, 1, 0.5f}},
      {"yellow", {1, 1, 0}, {1.0f / 6, 1, 0.5f}},
      {"green", {0, 1, 0}, {1.0f / 3, 1, 0.5f}},
      {"cyan", {0, 1, 1}, {0.5f, 1, 0.5f}},
      {"blue", {0, 0, 1}, {2.0f / 3, 1, 0.5f}},
      {"magenta", {1, 0, 1}, {5.0f / 6, 1, 0.5f}},
      {"dark red (lightness below one half)", {0.5f, 0, 0}, {0, 1, 0.25f}},
      {"pink (lightness above one half)", {1, 0.5f, 0.5f}, {0, 1, 0.75f}},
      {"a rose just below a full turn", {1, 0, 0.05f}, {0.991666f, 1, 0.5f}},
      {"greyish teal", {0.2f, 0.4f, 0.4f}, {0.5f, 1.0f / 3, 0.3f}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const KEPVidHSL hsl = KEPVidRGBToHSL(c.rgb);
    EXPECT_NEAR(hsl.hue, c.hsl.hue, 1e-5);
    EXPECT_NEAR(hsl.saturation, c.hsl.saturation, 1e-6);
    EXPECT_NEAR(hsl.lightness, c.hsl.lightness, 1e-6);
    EXPECT_LT(hsl.hue, 1.0f);
    const KEPVidRGB rgb = KEPVidHSLToRGB(c.hsl);
    EXPECT_NEAR(rgb.red, c.rgb.red, 1e-5);
    EXPECT_NEAR(rgb.green, c.rgb.green, 1e-5);
    EXPECT_NEAR(rgb.blue, c.rgb.blue, 1e-5);
  }
}

TEST(ColorConversionTest, ChangingOnlyTheLightnessKeepsHueAndSaturation) {
  // Every colour that is no grey, taken to other lightnesses strictly inside 0..1 and back.
  const KEPVidRGB colours[] = {{1, 0, 0},         {0.1f, 0.7f, 0.3f}, {0.95f, 0.97f, 0.99f},
                               {0.02f, 0, 0.01f}, {0.6f, 0.2f, 0.9f}, {0.999f, 1, 1}};
  for (const KEPVidRGB& colour : colours) {
    const KEPVidHSL original = KEPVidRGBToHSL(colour);
    for (const float lightness : {0.01f, 0.3f, 0.5f, 0.77f, 0.99f}) {
      SCOPED_TRACE(testing::Message() << colour.red << " " << colour.green << " " << colour.blue
                                      << " at L " << lightness);
      const KEPVidHSL moved =
          KEPVidRGBToHSL(KEPVidHSLToRGB({original.hue, original.saturation, lightness}));
      EXPECT_NEAR(moved.hue, original.hue, 2e-4);
      EXPECT_NEAR(moved.saturation, original.saturation, 2e-4);
      EXPECT_NEAR(moved.lightness, lightness, 1e-6);
      const KEPVidRGB back = KEPVidHSLToRGB({moved.hue, moved.saturation, original.lightness});
      EXPECT_NEAR(back.red, colour.red, 1e-4);
      EXPECT_NEAR(back.green, colour.green, 1e-4);
      EXPECT_NEAR(back.blue, colour.blue, 1e-4);
    }
  }
}

TEST(ColorConversionTest, BytesRoundTripExactly) {
  int mismatches = 0;
  for (int r = 0; r <= 255; r += 5)
    for (int g = 0; g <= 255; g += 3)
      for (int b = 0; b <= 255; b += 17) {
        const KEPVidColor color{r, g, b, 255};
        const KEPVidColor back = KEPVidHSLToColor(KEPVidRGBToHSL(color));
        if (back != color) ++mismatches;
      }
  EXPECT_EQ(mismatches, 0);
  EXPECT_EQ(KEPVidHSLToColor({0.5f, 1, 0.5f}, 7), (KEPVidColor{0, 255, 255, 7}));
  EXPECT_EQ(KEPVidHSLToColor({0, 0, 1}, 300).alpha, 255);
}

TEST(ColorConversionTest, InputsOutOfRangeGiveFiniteResults) {
  // Greys, whatever the hue: no division by zero, no NaN.
  for (const float hue : {0.0f, 0.4f, kNaN}) {
    const KEPVidRGB grey = KEPVidHSLToRGB({hue, 0, 0.25f});
    EXPECT_EQ(grey.red, 0.25f);
    EXPECT_EQ(grey.green, 0.25f);
    EXPECT_EQ(grey.blue, 0.25f);
  }
  struct Case {
    const char* what;
    KEPVidRGB rgb;
    KEPVidHSL hsl;
  };
  const Case cases[] = {
      {"NaN reads 0", {kNaN, 1, 0}, {1.0f / 3, 1, 0.5f}},
      {"brighter than white is white", {2, 3, 4}, {0, 0, 1}},
      {"negative is black", {-1, -0.5f, 0}, {0, 0, 0}},
      {"an overbright red is red", {kInf, 0, 0}, {0, 1, 0.5f}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const KEPVidHSL hsl = KEPVidRGBToHSL(c.rgb);
    ASSERT_TRUE(Finite(hsl));
    EXPECT_NEAR(hsl.hue, c.hsl.hue, 1e-6);
    EXPECT_NEAR(hsl.saturation, c.hsl.saturation, 1e-6);
    EXPECT_NEAR(hsl.lightness, c.hsl.lightness, 1e-6);
  }
  // Hues wrap around the turn; saturation and lightness are clamped.
  const KEPVidRGB wrapped = KEPVidHSLToRGB({1.0f + 1.0f / 3, 2, 0.5f});
  EXPECT_NEAR(wrapped.green, 1.0f, 1e-6);
  EXPECT_NEAR(wrapped.red, 0.0f, 1e-6);
  const KEPVidRGB negative = KEPVidHSLToRGB({-1.0f / 3, 1, 0.5f});
  EXPECT_NEAR(negative.blue, 1.0f, 1e-6);
  const KEPVidRGB nothing = KEPVidHSLToRGB({kInf, kNaN, kNaN});
  EXPECT_EQ(nothing.red + nothing.green + nothing.blue, 0.0f);
  EXPECT_EQ(KEPVidChannelToByte(kNaN), 0);
  EXPECT_EQ(KEPVidChannelToByte(0.5f), 128);
  EXPECT_EQ(KEPVidChannelToByte(-3), 0);
  EXPECT_EQ(KEPVidByteToChannel(300), 1.0f);
}

TEST(ColorConversionTest, FloatEditorReadsRealNumbersWithinTheFloats) {
  const auto editor = KEP_var<KEPVidCtlEditor>::Adopt(new KEPVidCtlEditor(nullptr, "e"));
  editor->SetDataType(KEPVidEditor_Float);
  std::string error;
  ASSERT_EQ(editor->InjectUserEvent(KEPVidAction::Type, "0.25", error), S_OK) << error;
  EXPECT_EQ(editor->GetValue(), 0.25);
  EXPECT_EQ(editor->GetText().ToUTF8(), "0.25");
  for (const char* refused : {"abc", "1e39", "-1e300"}) {
    EXPECT_EQ(editor->InjectUserEvent(KEPVidAction::Type, refused, error), E_INVALIDARG) << refused;
    EXPECT_EQ(editor->GetValue(), 0.25) << refused;
  }
  // Text set by code is read into the value as well.
  editor->SetText(KEPUnicodeString::FromUTF8("0.50"));
  EXPECT_EQ(editor->GetValue(), 0.5);
}

TEST(ColorConversionTest, DoubleComparatorUsesTheDefaultTolerance) {
  EXPECT_EQ(KEPSYPHashMapComparatorDouble(0.4, 0.4), 0);
  EXPECT_EQ(KEPSYPHashMapComparatorDouble(0.4, 0.4 + 5e-7), 0);
  EXPECT_EQ(KEPSYPHashMapComparatorDouble(static_cast<double>(0.4f), 0.4), 0);
  EXPECT_LT(KEPSYPHashMapComparatorDouble(0.4, 0.4 + 1e-5), 0);
  EXPECT_GT(KEPSYPHashMapComparatorDouble(0.5, 0.4), 0);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_NE(KEPSYPHashMapComparatorDouble(nan, nan), 0);
  EXPECT_NE(KEPSYPHashMapComparatorDouble(0.0, nan), 0);
  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_NE(KEPSYPHashMapComparatorDouble(inf, inf), 0);
}

}  // namespace
