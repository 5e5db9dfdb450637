#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <set>
#include <thread>
#include <vector>

#include "KEPAtomicFile.h"
#include "KEPServicesTestUtil.h"

namespace {

namespace fs = std::filesystem;
using keptest::ReadFile;
using keptest::WriteFile;

std::set<std::string> Names(const std::string& directory) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(directory))
    names.insert(entry.path().filename().string());
  return names;
}

int OpenDescriptors() {
  int count = 0;
  for ([[maybe_unused]] const auto& entry : fs::directory_iterator("/proc/self/fd")) ++count;
  return count;
}

TEST(AtomicFileTest, ReplacesTheWholeFileKeepsItsPermissionsAndLeavesNothingElse) {
  keptest::TempDir dir;
  const std::string path = dir.File("f.json");
  std::string error;
  ASSERT_TRUE(KEPWriteFileAtomically(path, "old content that is longer", error)) << error;
  ::chmod(path.c_str(), 0600);
  ASSERT_TRUE(KEPWriteFileAtomically(path, "new", error)) << error;
  EXPECT_EQ(ReadFile(path), "new");
  struct stat status {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600u);
  ASSERT_TRUE(KEPWriteFileAtomically(path, "", error)) << error;
  EXPECT_EQ(ReadFile(path), "");

  // A name as long as file systems allow still leaves room for the temporary name.
  const std::string longest = dir.File(std::string(255, 'n'));
  ASSERT_TRUE(KEPWriteFileAtomically(longest, "long", error)) << error;
  EXPECT_EQ(ReadFile(longest), "long");

  // A bare name is in the current directory.
  const fs::path current = fs::current_path();
  fs::current_path(dir.Path());
  const bool bare = KEPWriteFileAtomically("bare.json", "bare", error);
  fs::current_path(current);
  ASSERT_TRUE(bare) << error;
  EXPECT_EQ(ReadFile(dir.File("bare.json")), "bare");
  EXPECT_EQ(Names(dir.Path()),
            (std::set<std::string>{"f.json", std::string(255, 'n'), "bare.json"}));
}

TEST(AtomicFileTest, AFailureNamesTheFileLeavesNothingBehindAndClosesEverything) {
  keptest::TempDir dir;
  WriteFile(dir.File("plain"), "x");
  fs::create_directory(dir.File("sub"));
  struct Row {
    std::string path;
    const char* reason;
  };
  const Row rows[] = {
      {dir.File("missing/f.json"), "cannot open its directory"},
      {dir.File("plain/f.json"), "cannot open its directory"},
      {dir.File("sub"), "cannot replace it"},  // a directory is never replaced
      {dir.File("sub/"), "not a file name"},
      {dir.File(std::string(256, 'n')), "cannot replace it"},  // longer than a name may be
  };
  const std::set<std::string> before = Names(dir.Path());
  const int descriptors = OpenDescriptors();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    std::string error;
    EXPECT_FALSE(KEPWriteFileAtomically(row.path, "content", error));
    EXPECT_EQ(error.rfind(row.path + ": ", 0), 0u) << error;
    EXPECT_NE(error.find(row.reason), std::string::npos) << error;
    EXPECT_EQ(Names(dir.Path()), before);
    EXPECT_TRUE(Names(dir.Path() + "/sub").empty());
    EXPECT_EQ(OpenDescriptors(), descriptors);
  }
}

/// In a death-test child: allows at most 4 KiB per file, so that a larger write stops half way
/// as a full disk would stop it, and exits 0 when the old file is left whole, alone, and no
/// descriptor stays open.
[[noreturn]] void WriteCutShort(const keptest::TempDir& dir, const std::string& path,
                                const std::string& old) {
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  limit.rlim_cur = limit.rlim_max = 4096;
  ::setrlimit(RLIMIT_FSIZE, &limit);
  const int descriptors = OpenDescriptors();
  std::string error;
  const bool written = KEPWriteFileAtomically(path, std::string(100000, 'x'), error);
  const bool ok = !written && ReadFile(path) == old && Names(dir.Path()).size() == 1 &&
                  error.find(path + ": cannot write: ") == 0 && OpenDescriptors() == descriptors;
  std::_Exit(ok ? 0 : 1);
}

TEST(AtomicFileDeathTest, AWriteCutShortLeavesTheOldFileWhole) {
  keptest::TempDir dir;
  const std::string path = dir.File("preferences.json");
  const std::string old = "{\"repositories\": {}}\n";
  WriteFile(path, old);
  EXPECT_EXIT(WriteCutShort(dir, path, old), ::testing::ExitedWithCode(0), "");
  EXPECT_EQ(ReadFile(path), old);
}

