// The outcome of loading or saving a file: the errors found, each as
// "file:line: key 'k': message" (the line is left out where there is none, the key where the
// error concerns no key).
#pragma once

#include <string>
#include <vector>

class KEPLoadResult {
 public:
  /// Loaders stop adding errors after this many; the last one says that more were dropped.
  static constexpr std::size_t kMaxErrors = 50;

  bool Ok() const { return errors_.empty(); }
  explicit operator bool() const { return Ok(); }
  const std::vector<std::string>& Errors() const { return errors_; }

  /// Adds "file:line: key 'key': message"; `line` 0 and an empty `key` are left out.
  void AddError(const std::string& file, int line, const std::string& key,
                const std::string& message);
  void Append(const KEPLoadResult& other);
  /// Every error, one a line.
  std::string Text() const;

 private:
  std::vector<std::string> errors_;
  bool truncated_ = false;
};
