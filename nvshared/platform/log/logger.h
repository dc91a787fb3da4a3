// dv_log::Logger, and GetCustomLog, the process's logger through which every
// line of the library goes. A logger hands each record to one sink, which the
// host chooses: standard error by default, a file (FileSink::Open), memory
// (MemorySink), or a LogSink of its own.
//
//   auto file = dv_log::FileSink::Open("/var/log/app.log");
//   if (file.ok()) dv_log::GetCustomLog()->SetSink(*file);
//
// Ownership: the logger shares its sink; a sink swapped out lives on until
// the writes already under way through it return.
// Threads: Log, SetSink and sink() may run on any threads at once.
#ifndef NVSHARED_PLATFORM_LOG_LOGGER_H_
#define NVSHARED_PLATFORM_LOG_LOGGER_H_

#include <memory>
#include <mutex>

#include "nvshared/export.h"
#include "nvshared/platform/log/log_sink.h"

namespace dv_log {

class NVSHARED_API Logger {
 public:
  // Writes to standard error.
  Logger();
  // Writes to `sink`; null discards every record.
  explicit Logger(std::shared_ptr<LogSink> sink);
  Logger(const Logger&) = delete;
  Logger& operator=(const Logger&) = delete;

  // Stamps the record with the current time and passes it to the sink. A
  // null text is logged as an empty one. Never throws: a sink that throws
  // loses that record.
  void Log(const char* text, LogSeverity severity, unsigned int code) noexcept;

  // Replaces the sink and returns the previous one; null discards every
  // record until a sink is set again.
  std::shared_ptr<LogSink> SetSink(std::shared_ptr<LogSink> sink);
  std::shared_ptr<LogSink> sink() const;

 private:
  mutable std::mutex mutex_;
  std::shared_ptr<LogSink> sink_;
};

// The process's logger. Never null; it lives until the process ends, so code
// that runs during static destruction may still log.
NVSHARED_API Logger* GetCustomLog();

}  // namespace dv_log

#endif  // NVSHARED_PLATFORM_LOG_LOGGER_H_
