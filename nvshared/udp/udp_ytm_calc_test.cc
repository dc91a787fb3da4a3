#include "nvshared/udp/udp_ytm_calc.h"

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/platform/utils/udp_date_time.h"

namespace {

using nv_ns::UDPDateTime;

UDPDateTime Day(int y, int m, int d) { return UDPDateTime(y, m, d, 0, 0, 0); }

// The terms of one bond, with the dates owned here.
struct Bond {
  UDPDateTime settlement, maturity, issue, firstCoupon;
  int frequency = 2;
  int dayCount = 0;
  double coupon = 5.0;
  double factor = 1.0;
  bool endOfMonth = false;
  bool optional = false;

  CUDPYTMCalc::CalcParams Params() const {
    CUDPYTMCalc::CalcParams p;
    p.m_pSettlement = &settlement;
    p.m_pMaturity = &maturity;
    p.m_pIssue = &issue;
    p.m_pFirstCoupon = &firstCoupon;
    p.m_CouponFreq = frequency;
    p.m_DayCount = dayCount;
    p.m_dCoupon = coupon;
    p.m_dConvFactor = factor;
    p.m_bEOMConversion = endOfMonth;
    p.m_bYTMOptionalSettings = optional;
    return p;
  }
};

// One cash flow: an amount and when it is paid, in coupon periods from
// settlement.
struct Flow {
  double amount;
  double periods;
};

// The clean price by the textbook definition: every flow discounted by
// (1 + y/f)^periods, less the accrued interest.
double CleanPrice(const std::vector<Flow>& flows, double accrued,
                  double yieldPercent, int frequency) {
  double dirty = 0.0;
  for (const Flow& f : flows) {
    dirty +=
        f.amount * std::pow(1.0 + yieldPercent / 100.0 / frequency, -f.periods);
  }
  return dirty - accrued;
}

// `first` paid at `w`, then `count` coupons `coupon` a period apart, the
// redemption with the last.
std::vector<Flow> Flows(double first, double w, double coupon, int count) {
  std::vector<Flow> flows = {{first, w}};
  for (int k = 1; k <= count; ++k) flows.push_back({coupon, w + k});
  flows.push_back({100.0, w + count});
  return flows;
}

TEST(CUDPYTMCalcTest, ValidateValuesLastFailingTestWins) {
  struct Case {
    const char* name;
    bool settlementFirst;
    double coupon;
    double factor;
    int frequency;
    int expected;
  };
  const Case cases[] = {
      {"valid", true, 5.0, 1.0, 2, 0},
      {"settlement on maturity", false, 5.0, 1.0, 2, 1},
      {"coupon 0.0", true, 0.0, 1.0, 2, 2},
      {"coupon 100.0", true, 100.0, 1.0, 2, 2},
      {"coupon just inside", true, 99.999, 1.0, 2, 0},
      {"factor 5.0", true, 5.0, 5.0, 2, 3},
      {"factor just below 5.0", true, 5.0, 4.9999, 2, 0},
      {"factor 0.1", true, 5.0, 0.1, 2, 0},
      {"factor below 0.1", true, 5.0, 0.0999, 2, 3},
      {"frequency 0", true, 5.0, 1.0, 0, 4},
      {"coupon and dates", false, 0.0, 1.0, 2, 2},
      {"factor and coupon", true, 0.0, 5.0, 2, 3},
      {"frequency and coupon", true, 100.0, 1.0, 0, 4},
      {"all four", false, -1.0, 9.0, 0, 4},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Bond b;
    b.settlement = Day(2024, 3, 1);
    b.maturity = c.settlementFirst ? Day(2030, 3, 1) : Day(2024, 3, 1);
    b.coupon = c.coupon;
    b.factor = c.factor;
    b.frequency = c.frequency;
    EXPECT_EQ(CUDPYTMCalc::ValidateValues(b.Params()), c.expected);
    CUDPYTMCalc calc;
    EXPECT_EQ(calc.Initialize(b.Params()), c.expected == 0);
  }
  CUDPYTMCalc::CalcParams missing;
  missing.m_dCoupon = 5.0;
  EXPECT_EQ(CUDPYTMCalc::ValidateValues(missing), 1);
}

TEST(CUDPYTMCalcTest, FirstCouponMustLieOnTheCalendarFromMaturity) {
  struct Case {
    const char* name;
    UDPDateTime issue, first, maturity;
    int frequency;
    bool endOfMonth;
    int expected;
  };
  const UDPDateTime none(1e12);  // invalid status: absent
  const Case cases[] = {
      // 30 April steps back to 31 October with the flag, 30 October without.
      {"30 Apr, flag on, 31 Oct", Day(2023, 1, 1), Day(2024, 10, 31),
       Day(2030, 4, 30), 2, true, 0},
      {"30 Apr, flag on, 30 Oct", Day(2023, 1, 1), Day(2024, 10, 30),
       Day(2030, 4, 30), 2, true, 8},
      {"30 Apr, flag off, 30 Oct", Day(2023, 1, 1), Day(2024, 10, 30),
       Day(2030, 4, 30), 2, false, 0},
      {"30 Apr, flag off, 31 Oct", Day(2023, 1, 1), Day(2024, 10, 31),
       Day(2030, 4, 30), 2, false, 8},
      // 31 August without the flag: the last of February, then the 31st.
      {"31 Aug, leap February", Day(2023, 1, 1), Day(2024, 2, 29),
       Day(2030, 8, 31), 2, false, 0},
      {"31 Aug, 28 Feb of a leap year", Day(2023, 1, 1), Day(2024, 2, 28),
       Day(2030, 8, 31), 2, false, 8},
      {"31 Aug, back to the 31st", Day(2023, 1, 1), Day(2024, 8, 31),
       Day(2030, 8, 31), 2, false, 0},
      {"31 Aug, plain February", Day(2023, 1, 1), Day(2025, 2, 28),
       Day(2030, 8, 31), 2, false, 0},
      // 28 February without the flag walks back to the 28th of each month.
      {"28 Feb, flag off, 28 Aug", Day(2023, 1, 1), Day(2024, 8, 28),
       Day(2030, 2, 28), 2, false, 0},
      {"28 Feb, flag on, 31 Aug", Day(2023, 1, 1), Day(2024, 8, 31),
       Day(2030, 2, 28), 2, true, 0},
      {"quarterly", Day(2023, 1, 1), Day(2024, 5, 15), Day(2030, 2, 15), 4,
       false, 0},
      {"monthly off calendar", Day(2023, 1, 1), Day(2024, 5, 16),
       Day(2030, 2, 15), 12, false, 8},
      {"first coupon is maturity", Day(2023, 1, 1), Day(2030, 2, 15),
       Day(2030, 2, 15), 2, false, 0},
      {"issue absent", none, Day(2024, 8, 15), Day(2030, 2, 15), 2, false, 5},
      {"first coupon absent", Day(2023, 1, 1), none, Day(2030, 2, 15), 2, false,
       5},
      {"first coupon before issue", Day(2024, 9, 1), Day(2024, 8, 15),
       Day(2030, 2, 15), 2, false, 7},
      {"first coupon after maturity", Day(2023, 1, 1), Day(2030, 8, 15),
       Day(2030, 2, 15), 2, false, 7},
      {"issue on maturity", Day(2030, 2, 15), Day(2030, 2, 15),
       Day(2030, 2, 15), 2, false, 8},
      {"issue on the calendar date before", Day(2024, 8, 15), Day(2025, 2, 15),
       Day(2030, 2, 15), 2, false, 0},
      {"issue on a calendar date, first off it", Day(2024, 8, 15),
       Day(2025, 2, 14), Day(2030, 2, 15), 2, false, 8},
      {"zero frequency", Day(2023, 1, 1), Day(2024, 8, 15), Day(2030, 2, 15), 0,
       false, 8},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(CUDPYTMCalc::IsValidFirstCouponDate(c.issue, c.first, c.maturity,
                                                  c.frequency, c.endOfMonth),
              c.expected);
  }
}

// A regular semi-annual bond under Actual/Actual whose settlement falls on
// a coupon date: nothing has accrued, and the next coupon is a whole period
// away.
TEST(CUDPYTMCalcTest, SettlementOnACouponDateCountsAsAfterIt) {
  Bond b;
  b.settlement = Day(2024, 3, 15);
  b.maturity = Day(2029, 3, 15);
  b.coupon = 4.0;
  CUDPYTMCalc calc;
  ASSERT_TRUE(calc.Initialize(b.Params()));
  EXPECT_STREQ(calc.GetShapeName(), "regular");
  EXPECT_EQ(calc.GetAccrued(), 0.0);
  EXPECT_EQ(calc.GetFraction(), 1.0);
  EXPECT_EQ(calc.GetPeriods(), 10);
  // At a yield equal to the coupon a bond on its coupon date is at par.
  double price = 0.0;
  ASSERT_TRUE(calc.CalcPriceFromYield(4.0, price));
  EXPECT_NEAR(price, 100.0, 1e-9);
}

// The stepping rules seen through the accrued interest of a bond maturing on
// 30 April, settled 15 November 2024 (Actual/Actual, coupon 6, C = 3).
TEST(CUDPYTMCalcTest, EndOfMonthFlagMovesThePreviousCoupon) {
  Bond b;
  b.settlement = Day(2024, 11, 15);
  b.maturity = Day(2030, 4, 30);
  b.coupon = 6.0;
  CUDPYTMCalc calc;
  b.endOfMonth = true;
  ASSERT_TRUE(calc.Initialize(b.Params()));
  // 31 Oct 2024 to 15 Nov: 15 days of a 181-day period to 30 Apr 2025.
  EXPECT_NEAR(calc.GetAccrued(), 3.0 * 15 / 181, 1e-12);
  b.endOfMonth = false;
  ASSERT_TRUE(calc.Initialize(b.Params()));
  // 30 Oct 2024 to 15 Nov: 16 days of a 182-day period.
  EXPECT_NEAR(calc.GetAccrued(), 3.0 * 16 / 182, 1e-12);
}

// Hand-worked prices. Each case gives the cash flows in periods from
// settlement as the bond's definition has them, with the day counts worked
// out in the comment; the price must match the discounted flows and the
// yield solver must give the yield back.
TEST(CUDPYTMCalcTest, PricesAndYieldsMatchHandWorkedValues) {
  struct Case {
    const char* name;
    Bond bond;
    double yield;
    std::vector<Flow> flows;
    double accrued;
  };
  std::vector<Case> cases;
  {
    // Regular, 30/360, semi-annual, coupon 4.25 (C = 2.125): previous coupon
    // 15 Feb 2024, settlement 10 Mar, next 15 Aug. A = 30 - 15 + 10 = 25,
    // DSC = 5 x 30 - 10 + 15 = 155, E = 180; 13 coupons Aug 2024..Aug 2030.
    // As the spreadsheets' PRICE with basis 0.
    Bond b;
    b.settlement = Day(2024, 3, 10);
    b.maturity = Day(2030, 8, 15);
    b.dayCount = 2;
    b.coupon = 4.25;
    cases.push_back({"30/360 regular", b, 5.1,
                     Flows(2.125, 155.0 / 180, 2.125, 12), 2.125 * 25 / 180});
  }
  {
    // Regular, Actual/360, semi-annual, coupon 3 (C = 1.5): previous coupon
    // 15 Sep 2023, settlement 10 Mar 2024, next 15 Mar. A = 177 actual days,
    // DSC = 5, E = 360 / 2 = 180; 8 coupons Mar 2024..Sep 2027. PRICE with
    // basis 2.
    Bond b;
    b.settlement = Day(2024, 3, 10);
    b.maturity = Day(2027, 9, 15);
    b.dayCount = 1;
    b.coupon = 3.0;
    cases.push_back({"Actual/360 regular", b, 7.25,
                     Flows(1.5, 5.0 / 180, 1.5, 7), 1.5 * 177 / 180});
  }
  {
    // Short first, 30/360, semi-annual, coupon 5 (C = 2.5): issue 15 Jan
    // 2024, settlement 1 Mar, first coupon 15 Jun (its previous date, 15 Dec
    // 2023, is before issue). DFC = 5 x 30 = 150, A = 2 x 30 - 15 + 1 = 46,
    // DSC = 150 - 46 = 104, E = 180; Cs = 2.5 x 150 / 180, then 11 regular
    // coupons Dec 2024..Dec 2029. As ODDFPRICE with basis 0.
    Bond b;
    b.settlement = Day(2024, 3, 1);
    b.maturity = Day(2029, 12, 15);
    b.issue = Day(2024, 1, 15);
    b.firstCoupon = Day(2024, 6, 15);
    b.optional = true;
    b.dayCount = 2;
    cases.push_back({"30/360 short first", b, 6.0,
                     Flows(2.5 * 150 / 180, 104.0 / 180, 2.5, 11),
                     2.5 * 46 / 180});
  }
  {
    // Short first, Actual/365, annual, coupon 7: issue 1 Apr 2024,
    // settlement 20 May, first coupon 1 Oct 2024, maturity 1 Oct 2031.
    // DFC = 183, A = 49, DSC = 134, E = 365; Cs = 7 x 183 / 365, then 7
    // regular coupons. ODDFPRICE with basis 3.
    Bond b;
    b.settlement = Day(2024, 5, 20);
    b.maturity = Day(2031, 10, 1);
    b.issue = Day(2024, 4, 1);
    b.firstCoupon = Day(2024, 10, 1);
    b.optional = true;
    b.frequency = 1;
    b.dayCount = 5;
    b.coupon = 7.0;
    cases.push_back({"Actual/365 short first", b, 4.5,
                     Flows(7.0 * 183 / 365, 134.0 / 365, 7.0, 7),
                     7.0 * 49 / 365});
  }
  {
    // 30/360 with the end-of-month flag, annual, maturity 28 Feb 2029,
    // settlement 29 Feb 2024, coupon 5. The calendar keeps month ends, so
    // settlement is on a coupon date: A = 0, and last of February to last
    // of February counts 12 x 30 = 360 days: DSC = E = 360. 5 coupons.
    Bond b;
    b.settlement = Day(2024, 2, 29);
    b.maturity = Day(2029, 2, 28);
    b.frequency = 1;
    b.dayCount = 2;
    b.endOfMonth = true;
    cases.push_back(
        {"30/360 February, flag on", b, 3.0, Flows(5.0, 1.0, 5.0, 4), 0.0});
    // Without the flag the calendar stays on the 28th: previous coupon 28
    // Feb 2024, A = 29 - 28 = 1, DSC = 12 x 30 - 29 + 28 = 359. The
    // spreadsheets apply the February rule regardless; here it needs the
    // flag, so this departs from their PRICE on purpose.
    b.endOfMonth = false;
    cases.push_back({"30/360 February, flag off", b, 3.0,
                     Flows(5.0, 359.0 / 360, 5.0, 4), 5.0 * 1 / 360});
  }
  {
    // One period left, 30/360, semi-annual, coupon 6 (C = 3): previous
    // coupon 15 Feb 2029, settlement 10 May, maturity 15 Aug. A = 85,
    // DSC = 95. The redemption and last coupon are discounted by compound
    // interest, (1 + y/2)^(95/180); the spreadsheets' PRICE uses simple
    // interest for a last period, so it differs here on purpose.
    Bond b;
    b.settlement = Day(2029, 5, 10);
    b.maturity = Day(2029, 8, 15);
    b.dayCount = 2;
    b.coupon = 6.0;
    cases.push_back({"last period compounded",
                     b,
                     5.0,
                     {{103.0, 95.0 / 180}},
                     3.0 * 85 / 180});
  }
  {
    // Long first period of three quasi-coupon periods with settlement in
    // the newest one, Actual/Actual, semi-annual, coupon 6 (C = 3): issue
    // 10 Jan 2024, quasi-coupon dates 15 Dec 2023, 15 Jun 2024, 15 Dec
    // 2024, first coupon 15 Jun 2025, settlement 20 Feb 2025, maturity 15
    // Jun 2030. Periods of 182 (Dec 2024 to Jun 2025), 183 and 183 days.
    // Passes, newest first:
    //   15 Dec 2024 - 15 Jun 2025 holds settlement: a = 67, g = 182;
    //   15 Jun 2024 - 15 Dec 2024 lies wholly between issue and settlement
    //     and reuses the previous pass's a = 67 and g = 182 (deliberate:
    //     the textbook value would be a = g = 183);
    //   15 Dec 2023 - 15 Jun 2024 holds issue: a = g = 157.
    // AI = 3 (67/182 + 67/183 + 157/183), Cl = 3 (182/182 + 182/183 +
    // 157/183); the long coupon is 115/182 periods away, 10 coupons follow.
    Bond b;
    b.settlement = Day(2025, 2, 20);
    b.maturity = Day(2030, 6, 15);
    b.issue = Day(2024, 1, 10);
    b.firstCoupon = Day(2025, 6, 15);
    b.optional = true;
    b.coupon = 6.0;
    const double cl = 3.0 * (1.0 + 182.0 / 183 + 157.0 / 183);
    const double ai = 3.0 * (67.0 / 182 + 67.0 / 183 + 157.0 / 183);
    cases.push_back({"long first, reused pass", b, 5.5,
                     Flows(cl, 115.0 / 182, 3.0, 10), ai});
  }
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    CUDPYTMCalc calc;
    ASSERT_TRUE(calc.Initialize(c.bond.Params()));
    const double expected =
        CleanPrice(c.flows, c.accrued, c.yield, c.bond.frequency);
    double price = 0.0;
    ASSERT_TRUE(calc.CalcPriceFromYield(c.yield, price));
    EXPECT_NEAR(price, expected, 1e-9);
    double yield = 0.0;
    ASSERT_TRUE(calc.CalcYieldToMaturity(expected, yield));
    EXPECT_NEAR(yield, c.yield, 1e-9);
  }
}

