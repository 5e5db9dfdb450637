#include "KEPFuzzInput.h"

#include <string_view>

namespace {
constexpr std::string_view kMarker = "%% ";

std::string FileName(std::string_view text, std::size_t index) {
  std::string name;
  for (const char c : text) {
    if (name.size() == KEPFuzzInput::kMaxNameLength) break;
    const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                       c == '_' || c == '-';
    if (plain) name += c;
  }
  return name.empty() ? "file" + std::to_string(index) : name;
}
}  // namespace

KEPFuzzInput KEPFuzzInput::Split(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  KEPFuzzInput result;
  std::string* current = &result.main;
  std::size_t start = 0;
  while (start < input.size()) {
    std::size_t end = input.find('\n', start);
    end = end == std::string_view::npos ? input.size() : end + 1;
    const std::string_view line = input.substr(start, end - start);
    start = end;
    if (line.starts_with(kMarker) && result.files.size() < kMaxFiles) {
      std::string_view name = line.substr(kMarker.size());
      if (name.ends_with('\n')) name.remove_suffix(1);
      result.files.push_back({FileName(name, result.files.size()), ""});
      current = &result.files.back().text;
      continue;
    }
    *current += line;
  }
  return result;
}
