// Connecting, reusing, disconnecting and editing sub-shaders through `rshview drive`, in both
// editors, and the connection tree that a saved document keeps.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>

#include "RshviewRun.h"
#include "RshviewScratch.h"

namespace {
namespace fs = std::filesystem;
using Json = nlohmann::json;

/// A scratch folder with its own preference file.
struct Scratch : RshviewScratch {
  Scratch() : RshviewScratch("rshview-connect") {}
};

/// A document's connection tree: per node, the node whose subShaders list holds it ("" for a
/// material), how often it is listed, and its connections as "holder|listed|param=node ...".
using Tree = std::map<std::string, std::string>;

void Collect(const Json& nodes, const std::string& holder, std::map<std::string, Json>& seen) {
  for (const Json& node : nodes) {
    Json& entry = seen[node.at("id").get<std::string>()];
    entry["holder"] = holder;
    entry["listed"] = entry.value("listed", 0) + 1;
    entry["connections"] = node.value("connections", Json::object());
    if (node.contains("subShaders")) Collect(node["subShaders"], node["id"], seen);
  }
}

Tree ReadTree(const std::string& path) {
  std::ifstream in(path);
  std::map<std::string, Json> seen;
  Collect(Json::parse(in).at("materials"), "", seen);
  Tree tree;
  for (const auto& [id, entry] : seen) {
    std::string text = entry["holder"].get<std::string>() + "|" + entry["listed"].dump() + "|";
    for (const auto& [parameter, target] : entry["connections"].items())
      text += " " + parameter + "=" + target.get<std::string>();
    tree[id] = text;
  }
  return tree;
}

/// Runs `script` on `node`'s editor and saves to `saved`.
Outcome Drive(const Scratch& scratch, const std::string& node, const std::string& script,
              bool classic, const std::string& saved, const std::string& doc = {}) {
  std::vector<std::string> args{"drive",  "--node", node, scratch.Write("script.txt", script),
                                "--save", saved};
  if (classic) args.insert(args.end(), {"--editor", "classic"});
  if (!doc.empty()) args.insert(args.end(), {"--doc", doc});
  return Rshview(args);
}

const std::string kShowroom = std::string(RSHVIEW_TEST_SAMPLES) + "/documents/showroom.rshdoc.json";
/// The sample's floor tiles as a colour parameter of the floor is offered them.
const std::string kTilesLine =
    "Floor tiles (Red metallic paint:flake_color, Polished floor:diffuse_texture)";

}  // namespace

