#include "nvshared/platform/os/process_name.h"

#include <string>

#include <gtest/gtest.h>

namespace {

TEST(SysRenameProcess, KernelKeepsFifteenBytes) {
  const std::string saved = nvshared::os::GetProcessName();
  const std::pair<const char*, const char*> cases[] = {
      {"Trader App", "Trader App"},
      {"123456789012345", "123456789012345"},
      {"Risk Manager App", "Risk Manager Ap"},
  };
  for (const auto& [name, expected] : cases) {
    SCOPED_TRACE(name);
    EXPECT_TRUE(dv_coreutils_ns::SysRenameProcess(name));
    EXPECT_EQ(nvshared::os::GetProcessName(), expected);
  }
  EXPECT_FALSE(dv_coreutils_ns::SysRenameProcess(nullptr));
  EXPECT_EQ(nvshared::os::GetProcessName(), "Risk Manager Ap");
  dv_coreutils_ns::SysRenameProcess(saved.c_str());
}

}  // namespace
