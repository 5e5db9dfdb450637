// The JSON reader on any text that the loaders would hand it (valid UTF-8), checked against a
// second reader: what ours accepts, the other reads the same; what ours refuses, the other
// refuses too, unless ours refused it for a reason of its own (a repeated key, a number beyond
// the double range, a limit).
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "KEPFileText.h"
#include "KEPJsonReader.h"

namespace {
using Json = nlohmann::ordered_json;

bool Same(const KEPJsonValue& ours, const Json& other) {
  switch (ours.kind) {
    case KEPJsonValue::Kind::Null:
      return other.is_null();
    case KEPJsonValue::Kind::Boolean:
      return other.is_boolean() && other.get<bool>() == ours.boolean;
    case KEPJsonValue::Kind::Number:
      return other.is_number() && other.get<double>() == ours.number;
    case KEPJsonValue::Kind::String:
      return other.is_string() && other.get_ref<const std::string&>() == ours.text;
    case KEPJsonValue::Kind::Array:
      if (!other.is_array() || other.size() != ours.items.size()) return false;
      for (std::size_t i = 0; i < ours.items.size(); ++i)
        if (!Same(ours.items[i], other[i])) return false;
      return true;
    case KEPJsonValue::Kind::Object: {
      if (!other.is_object() || other.size() != ours.members.size()) return false;
      auto it = other.begin();
      for (const auto& [name, value] : ours.members) {
        if (it.key() != name || !Same(value, it.value())) return false;
        ++it;
      }
      return true;
    }
  }
  return false;
}

// Refusals that the other reader has no reason to share.
bool OwnRefusal(std::string_view message) {
  for (std::string_view reason : {"repeated key", "number out of range", "nesting deeper than",
                                  "more than", "string longer than", "document larger than"})
    if (message.starts_with(reason)) return true;
  return false;
}

[[noreturn]] void Mismatch(const char* what, const std::string& message) {
  std::fprintf(stderr, "KEPJsonReader disagrees with the reference reader: %s (%s)\n", what,
               message.c_str());
  std::abort();
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  int line = 0;
  if (!KEPFileText::IsValidUTF8(text, line)) return -1;  // refused before the reader is asked
  KEPJsonValue value;
  std::string key, message;
  const bool ours = KEPJsonReader::Parse(text, value, line, key, message);
  const Json other = Json::parse(text, nullptr, /*allow_exceptions=*/false);
  if (ours) {
    if (other.is_discarded()) Mismatch("accepted a text that the reference refuses", "");
    if (!Same(value, other)) Mismatch("read a different value", "");
  } else {
    // The reference skips a byte-order mark, which the files of ours must not have, and takes a
    // NUL byte for the end of the text.
    const bool referenceQuirk =
        text.starts_with("\xEF\xBB\xBF") || text.find('\0') != std::string::npos;
    if (!other.is_discarded() && !OwnRefusal(message) && !referenceQuirk)
      Mismatch("refused a text that the reference accepts", message);
    if (line < 0 || static_cast<std::size_t>(line) > size + 1) Mismatch("bad error line", message);
  }
  return 0;
}
