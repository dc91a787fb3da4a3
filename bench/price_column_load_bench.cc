// A desk of 200 price columns under load. Each column has its own CUDPData,
// seeded as a host seeds one (bond terms, the custom model's parameters from
// its declaration, the contract's data, ValidateData), and takes 10,000 ticks
// of a deterministic price stream around its own price; after the ticks each
// column turns one typed value back into a price. The columns are, in screen
// order, a simple yield (all five yield types, half of them on 365 days), a
// yield to maturity, a par rate and the example "Forward Yield" plug-in
// model, fifty of each.
//
// The desk is timed three ways in one binary:
//   factory, screen order   the converters CUDPriceFactory::GetUDPrice hands
//                           out, called through CUDPrice as a host calls
//                           them, column after column as the screen shows
//   factory, by type        the same converters, the columns of one type
//                           together, so the indirect call always repeats
//   direct                  concrete converters constructed directly and
//                           called through their own type (no dispatch),
//                           grouped by type
// and each type alone, factory against direct, on its fifty columns.
//
// Every run checks that each column's results match the direct path's bit
// for bit, and counts heap allocations over the ticks with the counting
// operator new of this binary: there must be none.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "bench/allocation_counter.h"
#include "bench/example_model.h"
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include "nvshared/platform/utils/registry_mgr.h"
#include "nvshared/platform/utils/udp_date_time.h"
#include "nvshared/udp/custom_price_model.h"
#include "nvshared/udp/udp_data.h"
#include "nvshared/udp/udp_price.h"

