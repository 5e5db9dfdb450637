// Connecting, reusing, disconnecting and editing sub-shaders through `rshview drive`, in both
// editors, and what a saved document keeps of it.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>

#include "RshviewRun.h"

namespace {
namespace fs = std::filesystem;
using Json = nlohmann::json;

const std::string kSamples = RSHVIEW_TEST_SAMPLES;
const std::string kShowroom = kSamples + "/documents/showroom.rshdoc.json";

/// A scratch folder with its own preference file for the runs of one test.
class Scratch {
 public:
  Scratch() {
    std::string pattern = (fs::temp_directory_path() / "rshview-connectXXXXXX").string();
    root_ = mkdtemp(pattern.data());
    setenv("KEPRSH_PREFERENCES", Path("preferences.json").c_str(), 1);
  }
  ~Scratch() {
    unsetenv("KEPRSH_PREFERENCES");
    std::error_code ignored;
    fs::remove_all(root_, ignored);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  std::string Path(const std::string& name) const { return (root_ / name).string(); }
  std::string Write(const std::string& name, const std::string& text) const {
    std::ofstream(Path(name)) << text;
    return Path(name);
  }

 private:
  fs::path root_;
};

/// A node of a document as the connection tree sees it: the node whose subShaders list holds it
/// ("" for a material), its connections, and how often the file lists it.
struct TreeNode {
  std::string holder;
  std::map<std::string, std::string> connections;
  int listed = 0;
  bool operator==(const TreeNode&) const = default;
};
using Tree = std::map<std::string, TreeNode>;

void Collect(const Json& nodes, const std::string& holder, Tree& tree) {
  for (const Json& node : nodes) {
    TreeNode& entry = tree[node.at("id").get<std::string>()];
    entry.holder = holder;
    ++entry.listed;
    if (node.contains("connections"))
      for (const auto& [parameter, target] : node["connections"].items())
        entry.connections[parameter] = target.get<std::string>();
    if (node.contains("subShaders")) Collect(node["subShaders"], node["id"], tree);
  }
}

Tree ReadTree(const std::string& path) {
  std::ifstream in(path);
  Tree tree;
  Collect(Json::parse(in).at("materials"), "", tree);
  return tree;
}

std::string Describe(const Tree& tree) {
  std::string text;
  for (const auto& [id, node] : tree) {
    text += id + " in '" + node.holder + "' x" + std::to_string(node.listed) + ":";
    for (const auto& [parameter, target] : node.connections)
      text += " " + parameter + "->" + target;
    text += "\n";
  }
  return text;
}

/// Runs `script` on `node`'s editor (classic with `classic`), saving to `saved` when given.
Outcome Drive(const Scratch& scratch, const std::string& node, const std::string& script,
              bool classic, const std::string& saved = {}) {
  std::vector<std::string> args{"drive", "--node", node, scratch.Write("script.txt", script)};
  if (classic) args.insert(args.end(), {"--editor", "classic"});
  if (!saved.empty()) args.insert(args.end(), {"--save", saved});
  return Rshview(args);
}

}  // namespace

// The bundled sample shows a texture shared by two materials (the floor's tiles, also the car
// paint's flakes) and a nested one (the plaster drives the wall's bumps); a save keeps the tree:
// every node once, under the node that held it, with the same connections.
TEST(RshviewConnections, TheSampleKeepsItsSharedAndNestedSubShadersThroughASave) {
  Scratch scratch;
  const Tree sample = ReadTree(kShowroom);
  EXPECT_EQ(sample.at("red_paint").connections.at("flake_color"), "floor.tiles");
  EXPECT_EQ(sample.at("floor").connections.at("diffuse_texture"), "floor.tiles");
  EXPECT_EQ(sample.at("plaster_wall.bump").connections.at("bump_map"), "plaster_wall.plaster");

  const std::string saved = scratch.Path("kept.rshdoc.json");
  const Outcome run = Drive(scratch, "floor", "# nothing to do\n", false, saved);
  ASSERT_EQ(run.code, 0) << run.err;
  const Tree kept = ReadTree(saved);
  EXPECT_EQ(kept, sample) << Describe(kept);
  // And the reloaded document is the same again.
  const std::string again = scratch.Path("again.rshdoc.json");
  ASSERT_EQ(Rshview({"drive", "--doc", saved, "--node", "floor", scratch.Write("none.txt", ""),
                     "--save", again})
                .code,
            0);
  EXPECT_EQ(ReadTree(again), sample) << Describe(ReadTree(again));
}

// Disconnecting and editing a connected shader, in the editor that offers each: the lines printed
// and what the saved file keeps.
TEST(RshviewConnections, DisconnectAndEditAConnectedShaderInBothEditors) {
  struct Case {
    const char* name;
    bool classic;
    const char* script;
    const char* out;  ///< the lines printed before "saved ..."
  } cases[] = {
      {"immersive disconnect", false, "press ParameterConnection3\n",
       "1: floor.diffuse_texture: connection floor.tiles -> (none)\n"},
      {"classic disconnect", true, "press disconnectButton14\n",
       "1: floor.diffuse_texture: connection floor.tiles -> (none)\n"},
      {"classic disconnect from the menu", true, "press connectionMenu14/disconnectItem\n",
       "1: floor.diffuse_texture: connection floor.tiles -> (none)\n"},
      {"immersive edit in place", false,
       "expand ParameterConnectedShader3\n"
       "set ParameterConnectedShader3/ConnectedShaderEditor/ParameterWidget2/scalarSlider 50\n",
       "2: floor.tiles.gamma: 1.8 -> 0.5\n"},
      {"classic edit, then back", true,
       "press connectionMenu14/editItem\n"
       "set parameterDialog3/scalarSlider 50\n"
       "press parentButton\n"
       "press disconnectButton14\n",
       "2: floor.tiles.gamma: 1.8 -> 5.0\n"
       "4: floor.diffuse_texture: connection floor.tiles -> (none)\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Scratch scratch;
    const std::string saved = scratch.Path("saved.rshdoc.json");
    const Outcome run = Drive(scratch, "floor", c.script, c.classic, saved);
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.out, std::string(c.out) + "saved " + saved + "\n");
    const Tree tree = ReadTree(saved);
    // A disconnected node stays in the document, where it was, still shared with the paint.
    EXPECT_EQ(tree.at("floor.tiles").holder, "floor");
    EXPECT_EQ(tree.at("red_paint").connections.at("flake_color"), "floor.tiles");
    EXPECT_EQ(tree.at("floor").connections.count("diffuse_texture"),
              std::string(c.out).find("connection") == std::string::npos ? 1u : 0u);
  }
}

// Connecting through the press and the connection dialog on the sample's floor: its bump takes a
// texture or a bump (the dialog offers both, new), its reflection colour a texture only (made and
// connected at once). Both editors print the same lines and save the same tree.
TEST(RshviewConnections, ConnectNewNodesOrCancelInBothEditors) {
  struct Case {
    const char* name;
    bool classic;
    const char* script;
    const char* out;
    const char* parameter;  ///< floor's parameter that ends connected to `node`, or ""
    const char* node;
  } cases[] = {
      {"immersive: a new bump through the dialog", false,
       "press ParameterConnection4\n"
       "select connectionDialog/shaderSelector Bump (new)\n"
       "ok\n",
       "3: new node kep_phen_bump.1 (kep_phen_bump)\n"
       "3: floor.bump: connection (none) -> kep_phen_bump.1\n",
       "bump", "kep_phen_bump.1"},
      {"classic: a new bump through the dialog", true,
       "press parameterButton13\n"
       "select connectionDialog/shaderSelector 1\n"
       "ok connectionDialog\n",
       "3: new node kep_phen_bump.1 (kep_phen_bump)\n"
       "3: floor.bump: connection (none) -> kep_phen_bump.1\n",
       "bump", "kep_phen_bump.1"},
      {"immersive: one type and nothing to reuse connects at once", false,
       "press ParameterConnection6\n",
       "1: new node kep_phen_texture.1 (kep_phen_texture)\n"
       "1: floor.refl_color: connection (none) -> kep_phen_texture.1\n",
       "refl_color", "kep_phen_texture.1"},
      {"immersive: cancel", false, "press ParameterConnection4\ncancel\n", "", "", ""},
      {"classic: the close box", true, "press connectionMenu13/connectItem\nclose\n", "", "", ""},
  };
  const Tree sample = ReadTree(kShowroom);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Scratch scratch;
    const std::string saved = scratch.Path("saved.rshdoc.json");
    const Outcome run = Drive(scratch, "floor", c.script, c.classic, saved);
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.out, std::string(c.out) + "saved " + saved + "\n");
    Tree expected = sample;
    if (*c.node) {
      // A node made for the floor is saved among the floor's sub-shaders.
      expected["floor"].connections[c.parameter] = c.node;
      expected[c.node] = TreeNode{"floor", {}, 1};
    }
    const Tree tree = ReadTree(saved);
    EXPECT_EQ(tree, expected) << Describe(tree);
  }
}

