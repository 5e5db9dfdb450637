// `rshview lint` on the bundled sample and on broken libraries built for the test, its exit
// codes, and how `rshview params` marks the parameters that the warnings concern.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "RshviewRun.h"

namespace {
namespace fs = std::filesystem;
using Json = nlohmann::json;

/// A library (and document) written for one test in a temporary folder, removed when done.
class Library {
 public:
  Library() {
    std::string pattern = (fs::temp_directory_path() / "rshview-lintXXXXXX").string();
    root_ = mkdtemp(pattern.data());
    // Type "t" reads configuration "t", whose parent is "base".
    Write("library.json",
          "{\"shaderTypes\": {\"t\": {\"parameters\": [\n"
          "  {\"name\": \"x\", \"type\": \"KEPRmaScalar\"},\n"
          "  {\"name\": \"y\", \"type\": \"KEPRmaScalar\"},\n"
          "  {\"name\": \"z\", \"type\": \"KEPRmaScalar\"}]}}}\n");
    Write("room.rshdoc.json",
          "{\"library\": \".\", \"materials\": [{\"id\": \"m\", \"type\": \"t\"}]}");
  }
  ~Library() {
    std::error_code ignored;
    fs::remove_all(root_, ignored);
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  void Write(const std::string& relative, const std::string& text) const {
    fs::create_directories((root_ / relative).parent_path());
    std::ofstream(root_ / relative, std::ios::binary) << text;
  }
  std::string Path(const std::string& relative = "") const {
    return relative.empty() ? root_.string() : (root_ / relative).string();
  }

 private:
  fs::path root_;
};

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  for (std::size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1)
    lines.push_back(text.substr(start, end - start));
  return lines;
}

// The sample's one warning is a choice: textures can be made new in a slot but, yielding colours,
// are not offered there for sharing.
TEST(RshviewLint, BundledSampleWarnsOnlyAboutTexturesInSlots) {
  const std::string textureInSlot =
      "warning: key 'connectable.KEPRmaVoid': shader type 'kep_phen_texture' yields KEPRmaColor, "
      "which a KEPRmaVoid parameter does not take: its nodes are made new here, never reused; a "
      "KEPRmaVoid parameter reuses nodes that yield KEPRmaVoid, KEPRmaVector or \"\"";
  const Outcome run = Rshview({"lint"});
  EXPECT_EQ(run.code, 0) << run.err;
  EXPECT_TRUE(run.err.empty()) << run.err;
  const auto lines = Lines(run.out);
  ASSERT_EQ(lines.size(), 2u) << run.out;
  EXPECT_NE(lines[0].find("library.json:"), std::string::npos) << lines[0];
  EXPECT_NE(lines[0].find(textureInSlot), std::string::npos) << lines[0];
  EXPECT_NE(lines[1].find("library: no errors, 1 warning in library.json, "), std::string::npos)
      << lines[1];

  const Outcome withDocument = Rshview(
      {"lint", "--doc", std::string(RSHVIEW_TEST_SAMPLES) + "/documents/showroom.rshdoc.json"});
  EXPECT_EQ(withDocument.code, 0) << withDocument.out;
  EXPECT_NE(withDocument.out.find("no errors, 1 warning in library.json, "), std::string::npos);
  EXPECT_NE(withDocument.out.find(" and showroom.rshdoc.json\n"), std::string::npos)
      << withDocument.out;

  const Json json = Json::parse(Rshview({"lint", "--format", "json"}).out);
  EXPECT_EQ(json["errors"], Json::array());
  ASSERT_EQ(json["warnings"].size(), 1u);
  EXPECT_EQ(json["warnings"][0]["shaderType"], "kep_phen_texture");
  EXPECT_EQ(json["summary"], (Json{{"errors", 0}, {"warnings", 1}}));
  EXPECT_TRUE(json["document"].is_null());
}

// Each type listed under "connectable" is checked against the dialog's rule for offering a node:
// no output, or one the parameter type does not take, is a warning on the listing's line.
TEST(RshviewLint, ConnectableTypesWhoseNodesAreNeverOfferedAreWarnedAbout) {
  Library library;
  library.Write("library.json",
                "{\"shaderTypes\": {\n"
                "\"map\": {\"output\": \"KEPRmaColor\", \"parameters\": []},\n"
                "\"bump\": {\"output\": \"KEPRmaVector\", \"parameters\": []},\n"
                "\"any\": {\"output\": \"\", \"parameters\": []},\n"
                "\"plain\": {\"parameters\": []}},\n"
                "\"connectable\": {\n"
                "\"KEPRmaColor\": [{\"type\": \"map\"}, {\"type\": \"any\"},\n"
                "                {\"type\": \"bump\"}],\n"
                "\"KEPRmaVoid\": [{\"type\": \"bump\"}, {\"type\": \"any\"},\n"
                "               {\"type\": \"plain\"}]}}\n");
  const Outcome run = Rshview({"lint", "--library", library.Path()});
  EXPECT_EQ(run.code, 0) << run.out;
  const std::string file = library.Path("library.json");
  EXPECT_EQ(
      Lines(run.out),
      (std::vector<std::string>{
          file + ":8: warning: key 'connectable.KEPRmaColor': shader type 'bump' yields "
                 "KEPRmaVector, which a KEPRmaColor parameter does not take: its nodes are "
                 "made new here, never reused; a KEPRmaColor parameter reuses nodes that "
                 "yield KEPRmaColor or \"\"",
          file + ":10: warning: key 'connectable.KEPRmaVoid': shader type 'plain' declares "
                 "no output: its nodes are never offered for reuse; add \"output\": "
                 "\"KEPRmaVoid\" to shaderTypes.plain (\"\" fits any parameter)",
          library.Path() + ": no errors, 2 warnings in library.json, no configuration files"}));
}

TEST(RshviewLint, WarningsAloneExitWithZero) {
  Library library;
  library.Write("config/t.cfg", "@parent = base\nGroupCount = +2\nx.Min = 0 (black)\n");
  library.Write("config/base.cfg", "y.Step =\n");
  const Outcome run = Rshview({"lint", "--library", library.Path()});
  EXPECT_EQ(run.code, 0) << run.out;
  EXPECT_EQ(
      Lines(run.out),
      (std::vector<std::string>{
          library.Path("config/base.cfg") +
              ":1: warning: key 'y.Step': empty value; not read as a number: the editors "
              "keep their default step",
          library.Path("config/t.cfg") +
              ":2: warning: key 'GroupCount': sign before the number in '+2'; read as 2",
          library.Path("config/t.cfg") +
              ":3: warning: key 'x.Min': text after the number in '0 (black)'; read as 0, "
              "'(black)' is ignored",
          library.Path() + ": no errors, 3 warnings in library.json, 2 configuration files"}));

  const Outcome json = Rshview({"lint", "--library=" + library.Path(), "--format=json"});
  EXPECT_EQ(json.code, 0);
  const Json output = Json::parse(json.out);
  ASSERT_EQ(output["warnings"].size(), 3u);
  EXPECT_EQ(output["warnings"][2], (Json{{"file", library.Path("config/t.cfg")},
                                         {"line", 3},
                                         {"key", "x.Min"},
                                         {"message", "text after the number in '0 (black)'"},
                                         {"hint", "read as 0, '(black)' is ignored"},
                                         {"configuration", "t"},
                                         {"shaderType", nullptr},
                                         {"parameter", "x"}}));
  EXPECT_EQ(output["files"].size(), 3u);
  EXPECT_EQ(output["summary"]["warnings"], 3);
}

// Errors of every file are listed together with the warnings, in file and line order, and the
// exit code is 1.
TEST(RshviewLint, ErrorsExitWithOne) {
  Library library;
  library.Write("config/t.cfg", "x.Max = 1 (white)\nx.Min 0\nx.Max = 2\n@parent = nowhere\n");
  const Outcome run = Rshview({"lint", "--library", library.Path()});
  EXPECT_EQ(run.code, 1);
  const std::string file = library.Path("config/t.cfg");
  EXPECT_EQ(Lines(run.out),
            (std::vector<std::string>{
                file + ":1: warning: key 'x.Max': text after the number in '1 (white)'; read as "
                       "1, '(white)' is ignored",
                file + ":2: error: expected 'Key = Value', '@parent = id' or '# comment'",
                file + ":3: error: key 'x.Max': repeated key (first at line 1)",
                file + ":4: error: key '@parent': parent configuration 'nowhere' does not "
                       "exist (no nowhere.cfg)",
                library.Path() + ": 3 errors, 1 warning in library.json, 1 configuration file"}));
  EXPECT_TRUE(run.err.empty()) << "lint's findings are its output: " << run.err;

  // A library.json that does not load: its error is listed, and the document is not checked.
  library.Write("library.json", "{\"shaderTypes\": {\"t\": {\"parameters\": [],\n\"colour\": 1}}}");
  const Outcome both =
      Rshview({"lint", "--doc", library.Path("room.rshdoc.json"), "--format", "json"});
  EXPECT_EQ(both.code, 1);
  const Json json = Json::parse(both.out);
  EXPECT_TRUE(fs::equivalent(json["library"].get<std::string>(), library.Path()))
      << "the library comes from the document: " << json["library"];
  EXPECT_EQ(json["summary"], (Json{{"errors", 5}, {"warnings", 1}}));
  EXPECT_EQ(json["errors"][0]["key"], "colour");
  EXPECT_EQ(json["errors"][0]["line"], 2);
  EXPECT_EQ(json["errors"][4]["file"], library.Path("room.rshdoc.json"));
  EXPECT_EQ(json["errors"][4]["message"], "not checked: the library has errors");
  EXPECT_TRUE(json["errors"][4]["line"].is_null());

  const Outcome missing = Rshview({"lint", "--library", "/no/such/library"});
  EXPECT_EQ(missing.code, 1);
  EXPECT_EQ(missing.out,
            "/no/such/library: error: library directory does not exist\n"
            "/no/such/library: 1 error, no warnings in library.json, no configuration files\n");
}

TEST(RshviewLint, DocumentErrorsAndCommandLine) {
  Library library;
  library.Write("room.rshdoc.json",
                "{\"library\": \".\", \"materials\": [\n{\"id\": \"m\", \"type\": \"u\"}]}");
  const Outcome run = Rshview({"lint", "--doc", library.Path("room.rshdoc.json")});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.out.find(library.Path("room.rshdoc.json") +
                         ":2: error: key 'type': unknown shader type 'u'\n"),
            std::string::npos)
      << run.out;

