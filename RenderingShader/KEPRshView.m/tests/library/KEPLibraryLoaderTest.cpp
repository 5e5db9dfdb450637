// Loading the configuration directory, the shader library and documents: the bundled sample loads
// cleanly, every kind of bad input is refused with "file:line: key 'k': message", and a saved
// document reads back the same.
#include <unistd.h>
#include <filesystem>
#include <fstream>

#include "KEPConfigurationLoader.h"
#include "KEPFileText.h"
#include "KEPHostConfiguration.h"
#include "KEPHostValueJson.h"
#include "KEPJsonReader.h"
#include "KEPShaderDocumentLoader.h"
#include "KEPShaderDocumentWriter.h"
#include "KEPShaderLibraryLoader.h"
#include "KEPTestSupport.h"
#include "LibraryTestSupport.h"

namespace {
namespace fs = std::filesystem;

std::string DataPath(const std::string& name) {
  return keptest::SourcePath("RenderingShader/KEPRshView.m/tests/library/data/" + name);
}

using keptest::ScratchDir;

bool HasError(const KEPLoadResult& result, const std::string& fragment) {
  for (const std::string& error : result.Errors())
    if (error.find(fragment) != std::string::npos) return true;
  return false;
}

std::shared_ptr<KEPHostShaderLibrary> SampleLibrary() {
  auto library = std::make_shared<KEPHostShaderLibrary>();
  const KEPLoadResult result =
      KEPShaderLibraryLoader::Load(keptest::SourcePath("samples/library"), *library);
  EXPECT_TRUE(result.Ok()) << result.Text();
  return library;
}

class LibraryLoader : public keptest::Fixture {};

TEST_F(LibraryLoader, BundledSampleLoadsWithoutErrors) {
  const KEPLoadResult config =
      KEPConfigurationLoader::LoadDirectory(keptest::SourcePath("samples/library/config"));
  ASSERT_TRUE(config.Ok()) << config.Text();
  auto library = SampleLibrary();
  KEP_var<KEPHostShaderDocument> document;
  const std::string docPath = keptest::SourcePath("samples/documents/showroom.rshdoc.json");
  std::string libraryDir;
  ASSERT_TRUE(KEPShaderDocumentLoader::ReadLibraryPath(docPath, libraryDir).Ok());
  EXPECT_EQ(fs::path(libraryDir),
            fs::path(keptest::SourcePath("samples/library")).lexically_normal());
  const KEPLoadResult loaded = KEPShaderDocumentLoader::Load(docPath, library, document);
  ASSERT_TRUE(loaded.Ok()) << loaded.Text();

  // Hierarchical configuration: "_uv_angle.Unit" comes from the parent configuration.
  KEPString unit;
  EXPECT_EQ(KEPRbaConfiguration::GetHierarchicalValue("mia_phen_material", "_uv_angle.Unit", unit),
            S_OK);
  EXPECT_EQ(unit, "deg");
  // Resources make the frosted glass nodes offer KEPIRshShaderResources.
  EXPECT_TRUE(library->FindType("mia_phen_frosted_glass")->hasResources);
  EXPECT_FALSE(library->FindType("MPM_car_paint")->hasResources);

  EXPECT_EQ(document->materials, (std::vector<std::string>{"red_paint", "floor", "plaster_wall",
                                                           "window", "key_light"}));
  // Only the texture shaders carry the late type under which they answer the viewer.
  EXPECT_TRUE(library->FindType("kep_phen_texture")->isTexture);
  EXPECT_FALSE(library->FindType("kep_phen_bump")->isTexture);
  // Textures yield colours and bumps vectors, so either can be shared where it fits.
  EXPECT_EQ(library->FindType("kep_phen_texture")->output, "KEPRmaColor");
  EXPECT_EQ(library->FindType("kep_phen_bump")->output, "KEPRmaVector");
  KEPHostShaderNode* paint = document->FindNode("red_paint");
  ASSERT_NE(paint, nullptr);
  KEPUnicodeString alias;
  paint->GetAlias(alias);
  EXPECT_EQ(alias.ToUTF8(), "Red metallic paint");
  KEP_var<KEPIRshParameter> slot;
  ASSERT_EQ(paint->GetParameter("default_slot_diffuse_texture", *slot.Out()), S_OK);
  KEP_var<KEPIRshShader> decal;
  ASSERT_EQ(slot->GetConnectedShader(*decal.Out()), S_OK);
  KEPString decalId;
  decal->GetId(decalId);
  EXPECT_EQ(decalId, "red_paint.decal");
  // The texture image is resolved against the document's directory.
  KEP_var<KEPIRshParameter> texture;
  ASSERT_EQ(decal->GetParameter("texture", *texture.Out()), S_OK);
  KEP_var<KEPIPLMDmtDocument> image;
  ASSERT_EQ(texture->GetTextureValue(*image.Out()), S_OK);
  KEPUnicodeString imagePath;
  image->GetImagePath(imagePath);
  EXPECT_EQ(
      fs::path(imagePath.ToUTF8()),
      fs::path(keptest::SourcePath("samples/startup/textures/checker.png")).lexically_normal());
  double dpi = 0;
  EXPECT_EQ(image->GetDpi(dpi), S_OK);
  EXPECT_EQ(dpi, 150.0);
}

TEST_F(LibraryLoader, ConfigurationFaultsNameFileLineAndKey) {
  const std::string file = DataPath("bad_config/config/broken.cfg");
  const KEPLoadResult result = KEPConfigurationLoader::LoadDirectory(DataPath("bad_config/config"));
  ASSERT_FALSE(result.Ok());
  EXPECT_TRUE(HasError(result, file + ":3: expected 'Key = Value'")) << result.Text();
  EXPECT_TRUE(HasError(result, file + ":4: key 'roughness.Min': repeated key (first at line 2)"))
      << result.Text();
  EXPECT_TRUE(HasError(result, file + ":7: key '@include': unknown directive")) << result.Text();
  EXPECT_EQ(result.ErrorIssues().size(), 3u) << result.Text();
  // Values that read differently from how they look are warnings, listed beside the errors.
  EXPECT_EQ(result.Warnings(),
            (std::vector<std::string>{
                file + ":5: key 'roughness.Step': 'nan' is not a finite number; read as nan",
                file + ":6: key 'GroupCount': more than 1000 groups; read as 99999999999: the "
                       "editor makes a record for each group"}));
  // Nothing of a faulty directory reaches the store.
  EXPECT_FALSE(KEPHostConfiguration::HasConfiguration("broken"));
}

// The loaders refuse what the string codec would turn into U+FFFD, on the line of the first
// fault; the configuration file shows it, the JSON files share the check.
TEST_F(LibraryLoader, InvalidUTF8IsRefusedOnItsLine) {
  struct Case {
    const char* text;
    int line;  // 0: valid
  };
  const Case cases[] = {
      {"x.Label = caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x8E\xA8\n", 0},
      {"x.Min = 0\nx.Label = \xE0\x80\xAF\n", 2},  // overlong "/"
      {"a = 1\nb = 2\nc = \xED\xA0\x80\n", 3},     // an encoded surrogate
      {"x.Label = \xF4\x90\x80\x80\n", 1},         // above U+10FFFF
      {"x.Min = 0\n\nx.Label = caf\xC3", 3},       // truncated at the end
  };
  for (const Case& c : cases) {
    int line = -1;
    EXPECT_EQ(KEPFileText::IsValidUTF8(c.text, line), c.line == 0) << c.text;
    ScratchDir dir;
    const std::string file = dir.Write("config/t.cfg", c.text);
    const KEPLoadResult result = KEPConfigurationLoader::LoadDirectory(dir.Path() + "/config");
    if (c.line == 0)
      EXPECT_TRUE(result.Ok()) << result.Text();
    else
      EXPECT_TRUE(HasError(result, file + ":" + std::to_string(c.line) + ": invalid UTF-8"))
          << result.Text();
  }
}

TEST_F(LibraryLoader, ConfigurationParentsMustExistAndNotLoop) {
  const KEPLoadResult cycle =
      KEPConfigurationLoader::LoadDirectory(DataPath("config_cycle/config"));
  EXPECT_TRUE(HasError(cycle, "a.cfg:1: key '@parent': parent cycle: a -> b -> a")) << cycle.Text();
  EXPECT_FALSE(KEPHostConfiguration::HasConfiguration("a"));

  ScratchDir dir;
  dir.Write("config/child.cfg", "# comment\n\n@parent = nowhere\nx.Widget = slider\n");
  const KEPLoadResult missing = KEPConfigurationLoader::LoadDirectory(dir.Path() + "/config");
  EXPECT_TRUE(HasError(missing,
                       "child.cfg:3: key '@parent': parent configuration 'nowhere' does "
                       "not exist"))
      << missing.Text();

  dir.Write("config/nowhere.cfg", "x.Min = -1\n");
  ASSERT_TRUE(KEPConfigurationLoader::LoadDirectory(dir.Path() + "/config").Ok());
  KEPString value;
  EXPECT_EQ(KEPRbaConfiguration::GetHierarchicalValue("child", "x.Min", value), S_OK);
  EXPECT_EQ(value, "-1");

  const KEPLoadResult absent = KEPConfigurationLoader::LoadDirectory(dir.Path() + "/nothing");
  EXPECT_TRUE(HasError(absent, "configuration directory does not exist"));
}

TEST_F(LibraryLoader, EveryFileOfALongParentCycleIsNamedOnce) {
  // c0 -> c1 -> ... -> c11 -> c0, and a chain "tail" of 500 files leading into it: only the
  // cycle's files are in error, each once, with the cycle shortened in the middle.
  ScratchDir dir;
  constexpr int kCycle = 12;
  for (int i = 0; i < kCycle; ++i)
    dir.Write("config/c" + std::to_string(i) + ".cfg",
              "@parent = c" + std::to_string((i + 1) % kCycle) + "\n");
  for (int i = 0; i < 500; ++i)
    dir.Write(
        "config/tail" + std::to_string(i) + ".cfg",
        "@parent = " + (i == 499 ? std::string("c0") : "tail" + std::to_string(i + 1)) + "\n");
  const KEPLoadResult result = KEPConfigurationLoader::LoadDirectory(dir.Path() + "/config");
  EXPECT_EQ(result.Errors().size(), static_cast<std::size_t>(kCycle)) << result.Text();
  EXPECT_TRUE(HasError(result,
                       "c3.cfg:1: key '@parent': parent cycle: c3 -> c4 -> c5 -> c6 -> "
                       "... (4 more) -> c11 -> c0 -> c1 -> c2 -> c3"))
      << result.Text();
  EXPECT_FALSE(HasError(result, "tail")) << result.Text();
}

TEST_F(LibraryLoader, LibraryFaultsNameFileLineAndKey) {
  const KEPLoadResult bad = [] {
    KEPHostShaderLibrary library;
    return KEPShaderLibraryLoader::Load(DataPath("bad_library"), library);
  }();
  EXPECT_TRUE(HasError(bad, "library.json:6: key 'type': unknown parameter type 'KEPRmaColour'"))
      << bad.Text();

  struct Case {
    const char* json;
    const char* expected;
  };
  const Case cases[] = {
      {"{\"shaderTypes\": {\n\"a\": {\"parameters\": []},\n\"a\": {\"parameters\": []}}}",
       ":3: key 'a': repeated key"},
      {"{\"shaderTypes\": {\"a\": {\"parameters\": [\n{\"name\": \"x\", \"type\": \"KEPRmaScalar\","
       " \"default\": 1e999}]}}}",
       ":2: key 'default': number out of range"},
      {"{\"shaderTypes\": {\"a\": {\"parameters\": [\n{\"name\": \"x\", \"type\": \"KEPRmaColor\","
       " \"default\": [1, 2]}]}}}",
       ":2: key 'default': parameter 'x' of type KEPRmaColor: expected a colour"},
      {"{\"shaderTypes\": {\"a\": {\"parameters\": [\n{\"name\": \"x\", \"type\": \"KEPRmaScalar\","
       " \"default\": 1e300}]}}}",
       "expected a finite number within the single-precision range"},
      {"{\"shaderTypes\": {\"a\": {\"parameters\": [\n{\"name\": \"x\", \"type\": "
       "\"KEPRmaScalar\"},"
       "\n{\"name\": \"x\", \"type\": \"KEPRmaBoolean\"}]}}}",
       ":3: key 'name': repeated parameter name 'x'"},
      {"{\"shaderTypes\": {\"a\": {\"parameters\": []}},\n\"connectable\": {\"KEPRmaVoid\": "
       "[{\"type\": \"ghost\"}]}}",
       ":2: key 'type': unknown shader type 'ghost'"},
      {"{\"shaderTypes\": {\"a\": {\"parameters\": [],\n \"colour\": 1}}}",
       ":2: key 'colour': unknown key in shader type 'a'"},
      {"{\"shaderTypes\": {\"a\": {\"parameters\": [],\n \"kind\": \"bump\"}}}",
       ":2: key 'kind': 'bump' is not a shader kind (expected material or texture)"},
      {"{\"shaderTypes\": {\"a\": {\"parameters\": [\n{\"name\": \"x\", \"type\": \"KEPRmaScalar\","
       " \"resources\": {\"min\": 0}}]}}}",
       ":2: key 'min': expected a string, found number"},
      {"{\"shaderTypes\": {\"a\": {\"parameters\": [\n{\"name\": \"x\" \"type\": 1}]}}}",
       ":2: key 'name': expected ',' or '}'"},
      {"{\"shaderTypes\": {}}\n,", ":2: unexpected text after the end of the document"},
      {"{\"shaderTypes\": {\n\"caf\xC3\": {\"parameters\": []}}}", ":2: invalid UTF-8"},
      {"{\"shaderTypes\": {\"a\": {\"parameters\": [",
       ":1: key 'parameters': unexpected end of file"},
      {"{\"shaderTypes\": {\"a\": {\"parameters\": [\n{\"name\": \"x\", \"type\": \"KEPRmaVector\","
       " \"default\": [1, 2, 3, 4, 5]}]}}}",
       "expected a vector [x, y], [x, y, z] or [x, y, z, w]"},
  };
  for (const Case& c : cases) {
    ScratchDir dir;
    const std::string file = dir.Write("library.json", c.json);
    KEPHostShaderLibrary library;
    const KEPLoadResult result = KEPShaderLibraryLoader::Load(dir.Path(), library);
    EXPECT_TRUE(HasError(result, file) && HasError(result, c.expected))
        << "input: " << c.json << "\nerrors:\n"
        << result.Text();
    EXPECT_TRUE(library.Types().empty()) << "a failed load leaves the library untouched";
  }
}

// A type's "output" is what its nodes answer through KEPIRshShaderOutput: a feature type, "" (any
// parameter), or nothing at all when the key is absent; any other text is refused on its line.
TEST_F(LibraryLoader, OutputIsAFeatureTypeOrEmptyAndNodesAnswerIt) {
  struct Case {
    const char* output;    ///< the member's JSON text, or null for no member
    HRESULT answer;        ///< what a node of the type answers
    const char* expected;  ///< the answer's text, or the error when the load fails
  };
  const Case cases[] = {
      {"\"KEPRmaColor\"", S_OK, "KEPRmaColor"},
      {"\"KEPRmaVoid\"", S_OK, "KEPRmaVoid"},
      {"\"\"", S_OK, ""},
      {nullptr, E_NOTIMPL, "unchanged"},
      {"\"KEPRmaColour\"", E_FAIL,
       ":3: key 'shaderTypes.a.output': 'KEPRmaColour' is not a feature type (expected "
       "KEPRmaBoolean, "},
      {"\"kep_phen_texture\"", E_FAIL,
       ":3: key 'shaderTypes.a.output': 'kep_phen_texture' is not a feature type"},
      {"7", E_FAIL, ":3: key 'shaderTypes.a.output': expected a string, found number"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.output ? c.output : "no output");
    ScratchDir dir;
    const std::string file = dir.Write(
        "library.json", std::string("{\"shaderTypes\": {\"a\": {\"parameters\": [],\n") +
                            "\"label\": \"A\"" +
                            (c.output ? std::string(",\n\"output\": ") + c.output : "") + "}}}");
    KEPHostShaderLibrary library;
    const KEPLoadResult result = KEPShaderLibraryLoader::Load(dir.Path(), library);
    if (c.answer == E_FAIL) {
      EXPECT_TRUE(HasError(result, file + c.expected)) << result.Text();
      EXPECT_TRUE(library.Types().empty());
      continue;
    }
    ASSERT_TRUE(result.Ok()) << result.Text();
    const auto node =
        KEP_var<KEPHostShaderNode>::Adopt(KEPHostShaderNode::Create(*library.FindType("a"), "n"));
    const KEP_var<KEPIRshShaderOutput> output = KEPQueryVar<KEPIRshShaderOutput>(node.Get());
    ASSERT_TRUE(output);
    KEPString answer = "unchanged";
    EXPECT_EQ(output->GetOutputType(answer), c.answer);
    EXPECT_EQ(answer, c.expected);
  }
}

TEST_F(LibraryLoader, DeepNestingIsRefusedWithoutCrashing) {
  ScratchDir dir;
  dir.Write("library.json", std::string(100000, '[') + std::string(100000, ']'));
  KEPHostShaderLibrary library;
  const KEPLoadResult result = KEPShaderLibraryLoader::Load(dir.Path(), library);
  EXPECT_TRUE(HasError(result, "nesting deeper than 64 levels")) << result.Text();
}

TEST_F(LibraryLoader, DocumentFaultsNameFileLineAndKey) {
  auto library = SampleLibrary();
  KEP_var<KEPHostShaderDocument> document;
  const KEPLoadResult cycle =
      KEPShaderDocumentLoader::Load(DataPath("documents/cycle.rshdoc.json"), library, document);
  EXPECT_TRUE(HasError(cycle,
                       "cycle.rshdoc.json:4: key 'diffuse_texture': connection cycle: a -> "
                       "b -> a"))
      << cycle.Text();
  EXPECT_FALSE(document) << "a failed load hands out no document";

  const KEPLoadResult noLibrary = KEPShaderDocumentLoader::Load(
      DataPath("documents/missing_library.rshdoc.json"), library, document);
  EXPECT_TRUE(HasError(noLibrary, ":2: key 'library': library path '")) << noLibrary.Text();
  EXPECT_TRUE(HasError(noLibrary, "does not exist")) << noLibrary.Text();

  struct Case {
    const char* json;
    const char* expected;
  };
  const Case cases[] = {
      {"{\"materials\": [\n{\"id\": \"m\", \"type\": \"mia_phen_materiel\"}]}",
       ":2: key 'type': unknown shader type 'mia_phen_materiel'"},
      {"{\"materials\": [{\"id\": \"m\", \"type\": \"mia_phen_material\",\n\"values\": "
       "{\"difuse\": [1, 1, 1]}}]}",
       ":2: key 'difuse': unknown parameter name for shader type 'mia_phen_material'"},
      {"{\"materials\": [{\"id\": \"m\", \"type\": \"mia_phen_material\", \"values\": {\n"
       "\"brdf_fresnel\": 1}}]}",
       ":2: key 'brdf_fresnel': KEPRmaBoolean: expected true or false"},
      {"{\"materials\": [{\"id\": \"m\", \"type\": \"mia_phen_material\", \"values\": {\n"
       "\"anisotropy_direction\": [1, 0]}}]}",
       ":2: key 'anisotropy_direction': KEPRmaVector: expected a vector of 3 finite numbers"},
      {"{\"materials\": [{\"id\": \"m\", \"type\": \"mia_phen_material\", \"values\": {\n"
       "\"refl_gloss_samples\": 2.5}}]}",
       ":2: key 'refl_gloss_samples': KEPRmaInteger: expected a 32-bit integer"},
      {"{\"materials\": [{\"id\": \"m\", \"type\": \"kep_phen_texture\", \"values\": {\n"
       "\"texture\": {\"image\": \"a.png\", \"dpi\": -3}}}]}",
       ":2: key 'texture': KEPRmaTexture: texture 'dpi' must be a number above 0"},
      {"{\"materials\": [{\"id\": \"m\", \"type\": \"mia_phen_material\",\n\"connections\": "
       "{\"diffuse_texture\": \"ghost\"}}]}",
       ":2: key 'diffuse_texture': connection to missing node 'ghost'"},
      {"{\"materials\": [{\"id\": \"m\", \"type\": \"mia_phen_material\",\n\"connections\": "
       "{\"diffuse_texture\": \"m\"}}]}",
       ":2: key 'diffuse_texture': connection cycle: m -> m"},
      {"{\"materials\": [{\"id\": \"m\", \"type\": \"mia_phen_material\", \"subShaders\": [\n"
       "{\"id\": \"m\", \"type\": \"kep_phen_texture\"}]}]}",
       ":2: key 'id': duplicate node id 'm' (first at line 1)"},
      {"{\"materials\": [{\"id\": \"m\", \"type\": \"mia_phen_material\", \"values\": {\n"
       "\"diffuse\": [1, 1, 1], \"diffuse\": [0, 0, 0]}}]}",
       ":2: key 'diffuse': repeated key"},
      {"{\"materials\": [{\"id\": \"m\", \"type\": \"mia_phen_material\", \"values\": {\n"
       "\"diffuse\": [1, NaN, 1]}}]}",
       ":2: key 'diffuse': invalid value"},
      {"{\"materials\": {}}", ":1: key 'materials': expected a list of nodes"},
  };
  for (const Case& c : cases) {
    ScratchDir dir;
    const std::string file = dir.Write("doc.rshdoc.json", c.json);
    KEP_var<KEPHostShaderDocument> out;
    const KEPLoadResult result = KEPShaderDocumentLoader::Load(file, library, out);
    EXPECT_TRUE(HasError(result, file) && HasError(result, c.expected))
        << "input: " << c.json << "\nerrors:\n"
        << result.Text();
    EXPECT_FALSE(out);
  }
}

// Text read already loads as the file would: errors name the given path, and relative paths are
// resolved against its directory, which need not exist.
TEST_F(LibraryLoader, TextLoadsAsItsFileWould) {
  std::string text, message;
  ASSERT_TRUE(
      KEPFileText::Read(keptest::SourcePath("samples/library/library.json"), text, message));
  KEPHostShaderLibrary fromText;
  ASSERT_TRUE(KEPShaderLibraryLoader::LoadText("/nowhere/lib/library.json", text, fromText).Ok());
  EXPECT_EQ(fromText.root, "/nowhere/lib");
  EXPECT_EQ(fromText.Types().size(), SampleLibrary()->Types().size());
  KEP_var<KEPIPLMDmtDocument> image =
      fromText.FindType("kep_phen_texture")->parameters[0].defaultValue.texture;
  ASSERT_TRUE(image);
  KEPUnicodeString imagePath;
  image->GetImagePath(imagePath);
  EXPECT_EQ(imagePath.ToUTF8(), "/nowhere/startup/textures/checker.png");
  const KEPLoadResult bad =
      KEPShaderLibraryLoader::LoadText("/nowhere/library.json", "{\n[", fromText);
  EXPECT_TRUE(HasError(bad, "/nowhere/library.json:2: expected a quoted member name"))
      << bad.Text();
  EXPECT_EQ(fromText.root, "/nowhere/lib") << "a failed load leaves the library untouched";

  auto library = SampleLibrary();
  const std::string path = keptest::SourcePath("samples/documents/showroom.rshdoc.json");
  ASSERT_TRUE(KEPFileText::Read(path, text, message));
  KEP_var<KEPHostShaderDocument> fromFile, fromMemory;
  ASSERT_TRUE(KEPShaderDocumentLoader::Load(path, library, fromFile).Ok());
  const KEPLoadResult loaded = KEPShaderDocumentLoader::LoadText(path, text, library, fromMemory);
  ASSERT_TRUE(loaded.Ok()) << loaded.Text();
  EXPECT_EQ(KEPShaderDocumentWriter::Format(*fromMemory, path),
            KEPShaderDocumentWriter::Format(*fromFile, path));
  const KEPLoadResult missing =
      KEPShaderDocumentLoader::LoadText("/nowhere/doc.json", text, library, fromMemory);
  EXPECT_TRUE(HasError(missing, "/nowhere/doc.json:2: key 'library': library path '/library'"))
      << missing.Text();
}

// Every node has an object per parameter of its type: the document is refused before any node is
// made when together they would have too many.
TEST_F(LibraryLoader, DocumentNodesHaveBoundedParameters) {
  KEPHostShaderTypeDefinition wide;
  wide.name = "wide";
  for (std::size_t i = 0; i < KEPShaderLibraryLoader::kMaxParameters; ++i)
    wide.parameters.push_back({"p" + std::to_string(i), KEPHostValue::Scalar(0), {}});
  auto library = std::make_shared<KEPHostShaderLibrary>();
  library->AddType(std::move(wide));
  const std::size_t nodes =
      KEPShaderDocumentLoader::kMaxParameters / KEPShaderLibraryLoader::kMaxParameters + 1;
  std::string json = "{\"materials\": [";
  for (std::size_t i = 0; i < nodes; ++i)
    json += (i ? ",\n" : "\n") + std::string("{\"id\": \"n") + std::to_string(i) +
            "\", \"type\": \"wide\"}";
  json += "]}";
  KEP_var<KEPHostShaderDocument> document;
  const KEPLoadResult result =
      KEPShaderDocumentLoader::LoadText("wide.json", json, library, document);
  EXPECT_TRUE(HasError(result, "wide.json:" + std::to_string(nodes + 1) +
                                   ": key 'type': the nodes have more than 1000000 parameters"))
      << result.Text();
  EXPECT_FALSE(document);
}

TEST_F(LibraryLoader, SavedDocumentReadsBackTheSame) {
  auto library = SampleLibrary();
  KEP_var<KEPHostShaderDocument> original;
  ASSERT_TRUE(KEPShaderDocumentLoader::Load(
                  keptest::SourcePath("samples/documents/showroom.rshdoc.json"), library, original)
                  .Ok());
  // Change a few values so that the round trip does not just repeat the defaults.
  KEPHostShaderNode* floor = original->FindNode("floor");
  KEP_var<KEPIRshParameter> gloss;
  ASSERT_EQ(floor->GetParameter("refl_gloss", *gloss.Out()), S_OK);
  gloss->SetScalarValue(0.3f);

  ScratchDir dir;
  const std::string path = dir.Path() + "/nested/copy.rshdoc.json";
  fs::create_directories(dir.Path() + "/nested");
  const KEPLoadResult saved = KEPShaderDocumentWriter::Save(*original, path);
  ASSERT_TRUE(saved.Ok()) << saved.Text();
  // The save leaves nothing but the document beside it.
  std::vector<std::string> entries;
  for (const auto& entry : fs::directory_iterator(dir.Path() + "/nested"))
    entries.push_back(entry.path().filename().string());
  EXPECT_EQ(entries, std::vector<std::string>{"copy.rshdoc.json"});

  std::string libraryDir;
  ASSERT_TRUE(KEPShaderDocumentLoader::ReadLibraryPath(path, libraryDir).Ok());
  EXPECT_EQ(fs::path(libraryDir), fs::path(library->root));
  KEP_var<KEPHostShaderDocument> copy;
  const KEPLoadResult reloaded = KEPShaderDocumentLoader::Load(path, library, copy);
  ASSERT_TRUE(reloaded.Ok()) << reloaded.Text();
  EXPECT_EQ(copy->materials, original->materials);
  // Same text when saved again from the copy: every node, alias, value and connection survived.
  EXPECT_EQ(KEPShaderDocumentWriter::Format(*copy, path),
            KEPShaderDocumentWriter::Format(*original, path));
  float value = 0;
  KEP_var<KEPIRshParameter> copiedGloss;
  ASSERT_EQ(copy->FindNode("floor")->GetParameter("refl_gloss", *copiedGloss.Out()), S_OK);
  copiedGloss->GetScalarValue(value);
  EXPECT_EQ(value, 0.3f);
  EXPECT_NE(KEPShaderDocumentWriter::Format(*copy, path).find("\"refl_gloss\": 0.3,"),
            std::string::npos);

  const KEPLoadResult unwritable =
      KEPShaderDocumentWriter::Save(*original, dir.Path() + "/no/such/dir/x.rshdoc.json");
  EXPECT_TRUE(HasError(unwritable, "x.rshdoc.json")) << unwritable.Text();
}

// Scalars are written as the shortest decimal that reads back as the same float.
TEST(ValueJson, ScalarsAreWrittenShortest) {
  struct Case {
    float value;
    const char* json;
  };
  const Case cases[] = {{0.3f, "0.3"},
                        {0.1f, "0.1"},
                        {1.0f, "1.0"},
                        {-2.5f, "-2.5"},
                        {16777216.0f, "16777216.0"},
                        {1e-45f, "1e-45"},
                        {3.4028235e38f, "3.4028235e+38"}};
  for (const Case& c : cases)
    EXPECT_EQ(KEPHostValueJson::Write(KEPHostValue::Scalar(c.value), ""), c.json) << c.value;
}

TEST(JsonReader, RecordsLinesAndDecodesEscapes) {
  KEPJsonValue value;
  int line = 0;
  std::string key, message;
  ASSERT_TRUE(KEPJsonReader::Parse("{\n\"a\": \"\\u00e9\\ud83d\\ude00\",\n\"b\": [true, null]}",
                                   value, line, key, message))
      << message;
  EXPECT_EQ(value.Find("a")->text, "\xC3\xA9\xF0\x9F\x98\x80");
  EXPECT_EQ(value.Find("a")->line, 2);
  EXPECT_EQ(value.Find("b")->line, 3);
  for (const char* bad : {"", "01", "[1,]", "{\"a\":1,}", "\"\\ud800\"", "tru", "[\"\x01\"]"}) {
    EXPECT_FALSE(KEPJsonReader::Parse(bad, value, line, key, message)) << bad;
  }
}

// Each limit refuses one more than it allows, on the line where the excess starts, naming the
// object key around it.
TEST(JsonReader, LimitsRefuseWhatGoesBeyondThem) {
  using Limits = KEPJsonReader::Limits;
  struct Case {
    const char* json;
    Limits limits;
    int line;             // -1: accepted
    const char* key;      // of the error
    const char* message;  // of the error
  };
  constexpr Limits kSmall = {2, 40, 5, 2, 3};
  auto with = [&](std::size_t Limits::*member, std::size_t value) {
    Limits limits = kSmall;
    limits.*member = value;
    return limits;
  };
  const Case cases[] = {
      {"[[1]]", kSmall, -1, "", ""},
      {"[[\n[1]]]", kSmall, 2, "", "nesting deeper than 2 levels"},
      {"[1,     2]", with(&Limits::bytes, 10), -1, "", ""},
      {"[1,      2]", with(&Limits::bytes, 10), 0, "", "document larger than 10 bytes"},
      {"{\"a\": [1, 2],\n\"b\": 3}", kSmall, -1, "", ""},
      {"{\"a\": [1, 2],\n\"b\": [3]}", kSmall, 2, "b", "more than 5 values in the document"},
      {"{\"x\": {\"a\": 1,\n\"b\": 2,\n\"c\": 3}}", kSmall, 3, "x",
       "more than 2 members in an object"},
      {"{\"x\": [1,\n2,\n3]}", kSmall, 3, "x", "more than 2 elements in an array"},
      {"{\"abc\": \"\\u00e9z\"}", kSmall, -1, "", ""},
      {"{\"abc\":\n\"\\u00e9\\u00e9\"}", kSmall, 2, "abc", "string longer than 3 bytes"},
      {"{\"x\": {\"a\": 1,\n\"abcd\": 1}}", kSmall, 2, "x", "string longer than 3 bytes"},
  };
  for (const Case& c : cases) {
    KEPJsonValue value;
    int line = -1;
    std::string key, message;
    const bool ok = KEPJsonReader::Parse(c.json, value, line, key, message, c.limits);
    EXPECT_EQ(ok, c.line == -1) << c.json << ": " << message;
    if (ok) continue;
    EXPECT_EQ(line, c.line) << c.json;
    EXPECT_EQ(key, c.key) << c.json;
    EXPECT_EQ(message, c.message) << c.json;
  }
}

// Finding repeated keys costs a constant per member: a search through the earlier members, as a
// file of many keys would otherwise take quadratic time, shows in the number of comparisons.
TEST(JsonReader, RepeatedKeysAreFoundInLinearTime) {
  constexpr std::size_t kKeys = KEPJsonReader::kLimits.members;
  std::string json = "{";
  for (std::size_t i = 0; i < kKeys; ++i) json += "\"key" + std::to_string(i) + "\": 0,\n";
  json.back() = '}';
  json[json.size() - 2] = ' ';
  KEPJsonValue value;
  int line = 0;
  std::string key, message;
  KEPJsonReader::Usage usage;
  ASSERT_TRUE(KEPJsonReader::Parse(json, value, line, key, message, KEPJsonReader::kLimits, &usage))
      << message;
  EXPECT_EQ(value.members.size(), kKeys);
  EXPECT_EQ(usage.values, kKeys + 1);
  EXPECT_LT(usage.nameComparisons, 2 * kKeys);

  // The same object with its last key renamed to the first one's.
  json.replace(json.rfind("\"key"), std::string("\"key" + std::to_string(kKeys - 1)).size(),
               "\"key0");
  ASSERT_FALSE(
      KEPJsonReader::Parse(json, value, line, key, message, KEPJsonReader::kLimits, &usage));
  EXPECT_EQ(message, "repeated key");
  EXPECT_EQ(key, "key0");
  EXPECT_EQ(line, static_cast<int>(kKeys));
  EXPECT_LT(usage.nameComparisons, 2 * kKeys);
  // Objects small enough to be scanned find a repeat too, however the names are escaped.
  EXPECT_FALSE(
      KEPJsonReader::Parse("{\"a\": 1, \"b\": 2, \"\\u0061\": 3}", value, line, key, message));
  EXPECT_EQ(message, "repeated key");
}

}  // namespace
