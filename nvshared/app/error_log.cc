#include "nvshared/app/error_log.h"

#include <string_view>

#include "nvshared/app/app_string_loader.h"
#include "nvshared/platform/log/logger.h"
#include "nvshared/platform/os/process_name.h"
#include "nvshared/platform/os/wide_text.h"

namespace {

// The conversion buffer of wide texts, terminator included.
constexpr std::size_t kWideTextBufferSize = 4096;

}  // namespace

DVNVMessageBoxCallback CDVNVErrorLog::m_fpAfxMessageBox = nullptr;

int CDVNVErrorLog::InitErrorLog(const std::string& appName,
                                DVNVMessageBoxCallback callback) {
  m_fpAfxMessageBox = callback;
  dv_coreutils_ns::SysRenameProcess((appName + " App").c_str());
  return 0;
}

int CDVNVErrorLog::LogMessage(const char* text, int code, int severity) {
  const std::string_view body = text != nullptr ? text : "";
  std::string line;
  nv_ns::AppStringLoader::LoadAppString("<AppName> Client:", line);
  if (body.empty()) {
    line.pop_back();
  } else {
    line += ' ';
    line += body;
  }
  dv_log::GetCustomLog()->Log(line.c_str(),
                              static_cast<dv_log::LogSeverity>(severity),
                              static_cast<unsigned int>(code));
  return 1;
}

int CDVNVErrorLog::LogMessage(const wchar_t* text, int code, int severity) {
  std::string narrow;
  if (text != nullptr) {
    narrow = nvshared::os::WideToUtf8(text, kWideTextBufferSize - 1)
                 .value_or(std::string());
  }
  return LogMessage(narrow.c_str(), code, severity);
}

int CDVNVErrorLog::HandleException(const char* text, int code, int severity) {
  if (m_fpAfxMessageBox != nullptr && (severity == -2 || severity == -1)) {
    m_fpAfxMessageBox(text != nullptr ? text : "", 0, 0);
  }
  return LogMessage(text, code, severity) != 0 ? 1 : 0;
}

DVNVMessageBoxCallback CDVNVErrorLog::GetMessageBoxCallback() {
  return m_fpAfxMessageBox;
}
