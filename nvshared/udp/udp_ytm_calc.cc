#include "nvshared/udp/udp_ytm_calc.h"

#include <cmath>
#include <cstdint>

#include "nvshared/udp/internal/coupon_calendar.h"

namespace {

using boost::gregorian::date;
using nv_ns::udp_internal::DayCount;
using nv_ns::udp_internal::PeriodBasis;
using nv_ns::udp_internal::StepBack;

constexpr int kMaxIterations = 499;
constexpr double kTolerance = 5e-8;

// x^n by repeated squaring over the bits of |n|. Not interchangeable with
// std::pow at the last bits, and the prices depend on which is used where.
inline double IntPow(double x, std::int32_t n) {
  std::uint32_t bits = n < 0 ? 0u - static_cast<std::uint32_t>(n)
                             : static_cast<std::uint32_t>(n);
  double result = 1.0;
  double base = x;
  while (bits != 0) {
    if (bits & 1u) result *= base;
    base *= base;
    bits >>= 1;
  }
  return n < 0 ? 1.0 / result : result;
}

inline double Square(double x) { return IntPow(x, 2); }

}  // namespace

// Price and derivative of each shape as functions of the discount factor
// v = 1 / (1 + y / f), with p = v^N, u = v - 1 and W = v^w. Each cash flow
// is discounted by a power of v: the first at w periods, the others a whole
// period apart.
struct CUDPYTMCalcFormulas {
  // Regular: N coupons C from w periods on, redemption with the last.
  static double PriceRegular(const CUDPYTMCalc& c, double v) {
    const double p = IntPow(v, c.m_iPeriods);
    return std::pow(v, c.m_dFraction) *
               (c.m_dPeriodCoupon * (p - 1.0) / (v - 1.0) + 100.0 * p / v) -
           c.m_dAccrued;
  }
  static double SlopeRegular(const CUDPYTMCalc& c, double v) {
    const double n = c.m_iPeriods;
    const double w = c.m_dFraction;
    const double p = IntPow(v, c.m_iPeriods);
    const double u = v - 1.0;
    return std::pow(v, w) * ((((n + w) * p / v - w / v) * u - (p - 1.0)) *
                                 c.m_dPeriodCoupon / Square(u) +
                             (n - 1.0 + w) * 100.0 * p / v / v);
  }

  // Short first: the short coupon Cs at w periods, then N - 1 regular ones.
  static double PriceShortFirst(const CUDPYTMCalc& c, double v) {
    const double p = IntPow(v, c.m_iPeriods);
    return std::pow(v, c.m_dFraction) *
               (c.m_dPeriodCoupon * ((p - 1.0) / (v - 1.0) - 1.0) +
                100.0 * p / v + c.m_dShortCoupon) -
           c.m_dAccrued;
  }
  static double SlopeShortFirst(const CUDPYTMCalc& c, double v) {
    const double n = c.m_iPeriods;
    const double w = c.m_dFraction;
    const double p = IntPow(v, c.m_iPeriods);
    const double u = v - 1.0;
    return std::pow(v, w) *
           ((n - 1.0 + w) * 100.0 * p / (v * v) + w * c.m_dShortCoupon / v +
            ((((n + w) * p / v - w / v) * u - (p - 1.0)) / Square(u) - w / v) *
                c.m_dPeriodCoupon);
  }

  // Long first: the long coupon Cl at w periods, then N regular ones.
  static double PriceLongFirst(const CUDPYTMCalc& c, double v) {
    const double p = IntPow(v, c.m_iPeriods);
    return std::pow(v, c.m_dFraction) *
               (c.m_dPeriodCoupon * (p - 1.0) * v / (v - 1.0) + 100.0 * p +
                c.m_dLongCoupon) -
           c.m_dAccrued;
  }
  static double SlopeLongFirst(const CUDPYTMCalc& c, double v) {
    const double n = c.m_iPeriods;
    const double w = c.m_dFraction;
    const double p = IntPow(v, c.m_iPeriods);
    const double u = v - 1.0;
    return std::pow(v, w) *
           ((((n + w + 1.0) * p - w - 1.0) * u - (p - 1.0) * v) *
                c.m_dPeriodCoupon / Square(u) +
            (n + w) * 100.0 * p / v + w * c.m_dLongCoupon / v);
  }

