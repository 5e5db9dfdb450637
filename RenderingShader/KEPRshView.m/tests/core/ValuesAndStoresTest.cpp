// Strings, the configuration store, atomic files and the shader model's values and connections.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include <unistd.h>

#include "KEPAtomicFile.h"
#include "KEPHostConfiguration.h"
#include "KEPRbaConfiguration.h"
#include "KEPRshParameterServices.h"
#include "KEPTestSupport.h"

namespace {
using namespace keptest;

TEST(Strings, UnicodeRoundTripAndCase) {
  const std::string text = "Réflexion 反射 \xF0\x9F\x8E\xA8";
  EXPECT_EQ(KEPUnicodeString::FromUTF8(text).ToUTF8(), text);
  EXPECT_EQ(KEPUnicodeString::FromUTF8("\xFF"
                                       "a")
                .ToUTF8(),
            "\xEF\xBF\xBD"
            "a");
  EXPECT_EQ(KEPUnicodeString::FromUTF8("cm").ToUpper(), KEPUnicodeString(u"CM"));
  EXPECT_EQ(KEPToLower("DeG"), "deg");
}

// Every invalid sequence becomes one U+FFFD and never another character: the overlong "/" is the
// classic way past a path or key check.
TEST(Strings, UTF8DecodingTable) {
  struct Case {
    const char* utf8;
    std::u16string expected;
  };
  const Case cases[] = {
      // Valid sequences of 1 to 4 bytes, at the edges of each length.
      {"\x7F", u"\u007F"},
      {"\xC2\x80", u"\u0080"},
      {"\xDF\xBF", u"\u07FF"},
      {"\xE0\xA0\x80", u"\u0800"},
      {"\xEF\xBF\xBD", u"\uFFFD"},
      {"\xEF\xBF\xBF", u"\uFFFF"},
      {"\xF0\x90\x80\x80", u"\U00010000"},
      {"\xF4\x8F\xBF\xBF", u"\U0010FFFF"},
      // Overlong encodings.
      {"a\xE0\x80\xAF"
       "b",
       u"a\uFFFDb"},
      {"\xC0\xAF", u"\uFFFD"},
      {"\xC1\xBF", u"\uFFFD"},
      {"\xF0\x80\x80\xAF", u"\uFFFD"},
      // Surrogates encoded in UTF-8, alone and as a pair.
      {"\xED\xA0\x80", u"\uFFFD"},
      {"\xED\xA0\xBD\xED\xB2\xA9", u"\uFFFD\uFFFD"},
      // Truncated sequences, at the end and before another character.
      {"\xF0\x9F\x8E", u"\uFFFD"},
      {"\xE2\x82"
       "a",
       u"\uFFFDa"},
      // Above U+10FFFF, and bytes that cannot start a character.
      {"\xF4\x90\x80\x80", u"\uFFFD"},
      {"\xF5\x80\x80\x80", u"\uFFFD"},
      {"\x80\xFE", u"\uFFFD\uFFFD"},
  };
  for (const Case& c : cases) {
    const KEPUnicodeString decoded = KEPUnicodeString::FromUTF8(c.utf8);
    EXPECT_EQ(decoded.Str(), c.expected) << "input: " << ::testing::PrintToString(c.utf8);
    // What comes out is valid UTF-8 again and decodes to the same text.
    EXPECT_EQ(KEPUnicodeString::FromUTF8(decoded.ToUTF8()), decoded);
  }
}

TEST(Strings, UnpairedSurrogatesEncodeAsReplacement) {
  struct Case {
    std::u16string utf16;
    const char* expected;
  };
  const Case cases[] = {
      {u"\xD83D\xDE00", "\xF0\x9F\x98\x80"},
      {std::u16string(1, u'\xD800'), "\xEF\xBF\xBD"},
      {std::u16string(1, u'\xDC00'), "\xEF\xBF\xBD"},
      {std::u16string{u'\xDC00', u'\xD800'}, "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {std::u16string{u'\xD800', u'A'},
       "\xEF\xBF\xBD"
       "A"},
      {std::u16string{u'x', u'\xD800', u'\xD83D', u'\xDE00', u'\xDBFF'},
       "x\xEF\xBF\xBD\xF0\x9F\x98\x80\xEF\xBF\xBD"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(KEPUnicodeString(c.utf16).ToUTF8(), c.expected)
        << "input: " << ::testing::PrintToString(c.utf16);
}

class Configuration : public Fixture {};

TEST_F(Configuration, HierarchicalLookup) {
  KEPHostConfiguration::SetParent("child", "base");
  Config("base", {{"x.Min", "1"}, {"x.Max", "9"}});
  Config("child", {{"x.Min", "2"}});
  KEPString text = "untouched";
  EXPECT_EQ(KEPRbaConfiguration::GetHierarchicalValue("child", "x.Min", text), S_OK);
  EXPECT_EQ(text, "2");
  EXPECT_EQ(KEPRbaConfiguration::GetHierarchicalValue("child", "x.Max", text), S_OK);
  EXPECT_EQ(text, "9");
  text = "untouched";
  EXPECT_EQ(KEPRbaConfiguration::GetHierarchicalValue("child", "x.Step", text), E_FAIL);
  EXPECT_EQ(text, "untouched");
}

TEST_F(Configuration, IntegersReadAsScanfReadsThem) {
  const std::pair<const char*, std::optional<int>> rows[] = {{"12", 12},
                                                             {" \t-12 ", -12},
                                                             {"+7", 7},
                                                             {"7abc", 7},
                                                             {"0x10", 0},
                                                             {"abc", {}},
                                                             {"", {}},
                                                             {"-", {}},
                                                             {"2147483647", 2147483647},
                                                             {"-2147483648", -2147483647 - 1}};
  for (const auto& [text, expected] : rows) {
    Config("c", {{"n", text}});
    int n = -99;
    EXPECT_EQ(KEPRbaConfiguration::GetHierarchicalValue("c", "n", n), expected ? S_OK : E_FAIL)
        << text;
    EXPECT_EQ(n, expected.value_or(-99)) << text;
  }
}

TEST_F(Configuration, KeysOfAPrefixComeFromTheConfigurationAndItsParents) {
  KEPHostConfiguration::SetParent("child", "base");
  KEPHostConfiguration::SetParent("base", "missing");
  Config("base", {{"x.Enum1", "a"}, {"x.Enum2", "b"}, {"x.Label", "l"}, {"y.Enum1", "c"}});
  Config("child", {{"x.Enum2", "shadowing"}, {"x.Enum10", "d"}, {"x.Enum", "e"}, {"x.E", "f"}});
  std::vector<KEPString> keys{"stale"};
  ASSERT_EQ(KEPRbaConfiguration::GetHierarchicalKeys("child", "x.Enum", keys), S_OK);
  EXPECT_EQ(keys, (std::vector<KEPString>{"x.Enum", "x.Enum1", "x.Enum10", "x.Enum2"}));
  ASSERT_EQ(KEPRbaConfiguration::GetHierarchicalKeys("base", "x.Enum", keys), S_OK);
  EXPECT_EQ(keys, (std::vector<KEPString>{"x.Enum1", "x.Enum2"}));
  ASSERT_EQ(KEPRbaConfiguration::GetHierarchicalKeys("child", "z.", keys), S_OK);
  EXPECT_TRUE(keys.empty());
  keys = {"stale"};
  EXPECT_EQ(KEPRbaConfiguration::GetHierarchicalKeys("nowhere", "x.", keys), E_FAIL);
  EXPECT_EQ(keys, std::vector<KEPString>{"stale"});
  KEPHostConfiguration::SetParent("base", "child");  // a cycle ends the walk
  ASSERT_EQ(KEPRbaConfiguration::GetHierarchicalKeys("child", "y.", keys), S_OK);
  EXPECT_EQ(keys, std::vector<KEPString>{"y.Enum1"});
}

TEST_F(Configuration, ParentCycleEndsTheWalk) {
  KEPHostConfiguration::SetParent("a", "b");
  KEPHostConfiguration::SetParent("b", "a");
  KEPString text;
  EXPECT_EQ(KEPRbaConfiguration::GetHierarchicalValue("a", "missing", text), E_FAIL);
}

TEST(AtomicFile, ReplacesWholeFileAndReportsBadDirectory) {
  const auto dir =
      std::filesystem::temp_directory_path() / ("keprsh-atomic-test-" + std::to_string(::getpid()));
  std::filesystem::create_directories(dir);
  const std::string path = (dir / "out.txt").string();
  std::string error;
  ASSERT_TRUE(KEPWriteFileAtomically(path, "first", error)) << error;
  ASSERT_TRUE(KEPWriteFileAtomically(path, "second", error)) << error;
  std::ifstream in(path);
  std::string content((std::istreambuf_iterator<char>(in)), {});
  EXPECT_EQ(content, "second");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir), {}), 1) << "no temporary left";
  EXPECT_FALSE(KEPWriteFileAtomically((dir / "no/such/dir/x").string(), "x", error));
  EXPECT_NE(error.find("no/such/dir/x"), std::string::npos);
  std::filesystem::remove_all(dir);
}