// The JSON form tells connections and created nodes apart from value writes.
TEST(RshviewConnections, TheJsonFormListsConnectionsAndCreatedNodes) {
  Scratch scratch;
  const std::string script = scratch.Write("json.txt",
                                           "press ParameterConnection6\n"
                                           "expand ParameterConnectedShader6\n"
                                           "set ParameterConnectedShader6/ConnectedShaderEditor/"
                                           "ParameterWidget2/scalarSlider 50\n"
                                           "press ParameterConnection6\n");
  const Outcome run = Rshview({"drive", "--node", "floor", script, "--format", "json"});
  ASSERT_EQ(run.code, 0) << run.err;
  const Json events = Json::parse(run.out)["events"];
  ASSERT_EQ(events.size(), 4u);
  EXPECT_EQ(events[0]["created"], Json::parse(R"([{"id": "kep_phen_texture.1",
      "type": "kep_phen_texture", "alias": "kep_phen_texture.1"}])"));
  EXPECT_EQ(events[0]["connections"], Json::parse(R"([{"node": "floor", "parameter": "refl_color",
      "old": null, "new": "kep_phen_texture.1"}])"));
  EXPECT_TRUE(events[0]["writes"].empty());
  // The new node's own parameters write like any other, with their default as the old value.
  EXPECT_EQ(events[2]["writes"], Json::parse(R"([{"node": "kep_phen_texture.1",
      "parameter": "gamma", "old": 1.0, "new": 0.5}])"));
  EXPECT_EQ(events[3]["connections"][0]["old"], "kep_phen_texture.1");
  EXPECT_EQ(events[3]["connections"][0]["new"], nullptr);
}

