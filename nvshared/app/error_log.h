// CDVNVErrorLog: the library's error log. Every line goes to the process
// logger (dv_log::GetCustomLog) as "<name> Client: <text>", where <name> is
// the primary application name of AppStringLoader. HandleException also asks
// the host to show the gravest errors in a message box, through a callback;
// no dialog code lives here.
//
// Ownership: the class only stores the host's callback pointer.
// Threads: no lock; InitErrorLog runs once at start-up, before other threads
// log. Logging from several threads is safe as the logger is; the box
// callback runs on the reporting thread.
#ifndef NVSHARED_APP_ERROR_LOG_H_
#define NVSHARED_APP_ERROR_LOG_H_

#include <string>

#include "nvshared/export.h"

// The host's message box: shows `text` in a box of `type` (0 plain, 0x30 a
// warning) with help id `helpId` (always 0 from this library), and returns
// when the user has answered. It must not throw.
using DVNVMessageBoxCallback = void (*)(const char* text, unsigned int type,
                                        unsigned int helpId);

class NVSHARED_API CDVNVErrorLog {
 public:
  // Stores `callback` (null: no boxes), renames the process to
  // `appName` + " App" (the system keeps 15 bytes of it) and returns 0.
  static int InitErrorLog(const std::string& appName,
                          DVNVMessageBoxCallback callback);

  // Logs "<AppName> Client: text", with the token filled by the primary
  // name (it stays as it is when no name is set). A null or empty text logs
  // just "<name> Client", without the colon. `severity` and `code` go to the
  // logger unchanged. Returns 1.
  static int LogMessage(const char* text, int code, int severity);
  // The same for wide text, converted to UTF-8 as into a 4096-byte buffer: a
  // null text, one that cannot be converted, or one whose UTF-8 form needs
  // more than 4095 bytes is logged as an empty text.
  static int LogMessage(const wchar_t* text, int code, int severity);

  // With a callback set and severity -2 or -1, first shows `text` in a box
  // of type 0 (a null text is shown as an empty one); then logs as
  // LogMessage. Returns 1 if the log call returned non-zero, else 0.
  static int HandleException(const char* text, int code, int severity);

  // The callback InitErrorLog stored; null at first.
  static DVNVMessageBoxCallback GetMessageBoxCallback();

 private:
  static DVNVMessageBoxCallback m_fpAfxMessageBox;
};

#endif  // NVSHARED_APP_ERROR_LOG_H_
