#include "KEPAtomicFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace {

/// Owns a file descriptor: closed on every path out of a scope.
class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int Get() const { return fd_; }
  bool Valid() const { return fd_ >= 0; }
  /// Closes now and reports whether the close succeeded (some file systems report a failed
  /// write only here).
  bool Close() {
    const int fd = fd_;
    fd_ = -1;
    return ::close(fd) == 0;
  }

 private:
  int fd_;
};

// Target names are cut to this length inside temporary names, so that the temporary name stays
// below the file systems' usual 255-byte limit.
constexpr std::size_t kMaxNameInTemporary = 200;
constexpr std::string_view kTemporarySuffix = ".tmp";

std::string TemporaryPrefix(std::string_view target) {
  return "." + std::string(target.substr(0, kMaxNameInTemporary)) + ".";
}

/// The writer's process id when `entry` is a temporary name of `target`, else 0.
pid_t TemporaryWriter(std::string_view entry, std::string_view target) {
  const std::string prefix = TemporaryPrefix(target);
  if (entry.size() <= prefix.size() + kTemporarySuffix.size() || !entry.starts_with(prefix) ||
      !entry.ends_with(kTemporarySuffix))
    return 0;
  // "<pid>.<counter>.<random>" between the prefix and the suffix, all three digits (the last
  // one hexadecimal).
  std::string_view fields = entry.substr(prefix.size());
  fields.remove_suffix(kTemporarySuffix.size());
  const char* const end = fields.data() + fields.size();
  pid_t pid = 0;
  std::from_chars_result read = std::from_chars(fields.data(), end, pid);
  if (read.ec != std::errc() || pid <= 0 || read.ptr == end || *read.ptr != '.') return 0;
  std::uint64_t number = 0;
  read = std::from_chars(read.ptr + 1, end, number);
  if (read.ec != std::errc() || read.ptr == end || *read.ptr != '.') return 0;
  read = std::from_chars(read.ptr + 1, end, number, 16);
  return read.ec == std::errc() && read.ptr == end ? pid : 0;
}

std::uint64_t RandomBits() {
  std::uint64_t bits = 0;
  if (::getrandom(&bits, sizeof bits, GRND_NONBLOCK) == static_cast<ssize_t>(sizeof bits))
    return bits;
  // No entropy yet (early boot): the clock still tells writers of other pid namespaces apart.
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  return (static_cast<std::uint64_t>(now.tv_sec) << 30) ^ static_cast<std::uint64_t>(now.tv_nsec);
}

std::string TemporaryName(std::string_view target) {
  static std::atomic<std::uint64_t> counter{0};
  char fields[64];
  std::snprintf(fields, sizeof fields, "%ld.%llu.%016llx", static_cast<long>(::getpid()),
                static_cast<unsigned long long>(counter.fetch_add(1)),
                static_cast<unsigned long long>(RandomBits()));
  return TemporaryPrefix(target) + fields + std::string(kTemporarySuffix);
}

/// Removes the temporary files of `target` in `directory` that a killed writer left behind. A
/// file is removed only when the process named in it no longer exists and nobody holds its lock
/// (a writer in another pid namespace or on another machine holds it while it works). Nothing
/// here can make the write fail.
void RemoveLeftovers(int directory, std::string_view target) {
  const int listing = ::dup(directory);
  if (listing < 0) return;
  DIR* dir = ::fdopendir(listing);
  if (!dir) {
    ::close(listing);
    return;
  }
  while (const dirent* entry = ::readdir(dir)) {
    const pid_t writer = TemporaryWriter(entry->d_name, target);
    if (writer == 0 || writer == ::getpid()) continue;
    if (::kill(writer, 0) == 0 || errno != ESRCH) continue;  // alive, or not ours to know
    const Descriptor file(
        ::openat(directory, entry->d_name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!file.Valid() || ::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) continue;
    if (::flock(file.Get(), LOCK_EX | LOCK_NB) != 0) continue;
    ::unlinkat(directory, entry->d_name, 0);
  }
  ::closedir(dir);
}

/// "<path>: <what>: <the reason errno gives>"; errno is read before anything else can change it.
std::string Failure(const std::string& path, const char* what) {
  const int code = errno;
  return path + ": " + what + ": " + std::strerror(code);
}

/// Writes all of `content` to `fd`; false with errno set when a write fails.
bool WriteAll(int fd, std::string_view content) {
  while (!content.empty()) {
    const ssize_t n = ::write(fd, content.data(), content.size());
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    content.remove_prefix(static_cast<std::size_t>(n));
  }
  return true;
}

bool Sync(int fd) {
  int result = 0;
  do result = ::fsync(fd);
  while (result != 0 && errno == EINTR);
  return result == 0;
}
}  // namespace

