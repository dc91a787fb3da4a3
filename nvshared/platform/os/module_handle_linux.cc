#include <dlfcn.h>

#include "nvshared/platform/os/module_handle.h"

namespace nvshared::os {

void* CurrentModuleHandle() {
  // dladdr names the file that holds this very function; RTLD_NOLOAD then
  // yields the handle of that already loaded file without loading anything.
  Dl_info info{};
  void* handle = nullptr;
  if (::dladdr(reinterpret_cast<void*>(&CurrentModuleHandle), &info) != 0 &&
      info.dli_fname != nullptr) {
    handle = ::dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
  }
  // The main program is not found by its path; when the code was linked into
  // it, the program's own handle is the module's.
  if (handle == nullptr) handle = ::dlopen(nullptr, RTLD_LAZY | RTLD_NOLOAD);
  // RTLD_NOLOAD still counts a reference; give it back so that a host's
  // dlclose can unload the library. The handle stays valid while it is
  // loaded.
  if (handle != nullptr) ::dlclose(handle);
  return handle;
}

}  // namespace nvshared::os
