// The outcome of loading or saving a file: the errors found, which stop the load, and the
// warnings, which do not (a text that the readers take differently from how it looks). Each is
// "file:line: key 'k': message" as text, and a KEPLoadIssue for tools that show them otherwise.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "KEPLoadIssue.h"

class KEPLoadResult {
 public:
  /// Loaders stop adding errors after this many; the last one says that more were dropped.
  static constexpr std::size_t kMaxErrors = 50;
  /// Warnings kept; WarningCount() still counts the ones dropped beyond it.
  static constexpr std::size_t kMaxWarnings = 1000;

  /// No error (warnings allowed).
  bool Ok() const { return errors_.empty(); }
  explicit operator bool() const { return Ok(); }
  /// Every error as text, in the order found.
  std::vector<std::string> Errors() const;
  /// Every warning kept as text (with its hint), in the order found.
  std::vector<std::string> Warnings() const;
  const std::vector<KEPLoadIssue>& ErrorIssues() const { return errors_; }
  const std::vector<KEPLoadIssue>& WarningIssues() const { return warnings_; }
  /// Warnings found, including those beyond kMaxWarnings that were not kept.
  std::size_t WarningCount() const { return warningCount_; }

  /// Adds "file:line: key 'key': message"; `line` 0 and an empty `key` are left out.
  void AddError(const std::string& file, int line, const std::string& key,
                const std::string& message);
  void AddWarning(KEPLoadIssue warning);
  void Append(const KEPLoadResult& other);
  /// Every error, one a line.
  std::string Text() const;
  /// Every warning kept, one a line.
  std::string WarningText() const;

 private:
  void AddErrorIssue(KEPLoadIssue error);

  std::vector<KEPLoadIssue> errors_;
  std::vector<KEPLoadIssue> warnings_;
  std::size_t warningCount_ = 0;
  bool truncated_ = false;
};
