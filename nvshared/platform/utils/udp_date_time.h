// nv_ns::UDPDateTime: the date-time of the utility library. A value is a
// day serial (days since 30 December 1899 at midnight, the time of day as the
// fraction) and a status; 0 is valid. The serial counts straight through
// zero: -0.25 is 29 December 1899 at 18:00, so serials order as the dates do.
//
// Invalid input never throws: it leaves a value whose status is invalid, and
// whose getters answer -1.
//
// "The user's locale form" of Format and ParseDateTime is a process-wide
// pattern that the host sets with SetLocalePatterns; the default writes
// dates as %m/%d/%Y and times as %H:%M:%S, with four-digit years so that a
// formatted date reads back as the same date.
//
// Threads: a value belongs to one thread at a time. SetLocalePatterns is for
// start-up, before other threads format or parse.
#ifndef NVSHARED_PLATFORM_UTILS_UDP_DATE_TIME_H_
#define NVSHARED_PLATFORM_UTILS_UDP_DATE_TIME_H_

#include <cstdint>
#include <string>

#include "nvshared/export.h"

namespace nv_ns {

class NVSHARED_API UDPDateTime {
 public:
  enum DateTimeStatus : std::int32_t { valid = 0, invalid = 1 };

  // Flags of Format and ParseDateTime.
  static constexpr unsigned long kTimeValueOnly = 1;  // the time alone
  static constexpr unsigned long kDateValueOnly = 2;  // the date alone
  // The user's default locale, the one every caller of the library passes.
  // All locale numbers currently mean the host's configured patterns.
  static constexpr unsigned long kUserDefaultLocale = 1024;

  // The first and last years a value can hold.
  static constexpr int kMinYear = 100;
  static constexpr int kMaxYear = 9999;

  // Serial 0 (30 December 1899, midnight), valid.
  UDPDateTime() = default;
  // A serial; NaN or one outside years kMinYear..kMaxYear is invalid.
  explicit UDPDateTime(double serial);
  // Invalid unless the year is in kMinYear..kMaxYear, the day exists in its
  // month, the hour is 0..23 and minute and second 0..59.
  UDPDateTime(int year, int month, int day, int hour, int minute, int second);

  double GetSerial() const { return m_dt; }
  DateTimeStatus GetStatus() const { return m_status; }

  // -1 for an invalid value.
  int GetYear() const;
  int GetMonth() const;   // 1..12
  int GetDay() const;     // 1..31
  int GetHour() const;    // 0..23
  int GetMinute() const;  // 0..59
  int GetSecond() const;  // 0..59
  // 0 Sunday to 6 Saturday; -1 for an invalid value.
  int GetDayOfWeek() const;
  // 1 for 1 January; -1 for an invalid value.
  int GetDayOfYear() const;

  // The current local date and time, to the second.
  static UDPDateTime GetTickCount();

  // The value in the locale's form: flags kDateValueOnly gives the date,
  // kTimeValueOnly the time, 0 the date followed by the time, or the date
  // alone when the time is midnight. Empty for an invalid value.
  std::string Format(unsigned long flags = 0,
                     unsigned long locale = kUserDefaultLocale) const;
  // strftime-like: %Y %y %m %d %e %H %I %M %S %p %j %w %a %A %b %B %%, and
  // %c %x %X for the locale's date and time, date, time. Names are English.
  // Any other character, or an unknown conversion, is copied. Empty for an
  // invalid value or a null format.
  std::string Format(const char* format) const;

  // Reads a date, a date and a time, or (with kTimeValueOnly) a time. Dates
  // are accepted in the locale's date pattern or as YYYY-MM-DD; times as
  // H:MM or H:MM:SS after a space or a 'T'. kDateValueOnly refuses a time.
  // Two-digit years (%y) read as 1930..2029. Blanks around the text are
  // ignored. False, with the status set to invalid, if the text does not
  // parse or names no real date; true and the new value otherwise.
  bool ParseDateTime(const char* text, unsigned long flags = 0,
                     unsigned long locale = kUserDefaultLocale);

  // Sets the locale's date and time patterns, in the conversions of
  // Format(const char*). Patterns that ParseDateTime cannot read back (it
  // reads %Y %y %m %d %e %H %I %M %S %p and literal text) are refused and the
  // current ones kept. Empty arguments restore the defaults.
  static bool SetLocalePatterns(const std::string& datePattern,
                                const std::string& timePattern);
  static std::string GetLocaleDatePattern();
  static std::string GetLocaleTimePattern();

  // By serial alone.
  bool operator<(const UDPDateTime& o) const { return m_dt < o.m_dt; }
  bool operator>(const UDPDateTime& o) const { return m_dt > o.m_dt; }
  bool operator<=(const UDPDateTime& o) const { return m_dt <= o.m_dt; }
  bool operator>=(const UDPDateTime& o) const { return m_dt >= o.m_dt; }
  bool operator==(const UDPDateTime& o) const { return m_dt == o.m_dt; }
  bool operator!=(const UDPDateTime& o) const { return m_dt != o.m_dt; }

 private:
  double m_dt = 0.0;
  DateTimeStatus m_status = valid;
};

}  // namespace nv_ns

#endif  // NVSHARED_PLATFORM_UTILS_UDP_DATE_TIME_H_
