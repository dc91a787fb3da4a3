#include "nvshared/platform/utils/udp_date_time.h"

#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>

#include <time.h>

#include "nvshared/internal/ascii.h"

namespace nv_ns {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;
// Day number (days since 1970-01-01) of serial 0, 30 December 1899.
constexpr std::int64_t kSerialEpochDays = -25569;

const char* const kDefaultDatePattern = "%m/%d/%Y";
const char* const kDefaultTimePattern = "%H:%M:%S";

struct LocalePatterns {
  std::string date = kDefaultDatePattern;
  std::string time = kDefaultTimePattern;
};

// Never destroyed: dates may be formatted while the process exits.
LocalePatterns& Patterns() {
  static LocalePatterns* const patterns = new LocalePatterns();
  return *patterns;
}

bool IsLeap(int y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

int DaysInMonth(int y, int m) {
  static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return m == 2 && IsLeap(y) ? 29 : kDays[m - 1];
}

// Days since 1970-01-01 of a proleptic Gregorian date (H. Hinnant's
// days_from_civil).
std::int64_t DaysFromCivil(int y, int m, int d) {
  y -= m <= 2;
  const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<std::int64_t>(doe) - 719468;
}

void CivilFromDays(std::int64_t z, int& y, int& m, int& d) {
  z += 719468;
  const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const unsigned doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  y = static_cast<int>(static_cast<std::int64_t>(yoe) + era * 400 + (m <= 2));
}

double MinSerial() {
  return static_cast<double>(DaysFromCivil(UDPDateTime::kMinYear, 1, 1) -
                             kSerialEpochDays);
}
double MaxSerial() {
  // The last second of the last day.
  return static_cast<double>(DaysFromCivil(UDPDateTime::kMaxYear, 12, 31) -
                             kSerialEpochDays) +
         (kSecondsPerDay - 1) / static_cast<double>(kSecondsPerDay);
}

// The broken-down form of a valid value.
struct Fields {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
  int dayOfWeek = 0;  // 0 Sunday
  int dayOfYear = 0;  // 1 for 1 January
};

Fields Split(double serial) {
  const auto total = static_cast<std::int64_t>(
      std::llround(serial * static_cast<double>(kSecondsPerDay)));
  std::int64_t days = total / kSecondsPerDay;
  std::int64_t secs = total % kSecondsPerDay;
  if (secs < 0) {
    secs += kSecondsPerDay;
    --days;
  }
  Fields f;
  const std::int64_t dayNumber = days + kSerialEpochDays;
  CivilFromDays(dayNumber, f.year, f.month, f.day);
  f.hour = static_cast<int>(secs / 3600);
  f.minute = static_cast<int>(secs / 60 % 60);
  f.second = static_cast<int>(secs % 60);
  // 1970-01-01 was a Thursday.
  f.dayOfWeek = static_cast<int>(((dayNumber + 4) % 7 + 7) % 7);
  f.dayOfYear = static_cast<int>(dayNumber - DaysFromCivil(f.year, 1, 1)) + 1;
  return f;
}

const char* const kDayNames[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                 "Thursday", "Friday", "Saturday"};
const char* const kMonthNames[] = {
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December"};

void AppendNumber(std::string& out, int value, int width, char pad) {
  char buf[16];
  std::snprintf(buf, sizeof buf, pad == '0' ? "%0*d" : "%*d", width, value);
  out += buf;
}

void FormatInto(std::string& out, const Fields& f, const std::string& format,
                int depth) {
  for (std::size_t i = 0; i < format.size(); ++i) {
    const char c = format[i];
    if (c != '%' || i + 1 == format.size()) {
      out += c;
      continue;
    }
    const char k = format[++i];
    switch (k) {
      case 'Y':
        AppendNumber(out, f.year, 4, '0');
        break;
      case 'y':
        AppendNumber(out, f.year % 100, 2, '0');
        break;
      case 'm':
        AppendNumber(out, f.month, 2, '0');
        break;
      case 'd':
        AppendNumber(out, f.day, 2, '0');
        break;
      case 'e':
        AppendNumber(out, f.day, 2, ' ');
        break;
      case 'H':
        AppendNumber(out, f.hour, 2, '0');
        break;
      case 'I':
        AppendNumber(out, (f.hour + 11) % 12 + 1, 2, '0');
        break;
      case 'M':
        AppendNumber(out, f.minute, 2, '0');
        break;
      case 'S':
        AppendNumber(out, f.second, 2, '0');
        break;
      case 'p':
        out += f.hour < 12 ? "AM" : "PM";
        break;
      case 'j':
        AppendNumber(out, f.dayOfYear, 3, '0');
        break;
      case 'w':
        AppendNumber(out, f.dayOfWeek, 1, '0');
        break;
      case 'a':
        out.append(kDayNames[f.dayOfWeek], 3);
        break;
      case 'A':
        out += kDayNames[f.dayOfWeek];
        break;
      case 'b':
        out.append(kMonthNames[f.month - 1], 3);
        break;
      case 'B':
        out += kMonthNames[f.month - 1];
        break;
      case '%':
        out += '%';
        break;
      // The locale's patterns never hold these (SetLocalePatterns checks),
      // so one level of depth is enough; the guard keeps it so.
      case 'c':
      case 'x':
      case 'X':
        if (depth == 0) {
          if (k != 'X') FormatInto(out, f, Patterns().date, 1);
          if (k == 'c') out += ' ';
          if (k != 'x') FormatInto(out, f, Patterns().time, 1);
        }
        break;
      default:
        out += '%';
        out += k;
    }
  }
}

// Parsed pieces of a text; -1 where the pattern had no such field.
struct Parsed {
  int year = -1, month = -1, day = -1, hour = -1, minute = -1, second = -1;
  int pm = -1;  // 0 AM, 1 PM
};

bool ReadNumber(const char*& p, int minDigits, int maxDigits, int& value) {
  int n = 0;
  value = 0;
  while (n < maxDigits && std::isdigit(static_cast<unsigned char>(*p))) {
    value = value * 10 + (*p - '0');
    ++p;
    ++n;
  }
  return n >= minDigits;
}

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// Reads `p` against a pattern of the parseable conversions; on success `p`
// points past the match.
bool Match(const char*& p, const std::string& pattern, Parsed& out) {
  const char* q = p;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char c = pattern[i];
    if (c != '%') {
      if (IsBlank(c)) {
        if (!IsBlank(*q)) return false;
        while (IsBlank(*q)) ++q;
      } else if (c == '\0' || *q != c) {
        return false;
      } else {
        ++q;
      }
      continue;
    }
    if (++i == pattern.size()) return false;
    int v = 0;
    switch (pattern[i]) {
      case 'Y':
        if (!ReadNumber(q, 4, 4, v)) return false;
        out.year = v;
        break;
      case 'y':
        if (!ReadNumber(q, 2, 2, v)) return false;
        out.year = v < 30 ? 2000 + v : 1900 + v;
        break;
      case 'm':
        if (!ReadNumber(q, 1, 2, v)) return false;
        out.month = v;
        break;
      case 'e':
        while (IsBlank(*q)) ++q;
        [[fallthrough]];
      case 'd':
        if (!ReadNumber(q, 1, 2, v)) return false;
        out.day = v;
        break;
      case 'H':
      case 'I':
        if (!ReadNumber(q, 1, 2, v)) return false;
        out.hour = v;
        break;
      case 'M':
        if (!ReadNumber(q, 2, 2, v)) return false;
        out.minute = v;
        break;
      case 'S':
        if (!ReadNumber(q, 2, 2, v)) return false;
        out.second = v;
        break;
      case 'p': {
        const char a = nvshared::internal::AsciiToUpper(q[0]);
        if ((a != 'A' && a != 'P') || q[1] == '\0' ||
            nvshared::internal::AsciiToUpper(q[1]) != 'M') {
          return false;
        }
        out.pm = a == 'P';
        q += 2;
        break;
      }
      case '%':
        if (*q != '%') return false;
        ++q;
        break;
      default:
        return false;
    }
  }
  p = q;
  return true;
}

// Whether ParseDateTime can read what the pattern writes.
bool Parseable(const std::string& pattern) {
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] != '%') continue;
    if (++i == pattern.size()) return false;
    if (std::string("YymdeHIMSp%").find(pattern[i]) == std::string::npos) {
      return false;
    }
  }
  return true;
}

