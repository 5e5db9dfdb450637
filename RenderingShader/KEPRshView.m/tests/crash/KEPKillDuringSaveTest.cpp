// Kills writer processes (SIGKILL) at random moments while they save a document and the
// preferences over and over, and checks after every kill that each file holds the version of its
// last finished save or of the save under way, whole, and that a kill leaves at most the temporary
// file of the save it interrupted. The writers come from keprsh_save_loop (writer/), which says
// which saves it finished, so that the test knows which versions each file may hold.
//
// KEPRSH_KILL_ROUNDS sets the number of kills (default 300); on a slow disk the test stops after
// 12 s once it has made 100.
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
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <set>
#include <sstream>
#include <thread>
#include <vector>

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

/// A running keprsh_save_loop whose standard input and output are pipes to this process.
class SaveLoop {
 public:
  explicit SaveLoop(std::vector<std::string> args) {
    int input[2] = {-1, -1}, output[2] = {-1, -1};
    if (::pipe2(input, O_CLOEXEC) != 0 || ::pipe2(output, O_CLOEXEC) != 0) return;
    input_ = input[1];
    output_ = output[0];
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    args.insert(args.begin(), KEPRSH_SAVE_LOOP);
    std::vector<char*> argv;
    for (std::string& arg : args) argv.push_back(arg.data());
    argv.push_back(nullptr);
    if (::posix_spawn(&pid_, argv[0], &actions, nullptr, argv.data(), environ) != 0) pid_ = -1;
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(input[0]);
    ::close(output[1]);
  }
  ~SaveLoop() {
    CloseInput();
    if (pid_ > 0) {
      ::kill(pid_, SIGKILL);
      Wait();
    }
    if (output_ >= 0) ::close(output_);
  }
  SaveLoop(const SaveLoop&) = delete;
  SaveLoop& operator=(const SaveLoop&) = delete;

  bool Running() const { return pid_ > 0; }
  bool Send(char command) { return ::write(input_, &command, 1) == 1; }
  void CloseInput() {
    if (input_ >= 0) ::close(input_);
    input_ = -1;
  }

  /// Everything it said since the last Forget.
  const std::string& Said() const { return said_; }
  void Forget() { said_.clear(); }
  /// Reads what it says until `done(Said())`; false when it ends or `timeout` passes first.
  bool ListenUntil(const std::function<bool(const std::string&)>& done, milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!done(said_)) {
      const auto left =
          std::chrono::duration_cast<milliseconds>(deadline - std::chrono::steady_clock::now());
      pollfd poll{output_, POLLIN, 0};
      if (left.count() <= 0) {
        trouble_ = "nothing said in time";
        return false;
      }
      const int ready = ::poll(&poll, 1, static_cast<int>(left.count()));
      if (ready < 0 && errno == EINTR) continue;
      if (ready <= 0) {
        trouble_ =
            ready == 0 ? "nothing said in time" : std::string("poll: ") + std::strerror(errno);
        return false;
      }
      char buffer[256];
      const ssize_t n = ::read(output_, buffer, sizeof buffer);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) {
        trouble_ = n == 0 ? "it ended" : std::string("read: ") + std::strerror(errno);
        return false;
      }
      said_.append(buffer, static_cast<std::size_t>(n));
    }
    return true;
  }

  /// Why the last ListenUntil failed.
  const std::string& Trouble() const { return trouble_; }

  /// Waits for it to end and returns its wait status.
  int Wait() {
    int status = 0;
    while (::waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
    }
    pid_ = -1;
    return status;
  }

 private:
  pid_t pid_ = -1;
  int input_ = -1;
  int output_ = -1;
  std::string said_;
  std::string trouble_;
};

bool SaidLine(const std::string& said) {
  return said.find('\n') != std::string::npos;
}

/// The saves a writer said it finished: the "s" after its first line.
int Saves(const std::string& said) {
  const std::size_t line = said.find('\n');
  return line == std::string::npos
             ? 0
             : static_cast<int>(
                   std::count(said.begin() + static_cast<std::ptrdiff_t>(line), said.end(), 's'));
}

