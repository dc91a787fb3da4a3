// Counts the heap allocations of a whole benchmark binary: linking
// allocation_counter.cc replaces the global operator new and delete with
// ones that count, so that a benchmark can report allocations per item.
#ifndef NVSHARED_BENCH_ALLOCATION_COUNTER_H_
#define NVSHARED_BENCH_ALLOCATION_COUNTER_H_

#include <cstddef>

namespace nvshared::bench {

// Calls of any form of operator new since the program started.
std::size_t AllocationCount();

}  // namespace nvshared::bench

#endif  // NVSHARED_BENCH_ALLOCATION_COUNTER_H_