  const Outcome help = Rshview({"lint", "--help"});
  EXPECT_EQ(help.code, 0);
  EXPECT_NE(help.out.find("Usage: rshview lint [--library DIR]"), std::string::npos);
  EXPECT_NE(Rshview({"--help"}).out.find("  lint "), std::string::npos);
  struct Case {
    std::vector<std::string> args;
    const char* message;
  };
  const Case cases[] = {
      {{"lint", "extra"}, "rshview lint: unexpected argument 'extra'"},
      {{"lint", "--node", "m"}, "rshview lint: --node does not apply to lint"},
  };
  for (const Case& c : cases) {
    const Outcome usage = Rshview(c.args);
    EXPECT_EQ(usage.code, 2);
    EXPECT_NE(usage.err.find(c.message), std::string::npos) << usage.err;
  }
}

// A warning concerns a parameter of a node when the node's configuration reads the key from
// the file that holds it: its own configuration, or a parent's that nothing nearer overrides.
TEST(RshviewParams, MarksTheParametersThatWarningsConcern) {
  Library library;
  library.Write("config/t.cfg", "@parent = base\nx.Min = 0 (black)\nz.Max = 1\nGroupCount = +2\n");
  library.Write("config/base.cfg", "y.Max = 1 (white)\nz.Max = 2 (overridden)\n");
  const std::vector<std::string> args = {"params", "--doc", library.Path("room.rshdoc.json")};
  const Outcome text = Rshview(args);
  ASSERT_EQ(text.code, 0) << text.err;
  EXPECT_EQ(text.err.rfind("rshview: " + library.Path(), 0), 0u) << text.err;
  EXPECT_NE(text.err.find(": 4 warnings (run 'rshview lint' to list them)\n"), std::string::npos)
      << text.err;
  EXPECT_NE(text.out.find("\n  x !  "), std::string::npos) << text.out;
  EXPECT_NE(text.out.find("\n  y !  "), std::string::npos) << text.out;
  EXPECT_NE(text.out.find("\n  z    "), std::string::npos) << text.out;
  EXPECT_NE(text.out.find("\n  warning: " + library.Path("config/t.cfg") +
                          ":4: key 'GroupCount': sign before the number in '+2'; read as 2\n"),
            std::string::npos)
      << "the node's own keys follow its line: " << text.out;
  EXPECT_NE(text.out.find("\nx  (KEPRmaScalar)\n"), std::string::npos);
  EXPECT_NE(text.out.find("  warning: " + library.Path("config/t.cfg") +
                          ":2: key 'x.Min': text after the number in '0 (black)'; read as 0, "
                          "'(black)' is ignored\n"),
            std::string::npos)
      << text.out;

  std::vector<std::string> jsonArgs = args;
  jsonArgs.insert(jsonArgs.end(), {"--format", "json"});
  const Json json = Json::parse(Rshview(jsonArgs).out);
  EXPECT_EQ(json["warnings"].size(), 1u);
  const Json& parameters = json["parameters"];
  ASSERT_EQ(parameters.size(), 3u);
  EXPECT_EQ(parameters[0]["warnings"].size(), 1u);
  EXPECT_EQ(parameters[1]["warnings"],
            Json::array({library.Path("config/base.cfg") +
                         ":1: key 'y.Max': text after the number in '1 (white)'; read as 1, "
                         "'(white)' is ignored"}));
  EXPECT_TRUE(parameters[2]["warnings"].is_null()) << "z reads its own z.Max, not the parent's";

  // The sample has no warnings: nothing is marked, nothing is said.
  const Outcome sample = Rshview({"params", "--format", "json"});
  EXPECT_TRUE(sample.err.empty()) << sample.err;
  const Json sampleJson = Json::parse(sample.out);
  for (const Json& parameter : sampleJson["parameters"])
    EXPECT_TRUE(parameter["warnings"].is_null()) << parameter["name"];
}
}  // namespace
