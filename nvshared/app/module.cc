#include "nvshared/app/module.h"

#include "nvshared/platform/os/module_handle.h"

namespace nv_ns {

namespace {

HINSTANCE g_moduleInstance = nullptr;

// The library's entry point: runs once when the module is loaded (the
// process-attach moment) and stores the module's handle. It has no other
// start-up work; everything else is static initialisation of constants.
// There is nothing to do, and nothing to report, on unload.
__attribute__((constructor)) void NVSharedModuleEntry() {
  g_moduleInstance = nvshared::os::CurrentModuleHandle();
}

}  // namespace

HINSTANCE NVSharedGetModuleInstance() { return g_moduleInstance; }

}  // namespace nv_ns
