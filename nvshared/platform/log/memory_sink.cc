#include "nvshared/platform/log/memory_sink.h"

namespace dv_log {

void MemorySink::Write(const LogRecord& record) {
  std::lock_guard<std::mutex> lock(mutex_);
  records_.push_back(record);
}

std::vector<LogRecord> MemorySink::Records() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return records_;
}

std::vector<std::string> MemorySink::Texts() const {
  std::vector<std::string> texts;
  std::lock_guard<std::mutex> lock(mutex_);
  texts.reserve(records_.size());
  for (const LogRecord& record : records_) texts.push_back(record.text);
  return texts;
}

std::vector<std::string> MemorySink::Lines() const {
  std::vector<std::string> lines;
  std::lock_guard<std::mutex> lock(mutex_);
  lines.reserve(records_.size());
  for (const LogRecord& record : records_) {
    lines.push_back(FormatLogLine(record));
  }
  return lines;
}

void MemorySink::Clear() {
  std::lock_guard<std::mutex> lock(mutex_);
  records_.clear();
}

}  // namespace dv_log
