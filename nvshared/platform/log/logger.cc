#include "nvshared/platform/log/logger.h"

#include <chrono>
#include <utility>

#include "nvshared/platform/log/file_sink.h"

namespace dv_log {

Logger::Logger() : sink_(FileSink::StandardError()) {}

Logger::Logger(std::shared_ptr<LogSink> sink) : sink_(std::move(sink)) {}

void Logger::Log(const char* text, LogSeverity severity,
                 unsigned int code) noexcept {
  try {
    // Written outside the lock, so a slow sink holds up neither SetSink nor
    // writers that the sink itself lets through.
    const std::shared_ptr<LogSink> target = sink();
    if (!target) return;
    LogRecord record;
    record.time = std::chrono::system_clock::now();
    record.severity = severity;
    record.code = code;
    if (text != nullptr) record.text = text;
    target->Write(record);
  } catch (...) {
    // Logging is the last line of reporting: a record that cannot be written
    // is dropped rather than thrown into the code that reports.
  }
}

std::shared_ptr<LogSink> Logger::SetSink(std::shared_ptr<LogSink> sink) {
  std::lock_guard<std::mutex> lock(mutex_);
  std::swap(sink_, sink);
  return sink;
}

std::shared_ptr<LogSink> Logger::sink() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return sink_;
}

Logger* GetCustomLog() {
  // Never destroyed, so that reports made while statics are torn down at
  // exit still find it.
  static Logger* const logger = new Logger();
  return logger;
}

}  // namespace dv_log
