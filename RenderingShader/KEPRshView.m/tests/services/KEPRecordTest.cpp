#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "KEPHostRecorder.h"
#include "KEPRecord.h"
#include "KEPServicesTestUtil.h"
#include "KEPTestSupport.h"

namespace {

using keptest::ReadFile;
using keptest::WriteFile;

class RecordTest : public ::testing::Test {
 protected:
  void SetUp() override { KEPHostRecorder::Stop(); }
  void TearDown() override { KEPHostRecorder::Stop(); }
  keptest::TempDir dir_;
};

const char* const kModuleSettings[] = {"LayoutParameterSortingLevel",
                                       "KEPRmaUIParameterConfiguration",
                                       "RNDRSHColorParameterColorPicker"};

TEST_F(RecordTest, OffAnswersTheBuiltInLevels) {
  EXPECT_EQ(KEPRecord::GetMode(), KEPRecordMode::Off);
  for (const char* name : kModuleSettings) EXPECT_EQ(KEPRecord::GetSoftwareLevel(name), 1) << name;
  EXPECT_TRUE(KEPHostRecorder::RecordedLevels().empty());
}

TEST_F(RecordTest, CaptureThenReplayRoundTrip) {
  const std::string path = dir_.File("session.rec");
  ASSERT_EQ(KEPHostRecorder::StartCapture(path), S_OK);
  EXPECT_EQ(KEPRecord::GetMode(), KEPRecordMode::Capture);
  EXPECT_EQ(ReadFile(path), "{\n  \"softwareLevels\": {}\n}\n");  // exists from the start
  EXPECT_EQ(KEPRecord::GetSoftwareLevel("LayoutParameterSortingLevel"), 1);
  EXPECT_EQ(KEPRecord::GetSoftwareLevel("RNDRSHColorParameterColorPicker"), 1);
  EXPECT_EQ(KEPRecord::GetSoftwareLevel("LayoutParameterSortingLevel"), 1);
  KEPHostRecorder::Stop();
  EXPECT_EQ(ReadFile(path),
            "{\n  \"softwareLevels\": {\n    \"LayoutParameterSortingLevel\": 1,\n"
            "    \"RNDRSHColorParameterColorPicker\": 1\n  }\n}\n");

  ASSERT_EQ(KEPHostRecorder::StartReplay(path), S_OK);
  EXPECT_EQ(KEPRecord::GetMode(), KEPRecordMode::Replay);
  EXPECT_EQ(KEPHostRecorder::GetRecordPath(), path);
  EXPECT_EQ(KEPRecord::GetSoftwareLevel("LayoutParameterSortingLevel"), 1);
  EXPECT_EQ(KEPRecord::GetSoftwareLevel("RNDRSHColorParameterColorPicker"), 1);
  // Not asked during the capture: a replay answers 0 for it.
  EXPECT_EQ(KEPRecord::GetSoftwareLevel("KEPRmaUIParameterConfiguration"), 0);
}

TEST_F(RecordTest, ReplayAnswersRecordedLevelsEvenWhenTheyDifferFromTheBuiltIn) {
  const std::string path = dir_.File("older.rec");
  WriteFile(path, R"({"softwareLevels": {"KEPRmaUIParameterConfiguration": 2,
                                         "LayoutParameterSortingLevel": 0}})");
  ASSERT_EQ(KEPHostRecorder::StartReplay(path), S_OK);
  EXPECT_EQ(KEPRecord::GetSoftwareLevel("KEPRmaUIParameterConfiguration"), 2);
  EXPECT_EQ(KEPRecord::GetSoftwareLevel("LayoutParameterSortingLevel"), 0);
  EXPECT_EQ(KEPRecord::GetBuiltInLevel("KEPRmaUIParameterConfiguration"), 1);
}

