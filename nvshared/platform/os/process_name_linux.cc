#include <sys/prctl.h>

#include "nvshared/platform/os/process_name.h"

namespace dv_coreutils_ns {

bool SysRenameProcess(const char* name) {
  if (name == nullptr) return false;
  // PR_SET_NAME names the calling thread (its "comm"); the kernel copies at
  // most 15 bytes and a terminator, silently cutting a longer name.
  return ::prctl(PR_SET_NAME, name, 0, 0, 0) == 0;
}

}  // namespace dv_coreutils_ns

namespace nvshared::os {

std::string GetProcessName() {
  // The kernel writes at most 16 bytes, terminator included.
  char name[kMaxProcessNameBytes + 1] = {};
  if (::prctl(PR_GET_NAME, name, 0, 0, 0) != 0) return std::string();
  return std::string(name);
}

}  // namespace nvshared::os
