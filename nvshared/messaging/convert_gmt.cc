#include "nvshared/messaging/convert_gmt.h"

#include <cstdint>

#include "nvshared/platform/os/time_zone.h"

namespace nv_ns {

void ConvertGMT(dv_core_ns::Date& date, dv_core_ns::Time& time, bool toGMT) {
  if (time == dv_core_ns::Time()) return;

  nvshared::os::LocalTimeFields fields;
  fields.day = date.day;
  fields.month = date.month - 1;
  fields.year = date.year - 1900;
  fields.hour = time.hour;
  fields.minute = time.minute;
  fields.second = time.second;
  fields.isDst = -1;
  std::int64_t seconds = nvshared::os::MakeLocalTime(fields);

  const nvshared::os::TimeZoneInfo zone = nvshared::os::CurrentTimeZone();
  int bias = zone.bias;
  if (zone.state == nvshared::os::TimeZoneInfo::kStandard) {
    bias += zone.standardBias;
  } else if (zone.state == nvshared::os::TimeZoneInfo::kDaylight) {
    bias += zone.daylightBias;
  }
  seconds += toGMT ? bias * 60 : -bias * 60;

  // The results of the time functions are not judged, as ever; but a time
  // that cannot be broken down leaves the values as they were instead of
  // storing whatever an unfilled structure holds.
  nvshared::os::LocalTimeFields out;
  if (!nvshared::os::BreakDownLocalTime(seconds, out)) return;
  date.year = static_cast<std::int16_t>(out.year + 1900);
  date.month = static_cast<std::int8_t>(out.month + 1);
  date.day = static_cast<std::int8_t>(out.day);
  time.hour = static_cast<std::int8_t>(out.hour);
  time.minute = static_cast<std::int8_t>(out.minute);
  time.second = static_cast<std::int8_t>(out.second);
}

}  // namespace nv_ns
