#include "nvshared/testing/report_capture.h"

#include "nvshared/app/app_string_loader.h"
#include "nvshared/app/exception_report.h"
#include "nvshared/platform/core/sys_rename_process.h"
#include "nvshared/platform/log/logger.h"
#include "nvshared/platform/os/process_name.h"

namespace nvshared::testing {
namespace {

ReportCapture* g_current = nullptr;

}  // namespace

using nv_ns::AppStringLoader;
using nv_ns::DMUtils;
using nv_ns::ExceptionHandler;

ReportCapture::ReportCapture() {
  savedSink_ = dv_log::GetCustomLog()->SetSink(log_);
  hadLoader_ = AppStringLoader::HasInstance();
  savedNames_[0] = AppStringLoader::ConstInstance().AppName();
  savedNames_[1] = AppStringLoader::ConstInstance().AltAppName();
  AppStringLoader::Instance().SetAppName("Trader", "Desk");
  savedProcessName_ = nvshared::os::GetProcessName();
  savedLogBox_ = CDVNVErrorLog::GetMessageBoxCallback();
  savedRptBox_ = CDVNVExpRpt::GetMessageBoxCallback();
  savedTexts_[0] = CDVNVExpRpt::GetAbnormalMsg();
  savedTexts_[1] = CDVNVExpRpt::GetCriticalMsg();
  savedHandlers_ = ExceptionHandler::Handlers();
  savedDMEnabled_ = DMUtils::s_bDMEnabled;
  DMUtils::s_bDMEnabled = false;
  savedDMSink_ = DMUtils::SetSink(
      [this](const std::string& text, int code, const std::string& label) {
        dm.push_back(label + "|" + std::to_string(code) + "|" + text);
      });
  g_current = this;
}

ReportCapture::~ReportCapture() {
  g_current = nullptr;
  DMUtils::SetSink(savedDMSink_);
  DMUtils::s_bDMEnabled = savedDMEnabled_;
  CDVNVExpRpt::Init(savedRptBox_, savedTexts_[0].c_str(),
                    savedTexts_[1].c_str());
  for (ExceptionHandler* h : ExceptionHandler::Handlers()) {
    ExceptionHandler::RemoveExceptionHandler(*h);
  }
  for (ExceptionHandler* h : savedHandlers_) {
    ExceptionHandler::AddExceptionHandler(*h);
  }
  CDVNVErrorLog::InitErrorLog("", savedLogBox_);
  dv_coreutils_ns::SysRenameProcess(savedProcessName_.c_str());
  AppStringLoader::Instance().SetAppName(savedNames_[0].c_str(),
                                         savedNames_[1].c_str());
  if (!hadLoader_) AppStringLoader::Destroy(false);
  dv_log::GetCustomLog()->SetSink(savedSink_);
}

std::vector<std::string> ReportCapture::Logged() const {
  std::vector<std::string> lines;
  for (const dv_log::LogRecord& r : log_->Records()) {
    lines.push_back(r.text + "|" +
                    std::to_string(static_cast<int>(r.severity)) + "|" +
                    std::to_string(r.code));
  }
  return lines;
}

std::string ReportCapture::LastLogged() const {
  const std::vector<std::string> lines = Logged();
  return lines.empty() ? "<nothing logged>" : lines.back();
}

void ReportCapture::RecordBox(const char* text, unsigned int type,
                              unsigned int helpId) {
  if (g_current == nullptr) return;
  g_current->boxes.push_back(std::string(text) + "|" + std::to_string(type) +
                             "|" + std::to_string(helpId));
}

}  // namespace nvshared::testing
