// Warnings of the loaders: a value that the readers take differently from how it looks, or a key
// that no reader asks for, loads (the readers cope) and is reported with what the readers will
// make of it; only what cannot be read at all stops a load.
#include <unistd.h>
#include <filesystem>
#include <fstream>

#include "KEPConfigurationLoader.h"
#include "KEPHostConfiguration.h"
#include "KEPShaderLibraryLoader.h"
#include "KEPString.h"
#include "KEPTestSupport.h"
#include "LibraryTestSupport.h"

namespace {
namespace fs = std::filesystem;

using keptest::ScratchDir;

class LoadWarnings : public keptest::Fixture {};

// One line "key = value" in configuration "t": nothing to say, or one warning whose text holds
// `message` and `hint`.
TEST_F(LoadWarnings, ConfigurationValuesThatReadOtherwiseThanTheyLook) {
  struct Case {
    const char* line;
    const char* message;  // nullptr: no warning
    const char* hint;
  };
  const Case cases[] = {
      // Range keys, parsed "%le".
      {"x.Min = 0 (black)", "text after the number in '0 (black)'",
       "read as 0, '(black)' is ignored"},
      {"x.Max = 1,5", "text after the number in '1,5'", "read as 1, ',5' is ignored"},
      {"x.Step =", "empty value", "not read as a number: the editors keep their default step"},
      {"x.SoftMin = abc", "'abc' is not a number", "do not fall back to another key"},
      {"x.HardMax = 1e999", "'1e999' is not a finite number", "read as inf"},
      {"x.SoftMax = -inf", "'-inf' is not a finite number", "read as -inf"},
      {"x.HardMin = -2.5e-1", nullptr, nullptr},
      // GroupCount and group orders, parsed as unsigned 64-bit numbers.
      {"GroupCount = +2", "sign before the number in '+2'", "read as 2"},
      {"GroupCount = 2x", "text after the number in '2x'", "read as 2, 'x' is ignored"},
      {"GroupCount = -1", "negative number in '-1'",
       "read as 18446744073709551615 (a negative number wraps around)"},
      {"GroupCount = 99999999999999999999", "too large for an unsigned 64-bit number",
       "read as 18446744073709551615"},
      {"GroupCount = 1001", "more than 1000 groups", "read as 1001"},
      {"GroupCount = 1000", nullptr, nullptr},
      {"GroupCount =", "empty value", "the node has no configured groups"},
      {"Group0.Order = -0", "sign before the number in '-0'", "read as 0"},
      {"Group3.Order = 7", nullptr, nullptr},
      // Sorting orders, parsed as unsigned 32-bit numbers.
      {"x.SortingOrder = 7abc", "text after the number in '7abc'", "read as 7, 'abc' is ignored"},
      {"x.SortingOrder = -1", "negative number in '-1'", "read as 4294967295"},
      {"x.SortingOrder = 4294967296", "too large for an unsigned 32-bit number", "read as "},
      {"x.SortingOrder = first", "'first' is not an unsigned number",
       "ordered by name against its neighbours"},
      // Enumeration values: the store's integer form reads "%d" as the readers do.
      {"x.EnumVal2 = 7abc", "text after the number in '7abc'", "read as 7"},
      {"x.EnumVal2 = seven", "'seven' is not an integer",
       "entry 2 takes its value from x.Enum2 read as a number instead"},
      {"x.EnumVal0 = 3000000000", "beyond the 32-bit integer range", "read as "},
      {"x.EnumVal-1 = +7", nullptr, nullptr},
      {"x.Enum2 = 7 (seven)", nullptr, nullptr},  // a label: its text is shown as it is
      // Switches.
      {"GlobalShaderSortingOrder.Status = on", "'on' is neither yes, true, 1 nor no, false, 0, off",
       "read as sorting off"},
      {"GlobalShaderSortingOrder.Status = No", nullptr, nullptr},
      {"Group1.CollapsedByDefault = TRUE", nullptr, nullptr},
      {"Group1.CollapsedByDefault = collapsed", "'collapsed' is neither", "read as expanded"},
      // Units and magnitudes, looked up as written and then in upper case.
      {"x.Unit = inch", "unknown unit 'inch'", "units: mm, cm, m, km, in, ft, rad, deg"},
      {"x.Unit = CM", nullptr, nullptr},
      {"x.Magnitude = angle", nullptr, nullptr},
      {"x.Magnitude = SPEED", "unknown magnitude 'SPEED'", "magnitudes: LENGTH, ANGLE"},
      // Keys that no reader asks for.
      {"x.min = 0", "unknown key suffix '.min'",
       "never read: no reader asks for it (did you "
       "mean '.Min'?)"},
      {"x.label1 = A", "unknown key suffix '.label1'", "did you mean '.Label1'?"},
      {"x.Colour = red", "unknown key suffix '.Colour'", "never read: no reader asks for it"},
      {"x.Min_old = 0", "unknown key suffix '.Min_old'", "never read"},
      {"x.SortingOrder2 = 1", "'.SortingOrder' takes no index",
       "the readers ask for x.SortingOrder"},
      {"x.Label01 = A", "index '01' is not how the readers write 1",
       "never read: the readers ask for x.Label1"},
      {"x.Label = A", "'.Label' without an index", "the readers ask for x.Label0, x.Label1"},
      {"Group01.Name = A", "group number '01' is not how the readers write 1",
       "the readers ask for Group1.Name"},
      {"x.Name = A", "'.Name' follows a group key", "never read"},
      {"groupcount = 2", "unknown key", "did you mean 'GroupCount'?"},
      {"x.SecondaryParameter = y", nullptr, nullptr},
      {"x.Label12 = A", nullptr, nullptr},
  };
  for (const Case& c : cases) {
    ScratchDir dir;
    const std::string file = dir.Write("config/t.cfg", std::string(c.line) + "\n");
    const KEPLoadResult result = KEPConfigurationLoader::LoadDirectory(dir.Path("config"));
    EXPECT_TRUE(result.Ok()) << c.line << ": " << result.Text();
    if (!c.message) {
      EXPECT_EQ(result.WarningText(), "") << c.line;
      continue;
    }
    ASSERT_EQ(result.WarningIssues().size(), 1u) << c.line << ": " << result.WarningText();
    const std::string key(
        KEPTrimBlanks(std::string_view(c.line).substr(0, std::string_view(c.line).find('='))));
    const std::string text = result.Warnings().front();
    EXPECT_EQ(text.rfind(file + ":1: key '" + key + "': ", 0), 0u) << text;
    EXPECT_NE(text.find(c.message), std::string::npos) << text;
    EXPECT_NE(result.WarningIssues().front().hint.find(c.hint), std::string::npos) << text;
  }
}

// The structured form names the configuration, and the parameter for a key of one parameter.
TEST_F(LoadWarnings, WarningsNameTheConfigurationAndTheParameter) {
  ScratchDir dir;
  dir.Write("config/glass.cfg",
            "# comment\n\nroughness.Min = 0 (none)\nGroupCount = -1\nGroup0.Name = A\n"
            "roughness.Name = B\n");
  const KEPLoadResult result = KEPConfigurationLoader::LoadDirectory(dir.Path("config"));
  ASSERT_TRUE(result.Ok()) << result.Text();
  ASSERT_EQ(result.WarningIssues().size(), 3u) << result.WarningText();
  struct Expected {
    int line;
    const char* key;
    const char* parameter;
  };
  const Expected expected[] = {
      {3, "roughness.Min", "roughness"}, {4, "GroupCount", ""}, {6, "roughness.Name", "roughness"}};
  for (std::size_t i = 0; i < 3; ++i) {
    const KEPLoadIssue& issue = result.WarningIssues()[i];
    EXPECT_EQ(issue.file, dir.Path("config/glass.cfg"));
    EXPECT_EQ(issue.line, expected[i].line);
    EXPECT_EQ(issue.key, expected[i].key);
    EXPECT_EQ(issue.configuration, "glass");
    EXPECT_EQ(issue.parameter, expected[i].parameter);
    EXPECT_EQ(issue.shaderType, "");
  }
  EXPECT_EQ(result.WarningIssues()[0].message, "text after the number in '0 (none)'");
  EXPECT_EQ(result.WarningIssues()[0].hint, "read as 0, '(none)' is ignored");
}

// Warnings never stop a load: the value is stored as written, for the readers to take as they
// do. Errors stop it, and the warnings found beside them are still listed, with every error of
// every file (parents included).
TEST_F(LoadWarnings, WarningsLoadErrorsDoNot) {
  ScratchDir dir;
  dir.Write("config/a.cfg", "x.Min = 0 (black)\nGroupCount = +2\n");
  const KEPLoadResult loaded = KEPConfigurationLoader::LoadDirectory(dir.Path("config"));
  ASSERT_TRUE(loaded.Ok()) << loaded.Text();
  EXPECT_EQ(loaded.WarningCount(), 2u);
  KEPString value;
  ASSERT_EQ(KEPRbaConfiguration::GetHierarchicalValue("a", "x.Min", value), S_OK);
  EXPECT_EQ(value, "0 (black)");
  KEPHostConfiguration::Clear();

  dir.Write("config/b.cfg", "@parent = nowhere\nx.Max = 1 (white)\nx.Max = 2\n");
  const KEPLoadResult failed = KEPConfigurationLoader::LoadDirectory(dir.Path("config"));
  EXPECT_FALSE(failed.Ok());
  EXPECT_EQ(failed.Errors(),
            (std::vector<std::string>{
                dir.Path("config/b.cfg") + ":3: key 'x.Max': repeated key (first at line 2)",
                dir.Path("config/b.cfg") +
                    ":1: key '@parent': parent configuration 'nowhere' does not exist (no "
                    "nowhere.cfg)"}));
  EXPECT_EQ(failed.WarningCount(), 3u) << failed.WarningText();
  EXPECT_TRUE(KEPHostConfiguration::ConfigurationIds().empty());
}

TEST_F(LoadWarnings, ResourceTextsOfTheLibrary) {
  ScratchDir dir;
  dir.Write("library.json",
            "{\"shaderTypes\": {\"glass\": {\"parameters\": [\n"
            "{\"name\": \"q\", \"type\": \"KEPRmaInteger\", \"resources\": {\n"
            "\"min\": \"0.5x\",\n"
            "\"step\": \"\",\n"
            "\"enumvalue0\": \"1.5\",\n"
            "\"enumindex01\": \"0\",\n"
            "\"enumvalue1\": \"99999999999\",\n"
            "\"Max\": \"1\",\n"
            "\"colour\": \"red\",\n"
            "\"max\": \" 2\", \"widget\": \"combo\", \"enum0\": \"3 (three)\", \"label1\": \"A\"\n"
            "}}]}}}");
  KEPHostShaderLibrary library;
  const KEPLoadResult result = KEPShaderLibraryLoader::Load(dir.Path(), library);
  ASSERT_TRUE(result.Ok()) << result.Text();
  ASSERT_NE(library.FindType("glass"), nullptr) << "warnings do not stop the load";
  const std::string file = dir.Path("library.json");
  // What "%d" stores of a number beyond its range is the C library's affair: only the finding
  // is checked for it.
  std::vector<std::string> warnings = result.Warnings();
  ASSERT_EQ(warnings.size(), 7u) << result.WarningText();
  EXPECT_EQ(warnings[4].rfind(file + ":7: key 'enumvalue1': '99999999999' is beyond the 32-bit "
                                     "integer range; read as ",
                              0),
            0u)
      << warnings[4];
  warnings.erase(warnings.begin() + 4);
  EXPECT_EQ(warnings,
            (std::vector<std::string>{
                file + ":3: key 'min': text after the number in '0.5x'; read as 0.5, 'x' is "
                       "ignored",
                file + ":4: key 'step': empty value; not read as a number: the editors keep "
                       "their default step",
                file + ":5: key 'enumvalue0': text after the number in '1.5'; read as 1, '.5' "
                       "is ignored",
                file + ":6: key 'enumindex01': index '01' is not how the readers write 1; never "
                       "read: the readers ask for enumindex1",
                file + ":8: key 'Max': unknown resource key; never read: no reader asks for it "
                       "(did you mean 'max'?)",
                file + ":9: key 'colour': unknown resource key; never read: no reader asks for "
                       "it"}));
  const KEPLoadIssue& issue = result.WarningIssues().front();
  EXPECT_EQ(issue.shaderType, "glass");
  EXPECT_EQ(issue.parameter, "q");
  EXPECT_EQ(issue.configuration, "");
}

TEST(LoadResult, KeepsAThousandWarningsAndCountsAll) {
  KEPLoadResult first, second;
  KEPLoadIssue warning;
  warning.file = "a.cfg";
  warning.message = "m";
  for (std::size_t i = 0; i < KEPLoadResult::kMaxWarnings + 1; ++i) first.AddWarning(warning);
  second.AddWarning(warning);
  EXPECT_TRUE(first.Ok());
  EXPECT_EQ(first.WarningIssues().size(), KEPLoadResult::kMaxWarnings);
  EXPECT_EQ(first.WarningCount(), KEPLoadResult::kMaxWarnings + 1);
  second.Append(first);
  EXPECT_EQ(second.WarningIssues().size(), KEPLoadResult::kMaxWarnings);
  EXPECT_EQ(second.WarningCount(), KEPLoadResult::kMaxWarnings + 2);
  warning.line = 4;
  warning.key = "k";
  warning.hint = "h";
  EXPECT_EQ(warning.Text(), "a.cfg:4: key 'k': m; h");
}
}  // namespace
