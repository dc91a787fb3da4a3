// CUDPYTMCalc's per-tick operations beside QuantLib's bond functions on the
// same bonds: a regular 10-year semi-annual bond and one with a long first
// coupon, under Actual/Actual. Each iteration uses a different price or
// yield from a small ring, so nothing is cached between calls.
#include <array>
#include <cstddef>
#include <string>

#include <benchmark/benchmark.h>
#include <ql/instruments/bonds/fixedratebond.hpp>
#include <ql/math/solvers1d/brent.hpp>
#include <ql/pricingengines/bond/bondfunctions.hpp>
#include <ql/time/calendars/nullcalendar.hpp>
#include <ql/time/daycounters/actualactual.hpp>
#include <ql/time/schedule.hpp>

#include "nvshared/platform/utils/udp_date_time.h"
#include "nvshared/udp/udp_ytm_calc.h"

namespace {

namespace ql = QuantLib;
using nv_ns::UDPDateTime;

constexpr std::array<double, 8> kPrices = {96.5, 97.25,  98.0,  98.75,
                                           99.5, 100.25, 101.0, 101.75};
constexpr std::array<double, 8> kYields = {4.1, 4.3, 4.5, 4.7,
                                           4.9, 5.1, 5.3, 5.5};

struct Terms {
  int settle[3], maturity[3], issue[3], first[3];
  double coupon;
};

// 10 years, semi-annual, settled between coupons.
const Terms kRegular = {{2024, 3, 10}, {2034, 2, 15}, {2023, 8, 15}, {0}, 4.5};
// Issued 10 January 2024, first coupon 15 December 2024: a long first
// period of two quasi-coupon periods, settled in the older one.
const Terms kLongFirst = {
    {2024, 2, 1}, {2034, 6, 15}, {2024, 1, 10}, {2024, 12, 15}, 4.5};

bool IsLongFirst(const Terms& t) { return t.first[0] != 0; }

CUDPYTMCalc MakeCalc(const Terms& t) {
  const UDPDateTime s(t.settle[0], t.settle[1], t.settle[2], 0, 0, 0);
  const UDPDateTime m(t.maturity[0], t.maturity[1], t.maturity[2], 0, 0, 0);
  const UDPDateTime d(t.issue[0], t.issue[1], t.issue[2], 0, 0, 0);
  const UDPDateTime f =
      IsLongFirst(t) ? UDPDateTime(t.first[0], t.first[1], t.first[2], 0, 0, 0)
                     : UDPDateTime();
  CUDPYTMCalc::CalcParams p;
  p.m_pSettlement = &s;
  p.m_pMaturity = &m;
  p.m_pIssue = &d;
  p.m_pFirstCoupon = &f;
  p.m_CouponFreq = 2;
  p.m_DayCount = 0;
  p.m_dCoupon = t.coupon;
  p.m_bYTMOptionalSettings = IsLongFirst(t);
  CUDPYTMCalc calc;
  calc.Initialize(p);
  return calc;
}

// A refused bond would answer "false" at once and flatter the figures.
bool Ready(benchmark::State& state, const CUDPYTMCalc& calc,
           const Terms& terms) {
  const char* shape = IsLongFirst(terms) ? "long first" : "regular";
  if (calc.IsInitialized() && std::string(calc.GetShapeName()) == shape) {
    return true;
  }
  state.SkipWithError("the calculator refused the terms");
  return false;
}

ql::Date QlDate(const int d[3]) {
  return ql::Date(d[2], static_cast<ql::Month>(d[1]), d[0]);
}

struct QlBond {
  explicit QlBond(const Terms& t)
      : schedule(QlDate(t.issue), QlDate(t.maturity),
                 ql::Period(ql::Semiannual), ql::NullCalendar(), ql::Unadjusted,
                 ql::Unadjusted, ql::DateGeneration::Backward, false,
                 IsLongFirst(t) ? QlDate(t.first) : ql::Date()),
        dayCounter(ql::ActualActual::ISMA),
        bond(0, 100.0, schedule, {t.coupon / 100.0}, dayCounter, ql::Unadjusted,
             100.0, QlDate(t.issue)),
        settlement(QlDate(t.settle)) {}
  ql::Schedule schedule;
  ql::ActualActual dayCounter;
  ql::FixedRateBond bond;
  ql::Date settlement;
};

void BM_CalcYieldToMaturity(benchmark::State& state, const Terms& terms) {
  const CUDPYTMCalc calc = MakeCalc(terms);
  if (!Ready(state, calc, terms)) return;
  std::size_t i = 0;
  for (auto _ : state) {
    double yield = 0.0;
    benchmark::DoNotOptimize(calc.CalcYieldToMaturity(kPrices[i++ & 7], yield));
    benchmark::DoNotOptimize(yield);
  }
}

void BM_CalcPriceFromYield(benchmark::State& state, const Terms& terms) {
  const CUDPYTMCalc calc = MakeCalc(terms);
  if (!Ready(state, calc, terms)) return;
  std::size_t i = 0;
  for (auto _ : state) {
    double price = 0.0;
    benchmark::DoNotOptimize(calc.CalcPriceFromYield(kYields[i++ & 7], price));
    benchmark::DoNotOptimize(price);
  }
}

void BM_QuantLibYield(benchmark::State& state, const Terms& terms) {
  const QlBond b(terms);
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        ql::BondFunctions::yield(b.bond, kPrices[i++ & 7], b.dayCounter,
                                 ql::Compounded, ql::Semiannual, b.settlement));
  }
}

void BM_QuantLibYieldBrent(benchmark::State& state, const Terms& terms) {
  const QlBond b(terms);
  ql::Brent solver;
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        ql::BondFunctions::yield(solver, b.bond, kPrices[i++ & 7], b.dayCounter,
                                 ql::Compounded, ql::Semiannual, b.settlement));
  }
}

void BM_QuantLibCleanPrice(benchmark::State& state, const Terms& terms) {
  const QlBond b(terms);
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(ql::BondFunctions::cleanPrice(
        b.bond, kYields[i++ & 7] / 100.0, b.dayCounter, ql::Compounded,
        ql::Semiannual, b.settlement));
  }
}

BENCHMARK_CAPTURE(BM_CalcYieldToMaturity, regular, kRegular);
BENCHMARK_CAPTURE(BM_QuantLibYield, regular, kRegular)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_QuantLibYieldBrent, regular, kRegular)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_CalcPriceFromYield, regular, kRegular);
BENCHMARK_CAPTURE(BM_QuantLibCleanPrice, regular, kRegular)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_CalcYieldToMaturity, long_first, kLongFirst);
BENCHMARK_CAPTURE(BM_QuantLibYield, long_first, kLongFirst)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_QuantLibYieldBrent, long_first, kLongFirst)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_CalcPriceFromYield, long_first, kLongFirst);
BENCHMARK_CAPTURE(BM_QuantLibCleanPrice, long_first, kLongFirst)
    ->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
