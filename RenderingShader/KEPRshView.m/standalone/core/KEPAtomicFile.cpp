#include "KEPAtomicFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

bool KEPWriteFileAtomically(const std::string& path, std::string_view content, std::string& error) {
  const std::string temporary = path + ".tmp." + std::to_string(::getpid());
  const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) {
    error = path + ": cannot create " + temporary + ": " + std::strerror(errno);
    return false;
  }
  std::size_t written = 0;
  while (written < content.size()) {
    const ssize_t n = ::write(fd, content.data() + written, content.size() - written);
    if (n < 0) {
      if (errno == EINTR) continue;
      error = path + ": write failed: " + std::strerror(errno);
      ::close(fd);
      ::unlink(temporary.c_str());
      return false;
    }
    written += static_cast<std::size_t>(n);
  }
  if (::fsync(fd) != 0 || ::close(fd) != 0) {
    error = path + ": cannot flush: " + std::strerror(errno);
    ::unlink(temporary.c_str());
    return false;
  }
  if (std::rename(temporary.c_str(), path.c_str()) != 0) {
    error = path + ": cannot replace: " + std::strerror(errno);
    ::unlink(temporary.c_str());
    return false;
  }
  return true;
}