  template <double (*Price)(const CUDPYTMCalc&, double)>
  static bool PriceAt(const CUDPYTMCalc& c, double y, double& price) {
    price = Price(c, 1.0 / (y / c.m_iFrequency + 1.0));
    return !std::isnan(price);
  }

  // Newton-Raphson on v from the start factor. Converged when a step moves v
  // by no more than the tolerance; a NaN step ends the loop as well and
  // gives a NaN yield.
  template <double (*Price)(const CUDPYTMCalc&, double),
            double (*Slope)(const CUDPYTMCalc&, double)>
  static bool Solve(const CUDPYTMCalc& c, double target, double& yield) {
    double v = c.m_dStartFactor;
    for (int i = 1; i <= kMaxIterations; ++i) {
      const double next = v - (Price(c, v) - target) / Slope(c, v);
      if (!(std::fabs(v - next) > kTolerance)) {
        yield = (1.0 / next - 1.0) * c.m_iFrequency * 100.0;
        return !std::isnan(yield);
      }
      v = next;
    }
    return false;
  }
};

bool CUDPYTMCalc::PriceRegular(const CUDPYTMCalc& c, double y, double& price) {
  return CUDPYTMCalcFormulas::PriceAt<CUDPYTMCalcFormulas::PriceRegular>(c, y,
                                                                         price);
}
bool CUDPYTMCalc::PriceShortFirst(const CUDPYTMCalc& c, double y,
                                  double& price) {
  return CUDPYTMCalcFormulas::PriceAt<CUDPYTMCalcFormulas::PriceShortFirst>(
      c, y, price);
}
bool CUDPYTMCalc::PriceLongFirst(const CUDPYTMCalc& c, double y,
                                 double& price) {
  return CUDPYTMCalcFormulas::PriceAt<CUDPYTMCalcFormulas::PriceLongFirst>(
      c, y, price);
}
bool CUDPYTMCalc::YieldRegular(const CUDPYTMCalc& c, double target,
                               double& yield) {
  return CUDPYTMCalcFormulas::Solve<CUDPYTMCalcFormulas::PriceRegular,
                                    CUDPYTMCalcFormulas::SlopeRegular>(
      c, target, yield);
}
bool CUDPYTMCalc::YieldShortFirst(const CUDPYTMCalc& c, double target,
                                  double& yield) {
  return CUDPYTMCalcFormulas::Solve<CUDPYTMCalcFormulas::PriceShortFirst,
                                    CUDPYTMCalcFormulas::SlopeShortFirst>(
      c, target, yield);
}
bool CUDPYTMCalc::YieldLongFirst(const CUDPYTMCalc& c, double target,
                                 double& yield) {
  return CUDPYTMCalcFormulas::Solve<CUDPYTMCalcFormulas::PriceLongFirst,
                                    CUDPYTMCalcFormulas::SlopeLongFirst>(
      c, target, yield);
}

CUDPYTMCalc::eValidationVal CUDPYTMCalc::ValidateValues(
    const CalcParams& params) {
  eValidationVal result = eValid;
  if (params.m_pSettlement == nullptr || params.m_pMaturity == nullptr ||
      !(*params.m_pSettlement < *params.m_pMaturity)) {
    result = eSettlementNotBeforeMaturity;
  }
  if (params.m_dCoupon <= GetMinCouponVal() ||
      params.m_dCoupon >= GetMaxCouponVal()) {
    result = eCouponOutOfRange;
  }
  // 5.0 itself is refused here, although the price settings accept it; the
  // two checks differ on purpose.
  if (params.m_dConvFactor < GetMinConversionFactor() ||
      params.m_dConvFactor >= GetMaxConversionFactor()) {
    result = eConversionFactorOutOfRange;
  }
  if (params.m_CouponFreq == 0) result = eFrequencyZero;
  return result;
}

nv_ns::UDPValidationErrorCodes CUDPYTMCalc::IsValidFirstCouponDate(
    const nv_ns::UDPDateTime& issue, const nv_ns::UDPDateTime& firstCoupon,
    const nv_ns::UDPDateTime& maturity, nv_ns::UDPCouponFreq freq,
    bool endOfMonth) {
  using nv_ns::udp_internal::ToCalendarDate;
  auto optional = [](const nv_ns::UDPDateTime& d) {
    return d.GetStatus() == nv_ns::UDPDateTime::valid ? ToCalendarDate(d)
                                                      : date();
  };
  // A zero frequency has no periods; rather than divide by it, the check
  // finds no calendar for the first coupon to lie on.
  const int months = freq == 0 ? 0 : 12 / freq;
  return nv_ns::udp_internal::CheckFirstCoupon(
      optional(issue), optional(firstCoupon), ToCalendarDate(maturity), months,
      endOfMonth);
}

