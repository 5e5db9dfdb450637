// Kills a writer process (SIGKILL) at random moments while it saves a document and the
// preferences over and over, and checks after every kill that each file is one of the known
// versions, whole, and that a kill leaves at most the temporary file of the save it interrupted.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <sstream>
#include <thread>

#include "KEPAtomicFile.h"
#include "KEPHostPreferences.h"
#include "KEPSaveVersions.h"
#include "KEPShaderDocumentLoader.h"
#include "KEPSysPreferenceRepository.h"
#include "KEPTestSupport.h"

extern char** environ;  // the environment the writer inherits

namespace {
namespace fs = std::filesystem;
using std::chrono::milliseconds;

std::string Read(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

/// Kills to make; KEPRSH_KILL_ROUNDS overrides (for a longer run by hand).
int Rounds() {
  const char* rounds = std::getenv("KEPRSH_KILL_ROUNDS");
  return rounds && std::atoi(rounds) > 0 ? std::atoi(rounds) : 300;
}

/// A running writer (keprsh_save_loop) whose standard output is a pipe to this process.
class Writer {
 public:
  Writer(const fs::path& document, const fs::path& preferences, const std::string& count = "") {
    int pipe[2] = {-1, -1};
    if (::pipe2(pipe, O_CLOEXEC) != 0) return;
    output_ = pipe[0];
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
    std::string program = KEPRSH_SAVE_LOOP, documentArg = document, preferencesArg = preferences,
                countArg = count;
    char* argv[] = {program.data(), documentArg.data(), preferencesArg.data(),
                    count.empty() ? nullptr : countArg.data(), nullptr};
    if (::posix_spawn(&pid_, program.c_str(), &actions, nullptr, argv, environ) != 0) pid_ = -1;
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(pipe[1]);
  }
  ~Writer() {
    if (pid_ > 0) Kill();
    if (output_ >= 0) ::close(output_);
  }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  pid_t Pid() const { return pid_; }

  /// True once the writer says it is about to save; false when it does not within `timeout`.
  bool WaitUntilReady(milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (said_.find('\n') == std::string::npos)
      if (!Listen(deadline)) return false;
    return said_.starts_with("ready\n");
  }

  /// True once the writer has finished `saves` saves; false when it does not within `timeout`.
  bool WaitForSaves(int saves, milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (Saves() < saves)
      if (!Listen(deadline)) return false;
    return true;
  }

  /// The saves the writer said it finished (all of them once it has ended and ReadToEnd ran).
  int Saves() const {
    const std::size_t ready = said_.find('\n');
    return ready == std::string::npos
               ? 0
               : static_cast<int>(std::count(said_.begin() + static_cast<std::ptrdiff_t>(ready),
                                             said_.end(), 's'));
  }

  /// After the writer ended: reads what it said before it died.
  void ReadToEnd() {
    while (Listen(std::chrono::steady_clock::now() + milliseconds(1000))) {
    }
  }

  /// Kills the writer and returns its wait status.
  int Kill() {
    ::kill(pid_, SIGKILL);
    return Wait();
  }

  /// Waits for the writer to end and returns its wait status.
  int Wait() {
    int status = 0;
    while (::waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
    }
    pid_ = -1;
    return status;
  }

 private:
  /// Reads what the writer says into said_; false at its end or at `deadline`.
  bool Listen(std::chrono::steady_clock::time_point deadline) {
    const auto left =
        std::chrono::duration_cast<milliseconds>(deadline - std::chrono::steady_clock::now());
    pollfd poll{output_, POLLIN, 0};
    if (left.count() <= 0 || ::poll(&poll, 1, static_cast<int>(left.count())) <= 0) return false;
    char buffer[256];
    const ssize_t n = ::read(output_, buffer, sizeof buffer);
    if (n <= 0) return false;
    said_.append(buffer, static_cast<std::size_t>(n));
    return true;
  }

  pid_t pid_ = -1;
  int output_ = -1;
  std::string said_;
};

/// Save n (from 1) of the writer is of version VersionOfSave(n): odd saves are of the document,
/// even ones of the preferences, two a version.
int VersionOfSave(int save) {
  return (save + 1) / 2 % keptest::SaveVersions::kCount;
}

class KillDuringSave : public keptest::Fixture {
 protected:
  void SetUp() override {
    keptest::Fixture::SetUp();
    std::string pattern = (fs::temp_directory_path() / "keprsh-kill-XXXXXX").string();
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    root_ = pattern;
    dir_ = root_ / "saves";
    fs::create_directories(dir_);
    document_ = dir_ / "scene.rshdoc.json";
    preferences_ = dir_ / "preferences.json";
  }
  void TearDown() override {
    std::error_code ec;
    fs::remove_all(root_, ec);
    keptest::Fixture::TearDown();
  }

  /// Saves every version with the writer's own code, beside the real files, and checks that a
  /// fresh load reads each back.
  void SaveExpectedVersions() {
    const fs::path expected = root_ / "expected";
    fs::create_directories(expected);
    keptest::SaveVersions versions;
    for (int version = 0; version < keptest::SaveVersions::kCount; ++version) {
      const fs::path document = expected / document_.filename();
      std::string error;
      ASSERT_TRUE(versions.SaveDocument(version, document, error)) << error;
      documents_.push_back(Read(document));
      KEP_var<KEPHostShaderDocument> loaded;
      const KEPLoadResult result =
          KEPShaderDocumentLoader::Load(document, versions.Library(), loaded);
      ASSERT_TRUE(result.Ok()) << result.Text();

      const fs::path preferences = expected / preferences_.filename();
      ::setenv("KEPRSH_PREFERENCES", preferences.c_str(), 1);
      KEPHostPreferences::Unload();
      ASSERT_TRUE(keptest::SaveVersions::CommitPreferences(version, error)) << error;
      preferences_versions_.push_back(Read(preferences));
      KEPHostPreferences::Unload();
      KEPString text;
      EXPECT_EQ(KEPSysPreferenceRepository::GetRepository("KillTest")->GetValue("version", text),
                S_OK);
      EXPECT_EQ(text, std::to_string(version));
    }
    // Every version differs from the others.
    EXPECT_EQ(std::set<std::string>(documents_.begin(), documents_.end()).size(),
              documents_.size());
    EXPECT_EQ(
        std::set<std::string>(preferences_versions_.begin(), preferences_versions_.end()).size(),
        preferences_versions_.size());
  }

  /// Counts the temporary files of each target in the directory; fails on any other file.
  void CountTemporaries(int& ofDocument, int& ofPreferences, int& ofWriter, pid_t writer) const {
    ofDocument = ofPreferences = ofWriter = 0;
    const std::string mark = "." + std::to_string(writer) + ".";
    for (const auto& entry : fs::directory_iterator(dir_)) {
      const std::string name = entry.path().filename();
      if (name == document_.filename() || name == preferences_.filename()) continue;
      if (KEPIsAtomicWriteTemporary(name, document_.filename().string()))
        ++ofDocument;
      else if (KEPIsAtomicWriteTemporary(name, preferences_.filename().string()))
        ++ofPreferences;
      else
        ADD_FAILURE() << "unexpected file " << name;
      if (name.find(mark) != std::string::npos) ++ofWriter;
    }
  }

  fs::path root_, dir_, document_, preferences_;
  std::vector<std::string> documents_, preferences_versions_;
};

TEST_F(KillDuringSave, EveryFileIsAlwaysAWholeKnownVersion) {
  ASSERT_NO_FATAL_FAILURE(SaveExpectedVersions());

  // A save takes from microseconds to many milliseconds, depending on how fast the disk flushes:
  // a writer left to finish a few iterations tells how long.
  constexpr int kCalibration = 2 * keptest::SaveVersions::kCount;
  Writer calibration(document_, preferences_, std::to_string(kCalibration));
  ASSERT_TRUE(calibration.WaitUntilReady(milliseconds(30000)));
  const auto started = std::chrono::steady_clock::now();
  const int calibrated = calibration.Wait();
  ASSERT_TRUE(WIFEXITED(calibrated) && WEXITSTATUS(calibrated) == 0)
      << "wait status " << calibrated;
  const auto save = std::clamp(std::chrono::duration_cast<std::chrono::microseconds>(
                                   std::chrono::steady_clock::now() - started) /
                                   (2 * kCalibration),
                               std::chrono::microseconds(200), std::chrono::microseconds(100000));

  // Each kill comes after the writer has finished 0 to 3 saves (so that it hits both files, in
  // small and large versions), plus a pause of up to one save.
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("random seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::uniform_int_distribution<int> savesFirst(0, 3);
  std::uniform_int_distribution<long long> pause(0, save.count());

  // Where the disk flushes very slowly the test stops after kBudget, once it has made kMinimum
  // kills.
  constexpr auto kBudget = std::chrono::seconds(15);
  constexpr int kMinimum = 100;
  const auto budgetStart = std::chrono::steady_clock::now();
  const int rounds = Rounds();
  int kills = 0;
  int interrupted = 0;  // kills that left the temporary file of an unfinished save
  for (int round = 0; round < rounds; ++round) {
    if (kills >= kMinimum && std::chrono::steady_clock::now() - budgetStart > kBudget) break;
    SCOPED_TRACE("kill " + std::to_string(round + 1));
    const std::string oldDocument = Read(document_), oldPreferences = Read(preferences_);
    Writer writer(document_, preferences_);
    ASSERT_GT(writer.Pid(), 0) << "cannot start " << KEPRSH_SAVE_LOOP;
    ASSERT_TRUE(writer.WaitUntilReady(milliseconds(30000)));
    ASSERT_TRUE(writer.WaitForSaves(savesFirst(random), milliseconds(30000)));
    std::this_thread::sleep_for(std::chrono::microseconds(pause(random)));
    const pid_t pid = writer.Pid();
    const int status = writer.Kill();
    ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL)
        << "the writer ended by itself (wait status " << status << ")";
    ++kills;
    writer.ReadToEnd();

    // Each file holds the version of its last finished save (the old content when there was
    // none) or, when the save under way at the kill was of it, that save's version.
    const int finished = writer.Saves();
    const int underWay = finished + 1;
    const auto allowed = [&](int parity, const std::vector<std::string>& versions,
                             const std::string& old) {
      const int last = finished % 2 == parity ? finished : finished - 1;
      std::set<std::string> texts = {last >= 1 ? versions[VersionOfSave(last)] : old};
      if (underWay % 2 == parity) texts.insert(versions[VersionOfSave(underWay)]);
      return texts;
    };
    const std::string document = Read(document_);
    ASSERT_TRUE(allowed(1, documents_, oldDocument).count(document))
        << "after " << finished << " saves the document is no whole expected version ("
        << document.size() << " bytes)";
    const std::string preferences = Read(preferences_);
    ASSERT_TRUE(allowed(0, preferences_versions_, oldPreferences).count(preferences))
        << "after " << finished << " saves the preference file is no whole expected version ("
        << preferences.size() << " bytes)";

    int ofDocument = 0, ofPreferences = 0, ofWriter = 0;
    CountTemporaries(ofDocument, ofPreferences, ofWriter, pid);
    // The next save of a target removes what earlier kills left of it.
    ASSERT_LE(ofDocument, 1);
    ASSERT_LE(ofPreferences, 1);
    ASSERT_LE(ofWriter, 1);
    interrupted += ofWriter;
  }
  EXPECT_GT(interrupted, 0);  // the kills did land inside saves
  std::printf("[ kills    ] %d kills, %d of them interrupted a write (a save took %lld us)\n",
              kills, interrupted, static_cast<long long>(save.count()));
  RecordProperty("kills", kills);
  RecordProperty("interrupted", interrupted);

  // A writer left to finish removes every leftover and ends with its last version (0).
  Writer last(document_, preferences_, "3");
  ASSERT_TRUE(last.WaitUntilReady(milliseconds(30000)));
  const int status = last.Wait();
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "wait status " << status;
  int ofDocument = 0, ofPreferences = 0, ofWriter = 0;
  CountTemporaries(ofDocument, ofPreferences, ofWriter, 0);
  EXPECT_EQ(ofDocument + ofPreferences, 0);
  EXPECT_EQ(Read(document_), documents_[0]);
  EXPECT_EQ(Read(preferences_), preferences_versions_[0]);
}

}  // namespace
