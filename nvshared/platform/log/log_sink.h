// The pieces every log sink shares: dv_log::LogSeverity, the LogRecord that
// the logger hands to its sink, the LogSink interface a host implements to
// send records elsewhere, and FormatLogLine, the one line format that the
// file and standard-error sink write.
//
// Line format (one record per line, fields separated by one blank):
//
//   line      = timestamp " sev=" severity " code=" code " " text LF
//   timestamp = YYYY "-" MM "-" DD "T" hh ":" mm ":" ss "." mmm "Z"   (UTC)
//   severity  = the severity as a signed decimal number
//   code      = the code as an unsigned decimal number
//   text      = the record's text; LF is written as the two characters \n,
//               CR as \r, and any other byte below 0x20 except TAB as \xHH
//               (two upper-case hex digits), so a record never spans lines.
//               Backslashes are written as they are.
//
//   2024-03-01T09:30:00.125Z sev=-1 code=7 Trader Client: boom
//
// Threads: a LogSink must accept Write from many threads at once.
#ifndef NVSHARED_PLATFORM_LOG_LOG_SINK_H_
#define NVSHARED_PLATFORM_LOG_LOG_SINK_H_

#include <chrono>
#include <string>

#include "nvshared/export.h"

namespace dv_log {

// A severity is a plain number whose meaning is the host's; the library
// passes -1, 0, 2 and 3, and every int value goes through unchanged.
enum LogSeverity : int {};

struct LogRecord {
  std::chrono::system_clock::time_point time;
  LogSeverity severity{};
  unsigned int code = 0;
  std::string text;
};

class NVSHARED_API LogSink {
 public:
  virtual ~LogSink();
  // Takes one record. Called from any thread, possibly from several at once;
  // must not call back into the logger.
  virtual void Write(const LogRecord& record) = 0;
};

// The record as one line of the format above, without the final LF.
NVSHARED_API std::string FormatLogLine(const LogRecord& record);

}  // namespace dv_log

#endif  // NVSHARED_PLATFORM_LOG_LOG_SINK_H_