bool ReadDate(const char*& p, Parsed& out) {
  Parsed tried;
  const char* q = p;
  if (Match(q, Patterns().date, tried) && tried.year >= 0 && tried.month >= 0 &&
      tried.day >= 0) {
    out = tried;
    p = q;
    return true;
  }
  tried = Parsed();
  q = p;
  if (Match(q, "%Y-%m-%d", tried)) {
    out = tried;
    p = q;
    return true;
  }
  return false;
}

// Reads the time that ends the text: the locale's pattern or a plain
// H:MM[:SS] with an optional AM/PM. The first form that leaves nothing but
// blanks after it wins.
bool ReadTime(const char*& p, Parsed& out) {
  const std::string candidates[] = {Patterns().time, "%H:%M:%S %p", "%H:%M %p",
                                    "%H:%M:%S", "%H:%M"};
  for (const std::string& pattern : candidates) {
    Parsed tried;
    const char* q = p;
    if (!Match(q, pattern, tried) || tried.hour < 0) continue;
    const char* end = q;
    while (IsBlank(*end)) ++end;
    if (*end != '\0') continue;
    out.hour = tried.hour;
    out.minute = tried.minute < 0 ? 0 : tried.minute;
    out.second = tried.second < 0 ? 0 : tried.second;
    out.pm = tried.pm;
    p = q;
    return true;
  }
  return false;
}

}  // namespace

