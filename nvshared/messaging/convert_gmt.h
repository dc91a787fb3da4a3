// nv_ns::ConvertGMT moves a date and time between local time and GMT.
//
// Threads: keeps no state; safe anywhere.
#ifndef NVSHARED_MESSAGING_CONVERT_GMT_H_
#define NVSHARED_MESSAGING_CONVERT_GMT_H_

#include "nvshared/export.h"
#include "nvshared/platform/core/date_time.h"

namespace nv_ns {

// Converts local time to GMT (`toGMT` true) or GMT to local time, in place.
// The date follows when the time crosses midnight. A default (unset) `time`
// is left alone, and so is the date. Milliseconds never change.
//
// The offset is the zone's at the moment of the call, not at the date being
// converted: a date on the other side of a daylight saving change gets the
// present offset. Peers convert the same way, so this is kept.
NVSHARED_API void ConvertGMT(dv_core_ns::Date& date, dv_core_ns::Time& time,
                             bool toGMT);

}  // namespace nv_ns

#endif  // NVSHARED_MESSAGING_CONVERT_GMT_H_
