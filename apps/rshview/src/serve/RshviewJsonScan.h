// Moving through JSON text without building a document: the widget trees of large editors are
// megabytes, read and rewritten on the text itself (RshviewEditorDiff, RshviewCompactTree).
#pragma once

#include <cstddef>
#include <string_view>

/// Moves `at` past blanks (space, tab, line ends).
void RshviewSkipBlanks(std::string_view text, std::size_t& at);

/// Moves `at` past the string that starts there (at its quote); false when it does not end.
bool RshviewSkipString(std::string_view text, std::size_t& at);

/// Moves `at` past the JSON value that starts there (after blanks); false when it does not end.
bool RshviewSkipValue(std::string_view text, std::size_t& at);
