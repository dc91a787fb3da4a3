#include "nvshared/platform/os/module_handle.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

namespace nvshared::os {
namespace {

// A host loads the shipped library, finds the public API under its version
// node, unloads it, and loads it again. The library stores its own handle
// from its load-time entry point, and nothing in it (a GNU-unique symbol, a
// reference it keeps to itself) may pin it in memory after dlclose.
TEST(CurrentModuleHandle, SharedLibraryLoadsUnloadsAndLoadsAgain) {
  for (int round = 0; round < 2; ++round) {
    SCOPED_TRACE(round);
    void* library = ::dlopen(NVSHARED_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << ::dlerror();
    // nv_ns::NVSharedGetModuleInstance()
    auto get = reinterpret_cast<void* (*)()>(::dlvsym(
        library, "_ZN5nv_ns25NVSharedGetModuleInstanceEv", NVSHARED_ABI_NODE));
    ASSERT_NE(get, nullptr) << ::dlerror();
    EXPECT_EQ(get(), library);
    ASSERT_EQ(::dlclose(library), 0);
    EXPECT_EQ(::dlopen(NVSHARED_LIBRARY_PATH, RTLD_NOW | RTLD_NOLOAD), nullptr)
        << "the library stayed loaded after dlclose";
  }
}

}  // namespace
}  // namespace nvshared::os
