// Best-match selection over a defaults table, beside a baseline loop.
//
// CDefaultKey::Match walks a host's table through the virtual operations of
// DefaultsEntryIterator (here nv_ns::DefaultsTable over a vector). The
// baseline makes the same comparisons on the same vector directly, with no
// iterator and no virtual calls, so the ratio is the price of the host
// interface. Both run on the bundled sample reference data, in this binary.
//
// MatchProductAllocations checks that matching a product list shorter than
// 256 characters allocates nothing: it counts calls of operator new.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "bench/allocation_counter.h"
#include <benchmark/benchmark.h>

#include "nvshared/defaults/default_key.h"
#include "nvshared/defaults/defaults_table.h"
#include "nvshared/market/exchange_names.h"
#include "nvshared/market/market_utils.h"
#include "nvshared/platform/core/reference_data.h"

namespace {

using nv_ns::DefaultsTableEntry;

void LoadReferenceData() {
  static const bool loaded = [] {
    const nvshared::Status status = dv_core_ns::ReferenceData::LoadFile(
        NVSHARED_SOURCE_DIR "/data/sample-refdata.json");
    if (!status.ok()) {
      std::fprintf(stderr, "%s\n", status.message().c_str());
      std::exit(1);
    }
    for (const auto& e : dv_core_ns::ReferenceData::Current().exchanges()) {
      nv_fmt::GetExchangeName(e.id, true);
    }
    return true;
  }();
  (void)loaded;
}

// A table of `n` entries of mixed shapes: product lists of a few codes,
// gateways named by flavoured name, markets, types, a few excluded and
// fallback entries. The one entry that fits the key fully sits near the end.
std::vector<DefaultsTableEntry> MakeTable(int n) {
  static const char* const kGateways[] = {"CME-A (Globex)", "CME-B",
                                          "eCBOT-A (Electronic)",
                                          "LME-A (Select)", "Eurex"};
  static const int kMarkets[] = {7, 6, 79, 200, 3};
  std::vector<DefaultsTableEntry> table;
  for (int i = 0; i < n; ++i) {
    DefaultsTableEntry e;
    e.name = "entry " + std::to_string(i);
    if (i % 3 != 0) {
      e.wildProductName = false;
      e.productNames = "P" + std::to_string(i) + ", Q" + std::to_string(i % 7) +
                       ", R" + std::to_string(i % 11);
    }
    if (i % 4 == 1) {
      e.wildGateway = false;
      e.gatewayName = kGateways[i % 5];
    }
    if (i % 5 == 2) {
      e.wildMarketId = false;
      e.marketId = kMarkets[i % 5];
    }
    if (i % 2 == 0) {
      e.wildProductType = false;
      e.productType = 1 + i % 3;
    }
    e.excluded = i % 17 == 0;
    e.fallback = i % 13 == 0;
    table.push_back(e);
  }
  DefaultsTableEntry& best = table[static_cast<std::size_t>(n - 3)];
  best.wildProductName = false;
  best.productNames = "NQ, ES , YM";
  best.wildGateway = false;
  best.gatewayName = "CME-A (Globex)";
  best.wildMarketId = true;
  best.wildProductType = false;
  best.productType = 1;
  best.excluded = false;
  return table;
}

const CDefaultKey& Key() {
  static const CDefaultKey key("", 0, static_cast<nv_ns::MarketType::Value>(-1),
                               static_cast<nv_ns::ExchangeIds::Value>(7), -1,
                               static_cast<nv_ns::ProductType::Value>(1), "ES");
  return key;
}

bool Blank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool InList(std::string_view list, std::string_view product) {
  std::size_t pos = 0;
  while (pos <= list.size()) {
    std::size_t end = list.find(',', pos);
    if (end == std::string_view::npos) end = list.size();
    std::string_view t = list.substr(pos, end - pos);
    pos = end + 1;
    while (!t.empty() && Blank(t.front())) t.remove_prefix(1);
    while (!t.empty() && Blank(t.back())) t.remove_suffix(1);
    if (t.size() == product.size()) {
      bool same = true;
      for (std::size_t i = 0; i < t.size() && same; ++i) {
        same = (t[i] | 0x20) == (product[i] | 0x20);
      }
      if (same && !t.empty()) return true;
    }
    if (end == list.size()) break;
  }
  return false;
}

// The same tests and weights as the key's pass, on the vector directly, for
// the key of Key(): exchange 7, product type 1, product ES, market 7.
int BaselineMatch(const std::vector<DefaultsTableEntry>& table) {
  const int marketId = 7;
  const int exchange = 7;
  const char* keyGateway = nv_fmt::GetExchangeName(exchange, true);
  int best = -1;
  int bestIndex = -1;
  bool bestFallback = false;
  for (std::size_t i = 0; i < table.size(); ++i) {
    const DefaultsTableEntry& e = table[i];
    if (e.excluded) continue;
    int score = 0;
    if (!e.wildProductName) {
      if (!InList(e.productNames, "ES")) continue;
      score += 8;
    }
    if (!e.wildGateway) {
      if (e.gatewayName.empty() || e.gatewayName != keyGateway) continue;
      score += 4;
    }
    if (!e.wildMarketId) {
      if (e.marketId != marketId) continue;
      score += 2;
    } else if (!e.wildGateway) {
      const int ex = nv_fmt::GetExchangeID(e.gatewayName.c_str(), true);
      if (nv_ns::MarketUtils::GetMarketFromExchange(ex) != marketId) continue;
      score += 2;
    }
    if (!e.wildProductType) {
      if (e.productType != 1) continue;
      score += 1;
    }
    if (score > best) {
      best = score;
      bestIndex = static_cast<int>(i);
      bestFallback = e.fallback;
    } else if (score == best && bestFallback && !e.fallback) {
      bestFallback = false;
      bestIndex = static_cast<int>(i);
    }
  }
  return bestIndex;
}

void BM_Match(benchmark::State& state) {
  LoadReferenceData();
  const int n = static_cast<int>(state.range(0));
  nv_ns::DefaultsTable table(MakeTable(n));
  for (auto _ : state) {
    benchmark::DoNotOptimize(Key().Match(table));
  }
  table.RestoreBest();
  if (static_cast<int>(table.position()) != BaselineMatch(table.entries()))
    state.SkipWithError("Match and the baseline chose different entries");
  state.SetItemsProcessed(state.iterations() * n);
}

void BM_BaselineLoop(benchmark::State& state) {
  LoadReferenceData();
  const int n = static_cast<int>(state.range(0));
  const std::vector<DefaultsTableEntry> table = MakeTable(n);
  for (auto _ : state) {
    benchmark::DoNotOptimize(BaselineMatch(table));
  }
  state.SetItemsProcessed(state.iterations() * n);
}

BENCHMARK(BM_Match)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_BaselineLoop)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond);

