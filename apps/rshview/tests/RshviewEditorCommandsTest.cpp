// dump, drive and units as a person runs them on the bundled sample.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "RshviewRun.h"
#include "RshviewScratch.h"

namespace {
namespace fs = std::filesystem;
using Json = nlohmann::json;

/// A scratch folder with its own preference file for the runs of one test.
struct Scratch : RshviewScratch {
  Scratch() : RshviewScratch("rshview-editor") {}
};

const char* const kGlossSlider = "ParameterGroup0/ParameterWidget3/scalarSlider";

TEST(RshviewDump, TextAndJsonShowTheEditorOfEveryNode) {
  Scratch scratch;
  const Outcome text = Rshview({"dump", "--node", "red_paint"});
  ASSERT_EQ(text.code, 0) << text.err;
  EXPECT_EQ(text.out.rfind("KEPRshShaderImmLayout ShaderEditor", 0), 0u) << text.out;
  EXPECT_NE(text.out.find("KEPVidCtlExpander ParameterGroup0 [0,0 1x3] label=\"Base coat\""),
            std::string::npos);
  // The connected decal's own editor sits below its row.
  EXPECT_NE(text.out.find("KEPRshShaderImmLayout ConnectedShaderEditor"), std::string::npos);

  const Outcome json = Rshview({"dump", "--node", "red_paint", "--format", "json"});
  ASSERT_EQ(json.code, 0) << json.err;
  const Json tree = Json::parse(json.out);
  EXPECT_EQ(tree["node"], "red_paint");
  EXPECT_EQ(tree["type"], "MPM_car_paint");
  EXPECT_EQ(tree["editor"]["class"], "KEPRshShaderImmLayout");
  EXPECT_EQ(tree["editor"]["children"][0]["name"], "ParameterGroup0");

  // Every node of the sample has an editor.
  const Outcome all = Rshview({"dump", "--node", "all", "--format", "json"});
  ASSERT_EQ(all.code, 0) << all.err;
  EXPECT_EQ(Json::parse(all.out)["nodes"].size(), 9u);
}

TEST(RshviewDump, UnitsForOneRunAndTheRestrictedEditor) {
  Scratch scratch;
  const Outcome mm = Rshview({"dump", "--node", "red_paint"});
  const Outcome cm = Rshview({"dump", "--node", "red_paint", "--units", "length=cm"});
  ASSERT_EQ(cm.code, 0) << cm.err;
  EXPECT_EQ(mm.out.find("suffix=cm"), std::string::npos);
  EXPECT_NE(cm.out.find("suffix=cm"), std::string::npos);
  const Outcome restricted = Rshview({"dump", "--node", "red_paint", "--restricted"});
  EXPECT_NE(restricted.out.find("ValueTweaker [0,0] (disabled)"), std::string::npos);
  EXPECT_EQ(mm.out.find("ValueTweaker [0,0] (disabled)"), std::string::npos);

  const Outcome bad = Rshview({"dump", "--units", "length=deg"});
  EXPECT_EQ(bad.code, 2);
  EXPECT_NE(bad.err.find("'deg' is not a unit of length (units: mm, cm, m, km, in, ft)"),
            std::string::npos)
      << bad.err;
  EXPECT_EQ(Rshview({"params", "--restricted"}).code, 2);
}

TEST(RshviewDrive, AScriptWritesParametersAndTheSavedDocumentKeepsThem) {
  Scratch scratch;
  const std::string script = scratch.Write("lighter.txt",
                                           "# a lighter red\n"
                                           "\n"
                                           "expand ParameterGroup0\n"
                                           "type ParameterGroup0/ParameterWidget2/scalarEditor "
                                           "0.35\n" +
                                               std::string("set ") + kGlossSlider + " 60\n" +
                                               // Outside 0..1: refused, nothing written.
                                               "type ParameterGroup0/ParameterWidget3/"
                                               "scalarEditor 1.5\n");
  const std::string saved = scratch.Path("saved.rshdoc.json");
  const Outcome run = Rshview({"drive", "--node", "red_paint", script, "--save", saved});
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(run.out,
            "4: red_paint.default_generic_brdf_diffuse_weight: 0.8 -> 0.35\n"
            "5: red_paint.default_generic_brdf_diffuse_glossiness: 0.2 -> 0.6\n"
            "saved " +
                saved + "\n");
  // Expanding a group is remembered for the next session.
  EXPECT_NE(scratch.Read("preferences.json").find("MPM_car_paint.Base coat.Collapsed"),
            std::string::npos);

  const Outcome reloaded =
      Rshview({"params", "--doc", saved, "--node", "red_paint", "--format", "json", "--library",
               std::string(RSHVIEW_TEST_SAMPLES) + "/library"});
  ASSERT_EQ(reloaded.code, 0) << reloaded.err;
  EXPECT_NE(reloaded.out.find("0.35"), std::string::npos);

  const Outcome json = Rshview({"drive", "--node", "red_paint", script, "--format", "json"});
  ASSERT_EQ(json.code, 0) << json.err;
  const Json events = Json::parse(json.out)["events"];
  ASSERT_EQ(events.size(), 4u);
  EXPECT_EQ(events[1]["writes"][0]["new"], 0.35);
  EXPECT_TRUE(events[3]["writes"].empty());
}

TEST(RshviewDrive, EveryTypeOfParameterIsEditedAsAPersonWouldAndSurvivesAReload) {
  // The architectural material and the texture connected to it: lightness slider and popup
  // picker of a colour, a grey level, a boolean, an integer combo, check box and slider, a vector
  // component, and an image with its layer groups and resolution.
  Scratch scratch;
  const std::string texture = "ParameterGroup0/ParameterConnectedShader3/ConnectedShaderEditor/";
  const std::string script =
      scratch.Write("all.txt",
                    "set ParameterGroup0/ParameterWidget0/colorSlider 60\n"
                    "press ParameterGroup0/ParameterWidget0/AmbientColor\n"
                    "color ParameterGroup0/ParameterWidget0/colorPopup/colorPicker 0.2 0.4 0.8\n"
                    "toggle ParameterGroup1/ParameterWidget9/booleanCheck\n"
                    "set ParameterGroup1/ParameterWidget6/ValueSpinner 0.25\n"
                    "select " +
                        texture +
                        "ParameterGroup1/ParameterWidget4/ValueCombo Cubical\n"
                        "toggle ParameterGroup1/ParameterWidget11/ValueCheck on\n"
                        "set ParameterGroup1/ParameterWidget8/ValueSlider 40\n"
                        "set ParameterGroup1/ParameterWidget10/scalarSpinner2 0.5\n"
                        "choose " +
                        texture +
                        "ParameterGroup0/ParameterWidget0/textureEditor "
                        "image=../startup/textures/tiles.png groups=Stripes dpi=300\n");
  const std::string saved = scratch.Path("all.rshdoc.json");
  const Outcome run = Rshview({"drive", "--node", "floor", script, "--save", saved});
  ASSERT_EQ(run.code, 0) << run.err;
  for (const char* write :
       {"1: floor.diffuse: [0.42,0.4,0.37,1.0] -> [0.62531644,0.6050633,0.5746836,1.0]\n",
        "3: floor.diffuse: [0.62531644,0.6050633,0.5746836,1.0] -> [0.2,0.4,0.8,1.0]\n",
        "4: floor.brdf_fresnel: true -> false\n",
        "5: floor.refl_color: [1.0,1.0,1.0,1.0] -> [0.25,0.25,0.25,1.0]\n",
        "6: floor.tiles._uv_mapping: 5 -> 3\n", "7: floor.refl_hl_only: 0 -> 1\n",
        "8: floor.refl_gloss_samples: 16 -> 40\n",
        "9: floor.anisotropy_direction: [0.0,1.0,0.0] -> [0.0,0.5,0.0]\n",
        "10: floor.tiles.texture: {\"image\":\"../startup/textures/checker.png\"} -> "
        "{\"image\":\"../startup/textures/tiles.png\",\"dpi\":300.0,\"groups\":[\"Stripes\"]}\n"})
    EXPECT_NE(run.out.find(write), std::string::npos) << write << run.out;
  // The picker sits in a popup that a person opens first.
  const std::string unopened = scratch.Write(
      "closed.txt", "color ParameterGroup0/ParameterWidget0/colorPopup/colorPicker 1 0 0\n");
  EXPECT_EQ(Rshview({"drive", "--node", "floor", unopened}).code, 1);

  const Outcome reloaded = Rshview({"dump", "--doc", saved, "--node", "floor", "--library",
                                    std::string(RSHVIEW_TEST_SAMPLES) + "/library"});
  ASSERT_EQ(reloaded.code, 0) << reloaded.err;
  for (const char* shown :
       {"tiles.png groups=[Stripes] dpi=300", "selected=3", "ValueCheck [0,0] checked=true",
        "color=[51,102,204,255]", "booleanCheck [0,0] checked=false"})
    EXPECT_NE(reloaded.out.find(shown), std::string::npos) << shown;
}

TEST(RshviewDrive, AnEventThatCannotBePlayedStopsTheScriptAndSavesNothing) {
  Scratch scratch;
  const std::string saved = scratch.Path("never.rshdoc.json");
  struct Case {
    const char* line;
    const char* error;
  } cases[] = {
      {"set ParameterGroup0/Nope/scalarSlider 3", "segment 2 \"Nope\" names no widget"},
      {"press ParameterGroup0/ParameterWidget2/scalarSlider", "does not take the action 'press'"},
      {"set ParameterGroup0/ParameterWidget2/scalarSlider 4x", "4x"},
      {"wiggle ParameterGroup0", "unknown action 'wiggle'"},
      {"expand", "expected 'ACTION PATH [ARGUMENT]'"},
  };
  for (const Case& c : cases) {
    const std::string script =
        scratch.Write("bad.txt", std::string("set ") + kGlossSlider + " 60\n" + c.line + "\n");
    const Outcome run = Rshview({"drive", "--node", "red_paint", script, "--save", saved});
    EXPECT_EQ(run.code, 1) << c.line;
    EXPECT_NE(run.err.find("bad.txt:2: "), std::string::npos) << run.err;
    EXPECT_NE(run.err.find(c.error), std::string::npos) << run.err;
    EXPECT_FALSE(fs::exists(saved)) << c.line;
  }
  EXPECT_EQ(Rshview({"drive", "--node", "red_paint"}).code, 2);
  EXPECT_EQ(Rshview({"drive", "--node", "red_paint", scratch.Path("missing.txt")}).code, 1);
}

TEST(RshviewUnits, AChoiceIsKeptForLaterRuns) {
  Scratch scratch;
  const Outcome before = Rshview({"units"});
  ASSERT_EQ(before.code, 0) << before.err;
  EXPECT_NE(before.out.find("length  mm  (mm, cm, m, km, in, ft)"), std::string::npos)
      << before.out;
  ASSERT_EQ(Rshview({"units", "length=cm", "angle=deg"}).code, 0);
  const Outcome after = Rshview({"units", "--format", "json"});
  EXPECT_EQ(Json::parse(after.out)["length"]["unit"], "cm");
  EXPECT_EQ(Json::parse(after.out)["angle"]["unit"], "deg");
  EXPECT_NE(Rshview({"dump", "--node", "red_paint"}).out.find("suffix=cm"), std::string::npos);
  EXPECT_EQ(Rshview({"units", "length=furlong"}).code, 2);
  // A unit stored by hand that does not exist is reported and left out.
  std::ofstream(scratch.Path("preferences.json"))
      << R"({"repositories": {"KEPRshDisplayUnits": {"LENGTH": "furlong"}}})";
  const Outcome stale = Rshview({"units"});
  EXPECT_EQ(stale.code, 0);
  EXPECT_NE(stale.err.find("stored display unit LENGTH = furlong ignored"), std::string::npos)
      << stale.err;
}

}  // namespace