// Each scenario on the sample's floor (its bump takes a new texture or bump through the dialog,
// its reflection colour a new texture, its diffuse colour the floor tiles shared), the lines
// printed, and how the saved tree differs from the sample's, whose floor tiles also colour the
// paint's flakes and whose plaster drives the wall's bumps.
TEST(RshviewConnections, ScenariosPrintTheSameLinesInBothEditorsAndSaveTheTree) {
  const char* const newBump =
      "3: new node kep_phen_bump.1 (kep_phen_bump)\n"
      "3: floor.bump: connection (none) -> kep_phen_bump.1\n";
  const char* const unhooked = "|1| diffuse_texture=floor.tiles";
  struct Case {
    bool classic;
    std::string script;
    const char* out;
    const char* changed[2];  ///< "id=tree entry" of the saved tree that differ from the sample
  } cases[] = {
      {false, "# a save alone keeps shared and nested nodes where they were\n", "", {}},
      {false,
       "press ParameterConnection4\nselect connectionDialog/shaderSelector Bump (new)\nok\n",
       newBump,
       {"floor=|1| bump=kep_phen_bump.1 diffuse_texture=floor.tiles", "kep_phen_bump.1=floor|1|"}},
      {true,
       "press parameterButton13\nselect connectionDialog/shaderSelector 1\nok connectionDialog\n",
       newBump,
       {"floor=|1| bump=kep_phen_bump.1 diffuse_texture=floor.tiles", "kep_phen_bump.1=floor|1|"}},
      // One type to make, and nothing of the floor's own tree to share without asking (its tiles
      // have two users already): the immersive press makes a texture at once.
      {false,
       "press ParameterConnection6\n",
       "1: new node kep_phen_texture.1 (kep_phen_texture)\n"
       "1: floor.refl_color: connection (none) -> kep_phen_texture.1\n",
       {"floor=|1| diffuse_texture=floor.tiles refl_color=kep_phen_texture.1",
        "kep_phen_texture.1=floor|1|"}},
      {true,
       "press parameterButton1\nselect connectionDialog/shaderSelector " + kTilesLine + "\nok\n",
       "3: floor.diffuse: connection (none) -> floor.tiles\n",
       {"floor=|1| diffuse=floor.tiles diffuse_texture=floor.tiles"}},
      {false, "press ParameterConnection4\ncancel\n", "", {}},
      {true, "press connectionMenu13/connectItem\nclose\n", "", {}},
      {false,
       "press ParameterConnection3\n",
       "1: floor.diffuse_texture: connection floor.tiles -> (none)\n",
       {"floor=|1|"}},
      {true,
       "press connectionMenu14/disconnectItem\n",
       "1: floor.diffuse_texture: connection floor.tiles -> (none)\n",
       {"floor=|1|"}},
      {false,
       "expand ParameterConnectedShader3\n"
       "set ParameterConnectedShader3/ConnectedShaderEditor/ParameterWidget2/scalarSlider 50\n",
       "2: floor.tiles.gamma: 1.8 -> 0.5\n",
       {}},
      {true,
       "press connectionMenu14/editItem\nset parameterDialog3/scalarSlider 50\n"
       "press parentButton\npress disconnectButton14\n",
       "2: floor.tiles.gamma: 1.8 -> 5.0\n4: floor.diffuse_texture: connection floor.tiles -> "
       "(none)\n",
       {"floor=|1|"}},
  };
  const Tree sample = ReadTree(kShowroom);
  ASSERT_EQ(sample.at("floor"), unhooked);
  EXPECT_EQ(sample.at("floor.tiles"), "floor|1|");
  EXPECT_EQ(sample.at("plaster_wall.bump"), "plaster_wall|1| bump_map=plaster_wall.plaster");
  EXPECT_NE(sample.at("red_paint").find("flake_color=floor.tiles"), std::string::npos);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.script);
    Scratch scratch;
    const std::string saved = scratch.Path("saved.rshdoc.json");
    const Outcome run = Drive(scratch, "floor", c.script, c.classic, saved);
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.out, std::string(c.out) + "saved " + saved + "\n");
    Tree expected = sample;
    for (const char* change : c.changed)
      if (change) {
        const std::string text = change;
        expected[text.substr(0, text.find('='))] = text.substr(text.find('=') + 1);
      }
    EXPECT_EQ(ReadTree(saved), expected);
  }
}

// The JSON form tells connections and created nodes apart from value writes.
TEST(RshviewConnections, TheJsonFormListsConnectionsAndCreatedNodes) {
  Scratch scratch;
  const std::string script = scratch.Write(
      "json.txt",
      "press ParameterConnection6\n"
      "set ParameterConnectedShader6/ConnectedShaderEditor/ParameterWidget2/scalarSlider 50\n"
      "press ParameterConnection6\n");
  const Outcome run = Rshview({"drive", "--node", "floor", script, "--format", "json"});
  ASSERT_EQ(run.code, 0) << run.err;
  const Json events = Json::parse(run.out)["events"];
  ASSERT_EQ(events.size(), 3u);
  EXPECT_EQ(events[0]["created"], Json::parse(R"([{"id": "kep_phen_texture.1",
      "type": "kep_phen_texture", "alias": "kep_phen_texture.1"}])"));
  EXPECT_EQ(events[0]["connections"], Json::parse(R"([{"node": "floor", "parameter": "refl_color",
      "old": null, "new": "kep_phen_texture.1"}])"));
  EXPECT_TRUE(events[0]["writes"].empty());
  // The new node's parameters write like any other, from their default.
  EXPECT_EQ(events[1]["writes"], Json::parse(R"([{"node": "kep_phen_texture.1",
      "parameter": "gamma", "old": 2.2, "new": 0.5}])"));
  EXPECT_TRUE(events[1]["connections"].empty());
  EXPECT_EQ(events[2]["connections"][0]["old"], "kep_phen_texture.1");
  EXPECT_EQ(events[2]["connections"][0]["new"], nullptr);
}

