#include "KEPLoadIssue.h"

std::string KEPLoadIssue::Text() const {
  std::string text = file;
  if (line > 0) text += ":" + std::to_string(line);
  text += ": ";
  if (!key.empty()) text += "key '" + key + "': ";
  text += message;
  if (!hint.empty()) text += "; " + hint;
  return text;
}