bool CUDPYTMCalc::Initialize(const CalcParams& params) {
  using nv_ns::udp_internal::CheckFirstCoupon;
  using nv_ns::udp_internal::ToCalendarDate;

  m_dateIssue = date();
  m_dateFirstCoupon = date();
  m_iPeriods = 0;
  m_dPeriodCoupon = m_dAccrued = m_dFraction = m_dStartFactor = 0.0;
  m_dLongCoupon = m_dShortCoupon = 0.0;

  // The ready state and the formulas of an earlier success stay on purpose.
  if (ValidateValues(params) != eValid) return false;
  // A frequency above 12 or below 0 gives periods of no whole month, whose
  // calendar walks would never end: refused like the terms above.
  if (params.m_CouponFreq < 0 || 12 / params.m_CouponFreq <= 0) return false;

  m_dateSettlement = ToCalendarDate(*params.m_pSettlement);
  m_dateMaturity = ToCalendarDate(*params.m_pMaturity);
  if (params.m_bYTMOptionalSettings) {
    if (params.m_pIssue != nullptr &&
        params.m_pIssue->GetStatus() == nv_ns::UDPDateTime::valid) {
      m_dateIssue = ToCalendarDate(*params.m_pIssue);
    }
    if (params.m_pFirstCoupon != nullptr &&
        params.m_pFirstCoupon->GetStatus() == nv_ns::UDPDateTime::valid) {
      m_dateFirstCoupon = ToCalendarDate(*params.m_pFirstCoupon);
    }
  }

  m_iFrequency = params.m_CouponFreq;
  m_iDayCount = params.m_DayCount;
  m_dCoupon = params.m_dCoupon;
  m_dConvFactor = params.m_dConvFactor;
  m_bEndOfMonth = params.m_bEOMConversion;
  m_dCouponRate = m_dCoupon / 100.0;
  m_iMonthsPerPeriod = 12 / m_iFrequency;

  if (m_dateIssue.is_not_a_date() && m_dateFirstCoupon.is_not_a_date()) {
    SetUpRegular();
  } else if (CheckFirstCoupon(m_dateIssue, m_dateFirstCoupon, m_dateMaturity,
                              m_iMonthsPerPeriod, m_bEndOfMonth) != 0) {
    m_bInitialized = false;
    return false;
  } else if (m_dateSettlement < m_dateFirstCoupon) {
    const date previous = StepBack(m_dateFirstCoupon, m_dateFirstCoupon,
                                   m_iMonthsPerPeriod, m_bEndOfMonth);
    if (m_dateIssue < previous) {
      SetUpLongFirst();
    } else {
      SetUpShortFirst();
    }
  } else {
    // Past its first coupon a bond is regular.
    SetUpRegular();
  }
  m_bInitialized = true;
  return true;
}

void CUDPYTMCalc::SetUpRegular() {
  const date& s = m_dateSettlement;
  date x = m_dateMaturity;
  date next;
  m_iPeriods = 0;
  do {
    ++m_iPeriods;
    next = x;
    x = StepBack(x, m_dateMaturity, m_iMonthsPerPeriod, m_bEndOfMonth);
  } while (s < x);
  // x is the last coupon date on or before settlement.
  const double basis = PeriodBasis(x, next, m_iDayCount, m_iFrequency);
  m_dPeriodCoupon = m_dCouponRate * 100.0 / m_iFrequency;
  m_dFraction = DayCount(s, next, m_iDayCount, m_bEndOfMonth) / basis;
  m_dAccrued =
      DayCount(x, s, m_iDayCount, m_bEndOfMonth) * m_dPeriodCoupon / basis;
  m_dStartFactor = 1.0 / (m_dCouponRate / m_iFrequency + 1.0);
  m_pfnYield = &YieldRegular;
  m_pfnPrice = &PriceRegular;
}