class ShaderModel : public Fixture {};

TEST_F(ShaderModel, NumericValuesConvertOthersRefuse) {
  World world;
  world.Add(Type("t")
                .Param("flag", Boolean(true))
                .Param("n", Integer(3))
                .Param("s", Scalar(2.5f))
                .Param("c", Color(0.1f, 0.2f, 0.3f))
                .Param("v", Vector({1, 2})));
  KEPHostShaderNode* node = world.Node("t", "n1");
  float f = -1;
  EXPECT_EQ(world.Param(node, "flag")->GetScalarValue(f), S_OK);
  EXPECT_EQ(f, 1.0f);
  unsigned char b = 0;
  EXPECT_EQ(world.Param(node, "n")->GetBooleanValue(b), S_OK);
  EXPECT_EQ(b, 1);
  EXPECT_EQ(world.Param(node, "s")->SetIntegerValue(7), S_OK);
  EXPECT_EQ(world.Param(node, "s")->GetScalarValue(f), S_OK);
  EXPECT_EQ(f, 7.0f);
  f = -1;
  EXPECT_EQ(world.Param(node, "c")->GetScalarValue(f), E_FAIL);
  EXPECT_EQ(f, -1) << "untouched on failure";
  float r = 0, g = 0, bl = 0;
  EXPECT_EQ(world.Param(node, "c")->GetColorValue(r, g, bl), S_OK);
  EXPECT_FLOAT_EQ(g, 0.2f);
  float xyzw[4] = {9, 9, 9, 9};
  EXPECT_EQ(world.Param(node, "v")->GetVectorValue(xyzw), S_OK);
  EXPECT_EQ(xyzw[1], 2.0f);
  EXPECT_EQ(xyzw[2], 0.0f);
  EXPECT_EQ(world.Param(node, "v")->GetVectorDimension(), 2);
  EXPECT_EQ(world.Param(node, "n")->SetScalarValue(std::numeric_limits<float>::quiet_NaN()),
            E_FAIL);
}

