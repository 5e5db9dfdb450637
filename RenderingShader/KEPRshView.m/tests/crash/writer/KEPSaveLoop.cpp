// The writer that the kill test interrupts: saves the known document and preference versions in
// turn, as fast as it can, until it is killed or has saved `count` times.
//
//   keprsh_save_loop DOCUMENT PREFERENCES [COUNT]
//
// Iteration i (from 1) saves document version i % 3, then commits preference version i % 3. The
// writer writes "ready\n" to its standard output when it is about to start saving and one "s"
// after every save it has finished, so that the test knows which saves were done when it killed
// it. It exits 1 (with the error on standard error) when a save fails.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "KEPHostContext.h"
#include "KEPSaveVersions.h"
#include "KEPTrace.h"

int main(int argc, char** argv) {
  if (argc < 3 || argc > 4) {
    std::fprintf(stderr, "usage: %s DOCUMENT PREFERENCES [COUNT]\n", argv[0]);
    return 2;
  }
  const std::string document = argv[1];
  const long long count = argc == 4 ? std::atoll(argv[3]) : 0;
  ::setenv("KEPRSH_PREFERENCES", argv[2], 1);
  KEPHostContext context;
  KEPTraceSink::Set([](const KEPTraceEntry& entry) {
    if (entry.level == KEPTraceLevel::Error)
      std::fprintf(stderr, "%s\n", KEPTraceSink::Format(entry).c_str());
  });
  keptest::SaveVersions versions;

  const char ready[] = "ready\n";
  if (::write(STDOUT_FILENO, ready, sizeof ready - 1) < 0) return 2;
  const auto saved = [] { return ::write(STDOUT_FILENO, "s", 1) == 1; };
  std::string error;
  for (long long i = 1; count == 0 || i <= count; ++i) {
    const int version = static_cast<int>(i % keptest::SaveVersions::kCount);
    if (!versions.SaveDocument(version, document, error) || !saved() ||
        !keptest::SaveVersions::CommitPreferences(version, error) || !saved()) {
      std::fprintf(stderr, "iteration %lld failed: %s\n", i, error.c_str());
      return 1;
    }
  }
  return 0;
}
