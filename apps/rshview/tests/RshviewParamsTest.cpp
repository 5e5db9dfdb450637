// rshview's command line as a user meets it: help, errors with exit code 2, loading errors with
// exit code 1, and the params command on the bundled sample.
#include <gtest/gtest.h>

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <sstream>

#include "KEPHostConfiguration.h"
#include "KEPRbaConfiguration.h"
#include "KEPRshShaderManager.h"
#include "KEPTrace.h"
#include "RshviewRun.h"

namespace {
/// The block of one parameter in the text form (from its name line to the blank line).
std::string Block(const std::string& text, const std::string& name) {
  const auto start = text.find("\n" + name + "  (");
  if (start == std::string::npos) return {};
  const auto end = text.find("\n\n", start + 1);
  return text.substr(start + 1, end == std::string::npos ? std::string::npos : end - start - 1);
}

TEST(RshviewCommandLine, HelpListsCommandsAndOptions) {
  for (const char* flag : {"--help", "-h"}) {
    const Outcome run = Rshview({flag});
    EXPECT_EQ(run.code, 0);
    EXPECT_NE(run.out.find("Usage: rshview COMMAND"), std::string::npos);
    EXPECT_NE(run.out.find("  params "), std::string::npos);
    EXPECT_NE(run.out.find("  material "), std::string::npos);
    EXPECT_NE(run.out.find("--format text|json"), std::string::npos);
  }
  for (const auto& args : std::vector<std::vector<std::string>>{
           {"params", "--help"}, {"-h", "params"}, {"help", "params"}}) {
    const Outcome run = Rshview(args);
    EXPECT_EQ(run.code, 0) << args[0];
    EXPECT_NE(run.out.find("Usage: rshview params"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("--node all"), std::string::npos);
  }
  const Outcome version = Rshview({"--version"});
  EXPECT_EQ(version.code, 0);
  EXPECT_EQ(version.out.rfind("rshview ", 0), 0u);
}

TEST(RshviewCommandLine, UsageErrorsExitWithTwo) {
  struct Case {
    std::vector<std::string> args;
    const char* message;
  };
  const Case cases[] = {
      {{}, "rshview: no command given"},
      {{"frobnicate"}, "rshview: unknown command 'frobnicate'"},
      {{"params", "--colour"}, "rshview: unknown option '--colour'"},
      {{"params", "--node"}, "rshview: option --node needs a value"},
      {{"params", "--library="}, "rshview: option --library needs a value"},
      {{"params", "--format", "xml"}, "rshview: --format must be text or json, not 'xml'"},
      {{"params", "--sticker"}, "rshview: --sticker applies to the material command only"},
      {{"params", "extra"}, "rshview params: unexpected argument 'extra'"},
      {{"params", "--node", "nowhere"}, "rshview params: no node 'nowhere' in "},
  };
  for (const Case& c : cases) {
    const Outcome run = Rshview(c.args);
    EXPECT_EQ(run.code, 2) << run.err;
    EXPECT_NE(run.err.find(c.message), std::string::npos) << run.err;
    EXPECT_TRUE(run.out.empty());
  }
}

TEST(RshviewCommandLine, LoadErrorsArePrintedAndExitWithOne) {
  const Outcome noLibrary = Rshview({"params", "--library", "/no/such/library"});
  EXPECT_EQ(noLibrary.code, 1);
  EXPECT_EQ(noLibrary.err, "/no/such/library: library directory does not exist\n");

  const std::string data = RSHVIEW_TEST_DATA;
  const Outcome badConfig = Rshview({"params", "--library", data + "/bad_library"});
  EXPECT_EQ(badConfig.code, 1);
  EXPECT_NE(badConfig.err.find("library.json:6: key 'type': unknown parameter type 'KEPRmaColour'"),
            std::string::npos)
      << badConfig.err;

  const Outcome cycle = Rshview({"params", "--doc=" + data + "/documents/cycle.rshdoc.json"});
  EXPECT_EQ(cycle.code, 1);
  EXPECT_NE(cycle.err.find("cycle.rshdoc.json:4: key 'diffuse_texture': connection cycle"),
            std::string::npos)
      << cycle.err;
  // Nothing of the run stays behind in the process.
  EXPECT_EQ(KEPRshShaderManager::GetManager(), nullptr);
  EXPECT_TRUE(KEPHostConfiguration::ConfigurationIds().empty());
}

TEST(RshviewParams, TextShowsTheFirstMaterialsMetadata) {
  const Outcome run = Rshview({"params"});
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(run.out.rfind("Node red_paint  type MPM_car_paint  alias \"Red metallic paint\"", 0),
            0u)
      << run.out.substr(0, 200);

  const std::string scale = Block(run.out, "scale_u");
  EXPECT_NE(scale.find("  widget          ratio\n"), std::string::npos) << scale;
  // "ratio" is an immersive kind; the classic frames do not know it, and the tool says so.
  EXPECT_NE(scale.find("  classic widget  ratio (not a kind these widgets know)\n"),
            std::string::npos)
      << scale;
  EXPECT_NE(scale.find("  range           1 .. 1000, step 1\n"), std::string::npos) << scale;
  EXPECT_NE(scale.find("  soft range      10 .. 500\n"), std::string::npos) << scale;
  EXPECT_NE(scale.find("  hard range      0.001 .. 100000\n"), std::string::npos) << scale;
  EXPECT_NE(scale.find("  unit            mm, symbol mm, factor 1\n"), std::string::npos) << scale;
  EXPECT_NE(scale.find("  magnitude       length\n"), std::string::npos) << scale;
  EXPECT_NE(scale.find("  group           Group3 \"Mapping\"\n"), std::string::npos) << scale;

  const std::string slot = Block(run.out, "default_slot_diffuse_texture");
  EXPECT_NE(slot.find("  connected       red_paint.decal\n"), std::string::npos) << slot;
  EXPECT_NE(slot.find("(default)\n"), std::string::npos) << "no widget configured: " << slot;
  EXPECT_EQ(slot.find("  range"), std::string::npos) << "unconfigured rows are left out: " << slot;

  // The summary names every parameter on one line, flagging default widget kinds.
  EXPECT_NE(run.out.find(
                "  default_slot_diffuse_texture             Void     -> red_paint.decal  shader*"),
            std::string::npos)
      << run.out.substr(0, 2000);

  const std::string type = Block(run.out, "type");
  EXPECT_NE(type.find("Planar=0, Spherical=1, Cylindrical=2, Cubical=3, Automatic=4, UV=5, "
                      "Camera=7, Decal=8"),
            std::string::npos)
      << type;
}

TEST(RshviewParams, JsonOfANodeAndOfAllNodes) {
  const Outcome run = Rshview({"params", "--node", "floor", "--format", "json"});
  ASSERT_EQ(run.code, 0) << run.err;
  const auto json = nlohmann::json::parse(run.out);
  EXPECT_EQ(json["id"], "floor");
  EXPECT_EQ(json["configuration"], "mia_phen_material");
  ASSERT_EQ(json["parameters"].size(), 25u);
  const auto& params = json["parameters"];
  auto find = [&](const std::string& name) {
    for (const auto& p : params)
      if (p["name"] == name) return p;
    ADD_FAILURE() << name << " missing";
    return nlohmann::json();
  };
  // Immersive range falls back to the hard keys; the classic one does not.
  const auto reflectivity = find("reflectivity");
  EXPECT_EQ(reflectivity["range"]["min"], "0");
  EXPECT_EQ(reflectivity["range"]["max"], "10");
  EXPECT_TRUE(reflectivity["classicRange"].is_null());
  EXPECT_EQ(reflectivity["softRange"]["max"], 1.0);
  // Units from the parent configuration, converted to model units.
  const auto thickness = find("cutout_thickness");
  EXPECT_EQ(thickness["unit"]["name"], "cm");
  EXPECT_EQ(thickness["unit"]["factor"], 10.0);
  EXPECT_EQ(find("_uv_angle")["magnitude"]["name"], "angle");
  EXPECT_EQ(find("anisotropy_direction")["labels"], nlohmann::json({"X", "Y", "Z"}));
  EXPECT_EQ(find("refl_gloss")["connectable"], "No");
  EXPECT_EQ(find("diffuse")["connectable"], "Yes");
  EXPECT_EQ(find("_uv_mapping")["enumeration"][5]["label"], "UV");
  EXPECT_EQ(find("refl_gloss_samples")["value"], 16);

  const Outcome all = Rshview({"params", "--node=all", "--format=json"});
  ASSERT_EQ(all.code, 0) << all.err;
  const auto nodes = nlohmann::json::parse(all.out)["nodes"];
  ASSERT_EQ(nodes.size(), 9u);
  EXPECT_EQ(nodes[7]["id"], "window");
  // The frosted glass reads its widget and range from its shader resources.
  EXPECT_EQ(nodes[7]["parameters"][1]["range"]["step"], "0.05");
  EXPECT_EQ(nodes[7]["parameters"][5]["enumeration"][2]["label"], "High");
}

TEST(RshviewParams, TracePrintsTheWidgetChoiceToStandardError) {
  const Outcome quiet = Rshview({"params"});
  EXPECT_TRUE(quiet.err.empty()) << quiet.err;
  const Outcome traced = Rshview({"params", "--trace"});
  ASSERT_EQ(traced.code, 0);
  EXPECT_NE(traced.err.find("Parameter scale_u's widget is ratio { type = KEPRmaScalar }"),
            std::string::npos)
      << traced.err.substr(0, 500);
  EXPECT_EQ(KEPModuleTrace::GetLevel(), 0) << "the trace level is restored";
}

TEST(RshviewParams, SamplesDirectoryComesFromTheEnvironment) {
  ::setenv("RSHVIEW_SAMPLES", "/no/such/samples", 1);
  const Outcome run = Rshview({"params"});
  ::unsetenv("RSHVIEW_SAMPLES");
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find("/no/such/samples/documents/showroom.rshdoc.json"), std::string::npos)
      << run.err;
}
}  // namespace