// An event the dialog refuses stops the script with the line, and nothing is saved.
TEST(RshviewConnections, RefusedDialogEventsNameWhatIsThere) {
  struct Case {
    const char* name;
    bool classic;
    const char* script;
    const char* error;
  } cases[] = {
      {"a line that is not there", false,
       "press ParameterConnection4\n"
       "select connectionDialog/shaderSelector Plaster (new)\n",
       ":2: connectionDialog/shaderSelector: KEPDlgSelectorList \"shaderSelector\": no line "
       "reads \"Plaster (new)\" (lines: \"Image texture (new)\", \"Bump (new)\")"},
      {"ok with no dialog open", true, "ok\n",
       ":1: 'ok' without a path needs an open dialog, and none is open"},
      {"ok once the dialog is done", false,
       "press ParameterConnection4\ncancel\nok connectionDialog\n", ":3: connectionDialog: "},
      {"a line of a closed dialog", true,
       "press parameterButton13\nclose\nselect connectionDialog/shaderSelector 0\n",
       "cannot be reached by a person"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Scratch scratch;
    const std::string saved = scratch.Path("never.rshdoc.json");
    const Outcome run = Drive(scratch, "floor", c.script, c.classic, saved);
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.err.find(c.error), std::string::npos) << run.err;
    EXPECT_FALSE(fs::exists(saved));
  }
}