TEST_F(RecordTest, AnUnusableRecordLeavesTheRecorderOffWithAnError) {
  struct Row {
    const char* what;
    const char* content;  // null: no file
    const char* fragment;
  };
  const Row rows[] = {
      {"missing file", nullptr, "cannot read"},
      {"syntax", "{\n\"softwareLevels\": {\n\"a\": }\n}", ":3: malformed"},
      {"no levels", "{\"levels\": {}}", ":1: malformed"},
      {"text level", "{\"softwareLevels\": {\"a\": \"1\"}}", "level \"a\""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    const std::string path = dir_.File(std::string(row.what) + ".rec");
    if (row.content) WriteFile(path, row.content);
    keptest::TraceCapture traces;
    EXPECT_EQ(KEPHostRecorder::StartReplay(path), E_FAIL);
    EXPECT_EQ(KEPRecord::GetMode(), KEPRecordMode::Off);
    EXPECT_EQ(KEPRecord::GetSoftwareLevel("LayoutParameterSortingLevel"), 1);
    ASSERT_EQ(traces.Entries().size(), 1u);
    EXPECT_EQ(traces.Entries()[0].level, KEPTraceLevel::Error);
    EXPECT_TRUE(traces.Contains(path)) << traces.Entries()[0].text;
    EXPECT_TRUE(traces.Contains(row.fragment)) << traces.Entries()[0].text;
  }
  keptest::TraceCapture traces;
  EXPECT_EQ(KEPHostRecorder::StartCapture(dir_.File("missing/dir.rec")), E_FAIL);
  EXPECT_EQ(KEPRecord::GetMode(), KEPRecordMode::Off);
  EXPECT_EQ(traces.Entries().size(), 1u);
}

TEST_F(RecordTest, ANameThatIsNotUtf8IsRecordedAndReplayedUnderTheSameKey) {
  const std::string path = dir_.File("names.rec");
  ASSERT_EQ(KEPHostRecorder::StartCapture(path), S_OK);
  EXPECT_NO_THROW(EXPECT_EQ(KEPRecord::GetSoftwareLevel("Gr\xE9sil"), 1));
  // The file holds what memory holds: the name with U+FFFD for its bad byte.
  const std::map<KEPString, int> recorded = {{"Gr\xEF\xBF\xBDsil", 1}};
  EXPECT_EQ(KEPHostRecorder::RecordedLevels(), recorded);
  EXPECT_NE(ReadFile(path).find("\"Gr\xEF\xBF\xBDsil\": 1"), std::string::npos) << ReadFile(path);
  KEPHostRecorder::Stop();
  ASSERT_EQ(KEPHostRecorder::StartReplay(path), S_OK);
  EXPECT_EQ(KEPHostRecorder::RecordedLevels(), recorded);
  EXPECT_EQ(KEPRecord::GetSoftwareLevel("Gr\xE9sil"), 1);
}

TEST_F(RecordTest, ALevelThatCannotBeWrittenIsNotRecordedAndIsTriedAgain) {
  const std::string path = dir_.File("blocked.rec");
  ASSERT_EQ(KEPHostRecorder::StartCapture(path), S_OK);
  const std::string empty = ReadFile(path);
  std::filesystem::remove(path);
  std::filesystem::create_directory(path);  // the record file cannot be replaced now
  {
    keptest::TraceCapture traces;
    EXPECT_EQ(KEPRecord::GetSoftwareLevel("LayoutParameterSortingLevel"), 1);
    EXPECT_TRUE(KEPHostRecorder::RecordedLevels().empty());
    ASSERT_EQ(traces.Entries().size(), 1u);
    EXPECT_TRUE(traces.Contains(path)) << traces.Entries()[0].text;
  }
  std::filesystem::remove(path);
  WriteFile(path, empty);
  EXPECT_EQ(KEPRecord::GetSoftwareLevel("LayoutParameterSortingLevel"), 1);
  EXPECT_EQ(KEPHostRecorder::RecordedLevels(),
            (std::map<KEPString, int>{{"LayoutParameterSortingLevel", 1}}));
  EXPECT_NE(ReadFile(path).find("LayoutParameterSortingLevel"), std::string::npos);
}

/// Ends a death-test child: removes its temporary directory and exits 0 when `ok`.
[[noreturn]] void Finish(bool ok, const keptest::TempDir& dir) {
  std::error_code ec;
  std::filesystem::remove_all(dir.Path(), ec);
  std::_Exit(ok ? 0 : 1);
}

// The environment is read once, on first use; each case therefore runs in a fresh process.
TEST(RecordEnvironmentDeathTest, TheEnvironmentChoosesTheModeOnFirstUse) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  keptest::TempDir dir;
  const std::string path = dir.File("env.rec");
  WriteFile(path, R"({"softwareLevels": {"LayoutParameterSortingLevel": 7}})");
  EXPECT_EXIT(
      {
        ::setenv("KEPRSH_RECORD", path.c_str(), 1);
        ::setenv("KEPRSH_RECORD_MODE", "replay", 1);
        const bool ok = KEPRecord::GetMode() == KEPRecordMode::Replay &&
                        KEPRecord::GetSoftwareLevel("LayoutParameterSortingLevel") == 7;
        Finish(ok, dir);
      },
      ::testing::ExitedWithCode(0), "");
  EXPECT_EXIT(
      {
        ::setenv("KEPRSH_RECORD", dir.File("captured.rec").c_str(), 1);
        ::setenv("KEPRSH_RECORD_MODE", "Capture", 1);
        const bool ok =
            KEPRecord::GetSoftwareLevel("RNDRSHColorParameterColorPicker") == 1 &&
            ReadFile(dir.File("captured.rec")).find("ColorPicker\": 1") != std::string::npos;
        Finish(ok, dir);
      },
      ::testing::ExitedWithCode(0), "");
  EXPECT_EXIT(
      {
        ::setenv("KEPRSH_RECORD", path.c_str(), 1);
        ::setenv("KEPRSH_RECORD_MODE", "rewind", 1);
        keptest::TraceCapture traces;
        const bool ok = KEPRecord::GetMode() == KEPRecordMode::Off &&
                        traces.Contains("neither capture nor replay");
        Finish(ok, dir);
      },
      ::testing::ExitedWithCode(0), "");
}

}  // namespace