TEST(CUDPYTMCalcTest, LastPeriodIsNotSimpleInterest) {
  // The case above against the spreadsheets' simple-interest value:
  // (100 + 3) / (1 + 95/180 x 0.05/2) - 3 x 85/180.
  Bond b;
  b.settlement = Day(2029, 5, 10);
  b.maturity = Day(2029, 8, 15);
  b.dayCount = 2;
  b.coupon = 6.0;
  CUDPYTMCalc calc;
  ASSERT_TRUE(calc.Initialize(b.Params()));
  double price = 0.0;
  ASSERT_TRUE(calc.CalcPriceFromYield(5.0, price));
  const double simple = 103.0 / (1.0 + 95.0 / 180 * 0.025) - 3.0 * 85 / 180;
  EXPECT_GT(std::fabs(price - simple), 1e-4);
}

TEST(CUDPYTMCalcTest, ConversionFactorScalesPricesBothWays) {
  Bond b;
  b.settlement = Day(2024, 3, 10);
  b.maturity = Day(2030, 8, 15);
  b.dayCount = 2;
  b.coupon = 4.25;
  CUDPYTMCalc bond;
  ASSERT_TRUE(bond.Initialize(b.Params()));
  b.factor = 0.8;
  CUDPYTMCalc future;
  ASSERT_TRUE(future.Initialize(b.Params()));
  double bondPrice = 0.0;
  double futuresPrice = 0.0;
  ASSERT_TRUE(bond.CalcPriceFromYield(5.1, bondPrice));
  ASSERT_TRUE(future.CalcPriceFromYield(5.1, futuresPrice));
  EXPECT_NEAR(futuresPrice, bondPrice / 0.8, 1e-9);
  double yield = 0.0;
  ASSERT_TRUE(future.CalcYieldToMaturity(futuresPrice, yield));
  EXPECT_NEAR(yield, 5.1, 1e-9);
}

