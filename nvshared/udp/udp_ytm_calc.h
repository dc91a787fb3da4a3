// CUDPYTMCalc: converts between the clean price of a bond (or of a bond
// future, through its conversion factor) and its yield to maturity, for one
// set of terms.
//
// Initialize does all the calendar work once: it walks the coupon calendar
// back from maturity, decides the bond's shape (regular, short first coupon
// or long first coupon) and reduces the terms to a handful of doubles and
// two function pointers. CalcYieldToMaturity and CalcPriceFromYield then run
// per tick from those alone: no calendar, no allocation, no test of the
// shape. The yield is found by Newton-Raphson steps on the discount factor
// v = 1 / (1 + y / f).
//
// Failure is a false result; nothing is logged and nothing is thrown, but for
// a date outside the calendar's range (years 1400 to 9999), whose
// std::out_of_range from Boost.Date_Time passes out of Initialize.
//
// Threads: no lock. After Initialize both operations only read the object,
// so several threads may use one calculator while nobody re-initialises it.
#ifndef NVSHARED_UDP_UDP_YTM_CALC_H_
#define NVSHARED_UDP_UDP_YTM_CALC_H_

#include <cstdint>

#include <boost/date_time/gregorian/gregorian_types.hpp>

#include "nvshared/export.h"
#include "nvshared/platform/utils/udp_date_time.h"
#include "nvshared/udp/udp_enums.h"

class NVSHARED_API CUDPYTMCalc {
 public:
  // The terms of one bond. The dates are borrowed for the call only.
  struct CalcParams {
    const nv_ns::UDPDateTime* m_pSettlement = nullptr;
    const nv_ns::UDPDateTime* m_pMaturity = nullptr;
    // Dated date; read only with m_bYTMOptionalSettings.
    const nv_ns::UDPDateTime* m_pIssue = nullptr;
    // Read only with m_bYTMOptionalSettings.
    const nv_ns::UDPDateTime* m_pFirstCoupon = nullptr;
    nv_ns::UDPCouponFreq m_CouponFreq = nv_ns::UDPCouponFreq::SemiAnnual;
    nv_ns::UDPDayCountType m_DayCount = nv_ns::UDPDayCountType::ActualActual;
    double m_dCoupon = 0.0;  // annual, in percent
    double m_dConvFactor = 1.0;
    // End-of-month rule of the coupon calendar and of 30/360.
    bool m_bEOMConversion = false;
    // Use the issue and first coupon dates.
    bool m_bYTMOptionalSettings = false;
  };

  // Result of ValidateValues.
  enum eValidationVal : std::int32_t {
    eValid = 0,
    eSettlementNotBeforeMaturity = 1,
    eCouponOutOfRange = 2,
    eConversionFactorOutOfRange = 3,
    eFrequencyZero = 4,
  };

  static double GetMinCouponVal() { return 0.0; }
  static double GetMaxCouponVal() { return 100.0; }
  static double GetMinConversionFactor() { return 0.1; }
  static double GetMaxConversionFactor() { return 5.0; }

  // Runs every test and returns the code of the last one that fails, so
  // frequency outranks conversion factor, which outranks coupon, which
  // outranks the dates. Both coupon bounds and a factor of 5.0 are refused.
  // A missing settlement or maturity counts as settlement not before
  // maturity.
  static eValidationVal ValidateValues(const CalcParams& params);

  // Whether the first coupon date lies on the coupon calendar counted back
  // from maturity, after the issue date: 0, or 5, 7 or 8 of
  // UDPValidationErrorCodes. A first coupon equal to maturity passes. An
  // invalid date counts as absent.
  static nv_ns::UDPValidationErrorCodes IsValidFirstCouponDate(
      const nv_ns::UDPDateTime& issue, const nv_ns::UDPDateTime& firstCoupon,
      const nv_ns::UDPDateTime& maturity, nv_ns::UDPCouponFreq freq,
      bool endOfMonth);

  CUDPYTMCalc() = default;

  // Takes new terms; true if the calculator is ready. A failed validation
  // zeroes the reduced terms but keeps the ready state and the formulas of
  // an earlier success: such a calculator still answers, from zeroed
  // values. Hosts rely on the calculator staying usable, so keep it so.
  bool Initialize(const CalcParams& params);

  // Yield in percent from a clean price (per 100 of the bond, or a futures
  // price that the conversion factor turns into one). False for a price
  // below 1.0, an uninitialised calculator, or no convergence within 499
  // steps, with `yield` untouched; false also for a NaN result, which is
  // stored.
  bool CalcYieldToMaturity(double price, double& yield) const;

  // Clean price from a yield in percent, divided by the conversion factor.
  // False for an uninitialised calculator or a zero factor, with `price`
  // untouched; false also for a NaN result (a yield of 0 makes the
  // formulas divide by zero), which is stored.
  bool CalcPriceFromYield(double yield, double& price) const;

  // The reduced terms, for display and diagnostics.
  std::int32_t GetPeriods() const { return m_iPeriods; }
  double GetPeriodCoupon() const { return m_dPeriodCoupon; }
  double GetAccrued() const { return m_dAccrued; }
  double GetFraction() const { return m_dFraction; }
  double GetLongCoupon() const { return m_dLongCoupon; }
  double GetShortCoupon() const { return m_dShortCoupon; }
  bool IsInitialized() const { return m_bInitialized; }
  // "regular", "short first" or "long first"; "none" before a success.
  const char* GetShapeName() const;

 private:
  friend struct CUDPYTMCalcFormulas;
  using YieldFn = bool (*)(const CUDPYTMCalc&, double target, double& yield);
  using PriceFn = bool (*)(const CUDPYTMCalc&, double y, double& price);

  void SetUpRegular();
  void SetUpShortFirst();
  void SetUpLongFirst();

  static bool PriceRegular(const CUDPYTMCalc& c, double y, double& price);
  static bool PriceShortFirst(const CUDPYTMCalc& c, double y, double& price);
  static bool PriceLongFirst(const CUDPYTMCalc& c, double y, double& price);
  static bool YieldRegular(const CUDPYTMCalc& c, double target, double& yield);
  static bool YieldShortFirst(const CUDPYTMCalc& c, double target,
                              double& yield);
  static bool YieldLongFirst(const CUDPYTMCalc& c, double target,
                             double& yield);

  std::int32_t m_iPeriods = 0;   // N
  double m_dPeriodCoupon = 0.0;  // C
  double m_dAccrued = 0.0;       // AI
  double m_dFraction = 0.0;      // w
  double m_dStartFactor = 0.0;   // vs
  double m_dLongCoupon = 0.0;    // Cl
  double m_dShortCoupon = 0.0;   // Cs
  boost::gregorian::date m_dateSettlement;
  boost::gregorian::date m_dateMaturity;
  boost::gregorian::date m_dateIssue;
  boost::gregorian::date m_dateFirstCoupon;
  std::int32_t m_iFrequency = 1;
  std::int32_t m_iDayCount = 0;
  double m_dCoupon = 0.0;      // c
  double m_dCouponRate = 0.0;  // r = c / 100
  std::int32_t m_iMonthsPerPeriod = 12;
  double m_dConvFactor = 0.0;  // k
  bool m_bEndOfMonth = false;
  bool m_bInitialized = false;
  YieldFn m_pfnYield = nullptr;
  PriceFn m_pfnPrice = nullptr;
};

#endif  // NVSHARED_UDP_UDP_YTM_CALC_H_
