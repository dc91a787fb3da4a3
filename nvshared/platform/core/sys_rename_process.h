// dv_coreutils_ns::SysRenameProcess, which gives the process the display name
// that ps, top and the debuggers show.
//
// Threads: the name belongs to the calling thread; hosts rename on the main
// thread at start-up, where it is the name of the whole process.
#ifndef NVSHARED_PLATFORM_CORE_SYS_RENAME_PROCESS_H_
#define NVSHARED_PLATFORM_CORE_SYS_RENAME_PROCESS_H_

#include "nvshared/export.h"

namespace dv_coreutils_ns {

// Sets the display name. The kernel keeps at most 15 bytes of it and cuts
// the rest without a word (so "Trader App" stays whole but
// "Risk Manager App" becomes "Risk Manager Ap"); the cut may fall inside a
// UTF-8 character. False, and nothing changed, for a null name or if the
// system refused.
NVSHARED_API bool SysRenameProcess(const char* name);

}  // namespace dv_coreutils_ns

#endif  // NVSHARED_PLATFORM_CORE_SYS_RENAME_PROCESS_H_
