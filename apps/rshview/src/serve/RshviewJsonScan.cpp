#include "RshviewJsonScan.h"

namespace {
bool IsBlank(char c) {
  return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}
}  // namespace

void RshviewSkipBlanks(std::string_view text, std::size_t& at) {
  while (at < text.size() && IsBlank(text[at])) ++at;
}

bool RshviewSkipString(std::string_view text, std::size_t& at) {
  for (++at; at < text.size(); ++at) {
    if (text[at] == '\\') {
      ++at;
    } else if (text[at] == '"') {
      ++at;
      return true;
    }
  }
  return false;
}

bool RshviewSkipValue(std::string_view text, std::size_t& at) {
  RshviewSkipBlanks(text, at);
  if (at >= text.size()) return false;
  if (text[at] == '"') return RshviewSkipString(text, at);
  if (text[at] != '{' && text[at] != '[') {
    while (at < text.size() && text[at] != ',' && text[at] != '}' && text[at] != ']' &&
           !IsBlank(text[at]))
      ++at;
    return true;
  }
  int depth = 0;
  while (at < text.size()) {
    const char c = text[at];
    if (c == '"') {
      if (!RshviewSkipString(text, at)) return false;
      continue;
    }
    if (c == '{' || c == '[') ++depth;
    if (c == '}' || c == ']') --depth;
    ++at;
    if (depth == 0) return true;
  }
  return false;
}
