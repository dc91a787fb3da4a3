// dv_log::FileSink: writes each record as one line of the format described in
// log_sink.h, either to a file that it opens for appending or to standard
// error. This is the process logger's default sink (on standard error).
//
// Ownership: a sink opened from a path owns its descriptor and closes it when
// the last reference goes; the standard-error sink never closes it.
// Threads: Write may run on many threads at once; each line goes out in one
// write, so lines from this process never interleave, and with O_APPEND the
// lines of several processes sharing one file don't either.
#ifndef NVSHARED_PLATFORM_LOG_FILE_SINK_H_
#define NVSHARED_PLATFORM_LOG_FILE_SINK_H_

#include <memory>
#include <mutex>
#include <string>

#include "nvshared/export.h"
#include "nvshared/platform/log/log_sink.h"
#include "nvshared/status.h"

namespace dv_log {

class NVSHARED_API FileSink : public LogSink {
 public:
  // Opens `path` for appending, creating it (mode 0644 before umask) if it
  // does not exist. On failure the status names the path and the reason.
  static nvshared::StatusOr<std::shared_ptr<FileSink>> Open(
      const std::string& path);
  // A sink on the process's standard error.
  static std::shared_ptr<FileSink> StandardError();

  FileSink(const FileSink&) = delete;
  FileSink& operator=(const FileSink&) = delete;
  ~FileSink() override;

  // A failed write is dropped: the logger is the last line of reporting and
  // has nowhere to report its own trouble.
  void Write(const LogRecord& record) override;

 private:
  FileSink(int fd, bool ownsFd) : fd_(fd), ownsFd_(ownsFd) {}

  std::mutex mutex_;
  const int fd_;
  const bool ownsFd_;
};

}  // namespace dv_log

#endif  // NVSHARED_PLATFORM_LOG_FILE_SINK_H_