// An event the dialog refuses stops the script at its line; nothing is saved.
TEST(RshviewConnections, RefusedDialogEventsNameWhatIsThere) {
  const struct {
    bool classic;
    const char* script;
    const char* error;
  } cases[] = {
      {false, "press ParameterConnection4\nselect connectionDialog/shaderSelector Plaster (new)\n",
       ":2: connectionDialog/shaderSelector: KEPDlgSelectorList \"shaderSelector\": no line reads "
       "\"Plaster (new)\" (lines: \"Image texture (new)\", \"Bump (new)\", \"Plaster bumps (Bumpy "
       "plaster wall:bump)\")"},
      // Lines are listed whole, however long: they are what the script must write.
      {true, "press parameterButton1\nselect connectionDialog/shaderSelector x\n",
       "\"Checker decal (Red metallic paint:default_slot_diffuse_texture)\", \"Floor tiles (Red "
       "metallic paint:flake_color, Polished floor:diffuse_texture)\""},
      {true, "ok\n", ":1: 'ok' without a path needs an open dialog, and none is open"},
      {false, "press ParameterConnection4\ncancel\nok connectionDialog\n",
       ":3: connectionDialog: KEPRshConnectionDialog \"connectionDialog\": cannot be reached"},
      {true, "press parameterButton13\nclose\nselect connectionDialog/shaderSelector 0\n",
       ":3: connectionDialog/shaderSelector: KEPDlgSelectorList \"shaderSelector\": cannot be"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.script);
    Scratch scratch;
    const std::string saved = scratch.Path("never.rshdoc.json");
    const Outcome run = Drive(scratch, "floor", c.script, c.classic, saved);
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.err.find(c.error), std::string::npos) << run.err;
    EXPECT_FALSE(fs::exists(saved));
  }
}

// Reusing a node of another material, in a library whose colour maps declare that they yield
// colours, which is what the dialog compares to offer a node again. The door's mix reads the
// wall, so offering it to a wall's parameter would close a cycle.
TEST(RshviewConnections, ASharedNodeIsOfferedUnlessItWouldCloseACycle) {
  Scratch scratch;
  fs::create_directories(scratch.Path("lib"));
  scratch.Write("lib/library.json", R"({"shaderTypes": {
    "mia_phen_material": {"parameters": [{"name": "diffuse", "type": "KEPRmaColor"},
                                         {"name": "refl_color", "type": "KEPRmaColor"}]},
    "colour_map": {"output": "KEPRmaColor",
                   "parameters": [{"name": "input", "type": "KEPRmaColor"}]}},
  "connectable": {"KEPRmaColor": [{"type": "colour_map", "label": "Colour map"}]}})");
  const std::string doc = scratch.Write("rooms.rshdoc.json", R"({"library": "lib", "materials": [
    {"id": "wall", "type": "mia_phen_material", "alias": "Wall", "connections": {"diffuse": "map"},
     "subShaders": [{"id": "map", "type": "colour_map", "alias": "Map"}]},
    {"id": "door", "type": "mia_phen_material", "alias": "Door", "connections": {"diffuse": "mix"},
     "subShaders": [{"id": "mix", "type": "colour_map", "alias": "Mix",
                     "connections": {"input": "wall"}}]}]})");
  const std::string saved = scratch.Path("saved.rshdoc.json");
  for (const bool classic : {false, true}) {
    SCOPED_TRACE(classic ? "classic" : "immersive");
    const std::string press = classic ? "press parameterButton2\n" : "press ParameterConnection1\n";
    const Outcome reuse = Drive(
        scratch, "door", press + "select connectionDialog/shaderSelector Map (Wall:diffuse)\nok\n",
        classic, saved, doc);
    ASSERT_EQ(reuse.code, 0) << reuse.err;
    EXPECT_EQ(reuse.out, "3: door.refl_color: connection (none) -> map\nsaved " + saved + "\n");
    Tree expected = ReadTree(doc);
    expected["door"] = "|1| diffuse=mix refl_color=map";
    EXPECT_EQ(ReadTree(saved), expected);

    const Outcome cycle = Drive(
        scratch, "wall", press + "select connectionDialog/shaderSelector Mix (Door:diffuse)\n",
        classic, saved + ".no", doc);
    EXPECT_EQ(cycle.code, 1);
    EXPECT_NE(cycle.err.find(":2: connectionDialog/shaderSelector: KEPDlgSelectorList "
                             "\"shaderSelector\": no line reads \"Mix (Door:diffuse)\" (lines: "
                             "\"Colour map (new)\", \"Map (Wall:diffuse)\")"),
              std::string::npos)
        << cycle.err;
  }
}

