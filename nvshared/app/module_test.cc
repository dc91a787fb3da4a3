#include "nvshared/app/module.h"

#include "nvshared/platform/os/module_handle.h"

#include <gtest/gtest.h>

namespace nv_ns {
namespace {

TEST(NVSharedGetModuleInstance, IsStoredAtLoad) {
  EXPECT_NE(NVSharedGetModuleInstance(), nullptr);
  EXPECT_EQ(NVSharedGetModuleInstance(), nvshared::os::CurrentModuleHandle());
}

}  // namespace
}  // namespace nv_ns