TEST(CUDPYTMCalcTest, GuardsAndFailures) {
  Bond b;
  b.settlement = Day(2024, 3, 10);
  b.maturity = Day(2030, 8, 15);
  CUDPYTMCalc calc;
  double out = 42.0;
  // Not initialised: both refuse and leave the output.
  EXPECT_FALSE(calc.CalcYieldToMaturity(100.0, out));
  EXPECT_FALSE(calc.CalcPriceFromYield(5.0, out));
  EXPECT_EQ(out, 42.0);

  ASSERT_TRUE(calc.Initialize(b.Params()));
  EXPECT_TRUE(calc.CalcYieldToMaturity(1.0, out));
  out = 42.0;
  EXPECT_FALSE(calc.CalcYieldToMaturity(0.999999, out));
  EXPECT_EQ(out, 42.0);

  // A yield of 0 makes v = 1: the formula divides by zero.
  EXPECT_FALSE(calc.CalcPriceFromYield(0.0, out));
  EXPECT_TRUE(std::isnan(out));

  // A target far above any sensible price of a monthly bond: Newton's first
  // step overshoots and the walk back is too slow for 499 steps. The
  // solver gives up and leaves the output.
  Bond monthly;
  monthly.settlement = Day(2024, 3, 15);
  monthly.maturity = Day(2030, 3, 15);
  monthly.frequency = 12;
  CUDPYTMCalc slow;
  ASSERT_TRUE(slow.Initialize(monthly.Params()));
  out = 42.0;
  EXPECT_FALSE(slow.CalcYieldToMaturity(1e8, out));
  EXPECT_EQ(out, 42.0);

  // With optional settings and only one of the two dates, no shape.
  Bond one = b;
  one.optional = true;
  one.firstCoupon = Day(2024, 8, 15);
  one.issue = UDPDateTime(1e12);
  EXPECT_FALSE(calc.Initialize(one.Params()));
  EXPECT_FALSE(calc.CalcPriceFromYield(5.0, out));
  // Without the optional flag the same dates are ignored.
  one.optional = false;
  EXPECT_TRUE(calc.Initialize(one.Params()));

  // A frequency with no whole month per period has no calendar to walk.
  Bond fast = b;
  fast.frequency = 24;
  EXPECT_FALSE(CUDPYTMCalc().Initialize(fast.Params()));
  fast.frequency = -2;
  EXPECT_FALSE(CUDPYTMCalc().Initialize(fast.Params()));

  // Dates outside the calendar's years raise its range error.
  Bond old = b;
  old.settlement = Day(1300, 1, 1);
  EXPECT_THROW(CUDPYTMCalc().Initialize(old.Params()), std::out_of_range);
}

// A failed re-initialisation zeroes the reduced terms but keeps the
// calculator answering: N = 0, C = 0, w = 0, AI = 0 leave the price
// 100 / v = 100 (1 + y/f), divided by the factor of the earlier success.
TEST(CUDPYTMCalcTest, FailedReinitialisationStillAnswers) {
  Bond b;
  b.settlement = Day(2024, 3, 10);
  b.maturity = Day(2030, 8, 15);
  b.factor = 0.5;
  CUDPYTMCalc calc;
  ASSERT_TRUE(calc.Initialize(b.Params()));
  Bond bad = b;
  bad.coupon = 0.0;
  bad.factor = 2.0;
  EXPECT_FALSE(calc.Initialize(bad.Params()));
  double price = 0.0;
  EXPECT_TRUE(calc.CalcPriceFromYield(6.0, price));
  EXPECT_NEAR(price, 100.0 * 1.03 / 0.5, 1e-9);
}

}  // namespace
