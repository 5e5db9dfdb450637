// How rshview shows numbers: six significant digits, the way "%g" writes them, both in the text
// form and in JSON (where a float read back from the model would otherwise show its binary
// noise, 0.1f as 0.10000000149011612).
#pragma once

#include <charconv>
#include <string>

/// `value` with six significant digits, as "%g" writes it ("0.5", "1e+06", "0.0174533").
inline std::string RshviewNumber(double value) {
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 6);
  return std::string(text, end.ptr);
}

/// `value` rounded to the number that RshviewNumber shows.
inline double RshviewRounded(double value) {
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 6);
  double rounded = value;
  std::from_chars(text, end.ptr, rounded);
  return rounded;
}
