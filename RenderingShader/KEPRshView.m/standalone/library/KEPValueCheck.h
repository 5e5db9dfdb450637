// What the module's readers make of a configuration or resource text, for the loaders' warnings.
//
// The readers parse numbers with the C library's scanf conversions ("%le", "%d", "%u", "%llu"):
// leading blanks are skipped and whatever follows the number is ignored, so "0 (black)" reads as
// 0, "-1" read as an unsigned number wraps around to the largest value, and "abc" or an empty text
// reads as no number at all. The configuration store's integer form reads the same way ("%d"). A
// library keeps such texts (the readers cope with them), and the
// loaders warn. Each check answers nothing when the text reads as it looks, else what is wrong
// with it (message) and what the readers will make of it (hint).
#pragma once

#include <optional>
#include <string>

struct KEPValueFinding {
  std::string message;
  std::string hint;
};

class KEPValueCheck {
 public:
  /// A number parsed "%le" (range bounds, steps). `unread` says what follows when no number is
  /// read at all ("the range readers fail").
  static std::optional<KEPValueFinding> Number(const std::string& text, const std::string& unread);
  /// A 32-bit integer parsed "%d" (enumeration values and indices of shader resources).
  static std::optional<KEPValueFinding> Integer(const std::string& text, const std::string& unread);
  /// An unsigned integer parsed "%u" (`bits` 32) or "%llu" (`bits` 64). A sign and a number too
  /// large for the type are findings too: the reader takes "+2" as 2, wraps "-1" around and
  /// cuts a number that does not fit.
  static std::optional<KEPValueFinding> Unsigned(const std::string& text, int bits,
                                                 const std::string& unread);
  /// A switch that "yes", "true" or "1" (any case) turn on and any other text turns off. "no",
  /// "false", "0" and "off" read as they look; any other text is a finding. `on` and `off` name
  /// the two states for the hint ("collapsed", "expanded").
  static std::optional<KEPValueFinding> Switch(const std::string& text, const std::string& on,
                                               const std::string& off);
};
