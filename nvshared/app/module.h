// nv_ns::NVSharedGetModuleInstance: the handle of the module that holds this
// library (libnvshared.so, or the program it was linked into statically), as
// stored by the library's entry point when the module was loaded.
//
// Threads: the handle is written once, at load, before any caller runs.
#ifndef NVSHARED_APP_MODULE_H_
#define NVSHARED_APP_MODULE_H_

#include "nvshared/export.h"

namespace nv_ns {

// The handle of a loaded module: what dlopen returns.
using HINSTANCE = void*;

// A handle usable with dlsym and dlinfo; valid while the module is loaded.
NVSHARED_API HINSTANCE NVSharedGetModuleInstance();

}  // namespace nv_ns

#endif  // NVSHARED_APP_MODULE_H_
