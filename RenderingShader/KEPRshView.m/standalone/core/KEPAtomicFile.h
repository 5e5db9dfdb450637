// Writes a whole file atomically: into a temporary file beside it, flushed, then renamed over the
// target, so that a crash never leaves half a file.
#pragma once

#include <string>
#include <string_view>

/// Writes `content` to `path`; on failure returns false and sets `error` to a message naming the
/// file. The directory must exist.
bool KEPWriteFileAtomically(const std::string& path, std::string_view content, std::string& error);
