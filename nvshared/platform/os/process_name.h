// dv_coreutils_ns::SysRenameProcess, which gives the process the display name
// that ps, top and the debuggers show, and nvshared::os::GetProcessName,
// which reads it back.
//
// Threads: the name belongs to the calling thread; hosts rename on the main
// thread at start-up, where it is the name of the whole process.
#ifndef NVSHARED_PLATFORM_OS_PROCESS_NAME_H_
#define NVSHARED_PLATFORM_OS_PROCESS_NAME_H_

#include <cstddef>
#include <string>

#include "nvshared/export.h"

namespace dv_coreutils_ns {

// Sets the display name. The kernel keeps at most 15 bytes of it and cuts
// the rest without a word (so "Trader App" stays whole but
// "Risk Manager App" becomes "Risk Manager Ap"); the cut may fall inside a
// UTF-8 character. False, and nothing changed, for a null name or if the
// system refused.
NVSHARED_API bool SysRenameProcess(const char* name);

}  // namespace dv_coreutils_ns

namespace nvshared::os {

// The most bytes of a display name that the kernel keeps.
inline constexpr std::size_t kMaxProcessNameBytes = 15;

// The calling thread's display name, as SysRenameProcess set it.
NVSHARED_API std::string GetProcessName();

}  // namespace nvshared::os

#endif  // NVSHARED_PLATFORM_OS_PROCESS_NAME_H_
