#include <ctime>
#include <initializer_list>

#include "nvshared/platform/os/time_zone.h"

namespace nvshared::os {
namespace {

// The zone's offset east of GMT, in seconds, at `when`; false if unknown.
bool OffsetAt(std::time_t when, long& offset, bool& dst) {
  std::tm tm{};
  if (localtime_r(&when, &tm) == nullptr) return false;
  offset = tm.tm_gmtoff;
  dst = tm.tm_isdst > 0;
  return true;
}

}  // namespace

TimeZoneInfo CurrentTimeZone() {
  tzset();
  TimeZoneInfo info;
  const std::time_t now = std::time(nullptr);
  long now_offset = 0;
  bool now_dst = false;
  if (!OffsetAt(now, now_offset, now_dst)) return info;

  // The standard and daylight offsets of this year: one of 1 January and
  // 1 July is in standard time wherever the zone keeps daylight saving.
  std::tm year_start{};
  localtime_r(&now, &year_start);
  // A zone in daylight time all year has no standard day to probe; the
  // C library's `timezone` (seconds west) is then its standard offset.
  long standard = now_dst ? -timezone : now_offset;
  long daylight = now_offset;
  bool has_daylight = now_dst;
  for (int month : {0, 6}) {
    std::tm probe{};
    probe.tm_year = year_start.tm_year;
    probe.tm_mon = month;
    probe.tm_mday = 1;
    probe.tm_hour = 12;
    probe.tm_isdst = -1;
    long offset = 0;
    bool dst = false;
    if (!OffsetAt(std::mktime(&probe), offset, dst)) continue;
    if (dst) {
      has_daylight = true;
      daylight = offset;
    } else {
      standard = offset;
    }
  }
  info.bias = static_cast<int>(-standard / 60);
  if (has_daylight) {
    info.daylightBias = static_cast<int>(-(daylight - standard) / 60);
    info.state = now_dst ? TimeZoneInfo::kDaylight : TimeZoneInfo::kStandard;
  }
  return info;
}

std::int64_t MakeLocalTime(const LocalTimeFields& fields) {
  std::tm tm{};
  tm.tm_year = fields.year;
  tm.tm_mon = fields.month;
  tm.tm_mday = fields.day;
  tm.tm_hour = fields.hour;
  tm.tm_min = fields.minute;
  tm.tm_sec = fields.second;
  tm.tm_isdst = fields.isDst;
  return static_cast<std::int64_t>(std::mktime(&tm));
}

bool BreakDownLocalTime(std::int64_t seconds, LocalTimeFields& out) {
  const auto when = static_cast<std::time_t>(seconds);
  std::tm tm{};
  if (localtime_r(&when, &tm) == nullptr) return false;
  out.year = tm.tm_year;
  out.month = tm.tm_mon;
  out.day = tm.tm_mday;
  out.hour = tm.tm_hour;
  out.minute = tm.tm_min;
  out.second = tm.tm_sec;
  out.isDst = tm.tm_isdst;
  return true;
}

}  // namespace nvshared::os
