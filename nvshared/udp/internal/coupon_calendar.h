// The calendar work behind CUDPYTMCalc: stepping back along the coupon
// calendar, the day counts and the period basis, and the first-coupon check.
// Pure functions over Boost gregorian dates; safe from any thread.
#ifndef NVSHARED_UDP_INTERNAL_COUPON_CALENDAR_H_
#define NVSHARED_UDP_INTERNAL_COUPON_CALENDAR_H_

#include <cstdint>

#include <boost/date_time/gregorian/gregorian_types.hpp>

#include "nvshared/platform/utils/udp_date_time.h"

namespace nv_ns::udp_internal {

using boost::gregorian::date;

// The calendar date of a UDPDateTime. Throws Boost's std::out_of_range for
// a year, month or day outside its range (an invalid value gives -1s).
date ToCalendarDate(const UDPDateTime& value);

// One coupon period back from `from`, `months` months long, anchored to
// `anchor`: the day follows the anchor's day where the month has it, and with
// `endOfMonth` an anchor on a month's last day keeps every date on a month's
// last day. `months` must be positive.
date StepBack(date from, date anchor, int months, bool endOfMonth);

// Days from `a` to `b` under a day-count type 0..5; -1 for another type.
// The 30-day types are signed; the actual types give the absolute count.
std::int32_t DayCount(date a, date b, std::int32_t type, bool endOfMonth);

// Length in days of the coupon period from `p` to `q`: the actual days for
// type 0, 360 / f or 365 / f for the others; -1.0 for a type above 5.
double PeriodBasis(date p, date q, std::int32_t type, std::int32_t frequency);

// 0 if `firstCoupon` lies on the calendar counted back from `maturity`, after
// `issue`; 5 if the first coupon or the issue is absent (not-a-date), 7 if the
// first coupon falls outside issue..maturity, 8 if issue is not before maturity
// or the first coupon is off the calendar. A period of no months has no
// calendar to lie on: 8, unless the first coupon is the maturity.
std::int32_t CheckFirstCoupon(date issue, date firstCoupon, date maturity,
                              int months, bool endOfMonth);

}  // namespace nv_ns::udp_internal

#endif  // NVSHARED_UDP_INTERNAL_COUPON_CALENDAR_H_
