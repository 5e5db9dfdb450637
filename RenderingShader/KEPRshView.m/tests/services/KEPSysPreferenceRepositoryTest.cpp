#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "KEPAtomicFile.h"
#include "KEPHostPreferences.h"
#include "KEPServicesTestUtil.h"
#include "KEPSysPreferenceRepository.h"
#include "KEPTestSupport.h"

namespace {

using keptest::ReadFile;
using keptest::WriteFile;

class PreferenceTest : public ::testing::Test {
 protected:
  PreferenceTest() : file_(dir_.File("prefs/preferences.json")), env_("KEPRSH_PREFERENCES", file_) {
    KEPHostPreferences::Unload();
  }
  ~PreferenceTest() override { KEPHostPreferences::Unload(); }

  /// Forgets the in-memory state, as a new session would.
  static KEPSysPreferenceRepository* Reopen(const char* name) {
    KEPHostPreferences::Unload();
    return KEPSysPreferenceRepository::GetRepository(name);
  }

  keptest::TempDir dir_;
  std::string file_;
  keptest::ScopedEnv env_;
};

TEST_F(PreferenceTest, CommittedValuesSurviveANewSession) {
  KEPSysPreferenceRepository* repo =
      KEPSysPreferenceRepository::GetRepository("KEPRmaUIGroupExpansion");
  ASSERT_NE(repo, nullptr);
  const short collapsed = 1;
  const short pair[] = {-7, 32767};
  EXPECT_EQ(repo->WriteSetting("mia_phen_material.Reflection.Collapsed", &collapsed, 1), 1);
  EXPECT_EQ(repo->WriteSetting("pair", pair, 2), 2);
  EXPECT_EQ(repo->SetValue("note", "caf\xC3\xA9 \"quoted\""), S_OK);
  EXPECT_FALSE(std::filesystem::exists(file_));  // nothing is written before a commit
  ASSERT_EQ(repo->Commit(), S_OK);               // creates the missing directory

  repo = Reopen("KEPRmaUIGroupExpansion");
  short value = 99;
  EXPECT_EQ(repo->ReadSetting("mia_phen_material.Reflection.Collapsed", &value, 1), 1);
  EXPECT_EQ(value, 1);
  short both[2] = {};
  EXPECT_EQ(repo->ReadSetting("pair", both, 2), 2);
  EXPECT_EQ(both[0], -7);
  EXPECT_EQ(both[1], 32767);
  KEPString text;
  EXPECT_EQ(repo->GetValue("note", text), S_OK);
  EXPECT_EQ(text, "caf\xC3\xA9 \"quoted\"");
}

TEST_F(PreferenceTest, UncommittedChangesAreLostAndNeverWrittenByAnotherRepository) {
  KEPSysPreferenceRepository* a = KEPSysPreferenceRepository::GetRepository("A");
  KEPSysPreferenceRepository* b = KEPSysPreferenceRepository::GetRepository("B");
  a->SetValue("k", "committed");
  ASSERT_EQ(a->Commit(), S_OK);
  a->SetValue("k", "pending");
  b->SetValue("k", "b");
  ASSERT_EQ(b->Commit(), S_OK);

  KEPString text;
  EXPECT_EQ(Reopen("A")->GetValue("k", text), S_OK);
  EXPECT_EQ(text, "committed");
  EXPECT_EQ(KEPSysPreferenceRepository::GetRepository("B")->GetValue("k", text), S_OK);
  EXPECT_EQ(text, "b");
}

TEST_F(PreferenceTest, MissingKeysAndWrongTypesFailWithoutTouchingOutputs) {
  KEPSysPreferenceRepository* repo = KEPSysPreferenceRepository::GetRepository("R");
  repo->SetValue("text", "yes");
  const short one = 1;
  repo->WriteSetting("short", &one, 1);

  KEPString text = "untouched";
  EXPECT_EQ(repo->GetValue("missing", text), E_FAIL);
  EXPECT_EQ(repo->GetValue("short", text), E_FAIL);
  EXPECT_EQ(text, "untouched");
  short value = 42;
  EXPECT_EQ(repo->ReadSetting("missing", &value, 1), 0);
  EXPECT_EQ(repo->ReadSetting("text", &value, 1), 0);
  EXPECT_EQ(repo->ReadSetting("short", nullptr, 1), 0);
  EXPECT_EQ(repo->ReadSetting("short", &value, 0), 0);
  EXPECT_EQ(value, 42);

  EXPECT_EQ(repo->WriteSetting("", &one, 1), 0);
  EXPECT_EQ(repo->WriteSetting("none", &one, 0), 0);
  EXPECT_FALSE(repo->HasKey("none"));
  EXPECT_EQ(repo->SetValue("", "x"), E_INVALIDARG);
  EXPECT_EQ(repo->RemoveKey("text"), S_OK);
  EXPECT_EQ(repo->RemoveKey("text"), E_FAIL);
  EXPECT_EQ(repo->Keys(), std::vector<KEPString>{"short"});
}

TEST_F(PreferenceTest, RepositoriesAreSharedByNameAndCanBeMadeUnavailable) {
  EXPECT_EQ(KEPSysPreferenceRepository::GetRepository("X"),
            KEPSysPreferenceRepository::GetRepository("X"));
  EXPECT_EQ(KEPSysPreferenceRepository::GetRepository(""), nullptr);
  KEPHostPreferences::SetUnavailableForTest("KEPRmaUIGroupExpansion", true);
  EXPECT_EQ(KEPSysPreferenceRepository::GetRepository("KEPRmaUIGroupExpansion"), nullptr);
  KEPHostPreferences::SetUnavailableForTest("KEPRmaUIGroupExpansion", false);
  EXPECT_NE(KEPSysPreferenceRepository::GetRepository("KEPRmaUIGroupExpansion"), nullptr);
}

TEST_F(PreferenceTest, FileLocationFollowsTheEnvironment) {
  EXPECT_EQ(KEPHostPreferences::FilePath(), file_);
  keptest::ScopedEnv noOverride("KEPRSH_PREFERENCES", std::nullopt);
  {
    keptest::ScopedEnv xdg("XDG_CONFIG_HOME", "/cfg");
    EXPECT_EQ(KEPHostPreferences::FilePath(), "/cfg/rshview/preferences.json");
  }
  keptest::ScopedEnv noXdg("XDG_CONFIG_HOME", std::nullopt);
  keptest::ScopedEnv home("HOME", "/home/u");
  EXPECT_EQ(KEPHostPreferences::FilePath(), "/home/u/.config/rshview/preferences.json");
  keptest::ScopedEnv noHome("HOME", std::nullopt);
  EXPECT_EQ(KEPHostPreferences::FilePath(), "");
}

TEST_F(PreferenceTest, MalformedFilesAreSetAsideWithAWarningNamingFileAndLine) {
  struct Row {
    const char* what;
    const char* content;
    int line;
  };
  const Row rows[] = {
      {"syntax error", "{\n  \"repositories\": {\n    \"R\": { \"k\": [1,, 2] }\n  }\n}\n", 3},
      {"truncated", "{\n  \"repositories\": {\n", 3},
      {"wrong top level", "[1, 2, 3]\n", 1},
      {"repository not an object", "{ \"repositories\": { \"R\": 5 } }", 1},
  };
  std::filesystem::create_directories(dir_.File("prefs"));
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    WriteFile(file_, row.content);
    keptest::TraceCapture traces;
    KEPSysPreferenceRepository* repo = Reopen("R");
    ASSERT_NE(repo, nullptr);
    EXPECT_TRUE(repo->Keys().empty());
    ASSERT_EQ(traces.Entries().size(), 1u);
    EXPECT_EQ(traces.Entries()[0].level, KEPTraceLevel::Warning);
    EXPECT_NE(traces.Entries()[0].text.find(file_ + ":" + std::to_string(row.line) + ":"),
              std::string::npos)
        << traces.Entries()[0].text;
    EXPECT_FALSE(std::filesystem::exists(file_));
    EXPECT_EQ(ReadFile(file_ + ".bad"), row.content);  // the user's data is kept

    // The store goes on working and writes a good file again.
    repo->SetValue("k", "v");
    ASSERT_EQ(repo->Commit(), S_OK);
    KEPString text;
    EXPECT_EQ(Reopen("R")->GetValue("k", text), S_OK);
  }
}

