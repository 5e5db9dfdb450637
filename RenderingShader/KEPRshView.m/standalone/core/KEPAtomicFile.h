// Writes a whole file atomically, so that the file always holds either its old or its new content,
// whole, even when the writer is killed or the machine stops half way.
//
// The content goes into a new temporary file in the target's directory, named
// ".<name>.<pid>.<counter>.<random>.tmp" and created exclusively (so that two writers never share
// one); it is flushed to disk, renamed over the target, and the directory is flushed so that the
// rename itself survives a crash. Every failure removes the temporary file.
//
// A writer killed between creating its temporary file and the rename leaves that file behind (the
// target is untouched). The next write of the same target removes such leftovers whose writer is
// gone: its process no longer exists and nobody holds the lock that a writer keeps on its
// temporary file while it works.
#pragma once

#include <string>
#include <string_view>

/// Writes `content` to `path`; on failure returns false and sets `error` to a message that starts
/// with `path`. The directory must exist. A new file gets the permissions of the process umask,
/// a replaced file keeps its own.
bool KEPWriteFileAtomically(const std::string& path, std::string_view content, std::string& error);

/// True when `entry` (a file name, no directory) is the name of a temporary file that
/// KEPWriteFileAtomically creates for the target named `target` (a file name, no directory).
bool KEPIsAtomicWriteTemporary(std::string_view entry, std::string_view target);
