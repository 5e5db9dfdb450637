// Reading a whole file into memory, for the few places that need a file's bytes at once.
#pragma once

#include <string>

/// The bytes of the file at `path` in `content`; false when it cannot be opened or a read fails
/// (then `content` is not to be used).
bool RshviewReadFile(const std::string& path, std::string& content);
