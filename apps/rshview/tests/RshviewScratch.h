// A scratch folder for one test, removed with it; while it lives, the environment variables
// named at construction point into it, so that no run reads or writes the user's own files.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

class RshviewScratch {
 public:
  using Variable = std::pair<const char*, const char*>;  ///< name, path inside the folder

  explicit RshviewScratch(const char* prefix,
                          std::initializer_list<Variable> variables = {{"KEPRSH_PREFERENCES",
                                                                        "preferences.json"}})
      : variables_(variables) {
    std::string pattern =
        (std::filesystem::temp_directory_path() / (std::string(prefix) + "XXXXXX")).string();
    root_ = mkdtemp(pattern.data());
    for (const auto& [name, path] : variables_) setenv(name, Path(path).c_str(), 1);
  }
  ~RshviewScratch() {
    for (const auto& variable : variables_) unsetenv(variable.first);
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
  }
  RshviewScratch(const RshviewScratch&) = delete;
  RshviewScratch& operator=(const RshviewScratch&) = delete;

  std::string Path(const std::string& name) const { return (root_ / name).string(); }
  /// Writes `text` to `name` (making its folders) and answers the file's path.
  std::string Write(const std::string& name, const std::string& text) const {
    std::filesystem::create_directories(std::filesystem::path(Path(name)).parent_path());
    std::ofstream(Path(name)) << text;
    return Path(name);
  }
  std::string Read(const std::string& name) const {
    std::ifstream in(Path(name));
    return {std::istreambuf_iterator<char>(in), {}};
  }

 private:
  std::filesystem::path root_;
  std::vector<Variable> variables_;
};
