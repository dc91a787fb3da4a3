#include "nvshared/platform/os/module_handle.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

namespace nvshared::os {
namespace {

// The shipped library stores its own handle from its load-time entry point.
// It stays loaded afterwards: its state is not the test's to tear down.
TEST(CurrentModuleHandle, SharedLibraryStoresItsOwnHandleWhenLoaded) {
  void* library = ::dlopen(NVSHARED_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << ::dlerror();
  // nv_ns::NVSharedGetModuleInstance()
  auto get = reinterpret_cast<HINSTANCE (*)()>(
      ::dlsym(library, "_ZN5nv_ns25NVSharedGetModuleInstanceEv"));
  ASSERT_NE(get, nullptr) << ::dlerror();
  EXPECT_EQ(get(), library);
}

}  // namespace
}  // namespace nvshared::os
