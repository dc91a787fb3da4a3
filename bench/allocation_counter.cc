#include "bench/allocation_counter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<std::size_t> g_allocations{0};

void* Allocate(std::size_t size) noexcept {
  g_allocations.fetch_add(1, std::memory_order_relaxed);
  return std::malloc(size == 0 ? 1 : size);
}
}  // namespace

namespace nvshared::bench {
std::size_t AllocationCount() {
  return g_allocations.load(std::memory_order_relaxed);
}
}  // namespace nvshared::bench

// Kept out of line: inlined, g++ takes the free() below for a mismatch with
// the operator new it pairs with.
__attribute__((noinline)) void* operator new(std::size_t size) {
  if (void* p = Allocate(size)) return p;
  throw std::bad_alloc();
}
__attribute__((noinline)) void* operator new[](std::size_t size) {
  return operator new(size);
}
__attribute__((noinline)) void* operator new(std::size_t size,
                                             const std::nothrow_t&) noexcept {
  return Allocate(size);
}
__attribute__((noinline)) void* operator new[](std::size_t size,
                                               const std::nothrow_t&) noexcept {
  return Allocate(size);
}
__attribute__((noinline)) void operator delete(void* p) noexcept {
  std::free(p);
}
__attribute__((noinline)) void operator delete[](void* p) noexcept {
  std::free(p);
}
__attribute__((noinline)) void operator delete(void* p, std::size_t) noexcept {
  std::free(p);
}
__attribute__((noinline)) void operator delete[](void* p,
                                                 std::size_t) noexcept {
  std::free(p);
}
