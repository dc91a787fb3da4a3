#include "nvshared/app/exception_report.h"

#include <cstdio>
#include <string_view>

#include "nvshared/app/app_string_loader.h"
#include "nvshared/platform/utils/dm_utils.h"

namespace {

// The buffer the user text is formatted into, terminator included.
constexpr std::size_t kUserMessageBufferSize = 2048;

// How a user text takes the error code.
enum class CodeConversion {
  kInvalid,   // Some conversion would read what isn't passed.
  kNone,      // No conversion: the text is printed as it is, "%%" as "%".
  kSigned,    // One d or i.
  kUnsigned,  // One o, u, x or X.
};

// Checks a host's format against what is passed to it: the code, once.
CodeConversion ClassifyFormat(std::string_view format) {
  CodeConversion found = CodeConversion::kNone;
  std::size_t i = 0;
  const auto at = [&](std::size_t k) {
    return k < format.size() ? format[k] : '\0';
  };
  while (i < format.size()) {
    if (format[i++] != '%') continue;
    if (at(i) == '%') {
      ++i;
      continue;
    }
    if (found != CodeConversion::kNone) return CodeConversion::kInvalid;
    bool alternateForm = false;
    while (std::string_view("-+ #0").find(at(i)) != std::string_view::npos) {
      alternateForm |= at(i++) == '#';
    }
    // Width and precision of at most four digits: anything wider only pads
    // past the buffer, and a huge one takes printf a long time to do so.
    const auto skipDigits = [&] {
      const std::size_t start = i;
      while (at(i) >= '0' && at(i) <= '9') ++i;
      return i - start <= 4;
    };
    if (!skipDigits()) return CodeConversion::kInvalid;
    if (at(i) == '.') {
      ++i;
      if (!skipDigits()) return CodeConversion::kInvalid;
    }
    if (at(i) == 'h') ++i;
    if (at(i) == 'h') ++i;
    switch (at(i)) {
      case 'd':
      case 'i':
      case 'u':
        // "#" is undefined for these.
        if (alternateForm) return CodeConversion::kInvalid;
        found =
            at(i) == 'u' ? CodeConversion::kUnsigned : CodeConversion::kSigned;
        break;
      case 'o':
      case 'x':
      case 'X':
        found = CodeConversion::kUnsigned;
        break;
      default:
        return CodeConversion::kInvalid;
    }
    ++i;
  }
  return found;
}

std::string FormatUserMessage(const std::string& format, unsigned int code) {
  char buffer[kUserMessageBufferSize];
  int written = -1;
  // The format is the host's, checked above to take exactly what is passed.
  switch (ClassifyFormat(format)) {
    case CodeConversion::kInvalid:
      return format.substr(0, kUserMessageBufferSize - 1);
    case CodeConversion::kSigned:
      written = std::snprintf(buffer, sizeof buffer, format.c_str(),
                              static_cast<int>(code));
      break;
    case CodeConversion::kNone:
    case CodeConversion::kUnsigned:
      written = std::snprintf(buffer, sizeof buffer, format.c_str(), code);
      break;
  }
  return written < 0 ? std::string() : std::string(buffer);
}

CDVNVExceptionHandler* g_exceptionHandler = nullptr;

// The texts Init stored. Never destroyed: a report may come from another
// static's destructor while the process exits.
struct BoxTexts {
  std::string s_sAbnormalMsg;
  std::string s_sCriticalMsg;
};
BoxTexts& TheTexts() {
  static BoxTexts* const texts = new BoxTexts();
  return *texts;
}

}  // namespace

DVNVMessageBoxCallback CDVNVExpRpt::m_fpAfxMessageBox = nullptr;

void CDVNVExpRpt::Init(DVNVMessageBoxCallback callback, const char* abnormalMsg,
                       const char* criticalMsg) {
  // Never destroyed: the handler stays registered until the process ends.
  if (g_exceptionHandler == nullptr) {
    g_exceptionHandler = new CDVNVExceptionHandler();
  }
  m_fpAfxMessageBox = callback;
  TheTexts().s_sAbnormalMsg = abnormalMsg != nullptr ? abnormalMsg : "";
  TheTexts().s_sCriticalMsg = criticalMsg != nullptr ? criticalMsg : "";
  nv_ns::ExceptionHandler::AddExceptionHandler(*g_exceptionHandler);
  nv_ns::ExceptionHandler::RemoveExceptionHandler(
      nv_ns::ExceptionHandler::s_defaultHandler);
}

int CDVNVExpRpt::ProcessException(unsigned int code, unsigned int type,
                                  const char* text) {
  const std::string report = text != nullptr ? text : "";
  const bool handled = type == kHandledException;
  const bool critical = type == kCriticalException;
  const int severity = handled ? 0 : critical ? -1 : 2;

  std::string userMessage;
  if (handled || critical) {
    std::string format;
    nv_ns::AppStringLoader::LoadAppString(
        (handled ? TheTexts().s_sAbnormalMsg : TheTexts().s_sCriticalMsg).c_str(), format);
    userMessage = FormatUserMessage(format, code);
  }

  if (m_fpAfxMessageBox != nullptr && !userMessage.empty()) {
    if (report.empty()) {
      userMessage.pop_back();
    } else {
      userMessage += "  ";
      userMessage += report;
    }
    m_fpAfxMessageBox(userMessage.c_str(), kWarningBox, 0);
  }

  if (nv_ns::DMUtils::s_bDMEnabled && (handled || critical)) {
    nv_ns::DMUtils::GenDMExceptionLog(
        report, static_cast<int>(code),
        handled ? "HANDLED EXCEPTION" : "CRITICAL EXCEPTION");
  }

  return CDVNVErrorLog::LogMessage(report.c_str(), static_cast<int>(code),
                                   severity);
}

int CDVNVExpRpt::ProcessException(unsigned int code, unsigned int type) {
  return ProcessException(code, type, "");
}

int CDVNVExpRpt::ProcessExceptionNoWarn(int code, int severity,
                                        const char* text) {
  return CDVNVErrorLog::LogMessage(text, code, severity);
}

void CDVNVExpRpt::ShoutOutMBNotSupported() {
  ProcessException(
      2011, kHandledException,
      "MultiBroker not supported here. Please roll up sleeves and fix it!");
}

DVNVMessageBoxCallback CDVNVExpRpt::GetMessageBoxCallback() {
  return m_fpAfxMessageBox;
}

const std::string& CDVNVExpRpt::GetAbnormalMsg() { return TheTexts().s_sAbnormalMsg; }

const std::string& CDVNVExpRpt::GetCriticalMsg() { return TheTexts().s_sCriticalMsg; }

CDVNVExceptionHandler::~CDVNVExceptionHandler() = default;

void CDVNVExceptionHandler::OnException(unsigned int code, const char* text) {
  // Whatever reaches the chain was caught somewhere: it counts as handled.
  CDVNVExpRpt::ProcessException(code, CDVNVExpRpt::kHandledException, text);
}
