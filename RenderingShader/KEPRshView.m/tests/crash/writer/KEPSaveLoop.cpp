// The writer that the kill test interrupts: saves the known document and preference versions in
// turn, as fast as it can.
//
//   keprsh_save_loop DOCUMENT PREFERENCES COUNT
//     Saves COUNT iterations and exits 0.
//   keprsh_save_loop --serve DOCUMENT PREFERENCES
//     For every "w" read from standard input starts a writer process (a fork) that saves until it
//     is killed, writes its process id and a newline, and once that process has ended writes "k\n"
//     when it was killed by SIGKILL ("e\n" otherwise). Exits 0 at the end of its input. The
//     writers start without the cost of starting a program, so that a test can kill hundreds.
//
// Iteration i (from 1) saves document version i % 3, then commits preference version i % 3. A
// writer writes "ready\n" when it is about to start saving (not in --serve mode, where the process
// id says so) and one "s" after every save it has finished, so that the test knows which saves
// were done when it killed it. A writer exits 1 (with the error on standard error) when a save
// fails.
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "KEPHostContext.h"
#include "KEPSaveVersions.h"
#include "KEPTrace.h"

namespace {

bool Say(const std::string& text) {
  return ::write(STDOUT_FILENO, text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

/// Saves `count` iterations (0: until killed); the exit code of a writer.
int Save(keptest::SaveVersions& versions, const std::string& document, long long count) {
  std::string error;
  for (long long i = 1; count == 0 || i <= count; ++i) {
    const int version = static_cast<int>(i % keptest::SaveVersions::kCount);
    if (!versions.SaveDocument(version, document, error) || !Say("s") ||
        !keptest::SaveVersions::CommitPreferences(version, error) || !Say("s")) {
      std::fprintf(stderr, "iteration %lld failed: %s\n", i, error.c_str());
      return 1;
    }
  }
  return 0;
}

/// Ends the server with the reason on standard error.
int Fail(const char* what) {
  std::fprintf(stderr, "keprsh_save_loop --serve: %s: %s\n", what, std::strerror(errno));
  return 2;
}

int Serve(keptest::SaveVersions& versions, const std::string& document) {
  char command = 0;
  while (::read(STDIN_FILENO, &command, 1) == 1) {
    if (command != 'w') continue;
    // The writer waits until its id is said, so that nothing it says comes before.
    int go[2];
    if (::pipe(go) != 0) return Fail("pipe");
    const pid_t writer = ::fork();
    if (writer < 0) return Fail("fork");
    if (writer == 0) {
      ::close(go[1]);
      char start = 0;
      if (::read(go[0], &start, 1) != 1) std::_Exit(2);
      std::_Exit(Save(versions, document, 0));
    }
    // The read end stays open here until the "g" is written: a writer killed before it read it
    // must not take the server with it (SIGPIPE).
    if (!Say(std::to_string(writer) + "\n")) return Fail("say");
    if (::write(go[1], "g", 1) != 1) return Fail("start");
    ::close(go[0]);
    ::close(go[1]);
    int status = 0;
    while (::waitpid(writer, &status, 0) < 0)
      if (errno != EINTR) return Fail("wait");
    if (!Say(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL ? "k\n" : "e\n"))
      return Fail("say");
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const bool serve = argc == 4 && std::string(argv[1]) == "--serve";
  if (argc != 4) {
    std::fprintf(stderr, "usage: %s DOCUMENT PREFERENCES COUNT | --serve DOCUMENT PREFERENCES\n",
                 argv[0]);
    return 2;
  }
  const std::string document = serve ? argv[2] : argv[1];
  ::setenv("KEPRSH_PREFERENCES", serve ? argv[3] : argv[2], 1);
  KEPHostContext context;
  KEPTraceSink::Set([](const KEPTraceEntry& entry) {
    if (entry.level == KEPTraceLevel::Error)
      std::fprintf(stderr, "%s\n", KEPTraceSink::Format(entry).c_str());
  });
  keptest::SaveVersions versions;
  if (serve) return Serve(versions, document);
  if (!Say("ready\n")) return 2;
  return Save(versions, document, std::atoll(argv[3]));
}
