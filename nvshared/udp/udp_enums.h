// The numbers that describe a price column and a bond's terms, and their
// display names: nv_ns::UDPPriceType, UDPExchPriceType, UDPNetChangeType,
// UDPYieldType, UDPDayCountType, UDPCouponFreq, UDPValidationErrorCodes.
//
// Each is a small structure over one int32, passed by value. It converts
// from and to int32 so that a stored number outside the named values is
// kept as it is; such a value displays as "Invalid".
//
// The name lookups are static members of nv_ns::UDPEnumNames. The price
// settings record derives from that structure, which makes them its own
// static members too. The names are constant strings that live as long as
// the process. Values and lookups are safe from any thread.
#ifndef NVSHARED_UDP_UDP_ENUMS_H_
#define NVSHARED_UDP_UDP_ENUMS_H_

#include <cstdint>
#include <string>

#include "nvshared/export.h"

namespace nv_ns {

// Defines the storage and the conversions that every enumeration shares.
#define NVSHARED_UDP_ENUM_BODY(Type)                                        \
  constexpr Type() = default;                                               \
  constexpr Type(std::int32_t v) : m_iValue(v) {} /* NOLINT: implicit */    \
  constexpr operator std::int32_t() const { return m_iValue; } /* NOLINT */ \
  std::int32_t m_iValue = 0

// The kind of price a column shows.
struct UDPPriceType {
  enum Value : std::int32_t {
    NetChange = 1,
    Yield = 2,
    YieldToMaturity = 3,
    CustomModel = 4,
    ExchangePrice = 5,
    ParRate = 6,
  };
  NVSHARED_UDP_ENUM_BODY(UDPPriceType);
};

// How an exchange price is displayed.
struct UDPExchPriceType {
  enum Value : std::int32_t { Ticks = 0, Decimal = 1, OneOverPrice = 2 };
  NVSHARED_UDP_ENUM_BODY(UDPExchPriceType);
};

// How a net change is displayed.
struct UDPNetChangeType {
  enum Value : std::int32_t { Native = 0, Ticks = 1, Decimal = 2 };
  NVSHARED_UDP_ENUM_BODY(UDPNetChangeType);
};

// The rule that turns a price into a simple yield.
struct UDPYieldType {
  enum Value : std::int32_t {
    NoConversion = 1,
    HundredMinusPrice = 2,
    TenThousandMinusPrice = 3,
    TenThousandMinusPriceAndStripBase = 4,
    HundredThousandMinusPrice = 5,
  };
  NVSHARED_UDP_ENUM_BODY(UDPYieldType);
};

// The day count of a bond's coupons.
struct UDPDayCountType {
  enum Value : std::int32_t {
    ActualActual = 0,
    Actual360 = 1,
    Thirty360 = 2,
    Thirty365 = 3,
    ThirtyE360 = 4,
    Actual365 = 5,
  };
  NVSHARED_UDP_ENUM_BODY(UDPDayCountType);
};

// Coupons a year.
struct UDPCouponFreq {
  enum Value : std::int32_t {
    Annual = 1,
    SemiAnnual = 2,
    Quarterly = 4,
    Monthly = 12,
  };
  NVSHARED_UDP_ENUM_BODY(UDPCouponFreq);
};

// Result of checking a bond's terms; 0 is valid.
struct UDPValidationErrorCodes {
  enum Value : std::int32_t {
    Valid = 0,
    // Settlement not before maturity, or not after the current time.
    SettlementDate = 1,
    ConversionFactor = 2,
    IssueDateInvalid = 3,
    IssueDateNotBeforeFirstCoupon = 4,
    // First coupon date not valid, or exactly one of first coupon and issue
    // date absent.
    FirstCouponDateInvalid = 5,
    FirstCouponDateNotBeforeMaturity = 6,
    FirstCouponDateOutsideIssueToMaturity = 7,
    FirstCouponDateOffCalendar = 8,
  };
  NVSHARED_UDP_ENUM_BODY(UDPValidationErrorCodes);
};

#undef NVSHARED_UDP_ENUM_BODY

// The display names. Each returns "Invalid" for a value outside its table.
struct NVSHARED_API UDPEnumNames {
  // Empty for 2, 4 and 5: this overload deliberately does not name them
  // (columns of those types show other texts).
  static const std::string& GetPriceTypeName(UDPPriceType type);
  // Names 2 "Yield" and 5 "Exchange Price" too; 4 stays empty, for a custom
  // model is shown under its own name.
  static const std::string& GetPriceTypeNameEx(UDPPriceType type);
  static const std::string& GetPriceTypeName(UDPExchPriceType type);
  static const std::string& GetPriceTypeName(UDPNetChangeType type);
  static const std::string& GetPriceTypeName(UDPYieldType type);
  static const std::string& GetCouponFreqString(UDPCouponFreq freq);
  static const std::string& GetDayCountTypeString(UDPDayCountType type);
};

}  // namespace nv_ns

#endif  // NVSHARED_UDP_UDP_ENUMS_H_
