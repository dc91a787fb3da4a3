// One tick through a price column's converter, as a host makes it: the
// converter from CUDPriceFactory called through its virtual slot, beside the
// same function called directly (qualified, no dispatch) and the arithmetic
// written inline. For yield to maturity the direct call is the calculator
// itself, and QuantLib's BondFunctions::yield on the same bond is the peer.
//
// Every benchmark also counts the allocations made per tick with a counting
// operator new in this binary: the converters must make none.
#include <array>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <new>

#include "bench/allocation_counter.h"
#include <benchmark/benchmark.h>
#include <ql/instruments/bonds/fixedratebond.hpp>
#include <ql/pricingengines/bond/bondfunctions.hpp>
#include <ql/time/calendars/nullcalendar.hpp>
#include <ql/time/daycounters/actualactual.hpp>
#include <ql/time/schedule.hpp>

#include "nvshared/platform/utils/udp_date_time.h"
#include "nvshared/udp/udp_data.h"
#include "nvshared/udp/udp_price.h"

namespace {

namespace ql = QuantLib;
using nv_ns::UDPDateTime;

// Futures prices, simple-yield prices, par-rate prices and yields, in rings
// of eight so that nothing is cached between ticks.
constexpr std::array<double, 8> kBondPrices = {96.5, 97.25,  98.0,  98.75,
                                               99.5, 100.25, 101.0, 101.75};
constexpr std::array<double, 8> kRates = {4.1, 4.3, 4.5, 4.7,
                                          4.9, 5.1, 5.3, 5.5};
constexpr std::array<double, 8> kParPrices = {-40.0, -20.0, -5.0, 0.0,
                                              5.0,   20.0,  40.0, 60.0};

enum class Kind { kYield, kYield365Strip, kYTM, kParRate };
enum class Way { kToUDP, kToPrice };

// The settings of each kind of column: a 10-year 4.5% semi-annual bond
// settled between coupons, as in the calculator's own benchmark.
CUDPData Settings(Kind kind) {
  CUDPData d;
  d.m_bEnableUDP = 1;
  d.SetSettlementDate(UDPDateTime(2024, 3, 10, 0, 0, 0), false);
  d.SetMaturityDate(UDPDateTime(2034, 2, 15, 0, 0, 0), false);
  d.m_dCoupon = 4.5;
  d.m_bEOMConversion = 0;
  switch (kind) {
    case Kind::kYield:
      d.m_UDPriceType = 2;
      d.m_YieldType = 2;
      break;
    case Kind::kYield365Strip:
      d.m_UDPriceType = 2;
      d.m_YieldType = 4;
      d.m_dStripBase = 25.0;
      d.m_bConvertTo365 = 1;
      break;
    case Kind::kYTM:
      d.m_UDPriceType = 3;
      break;
    case Kind::kParRate:
      d.m_UDPriceType = 6;
      d.m_dPV01 = 0.85;
      break;
  }
  return d;
}

const std::array<double, 8>& Inputs(Kind kind, Way way) {
  if (way == Way::kToPrice) return kRates;
  if (kind == Kind::kParRate) return kParPrices;
  if (kind == Kind::kYield365Strip) return kRates;  // read as 10000-scale
  return kBondPrices;
}

// Allocations per tick, as a counter; also a failure if there were any.
class AllocationWatch {
 public:
  explicit AllocationWatch(benchmark::State& state)
      : state_(state), start_(nvshared::bench::AllocationCount()) {}
  ~AllocationWatch() {
    const double made =
        static_cast<double>(nvshared::bench::AllocationCount() - start_);
    state_.counters["allocs/tick"] =
        benchmark::Counter(made, benchmark::Counter::kAvgIterations);
  }

