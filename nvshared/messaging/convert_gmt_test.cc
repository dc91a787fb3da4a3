#include "nvshared/messaging/convert_gmt.h"

#include <gtest/gtest.h>

#include "nvshared/testing/zone_scope.h"

namespace nv_ns {
namespace {

using dv_core_ns::Date;
using dv_core_ns::Time;
using nvshared::testing::ZoneScope;

// Each row's shift is the zone's bias, so the rows also pin what the zone
// reader reports: UTC+2 and UTC-5 without daylight time, and daylight time
// all year round (standard UTC-3, daylight UTC-2) taken as in force.
TEST(ConvertGmtTest, Conversions) {
  struct Case {
    const char* zone;
    bool toGMT;
    Date date;
    Time time;
    Date wantDate;
    Time wantTime;
  };
  const Case cases[] = {
      {"UTC0", true, Date(2, 3, 2014), Time(1, 30, 0, 5), Date(2, 3, 2014),
       Time(1, 30, 0, 5)},
      // UTC+2: local 01:30 is 23:30 GMT the day before; and back.
      {"XXX-2", true, Date(1, 3, 2014), Time(1, 30, 15, 250), Date(28, 2, 2014),
       Time(23, 30, 15, 250)},
      {"XXX-2", false, Date(28, 2, 2014), Time(23, 30, 15, 0), Date(1, 3, 2014),
       Time(1, 30, 15, 0)},
      // UTC-5: 23:30 local is 04:30 GMT the next day, across a year.
      {"XXX5", true, Date(31, 12, 2013), Time(23, 30, 0, 0), Date(1, 1, 2014),
       Time(4, 30, 0, 0)},
      // The bias of the moment of the call (daylight all year: UTC-2).
      {"AAA3BBB,J1/0,J365/25", true, Date(15, 6, 2014), Time(12, 0, 0, 0),
       Date(15, 6, 2014), Time(14, 0, 0, 0)},
      // An unset time changes nothing, not even an odd date.
      {"XXX-2", true, Date(40, 13, 2014), Time(), Date(40, 13, 2014), Time()},
  };
  for (const Case& c : cases) {
    ZoneScope scope(c.zone);
    Date date = c.date;
    Time time = c.time;
    ConvertGMT(date, time, c.toGMT);
    EXPECT_EQ(date, c.wantDate) << c.zone << " " << int(c.time.hour);
    EXPECT_EQ(time, c.wantTime) << c.zone << " " << int(c.time.hour);
  }
}

}  // namespace
}  // namespace nv_ns
