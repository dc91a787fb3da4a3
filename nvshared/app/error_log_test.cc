#include "nvshared/app/error_log.h"

#include <climits>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/app/app_string_loader.h"
#include "nvshared/app/exception_report.h"
#include "nvshared/platform/log/logger.h"
#include "nvshared/platform/log/memory_sink.h"
#include "nvshared/platform/os/process_name.h"
#include "nvshared/platform/utils/dm_utils.h"
#include "nvshared/platform/utils/exception_handler.h"

namespace {

using nv_ns::AppStringLoader;
using nv_ns::DMUtils;
using nv_ns::ExceptionHandler;

struct Box {
  std::string text;
  unsigned int type;
  unsigned int helpId;
  bool operator==(const Box&) const = default;
  friend std::ostream& operator<<(std::ostream& os, const Box& b) {
    return os << '"' << b.text << "\" type " << b.type << " help " << b.helpId;
  }
};

// The boxes the host was asked to show.
std::vector<Box> g_boxes;

void RecordBox(const char* text, unsigned int type, unsigned int helpId) {
  g_boxes.push_back(Box{text, type, helpId});
}

// No box for nullopt, else one of `type` with help id 0.
std::vector<Box> Shown(const std::optional<std::string>& text,
                       unsigned int type = 0x30) {
  if (!text) return {};
  return {Box{*text, type, 0}};
}

struct Logged {
  std::string text;
  int severity;
  unsigned int code;
  bool operator==(const Logged&) const = default;
  friend std::ostream& operator<<(std::ostream& os, const Logged& l) {
    return os << '"' << l.text << "\" sev " << l.severity << " code " << l.code;
  }
};

// Saves all the process-wide state these classes touch, starts each test
// from a known one (names "Trader" and "Desk", a memory log, no callbacks,
// the diagnostics channel recording but disabled) and restores it after.
class ReportTest : public ::testing::Test {
 protected:
  void SetUp() override {
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
          dm_.push_back(label + "|" + std::to_string(code) + "|" + text);
        });
    g_boxes.clear();
  }

  void TearDown() override {
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

  std::vector<Logged> LoggedLines() const {
    std::vector<Logged> lines;
    for (const dv_log::LogRecord& r : log_->Records()) {
      lines.push_back(Logged{r.text, static_cast<int>(r.severity), r.code});
    }
    return lines;
  }
  Logged LastLogged() const {
    const std::vector<Logged> lines = LoggedLines();
    return lines.empty() ? Logged{"<nothing logged>", 0, 0} : lines.back();
  }

  std::vector<std::string> dm_;

 private:
  std::shared_ptr<dv_log::MemorySink> log_ =
      std::make_shared<dv_log::MemorySink>();
  std::shared_ptr<dv_log::LogSink> savedSink_;
  bool hadLoader_ = false;
  std::string savedNames_[2], savedTexts_[2], savedProcessName_;
  DVNVMessageBoxCallback savedLogBox_ = nullptr, savedRptBox_ = nullptr;
  std::vector<ExceptionHandler*> savedHandlers_;
  bool savedDMEnabled_ = false;
  DMUtils::Sink savedDMSink_;
};

using ErrorLogTest = ReportTest;
using ExpRptTest = ReportTest;

TEST_F(ErrorLogTest, LogMessageWritesThePrefixedLine) {
  struct Case {
    const char* text;
    int code;
    int severity;
    Logged expected;
  };
  const Case cases[] = {
      {"x", 5, 0, {"Trader Client: x", 0, 5}},
      {nullptr, 5, 0, {"Trader Client", 0, 5}},
      {"", 3000, 3, {"Trader Client", 3, 3000}},
      {"a", -1, INT_MIN, {"Trader Client: a", INT_MIN, UINT_MAX}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.expected);
    EXPECT_EQ(CDVNVErrorLog::LogMessage(c.text, c.code, c.severity), 1);
    EXPECT_EQ(LastLogged(), c.expected);
  }
  AppStringLoader::Destroy(false);
  CDVNVErrorLog::LogMessage("x", 1, 0);
  EXPECT_EQ(LastLogged().text, "<AppName> Client: x");
}

TEST_F(ErrorLogTest, WideLogMessageConvertsOrLogsAnEmptyText) {
  const std::wstring fits(1365, L'\u20ac');  // 4095 bytes in UTF-8
  const std::wstring tooLong = fits + L"a";
  std::string fitsUtf8;
  for (int i = 0; i < 1365; ++i) fitsUtf8 += "\xe2\x82\xac";
  const std::pair<const wchar_t*, std::string> cases[] = {
      {L"\u20ac 5", "Trader Client: \xe2\x82\xac 5"},
      {nullptr, "Trader Client"},
      {fits.c_str(), "Trader Client: " + fitsUtf8},
      {tooLong.c_str(), "Trader Client"},
  };
  for (const auto& [text, expected] : cases) {
    SCOPED_TRACE(expected.substr(0, 40));
    EXPECT_EQ(CDVNVErrorLog::LogMessage(text, 9, 2), 1);
    EXPECT_EQ(LastLogged(), (Logged{expected, 2, 9}));
  }
}