namespace {

namespace fs = std::filesystem;
using nv_ns::UDPDateTime;

constexpr std::size_t kColumns = 200;
constexpr std::size_t kTicks = 10000;
constexpr const char* kModel = "Forward Yield";

// In screen order the kinds repeat: column c is of kind c % kKindCount.
enum Kind : std::size_t { kYield, kYTM, kParRate, kForwardYield, kKindCount };

// The stream: a walk of whole ticks, one step up, down or none per tick,
// held within 100 ticks either side. Each column reads it from its own
// phase, so neighbouring columns do not move together.
std::vector<double> Walk() {
  std::vector<double> walk(2 * kTicks);
  std::uint64_t state = 0x2545F4914F6CDD1Dull;
  int at = 0;
  for (double& step : walk) {
    state = state * 6364136223846793005ull + 1442695040888963407ull;
    at += static_cast<int>((state >> 33) % 3) - 1;
    at = std::clamp(at, -100, 100);
    step = at;
  }
  return walk;
}

// One column: its settings, and where its prices sit. The price of tick t is
// `center + walk[phase + t] * tick`; `typed` is the value the user types at
// the end.
struct Column {
  Kind kind = kYield;
  CUDPData data;
  double center = 0.0;
  double tick = 0.0;
  double typed = 0.0;
  std::size_t phase = 0;
};

UDPDateTime AddDays(const UDPDateTime& day, int days) {
  return UDPDateTime(day.GetSerial() + days);
}

// The settings of column `c`: terms vary with the column so that no two
// bonds of a kind are alike. Dates run from tomorrow, so that ValidateData
// accepts them on any day the benchmark runs.
void Seed(std::size_t c, const std::vector<UDPKeyValue>& modelParams,
          Column& column) {
  static const UDPDateTime kToday(
      std::floor(UDPDateTime::GetTickCount().GetSerial()));
  static const nv_ns::UDPDayCountType::Value kDayCounts[] = {
      nv_ns::UDPDayCountType::ActualActual, nv_ns::UDPDayCountType::Thirty360,
      nv_ns::UDPDayCountType::Actual365, nv_ns::UDPDayCountType::ThirtyE360};
  const int n = static_cast<int>(c / kKindCount);  // 0..49 within the kind
  CUDPData& d = column.data;
  d.m_bEnableUDP = 1;
  d.m_bEOMConversion = 0;
  const UDPDateTime settle = AddDays(kToday, 1 + n % 3);
  const UDPDateTime maturity(settle.GetYear() + 2 + (n * 7) % 28,
                             1 + (n * 5) % 12, 15, 0, 0, 0);
  const double coupon = 0.5 + (n % 12) * 0.5;
  switch (column.kind) {
    case kYield:
      // Money-market and strip quotes: every yield type, half on 365 days.
      d.m_UDPriceType = nv_ns::UDPPriceType::Yield;
      d.m_YieldType = static_cast<nv_ns::UDPYieldType::Value>(1 + n % 5);
      d.m_dStripBase = 25.0;
      d.m_bConvertTo365 = n % 2;
      d.SetSettlementDate(settle, false);
      d.SetMaturityDate(AddDays(settle, 91), false);
      column.typed = 3.0 + (n % 9) * 0.25;
      break;
    case kYTM:
      // Cash bonds, and every third one a bond into a future.
      d.m_UDPriceType = nv_ns::UDPPriceType::YieldToMaturity;
      d.SetSettlementDate(settle, false);
      d.SetMaturityDate(maturity, false);
      d.SetCoupon(coupon, false);
      d.SetCouponFreq(n % 5 == 0 ? nv_ns::UDPCouponFreq::Annual
                                 : nv_ns::UDPCouponFreq::SemiAnnual,
                      false);
      d.m_iDayCount = kDayCounts[n % 4];
      d.m_dConvFactor = n % 3 == 0 ? 0.6 + (n % 7) * 0.05 : 1.0;
      column.typed = 2.5 + (n % 9) * 0.375;
      break;
    case kParRate:
      d.m_UDPriceType = nv_ns::UDPPriceType::ParRate;
      d.SetSettlementDate(settle, false);
      d.SetMaturityDate(maturity, false);
      d.SetCoupon(2.0 + (n % 7) * 0.5, false);
      d.m_dPV01 = 0.05 + (n % 19) * 0.05;
      column.typed = d.m_dCoupon + ((n % 5) - 2) * 0.25;
      break;
    case kForwardYield: {
      // A bond future: the host fetches the model's parameters, seeds them
      // from the contract, then writes the deliverable bond's terms into
      // them. The delivery date is the model's settlement date.
      d.m_UDPriceType = nv_ns::UDPPriceType::CustomModel;
      d.m_sCustomPriceModelName = kModel;
      d.m_vectUDPKeyValue = modelParams;
      const UDPDateTime contract = AddDays(kToday, 30 + 30 * (n % 3));
      d.SetMiscContractInfo("ZN", contract, true, false);
      d.SetSettlementDate(AddDays(contract, 14), true);
      d.SetMaturityDate(maturity, true);
      d.SetCoupon(coupon + 1.0, true);
      d.SetCouponFreq(nv_ns::UDPCouponFreq::SemiAnnual, true);
      d.m_dConvFactor = 0.55 + (n % 9) * 0.05;
      char factor[32];
      std::snprintf(factor, sizeof factor, "%.4f", d.m_dConvFactor);
      for (UDPKeyValue& item : d.m_vectUDPKeyValue) {
        if (item.GetKey() == "Conversion Factor") item.SetValue(factor);
      }
      column.typed = 3.5 + (n % 9) * 0.25;
      break;
    }
    case kKindCount:
      break;
  }
  column.phase = (c * 7919) % kTicks;
}

// The calls a path makes per tick: the converter's own GetUDPFromPrice and
// GetPriceFromUDP, through CUDPrice or through the concrete type T.
template <typename T>
bool ToUDP(T& converter, double price, double& udp) {
  if constexpr (std::is_same_v<T, CUDPrice>) {
    return converter.GetUDPFromPrice(price, udp);
  } else {
    return converter.T::GetUDPFromPrice(price, udp);
  }
}
template <typename T>
bool ToPrice(T& converter, double udp, double& price) {
  if constexpr (std::is_same_v<T, CUDPrice>) {
    return converter.GetPriceFromUDP(udp, price);
  } else {
    return converter.T::GetPriceFromUDP(udp, price);
  }
}

// What a run leaves per column: the sum of its user prices over the ticks,
// the last one, and the typed value's price. Compared bit for bit.
struct Results {
  std::vector<double> sum, last, back;
  std::size_t refusals = 0;
  explicit Results(std::size_t n) : sum(n), last(n), back(n) {}
  bool operator==(const Results& o) const {
    return sum == o.sum && last == o.last && back == o.back &&
           refusals == o.refusals;
  }
};

// A group of columns, each with the converter a path calls, of type T.
template <typename T>
struct Group {
  std::vector<T*> converters;
  std::vector<const Column*> columns;
  std::vector<std::size_t> slots;  // the columns' places in Results

