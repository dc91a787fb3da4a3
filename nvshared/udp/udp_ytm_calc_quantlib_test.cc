// Prices and yields against QuantLib, an independent implementation of the
// bond arithmetic, under Actual/Actual (ISMA), where its conventions and the
// calculator's coincide: regular bonds and long first periods of two
// quasi-coupon periods, or of three with settlement before the newest.
#include <gtest/gtest.h>
#include <ql/instruments/bonds/fixedratebond.hpp>
#include <ql/pricingengines/bond/bondfunctions.hpp>
#include <ql/time/calendars/nullcalendar.hpp>
#include <ql/time/daycounters/actualactual.hpp>
#include <ql/time/schedule.hpp>

#include "nvshared/testing/bond_terms.h"
#include "nvshared/udp/udp_ytm_calc.h"

namespace {

namespace ql = QuantLib;
using nvshared::testing::BondTerms;

ql::Date QlDate(int ymd) {
  return ql::Date(ymd % 100, static_cast<ql::Month>(ymd / 100 % 100),
                  ymd / 10000);
}

TEST(CUDPYTMCalcQuantLibTest, AgreesUnderActualActual) {
  struct Case {
    const char* name;
    int settlement, maturity;
    int issue, first;  // 0: regular, from a coupon date before settlement
    int frequency;
    double coupon, yield;  // percent
  };
  const Case cases[] = {
      {"10y semi", 20240310, 20340215, 0, 0, 2, 4.5, 5.25},
      {"annual", 20240701, 20311120, 0, 0, 1, 6.0, 3.1},
      {"quarterly", 20240502, 20290110, 0, 0, 4, 2.75, 4.0},
      {"monthly", 20240502, 20260720, 0, 0, 12, 5.0, 5.5},
      {"deep discount", 20240131, 20540601, 0, 0, 2, 1.0, 8.0},
      {"premium", 20240930, 20390301, 0, 0, 2, 9.5, 2.0},
      {"leap day inside", 20240210, 20330825, 0, 0, 2, 3.0, 3.0},
      {"long first, 2 quasi, early", 20240201, 20300615, 20240110, 20241215, 2,
       6.0, 5.5},
      {"long first, 2 quasi, late", 20240820, 20300615, 20240110, 20241215, 2,
       6.0, 5.5},
      {"long first, 3 quasi, middle", 20240820, 20300615, 20240110, 20250615, 2,
       6.0, 7.0},
      {"long first, 3 quasi, oldest", 20240301, 20300615, 20240110, 20250615, 2,
       4.0, 3.5},
      {"long first, annual", 20240501, 20350320, 20231107, 20250320, 1, 5.0,
       4.25},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const bool regular = c.issue == 0;
    const ql::Date maturity = QlDate(c.maturity);
    const ql::Date settlement = QlDate(c.settlement);
    const ql::Frequency frequency = static_cast<ql::Frequency>(c.frequency);
    const ql::Period tenor(frequency);
    // A regular bond is dated a few coupons back so that settlement falls in
    // an ordinary period.
    ql::Date start = regular ? maturity : QlDate(c.issue);
    while (regular && start > settlement) start -= tenor;
    if (regular) start -= tenor;
    const ql::Schedule schedule(start, maturity, tenor, ql::NullCalendar(),
                                ql::Unadjusted, ql::Unadjusted,
                                ql::DateGeneration::Backward, false,
                                regular ? ql::Date() : QlDate(c.first));
    // The classic ISMA form, which splits a long period into quasi-coupon
    // periods counted back from the coupon's reference period.
    const ql::ActualActual dayCounter(ql::ActualActual::ISMA);
    const ql::FixedRateBond bond(0, 100.0, schedule, {c.coupon / 100.0},
                                 dayCounter, ql::Unadjusted, 100.0, start);
    const double qlPrice =
        ql::BondFunctions::cleanPrice(bond, c.yield / 100.0, dayCounter,
                                      ql::Compounded, frequency, settlement);
    const double qlYield =
        100.0 * ql::BondFunctions::yield(bond, qlPrice, dayCounter,
                                         ql::Compounded, frequency, settlement,
                                         1e-14, 200);

    BondTerms b =
        BondTerms::Make(c.settlement, c.maturity, c.coupon, 0, c.frequency);
    if (!regular) b.FirstPeriod(c.issue, c.first);
    CUDPYTMCalc calc;
    ASSERT_TRUE(calc.Initialize(b.Params()));
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
