// The terms of one bond for tests of the yield calculator, with dates
// written as yyyymmdd. The struct owns its dates; the CalcParams it hands
// out point at them and live no longer than it. Not shared between threads.
#ifndef NVSHARED_TESTING_BOND_TERMS_H_
#define NVSHARED_TESTING_BOND_TERMS_H_

#include "nvshared/platform/utils/udp_date_time.h"
#include "nvshared/udp/udp_ytm_calc.h"

namespace nvshared::testing {

// 20240310 gives 10 March 2024 at midnight.
inline nv_ns::UDPDateTime Ymd(int ymd) {
  return nv_ns::UDPDateTime(ymd / 10000, ymd / 100 % 100, ymd % 100, 0, 0, 0);
}

struct BondTerms {
  nv_ns::UDPDateTime settlement, maturity, issue, firstCoupon;
  int frequency = 2;
  int dayCount = 0;
  double coupon = 5.0;
  double factor = 1.0;
  bool endOfMonth = false;
  bool optional = false;

  // A regular bond: no issue or first coupon date in use.
  static BondTerms Make(int settleYmd, int maturityYmd, double coupon = 5.0,
                        int dayCount = 0, int frequency = 2) {
    BondTerms b;
    b.settlement = Ymd(settleYmd);
    b.maturity = Ymd(maturityYmd);
    b.coupon = coupon;
    b.dayCount = dayCount;
    b.frequency = frequency;
    return b;
  }

  // An odd first period: the issue and first coupon dates, and the flag
  // that makes the calculator read them.
  BondTerms& FirstPeriod(int issueYmd, int firstCouponYmd) {
    issue = Ymd(issueYmd);
    firstCoupon = Ymd(firstCouponYmd);
    optional = true;
    return *this;
  }

  CUDPYTMCalc::CalcParams Params() const {
    CUDPYTMCalc::CalcParams p;
    p.m_pSettlement = &settlement;
    p.m_pMaturity = &maturity;
    p.m_pIssue = &issue;
    p.m_pFirstCoupon = &firstCoupon;
    p.m_CouponFreq = nv_ns::UDPCouponFreq(frequency);
    p.m_DayCount = nv_ns::UDPDayCountType(dayCount);
    p.m_dCoupon = coupon;
    p.m_dConvFactor = factor;
    p.m_bEOMConversion = endOfMonth;
    p.m_bYTMOptionalSettings = optional;
    return p;
  }
};

}  // namespace nvshared::testing

#endif  // NVSHARED_TESTING_BOND_TERMS_H_