  void Add(T* converter, const Column* column, std::size_t slot) {
    converters.push_back(converter);
    columns.push_back(column);
    slots.push_back(slot);
  }
  // Tick `t` for every column of the group.
  void Tick(const double* walk, std::size_t t, Results& out) const {
    for (std::size_t i = 0; i < converters.size(); ++i) {
      const Column& c = *columns[i];
      const double price = c.center + walk[c.phase + t] * c.tick;
      double udp = 0.0;
      if (!ToUDP(*converters[i], price, udp)) ++out.refusals;
      out.sum[slots[i]] += udp;
      out.last[slots[i]] = udp;
    }
  }
  void TypedBack(Results& out) const {
    for (std::size_t i = 0; i < converters.size(); ++i) {
      double price = 0.0;
      if (!ToPrice(*converters[i], columns[i]->typed, price)) ++out.refusals;
      out.back[slots[i]] = price;
    }
  }
};

// The concrete converters of the direct path, one group per type.
struct DirectGroups {
  Group<CUDPriceYield> yield;
  Group<CUDPYield2Maturity> ytm;
  Group<CUDPriceParRate> parRate;
  Group<CCustomUDPrice> model;
  std::size_t Size() const {
    return yield.converters.size() + ytm.converters.size() +
           parRate.converters.size() + model.converters.size();
  }
  void Tick(const double* walk, std::size_t t, Results& out) const {
    yield.Tick(walk, t, out);
    ytm.Tick(walk, t, out);
    parRate.Tick(walk, t, out);
    model.Tick(walk, t, out);
  }
  void TypedBack(Results& out) const {
    yield.TypedBack(out);
    ytm.TypedBack(out);
    parRate.TypedBack(out);
    model.TypedBack(out);
  }
};

// The desk: the plug-in loaded from a scratch configuration directory as a
// host loads it, the columns, their factory converters and their direct
// ones. Built once for all benchmarks; a failed set-up ends the program.
class Desk {
 public:
  Desk() : walk_(Walk()) {
    LoadModel();
    std::vector<UDPKeyValue> params;
    CCustomPriceModelManager* manager = CCustomPriceModelManager::Instance();
    if (!manager->GetCustomPriceModelParams(kModel, params)) {
      Fail("the model declares no parameters");
    }
    columns_.resize(kColumns);  // never resized again: converters point in
    for (std::size_t c = 0; c < kColumns; ++c) {
      Column& column = columns_[c];
      column.kind = static_cast<Kind>(c % kKindCount);
      Seed(c, params, column);
      if (column.data.ValidateData() != nv_ns::UDPValidationErrorCodes::Valid) {
        Fail("a column's terms were refused");
      }
      std::string message;
      if (column.kind == kForwardYield &&
          !manager->ValidateCustomPricingModelParams(
              kModel, column.data.m_vectUDPKeyValue, message)) {
        Fail(("the model refused a column: " + message).c_str());
      }
      CUDPrice* price = CUDPriceFactory::GetUDPrice(&column.data);
      if (price == nullptr) Fail("the factory gave no converter");
      factory_.push_back(price);
      AddDirect(c);
    }
    Place();
  }

  ~Desk() {
    for (CUDPrice*& price : factory_) CUDPriceFactory::ReleaseUDPrice(price);
    direct_.clear();
    CCustomPriceModelManager::Destroy(false);
    std::error_code ignored;
    fs::remove_all(dir_, ignored);
  }

  const std::vector<Column>& columns() const { return columns_; }
  const double* walk() const { return walk_.data(); }
  // The factory's converters over all columns, in screen order and by type,
  // and over one type.
  const Group<CUDPrice>& ScreenOrder() const { return screen_; }
  const Group<CUDPrice>& ByType() const { return byType_; }
  const Group<CUDPrice>& FactoryKind(Kind kind) const {
    return factoryKinds_[kind];
  }
  const DirectGroups& Direct() const { return directAll_; }
  const DirectGroups& DirectKind(Kind kind) const { return directKinds_[kind]; }
  // The direct path's results over all columns: what every run must match.
  const Results& Reference() const { return reference_; }

