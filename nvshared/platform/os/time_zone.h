// The local time zone as the messaging layer needs it: the zone's bias in
// minutes with the convention GMT = local + bias, the standard and daylight
// adjustments, whether daylight saving is in force now, and the conversions
// between broken-down local time and seconds since the epoch.
//
// Threads: every function may run on any thread. The zone is the process's
// (TZ, else /etc/localtime), read again at each call.
#ifndef NVSHARED_PLATFORM_OS_TIME_ZONE_H_
#define NVSHARED_PLATFORM_OS_TIME_ZONE_H_

#include <cstdint>

#include "nvshared/export.h"

namespace nvshared::os {

struct TimeZoneInfo {
  enum State {
    // The zone has no daylight saving time this year.
    kUnknown,
    kStandard,
    kDaylight,
  };
  // Minutes to add to local standard time to get GMT (-60 for UTC+1).
  int bias = 0;
  // Added to `bias` while standard time is in force: always 0 here.
  int standardBias = 0;
  // Added to `bias` while daylight time is in force (usually -60).
  int daylightBias = 0;
  // At the moment of the call.
  State state = kUnknown;
};

TimeZoneInfo CurrentTimeZone();

// A broken-down local time, fields as the C library's struct tm has them
// (month 0-11, year less 1900, isDst -1 for "find out").
struct LocalTimeFields {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int isDst = -1;
};

// mktime: the seconds since the epoch of a local time, fields normalised as
// mktime does; -1 when the C library cannot represent it.
std::int64_t MakeLocalTime(const LocalTimeFields& fields);
// localtime_r: false (and `out` untouched) when the time cannot be broken
// down.
bool BreakDownLocalTime(std::int64_t seconds,
                                     LocalTimeFields& out);

}  // namespace nvshared::os

#endif  // NVSHARED_PLATFORM_OS_TIME_ZONE_H_
