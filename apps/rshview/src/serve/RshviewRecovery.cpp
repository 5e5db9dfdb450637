#include "RshviewRecovery.h"

#include <chrono>
#include <ctime>
#include <filesystem>
#include <string_view>
#include <utility>

#include "KEPShaderDocumentWriter.h"
#include "RshviewReadFile.h"

namespace {
namespace fs = std::filesystem;

/// `time` in UTC as "YYYY-MM-DDTHH:MM:SSZ".
std::string IsoTime(fs::file_time_type time) {
  const auto system = std::chrono::file_clock::to_sys(time);
  const std::time_t seconds = std::chrono::system_clock::to_time_t(
      std::chrono::time_point_cast<std::chrono::system_clock::duration>(system));
  std::tm parts{};
  gmtime_r(&seconds, &parts);
  char text[32];
  const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
  return {text, length};
}
/// The numbers a stop tries for a new recovery file before it gives up (and says so).
constexpr int kMaxRecoveryFiles = 1000;

/// Splits a document's file name into the stem and the extension a recovery file keeps.
std::pair<std::string, std::string> StemAndExtension(const fs::path& path) {
  static constexpr std::string_view kDocumentExtension = ".rshdoc.json";
  const std::string name = path.filename().string();
  if (name.size() > kDocumentExtension.size() && name.ends_with(kDocumentExtension))
    return {name.substr(0, name.size() - kDocumentExtension.size()),
            std::string(kDocumentExtension)};
  if (path.has_extension()) return {path.stem().string(), path.extension().string()};
  return {name, {}};
}

/// Whether `name` is one of the recovery files of a document of that stem and extension:
/// `<stem>.unsaved<ext>` or `<stem>.unsaved-<n><ext>`, n from 2.
bool IsRecoveryName(std::string_view name, const std::string& stem, const std::string& extension) {
  const std::string head = stem + ".unsaved";
  if (!name.starts_with(head) || !name.ends_with(extension) ||
      name.size() < head.size() + extension.size())
    return false;
  std::string_view number = name.substr(head.size(), name.size() - head.size() - extension.size());
  if (number.empty()) return true;
  if (number.front() != '-' || number.size() < 2 || number[1] == '0') return false;
  number.remove_prefix(1);
  return number.find_first_not_of("0123456789") == std::string_view::npos;
}
}  // namespace

std::string RshviewRecoveryPath(const std::string& doc, int number) {
  const fs::path path(doc);
  const auto [stem, extension] = StemAndExtension(path);
  const std::string suffix = number > 1 ? "-" + std::to_string(number) : std::string();
  return (path.parent_path() / (stem + ".unsaved" + suffix + extension)).string();
}

std::optional<RshviewPendingRecovery> RshviewFindRecovery(const std::string& doc) {
  const fs::path path(doc);
  const auto [stem, extension] = StemAndExtension(path);
  std::error_code ec;
  const fs::file_time_type saved = fs::last_write_time(path, ec);
  const bool documentThere = !ec;
  std::optional<RshviewPendingRecovery> newest;
  fs::file_time_type newestTime{};
  int count = 0;
  const fs::path folder = path.parent_path().empty() ? fs::path(".") : path.parent_path();
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    const std::string name = it->path().filename().string();
    if (!IsRecoveryName(name, stem, extension) || !it->is_regular_file(ec)) continue;
    const fs::file_time_type written = fs::last_write_time(it->path(), ec);
    // A document saved after the file was written is what the person kept since: no notice.
    if (ec || (documentThere && saved >= written)) {
      ec.clear();
      continue;
    }
    ++count;
    if (!newest || written > newestTime) {
      newestTime = written;
      newest = RshviewPendingRecovery{(path.parent_path() / name).string(), IsoTime(written)};
    }
  }
  if (newest) newest->count = count;
  return newest;
}

bool RshviewWriteRecovery(KEPHostShaderDocument& document, const std::string& doc,
                          std::string& path, std::string& error) {
  // Never over an existing file: one whose changes were never taken would be lost (a document
  // saved since says nothing of them).
  path.clear();
  std::error_code ec;
  for (int number = 1; number <= kMaxRecoveryFiles && path.empty(); ++number) {
    const std::string candidate = RshviewRecoveryPath(doc, number);
    if (fs::symlink_status(candidate, ec).type() == fs::file_type::not_found) path = candidate;
  }
  if (path.empty()) {
    error = "every name from " + RshviewRecoveryPath(doc) + " to " +
            RshviewRecoveryPath(doc, kMaxRecoveryFiles) +
            " is taken: remove the ones you do not need";
    return false;
  }
  const KEPLoadResult saved = KEPShaderDocumentWriter::Save(document, path);
  error.clear();
  for (const std::string& message : saved.Errors()) error += (error.empty() ? "" : "; ") + message;
  return saved.Ok();
}

bool RshviewDocumentAsSaved(KEPHostShaderDocument& document, const std::string& doc) {
  std::string saved;
  return RshviewReadFile(doc, saved) && saved == KEPShaderDocumentWriter::Format(document, doc);
}

std::string RshviewShellWord(const std::string& path) {
  const bool safe = !path.empty() && path.find_first_not_of(
                                         "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                         "0123456789/._-+,:@%=") == std::string::npos;
  if (safe) return path;
  std::string quoted = "'";
  for (const char c : path) {
    if (c == '\'')
      quoted += "'\\''";
    else
      quoted += c;
  }
  return quoted + "'";
}