TEST_F(PreferenceTest, AValueOfTheWrongTypeIsDroppedAndTheRestKept) {
  std::filesystem::create_directories(dir_.File("prefs"));
  WriteFile(file_, R"({ "repositories": { "R": { "good": [0], "big": [40000], "obj": {} } } })");
  keptest::TraceCapture traces;
  KEPSysPreferenceRepository* repo = KEPSysPreferenceRepository::GetRepository("R");
  EXPECT_EQ(repo->Keys(), std::vector<KEPString>{"good"});
  EXPECT_EQ(traces.Entries().size(), 2u);
  EXPECT_TRUE(traces.Contains("key \"big\""));
  EXPECT_TRUE(std::filesystem::exists(file_));
}

TEST_F(PreferenceTest, ACommitThatCannotWriteFailsNamingTheFile) {
  // The configuration directory's place is taken by a plain file.
  WriteFile(dir_.File("prefs"), "not a directory");
  KEPSysPreferenceRepository* repo = KEPSysPreferenceRepository::GetRepository("R");
  repo->SetValue("k", "v");
  keptest::TraceCapture traces;
  EXPECT_EQ(repo->Commit(), E_FAIL);
  ASSERT_EQ(traces.Entries().size(), 1u);
  EXPECT_EQ(traces.Entries()[0].level, KEPTraceLevel::Error);
  EXPECT_TRUE(traces.Contains(file_)) << traces.Entries()[0].text;
  // The working state is kept for a later attempt.
  KEPString text;
  EXPECT_EQ(repo->GetValue("k", text), S_OK);
}

