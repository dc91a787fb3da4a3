#include "nvshared/app/error_log.h"

#include <climits>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/app/app_string_loader.h"
#include "nvshared/app/exception_report.h"
#include "nvshared/platform/os/process_name.h"
#include "nvshared/testing/report_capture.h"

namespace {

using nv_ns::DMUtils;
using nv_ns::ExceptionHandler;
using nvshared::testing::ReportCapture;
using Lines = std::vector<std::string>;

// One box of type 0x30 with `text`, or none.
Lines Warning(const std::optional<std::string>& text) {
  return text ? Lines{*text + "|48|0"} : Lines{};
}

class ReportTest : public ::testing::Test {
 protected:
  ReportCapture capture_;
};

TEST_F(ReportTest, LogMessageWritesThePrefixedLine) {
  const std::wstring fits(1365, L'\u20ac');  // 4095 bytes in UTF-8
  std::string fitsUtf8;
  for (int i = 0; i < 1365; ++i) fitsUtf8 += "\xe2\x82\xac";
  CDVNVErrorLog::LogMessage("x", 5, 0);
  CDVNVErrorLog::LogMessage(static_cast<const char*>(nullptr), 5, 0);
  CDVNVErrorLog::LogMessage("", 3000, 3);
  CDVNVErrorLog::LogMessage("a", -1, INT_MIN);
  CDVNVErrorLog::LogMessage(L"\u20ac 5", 9, 2);
  CDVNVErrorLog::LogMessage(static_cast<const wchar_t*>(nullptr), 9, 2);
  CDVNVErrorLog::LogMessage(fits.c_str(), 9, 2);
  EXPECT_EQ(CDVNVErrorLog::LogMessage((fits + L"a").c_str(), 9, 2), 1);
  nv_ns::AppStringLoader::Destroy(false);
  CDVNVErrorLog::LogMessage("x", 1, 0);
  EXPECT_EQ(capture_.Logged(),
            (Lines{"Trader Client: x|0|5", "Trader Client|0|5",
                   "Trader Client|3|3000",
                   "Trader Client: a|-2147483648|" + std::to_string(UINT_MAX),
                   "Trader Client: \xe2\x82\xac 5|2|9", "Trader Client|2|9",
                   "Trader Client: " + fitsUtf8 + "|2|9",
                   "Trader Client|2|9",  // too long for 4095 bytes: empty
                   "<AppName> Client: x|0|1"}));
}

TEST_F(ReportTest, HandleExceptionShowsABoxOnlyAtMinusTwoAndMinusOne) {
  EXPECT_EQ(CDVNVErrorLog::InitErrorLog("Trader", &ReportCapture::RecordBox),
            0);
  EXPECT_EQ(nvshared::os::GetProcessName(), "Trader App");
  EXPECT_EQ(CDVNVExpRpt::GetMessageBoxCallback(), nullptr);  // its own
  for (const int severity : {-3, -2, -1, 0, 2}) {
    EXPECT_EQ(CDVNVErrorLog::HandleException("disk full", 4, severity), 1);
  }
  EXPECT_EQ(capture_.boxes, (Lines{"disk full|0|0", "disk full|0|0"}));
  EXPECT_EQ(capture_.LastLogged(), "Trader Client: disk full|2|4");
}

TEST_F(ReportTest, ProcessExceptionShowsSendsAndLogs) {
  struct Case {
    unsigned int code;
    unsigned int type;
    const char* text;
    std::string userText;  // both the handled and the critical one
    std::optional<std::string> box;
    std::optional<std::string> dm;
    std::string logged;
  };
  const Case cases[] = {
      {7, 1000, "boom", "Fail %d.", "Fail 7.  boom",
       "CRITICAL EXCEPTION|7|boom", "Trader Client: boom|-1|7"},
      {7, 1000, nullptr, "Fail %d.", "Fail 7", "CRITICAL EXCEPTION|7|",
       "Trader Client|-1|7"},
      {7, 2000, "oops", "<AppName> hit error %d.", "Trader hit error 7.  oops",
       "HANDLED EXCEPTION|7|oops", "Trader Client: oops|0|7"},
      {7, 3000, "boom", "Fail %d", std::nullopt, std::nullopt,
       "Trader Client: boom|2|7"},
      {7, 2000, "oops", "", std::nullopt, "HANDLED EXCEPTION|7|oops",
       "Trader Client: oops|0|7"},
      {255, 2000, "x", "<CapAppName> 0x%04X %%", "Trader 0x00FF %  x",
       "HANDLED EXCEPTION|255|x", "Trader Client: x|0|255"},
      {UINT_MAX, 2000, "x", "%+hhd", "-1  x", "HANDLED EXCEPTION|-1|x",
       "Trader Client: x|0|4294967295"},
      // A host's text that would read anything but the one int is shown as
      // it is (more such texts below).
      {UINT_MAX, 2000, "x", "%d/%u", "%d/%u  x", "HANDLED EXCEPTION|-1|x",
       "Trader Client: x|0|4294967295"},
      // The user text is formatted into 2,048 characters.
      {12345, 2000, "x", std::string(2040, 'a') + " code %d",
       std::string(2040, 'a') + " code 1  x", "HANDLED EXCEPTION|12345|x",
       "Trader Client: x|0|12345"},
      {1, 1000, nullptr, std::string(3000, 'c'), std::string(2046, 'c'),
       "CRITICAL EXCEPTION|1|", "Trader Client|-1|1"},
  };
  DMUtils::s_bDMEnabled = true;
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.type) + " " + c.userText.substr(0, 40));
    capture_.boxes.clear();
    capture_.dm.clear();
    CDVNVExpRpt::Init(&ReportCapture::RecordBox, c.userText.c_str(),
                      c.userText.c_str());
    EXPECT_EQ(CDVNVExpRpt::ProcessException(c.code, c.type, c.text), 1);
    EXPECT_EQ(capture_.boxes, Warning(c.box));
    EXPECT_EQ(capture_.dm, c.dm ? Lines{*c.dm} : Lines{});
    EXPECT_EQ(capture_.LastLogged(), c.logged);
  }
  for (const char* format :
       {"%s", "%d and %d", "%ld", "%n", "%*d", "%1$d", "%f", "%c", "%#d",
        "%.99999d", "%12345d", "100%"}) {
    SCOPED_TRACE(format);
    CDVNVExpRpt::Init(&ReportCapture::RecordBox, format, format);
    CDVNVExpRpt::ProcessException(7, 2000, "x");
    EXPECT_EQ(capture_.boxes.back(), std::string(format) + "  x|48|0");
  }
  // The short form has no text (so the box loses the user text's last
  // character, as "Fail 7" above); the quiet one logs and shows nothing.
  CDVNVExpRpt::ProcessException(3, 1000);
  EXPECT_EQ(capture_.boxes.back(), "100|48|0");
  CDVNVExpRpt::ProcessExceptionNoWarn(5, 2, "quiet");
  EXPECT_EQ(capture_.LastLogged(), "Trader Client: quiet|2|5");
}

TEST_F(ReportTest, ShoutOutAndTheHandlerChain) {
  CDVNVExpRpt::Init(&ReportCapture::RecordBox, "Abn %d.", "Fail %d.");
  CDVNVExpRpt::Init(&ReportCapture::RecordBox, "Abn %d.", "Fail %d.");
  const std::vector<ExceptionHandler*> chain = ExceptionHandler::Handlers();
  ASSERT_EQ(chain.size(), 1u);
  EXPECT_NE(dynamic_cast<CDVNVExceptionHandler*>(chain[0]), nullptr);

  // A report raised anywhere comes here as handled, and the default handler
  // no longer logs it a second time.
  ExceptionHandler::Raise(9, "caught");
  CDVNVExpRpt::ShoutOutMBNotSupported();
  const std::string shout =
      "MultiBroker not supported here. Please roll up sleeves and fix it!";
  EXPECT_EQ(capture_.boxes,
            (Lines{"Abn 9.  caught|48|0", "Abn 2011.  " + shout + "|48|0"}));
  EXPECT_EQ(capture_.Logged(), (Lines{"Trader Client: caught|0|9",
                                      "Trader Client: " + shout + "|0|2011"}));
}

}  // namespace
