// What a host may still call while the process exits: a static of the
// host's, built before the library's own state was first used, is destroyed
// after it. Its destructor reports an exception, reads the report texts,
// looks up a market through a defaults key and formats a date; none of that
// may touch state that has been destroyed (AddressSanitizer reports it as a
// use after free; a plain build checks the texts).
#include <unistd.h>

#include <string>

#include <gtest/gtest.h>

#include "nvshared/app/exception_report.h"
#include "nvshared/defaults/default_key.h"
#include "nvshared/platform/utils/udp_date_time.h"

namespace {

const std::string kAbnormal = "The application met a problem it survived: %d";

struct LateCaller : CDefaultKey {
  bool armed = false;
  ~LateCaller() override {
    if (!armed) return;
    CDVNVExpRpt::ProcessException(7, CDVNVExpRpt::kHandledException, "late");
    GetMarketIdFromExch(3);
    nv_ns::UDPDateTime(2024, 5, 6, 0, 0, 0)
        .Format(0, nv_ns::UDPDateTime::kUserDefaultLocale);
    if (CDVNVExpRpt::GetAbnormalMsg() != kAbnormal) _exit(3);
  }
} g_lateCaller;  // constructed before any library state is first used

TEST(ExitOrder, LibraryStateOutlivesTheHostsStatics) {
  CDVNVExpRpt::Init(nullptr, kAbnormal.c_str(), kAbnormal.c_str());
  CDVNVExpRpt::ProcessException(7, CDVNVExpRpt::kHandledException, "now");
  g_lateCaller.armed = true;
}

}  // namespace
