#include "KEPFuzzChecks.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {
[[noreturn]] void Fault(const char* what, const std::string& error) {
  std::fprintf(stderr, "load result: %s\n  %s\n", what, error.c_str());
  std::abort();
}

// Line `number` (1-based) of `text`, or null past its end.
bool Line(std::string_view text, long number, std::string_view& line) {
  std::size_t start = 0;
  for (long i = 1; i < number; ++i) {
    start = text.find('\n', start);
    if (start == std::string_view::npos) return false;
    ++start;
  }
  const std::size_t end = text.find('\n', start);
  line = text.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start);
  return true;
}

void Check(const std::string& error, const KEPFuzzReadFile& file) {
  std::string_view rest = std::string_view(error).substr(file.path.size());
  if (rest.starts_with(": ")) return;  // no line
  long number = 0;
  std::size_t digits = 1;
  while (digits < rest.size() && rest[digits] >= '0' && rest[digits] <= '9' && number < 1000000000)
    number = number * 10 + (rest[digits++] - '0');
  if (digits == 1 || !rest.substr(digits).starts_with(": ")) Fault("no line after the file", error);
  std::string_view line;
  if (number < 1 || !Line(file.text, number, line)) Fault("a line beyond the file", error);
  rest.remove_prefix(digits + 2);
  if (!file.keysAsWritten || !rest.starts_with("key '")) return;
  // The key ends at one of the "': " that follow (a key or a message may hold one too).
  for (std::size_t end = rest.find("': "); end != std::string_view::npos;
       end = rest.find("': ", end + 1))
    if (line.find(rest.substr(5, end - 5)) != std::string_view::npos) return;
  Fault("a key that is not on its line", error);
}
}  // namespace

void KEPFuzzCheckErrors(const KEPLoadResult& result, const std::vector<KEPFuzzReadFile>& files) {
  for (const std::string& error : result.Errors()) {
    const KEPFuzzReadFile* named = nullptr;
    for (const KEPFuzzReadFile& file : files)
      if (error.starts_with(file.path) && error.size() > file.path.size() &&
          error[file.path.size()] == ':')
        named = &file;
    if (!named) Fault("an error that names no file of the load", error);
    Check(error, *named);
  }
}
