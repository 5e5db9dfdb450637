// Style sheets: what the parser makes of good text, the error it gives for each kind of fault
// (with file, line and key), the bundled sheet, and reading sheets once per host session.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "KEPHostContext.h"
#include "KEPMsgCatalog.h"
#include "KEPTestSupport.h"
#include "KEPVidStyleSheet.h"

namespace {

std::shared_ptr<const KEPVidStyleSheet> Parse(const std::string& text, KEPLoadResult& result) {
  return KEPVidStyleSheet::Parse(text, "test.sypstyle", result);
}

TEST(StyleSheet, PartsSettingsAndBindingsAreRead) {
  const std::string text =
      "\xEF\xBB\xBF# comment\n"
      "style Default {\n"
      "  class dynamic-slider {\n"
      "    part grid Layout {\n"
      "      column-weights = 1 0.5\n"
      "      part slider Slider {\n"
      "        cell = 1 2\n"
      "        attach = left right\n"
      "        background = #10203040\n"
      "        tooltip = \"say \\\"hi\\\"\\n\"\n"
      "        value <-> Values.x\n"
      "        minimum<-SoftMinimum\n"
      "      }\n"
      "    }\n"
      "  }\n"
      "  class combo* {\n"
      "  }\n"
      "}\r\n";
  KEPLoadResult result;
  const auto sheet = Parse(text, result);
  ASSERT_TRUE(sheet) << result.Text();
  const KEPVidStyle* style = sheet->FindStyle("Default");
  ASSERT_NE(style, nullptr);
  ASSERT_EQ(style->classes.size(), 2U);
  const KEPVidStylePart& grid = style->classes[0].parts.at(0);
  EXPECT_EQ(grid.kind, KEPVidPartKind::Grid);
  EXPECT_EQ(grid.Find(KEPVidStyleTarget::ColumnWeights)->numbers, (std::vector<double>{1, 0.5}));
  const KEPVidStylePart& slider = grid.parts.at(0);
  EXPECT_EQ(slider.name, "Slider");
  EXPECT_EQ(slider.line, 6);
  EXPECT_EQ(slider.Find(KEPVidStyleTarget::Cell)->numbers, (std::vector<double>{1, 2, 1, 1}));
  EXPECT_EQ(slider.Find(KEPVidStyleTarget::Attach)->numbers, (std::vector<double>{3}));
  EXPECT_EQ(slider.Find(KEPVidStyleTarget::Background)->numbers,
            (std::vector<double>{16, 32, 48, 64}));
  EXPECT_EQ(slider.Find(KEPVidStyleTarget::Tooltip)->text, "say \"hi\"\n");
  const KEPVidStyleSetting* value = slider.Find(KEPVidStyleTarget::Value);
  EXPECT_EQ(value->mode, KEPVidStyleMode::TwoWay);
  EXPECT_EQ(value->path, (std::vector<std::string>{"Values", "x"}));
  EXPECT_EQ(slider.Find(KEPVidStyleTarget::Minimum)->mode, KEPVidStyleMode::OneWay);
  EXPECT_EQ(slider.Find(KEPVidStyleTarget::Maximum), nullptr);
}

TEST(StyleSheet, ClassesAreFoundByExactNameThenLongestPrefix) {
  KEPLoadResult result;
  const auto sheet = Parse(
      "style S {\n class combo* {\n }\n class comboMat* {\n }\n class comboMaterial {\n }\n"
      " class \"odd name*\" {\n }\n}\n",
      result);
  ASSERT_TRUE(sheet) << result.Text();
  const KEPVidStyle& style = *sheet->FindStyle("S");
  auto found = [&](const char* name) -> std::string {
    const KEPVidStyleClass* c = KEPVidStyleSheet::FindClass(style, name);
    return c ? c->name + (c->prefix ? "*" : "") : "none";
  };
  EXPECT_EQ(found("comboMaterial"), "comboMaterial");
  EXPECT_EQ(found("comboMaterials"), "comboMat*");
  EXPECT_EQ(found("combo"), "combo*");
  EXPECT_EQ(found("comb"), "none");
  EXPECT_EQ(found("odd name*"), "odd name*") << "a quoted name is never a prefix";
  EXPECT_EQ(found("odd name"), "none");
  EXPECT_EQ(sheet->FindStyle("Other"), nullptr);
}

struct BadSheet {
  const char* what;
  const char* text;
  int line;
  const char* key;
  const char* message;  ///< a fragment of the message
};

// Each sheet has one fault; the error names its line and key.
const BadSheet kBadSheets[] = {
    {"unknown part kind", "style S {\n class c {\n  part knob K {\n  }\n }\n}\n", 3, "knob",
     "unknown part kind 'knob' (kinds: grid, label, slider, editor, spin-box, double-spin-box, "
     "combo, check-box)"},
    {"unknown binding", "style S {\n class c {\n  part label L {\n   value <- Value\n  }\n }\n}\n",
     4, "value", "unknown binding 'value' for a label part (a label takes: "},
    {"two-way on a shown target",
     "style S {\n class c {\n  part slider L {\n   minimum <-> SoftMinimum\n  }\n }\n}\n", 4,
     "minimum", "'minimum' of a slider only shows its property: bind it with '<-'"},
    {"bound look", "style S {\n class c {\n  part slider L {\n   cell <- Cell\n  }\n }\n}\n", 4,
     "cell", "'cell' cannot be bound to a property"},
    {"missing property name",
     "style S {\n class c {\n  part slider L {\n   value <->   \n  }\n }\n}\n", 4, "value",
     "missing property name after '<->'"},
    {"bad path", "style S {\n class c {\n  part slider L {\n   value <- Values..x\n  }\n }\n}\n", 4,
     "value", "bad property path 'Values..x'"},
    {"bad number", "style S {\n class c {\n  part editor E {\n   width = 8px\n  }\n }\n}\n", 4,
     "width", "bad number '8px' (expected an integer)"},
    {"negative size",
     "style S {\n class c {\n  part slider E {\n   minimum-size = -1 4\n  }\n }\n}\n", 4,
     "minimum-size", "negative number in '-1 4'"},
    {"bad cell", "style S {\n class c {\n  part slider E {\n   cell = 1\n  }\n }\n}\n", 4, "cell",
     "bad cell '1' (row column [row-span column-span])"},
    {"bad colour",
     "style S {\n class c {\n  part slider E {\n   background = #12345g\n  }\n }\n}\n", 4,
     "background", "bad colour '#12345g'"},
    {"bad side", "style S {\n class c {\n  part slider E {\n   attach = up\n  }\n }\n}\n", 4,
     "attach", "unknown side 'up'"},
    {"bad boolean", "style S {\n class c {\n  part slider E {\n   visible = maybe\n  }\n }\n}\n", 4,
     "visible", "bad boolean 'maybe' (yes or no)"},
    {"unquoted text", "style S {\n class c {\n  part label E {\n   text = hello\n  }\n }\n}\n", 4,
     "text", "expected a double-quoted text"},
    {"unterminated text",
     "style S {\n class c {\n  part label E {\n   text = \"hello\n  }\n }\n}\n", 4, "text",
     "the text has no closing double quote"},
    {"setting given twice",
     "style S {\n class c {\n  part label E {\n   text = \"a\"\n   text = \"b\"\n  }\n }\n}\n", 5,
     "text", "'text' given twice in part 'E' (first at line 4)"},
    {"editor text and value",
     "style S {\n class c {\n  part editor E {\n   text <-> Name\n   value <-> Value\n  }\n }\n}\n",
     5, "value", "an editor shows a number ('value') or a text ('text'), not both"},
    {"duplicate style", "style S {\n}\nstyle S {\n}\n", 3, "S",
     "duplicate style 'S' (first at line 1)"},
    {"duplicate class", "style S {\n class c {\n }\n class c {\n }\n}\n", 4, "c",
     "duplicate class 'c' in style 'S' (first at line 2)"},
    {"duplicate part",
     "style S {\n class c {\n  part grid G {\n   part label A {\n   }\n  }\n  part slider A {\n"
     "  }\n }\n}\n",
     7, "A", "duplicate part name 'A' in the class (first at line 4)"},
    {"unterminated block", "style S {\n class c {\n  part label A {\n }\n}\n", 1, "S",
     "block 'style S' is not closed (no '}' before the end of the file)"},
    {"stray brace", "style S {\n}\n}\n", 3, "", "'}' without an open block"},
    {"header without brace", "style S {\n class c\n}\n", 2, "c",
     "block header 'class c' does not end with '{'"},
    {"unknown block", "section S {\n}\n", 1, "section", "unknown block 'section'"},
    {"class outside a style", "class c {\n}\n", 1, "c", "a class is only inside a style"},
    {"part in a slider",
     "style S {\n class c {\n  part slider A {\n   part label B {\n   }\n  }\n }\n}\n", 4, "B",
     "parts nest only in grid parts; 'A' is a slider"},
    {"setting outside a part", "style S {\n class c {\n  width = 3\n }\n}\n", 3, "width",
     "a setting is only inside a part"},
    {"neither block nor setting",
     "style S {\n class c {\n  part label A {\n   just words\n  }\n"
     " }\n}\n",
     4, "just", "expected 'TARGET = VALUE'"},
    {"invalid UTF-8",
     "style S {\n class c {\n  part label A {\n   text = \"\xC3\x28\"\n  }\n }\n}\n", 4, "",
     "invalid UTF-8"},
};

TEST(StyleSheet, EachFaultIsReportedWithItsLineAndKey) {
  for (const BadSheet& bad : kBadSheets) {
    SCOPED_TRACE(bad.what);
    KEPLoadResult result;
    EXPECT_FALSE(Parse(bad.text, result)) << "a sheet with a fault is not used";
    ASSERT_EQ(result.ErrorIssues().size(), 1U) << result.Text();
    const KEPLoadIssue& issue = result.ErrorIssues().front();
    EXPECT_EQ(issue.file, "test.sypstyle");
    EXPECT_EQ(issue.line, bad.line);
    EXPECT_EQ(issue.key, bad.key);
    EXPECT_NE(issue.message.find(bad.message), std::string::npos) << issue.message;
  }
}

TEST(StyleSheet, AFaultyBlockIsSkippedWithoutFollowUpErrors) {
  KEPLoadResult result;
  EXPECT_FALSE(
      Parse("style S {\n class c {\n  part knob K {\n   nonsense here\n"
            "   part grid G {\n   }\n  }\n  part label L {\n   width = 3\n  }\n }\n}\n",
            result));
  // The unknown kind, then the label's setting: the lines of the skipped part say nothing.
  ASSERT_EQ(result.ErrorIssues().size(), 2U) << result.Text();
  EXPECT_EQ(result.ErrorIssues()[0].line, 3);
  EXPECT_EQ(result.ErrorIssues()[1].line, 9);
}

TEST(StyleSheet, NestingIsLimited) {
  std::string text = "style S {\n class c {\n";
  for (int i = 0; i <= KEPVidStyleSheet::kMaxDepth; ++i)
    text += "part grid G" + std::to_string(i) + " {\n";
  for (int i = 0; i <= KEPVidStyleSheet::kMaxDepth; ++i) text += "}\n";
  text += " }\n}\n";
  KEPLoadResult result;
  EXPECT_FALSE(Parse(text, result));
  ASSERT_EQ(result.ErrorIssues().size(), 1U) << result.Text();
  EXPECT_EQ(result.ErrorIssues()[0].line, 3 + KEPVidStyleSheet::kMaxDepth);
  EXPECT_NE(result.ErrorIssues()[0].message.find("nested deeper than 16"), std::string::npos);
}

TEST(StyleSheet, TheBundledSheetHasTheControlsClasses) {
  const std::string path = KEPMsgCatalog::ResourcesDirectory() + "/KEPRshUI.sypstyle";
  KEPLoadResult result;
  const auto sheet = KEPVidStyleSheet::Load(path, result);
  ASSERT_TRUE(sheet) << result.Text();
  const KEPVidStyle* style = sheet->FindStyle("Default");
  ASSERT_NE(style, nullptr);
  for (const char* name : {"dynamic-slider", "ratio", "scalar-spinner"}) {
    const KEPVidStyleClass* found = KEPVidStyleSheet::FindClass(*style, name);
    ASSERT_NE(found, nullptr) << name;
    EXPECT_FALSE(found->prefix) << name;
  }
}

class StyleSheetFiles : public keptest::Fixture {
 protected:
  void SetUp() override {
    keptest::Fixture::SetUp();
    dir_ = std::filesystem::temp_directory_path() /
           ("keprsh_style_" + std::to_string(::getpid()) + "_" +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::create_directories(dir_);
  }
  void TearDown() override {
    std::error_code ec;
    std::filesystem::remove_all(dir_, ec);
    keptest::Fixture::TearDown();
  }
  std::string Write(const std::string& name, const std::string& text) const {
    const std::string path = (dir_ / name).string();
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  std::filesystem::path dir_;
};

TEST_F(StyleSheetFiles, ASheetIsReadOncePerHostSession) {
  const std::string path = Write("a.sypstyle", "style S {\n}\n");
  KEPLoadResult result;
  bool first = false;
  const auto sheet = KEPVidStyleSheet::Load(path, result, &first);
  ASSERT_TRUE(sheet);
  EXPECT_TRUE(first);
  Write("a.sypstyle", "style S\n");
  EXPECT_EQ(KEPVidStyleSheet::Load(path, result, &first), sheet) << "the file is not read again";
  EXPECT_FALSE(first);
  KEPHostContext::Reset();
  EXPECT_FALSE(KEPVidStyleSheet::Load(path, result, &first)) << "a new session reads it again";
  EXPECT_TRUE(first);
  EXPECT_EQ(result.ErrorIssues().size(), 1U);
  // The errors are kept too: the same answer without reading.
  KEPLoadResult again;
  EXPECT_FALSE(KEPVidStyleSheet::Load(path, again, &first));
  EXPECT_EQ(again.Text(), result.Text());
}

TEST_F(StyleSheetFiles, AMissingFileIsAnErrorWithoutLine) {
  KEPLoadResult result;
  EXPECT_FALSE(KEPVidStyleSheet::Load((dir_ / "none.sypstyle").string(), result));
  ASSERT_EQ(result.ErrorIssues().size(), 1U);
  EXPECT_EQ(result.ErrorIssues()[0].line, 0);
  EXPECT_EQ(result.ErrorIssues()[0].file, (dir_ / "none.sypstyle").string());
}

}  // namespace
