// Library-internal view of the comparisons' kept core answers, for the
// benchmark and tests. Not installed.
#ifndef NVSHARED_MARKET_INTERNAL_SERIES_COMPARE_INTERNAL_H_
#define NVSHARED_MARKET_INTERNAL_SERIES_COMPARE_INTERNAL_H_

#include <cstdint>
#include <string_view>

namespace nv_ns::internal {

// How many calls the comparison functions have made into the core's
// look-ups (leg lists, currency codes, product records) since the process
// started. Calls the name caches make on a miss are not counted here.
std::uint64_t CoreLookupCount();

// The strip comparison of ICE series names ("Jan13-Mar13"); both must have
// the strip form (IsStrip).
bool IsStrip(std::string_view name);
int CompareStrips(std::string_view a, std::string_view b);

}  // namespace nv_ns::internal

#endif  // NVSHARED_MARKET_INTERNAL_SERIES_COMPARE_INTERNAL_H_
