// dv_core_ns::Date and dv_core_ns::Time: the plain date and time values of
// the core client library. Values; safe to copy between threads.
#ifndef NVSHARED_PLATFORM_CORE_DATE_TIME_H_
#define NVSHARED_PLATFORM_CORE_DATE_TIME_H_

#include <cstdint>

namespace dv_core_ns {

struct Date {
  // 1 to 31; 0 means the date has a month and a year only.
  std::int8_t day = 0;
  // 1 to 12.
  std::int8_t month = 0;
  // The full year (2014, not 14).
  std::int16_t year = 0;

  // An unset date: all fields 0.
  Date() = default;
  Date(int d, int m, int y)
      : day(static_cast<std::int8_t>(d)),
        month(static_cast<std::int8_t>(m)),
        year(static_cast<std::int16_t>(y)) {}

  bool IsSet() const { return day != 0 || month != 0 || year != 0; }

  // By year, then month, then day.
  bool operator<(const Date& o) const {
    if (year != o.year) return year < o.year;
    if (month != o.month) return month < o.month;
    return day < o.day;
  }
  bool operator==(const Date& o) const = default;
};

struct Time {
  std::int16_t millisecond = 0;
  std::int8_t second = 0;
  std::int8_t minute = 0;
  std::int8_t hour = 0;

  Time() = default;
  Time(int h, int m, int s, int ms)
      : millisecond(static_cast<std::int16_t>(ms)),
        second(static_cast<std::int8_t>(s)),
        minute(static_cast<std::int8_t>(m)),
        hour(static_cast<std::int8_t>(h)) {}

  bool operator==(const Time& o) const = default;
};

}  // namespace dv_core_ns

#endif  // NVSHARED_PLATFORM_CORE_DATE_TIME_H_
