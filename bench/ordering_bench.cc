// Sorting contract lists in screen order, beside a sort on a key computed in
// advance.
//
// 100,000 series of mixed shapes (futures, options over two strike
// divisors, spreads and strategies with their legs, bonds, LME prompts, ICE
// strips, stocks), made from the sample data with dates, strikes and sides
// varied, are sorted with SeriesCompare. The peer sorts the same series on a
// std::tuple built for each before the clock starts (market, type, product,
// date, strike as a fraction, side, version, series name): what a host could
// do if it gave up the rules that need the core (leg lists, bond keys, LME
// marks). Both use std::stable_sort over pointers.
//
// After the first sort every answer the comparison needs from the core is
// kept; the benchmark counts the core look-ups the timed sorts make and
// reports them per comparison (expected: 0).
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include <benchmark/benchmark.h>

#include "nvshared/market/internal/series_compare_internal.h"
#include "nvshared/market/market_utils.h"
#include "nvshared/market/series_compare.h"
#include "nvshared/platform/core/reference_data.h"

namespace {

using dv_core_ns::SeriesID;

constexpr int kSeries = 100000;

const std::vector<SeriesID>& MixedSeries() {
  static const std::vector<SeriesID> series = [] {
    const nvshared::Status status = dv_core_ns::ReferenceData::LoadFile(
        NVSHARED_SOURCE_DIR "/data/sample-refdata.json");
    if (!status.ok()) {
      std::fprintf(stderr, "%s\n", status.message().c_str());
      std::exit(1);
    }
    const auto& records = dv_core_ns::ReferenceData::Current().series();
    std::mt19937 random(2026);
    std::vector<SeriesID> out;
    out.reserve(kSeries);
    for (int i = 0; i < kSeries; ++i) {
      SeriesID s =
          *records[static_cast<std::size_t>(i) % records.size()].series;
      if (!s.IsSpreadOrStrategy()) {
        s.expiry.year = static_cast<std::int16_t>(2014 + random() % 6);
        s.expiry.month = static_cast<std::int8_t>(1 + random() % 12);
        s.expiry.day = static_cast<std::int8_t>(random() % 29);
      }
      if (s.productType() == dv_core_ns::OPTION) {
        s.strike = static_cast<std::int32_t>(random() % 400000);
        s.strikeDivisor = random() % 2 ? 100 : 10;
        s.callPut = random() % 2 ? 'C' : 'P';
      }
      out.push_back(s);
    }
    return out;
  }();
  return series;
}

using Key = std::tuple<int, int, std::string, int, int, int, long long, char,
                       char, std::string>;

Key KeyOf(const SeriesID& s) {
  // The strike scaled to a common divisor, so different divisors compare.
  const long long strike =
      s.strikeDivisor != 0
          ? static_cast<long long>(s.strike) * 1000 / s.strikeDivisor
          : 0;
  return Key(nv_ns::MarketUtils::GetMarketFromExchange(s.product.exchange),
             s.productType(), s.product.productName, s.expiry.year,
             s.expiry.month, s.expiry.day, strike, s.callPut, s.versionCode,
             s.seriesName.c_str());
}

void BM_SortWithSeriesCompare(benchmark::State& state) {
  const std::vector<SeriesID>& series = MixedSeries();
  std::vector<const SeriesID*> order;
  for (const SeriesID& s : series) order.push_back(&s);
  long long comparisons = 0;
  auto less = [&comparisons](const SeriesID* a, const SeriesID* b) {
    ++comparisons;
    return nv_ns::SeriesCompare(a, b) < 0;
  };
  // Warm-up: the first sort fills the kept answers and the name caches.
  std::stable_sort(order.begin(), order.end(), less);
  comparisons = 0;
  const auto lookupsBefore = nv_ns::internal::CoreLookupCount();
  std::mt19937 random(7);
  for (auto _ : state) {
    state.PauseTiming();
    std::shuffle(order.begin(), order.end(), random);
    state.ResumeTiming();
    std::stable_sort(order.begin(), order.end(), less);
    benchmark::DoNotOptimize(order.data());
  }
  const auto lookups = nv_ns::internal::CoreLookupCount() - lookupsBefore;
  state.counters["comparisons"] = benchmark::Counter(
      static_cast<double>(comparisons), benchmark::Counter::kAvgIterations);
  state.counters["core_lookups_per_cmp"] =
      comparisons > 0 ? static_cast<double>(lookups) / comparisons : 0.0;
  std::fprintf(stderr,
               "SeriesCompare: %llu core look-ups in %lld timed comparisons\n",
               static_cast<unsigned long long>(lookups), comparisons);
}
BENCHMARK(BM_SortWithSeriesCompare)->Unit(benchmark::kMillisecond);

void BM_SortOnPrecomputedTuple(benchmark::State& state) {
  const std::vector<SeriesID>& series = MixedSeries();
  std::vector<std::pair<Key, const SeriesID*>> keyed;
  for (const SeriesID& s : series) keyed.emplace_back(KeyOf(s), &s);
  std::vector<const std::pair<Key, const SeriesID*>*> order;
  for (const auto& k : keyed) order.push_back(&k);
  std::mt19937 random(7);
  for (auto _ : state) {
    state.PauseTiming();
    std::shuffle(order.begin(), order.end(), random);
    state.ResumeTiming();
    std::stable_sort(
        order.begin(), order.end(),
        [](const auto* a, const auto* b) { return a->first < b->first; });
    benchmark::DoNotOptimize(order.data());
  }
}
BENCHMARK(BM_SortOnPrecomputedTuple)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
