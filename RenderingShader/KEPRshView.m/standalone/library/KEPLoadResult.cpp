#include "KEPLoadResult.h"

namespace {
std::vector<std::string> Texts(const std::vector<KEPLoadIssue>& issues) {
  std::vector<std::string> texts;
  texts.reserve(issues.size());
  for (const KEPLoadIssue& issue : issues) texts.push_back(issue.Text());
  return texts;
}

std::string Lines(const std::vector<KEPLoadIssue>& issues) {
  std::string text;
  for (const KEPLoadIssue& issue : issues) text += issue.Text() + "\n";
  return text;
}
}  // namespace

std::vector<std::string> KEPLoadResult::Errors() const {
  return Texts(errors_);
}

std::vector<std::string> KEPLoadResult::Warnings() const {
  return Texts(warnings_);
}

void KEPLoadResult::AddError(const std::string& file, int line, const std::string& key,
                             const std::string& message) {
  KEPLoadIssue error;
  error.file = file;
  error.line = line;
  error.key = key;
  error.message = message;
  AddErrorIssue(std::move(error));
}

void KEPLoadResult::AddErrorIssue(KEPLoadIssue error) {
  if (truncated_) return;
  if (errors_.size() >= kMaxErrors) {
    KEPLoadIssue last;
    last.file = std::move(error.file);
    last.message = "too many errors; the rest are not shown";
    errors_.push_back(std::move(last));
    truncated_ = true;
    return;
  }
  errors_.push_back(std::move(error));
}

void KEPLoadResult::AddWarning(KEPLoadIssue warning) {
  ++warningCount_;
  if (warnings_.size() < kMaxWarnings) warnings_.push_back(std::move(warning));
}

void KEPLoadResult::Append(const KEPLoadResult& other) {
  for (const KEPLoadIssue& error : other.errors_) {
    if (truncated_) break;
    errors_.push_back(error);
  }
  truncated_ = truncated_ || other.truncated_;
  for (const KEPLoadIssue& warning : other.warnings_)
    if (warnings_.size() < kMaxWarnings) warnings_.push_back(warning);
  warningCount_ += other.warningCount_;
}

std::string KEPLoadResult::Text() const {
  return Lines(errors_);
}

std::string KEPLoadResult::WarningText() const {
  return Lines(warnings_);
}
