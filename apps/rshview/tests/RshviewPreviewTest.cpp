// preview, and dump and drive of the classic editor, as a person runs them on the bundled sample;
// the sphere's shading rules on their own.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

#include "KEPPixelImage.h"
#include "RshviewRun.h"
#include "RshviewScratch.h"
#include "RshviewSphere.h"

namespace {
namespace fs = std::filesystem;

struct Scratch : RshviewScratch {
  Scratch() : RshviewScratch("rshview-preview") {}
};

struct Pixel {
  int r, g, b, a;
};

Pixel At(const std::vector<std::uint8_t>& pixels, int size, int x, int y) {
  const auto at = static_cast<std::size_t>((y * size + x) * 4);
  return {pixels[at], pixels[at + 1], pixels[at + 2], pixels[at + 3]};
}

TEST(RshviewPreview, RedPaintIsARedSphereOnGrey) {
  Scratch scratch;
  const std::string file = scratch.Path("red.png");
  const Outcome run = Rshview({"preview", "--node", "red_paint", "--size", "64", "--out", file});
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_NE(run.out.find("red_paint"), std::string::npos);
  auto image = KEP_var<KEPPixelImage>::Adopt(KEPPixelImage::Load(KEPUnicodeString::FromUTF8(file)));
  ASSERT_TRUE(image);
  ASSERT_EQ(image->GetWidth(), 64);
  ASSERT_EQ(image->GetHeight(), 64);
  const Pixel centre = At(image->GetPixels(), 64, 32, 32);
  EXPECT_GT(centre.r, centre.g + 40);
  EXPECT_GT(centre.r, centre.b + 40);
  const Pixel corner = At(image->GetPixels(), 64, 0, 0);
  EXPECT_EQ((std::vector<int>{corner.r, corner.g, corner.b, corner.a}),
            (std::vector<int>{128, 128, 128, 255}));
}

TEST(RshviewPreview, RefusesBadSizesNodesAndPaths) {
  Scratch scratch;
  const std::string file = scratch.Path("out.png");
  for (const char* size : {"0", "4097", "-3", "12x", "abc", " 8"}) {
    const Outcome run = Rshview({"preview", "--size", size, "--out", file});
    EXPECT_EQ(run.code, 2) << size;
    EXPECT_NE(run.err.find("--size must be a whole number from 1 to 4096"), std::string::npos)
        << size;
  }
  EXPECT_FALSE(fs::exists(file));

  const Outcome one = Rshview({"preview", "--size", "1", "--out", file});
  EXPECT_EQ(one.code, 0) << one.err;
  EXPECT_TRUE(fs::exists(file));

  const Outcome node = Rshview({"preview", "--node", "no_such", "--out", file});
  EXPECT_EQ(node.code, 2);
  EXPECT_NE(node.err.find("no node 'no_such'"), std::string::npos);

  const std::string unwritable = scratch.Path("missing/out.png");
  const Outcome path = Rshview({"preview", "--out", unwritable});
  EXPECT_EQ(path.code, 1);
  EXPECT_NE(path.err.find(unwritable), std::string::npos) << path.err;

  EXPECT_EQ(Rshview({"preview"}).code, 2);  // no --out
  EXPECT_EQ(Rshview({"dump", "--out", file}).code, 2);
}

TEST(RshviewPreview, SphereShadingRules) {
  RshviewSphereMaterial plain;
  plain.diffuseColor[0] = 1.0f;
  plain.diffuseColor[1] = 1.0f;
  plain.diffuseColor[2] = 1.0f;
  const auto lit = RshviewRenderSphere(plain, 32);

  // A blue texture tints a white material blue.
  RshviewSphereMaterial textured = plain;
  textured.texture = {0, 0, 255, 255};
  textured.textureWidth = textured.textureHeight = 1;
  const Pixel blue = At(RshviewRenderSphere(textured, 32), 32, 16, 16);
  EXPECT_EQ(blue.r, 0);
  EXPECT_GT(blue.b, 100);

  // The lit side faces the light: upper left brighter than lower right.
  EXPECT_GT(At(lit, 32, 10, 10).r, At(lit, 32, 22, 22).r);

  // A transparent material lets the background through: nearer to grey than an opaque one.
  RshviewSphereMaterial clear = plain;
  clear.transparency = 1.0f;
  const int opaque = At(lit, 32, 16, 16).r,
            seeThrough = At(RshviewRenderSphere(clear, 32), 32, 16, 16).r;
  EXPECT_LT(std::abs(seeThrough - 128), std::abs(opaque - 128));

  // A sharp highlight is smaller than a broad one of the same weight.
  RshviewSphereMaterial broad = plain, sharp = plain;
  broad.diffuse = sharp.diffuse = 0.0f;
  broad.specular = sharp.specular = 1.0f;
  sharp.glossiness = 1.0f;
  const auto count = [](const std::vector<std::uint8_t>& pixels) {
    int bright = 0;
    for (std::size_t i = 0; i < pixels.size(); i += 4) bright += pixels[i] > 200 ? 1 : 0;
    return bright;
  };
  EXPECT_GT(count(RshviewRenderSphere(broad, 64)), count(RshviewRenderSphere(sharp, 64)));
}

TEST(RshviewPreview, LuminosityShowsTheBaseColourAtFullStrength) {
  // Base 0.5 grey with a diffuse weight of 2: lit alone, the side facing the light is brighter
  // than the base colour and the far side darker.
  RshviewSphereMaterial lit;
  lit.diffuse = 2.0f;
  lit.diffuseColor[0] = lit.diffuseColor[1] = lit.diffuseColor[2] = 0.5f;
  const auto unlit = RshviewRenderSphere(lit, 32);
  EXPECT_GT(At(unlit, 32, 10, 10).r, 140);  // not held at the base colour
  EXPECT_LT(At(unlit, 32, 22, 22).r, 100);

  struct Case {
    float luminosity;
    bool luminous;  // drawn as luminosity 1, else as luminosity 0
  };
  for (const Case& c :
       {Case{0.0f, false}, Case{-1.0f, false}, Case{std::numeric_limits<float>::quiet_NaN(), false},
        Case{1.0f, true}, Case{3.0f, true}}) {
    RshviewSphereMaterial m = lit;
    m.luminosity = c.luminosity;
    const auto pixels = RshviewRenderSphere(m, 32);
    if (!c.luminous) {
      EXPECT_EQ(pixels, unlit) << c.luminosity;
      continue;
    }
    // Every pixel of the sphere is the base colour, whatever the light.
    for (const auto& [x, y] : {std::pair{16, 16}, std::pair{10, 10}, std::pair{22, 22},
                               std::pair{3, 16}, std::pair{28, 16}})
      EXPECT_EQ(At(pixels, 32, x, y).r, 128) << c.luminosity << " at " << x << "," << y;
    EXPECT_EQ(At(pixels, 32, 0, 0).r, 128);  // the background
  }

  // Half luminous: half way between the lit and the luminous picture; the specular is added on
  // top of a luminous colour.
  RshviewSphereMaterial half = lit;
  half.luminosity = 0.5f;
  const int halfWay = At(RshviewRenderSphere(half, 32), 32, 22, 22).r;
  EXPECT_NEAR(halfWay, (At(unlit, 32, 22, 22).r + 128) / 2, 1);
  RshviewSphereMaterial shiny = lit;
  shiny.luminosity = 1.0f;
  shiny.specular = 1.0f;
  EXPECT_GT(At(RshviewRenderSphere(shiny, 32), 32, 11, 11).r, 200);
}

TEST(RshviewPreview, TextureAngleIsInRadiansAndTurnsAboutTheFacingPoint) {
  // A red | blue image, one per sphere: red left of the facing point, blue right of it. A quarter
  // turn (in radians, as the viewer answers the angle) makes the split run across; a half turn
  // swaps the sides. Pixels well inside the sphere, away from the split.
  RshviewSphereMaterial m;
  m.luminosity = 1.0f;
  m.texture = {255, 0, 0, 255, 0, 0, 255, 255};
  m.textureWidth = 2;
  m.textureHeight = 1;
  const auto side = [&](float angle, int x, int y) {
    m.angleRadians = angle;
    const Pixel p = At(RshviewRenderSphere(m, 64), 64, x, y);
    return p.r > 200 && p.b < 50 ? 'r' : p.b > 200 && p.r < 50 ? 'b' : '?';
  };
  constexpr float kQuarter = 1.5707964f;
  const std::string left_right = {side(0.0f, 20, 32), side(0.0f, 44, 32)};
  const std::string top_bottom = {side(kQuarter, 32, 20), side(kQuarter, 32, 44)};
  const std::string swapped = {side(2.0f * kQuarter, 20, 32), side(2.0f * kQuarter, 44, 32)};
  EXPECT_EQ(left_right, "rb");
  EXPECT_EQ(top_bottom, "br");  // a positive turn is anticlockwise as seen: red comes below
  EXPECT_EQ(swapped, "br");
}

TEST(RshviewPreview, TexturedLuminousSampleMaterialsShowTheirChecker) {
  // The floor and the plaster wall answer luminosity 1, diffuse weight 0 and the checker image:
  // the sphere shows both of the checker's texels as they are, not near black.
  Scratch scratch;
  for (const char* node : {"floor", "plaster_wall"}) {
    const std::string file = scratch.Path(std::string(node) + ".png");
    const Outcome run = Rshview({"preview", "--node", node, "--size", "64", "--out", file});
    ASSERT_EQ(run.code, 0) << node << ": " << run.err;
    auto image =
        KEP_var<KEPPixelImage>::Adopt(KEPPixelImage::Load(KEPUnicodeString::FromUTF8(file)));
    ASSERT_TRUE(image) << node;
    int light = 0, dark = 0, sphere = 0;
    for (int y = 0; y < 64; ++y) {
      for (int x = 0; x < 64; ++x) {
        const Pixel p = At(image->GetPixels(), 64, x, y);
        if (p.r == 128 && p.g == 128 && p.b == 128) continue;  // the background
        ++sphere;
        light += p.r == 230 && p.g == 230 && p.b == 220 ? 1 : 0;
        dark += p.r == 40 && p.g == 40 && p.b == 48 ? 1 : 0;
      }
    }
    EXPECT_GT(sphere, 2500) << node;
    EXPECT_EQ(light + dark, sphere) << node << ": pixels other than the two texels";
    EXPECT_GT(light, sphere / 4) << node;
    EXPECT_GT(dark, 40) << node;
  }
}

TEST(RshviewClassicEditor, DumpShowsTheRootFrameOfTheSampleNode) {
  const Outcome text = Rshview({"dump", "--editor", "classic", "--node", "floor"});
  ASSERT_EQ(text.code, 0) << text.err;
  EXPECT_EQ(text.out.rfind("KEPRshShaderRootFrame rootFrame", 0), 0u) << text.out;
  EXPECT_NE(text.out.find("rectangle=[1,1,290,360]"), std::string::npos);
  EXPECT_NE(text.out.find("KEPRshShaderFrame shaderFrame"), std::string::npos);

  const Outcome json = Rshview({"dump", "--editor", "classic", "--format", "json"});
  ASSERT_EQ(json.code, 0) << json.err;
  const auto parsed = nlohmann::json::parse(json.out);
  EXPECT_EQ(parsed["editor"]["name"], "rootFrame");

  // The immersive editor stays the default.
  const Outcome immersive = Rshview({"dump", "--node", "floor"});
  EXPECT_EQ(immersive.out.find("rootFrame"), std::string::npos);
}

TEST(RshviewClassicEditor, DriveRunsOnTheClassicTree) {
  Scratch scratch;
  const std::string script = scratch.Path("script.txt");
  {
    std::ofstream(script) << "# the parent button is hidden on the first shader\n"
                             "press parentButton\n";
  }
  const Outcome run = Rshview({"drive", "--editor", "classic", "--node", "floor", script});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find(script + ":2: "), std::string::npos) << run.err;
}

