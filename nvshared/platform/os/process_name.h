// nvshared::os::GetProcessName, which reads back the display name that
// dv_coreutils_ns::SysRenameProcess (declared in the public
// platform/core/sys_rename_process.h) gives the process.
//
// Threads: the name belongs to the calling thread; hosts rename on the main
// thread at start-up, where it is the name of the whole process.
#ifndef NVSHARED_PLATFORM_OS_PROCESS_NAME_H_
#define NVSHARED_PLATFORM_OS_PROCESS_NAME_H_

#include <cstddef>
#include <string>

#include "nvshared/platform/core/sys_rename_process.h"

namespace nvshared::os {

// The most bytes of a display name that the kernel keeps.
inline constexpr std::size_t kMaxProcessNameBytes = 15;

// The calling thread's display name, as SysRenameProcess set it.
std::string GetProcessName();

}  // namespace nvshared::os

#endif  // NVSHARED_PLATFORM_OS_PROCESS_NAME_H_
