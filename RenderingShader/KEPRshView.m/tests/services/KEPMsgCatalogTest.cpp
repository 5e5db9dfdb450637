#include <gtest/gtest.h>

#include <filesystem>

#include "KEPHostCatalogs.h"
#include "KEPMsgCatalog.h"
#include "KEPServicesTestUtil.h"
#include "KEPTestSupport.h"

namespace {

using keptest::WriteFile;

std::string Msg(const char* catalog, const char* key,
                const std::vector<KEPUnicodeString>& parameters = {}) {
  return KEPMsgCatalog::BuildMessage(catalog, key, parameters).ToUTF8();
}

/// Catalogues written into a temporary resources directory.
class MsgCatalogTest : public ::testing::Test {
 protected:
  MsgCatalogTest() : env_("KEPRSH_RESOURCES", dir_.Path()) {
    std::filesystem::create_directories(dir_.File("msg"));
    KEPHostCatalogs::Unload();
  }
  ~MsgCatalogTest() override { KEPHostCatalogs::Unload(); }
  void Catalog(const std::string& name, const std::string& text) {
    WriteFile(dir_.File("msg/" + name + ".msg"), text);
  }

  keptest::TempDir dir_;
  keptest::ScopedEnv env_;
};

TEST_F(MsgCatalogTest, ParametersReplaceTheirPlaceholders) {
  Catalog("Test",
          "# greeting\n"
          "  Hello = \"Hello /p1, /p2 new and /p1 again\"  \n"
          "Many = \"/p10|/p1|/p2\"\n"
          "Slash = \"km/h /path /p\"\n"
          "Escapes = \"say \\\"hi\\\"\\n\\tand \\\\ leave \"\n"
          "Utf8 = \"caf\xC3\xA9 /p1\"\n");
  EXPECT_EQ(Msg("Test", "Hello", {u"Ann", u"3"}), "Hello Ann, 3 new and Ann again");
  // Too few parameters: the placeholder stays as written.
  EXPECT_EQ(Msg("Test", "Hello", {u"Ann"}), "Hello Ann, /p2 new and Ann again");
  EXPECT_EQ(Msg("Test", "Hello"), "Hello /p1, /p2 new and /p1 again");
  EXPECT_EQ(Msg("Test", "Many", {u"a", u"b", u"c", u"d", u"e", u"f", u"g", u"h", u"i", u"j"}),
            "j|a|b");
  EXPECT_EQ(Msg("Test", "Slash", {u"x"}), "km/h /path /p");
  EXPECT_EQ(Msg("Test", "Escapes"), "say \"hi\"\n\tand \\ leave ");
  EXPECT_EQ(Msg("Test", "Utf8", {u"\u00e0 la carte"}), "caf\xC3\xA9 \xC3\xA0 la carte");
}

TEST_F(MsgCatalogTest, AMissingKeyOrCatalogueAnswersTheKeyAndWarnsOnce) {
  Catalog("Test", "Known = \"known\"\n");
  keptest::TraceCapture traces;
  EXPECT_EQ(Msg("Test", "Unknown.Help"), "Unknown.Help");
  EXPECT_EQ(Msg("Test", "Unknown.Help"), "Unknown.Help");
  ASSERT_EQ(traces.Entries().size(), 1u);
  EXPECT_EQ(traces.Entries()[0].level, KEPTraceLevel::Warning);
  EXPECT_TRUE(traces.Contains("\"Unknown.Help\" missing from the catalogue \"Test\""));

  traces.Clear();
  EXPECT_EQ(Msg("NoSuchCatalogue", "connect.Help"), "connect.Help");
  EXPECT_TRUE(traces.Contains(dir_.File("msg/NoSuchCatalogue.msg")));

  KEPUnicodeString text(u"untouched");
  EXPECT_EQ(KEPMsgCatalog::GetMessageText("Test", "Other", text), E_FAIL);
  EXPECT_EQ(text.ToUTF8(), "untouched");
  EXPECT_EQ(KEPMsgCatalog::GetMessageText("Test", "Known", text), S_OK);
  EXPECT_EQ(text.ToUTF8(), "known");
}

TEST_F(MsgCatalogTest, BadLinesAreSkippedWithFileLineAndKey) {
  Catalog("Bad",
          "Good = \"good\"\n"
          "no equals sign\n"
          "Unquoted = plain\n"
          "Open = \"never closed\n"
          "Trailing = \"a\" b\n"
          "two words = \"x\"\n"
          "Good = \"second\"\n"
          "Last = \"last\"\n");
  keptest::TraceCapture traces;
  EXPECT_EQ(Msg("Bad", "Good"), "good");  // a repeated key keeps its first text
  EXPECT_EQ(Msg("Bad", "Last"), "last");
  const std::string file = dir_.File("msg/Bad.msg");
  const char* expected[] = {":2: no '='",           ":3: key \"Unquoted\"",  ":4: key \"Open\"",
                            ":5: key \"Trailing\"", ":6: key \"two words\"", ":7: key \"Good\""};
  ASSERT_EQ(traces.Entries().size(), std::size(expected));
  for (std::size_t i = 0; i < std::size(expected); ++i)
    EXPECT_EQ(traces.Entries()[i].text.rfind(file + expected[i], 0), 0u)
        << traces.Entries()[i].text;
}

// The bundled catalogues hold a text for every key the editors ask for.
TEST(BundledCatalogues, EveryKeyTheEditorsUseHasItsOwnText) {
  keptest::ScopedEnv env("KEPRSH_RESOURCES", std::nullopt);
  KEPHostCatalogs::Unload();
  const std::pair<const char*, std::vector<const char*>> used[] = {
      {"KEPRshShaderFrame",
       {"connect.Title", "connect.Help", "connect.ShortHelp", "connect.LongHelp",
        "disconnect.Title", "disconnect.Help", "disconnect.ShortHelp", "disconnect.LongHelp",
        "edit.Title", "edit.Help", "edit.ShortHelp", "edit.LongHelp", "UnitTooltip.ShortHelp",
        "UnitmmTooltip.ShortHelp", "UnitmTooltip.ShortHelp", "UnitcmTooltip.ShortHelp",
        "UnitkmTooltip.ShortHelp", "UnitdegTooltip.ShortHelp", "UnitKTooltip.ShortHelp"}},
      {"KEPRshConnectionDialog", {"NewLabel", "ConnectLabel"}},
      {"KEPRshParameterFrame",
       {"child.Title", "child.Help", "child.ShortHelp", "child.LongHelp", "newChild.Title",
        "newChild.Help", "newChild.ShortHelp", "newChild.LongHelp"}},
  };
  keptest::TraceCapture traces;
  for (const auto& [catalog, keys] : used)
    for (const char* key : keys) {
      KEPUnicodeString text;
      EXPECT_EQ(KEPMsgCatalog::GetMessageText(catalog, key, text), S_OK) << catalog << " " << key;
      EXPECT_FALSE(text.IsEmpty()) << catalog << " " << key;
    }
  EXPECT_TRUE(traces.Entries().empty()) << KEPTraceSink::Format(traces.Entries()[0]);
  // Lead-ins that a unit symbol or an alias follows directly end with a blank.
  EXPECT_EQ(Msg("KEPRshShaderFrame", "UnitTooltip.ShortHelp") + "mm", "Unit: mm");
  EXPECT_EQ(Msg("KEPRshConnectionDialog", "ConnectLabel").back(), ' ');
  KEPHostCatalogs::Unload();
}

}  // namespace