TEST_F(ShaderModel, ConnectionsFathersAndPointingComponents) {
  World world;
  world.Add(Type("mat").Param("slot", Void()).Param("other", Void()))
      .Add(Type("tex").Param("image", Texture("a.png")));
  KEPHostShaderNode* mat = world.Node("mat", "m");
  KEPHostShaderNode* tex = world.Node("tex", "t");
  auto* slot = world.Param(mat, "slot");
  ASSERT_EQ(slot->SetConnectedShader(tex), S_OK);
  world.Param(mat, "other")->SetConnectedShader(tex);
  std::vector<KEP_var<KEPIRshParameter>> pointing;
  tex->GetPointingComponents(pointing);
  EXPECT_EQ(pointing.size(), 2u);
  KEPIRshShader* connected = nullptr;
  ASSERT_EQ(slot->GetConnectedShader(connected), S_OK);
  EXPECT_EQ(connected, static_cast<KEPIRshShader*>(tex));
  connected->Release();
  slot->SetConnectedShader(nullptr);
  tex->GetPointingComponents(pointing);
  EXPECT_EQ(pointing.size(), 1u);

  auto parent = KEP_var<KEPIRshShader>::Adopt(KEPRshParameterServices::FindShaderParent(slot));
  EXPECT_EQ(parent.Get(), static_cast<KEPIRshShader*>(mat));
  double dpi = 0;
  EXPECT_EQ(KEPRshParameterServices::RetrieveDpi(world.Param(tex, "image"), dpi), S_OK);
  EXPECT_EQ(dpi, 72.0);
  // Resources are offered only by types that declare them.
  EXPECT_FALSE(KEPQueryVar<KEPIRshShaderResources>(static_cast<KEPIRshShader*>(mat)));
}

TEST_F(ShaderModel, ParameterOutlivingItsNodeHasNoFather) {
  KEP_var<KEPIRshParameter> kept;
  {
    World world;
    world.Add(Type("t").Param("x", Scalar(1)));
    kept = KEP_var<KEPIRshParameter>(world.Param(world.Node("t", "a"), "x"));
  }
  EXPECT_EQ(KEPRshParameterServices::FindShaderParent(kept.Get()), nullptr);
  float f = 0;
  EXPECT_EQ(kept->GetScalarValue(f), S_OK);
}

}  // namespace
