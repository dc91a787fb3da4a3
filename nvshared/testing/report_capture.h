// ReportCapture: for the life of one object, the process-wide reporting
// state in a known form — application names "Trader" and "Desk", a memory
// log, no message-box callbacks, the diagnostics channel recording but
// disabled — with everything put back as it was when the object goes (log
// sink, names, callbacks, report texts, handler chain, process name,
// diagnostics switch and sink). Message boxes reach it through RecordBox.
#ifndef NVSHARED_TESTING_REPORT_CAPTURE_H_
#define NVSHARED_TESTING_REPORT_CAPTURE_H_

#include <memory>
#include <string>
#include <vector>

#include "nvshared/app/error_log.h"
#include "nvshared/platform/log/memory_sink.h"
#include "nvshared/platform/utils/dm_utils.h"
#include "nvshared/platform/utils/exception_handler.h"

namespace nvshared::testing {

class ReportCapture {
 public:
  ReportCapture();
  ~ReportCapture();
  ReportCapture(const ReportCapture&) = delete;
  ReportCapture& operator=(const ReportCapture&) = delete;

  // The lines logged since the capture began, as "text|severity|code".
  std::vector<std::string> Logged() const;
  // The last of them, or "<nothing logged>".
  std::string LastLogged() const;

  // A message-box callback for the library: records "text|type|help".
  static void RecordBox(const char* text, unsigned int type,
                        unsigned int helpId);
  // The boxes recorded, and the diagnostics lines as "label|code|text".
  std::vector<std::string> boxes;
  std::vector<std::string> dm;

 private:
  std::shared_ptr<dv_log::MemorySink> log_ =
      std::make_shared<dv_log::MemorySink>();
  std::shared_ptr<dv_log::LogSink> savedSink_;
  bool hadLoader_ = false;
  std::string savedNames_[2], savedTexts_[2], savedProcessName_;
  DVNVMessageBoxCallback savedLogBox_ = nullptr, savedRptBox_ = nullptr;
  std::vector<nv_ns::ExceptionHandler*> savedHandlers_;
  bool savedDMEnabled_ = false;
  nv_ns::DMUtils::Sink savedDMSink_;
};

}  // namespace nvshared::testing

#endif  // NVSHARED_TESTING_REPORT_CAPTURE_H_
