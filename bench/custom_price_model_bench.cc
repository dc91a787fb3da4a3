// One tick through a custom price model: the converter the manager makes
// for the example forward-yield plug-in (CCustomUDPrice, called through its
// CUDPrice slot) beside the model's own function called directly through
// the plug-in interface, each way. The converter adds a virtual call, a
// status check and a try block that costs nothing until a plug-in fails;
// the target is at most 1.5 times the direct call.
#include <array>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "bench/allocation_counter.h"
#include "bench/example_model.h"
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include "nvshared/platform/utils/registry_mgr.h"
#include "nvshared/udp/custom_price_model.h"

namespace {

namespace fs = std::filesystem;

// Futures prices and forward yields, in rings of eight.
constexpr std::array<double, 8> kFutures = {118.5, 119.25, 120.0, 120.75,
                                            121.5, 122.25, 123.0, 123.75};
constexpr std::array<double, 8> kYields = {4.1, 4.3, 4.5, 4.7,
                                           4.9, 5.1, 5.3, 5.5};

// The example model loaded from a scratch configuration directory, with a
// 6 % bond delivered between coupons into a future of factor 0.85.
class Column {
 public:
  Column() {
    dir_ = nvshared_bench::LoadExampleModel();
    data_.m_UDPriceType = nv_ns::UDPPriceType::CustomModel;
    data_.m_sCustomPriceModelName = "Forward Yield";
    for (const auto& [key, value] : {std::pair{"Settlement Date", "2027-03-15"},
                                     {"Maturity Date", "2036-12-15"},
                                     {"Coupon", "6"},
                                     {"Conversion Factor", "0.85"}}) {
      data_.m_vectUDPKeyValue.emplace_back("string", key, value, "", "", "");
    }
    price_.reset(static_cast<CCustomUDPrice*>(
        CCustomPriceModelManager::Instance()->GetCustomPriceModel(
            "Forward Yield")));
    if (!price_ || !price_->ApplyNewProperties(&data_)) std::abort();
  }
  ~Column() {
    price_.reset();
    CCustomPriceModelManager::Destroy(false);
    fs::remove_all(dir_);
  }
  CCustomUDPrice& price() { return *price_; }
  nv_pm::IPriceModel& model() { return *price_->GetModel(); }

 private:
  fs::path dir_;
  CUDPData data_;
  std::unique_ptr<CCustomUDPrice> price_;
};

Column& Shared() {
  static Column column;
  return column;
}

void Allocations(benchmark::State& state, std::size_t before) {
  const double ticks = static_cast<double>(state.iterations());
  state.counters["allocs/tick"] =
      static_cast<double>(nvshared::bench::AllocationCount() - before) / ticks;
}

void BM_ConverterToUDP(benchmark::State& state) {
  CUDPrice& price = Shared().price();
  double out = 0.0;
  std::size_t i = 0;
  const std::size_t before = nvshared::bench::AllocationCount();
  for (auto _ : state) {
    price.GetUDPFromPrice(kFutures[i++ & 7], out);
    benchmark::DoNotOptimize(out);
  }
  Allocations(state, before);
}

void BM_DirectToUDP(benchmark::State& state) {
  nv_pm::IPriceModel& model = Shared().model();
  double out = 0.0;
  std::size_t i = 0;
  const std::size_t before = nvshared::bench::AllocationCount();
  for (auto _ : state) {
    model.ConvertPriceToUDP(kFutures[i++ & 7], &out);
    benchmark::DoNotOptimize(out);
  }
  Allocations(state, before);
}

void BM_ConverterToPrice(benchmark::State& state) {
  CUDPrice& price = Shared().price();
  double out = 0.0;
  std::size_t i = 0;
  const std::size_t before = nvshared::bench::AllocationCount();
  for (auto _ : state) {
    price.GetPriceFromUDP(kYields[i++ & 7], out);
    benchmark::DoNotOptimize(out);
  }
  Allocations(state, before);
}

void BM_DirectToPrice(benchmark::State& state) {
  nv_pm::IPriceModel& model = Shared().model();
  double out = 0.0;
  std::size_t i = 0;
  const std::size_t before = nvshared::bench::AllocationCount();
  for (auto _ : state) {
    model.ConvertUDPToPrice(kYields[i++ & 7], &out);
    benchmark::DoNotOptimize(out);
  }
  Allocations(state, before);
}

BENCHMARK(BM_ConverterToUDP);
BENCHMARK(BM_DirectToUDP);
BENCHMARK(BM_ConverterToPrice);
BENCHMARK(BM_DirectToPrice);

}  // namespace

BENCHMARK_MAIN();
