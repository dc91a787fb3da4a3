// The orderings of the front end's contract lists: nv_ns comparison
// functions for exchanges, markets, products, series, legs, leg lists and
// spread names. Each returns a negative, zero or positive int as strcmp does;
// only the sign counts, except where a difference of numbers is returned.
//
// Series sort by market, product type, product, then date, strike, call
// before put and version; options with strikes over different divisors
// compare as exact fractions; spreads and strategies by their legs. BTec
// bonds sort by their term and issue keys, LME prompts marked 'R' before the
// dated ones, ICE strips ("Jan13-Mar13") as month ranges.
//
// What the comparisons ask of the core (leg lists, currency codes, bond
// keys) is asked once per series or product and kept for the life of the
// process, like the name caches they also use: a sort asks the core nothing
// once every contract has been seen.
//
// The order is not strict everywhere: a spread whose legs are unknown
// compares equal to every spread of its product. Sort with std::stable_sort,
// which stays within bounds whatever the comparator says.
//
// Threads: safe from any thread; the kept answers are shared under a
// reader-writer lock.
#ifndef NVSHARED_MARKET_SERIES_COMPARE_H_
#define NVSHARED_MARKET_SERIES_COMPARE_H_

#include "nvshared/export.h"
#include "nvshared/platform/core/ids.h"
#include "nvshared/platform/core/legs.h"

namespace nv_ns {

// By flavoured name, ignoring case.
NVSHARED_API int ExchangeCompare(int a, int b);
// By name, ignoring case; by number where either has no name.
NVSHARED_API int MarketCompare(int a, int b);
// Bonds by currency and keys; then name, ignoring case; then product type.
NVSHARED_API int ProductsCompare(const dv_core_ns::ProdID& a,
                                 const dv_core_ns::ProdID& b);
// Exchange (by flavoured name) first, then ProductsCompare.
NVSHARED_API int ProductsExchCompare(const dv_core_ns::ProdID& a,
                                     const dv_core_ns::ProdID& b);
// The given markets first, then ProductsCompare.
NVSHARED_API int ProductsMarketCompare(const dv_core_ns::ProdID& a, int marketA,
                                       const dv_core_ns::ProdID& b,
                                       int marketB);
// Two series with their own strikes. The pointers must not be null.
NVSHARED_API int SeriesCompare(const dv_core_ns::SeriesID* a,
                               const dv_core_ns::SeriesID* b);
// The legs' series, each with the leg's strike.
NVSHARED_API int SeriesCompare(const dv_core_ns::Leg* a,
                               const dv_core_ns::Leg* b);
NVSHARED_API bool SeriesLessThan(const dv_core_ns::SeriesID& a,
                                 const dv_core_ns::SeriesID& b);
NVSHARED_API bool SeriesGreaterThan(const dv_core_ns::SeriesID& a,
                                    const dv_core_ns::SeriesID& b);
// Series, then ratio.
NVSHARED_API int LegCompare(const dv_core_ns::Leg* a, const dv_core_ns::Leg* b);
// Leg count, spread type, then leg by leg.
NVSHARED_API int LegListCompare(const dv_core_ns::LegList* a,
                                const dv_core_ns::LegList* b);
// Ignoring case; names that differ only in case put the lower-case spelling
// first.
NVSHARED_API int SpreadNameCompare(const char* a, const char* b);

}  // namespace nv_ns

#endif  // NVSHARED_MARKET_SERIES_COMPARE_H_