TEST(AtomicFileTest, ReplacesTheWholeFileAndLeavesNothingElse) {
  keptest::TempDir dir;
  const std::string path = dir.File("f.json");
  std::string error;
  ASSERT_TRUE(KEPWriteFileAtomically(path, "old content that is longer", error));
  ASSERT_TRUE(KEPWriteFileAtomically(path, "new", error));
  EXPECT_EQ(ReadFile(path), "new");
  int files = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(dir.Path()))
    ++files;
  EXPECT_EQ(files, 1);

  // Into a missing directory: failure naming the file, and the target is not created.
  EXPECT_FALSE(KEPWriteFileAtomically(dir.File("missing/f.json"), "x", error));
  EXPECT_NE(error.find(dir.File("missing/f.json")), std::string::npos);
}

/// In a death-test child: allows at most 4 KiB per file, so that a larger write stops half way
/// as a full disk or a crash would stop it, and exits 0 when the old file is left whole.
[[noreturn]] void WriteCutShort(const keptest::TempDir& dir, const std::string& path,
                                const std::string& old) {
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  limit.rlim_cur = limit.rlim_max = 4096;
  ::setrlimit(RLIMIT_FSIZE, &limit);
  std::string error;
  const bool written = KEPWriteFileAtomically(path, std::string(100000, 'x'), error);
  int files = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(dir.Path()))
    ++files;
  std::_Exit(!written && ReadFile(path) == old && files == 1 && !error.empty() ? 0 : 1);
}

TEST(AtomicFileDeathTest, AWriteCutShortLeavesTheOldFileWhole) {
  keptest::TempDir dir;
  const std::string path = dir.File("preferences.json");
  const std::string old = "{\"repositories\": {}}\n";
  WriteFile(path, old);
  EXPECT_EXIT(WriteCutShort(dir, path, old), ::testing::ExitedWithCode(0), "");
  EXPECT_EQ(ReadFile(path), old);
}

}  // namespace

namespace {
TEST_F(PreferenceTest, TextThatIsNotUtf8NeverThrowsThroughACommit) {
  KEPSysPreferenceRepository* repo = KEPSysPreferenceRepository::GetRepository("R");
  ASSERT_EQ(repo->SetValue("Gr\xE9sil", "v\xFF"), S_OK);
  EXPECT_NO_THROW(EXPECT_EQ(repo->Commit(), S_OK));
}
}  // namespace
