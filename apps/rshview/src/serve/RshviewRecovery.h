// The recovery file of `rshview serve`: where the changes not saved when the server stops are
// written, beside the document, and how the next start finds them.
#pragma once

#include <optional>
#include <string>

class KEPHostShaderDocument;

/// The recovery file of the document `doc`: `<stem>.unsaved<ext>` in its folder, the extension
/// being `.rshdoc.json` when the name ends so, else its last one (`room.json` gives
/// `room.unsaved.json`, `notes` gives `notes.unsaved`). Never `doc` itself: the recovery file of
/// a recovery file is `<stem>.unsaved.unsaved<ext>`.
/// `number` 2 and up give `<stem>.unsaved-<number><ext>`: where a stop writes when the earlier
/// names are taken.
std::string RshviewRecoveryPath(const std::string& doc, int number = 1);

/// A recovery file that holds changes the document does not: one newer than the document.
struct RshviewPendingRecovery {
  std::string path;
  std::string modified;  ///< its time of last change, ISO 8601 in UTC ("2026-11-24T01:52:45Z")
  int count = 1;         ///< the recovery files of the document newer than it, this one included
};

/// The newest recovery file of `doc` (any number) that is newer than `doc` (or `doc` is gone),
/// with how many such files there are.
std::optional<RshviewPendingRecovery> RshviewFindRecovery(const std::string& doc);

/// Writes `document` atomically, as saving writes `doc`, to the first recovery file name of `doc`
/// that is free, and sets `path` to it: an existing recovery file is never written over (its
/// changes may never have been taken). False with `error` when it cannot be written.
bool RshviewWriteRecovery(KEPHostShaderDocument& document, const std::string& doc,
                          std::string& path, std::string& error);

/// Whether `doc` on disk holds `document` as it stands (changes written and then put back).
bool RshviewDocumentAsSaved(KEPHostShaderDocument& document, const std::string& doc);

/// `path` as a POSIX shell reads it: as it is when it holds only safe characters, else in single
/// quotes.
std::string RshviewShellWord(const std::string& path);
