// Cached market identity against the core lookups behind it.
//
// MarketUtils::GetMarketFromExchange and nv_fmt::GetExchangeName sit in sort
// comparators and matching loops; each is measured beside the direct core
// lookup it caches, on the bundled sample reference data, in one binary so
// that the ratio holds on a noisy machine.
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <benchmark/benchmark.h>

#include "nvshared/market/exchange_names.h"
#include "nvshared/market/market_utils.h"
#include "nvshared/platform/core/consumer.h"
#include "nvshared/platform/core/reference_data.h"

namespace {

// The exchange ids of the sample data, asked in turn so that the lookups do
// not all hit one cache line.
const std::vector<int>& Ids() {
  static const std::vector<int> ids = [] {
    const nvshared::Status loaded = dv_core_ns::ReferenceData::LoadFile(
        NVSHARED_SOURCE_DIR "/data/sample-refdata.json");
    if (!loaded.ok()) {
      std::fprintf(stderr, "%s\n", loaded.message().c_str());
      std::exit(1);
    }
    std::vector<int> out;
    for (const auto& e : dv_core_ns::ReferenceData::Current().exchanges()) {
      out.push_back(e.id);
    }
    return out;
  }();
  return ids;
}

template <typename Lookup>
void Run(benchmark::State& state, Lookup lookup) {
  const std::vector<int>& ids = Ids();
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(lookup(ids[i]));
    if (++i == ids.size()) i = 0;
  }
  state.SetItemsProcessed(state.iterations());
}

void BM_MarketFromExchange_Cached(benchmark::State& state) {
  Run(state,
      [](int id) { return nv_ns::MarketUtils::GetMarketFromExchange(id); });
}
BENCHMARK(BM_MarketFromExchange_Cached)->ThreadRange(1, 2);

void BM_MarketFromExchange_Core(benchmark::State& state) {
  Run(state,
      [](int id) { return dv_core_ns::CDVConsumer::GetMarketFromExch(id); });
}
BENCHMARK(BM_MarketFromExchange_Core)->ThreadRange(1, 2);

void BM_ExchangeName_Cached(benchmark::State& state) {
  Run(state, [](int id) { return nv_fmt::GetExchangeName(id, false); });
}
BENCHMARK(BM_ExchangeName_Cached)->ThreadRange(1, 2);

void BM_ExchangeName_CachedFlavoured(benchmark::State& state) {
  Run(state, [](int id) { return nv_fmt::GetExchangeName(id, true); });
}
BENCHMARK(BM_ExchangeName_CachedFlavoured)->ThreadRange(1, 2);

void BM_ExchangeName_Core(benchmark::State& state) {
  Run(state,
      [](int id) { return dv_core_ns::CDVConsumer::GetExchangeName(id); });
}
BENCHMARK(BM_ExchangeName_Core)->ThreadRange(1, 2);

}  // namespace

BENCHMARK_MAIN();