UDPDateTime::UDPDateTime(double serial) : m_dt(serial) {
  if (!(serial >= MinSerial() && serial <= MaxSerial())) {
    m_dt = 0.0;
    m_status = invalid;
  }
}

UDPDateTime::UDPDateTime(int year, int month, int day, int hour, int minute,
                         int second) {
  if (year < kMinYear || year > kMaxYear || month < 1 || month > 12 ||
      day < 1 || day > DaysInMonth(year, month) || hour < 0 || hour > 23 ||
      minute < 0 || minute > 59 || second < 0 || second > 59) {
    m_status = invalid;
    return;
  }
  const std::int64_t days = DaysFromCivil(year, month, day) - kSerialEpochDays;
  m_dt = static_cast<double>(days) +
         static_cast<double>(hour * 3600 + minute * 60 + second) /
             static_cast<double>(kSecondsPerDay);
}

int UDPDateTime::GetYear() const {
  return m_status == valid ? Split(m_dt).year : -1;
}
int UDPDateTime::GetMonth() const {
  return m_status == valid ? Split(m_dt).month : -1;
}
int UDPDateTime::GetDay() const {
  return m_status == valid ? Split(m_dt).day : -1;
}
int UDPDateTime::GetHour() const {
  return m_status == valid ? Split(m_dt).hour : -1;
}
int UDPDateTime::GetMinute() const {
  return m_status == valid ? Split(m_dt).minute : -1;
}
int UDPDateTime::GetSecond() const {
  return m_status == valid ? Split(m_dt).second : -1;
}
int UDPDateTime::GetDayOfWeek() const {
  return m_status == valid ? Split(m_dt).dayOfWeek : -1;
}
int UDPDateTime::GetDayOfYear() const {
  return m_status == valid ? Split(m_dt).dayOfYear : -1;
}

