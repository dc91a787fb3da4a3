// Prices and yields against QuantLib, an independent implementation of the
// bond arithmetic, under Actual/Actual (ISMA), where its conventions and the
// calculator's coincide: regular bonds and long first periods of two
// quasi-coupon periods, or of three with settlement before the newest.
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <ql/instruments/bonds/fixedratebond.hpp>
#include <ql/pricingengines/bond/bondfunctions.hpp>
#include <ql/time/calendars/nullcalendar.hpp>
#include <ql/time/daycounters/actualactual.hpp>
#include <ql/time/schedule.hpp>

#include "nvshared/platform/utils/udp_date_time.h"
#include "nvshared/udp/udp_ytm_calc.h"

namespace {

namespace ql = QuantLib;
using nv_ns::UDPDateTime;

struct Case {
  const char* name;
  int settlement[3], maturity[3];
  int issue[3];  // {0,0,0}: regular, from a coupon date before settlement
  int first[3];  // first coupon date, with issue
  int frequency;
  double coupon;  // percent
  double yield;   // percent
};

ql::Date QlDate(const int d[3]) {
  return ql::Date(d[2], static_cast<ql::Month>(d[1]), d[0]);
}

UDPDateTime Udp(const int d[3]) {
  return UDPDateTime(d[0], d[1], d[2], 0, 0, 0);
}

ql::Frequency QlFrequency(int f) {
  return f == 1   ? ql::Annual
         : f == 2 ? ql::Semiannual
         : f == 4 ? ql::Quarterly
                  : ql::Monthly;
}

TEST(CUDPYTMCalcQuantLibTest, AgreesUnderActualActual) {
  const Case cases[] = {
      {"10y semi", {2024, 3, 10}, {2034, 2, 15}, {0}, {0}, 2, 4.5, 5.25},
      {"annual", {2024, 7, 1}, {2031, 11, 20}, {0}, {0}, 1, 6.0, 3.1},
      {"quarterly", {2024, 5, 2}, {2029, 1, 10}, {0}, {0}, 4, 2.75, 4.0},
      {"monthly", {2024, 5, 2}, {2026, 7, 20}, {0}, {0}, 12, 5.0, 5.5},
      {"deep discount", {2024, 1, 31}, {2054, 6, 1}, {0}, {0}, 2, 1.0, 8.0},
      {"premium", {2024, 9, 30}, {2039, 3, 1}, {0}, {0}, 2, 9.5, 2.0},
      {"leap day inside", {2024, 2, 10}, {2033, 8, 25}, {0}, {0}, 2, 3.0, 3.0},
      {"long first, 2 quasi, early",
       {2024, 2, 1},
       {2030, 6, 15},
       {2024, 1, 10},
       {2024, 12, 15},
       2,
       6.0,
       5.5},
      {"long first, 2 quasi, late",
       {2024, 8, 20},
       {2030, 6, 15},
       {2024, 1, 10},
       {2024, 12, 15},
       2,
       6.0,
       5.5},
      {"long first, 3 quasi, middle",
       {2024, 8, 20},
       {2030, 6, 15},
       {2024, 1, 10},
       {2025, 6, 15},
       2,
       6.0,
       7.0},
      {"long first, 3 quasi, oldest",
       {2024, 3, 1},
       {2030, 6, 15},
       {2024, 1, 10},
       {2025, 6, 15},
       2,
       4.0,
       3.5},
      {"long first, annual",
       {2024, 5, 1},
       {2035, 3, 20},
       {2023, 11, 7},
       {2025, 3, 20},
       1,
       5.0,
       4.25},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const bool regular = c.issue[0] == 0;
    const ql::Date maturity = QlDate(c.maturity);
    const ql::Date settlement = QlDate(c.settlement);
    const ql::Period tenor(QlFrequency(c.frequency));
    // A regular bond is dated a few coupons back so that settlement falls in
    // an ordinary period.
    ql::Date start = regular ? ql::Date() : QlDate(c.issue);
    if (regular) {
      start = maturity;
      while (start > settlement) start -= tenor;
      start -= tenor;
    }
    const ql::Date first = regular ? ql::Date() : QlDate(c.first);
    const ql::Schedule schedule(start, maturity, tenor, ql::NullCalendar(),
                                ql::Unadjusted, ql::Unadjusted,
                                ql::DateGeneration::Backward, false, first);
    // The classic ISMA form, which splits a long period into quasi-coupon
    // periods counted back from the coupon's reference period.
    const ql::ActualActual dayCounter(ql::ActualActual::ISMA);
    const ql::FixedRateBond bond(0, 100.0, schedule, {c.coupon / 100.0},
                                 dayCounter, ql::Unadjusted, 100.0, start);
    const double qlPrice = ql::BondFunctions::cleanPrice(
        bond, c.yield / 100.0, dayCounter, ql::Compounded,
        QlFrequency(c.frequency), settlement);
    const double qlYield =
        100.0 * ql::BondFunctions::yield(
                    bond, qlPrice, dayCounter, ql::Compounded,
                    QlFrequency(c.frequency), settlement, 1e-14, 200);

    const UDPDateTime s = Udp(c.settlement), m = Udp(c.maturity);
    const UDPDateTime d = regular ? UDPDateTime() : Udp(c.issue);
    const UDPDateTime f = regular ? UDPDateTime() : Udp(c.first);
    CUDPYTMCalc::CalcParams p;
    p.m_pSettlement = &s;
    p.m_pMaturity = &m;
    p.m_pIssue = &d;
    p.m_pFirstCoupon = &f;
    p.m_CouponFreq = c.frequency;
    p.m_DayCount = 0;
    p.m_dCoupon = c.coupon;
    p.m_bYTMOptionalSettings = !regular;
    CUDPYTMCalc calc;
    ASSERT_TRUE(calc.Initialize(p));
    EXPECT_STREQ(calc.GetShapeName(), regular ? "regular" : "long first");
    double price = 0.0;
    ASSERT_TRUE(calc.CalcPriceFromYield(c.yield, price));
    EXPECT_NEAR(price, qlPrice, 1e-9);
    double yield = 0.0;
    ASSERT_TRUE(calc.CalcYieldToMaturity(qlPrice, yield));
    EXPECT_NEAR(yield, qlYield, 1e-9);
  }
}

}  // namespace
