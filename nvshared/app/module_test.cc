// What a host may still call while the process exits, from a static of its
// own that was built before the library's state was first used and so is
// destroyed after it: none of these calls may touch destroyed state
// (AddressSanitizer reports a use after free; a plain build checks a text).
#include "nvshared/app/module.h"

#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

#include "nvshared/app/exception_report.h"
#include "nvshared/defaults/default_key.h"
#include "nvshared/platform/os/module_handle.h"
#include "nvshared/platform/utils/udp_date_time.h"

namespace {

const std::string kAbnormal = "The application met a problem it survived: %d";

struct LateCaller : CDefaultKey {
  bool armed = false;
  ~LateCaller() override {
    if (!armed) return;
    CDVNVExpRpt::ProcessException(7, CDVNVExpRpt::kHandledException, "late");
    GetMarketIdFromExch(3);
    nv_ns::UDPDateTime(2024, 5, 6, 0, 0, 0).Format();
    if (CDVNVExpRpt::GetAbnormalMsg() != kAbnormal) _exit(3);
  }
} g_lateCaller;

TEST(ModuleLifetime, HandleAtLoadAndStateThatOutlivesTheHostsStatics) {
  EXPECT_NE(nv_ns::NVSharedGetModuleInstance(), nullptr);
  EXPECT_EQ(nv_ns::NVSharedGetModuleInstance(),
            nvshared::os::CurrentModuleHandle());
  CDVNVExpRpt::Init(nullptr, kAbnormal.c_str(), kAbnormal.c_str());
  g_lateCaller.armed = true;
}

}  // namespace