bool KEPIsAtomicWriteTemporary(std::string_view entry, std::string_view target) {
  return TemporaryWriter(entry, target) != 0;
}

bool KEPWriteFileAtomically(const std::string& path, std::string_view content, std::string& error) {
  const std::size_t slash = path.rfind('/');
  const std::string directoryPath = slash == std::string::npos ? "."
                                    : slash == 0               ? "/"
                                                               : path.substr(0, slash);
  const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
  if (name.empty() || name == "." || name == "..") {
    error = path + ": not a file name";
    return false;
  }

  // Everything below works relative to the directory, so that the temporary file and the target
  // are in the same directory even if it is renamed meanwhile. A directory that may be written
  // but not read is opened as a path only: then it is neither swept nor flushed.
  bool readable = true;
  int directoryFd = ::open(directoryPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (directoryFd < 0 && errno == EACCES) {
    readable = false;
    directoryFd = ::open(directoryPath.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  }
  const Descriptor directory(directoryFd);
  if (!directory.Valid()) {
    error = Failure(path, "cannot open its directory");
    return false;
  }
  if (readable) RemoveLeftovers(directory.Get(), name);

  // A name that exists already (a leftover, however unlikely) is never reused: O_EXCL.
  std::string temporary;
  int fd = -1;
  for (int attempt = 0; attempt < 8 && fd < 0; ++attempt) {
    temporary = TemporaryName(name);
    fd = ::openat(directory.Get(), temporary.c_str(),
                  O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (fd < 0 && errno != EEXIST) break;
  }
  Descriptor file(fd);
  if (!file.Valid()) {
    error = Failure(path, "cannot create a temporary file beside it");
    return false;
  }
  // The lock tells RemoveLeftovers of other machines and pid namespaces that this writer lives
  // (until the file is closed just before the rename); a file system without locks only loses
  // that protection.
  ::flock(file.Get(), LOCK_EX | LOCK_NB);

  const auto fail = [&](const char* what) {
    error = Failure(path, what);
    ::unlinkat(directory.Get(), temporary.c_str(), 0);
    return false;
  };
  // A replaced file keeps its permissions (a private file stays private); when they cannot be
  // copied (another user's file) the new one has the umask's.
  struct stat existing {};
  if (::fstatat(directory.Get(), name.c_str(), &existing, 0) == 0 && S_ISREG(existing.st_mode))
    ::fchmod(file.Get(), existing.st_mode & 07777);
  if (!WriteAll(file.Get(), content)) return fail("cannot write");
  if (!Sync(file.Get())) return fail("cannot flush it to disk");
  if (!file.Close()) return fail("cannot close it");
  if (::renameat(directory.Get(), temporary.c_str(), directory.Get(), name.c_str()) != 0)
    return fail("cannot replace it");
  // Without this a crash soon after could bring back the old directory entry. File systems that
  // cannot flush a directory say EINVAL; their rename is as durable as they make it.
  if (readable && !Sync(directory.Get()) && errno != EINVAL) {
    error = Failure(path, "written, but its directory cannot be flushed to disk");
    return false;
  }
  return true;
}
