// Helpers of the library tests: a scratch directory to write library files into.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace keptest {

/// A scratch directory removed, with everything in it, at the end of the test.
class ScratchDir {
 public:
  ScratchDir() {
    path_ = std::filesystem::temp_directory_path() /
            ("keprsh_library_" + std::to_string(::getpid()) + "_" + std::to_string(counter_++));
    std::filesystem::create_directories(path_);
  }
  ~ScratchDir() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;

  /// Writes `content` to `name` (a path relative to the directory, made as needed); its path.
  std::string Write(const std::string& name, const std::string& content) const {
    const std::filesystem::path file = path_ / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
    return file.string();
  }
  /// The directory, or `name` in it.
  std::string Path(const std::string& name = "") const {
    return name.empty() ? path_.string() : (path_ / name).string();
  }

 private:
  std::filesystem::path path_;
  static inline int counter_ = 0;
};

}  // namespace keptest
