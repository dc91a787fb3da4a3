// nvshared::os::CurrentModuleHandle, which finds the handle of the module
// that holds this library's code: libnvshared.so, or the program (or other
// shared object) it was linked into statically.
//
// A handle is what dlopen returns, so a host can pass it to dlsym or dlinfo.
// Ownership: the handle holds no reference of its own; it stays valid while
// the module is loaded, which is as long as any of its code can run.
// Threads: safe anywhere, including load-time constructors.
#ifndef NVSHARED_PLATFORM_OS_MODULE_HANDLE_H_
#define NVSHARED_PLATFORM_OS_MODULE_HANDLE_H_

namespace nvshared::os {

// Null only if the dynamic loader knows nothing of the module.
void* CurrentModuleHandle();

}  // namespace nvshared::os

#endif  // NVSHARED_PLATFORM_OS_MODULE_HANDLE_H_
