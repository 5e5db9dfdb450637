#include "KEPFuzzScratchDir.h"

#include <stdlib.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace {
std::filesystem::path& Directory() {
  static std::filesystem::path directory;
  return directory;
}

void RemoveDirectory() {
  std::error_code ec;
  std::filesystem::remove_all(Directory(), ec);
}

[[noreturn]] void Fatal(const std::string& what, const std::filesystem::path& path) {
  std::fprintf(stderr, "fuzz scratch directory: cannot %s %s\n", what.c_str(), path.c_str());
  std::abort();
}
}  // namespace

const std::filesystem::path& KEPFuzzScratchDir::Fresh() {
  std::filesystem::path& directory = Directory();
  if (directory.empty()) {
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/keprsh-fuzz-XXXXXX";
    if (!::mkdtemp(pattern.data())) Fatal("make", pattern);
    directory = std::filesystem::absolute(pattern);
    std::atexit(RemoveDirectory);
    return directory;
  }
  std::error_code ec;
  for (std::filesystem::directory_iterator it(directory, ec), end; !ec && it != end;
       it.increment(ec)) {
    std::error_code removed;
    std::filesystem::remove_all(it->path(), removed);
    if (removed) Fatal("empty", directory);
  }
  if (ec) Fatal("list", directory);
  return directory;
}

void KEPFuzzScratchDir::Write(const std::filesystem::path& path, const std::string& text) {
  std::error_code ec;
  std::filesystem::create_directories(path.parent_path(), ec);
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text;
  out.close();
  if (ec || !out) Fatal("write", path);
}