/// Save n (from 1) of the writer is of version VersionOfSave(n): odd saves are of the document,
/// even ones of the preferences, two a version.
std::size_t VersionOfSave(int save) {
  return static_cast<std::size_t>((save + 1) / 2 % keptest::SaveVersions::kCount);
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
  SaveLoop calibration({document_, preferences_, std::to_string(kCalibration)});
  ASSERT_TRUE(calibration.ListenUntil(SaidLine, milliseconds(30000)));
  ASSERT_EQ(calibration.Said(), "ready\n");
  const auto started = std::chrono::steady_clock::now();
  const int calibrated = calibration.Wait();
  ASSERT_TRUE(WIFEXITED(calibrated) && WEXITSTATUS(calibrated) == 0)
      << "wait status " << calibrated;
  const auto save = std::clamp(std::chrono::duration_cast<std::chrono::microseconds>(
                                   std::chrono::steady_clock::now() - started) /
                                   (2 * kCalibration),
                               std::chrono::microseconds(200), std::chrono::microseconds(100000));

  // Each kill comes after the writer has finished 0 to 3 saves (so that it hits both files, in
  // small and large versions), plus a pause of up to about one save.
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("random seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::uniform_int_distribution<int> savesFirst(0, 3);
  std::uniform_int_distribution<long long> pause(0, save.count());

  // The writers are forks of one server, started without the cost of starting a program. Where
  // the disk flushes very slowly the test stops after kBudget, once it has made kMinimum kills.
  constexpr auto kBudget = std::chrono::seconds(12);
  constexpr int kMinimum = 100;
  SaveLoop server({"--serve", document_, preferences_});
  ASSERT_TRUE(server.Running()) << "cannot start " << KEPRSH_SAVE_LOOP;
  const auto budgetStart = std::chrono::steady_clock::now();
  const int rounds = Rounds();
  int kills = 0;
  int interrupted = 0;  // kills that left the temporary file of an unfinished save
  for (int round = 0; round < rounds; ++round) {
    if (kills >= kMinimum && std::chrono::steady_clock::now() - budgetStart > kBudget) break;
    SCOPED_TRACE("kill " + std::to_string(round + 1));
    const std::string oldDocument = Read(document_), oldPreferences = Read(preferences_);
    server.Forget();
    ASSERT_TRUE(server.Send('w'));
    ASSERT_TRUE(server.ListenUntil(SaidLine, milliseconds(30000))) << server.Trouble();
    const pid_t pid = std::stoi(server.Said());
    const int first = savesFirst(random);
    ASSERT_TRUE(server.ListenUntil([&](const std::string& said) { return Saves(said) >= first; },
                                   milliseconds(30000)))
        << server.Trouble();
    std::this_thread::sleep_for(std::chrono::microseconds(pause(random)));
    ::kill(pid, SIGKILL);
    const auto ended = [](const std::string& said) {
      return said.ends_with("k\n") || said.ends_with("e\n");
    };
    ASSERT_TRUE(server.ListenUntil(ended, milliseconds(30000)))
        << server.Trouble() << " after \"" << server.Said() << "\" (wait status " << server.Wait()
        << ")";
    ASSERT_TRUE(server.Said().ends_with("k\n")) << "the writer ended by itself";
    ++kills;

    // Each file holds the version of its last finished save (the old content when there was
    // none) or, when the save under way at the kill was of it, that save's version.
    const int finished = Saves(server.Said());
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

  server.CloseInput();
  const int served = server.Wait();
  EXPECT_TRUE(WIFEXITED(served) && WEXITSTATUS(served) == 0) << "wait status " << served;

  // A writer left to finish removes every leftover and ends with its last version (0).
  SaveLoop last({document_, preferences_, "3"});
  const int status = last.Wait();
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "wait status " << status;
  int ofDocument = 0, ofPreferences = 0, ofWriter = 0;
  CountTemporaries(ofDocument, ofPreferences, ofWriter, 0);
  EXPECT_EQ(ofDocument + ofPreferences, 0);
  EXPECT_EQ(Read(document_), documents_[0]);
  EXPECT_EQ(Read(preferences_), preferences_versions_[0]);
}

}  // namespace
