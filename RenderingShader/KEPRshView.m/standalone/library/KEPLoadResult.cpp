#include "KEPLoadResult.h"

void KEPLoadResult::AddError(const std::string& file, int line, const std::string& key,
                             const std::string& message) {
  if (truncated_) return;
  if (errors_.size() >= kMaxErrors) {
    errors_.push_back(file + ": too many errors; the rest are not shown");
    truncated_ = true;
    return;
  }
  std::string text = file;
  if (line > 0) text += ":" + std::to_string(line);
  text += ": ";
  if (!key.empty()) text += "key '" + key + "': ";
  text += message;
  errors_.push_back(std::move(text));
}

void KEPLoadResult::Append(const KEPLoadResult& other) {
  for (const std::string& error : other.errors_) {
    if (truncated_) return;
    errors_.push_back(error);
  }
  truncated_ = truncated_ || other.truncated_;
}

std::string KEPLoadResult::Text() const {
  std::string text;
  for (const std::string& error : errors_) text += error + "\n";
  return text;
}