 private:
  benchmark::State& state_;
  std::size_t start_;
};

// Through the factory's converter and its virtual slot. The converter comes
// from another translation unit, so the call cannot be devirtualised.
void BM_Virtual(benchmark::State& state, Kind kind, Way way) {
  CUDPData d = Settings(kind);
  CUDPrice* p = CUDPriceFactory::GetUDPrice(&d);
  if (p == nullptr) {
    state.SkipWithError("no converter");
    return;
  }
  const auto& in = Inputs(kind, way);
  std::size_t i = 0;
  {
    AllocationWatch watch(state);
    for (auto _ : state) {
      double out = 0.0;
      const bool ok = way == Way::kToUDP ? p->GetUDPFromPrice(in[i++ & 7], out)
                                         : p->GetPriceFromUDP(in[i++ & 7], out);
      benchmark::DoNotOptimize(ok);
      benchmark::DoNotOptimize(out);
    }
  }
  CUDPriceFactory::ReleaseUDPrice(p);
}

// The same function called directly, without dispatch.
template <typename Converter>
void BM_Direct(benchmark::State& state, Kind kind, Way way) {
  CUDPData d = Settings(kind);
  Converter c(&d);
  const auto& in = Inputs(kind, way);
  std::size_t i = 0;
  AllocationWatch watch(state);
  for (auto _ : state) {
    double out = 0.0;
    const bool ok = way == Way::kToUDP
                        ? c.Converter::GetUDPFromPrice(in[i++ & 7], out)
                        : c.Converter::GetPriceFromUDP(in[i++ & 7], out);
    benchmark::DoNotOptimize(ok);
    benchmark::DoNotOptimize(out);
  }
}

void BM_DirectYield(benchmark::State& state, Kind kind, Way way) {
  BM_Direct<CUDPriceYield>(state, kind, way);
}
void BM_DirectParRate(benchmark::State& state, Kind kind, Way way) {
  BM_Direct<CUDPriceParRate>(state, kind, way);
}
void BM_DirectYTM(benchmark::State& state, Kind kind, Way way) {
  BM_Direct<CUDPYield2Maturity>(state, kind, way);
}

// The arithmetic inline, reading the same settings.
void BM_Inline(benchmark::State& state, Kind kind, Way way) {
  CUDPData d = Settings(kind);
  const CUDPData* s = &d;
  const auto& in = Inputs(kind, way);
  std::size_t i = 0;
  AllocationWatch watch(state);
  for (auto _ : state) {
    benchmark::DoNotOptimize(s);
    const double x = in[i++ & 7];
    double out = 0.0;
    switch (kind) {
      case Kind::kYield:
        out = 100.0 - x;
        break;
      case Kind::kYield365Strip:
        if (way == Way::kToUDP) {
          const double y = (10000.0 - (x + s->m_dStripBase)) / 100.0 + 5e-9;
          out = (y * 0.1267361111111111 + 1.0) * 1.0138888888888888 * y;
        } else {
          const double y =
              (std::pow(x * 0.5 + 1.0, 0.5) - 1.0) * 3.9452054794520546;
          out = 10000.0 - y * 100.0 - s->m_dStripBase + 5e-9;
        }
        break;
      case Kind::kParRate:
        out = way == Way::kToUDP ? x / s->m_dPV01 / 100.0 + s->m_dCoupon
                                 : (x - s->m_dCoupon) * 100.0 * s->m_dPV01;
        break;
      case Kind::kYTM:
        break;
    }
    benchmark::DoNotOptimize(out);
  }
}

// The calculator itself, as the converter holds it.
void BM_Calculator(benchmark::State& state, Way way) {
  CUDPData d = Settings(Kind::kYTM);
  const CUDPYield2Maturity c(&d);
  const CUDPYTMCalc& calc = c.GetCalculator();
  const auto& in = Inputs(Kind::kYTM, way);
  std::size_t i = 0;
  AllocationWatch watch(state);
  for (auto _ : state) {
    double out = 0.0;
    const bool ok = way == Way::kToUDP
                        ? calc.CalcYieldToMaturity(in[i++ & 7], out)
                        : calc.CalcPriceFromYield(in[i++ & 7], out);
    benchmark::DoNotOptimize(ok);
    benchmark::DoNotOptimize(out);
  }
}

// QuantLib on the same bond: issued 15 August 2023, 4.5% semi-annual,
// Actual/Actual (ISMA), settled 10 March 2024.
void BM_QuantLib(benchmark::State& state, Way way) {
  const ql::Schedule schedule(
      ql::Date(15, ql::August, 2023), ql::Date(15, ql::February, 2034),
      ql::Period(ql::Semiannual), ql::NullCalendar(), ql::Unadjusted,
      ql::Unadjusted, ql::DateGeneration::Backward, false);
  const ql::ActualActual dayCounter(ql::ActualActual::ISMA);
  const ql::FixedRateBond bond(0, 100.0, schedule, {0.045}, dayCounter,
                               ql::Unadjusted, 100.0,
                               ql::Date(15, ql::August, 2023));
  const ql::Date settlement(10, ql::March, 2024);
  const auto& in = Inputs(Kind::kYTM, way);
  std::size_t i = 0;
  for (auto _ : state) {
    if (way == Way::kToUDP) {
      benchmark::DoNotOptimize(
          ql::BondFunctions::yield(bond, in[i++ & 7], dayCounter,
                                   ql::Compounded, ql::Semiannual, settlement));
    } else {
      benchmark::DoNotOptimize(ql::BondFunctions::cleanPrice(
          bond, in[i++ & 7] / 100.0, dayCounter, ql::Compounded, ql::Semiannual,
          settlement));
    }
  }
}

constexpr Way kToUDP = Way::kToUDP;
constexpr Way kToPrice = Way::kToPrice;

#define NVSHARED_SIMPLE(name, kind, Class)                              \
  BENCHMARK_CAPTURE(BM_Virtual, name##_to_udp, kind, kToUDP);           \
  BENCHMARK_CAPTURE(BM_Direct##Class, name##_to_udp, kind, kToUDP);     \
  BENCHMARK_CAPTURE(BM_Inline, name##_to_udp, kind, kToUDP);            \
  BENCHMARK_CAPTURE(BM_Virtual, name##_to_price, kind, kToPrice);       \
  BENCHMARK_CAPTURE(BM_Direct##Class, name##_to_price, kind, kToPrice); \
  BENCHMARK_CAPTURE(BM_Inline, name##_to_price, kind, kToPrice)

NVSHARED_SIMPLE(yield, Kind::kYield, Yield);
NVSHARED_SIMPLE(yield_365_strip, Kind::kYield365Strip, Yield);
NVSHARED_SIMPLE(par_rate, Kind::kParRate, ParRate);

BENCHMARK_CAPTURE(BM_Virtual, ytm_to_udp, Kind::kYTM, kToUDP);
BENCHMARK_CAPTURE(BM_DirectYTM, ytm_to_udp, Kind::kYTM, kToUDP);
BENCHMARK_CAPTURE(BM_Calculator, ytm_to_udp, kToUDP);
BENCHMARK_CAPTURE(BM_QuantLib, ytm_to_udp, kToUDP)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Virtual, ytm_to_price, Kind::kYTM, kToPrice);
BENCHMARK_CAPTURE(BM_DirectYTM, ytm_to_price, Kind::kYTM, kToPrice);
BENCHMARK_CAPTURE(BM_Calculator, ytm_to_price, kToPrice);
BENCHMARK_CAPTURE(BM_QuantLib, ytm_to_price, kToPrice)
    ->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