TEST(AtomicFileTest, ConcurrentWritersOfOneFileNeverMeet) {
  keptest::TempDir dir;
  const std::string path = dir.File("shared.json");
  std::vector<std::string> contents;
  for (int writer = 0; writer < 4; ++writer)
    contents.push_back(std::string(static_cast<std::size_t>(1000 * (writer + 1)),
                                   static_cast<char>('a' + writer)));
  std::vector<int> failures(contents.size(), 0);
  std::vector<std::thread> writers;
  for (std::size_t writer = 0; writer < contents.size(); ++writer)
    writers.emplace_back([&, writer] {
      std::string error;
      for (int i = 0; i < 50; ++i)
        if (!KEPWriteFileAtomically(path, contents[writer], error)) ++failures[writer];
    });
  for (std::thread& writer : writers) writer.join();
  EXPECT_EQ(failures, std::vector<int>(contents.size(), 0));
  EXPECT_NE(std::find(contents.begin(), contents.end(), ReadFile(path)), contents.end());
  EXPECT_EQ(Names(dir.Path()), std::set<std::string>{"shared.json"});
}

/// The id of a process that has ended (and been waited for).
pid_t GonePid() {
  const pid_t child = ::fork();
  if (child == 0) std::_Exit(0);
  ::waitpid(child, nullptr, 0);
  return child;
}

TEST(AtomicFileTest, TheNextWriteRemovesOnlyWhatGoneWritersLeft) {
  keptest::TempDir dir;
  const std::string gone = std::to_string(GonePid());
  const auto temporary = [](const std::string& target, const std::string& pid, int n) {
    return "." + target + "." + pid + "." + std::to_string(n) + ".00000000000000ab.tmp";
  };
  const std::string removed = temporary("f.json", gone, 0);
  const std::string locked = temporary("f.json", gone, 1);
  const std::set<std::string> kept = {
      locked,                                              // its writer lives elsewhere
      temporary("f.json", "1", 2),                         // a live process
      temporary("f.json", std::to_string(::getpid()), 3),  // this process may be writing it
      temporary("g.json", gone, 4),                        // another file's
      "f.json." + gone + ".tmp",                           // not a temporary name
  };
  for (const std::string& name : kept) WriteFile(dir.File(name), "partial");
  WriteFile(dir.File(removed), "partial");
  const std::string directoryNamed = temporary("f.json", gone, 5);
  fs::create_directory(dir.File(directoryNamed));
  const int lock = ::open(dir.File(locked).c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(::flock(lock, LOCK_EX), 0);

  std::string error;
  ASSERT_TRUE(KEPWriteFileAtomically(dir.File("f.json"), "whole", error)) << error;
  ::close(lock);
  std::set<std::string> expected = kept;
  expected.insert({"f.json", directoryNamed});
  EXPECT_EQ(Names(dir.Path()), expected);
}

TEST(AtomicFileTest, TemporaryNamesAreRecognisedExactly) {
  struct Row {
    const char* entry;
    const char* target;
    bool temporary;
  };
  const Row rows[] = {
      {".f.json.42.0.00000000deadbeef.tmp", "f.json", true},
      {".f.json.42.0.00000000deadbeef.tmp", "g.json", false},
      {".f.json.42.0.00000000deadbeef", "f.json", false},
      {"f.json.42.0.00000000deadbeef.tmp", "f.json", false},
      {".f.json.0.0.00000000deadbeef.tmp", "f.json", false},
      {".f.json.-4.0.00000000deadbeef.tmp", "f.json", false},
      {".f.json.42.0.0000000deadbeeg.tmp", "f.json", false},
      {".f.json.42.00000000deadbeef.tmp", "f.json", false},
      {".f.json.42.0.1.2.tmp", "f.json", false},
      {".f.json..tmp", "f.json", false},
  };
  for (const Row& row : rows)
    EXPECT_EQ(KEPIsAtomicWriteTemporary(row.entry, row.target), row.temporary) << row.entry;
  // A long target name is cut in the temporary name, as the writer cuts it.
  const std::string longName(255, 'n');
  EXPECT_TRUE(KEPIsAtomicWriteTemporary("." + longName.substr(0, 200) + ".7.1.00000000000000ff.tmp",
                                        longName));
}

}  // namespace