  static void Fail(const char* why) {
    std::fprintf(stderr, "price_column_load_bench: %s\n", why);
    std::exit(1);
  }

 private:
  void LoadModel() {
    dir_ = nvshared_bench::LoadExampleModel();
    if (dir_.empty()) Fail("no scratch directory");
    if (!CCustomPriceModelManager::Instance()->CustomModelNameExists(kModel)) {
      Fail("the plug-in was not loaded");
    }
  }

  // A model object of the plug-in, made through the factory the manager
  // loaded, for a converter constructed directly.
  static nv_pm::IPriceModel* NewModel() {
    for (const auto& [path, library] :
         CCustomPriceModelManager::Instance()->GetTypeLibs()) {
      const auto found = library->m_mapModels.find(kModel);
      if (found == library->m_mapModels.end()) continue;
      nv_pm::IPluginObject* object = nullptr;
      if (nv_pm::Failed(found->second.first->CreatePriceModel(
              found->second.second, &object))) {
        return nullptr;
      }
      void* model = nullptr;
      const nv_pm::NvStatus status =
          object->QueryInterface(nv_pm::kIID_IPriceModel, &model);
      object->Release();
      return nv_pm::Succeeded(status) ? static_cast<nv_pm::IPriceModel*>(model)
                                      : nullptr;
    }
    return nullptr;
  }

  void AddDirect(std::size_t c) {
    CUDPData* data = &columns_[c].data;
    switch (columns_[c].kind) {
      case kYield:
        direct_.push_back(std::make_unique<CUDPriceYield>(data));
        break;
      case kYTM:
        direct_.push_back(std::make_unique<CUDPYield2Maturity>(data));
        break;
      case kParRate:
        direct_.push_back(std::make_unique<CUDPriceParRate>(data));
        break;
      case kForwardYield: {
        nv_pm::IPriceModel* model = NewModel();
        if (model == nullptr) Fail("no model object from the plug-in");
        auto converter = std::make_unique<CCustomUDPrice>(data, model);
        model->Release();  // the converter holds its own reference
        if (!converter->ApplyNewProperties(data)) {
          Fail("the model refused a column's parameters");
        }
        direct_.push_back(std::move(converter));
        break;
      }
      case kKindCount:
        break;
    }
  }

  // Fills the groups, then prices each column's stream: its price at its
  // seed yield, and half a basis point of yield as its tick.
  void Place() {
    for (std::size_t c = 0; c < kColumns; ++c) {
      Column& column = columns_[c];
      CUDPrice* direct = direct_[c].get();
      double at = 0.0, near = 0.0;
      if (!direct->GetPriceFromUDP(column.typed, at) ||
          !direct->GetPriceFromUDP(column.typed + 0.005, near) ||
          !std::isfinite(at) || !std::isfinite(near) || at == near) {
        Fail("a column has no price at its seed yield");
      }
      column.center = at;
      column.tick = std::fabs(near - at);
      column.typed += 0.1;  // the user types a yield near the market's

      const Kind kind = column.kind;
      screen_.Add(factory_[c], &column, c);
      factoryKinds_[kind].Add(factory_[c], &column, c);
      AddDirectTo(directAll_, c);
      AddDirectTo(directKinds_[kind], c);
    }
    for (std::size_t k = 0; k < kKindCount; ++k) {
      const Group<CUDPrice>& g = factoryKinds_[k];
      for (std::size_t i = 0; i < g.converters.size(); ++i) {
        byType_.Add(g.converters[i], g.columns[i], g.slots[i]);
      }
    }
    reference_ = Results(kColumns);
    for (std::size_t t = 0; t < kTicks; ++t) {
      directAll_.Tick(walk(), t, reference_);
    }
    directAll_.TypedBack(reference_);
    if (reference_.refusals != 0) Fail("a converter refused a tick");
    for (std::size_t c = 0; c < kColumns; ++c) {
      // A plug-in's failed conversion leaves the user price as it was (0).
      if (!std::isfinite(reference_.sum[c]) || reference_.last[c] == 0.0) {
        Fail("a column lost its price");
      }
    }
  }