void CUDPYTMCalc::SetUpShortFirst() {
  const date& s = m_dateSettlement;
  date x = m_dateMaturity;
  m_iPeriods = 0;
  do {
    ++m_iPeriods;
    x = StepBack(x, m_dateMaturity, m_iMonthsPerPeriod, m_bEndOfMonth);
  } while (s < x);
  const double basis =
      PeriodBasis(x, m_dateFirstCoupon, m_iDayCount, m_iFrequency);
  const double toFirst =
      DayCount(m_dateIssue, m_dateFirstCoupon, m_iDayCount, m_bEndOfMonth);
  const double accrued = DayCount(m_dateIssue, s, m_iDayCount, m_bEndOfMonth);
  m_dPeriodCoupon = m_dCoupon / m_iFrequency;
  m_dShortCoupon = toFirst / basis * m_dPeriodCoupon;
  m_dFraction = (toFirst - accrued) / basis;
  m_dAccrued = accrued * m_dPeriodCoupon / basis;
  m_dStartFactor = 1.0 / (m_dCouponRate / m_iFrequency + 1.0);
  m_pfnYield = &YieldShortFirst;
  m_pfnPrice = &PriceShortFirst;
}

void CUDPYTMCalc::SetUpLongFirst() {
  const date& s = m_dateSettlement;
  const date& d = m_dateIssue;
  const date& f = m_dateFirstCoupon;
  const date& m = m_dateMaturity;
  const int months = m_iMonthsPerPeriod;
  auto days = [this](const date& a, const date& b) {
    return DayCount(a, b, m_iDayCount, m_bEndOfMonth);
  };

  // Regular coupons after the first.
  date x = m;
  m_iPeriods = 0;
  do {
    ++m_iPeriods;
    x = StepBack(x, m, months, m_bEndOfMonth);
  } while (f < x);

  // The quasi-coupon period that holds settlement, and how many whole ones
  // lie between it and the first coupon.
  x = f;
  date next;
  int quasi = 0;
  do {
    ++quasi;
    next = x;
    x = StepBack(x, m, months, m_bEndOfMonth);
  } while (s < x);
  m_dFraction =
      days(s, next) / PeriodBasis(x, next, m_iDayCount, m_iFrequency) +
      (quasi - 1);
  m_dPeriodCoupon = m_dCoupon / m_iFrequency;

  // The quasi-periods of the long first period, newest first. `accrued` and
  // `full` carry over from one pass to the next: a whole quasi-period after
  // the issue date and wholly before settlement adds the previous pass's
  // days again, not its own length. That is deliberate (prices must match
  // those computed elsewhere from the same terms); only long periods of
  // three or more quasi-periods reach it.
  m_dAccrued = 0.0;
  m_dLongCoupon = 0.0;
  std::int32_t accrued = 0;
  std::int32_t full = 0;
  date end = f;
  date start;
  do {
    start = StepBack(end, m, months, m_bEndOfMonth);
    const double basis = PeriodBasis(start, end, m_iDayCount, m_iFrequency);
    if (start > d && s < start) {
      full = days(start, end);
    } else if (start <= d && d < end && end <= s) {
      accrued = full = days(d, end);
    } else if (start <= d && d < end && s < end) {
      accrued = days(d, s);
      full = days(d, end);
    } else if (d < start && start <= s && s < end) {
      accrued = days(start, s);
      full = days(start, end);
    }
    m_dAccrued += accrued * m_dPeriodCoupon / basis;
    m_dLongCoupon += full * m_dPeriodCoupon / basis;
    end = start;
  } while (d < start);

  m_dStartFactor = 1.0 / (m_dCouponRate / m_iFrequency + 1.0);
  m_pfnYield = &YieldLongFirst;
  m_pfnPrice = &PriceLongFirst;
}

bool CUDPYTMCalc::CalcYieldToMaturity(double price, double& yield) const {
  if (!m_bInitialized || m_pfnYield == nullptr || price < 1.0) return false;
  return m_pfnYield(*this, price * m_dConvFactor, yield);
}

bool CUDPYTMCalc::CalcPriceFromYield(double yield, double& price) const {
  if (!m_bInitialized || m_pfnYield == nullptr || m_pfnPrice == nullptr ||
      m_dConvFactor == 0.0) {
    return false;
  }
  double bondPrice = 0.0;
  const bool ok = m_pfnPrice(*this, yield / 100.0, bondPrice);
  price = bondPrice / m_dConvFactor;
  return ok;
}

const char* CUDPYTMCalc::GetShapeName() const {
  if (m_pfnPrice == &PriceRegular) return "regular";
  if (m_pfnPrice == &PriceShortFirst) return "short first";
  if (m_pfnPrice == &PriceLongFirst) return "long first";
  return "none";
}
