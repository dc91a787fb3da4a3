// Limits of a trader: LimitInfo (one limit), ProductLimitInfo (a row of a
// gateway and product, with one limit per risk product type), the risk
// product types with their names, and the mappings from core product types.
// TraderInfo (trader_info.h) stores the rows and looks them up.
//
// Values; no locks. Concurrent readers are safe.
#ifndef NVSHARED_RISK_LIMIT_INFO_H_
#define NVSHARED_RISK_LIMIT_INFO_H_

#include <cstdint>
#include <string>

#include "nvshared/export.h"
#include "nvshared/platform/core/agile_enums.h"

namespace nv_ns {

struct RiskProductTypes {
  enum Enum : std::int32_t {
    NONE = -1,
    FUTURE = 0,
    SPREAD = 1,
    OPTION = 2,
    STRATEGY = 3,
    ENERGY = 4,
    BOND = 5,
    FOREX = 6,
    STOCK = 7,
    SWAP = 8,
    WARRANT = 9,
    NDFORWARD = 10,
  };
  static constexpr int kCount = 11;
};

// One limit. The numbers and the flag are the host's; m_isSet non-zero
// means the limit exists.
struct NVSHARED_API LimitInfo {
  std::int32_t m_values[4] = {0, 0, 0, 0};
  std::uint8_t m_flag = 0;
  std::uint8_t m_isSet = 0;

  LimitInfo() = default;
  LimitInfo(const LimitInfo&) = default;
  LimitInfo& operator=(const LimitInfo&) = default;
  // Zero in all fields.
  void Clear();
};

// A row of limits for a gateway and a product ("*" for the gateway's
// wildcard row).
struct NVSHARED_API ProductLimitInfo {
  std::int32_t m_gatewayId = -1;
  std::string m_productName;
  // Indexed by RiskProductTypes::Enum.
  LimitInfo m_limits[RiskProductTypes::kCount];

  ProductLimitInfo() = default;
  ProductLimitInfo(const ProductLimitInfo&) = default;
  ProductLimitInfo& operator=(const ProductLimitInfo&) = default;
  ~ProductLimitInfo() = default;

  // Gateway -1, no product, and no limit set. The numbers of the limits
  // stay as they were: nothing reads a limit that is not set.
  void Clear();
};

// "FUTURE" ... "NDFORWARD"; "INVALID" for -1 and any other value.
NVSHARED_API const char* GetRiskProductTypeName(const RiskProductTypes::Enum&);
// The risk type of a core product type; -1 for types without one (0,
// LEGWISE and everything from CFD up included).
NVSHARED_API RiskProductTypes::Enum GetRiskProductType(
    const dv_core_ns::AEnum_ProdIDs&);
// The risk type related to a product type: SPREAD for FUTURE and ENERGY,
// STRATEGY for OPTION, -1 for all others. FOREX has none, on purpose.
NVSHARED_API RiskProductTypes::Enum GetRiskRelatedProductType(
    const dv_core_ns::AEnum_ProdIDs&);

}  // namespace nv_ns

#endif  // NVSHARED_RISK_LIMIT_INFO_H_
