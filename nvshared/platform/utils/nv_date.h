// nv_ns::Date, the utility library's calendar date (day, month and year, as
// the core's dv_core_ns::Date), and nv_ns::GTD_Date, the date constant that
// an order default starts from. Values; thread-safe.
#ifndef NVSHARED_PLATFORM_UTILS_NV_DATE_H_
#define NVSHARED_PLATFORM_UTILS_NV_DATE_H_

#include <cstdint>

#include "nvshared/export.h"
#include "nvshared/platform/core/date_time.h"

namespace nv_ns {

struct NVSHARED_API Date {
  // 1 to 31; 0 for a date of a month and year only.
  std::int8_t day = 0;
  // 1 to 12.
  std::int8_t month = 0;
  // The full year.
  std::int16_t year = 0;

  // An unset date: all fields 0.
  constexpr Date() = default;
  constexpr Date(int d, int m, int y)
      : day(static_cast<std::int8_t>(d)),
        month(static_cast<std::int8_t>(m)),
        year(static_cast<std::int16_t>(y)) {}
  explicit Date(const dv_core_ns::Date& core)
      : day(core.day), month(core.month), year(core.year) {}

  dv_core_ns::Date ToCore() const { return {day, month, year}; }
  bool IsSet() const { return day != 0 || month != 0 || year != 0; }

  // By year, then month, then day.
  bool operator<(const Date& o) const {
    if (year != o.year) return year < o.year;
    if (month != o.month) return month < o.month;
    return day < o.day;
  }
  bool operator==(const Date& o) const = default;
};

// The good-till date of an order whose date has not been chosen yet: an
// unset date. Records compare against it to know whether a date was given.
inline constexpr Date GTD_Date{};

}  // namespace nv_ns

#endif  // NVSHARED_PLATFORM_UTILS_NV_DATE_H_
