#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

#include "nvshared/platform/log/file_sink.h"

namespace dv_log {

nvshared::StatusOr<std::shared_ptr<FileSink>> FileSink::Open(
    const std::string& path) {
  int fd;
  do {
    fd = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
  } while (fd < 0 && errno == EINTR);
  if (fd < 0) {
    const int error = errno;
    return nvshared::Status::Error("cannot open log file '" + path +
                                   "' for appending: " + std::strerror(error));
  }
  return std::shared_ptr<FileSink>(new FileSink(fd, /*ownsFd=*/true));
}

std::shared_ptr<FileSink> FileSink::StandardError() {
  return std::shared_ptr<FileSink>(
      new FileSink(STDERR_FILENO, /*ownsFd=*/false));
}

FileSink::~FileSink() {
  if (ownsFd_) ::close(fd_);
}

void FileSink::Write(const LogRecord& record) {
  std::string line = FormatLogLine(record);
  line += '\n';
  std::lock_guard<std::mutex> lock(mutex_);
  const char* data = line.data();
  std::size_t left = line.size();
  while (left > 0) {
    const ssize_t n = ::write(fd_, data, left);
    if (n < 0) {
      if (errno == EINTR) continue;
      return;
    }
    data += n;
    left -= static_cast<std::size_t>(n);
  }
}

}  // namespace dv_log
