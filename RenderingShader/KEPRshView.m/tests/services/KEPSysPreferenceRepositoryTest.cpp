#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <map>

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
  std::vector<std::string> setAside;  // each file set aside before stays as it was
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    const std::string bad =
        file_ + ".bad" + (setAside.empty() ? "" : "." + std::to_string(setAside.size()));
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
    EXPECT_TRUE(traces.Contains("set aside as " + bad)) << traces.Entries()[0].text;
    setAside.push_back(row.content);
    for (std::size_t n = 0; n < setAside.size(); ++n)  // the user's data is kept
      EXPECT_EQ(ReadFile(file_ + ".bad" + (n ? "." + std::to_string(n) : "")), setAside[n]);

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

TEST_F(PreferenceTest, TextsThatAreNotUtf8AreRefusedWithoutThrowing) {
  KEPSysPreferenceRepository* repo = KEPSysPreferenceRepository::GetRepository("R");
  ASSERT_EQ(repo->SetValue("k", "kept"), S_OK);
  const short one = 1;
  struct Row {
    const char* what;
    const char* key;
    const char* text;  // null: a short value
  };
  const Row rows[] = {
      {"text", "k", "v\xFF"},
      {"key of a text", "Gr\xE9sil", "v"},
      {"key of shorts", "Gr\xE9sil", nullptr},
      {"cut sequence", "k", "caf\xC3"},
      {"overlong encoding", "k", "\xC0\xAF"},
      {"encoded surrogate", "k", "\xED\xA0\x80"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    keptest::TraceCapture traces;
    EXPECT_NO_THROW({
      if (row.text)
        EXPECT_EQ(repo->SetValue(row.key, row.text), E_INVALIDARG);
      else
        EXPECT_EQ(repo->WriteSetting(row.key, &one, 1), 0);
    });
    ASSERT_EQ(traces.Entries().size(), 1u);
    EXPECT_EQ(traces.Entries()[0].level, KEPTraceLevel::Error);
    EXPECT_TRUE(traces.Contains("Repository \"R\", key \"")) << traces.Entries()[0].text;
    EXPECT_TRUE(traces.Contains("not valid UTF-8")) << traces.Entries()[0].text;
  }
  EXPECT_EQ(repo->Keys(), std::vector<KEPString>{"k"});
  KEPString text;
  EXPECT_EQ(repo->GetValue("k", text), S_OK);
  EXPECT_EQ(text, "kept");
  EXPECT_EQ(KEPSysPreferenceRepository::GetRepository("R\xFF"), nullptr);
  // Valid UTF-8 beyond ASCII is stored, and the file holds it as it is.
  EXPECT_EQ(repo->SetValue("\xE2\x82\xAC", "\xF0\x9F\x98\x80"), S_OK);
  EXPECT_NO_THROW(EXPECT_EQ(repo->Commit(), S_OK));
  EXPECT_EQ(Reopen("R")->GetValue("\xE2\x82\xAC", text), S_OK);
  EXPECT_EQ(text, "\xF0\x9F\x98\x80");
}

/// Every key and value of repository `name`, as the repository answers them.
std::map<KEPString, std::string> Contents(const char* name) {
  std::map<KEPString, std::string> contents;
  KEPSysPreferenceRepository* repo = KEPSysPreferenceRepository::GetRepository(name);
  for (const KEPString& key : repo->Keys()) {
    KEPString text;
    short shorts[8] = {};
    if (SUCCEEDED(repo->GetValue(key, text)))
      contents[key] = "text " + text;
    else
      for (int i = 0, n = repo->ReadSetting(key, shorts, 8); i < n; ++i)
        contents[key] += std::to_string(shorts[i]) + " ";
  }
  return contents;
}

TEST_F(PreferenceTest, AFailedCommitKeepsTheChangesAndASuccessfulOneWritesWhatMemoryHolds) {
  KEPSysPreferenceRepository* a = KEPSysPreferenceRepository::GetRepository("A");
  KEPSysPreferenceRepository* b = KEPSysPreferenceRepository::GetRepository("B");
  a->SetValue("k", "first");
  b->SetValue("k", "b");
  ASSERT_EQ(a->Commit(), S_OK);
  ASSERT_EQ(b->Commit(), S_OK);
  EXPECT_FALSE(a->HasUncommittedChanges());
  const std::string committed = ReadFile(file_);

  a->SetValue("k", "second");
  const short pair[] = {3, -4};
  a->WriteSetting("pair", pair, 2);
  EXPECT_EQ(a->SetValue("bad", "\xFF"), E_INVALIDARG);  // refused: not part of the commit
  EXPECT_TRUE(a->HasUncommittedChanges());

  // Places the file cannot be written to: a read-only directory (which binds everyone but the
  // superuser) and a directory in the file's place.
  const std::string directory = dir_.File("prefs");
  struct Row {
    const char* what;
    std::function<void()> block, unblock;
  };
  const Row rows[] = {
      {"read-only directory", [&] { ::chmod(directory.c_str(), 0555); },
       [&] { ::chmod(directory.c_str(), 0755); }},
      {"directory in its place",
       [&] {
         std::filesystem::remove(file_);
         std::filesystem::create_directory(file_);
       },
       [&] {
         std::filesystem::remove(file_);
         WriteFile(file_, committed);
       }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    if (std::string(row.what) == "read-only directory" && ::geteuid() == 0) continue;
    row.block();
    keptest::TraceCapture traces;
    EXPECT_NO_THROW(EXPECT_EQ(a->Commit(), E_FAIL));
    EXPECT_NO_THROW(EXPECT_EQ(b->Commit(), E_FAIL));  // B's unchanged state fails the same way
    row.unblock();
    ASSERT_EQ(traces.Entries().size(), 2u);
    EXPECT_NE(traces.Entries()[0].text.find("\"A\": " + file_), std::string::npos)
        << traces.Entries()[0].text;
    EXPECT_TRUE(a->HasUncommittedChanges());
    EXPECT_EQ(ReadFile(file_), committed);
    int others = 0;  // no temporary file is left behind
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(directory))
      ++others;
    EXPECT_EQ(others, 1);
  }

  // B commits meanwhile: the file gets B's state and A's last committed state, not A's changes.
  b->SetValue("k2", "b2");
  ASSERT_EQ(b->Commit(), S_OK);
  const auto bNow = Contents("B");
  KEPHostPreferences::Unload();
  EXPECT_EQ(Contents("A"), (std::map<KEPString, std::string>{{"k", "text first"}}));
  EXPECT_EQ(Contents("B"), bNow);

  // A commit that succeeds writes exactly what memory holds: a new session reads it back.
  a = KEPSysPreferenceRepository::GetRepository("A");
  a->SetValue("k", "second");
  a->WriteSetting("pair", pair, 2);
  ASSERT_EQ(a->Commit(), S_OK);
  EXPECT_FALSE(a->HasUncommittedChanges());
  const auto aCommitted = Contents("A");
  EXPECT_EQ(aCommitted,
            (std::map<KEPString, std::string>{{"k", "text second"}, {"pair", "3 -4 "}}));
  KEPHostPreferences::Unload();
  EXPECT_EQ(Contents("A"), aCommitted);
  EXPECT_EQ(Contents("B"), bNow);
  EXPECT_FALSE(KEPSysPreferenceRepository::GetRepository("A")->HasUncommittedChanges());
}

}  // namespace