// The classic editor offers the sample floor's diffuse colour the sample's textures, each with the
// parameters that use it; once the floor tiles are shared, the saved document reads back with the
// one node used by three parameters, and offers it so. (The immersive press on the floor makes a
// texture at once: it shares without asking only a node of the floor's own tree.)
TEST(RshviewConnections, TheSampleFloorSharesItsTilesAndTheSavedDocumentKeepsThemShared) {
  constexpr bool classic = true;
  Scratch scratch;
  const std::string diffuse = "press parameterButton1\n";
  // Every line is chosen by its exact text, and there are no more than these four.
  const Outcome listing = Drive(
      scratch, "floor",
      diffuse +
          "select connectionDialog/shaderSelector Checker decal (Red metallic "
          "paint:default_slot_diffuse_texture)\n"
          "select connectionDialog/shaderSelector " +
          kTilesLine +
          "\n"
          "select connectionDialog/shaderSelector Plaster (Bumpy plaster wall:diffuse_texture, "
          "Plaster bumps:bump_map)\n"
          "select connectionDialog/shaderSelector 4\n",
      classic, scratch.Path("never.rshdoc.json"));
  EXPECT_EQ(listing.code, 1);
  EXPECT_NE(listing.err.find(":5: connectionDialog/shaderSelector: KEPDlgSelectorList "
                             "\"shaderSelector\": line 4 is not one of its 4 lines"),
            std::string::npos)
      << listing.err;

  const std::string saved = scratch.Path("shared.rshdoc.json");
  const Outcome shared = Drive(
      scratch, "floor", diffuse + "select connectionDialog/shaderSelector " + kTilesLine + "\nok\n",
      classic, saved);
  ASSERT_EQ(shared.code, 0) << shared.err;
  const Tree tree = ReadTree(saved);
  EXPECT_EQ(tree.at("floor"), "|1| diffuse=floor.tiles diffuse_texture=floor.tiles");
  EXPECT_EQ(tree.at("floor.tiles"), "floor|1|");

  const std::string reflection = "press parameterButton5\n";
  const Outcome reloaded = Drive(scratch, "floor",
                                 reflection +
                                     "select connectionDialog/shaderSelector Floor tiles (Red "
                                     "metallic paint:flake_color, Polished floor:diffuse, "
                                     "Polished floor:diffuse_texture)\nok\n",
                                 classic, scratch.Path("again.rshdoc.json"), saved);
  ASSERT_EQ(reloaded.code, 0) << reloaded.err;
  EXPECT_EQ(reloaded.out, "3: floor.refl_color: connection (none) -> floor.tiles\nsaved " +
                              scratch.Path("again.rshdoc.json") + "\n");
}

// In the immersive editor the paint's colour slot has a texture to make and its own decal to
// share, so the press asks; choosing the decal shares it, and the saved paint keeps it shared.
TEST(RshviewConnections, TheSamplePaintSharesItsDecalThroughTheImmersiveDialog) {
  Scratch scratch;
  const std::string saved = scratch.Path("decal.rshdoc.json");
  const Outcome run = Drive(scratch, "red_paint",
                            "press ParameterConnection0\n"
                            "select connectionDialog/shaderSelector Checker decal (Red metallic "
                            "paint:default_slot_diffuse_texture)\nok\n",
                            false, saved);
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(
      run.out,
      "3: red_paint.default_slot_diffuse_color: connection (none) -> red_paint.decal\nsaved " +
          saved + "\n");
  const Tree sample = ReadTree(kShowroom);
  Tree tree = ReadTree(saved);
  EXPECT_NE(tree.at("red_paint").find(" default_slot_diffuse_color=red_paint.decal"),
            std::string::npos)
      << tree.at("red_paint");
  EXPECT_EQ(tree.at("red_paint.decal"), sample.at("red_paint.decal"));
  tree["red_paint"] = sample.at("red_paint");
  EXPECT_EQ(tree, sample);
}
