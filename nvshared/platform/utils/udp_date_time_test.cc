#include "nvshared/platform/utils/udp_date_time.h"

#include <ctime>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace nv_ns {
namespace {

// Year, month, day, hour, minute and second.
std::vector<int> Parts(const UDPDateTime& t) {
  return {t.GetYear(), t.GetMonth(),  t.GetDay(),
          t.GetHour(), t.GetMinute(), t.GetSecond()};
}

// Restores the default locale patterns after a test that changes them.
class LocalePatternRestorer {
 public:
  ~LocalePatternRestorer() { UDPDateTime::SetLocalePatterns("", ""); }
};

TEST(UDPDateTimeTest, ConstructionChecksEveryField) {
  struct Case {
    int y, mo, d, h, mi, s;
    bool valid;
  };
  const Case cases[] = {
      {2024, 2, 29, 0, 0, 0, true},     {2023, 2, 29, 0, 0, 0, false},
      {1900, 2, 29, 0, 0, 0, false},    {2000, 2, 29, 23, 59, 59, true},
      {2024, 13, 1, 0, 0, 0, false},    {2024, 0, 1, 0, 0, 0, false},
      {2024, 4, 31, 0, 0, 0, false},    {2024, 1, 0, 0, 0, 0, false},
      {99, 12, 31, 0, 0, 0, false},     {100, 1, 1, 0, 0, 0, true},
      {9999, 12, 31, 23, 59, 59, true}, {10000, 1, 1, 0, 0, 0, false},
      {2024, 1, 1, 24, 0, 0, false},    {2024, 1, 1, 0, 60, 0, false},
      {2024, 1, 1, 0, 0, 60, false},    {2024, 1, 1, -1, 0, 0, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases);
    const UDPDateTime t(c.y, c.mo, c.d, c.h, c.mi, c.s);
    EXPECT_EQ(t.GetStatus(),
              c.valid ? UDPDateTime::valid : UDPDateTime::invalid);
    // An invalid time answers -1 for every part and formats to nothing.
    const std::vector<int> parts = {c.y, c.mo, c.d, c.h, c.mi, c.s};
    EXPECT_EQ(Parts(t), c.valid ? parts : std::vector<int>(6, -1));
    EXPECT_EQ(t.GetDayOfWeek() == -1, !c.valid);
    EXPECT_EQ(t.Format(0, 1024).empty(), !c.valid);
  }
}

TEST(UDPDateTimeTest, SerialCountsDaysFrom30December1899) {
  // Known automation-date serials.
  EXPECT_EQ(UDPDateTime(1899, 12, 30, 0, 0, 0).GetSerial(), 0.0);
  EXPECT_EQ(UDPDateTime(1900, 1, 1, 0, 0, 0).GetSerial(), 2.0);
  EXPECT_EQ(UDPDateTime(2000, 1, 1, 0, 0, 0).GetSerial(), 36526.0);
  EXPECT_EQ(UDPDateTime(2000, 1, 1, 6, 0, 0).GetSerial(), 36526.25);
  EXPECT_EQ(UDPDateTime(1899, 12, 29, 18, 0, 0).GetSerial(), -0.25);

  EXPECT_EQ(Parts(UDPDateTime(45458.5)),
            (std::vector{2024, 6, 15, 12, 0, 0}));  // 15 June 2024, noon
  EXPECT_EQ(Parts(UDPDateTime(-0.25)), (std::vector{1899, 12, 29, 18, 0, 0}));
  EXPECT_EQ(UDPDateTime(1e9).GetStatus(), UDPDateTime::invalid);
  EXPECT_EQ(UDPDateTime(0.0 / 0.0).GetStatus(), UDPDateTime::invalid);
}

TEST(UDPDateTimeTest, DayOfWeekAndOrdering) {
  EXPECT_EQ(UDPDateTime(2024, 6, 15, 0, 0, 0).GetDayOfWeek(), 6);   // Sat
  EXPECT_EQ(UDPDateTime(2024, 6, 16, 0, 0, 0).GetDayOfWeek(), 0);   // Sun
  EXPECT_EQ(UDPDateTime(1899, 12, 29, 0, 0, 0).GetDayOfWeek(), 5);  // Fri
  EXPECT_EQ(UDPDateTime(2024, 12, 31, 0, 0, 0).GetDayOfYear(), 366);

  const UDPDateTime a(2024, 6, 15, 0, 0, 0);
  const UDPDateTime b(2024, 6, 15, 0, 0, 1);
  EXPECT_TRUE(a < b);
  EXPECT_TRUE(b > a);
  EXPECT_FALSE(a < a);
  EXPECT_FALSE(a > a);
  EXPECT_TRUE(a == UDPDateTime(2024, 6, 15, 0, 0, 0));
}

TEST(UDPDateTimeTest, TickCountIsTheLocalClock) {
  const std::time_t now = std::time(nullptr);
  const UDPDateTime tick = UDPDateTime::GetTickCount();
  ASSERT_EQ(tick.GetStatus(), UDPDateTime::valid);
  // Within a day of the UTC serial, whatever the time zone.
  const double utcSerial = static_cast<double>(now) / 86400.0 + 25569.0;
  EXPECT_NEAR(tick.GetSerial(), utcSerial, 1.0);
}

TEST(UDPDateTimeTest, FormatFollowsFlagsAndLocale) {
  const UDPDateTime midnight(2024, 6, 5, 0, 0, 0);
  const UDPDateTime afternoon(2024, 6, 5, 13, 5, 9);
  EXPECT_EQ(midnight.Format(0, 1024), "06/05/2024");
  EXPECT_EQ(afternoon.Format(0, 1024), "06/05/2024 13:05:09");
  EXPECT_EQ(afternoon.Format(2, 1024), "06/05/2024");
  EXPECT_EQ(afternoon.Format(1, 1024), "13:05:09");

  EXPECT_EQ(afternoon.Format("%Y-%m-%d %H:%M:%S"), "2024-06-05 13:05:09");
  EXPECT_EQ(afternoon.Format("%a %A %b %B %e %y %j %w"),
            "Wed Wednesday Jun June  5 24 157 3");
  EXPECT_EQ(afternoon.Format("%I:%M %p, 100%% %Q %"), "01:05 PM, 100% %Q %");
  EXPECT_EQ(afternoon.Format("%c|%x|%X"),
            "06/05/2024 13:05:09|06/05/2024|13:05:09");
  EXPECT_EQ(afternoon.Format(nullptr), "");
}

TEST(UDPDateTimeTest, ParseReadsLocaleAndIsoForms) {
  struct Case {
    const char* text;
    unsigned long flags;
    bool ok;
    int y = 0, mo = 0, d = 0, h = 0, mi = 0, s = 0;
  };
  const Case cases[] = {
      {"06/05/2024", 0, true, 2024, 6, 5, 0, 0, 0},
      {"6/5/2024", 0, true, 2024, 6, 5, 0, 0, 0},
      {"  06/05/2024 13:05:09 ", 0, true, 2024, 6, 5, 13, 5, 9},
      {"2024-06-05", 0, true, 2024, 6, 5, 0, 0, 0},
      {"2024-06-05T07:30", 0, true, 2024, 6, 5, 7, 30, 0},
      {"2024-06-05 1:30 PM", 0, true, 2024, 6, 5, 13, 30, 0},
      {"2024-06-05 12:00:00 am", 0, true, 2024, 6, 5, 0, 0, 0},
      {"13:05:09", 1, true, 1899, 12, 30, 13, 5, 9},
      {"2024-06-05 13:05", 2, false},
      {"2024-02-30", 0, false},
      {"02/29/2023", 0, false},
      {"2024-06-05 24:00", 0, false},
      {"2024-06-05 13:5", 0, false},
      {"2024-06-05 13 PM", 0, false},
      {"06/05/24", 0, false},
      {"", 0, false},
      {"2024-06-05x", 0, false},
      {"0099-01-01", 0, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    UDPDateTime t(2000, 1, 1, 0, 0, 0);
    EXPECT_EQ(t.ParseDateTime(c.text, c.flags, 1024), c.ok);
    if (!c.ok) {
      EXPECT_EQ(t.GetStatus(), UDPDateTime::invalid);
      continue;
    }
    EXPECT_EQ(t.GetStatus(), UDPDateTime::valid);
    EXPECT_EQ(t, UDPDateTime(c.y, c.mo, c.d, c.h, c.mi, c.s));
  }
  UDPDateTime t;
  EXPECT_FALSE(t.ParseDateTime(nullptr, 0, 1024));
}

TEST(UDPDateTimeTest, LocaleFormRoundTripsAndIsConfigurable) {
  LocalePatternRestorer restore;
  const UDPDateTime dates[] = {
      UDPDateTime(1905, 3, 7, 0, 0, 0), UDPDateTime(2099, 12, 31, 0, 0, 0),
      UDPDateTime(2024, 6, 5, 23, 59, 1), UDPDateTime(100, 1, 1, 0, 0, 0)};
  const char* patterns[][2] = {
      {"", ""}, {"%d.%m.%Y", "%H:%M"}, {"%Y/%m/%d", "%I:%M:%S %p"}};
  for (const auto& pattern : patterns) {
    ASSERT_TRUE(UDPDateTime::SetLocalePatterns(pattern[0], pattern[1]));
    for (const UDPDateTime& d : dates) {
      const std::string text = d.Format(0, 1024);
      SCOPED_TRACE(text);
      UDPDateTime back;
      ASSERT_TRUE(back.ParseDateTime(text.c_str(), 0, 1024));
      // Every pattern keeps the date and the hour.
      EXPECT_EQ(back.Format("%Y-%m-%d %H"), d.Format("%Y-%m-%d %H"));
    }
  }
  ASSERT_TRUE(UDPDateTime::SetLocalePatterns("%d.%m.%Y", ""));
  EXPECT_EQ(UDPDateTime(2024, 6, 5, 0, 0, 0).Format(0, 1024), "05.06.2024");

  // Patterns that could not be read back, or name no whole date, are
  // refused and the current ones kept.
  EXPECT_FALSE(UDPDateTime::SetLocalePatterns("%b %d %Y", ""));
  EXPECT_FALSE(UDPDateTime::SetLocalePatterns("%m/%Y", ""));
  EXPECT_FALSE(UDPDateTime::SetLocalePatterns("%c", ""));
  EXPECT_FALSE(UDPDateTime::SetLocalePatterns("%d.%m.%Y", "%M:%S"));
  EXPECT_EQ(UDPDateTime::GetLocaleDatePattern(), "%d.%m.%Y");
}

}  // namespace
}  // namespace nv_ns