UDPDateTime UDPDateTime::GetTickCount() {
  const time_t now = time(nullptr);
  struct tm local = {};
  if (localtime_r(&now, &local) == nullptr) {
    return UDPDateTime(kMaxYear + 1, 0, 0, 0, 0, 0);  // invalid
  }
  return UDPDateTime(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                     local.tm_hour, local.tm_min,
                     local.tm_sec > 59 ? 59 : local.tm_sec);
}

std::string UDPDateTime::Format(unsigned long flags,
                                unsigned long /*locale*/) const {
  if (m_status != valid) return std::string();
  const Fields f = Split(m_dt);
  std::string out;
  if (flags & kTimeValueOnly) {
    FormatInto(out, f, Patterns().time, 1);
  } else if ((flags & kDateValueOnly) ||
             (f.hour == 0 && f.minute == 0 && f.second == 0)) {
    FormatInto(out, f, Patterns().date, 1);
  } else {
    FormatInto(out, f, Patterns().date, 1);
    out += ' ';
    FormatInto(out, f, Patterns().time, 1);
  }
  return out;
}

std::string UDPDateTime::Format(const char* format) const {
  if (m_status != valid || format == nullptr) return std::string();
  std::string out;
  FormatInto(out, Split(m_dt), format, 0);
  return out;
}

bool UDPDateTime::ParseDateTime(const char* text, unsigned long flags,
                                unsigned long /*locale*/) {
  m_dt = 0.0;
  m_status = invalid;
  if (text == nullptr) return false;
  const char* p = text;
  while (IsBlank(*p)) ++p;
  Parsed parsed;
  if (flags & kTimeValueOnly) {
    if (!ReadTime(p, parsed)) return false;
    parsed.year = 1899;
    parsed.month = 12;
    parsed.day = 30;
  } else {
    if (!ReadDate(p, parsed)) return false;
    if ((*p == 'T' || IsBlank(*p)) && !(flags & kDateValueOnly)) {
      const char* q = p + 1;
      while (IsBlank(*q)) ++q;
      if (*q != '\0') {
        if (!ReadTime(q, parsed)) return false;
        p = q;
      }
    }
  }
  while (IsBlank(*p)) ++p;
  if (*p != '\0') return false;
  int hour = parsed.hour < 0 ? 0 : parsed.hour;
  if (parsed.pm >= 0) {
    if (hour < 1 || hour > 12) return false;
    hour = hour % 12 + (parsed.pm ? 12 : 0);
  }
  const UDPDateTime value(parsed.year, parsed.month, parsed.day, hour,
                          parsed.minute < 0 ? 0 : parsed.minute,
                          parsed.second < 0 ? 0 : parsed.second);
  if (value.m_status != valid) return false;
  *this = value;
  return true;
}

bool UDPDateTime::SetLocalePatterns(const std::string& datePattern,
                                    const std::string& timePattern) {
  const std::string date =
      datePattern.empty() ? kDefaultDatePattern : datePattern;
  const std::string time =
      timePattern.empty() ? kDefaultTimePattern : timePattern;
  if (!Parseable(date) || !Parseable(time)) return false;
  // The date pattern must name a whole date, and the time pattern an hour.
  if (date.find("%d") == std::string::npos &&
      date.find("%e") == std::string::npos) {
    return false;
  }
  if (date.find("%m") == std::string::npos ||
      (date.find("%Y") == std::string::npos &&
       date.find("%y") == std::string::npos) ||
      (time.find("%H") == std::string::npos &&
       time.find("%I") == std::string::npos)) {
    return false;
  }
  Patterns().date = date;
  Patterns().time = time;
  return true;
}

std::string UDPDateTime::GetLocaleDatePattern() { return Patterns().date; }
std::string UDPDateTime::GetLocaleTimePattern() { return Patterns().time; }

}  // namespace nv_ns
