#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "nvshared/platform/os/atomic_file.h"

namespace nvshared::os {
namespace {

Status Errno(const std::string& path, const char* what) {
  return Status::Error(path + ": " + what + ": " + std::strerror(errno));
}

std::string DirectoryOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  if (slash == 0) return "/";
  return path.substr(0, slash);
}

}  // namespace

bool PathExists(const std::string& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0;
}

StatusOr<std::string> ReadWholeFile(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return Errno(path, "cannot open the file");
  std::string contents;
  char chunk[8192];
  for (;;) {
    const ssize_t n = ::read(fd, chunk, sizeof chunk);
    if (n < 0) {
      if (errno == EINTR) continue;
      Status error = Errno(path, "cannot read the file");
      ::close(fd);
      return error;
    }
    if (n == 0) break;
    contents.append(chunk, static_cast<std::size_t>(n));
  }
  ::close(fd);
  return contents;
}

Status ReplaceFileAtomically(const std::string& path,
                             std::string_view contents) {
  std::string temp = path + ".XXXXXX";
  const int fd = ::mkstemp(temp.data());
  if (fd < 0) return Errno(temp, "cannot create a temporary file");
  std::size_t done = 0;
  while (done < contents.size()) {
    const ssize_t n =
        ::write(fd, contents.data() + done, contents.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      Status error = Errno(temp, "cannot write");
      ::close(fd);
      ::unlink(temp.c_str());
      return error;
    }
    done += static_cast<std::size_t>(n);
  }
  if (::fsync(fd) != 0) {
    Status error = Errno(temp, "cannot flush");
    ::close(fd);
    ::unlink(temp.c_str());
    return error;
  }
  ::close(fd);
  if (::rename(temp.c_str(), path.c_str()) != 0) {
    Status error = Errno(path, "cannot replace the file");
    ::unlink(temp.c_str());
    return error;
  }
  // The rename itself reaches the disk with the directory.
  const int dir = ::open(DirectoryOf(path).c_str(), O_RDONLY | O_CLOEXEC);
  if (dir >= 0) {
    ::fsync(dir);
    ::close(dir);
  }
  return Status::Ok();
}

}  // namespace nvshared::os
