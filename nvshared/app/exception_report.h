// CDVNVExpRpt reports exceptions: it picks the user text for the kind of
// report, shows it through the host's message-box callback, sends the report
// to the diagnostics channel (nv_ns::DMUtils) and logs it through
// CDVNVErrorLog. CDVNVExceptionHandler links it into the process's chain of
// exception handlers (nv_ns::ExceptionHandler), so that every report raised
// there comes here as a handled exception.
//
// Ownership: the class keeps its own callback pointer (separate from
// CDVNVErrorLog's) and copies of the two user texts. Init builds the one
// CDVNVExceptionHandler, which stays registered until the process ends.
// Threads: no lock; Init runs once at start-up, and the static state is only
// read afterwards. The box callback runs on the reporting thread.
#ifndef NVSHARED_APP_EXCEPTION_REPORT_H_
#define NVSHARED_APP_EXCEPTION_REPORT_H_

#include <string>

#include "nvshared/app/error_log.h"
#include "nvshared/export.h"
#include "nvshared/platform/utils/exception_handler.h"

class NVSHARED_API CDVNVExpRpt {
 public:
  // Report types. Any other value is a plain report: logged, never shown.
  static constexpr unsigned int kHandledException = 2000;
  static constexpr unsigned int kCriticalException = 1000;
  // The box type of a report: a warning.
  static constexpr unsigned int kWarningBox = 0x30;

  // Registers the exception handler (and takes the default one out of the
  // chain), stores `callback` and the user texts of handled and critical
  // exceptions. The texts are printf formats that take the error code as
  // their one argument, and may hold the tokens of AppStringLoader. A null
  // text is taken as empty.
  static void Init(DVNVMessageBoxCallback callback, const char* abnormalMsg,
                   const char* criticalMsg);

  // Reports `code`. For a handled or critical exception with a user text and
  // a callback, shows the formatted user text followed by two blanks and
  // `text` (or, with no `text`, the user text less its last character) in a
  // warning box, and sends `text` to the diagnostics channel if it is
  // enabled. Always logs `text` (not the user text) at severity 0 (handled),
  // -1 (critical) or 2 (anything else). Returns what the log call returned.
  //
  // The user text is formatted into 2048 bytes, terminator included; longer
  // results are cut. Since the text comes from the host, it is checked
  // first: it may hold "%%" and at most one conversion, which must be an
  // integer one (d, i, o, u, x or X, with flags, up to four digits for width
  // and precision, and the h or hh length only; "#" only with o, x and X). A
  // text that breaks these rules is shown literally, as it stands, rather than
  // risk reading an argument that isn't there.
  static int ProcessException(unsigned int code, unsigned int type,
                              const char* text);
  static int ProcessException(unsigned int code, unsigned int type);
  // Only logs: CDVNVErrorLog::LogMessage(text, code, severity).
  static int ProcessExceptionNoWarn(int code, int severity, const char* text);
  // Reports code 2011 as handled, with a fixed text.
  static void ShoutOutMBNotSupported();

  // What Init stored; null and empty at first.
  static DVNVMessageBoxCallback GetMessageBoxCallback();
  static const std::string& GetAbnormalMsg();
  static const std::string& GetCriticalMsg();

 private:
  static DVNVMessageBoxCallback m_fpAfxMessageBox;
  // The two texts live in a store that is never destroyed (see the .cc), so
  // that a report raised while the process exits still reads them.
};

// The link between the process's exception handlers and CDVNVExpRpt: every
// report that reaches it is processed as a handled exception.
class NVSHARED_API CDVNVExceptionHandler : public nv_ns::ExceptionHandler {
 public:
  ~CDVNVExceptionHandler() override;
  void OnException(unsigned int code, const char* text) override;
};

#endif  // NVSHARED_APP_EXCEPTION_REPORT_H_