// Reusing a node of another material. The library's colour maps answer the colour parameters'
// own type, which is what the connection dialog compares to offer a node again; the door's mix
// reads the wall, so connecting it to a wall's parameter would close a cycle.
class RshviewReuse : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(scratch_.Path("lib"));
    scratch_.Write("lib/library.json", R"({
  "shaderTypes": {
    "mia_phen_material": {"label": "Material", "parameters": [
      {"name": "diffuse", "type": "KEPRmaColor", "default": [0.5, 0.5, 0.5, 1.0]},
      {"name": "refl_color", "type": "KEPRmaColor", "default": [1.0, 1.0, 1.0, 1.0]}]},
    "KEPRmaColor": {"label": "Colour map", "parameters": [
      {"name": "input", "type": "KEPRmaColor", "default": [0.0, 0.0, 0.0, 1.0]},
      {"name": "gain", "type": "KEPRmaScalar", "default": 1.0}]}
  },
  "connectable": {"KEPRmaColor": [{"type": "KEPRmaColor", "label": "Colour map"}]}
})");
    document_ = scratch_.Write("rooms.rshdoc.json", R"({
  "library": "lib",
  "materials": [
    {"id": "wall", "type": "mia_phen_material", "alias": "Wall",
     "connections": {"diffuse": "map"},
     "subShaders": [{"id": "map", "type": "KEPRmaColor", "alias": "Map"}]},
    {"id": "door", "type": "mia_phen_material", "alias": "Door",
     "connections": {"diffuse": "mix"},
     "subShaders": [{"id": "mix", "type": "KEPRmaColor", "alias": "Mix",
                     "connections": {"input": "wall"}}]}
  ]
})");
  }

  Outcome Drive(const std::string& node, const std::string& script, bool classic,
                const std::string& saved = {}) {
    std::vector<std::string> args{"drive",  "--doc", document_,
                                  "--node", node,    scratch_.Write("script.txt", script)};
    if (classic) args.insert(args.end(), {"--editor", "classic"});
    if (!saved.empty()) args.insert(args.end(), {"--save", saved});
    return Rshview(args);
  }

  Scratch scratch_;
  std::string document_;
};

TEST_F(RshviewReuse, ASharedNodeIsConnectedOnceAndSavedOnce) {
  for (const bool classic : {false, true}) {
    SCOPED_TRACE(classic ? "classic" : "immersive");
    const std::string saved = scratch_.Path(classic ? "classic.rshdoc.json" : "imm.rshdoc.json");
    const Outcome run =
        Drive("door",
              std::string(classic ? "press parameterButton2\n" : "press ParameterConnection1\n") +
                  "select connectionDialog/shaderSelector Map (Wall:diffuse)\n"
                  "ok\n",
              classic, saved);
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.out, "3: door.refl_color: connection (none) -> map\nsaved " + saved + "\n");
    Tree expected = ReadTree(document_);
    expected["door"].connections["refl_color"] = "map";
    const Tree tree = ReadTree(saved);
    EXPECT_EQ(tree, expected) << Describe(tree);
  }
}

TEST_F(RshviewReuse, ANodeThatWouldCloseACycleIsNeverOffered) {
  // From the door every other colour map is offered; from the wall the mix is not, since the mix
  // reads the wall.
  const Outcome door = Drive("door",
                             "press ParameterConnection1\n"
                             "select connectionDialog/shaderSelector nothing\n",
                             false);
  EXPECT_NE(door.err.find("(lines: \"Colour map (new)\", \"Map (Wall:diffuse)\", \"Mix "
                          "(Door:diffuse)\")"),
            std::string::npos)
      << door.err;
  for (const bool classic : {false, true}) {
    SCOPED_TRACE(classic ? "classic" : "immersive");
    const Outcome wall =
        Drive("wall",
              std::string(classic ? "press parameterButton2\n" : "press ParameterConnection1\n") +
                  "select connectionDialog/shaderSelector Mix (Door:diffuse)\n",
              classic);
    EXPECT_EQ(wall.code, 1);
    EXPECT_NE(wall.err.find(":2: connectionDialog/shaderSelector: KEPDlgSelectorList "
                            "\"shaderSelector\": no line reads \"Mix (Door:diffuse)\" (lines: "
                            "\"Colour map (new)\", \"Map (Wall:diffuse)\")"),
              std::string::npos)
        << wall.err;
  }
}