  void AddDirectTo(DirectGroups& groups, std::size_t c) {
    Column* column = &columns_[c];
    CUDPrice* converter = direct_[c].get();
    switch (column->kind) {
      case kYield:
        groups.yield.Add(static_cast<CUDPriceYield*>(converter), column, c);
        break;
      case kYTM:
        groups.ytm.Add(static_cast<CUDPYield2Maturity*>(converter), column, c);
        break;
      case kParRate:
        groups.parRate.Add(static_cast<CUDPriceParRate*>(converter), column, c);
        break;
      case kForwardYield:
        groups.model.Add(static_cast<CCustomUDPrice*>(converter), column, c);
        break;
      case kKindCount:
        break;
    }
  }

  fs::path dir_;
  std::vector<double> walk_;
  std::vector<Column> columns_;
  std::vector<CUDPrice*> factory_;
  std::vector<std::unique_ptr<CUDPrice>> direct_;
  Group<CUDPrice> screen_, byType_;
  Group<CUDPrice> factoryKinds_[kKindCount];
  DirectGroups directAll_;
  DirectGroups directKinds_[kKindCount];
  Results reference_{0};
};

Desk& TheDesk() {
  static Desk desk;
  return desk;
}

// Times full loads: every column's 10,000 ticks, tick after tick across the
// columns as a feed delivers them, then one typed value back per column.
// Reports ticks per second and allocations per tick, and fails on any
// allocation or on results that differ from the direct path's.
template <typename Path>
void RunLoad(benchmark::State& state, const Path& path, std::size_t columns,
             const Kind* only) {
  const Desk& desk = TheDesk();
  Results results(kColumns);
  std::size_t allocations = 0;
  for (auto _ : state) {
    state.PauseTiming();
    results = Results(kColumns);
    state.ResumeTiming();
    const std::size_t before = nvshared::bench::AllocationCount();
    for (std::size_t t = 0; t < kTicks; ++t) path.Tick(desk.walk(), t, results);
    path.TypedBack(results);
    allocations += nvshared::bench::AllocationCount() - before;
    benchmark::DoNotOptimize(results.sum.data());
  }
  const double ticks =
      static_cast<double>(state.iterations()) * kTicks * columns;
  state.SetItemsProcessed(static_cast<std::int64_t>(ticks));
  state.counters["allocs/tick"] = static_cast<double>(allocations) / ticks;
  if (allocations != 0) {
    state.SkipWithError("a conversion allocated");
    return;
  }
  const Results& ref = desk.Reference();
  for (std::size_t c = 0; c < kColumns; ++c) {
    if (only != nullptr && desk.columns()[c].kind != *only) continue;
    if ((results.sum[c] != ref.sum[c] || results.last[c] != ref.last[c] ||
         results.back[c] != ref.back[c])) {
      state.SkipWithError("results differ from the direct converters'");
      return;
    }
  }
}

void BM_DeskFactoryScreenOrder(benchmark::State& state) {
  RunLoad(state, TheDesk().ScreenOrder(), kColumns, nullptr);
}
void BM_DeskFactoryByType(benchmark::State& state) {
  RunLoad(state, TheDesk().ByType(), kColumns, nullptr);
}
void BM_DeskDirect(benchmark::State& state) {
  RunLoad(state, TheDesk().Direct(), kColumns, nullptr);
}

void BM_KindFactory(benchmark::State& state, Kind kind) {
  const auto& group = TheDesk().FactoryKind(kind);
  RunLoad(state, group, group.converters.size(), &kind);
}
void BM_KindDirect(benchmark::State& state, Kind kind) {
  const auto& groups = TheDesk().DirectKind(kind);
  RunLoad(state, groups, groups.Size(), &kind);
}

BENCHMARK(BM_DeskFactoryScreenOrder)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DeskFactoryByType)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DeskDirect)->Unit(benchmark::kMillisecond);

#define NVSHARED_KIND(name, kind)               \
  BENCHMARK_CAPTURE(BM_KindFactory, name, kind) \
      ->Unit(benchmark::kMillisecond);          \
  BENCHMARK_CAPTURE(BM_KindDirect, name, kind)->Unit(benchmark::kMillisecond)

NVSHARED_KIND(yield, kYield);
NVSHARED_KIND(yield_to_maturity, kYTM);
NVSHARED_KIND(par_rate, kParRate);
NVSHARED_KIND(forward_yield, kForwardYield);

}  // namespace

BENCHMARK_MAIN();
