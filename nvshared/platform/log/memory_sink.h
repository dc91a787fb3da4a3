// dv_log::MemorySink: keeps every record it is given, in order, so that tests
// and the command-line tool can read them back whole (text, severity, code)
// or as the lines a file sink would have written.
//
// Ownership: the sink owns copies of the records; it keeps all of them until
// Clear, so it suits tests and short runs rather than a long-lived host.
// Threads: Write, the readers and Clear may run on many threads at once.
#ifndef NVSHARED_PLATFORM_LOG_MEMORY_SINK_H_
#define NVSHARED_PLATFORM_LOG_MEMORY_SINK_H_

#include <mutex>
#include <string>
#include <vector>

#include "nvshared/export.h"
#include "nvshared/platform/log/log_sink.h"

namespace dv_log {

class NVSHARED_API MemorySink : public LogSink {
 public:
  MemorySink() = default;
  MemorySink(const MemorySink&) = delete;
  MemorySink& operator=(const MemorySink&) = delete;

  void Write(const LogRecord& record) override;

  // Copies of what was written so far, oldest first.
  std::vector<LogRecord> Records() const;
  // The records' texts alone.
  std::vector<std::string> Texts() const;
  // Each record through FormatLogLine, without line ends.
  std::vector<std::string> Lines() const;
  void Clear();

 private:
  mutable std::mutex mutex_;
  std::vector<LogRecord> records_;
};

}  // namespace dv_log

#endif  // NVSHARED_PLATFORM_LOG_MEMORY_SINK_H_