// Exposes the key's product-list test.
class ProductKey : public CDefaultKey {
 public:
  using CDefaultKey::CDefaultKey;
  using CriteriaKey::MatchProduct;
};

void BM_MatchProductAllocations(benchmark::State& state) {
  const ProductKey key("", 0, static_cast<nv_ns::MarketType::Value>(-1),
                       static_cast<nv_ns::ExchangeIds::Value>(-1), -1,
                       static_cast<nv_ns::ProductType::Value>(0), "ES");
  // 255 characters: codes of four letters and a comma, ES last.
  std::string list;
  while (list.size() < 250) list += "ABCD,";
  list.resize(252);
  list += ",ES";
  const char* text = list.c_str();
  long allocations = 0;
  for (auto _ : state) {
    const long before = static_cast<long>(nvshared::bench::AllocationCount());
    benchmark::DoNotOptimize(key.MatchProduct(text));
    allocations +=
        static_cast<long>(nvshared::bench::AllocationCount()) - before;
  }
  state.counters["length"] = static_cast<double>(list.size());
  state.counters["allocations"] = static_cast<double>(allocations);
  if (allocations != 0) state.SkipWithError("MatchProduct allocated");
}
BENCHMARK(BM_MatchProductAllocations);

}  // namespace

BENCHMARK_MAIN();