TEST(RshviewClassicEditor, EveryKindOfParameterIsEditedAsAPersonWouldAndSurvivesAReload) {
  // The floor's scalars (slider, spin box, a length in centimetres), boolean, integers, vector
  // and colour; its texture node, reached through the edit item of the connected slot, with an
  // image and a layer; then the light's colour temperature, length slider, vector sliders one by
  // one and profile, on the document the first run saved.
  Scratch scratch;
  const std::string floor = scratch.Path("floor.txt"), light = scratch.Path("light.txt");
  std::ofstream(floor) << "set parameterDialog2/scalarSlider 0.25\n"
                          "set parameterDialog10/scalarSpinner 1.8\n"
                          "# cutout_thickness is shown in centimetres: 0.5 cm is 5 mm\n"
                          "set parameterDialog11/scalarSpinner 0.5\n"
                          "toggle parameterDialog8/booleanCheck off\n"
                          "set parameterDialog7/integerSlider 40\n"
                          "select parameterDialog15/integerCombo Cubical\n"
                          "set parameterDialog12/ySpinner 0.5\n"
                          "set parameterDialog1/greenSpinner 0.6\n"
                          "press parameterButton14/connectionMenu14/editItem\n"
                          "choose parameterDialog1/textureSelector "
                          "image=../startup/textures/tiles.png groups=Stripes dpi=300\n"
                          "select parameterDialog1/svgLayersSelector Layers\n"
                          "press parentButton\n";
  std::ofstream(light) << "set parameterDialog2/scalarBlackbodySliderBlackbodySlider 4500\n"
                          "set parameterDialog4/scalarSlider 2.5\n"
                          "set parameterDialog5/scalarSlider 50\n"
                          "set parameterDialog5/scalarSlider[1] 20\n"
                          "set parameterDialog5/scalarSlider[2] 70\n"
                          "type parameterDialog6/lightProfileEditor profiles/wide.ies\n";
  const std::string first = scratch.Path("first.rshdoc.json"),
                    second = scratch.Path("second.rshdoc.json");
  const std::string library = std::string(RSHVIEW_TEST_SAMPLES) + "/library";
  const Outcome floorRun =
      Rshview({"drive", "--editor", "classic", "--node", "floor", floor, "--save", first});
  ASSERT_EQ(floorRun.code, 0) << floorRun.err;
  for (const char* write :
       {"1: floor.diffuse_weight: 1.0 -> 0.25\n", "2: floor.refr_ior: 1.4 -> 1.8\n",
        "4: floor.cutout_thickness: 0.8 -> 5.0\n", "5: floor.brdf_fresnel: true -> false\n",
        "6: floor.refl_gloss_samples: 16 -> 40\n", "7: floor._uv_mapping: 0 -> 3\n",
        "8: floor.anisotropy_direction: [0.0,1.0,0.0] -> [0.0,0.5,0.0]\n",
        "9: floor.diffuse: [0.42,0.4,0.37,1.0] -> [0.42,0.6,0.37,1.0]\n",
        "11: floor.tiles.texture: {\"image\":\"../startup/textures/checker.png\"} -> "
        "{\"image\":\"../startup/textures/tiles.png\",\"dpi\":300.0,\"groups\":[\"Stripes\"]}\n",
        "12: floor.tiles.texture: {\"image\":\"../startup/textures/tiles.png\",\"dpi\":300.0,"
        "\"groups\":[\"Stripes\"]} -> {\"image\":\"../startup/textures/tiles.png\",\"dpi\":300.0,"
        "\"groups\":[\"Layers\"]}\n"})
    EXPECT_NE(floorRun.out.find(write), std::string::npos) << write << floorRun.out;

  const Outcome lightRun = Rshview({"drive", "--editor", "classic", "--doc", first, "--library",
                                    library, "--node", "key_light", light, "--save", second});
  ASSERT_EQ(lightRun.code, 0) << lightRun.err;
  // The vector's sliders write what they hold, in metres: the frame's rule for lengths.
  for (const char* write :
       {"1: key_light.temperature: 5200.0 -> 4500.0\n", "2: key_light.radius: 10.0 -> 25.0\n",
        "3: key_light.position: [1500.0,-800.0,2600.0,1.0] -> [0.5,0.0,1.0,0.0]\n",
        "4: key_light.position: [0.5,0.0,1.0,0.0] -> [0.5,0.2,1.0,0.0]\n",
        "5: key_light.position: [0.5,0.2,1.0,0.0] -> [0.5,0.2,0.7,0.0]\n",
        "6: key_light.profile: null -> \"profiles/wide.ies\"\n"})
    EXPECT_NE(lightRun.out.find(write), std::string::npos) << write << lightRun.out;

  const auto reloaded = [&](const char* node) {
    const Outcome dump = Rshview(
        {"dump", "--editor", "classic", "--doc", second, "--library", library, "--node", node});
    EXPECT_EQ(dump.code, 0) << dump.err;
    return dump.out;
  };
  const std::string floorDump = reloaded("floor"), tiles = reloaded("floor.tiles"),
                    lamp = reloaded("key_light");
  for (const char* shown :
       {"value=0.25 text=0.25", "value=1.8 text=1.80", "text=\"0.50 cm\"",
        "parameterDialog8 [7,2] style=786432 attachment=90\n        KEPDlgCheckButton booleanCheck "
        "[0,0] style=0 checked=false",
        "value=40 text=40", "selected=3", "value=0.5 text=0.5000", "value=0.6 text=0.600",
        "connectedShader [0,0] style=0 title=\"Floor tiles\""})
    EXPECT_NE(floorDump.find(shown), std::string::npos) << shown;
  EXPECT_NE(tiles.find("tiles.png groups=[Layers] dpi=300"), std::string::npos) << tiles;
  EXPECT_NE(tiles.find("lines=[Layers] selected=0"), std::string::npos) << tiles;
  for (const char* shown :
       {"value=4500 text=4500.00", "text=\"2.50 cm\"", "text=\"0.02 cm\"", "profiles/wide.ies"})
    EXPECT_NE(lamp.find(shown), std::string::npos) << shown;
}

TEST(RshviewClassicEditor, DumpReadsRowByRowForEveryNode) {
  for (const char* node : {"red_paint", "red_paint.decal", "floor", "floor.tiles", "plaster_wall",
                           "plaster_wall.bump", "plaster_wall.plaster", "window", "key_light"}) {
    const Outcome dump = Rshview({"dump", "--editor", "classic", "--node", node});
    ASSERT_EQ(dump.code, 0) << node << ": " << dump.err;
    // Numbers read as they were given.
    EXPECT_EQ(dump.out.find("0.00999999"), std::string::npos) << node;
  }
}

TEST(RshviewClassicEditor, EditorOptionIsChecked) {
  EXPECT_EQ(Rshview({"dump", "--editor", "modern"}).code, 2);
  EXPECT_EQ(Rshview({"dump", "--editor", "classic", "--restricted"}).code, 2);
  EXPECT_EQ(Rshview({"material", "--editor", "classic"}).code, 2);
}

}  // namespace
