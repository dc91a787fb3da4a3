// The compiled market table (106 rows, id -1 to 104) and the names of the
// spread and strategy types (SeriesCombCodesEnum). Constant data; thread-safe.
#ifndef NVSHARED_PLATFORM_CORE_MARKET_TABLE_H_
#define NVSHARED_PLATFORM_CORE_MARKET_TABLE_H_

#include <cstdint>
#include <span>
#include <string_view>

#include "nvshared/export.h"

namespace dv_core_ns {

struct MarketRow {
  int id;
  const char* name;
};

// Every row in id order, from -1 DV_INVALID_MARKET_ID to 104 SGX_OTC.
NVSHARED_API std::span<const MarketRow> MarketTable();
// The name of a market id; null for an id outside the table.
NVSHARED_API const char* MarketTableName(int marketId);
// The id of a market name, compared with case; -1 if there is none.
NVSHARED_API int MarketTableId(std::string_view name);

// The spread or strategy type. The logic tests the named values; every value
// from 500 to 586 has a name, given by CombCodeName.
enum SeriesCombCodesEnum : std::int16_t {
  COMB_CODE_NONE = 500,
  COMB_CODE_COMBO = 508,
  COMB_CODE_SPREAD = 539,
  COMB_CODE_CUSTOM_MARKET = 552,
  COMB_CODE_COVERED = 553,
  COMB_CODE_NON_STANDARD_COMBINATION = 582,
  COMB_CODE_CUSTOM_CARRY = 585,
  COMB_CODE_FIRST = 500,
  COMB_CODE_LAST = 586,
};

// The name of a spread type ("Calendar" for 516); "" for 500 (none) and for
// values outside 500..586.
NVSHARED_API const char* CombCodeName(int combCode);

}  // namespace dv_core_ns

namespace dv_agileenum_ns {

// The compile-time agile enumeration around an enum with a name table.
template <typename E>
class CompileTimeAgileEnumEx;

template <>
class CompileTimeAgileEnumEx<dv_core_ns::SeriesCombCodesEnum> {
 public:
  CompileTimeAgileEnumEx() = default;
  CompileTimeAgileEnumEx(dv_core_ns::SeriesCombCodesEnum v)  // NOLINT
      : value_(v) {}
  CompileTimeAgileEnumEx(int v)  // NOLINT: implicit
      : value_(static_cast<std::int16_t>(v)) {}
  operator int() const { return value_; }  // NOLINT: implicit by design
  bool operator==(const CompileTimeAgileEnumEx& o) const {
    return value_ == o.value_;
  }
  bool operator==(dv_core_ns::SeriesCombCodesEnum e) const {
    return value_ == e;
  }
  const char* Enum2Str() const { return dv_core_ns::CombCodeName(value_); }

 private:
  std::int16_t value_ = dv_core_ns::COMB_CODE_NONE;
};

}  // namespace dv_agileenum_ns

#endif  // NVSHARED_PLATFORM_CORE_MARKET_TABLE_H_