TEST_F(ErrorLogTest, HandleExceptionShowsABoxOnlyAtMinusTwoAndMinusOne) {
  EXPECT_EQ(CDVNVErrorLog::InitErrorLog("Trader", &RecordBox), 0);
  EXPECT_EQ(nvshared::os::GetProcessName(), "Trader App");
  EXPECT_EQ(CDVNVExpRpt::GetMessageBoxCallback(), nullptr);  // its own
  for (const int severity : {-3, -2, -1, 0, 2}) {
    SCOPED_TRACE(severity);
    g_boxes.clear();
    EXPECT_EQ(CDVNVErrorLog::HandleException("disk full", 4, severity), 1);
    const bool shown = severity == -2 || severity == -1;
    EXPECT_EQ(g_boxes, Shown(shown ? std::optional<std::string>("disk full")
                                   : std::nullopt,
                             0));
    EXPECT_EQ(LastLogged(), (Logged{"Trader Client: disk full", severity, 4}));
  }
}

TEST_F(ExpRptTest, ProcessExceptionShowsSendsAndLogs) {
  struct Case {
    unsigned int code;
    unsigned int type;
    const char* text;
    const char* userText;  // both the handled and the critical one
    std::optional<std::string> box;
    std::optional<std::string> dm;
    int severity;
  };
  const Case cases[] = {
      {7, 1000, "boom", "Fail %d.", "Fail 7.  boom",
       "CRITICAL EXCEPTION|7|boom", -1},
      {7, 1000, nullptr, "Fail %d.", "Fail 7", "CRITICAL EXCEPTION|7|", -1},
      {7, 2000, "oops", "<AppName> hit error %d.", "Trader hit error 7.  oops",
       "HANDLED EXCEPTION|7|oops", 0},
      {7, 3000, "boom", "Fail %d", std::nullopt, std::nullopt, 2},
      {7, 2000, "oops", "", std::nullopt, "HANDLED EXCEPTION|7|oops", 0},
      {255, 2000, "x", "<CapAppName> 0x%04X %%", "Trader 0x00FF %  x",
       "HANDLED EXCEPTION|255|x", 0},
      {UINT_MAX, 2000, "x", "%d/%u", "%d/%u  x", "HANDLED EXCEPTION|-1|x", 0},
      {UINT_MAX, 2000, "x", "%+hhd", "-1  x", "HANDLED EXCEPTION|-1|x", 0},
  };
  DMUtils::s_bDMEnabled = true;
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.type) + " " + c.userText);
    g_boxes.clear();
    dm_.clear();
    CDVNVExpRpt::Init(&RecordBox, c.userText, c.userText);
    EXPECT_EQ(CDVNVExpRpt::ProcessException(c.code, c.type, c.text), 1);
    EXPECT_EQ(g_boxes, Shown(c.box));
    EXPECT_EQ(dm_, (c.dm ? std::vector<std::string>{*c.dm}
                         : std::vector<std::string>{}));
    const std::string text = c.text != nullptr ? c.text : "";
    EXPECT_EQ(LastLogged(),
              (Logged{text.empty() ? "Trader Client" : "Trader Client: " + text,
                      c.severity, c.code}));
  }
}

// A host's text that would read anything but the one int is shown as it is.
TEST_F(ExpRptTest, UnsafeUserTextsAreShownLiterally) {
  for (const char* format : {"%s", "%d and %d", "%ld", "%n", "%*d", "%1$d",
                             "%f", "%c", "%#d", "%.99999d", "100%"}) {
    SCOPED_TRACE(format);
    g_boxes.clear();
    CDVNVExpRpt::Init(&RecordBox, format, "");
    CDVNVExpRpt::ProcessException(7, 2000, "x");
    EXPECT_EQ(g_boxes, Shown(std::string(format) + "  x"));
  }
}

TEST_F(ExpRptTest, UserTextIsCutToTheFormatBuffer) {
  CDVNVExpRpt::Init(&RecordBox, (std::string(2040, 'a') + " code %d").c_str(),
                    std::string(3000, 'c').c_str());
  CDVNVExpRpt::ProcessException(12345, 2000, "x");
  CDVNVExpRpt::ProcessException(1, 1000);
  EXPECT_EQ(g_boxes,
            (std::vector<Box>{{std::string(2040, 'a') + " code 1  x", 0x30, 0},
                              {std::string(2046, 'c'), 0x30, 0}}));
}

TEST_F(ExpRptTest, ShoutOutMBNotSupportedReportsAHandledException) {
  CDVNVExpRpt::Init(&RecordBox, "Error %d.", "");
  CDVNVExpRpt::ShoutOutMBNotSupported();
  const std::string text =
      "MultiBroker not supported here. Please roll up sleeves and fix it!";
  EXPECT_EQ(g_boxes, Shown("Error 2011.  " + text));
  EXPECT_EQ(LoggedLines(),
            (std::vector<Logged>{{"Trader Client: " + text, 0, 2011}}));
}

TEST_F(ExpRptTest, InitTakesOverTheHandlerChain) {
  CDVNVExpRpt::Init(&RecordBox, "Abn %d.", "Fail %d.");
  CDVNVExpRpt::Init(&RecordBox, "Abn %d.", "Fail %d.");
  const std::vector<ExceptionHandler*> chain = ExceptionHandler::Handlers();
  ASSERT_EQ(chain.size(), 1u);
  EXPECT_NE(dynamic_cast<CDVNVExceptionHandler*>(chain[0]), nullptr);

  // A report raised anywhere comes here as handled, and the default handler
  // no longer logs it a second time.
  ExceptionHandler::Raise(9, "caught");
  EXPECT_EQ(g_boxes, Shown("Abn 9.  caught"));
  EXPECT_EQ(LoggedLines(),
            (std::vector<Logged>{{"Trader Client: caught", 0, 9}}));
}

}  // namespace
