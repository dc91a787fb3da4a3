#include "nvshared/platform/log/log_sink.h"

#include <cstdio>
#include <ctime>

namespace dv_log {

LogSink::~LogSink() = default;

namespace {

void AppendTimestamp(std::chrono::system_clock::time_point time,
                     std::string& out) {
  using std::chrono::duration_cast;
  using std::chrono::milliseconds;
  using std::chrono::seconds;
  // Floor to whole seconds so that times before 1970 keep a positive
  // millisecond part.
  const auto secs = std::chrono::floor<seconds>(time);
  const auto millis = duration_cast<milliseconds>(time - secs).count();
  const std::time_t t = std::chrono::system_clock::to_time_t(secs);
  std::tm tm{};
  gmtime_r(&t, &tm);
  char buffer[96];  // room for any int in each field
  std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ",
                tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour,
                tm.tm_min, tm.tm_sec, static_cast<int>(millis));
  out += buffer;
}

void AppendEscaped(const std::string& text, std::string& out) {
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 || c == '\t') {
      out += c;
    } else if (c == '\n') {
      out += "\\n";
    } else if (c == '\r') {
      out += "\\r";
    } else {
      char hex[5];
      std::snprintf(hex, sizeof hex, "\\x%02X", static_cast<unsigned>(byte));
      out += hex;
    }
  }
}

}  // namespace

std::string FormatLogLine(const LogRecord& record) {
  std::string line;
  line.reserve(48 + record.text.size());
  AppendTimestamp(record.time, line);
  line += " sev=";
  line += std::to_string(static_cast<int>(record.severity));
  line += " code=";
  line += std::to_string(record.code);
  line += ' ';
  AppendEscaped(record.text, line);
  return line;
}

}  // namespace dv_log
