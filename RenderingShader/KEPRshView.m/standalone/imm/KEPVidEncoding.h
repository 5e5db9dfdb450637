// Text encoding shared by the widget tree's writers: UTF-8 repair, UTF-16 to UTF-8, JSON string
// escapes, and numbers in their shortest exact form.
#pragma once

#include <string>
#include <string_view>

/// `text` with each invalid UTF-8 sequence replaced by U+FFFD (the host's one rule for bad text).
std::string KEPVidValidUtf8(std::string_view text);
/// Appends UTF-16 text as UTF-8; an unpaired surrogate becomes U+FFFD.
void KEPVidAppendUtf16(std::string& out, const std::u16string& text);
/// Appends a double in the shortest form that reads back the same; a whole number keeps ".0" so
/// that a reader sees a real number.
void KEPVidAppendDouble(std::string& out, double value);
void KEPVidAppendInt(std::string& out, long long value);
/// Appends `text` (valid UTF-8) as the inside of a JSON string.
void KEPVidAppendEscaped(std::string& out, std::string_view text);
/// True when `text` is ASCII without control characters, quotes or backslashes: it goes into a
/// JSON string as it is.
bool KEPVidIsPlainText(std::string_view text);
bool KEPVidIsAscii(std::string_view text);
