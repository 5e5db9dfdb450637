#include "KEPValueCheck.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "KEPString.h"

namespace {
std::string Quoted(const std::string& text) {
  return "'" + text + "'";
}

/// "empty value" or "'abc' is not a number".
KEPValueFinding NoNumber(const std::string& text, const char* what, const std::string& unread) {
  return {text.empty() ? std::string("empty value") : Quoted(text) + " is not " + what,
          "not read as a number: " + unread};
}

/// What the conversion left unread, without the blanks around it.
std::string Rest(const std::string& text, int used) {
  const std::size_t start = std::min(text.size(), static_cast<std::size_t>(used < 0 ? 0 : used));
  return std::string(KEPTrimBlanks(std::string_view(text).substr(start)));
}

std::string ReadAs(const std::string& value, const std::string& rest) {
  return "read as " + value + (rest.empty() ? "" : ", " + Quoted(rest) + " is ignored");
}

std::string Shortest(double value) {
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, value);
  return std::string(text, end.ptr);
}

/// The digits of the number a conversion read (`used` characters), after blanks and a sign.
struct IntegerToken {
  bool minus = false;
  bool plus = false;
  bool beyond64 = false;  ///< more than an unsigned 64-bit number holds
  unsigned long long magnitude = 0;
};

IntegerToken Token(const std::string& text, int used) {
  IntegerToken token;
  std::string_view read = std::string_view(text).substr(0, static_cast<std::size_t>(used));
  while (!read.empty() && (read.front() == ' ' || read.front() == '\t' || read.front() == '\r' ||
                           read.front() == '\n' || read.front() == '\v' || read.front() == '\f'))
    read.remove_prefix(1);
  if (!read.empty() && (read.front() == '-' || read.front() == '+')) {
    (read.front() == '-' ? token.minus : token.plus) = true;
    read.remove_prefix(1);
  }
  const auto [end, fault] =
      std::from_chars(read.data(), read.data() + read.size(), token.magnitude);
  (void)end;
  token.beyond64 = fault == std::errc::result_out_of_range;
  return token;
}
}  // namespace

std::optional<KEPValueFinding> KEPValueCheck::Number(const std::string& text,
                                                     const std::string& unread) {
  double value = 0.0;
  int used = 0;
  if (std::sscanf(text.c_str(), "%le%n", &value, &used) != 1)
    return NoNumber(text, "a number", unread);
  const std::string rest = Rest(text, used);
  if (!std::isfinite(value))
    return KEPValueFinding{Quoted(text) + " is not a finite number", ReadAs(Shortest(value), rest)};
  if (!rest.empty())
    return KEPValueFinding{"text after the number in " + Quoted(text),
                           ReadAs(Shortest(value), rest)};
  return std::nullopt;
}

std::optional<KEPValueFinding> KEPValueCheck::Integer(const std::string& text,
                                                      const std::string& unread) {
  int value = 0;
  int used = 0;
  if (std::sscanf(text.c_str(), "%d%n", &value, &used) != 1)
    return NoNumber(text, "an integer", unread);
  const std::string rest = Rest(text, used);
  const IntegerToken token = Token(text, used);
  const unsigned long long limit =
      token.minus ? static_cast<unsigned long long>(INT_MAX) + 1 : INT_MAX;
  if (token.beyond64 || token.magnitude > limit)
    return KEPValueFinding{Quoted(text) + " is beyond the 32-bit integer range",
                           ReadAs(std::to_string(value), rest)};
  if (!rest.empty())
    return KEPValueFinding{"text after the number in " + Quoted(text),
                           ReadAs(std::to_string(value), rest)};
  return std::nullopt;
}

std::optional<KEPValueFinding> KEPValueCheck::Unsigned(const std::string& text, int bits,
                                                       const std::string& unread) {
  unsigned long long value = 0;
  int used = 0;
  int converted = 0;
  if (bits == 32) {
    unsigned narrow = 0;
    converted = std::sscanf(text.c_str(), "%u%n", &narrow, &used);
    value = narrow;
  } else {
    converted = std::sscanf(text.c_str(), "%llu%n", &value, &used);
  }
  if (converted != 1) return NoNumber(text, "an unsigned number", unread);
  const std::string rest = Rest(text, used);
  const std::string readAs = ReadAs(std::to_string(value), rest);
  const IntegerToken token = Token(text, used);
  const bool tooLarge = token.beyond64 || (bits == 32 && token.magnitude > UINT_MAX);
  if (token.minus && token.magnitude != 0)
    return KEPValueFinding{"negative number in " + Quoted(text),
                           readAs + " (a negative number wraps around)"};
  if (tooLarge)
    return KEPValueFinding{
        Quoted(text) + " is too large for an unsigned " + std::to_string(bits) + "-bit number",
        readAs};
  if (token.minus || token.plus)
    return KEPValueFinding{"sign before the number in " + Quoted(text), readAs};
  if (!rest.empty()) return KEPValueFinding{"text after the number in " + Quoted(text), readAs};
  return std::nullopt;
}

// The same test as the configuration store's integer read (KEPRbaConfiguration).
std::optional<KEPValueFinding> KEPValueCheck::Switch(const std::string& text, const std::string& on,
                                                     const std::string& off) {
  const std::string lower = KEPToLower(text);
  if (lower == "yes" || lower == "true" || lower == "1" || lower == "no" || lower == "false" ||
      lower == "0" || lower == "off")
    return std::nullopt;
  return KEPValueFinding{(text.empty() ? std::string("empty value") : Quoted(text)) +
                             " is neither yes, true, 1 nor no, false, 0, off",
                         "read as " + off + ": only yes, true or 1 (any case) mean " + on};
}
