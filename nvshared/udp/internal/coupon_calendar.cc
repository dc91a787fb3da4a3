#include "nvshared/udp/internal/coupon_calendar.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace nv_ns::udp_internal {
namespace {

using boost::gregorian::gregorian_calendar;

int LastDay(int year, int month) {
  return gregorian_calendar::end_of_month_day(
      static_cast<unsigned short>(year), static_cast<unsigned short>(month));
}

bool IsLastDay(const date& d) {
  const date::ymd_type ymd = d.year_month_day();
  return ymd.day == LastDay(ymd.year, ymd.month);
}

bool IsLastOfFebruary(const date& d) { return d.month() == 2 && IsLastDay(d); }

std::int32_t ThirtyDayFormula(const date& a, const date& b, int d1, int d2) {
  const int years = static_cast<int>(b.year()) - static_cast<int>(a.year());
  const int months =
      years * 12 - static_cast<int>(a.month()) + static_cast<int>(b.month());
  return months * 30 - d1 + d2;
}

}  // namespace

date ToCalendarDate(const UDPDateTime& value) {
  // Boost checks each part and throws its own range errors.
  return date(static_cast<unsigned short>(value.GetYear()),
              static_cast<unsigned short>(value.GetMonth()),
              static_cast<unsigned short>(value.GetDay()));
}

date StepBack(date from, date anchor, int months, bool endOfMonth) {
  const date::ymd_type ymd = from.year_month_day();
  const bool fromLastDay = ymd.day == LastDay(ymd.year, ymd.month);
  // Months counted from year 0, so the subtraction carries into the year.
  const int total = ymd.year * 12 + (ymd.month - 1) - months;
  const int year = total / 12;
  const int month = total % 12 + 1;
  const int last = LastDay(year, month);
  int day = fromLastDay ? last : std::min<int>(ymd.day, last);

  const int anchorDay = anchor.day();
  if (endOfMonth && IsLastDay(anchor)) {
    day = last;
  } else if (day == anchorDay) {
    // Already on the anchor's day.
  } else if (anchorDay > last) {
    // The month is too short for the anchor's day: keep the candidate.
  } else {
    day = anchorDay;
  }
  return date(static_cast<unsigned short>(year),
              static_cast<unsigned short>(month),
              static_cast<unsigned short>(day));
}

std::int32_t DayCount(date a, date b, std::int32_t type, bool endOfMonth) {
  switch (type) {
    case 0:
    case 1:
    case 5:
      return static_cast<std::int32_t>(std::abs((b - a).days()));
    case 2:
    case 3: {
      int d1 = a.day();
      int d2 = b.day();
      if (endOfMonth && IsLastOfFebruary(a)) {
        d1 = 30;
        if (IsLastOfFebruary(b)) return ThirtyDayFormula(a, b, d1, 30);
      }
      if (d2 == 31) {
        if (d1 != 30 && d1 != 31) return ThirtyDayFormula(a, b, d1, d2);
        d2 = 30;
      }
      if (d1 == 31) d1 = 30;
      return ThirtyDayFormula(a, b, d1, d2);
    }
    case 4:
      return ThirtyDayFormula(a, b, std::min<int>(a.day(), 30),
                              std::min<int>(b.day(), 30));
    default:
      return -1;
  }
}

double PeriodBasis(date p, date q, std::int32_t type, std::int32_t frequency) {
  switch (type) {
    case 0:
      return static_cast<double>(std::abs((q - p).days()));
    case 1:
    case 2:
    case 4:
      return 360.0 / frequency;
    case 3:
    case 5:
      return 365.0 / frequency;
    default:
      return -1.0;
  }
}

std::int32_t CheckFirstCoupon(date issue, date firstCoupon, date maturity,
                              int months, bool endOfMonth) {
  if (issue.is_not_a_date() != firstCoupon.is_not_a_date()) return 5;
  // Both absent: there is no first coupon to check.
  if (firstCoupon.is_not_a_date()) return 5;
  if (firstCoupon < issue || firstCoupon > maturity) return 7;
  if (issue >= maturity) return 8;
  if (firstCoupon == maturity) return 0;
  // Without whole months the walk below would never move.
  if (months <= 0) return 8;
  date x = maturity;
  while (x != firstCoupon) {
    x = StepBack(x, maturity, months, endOfMonth);
    if (issue >= x) return 8;
  }
  return 0;
}

}  // namespace nv_ns::udp_internal
