// dv_core_ns::ProdID (one product) and dv_core_ns::SeriesID (one tradable
// contract of a product), with their fields in the core library's declared
// order. Values: copies are deep, and a shared object is never changed.
#ifndef NVSHARED_PLATFORM_CORE_IDS_H_
#define NVSHARED_PLATFORM_CORE_IDS_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "nvshared/export.h"
#include "nvshared/platform/core/agile_enums.h"
#include "nvshared/platform/core/char_ptr_wrapper.h"
#include "nvshared/platform/core/core_class.h"
#include "nvshared/platform/core/date_time.h"

namespace dv_core_ns {

// Capacity of the product-name and series-key arrays, NUL included.
inline constexpr std::size_t kProductNameSize = 32;
inline constexpr std::size_t kSeriesKeySize = 64;

class NVSHARED_API ProdID : public CoreClass {
 public:
  // The exchange (flavour) that lists the product.
  AEnum_ExchIds exchange;
  AEnum_ProdIDs productType;
  // The exchange's product code, NUL-terminated.
  char productName[kProductNameSize] = {};

  ProdID() = default;
  ProdID(int exchangeId, int type, std::string_view name);
  ProdID(const ProdID&) = default;
  ProdID& operator=(const ProdID&) = default;
  ~ProdID() override;

  // Copies `name`, cut to the array. False if it had to be cut.
  bool SetProductName(std::string_view name);

  // All three fields; flavours of one exchange are different products.
  bool operator==(const ProdID& o) const;
  bool operator!=(const ProdID& o) const { return !(*this == o); }
};

class NVSHARED_API SeriesID : public CoreClass {
 public:
  // An option's strike is in units of 1/strikeDivisor.
  std::int32_t strikeDivisor = 1;
  // Digits behind the point when a strike is printed.
  std::int32_t strikeDecimals = 0;
  // For an option, 1 marks a series whose legs bring their own strikes.
  std::int32_t strike = 0;
  // SeriesCombCodesEnum; meaningful for spreads and strategies.
  std::int16_t combCode = 500;
  // 'C' Call, 'P' Put, 'M' Misc, 'X' Unknown.
  char callPut = 'X';
  // '0' and ' ' mean none; otherwise it precedes an option's month.
  char versionCode = '0';
  // The date by which names are printed and series ordered.
  Date expiry;
  // The contract's own second date.
  Date contractExpiry;
  // The exchange-unique key, NUL-terminated.
  char seriesKey[kSeriesKeySize] = {};
  ProdID product;
  // The exchange's own name of the series; may be absent or empty.
  dv_coreutils_ns::CharPtrWrapper seriesName;
  // Comma-separated attributes.
  dv_coreutils_ns::CharPtrWrapper seriesAttributes;

  SeriesID() = default;
  SeriesID(const SeriesID&) = default;
  SeriesID& operator=(const SeriesID&) = default;
  ~SeriesID() override;

  // Copies `key`, cut to the array. False if it had to be cut.
  bool SetSeriesKey(std::string_view key);

  // Spread or strategy: product type 2 or 4.
  bool IsSpreadOrStrategy() const {
    return productType() == SPREAD || productType() == STRATEGY;
  }
  int productType() const { return product.productType; }

  // The identifying fields: product, key, dates, strike and its divisor,
  // call/put, version and spread type. Names and attributes do not count.
  bool operator==(const SeriesID& o) const;
  bool operator!=(const SeriesID& o) const { return !(*this == o); }
};

}  // namespace dv_core_ns

#endif  // NVSHARED_PLATFORM_CORE_IDS_H_
