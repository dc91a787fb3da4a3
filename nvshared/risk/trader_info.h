// nv_ns::TraderInfo: a trader with its member, group and trader triple and
// its limits. Limits are kept per gateway and product, under the key
// "<gateway>;<product>", with a wildcard row "<gateway>;*" per gateway that
// answers for every product not named. Keys compare byte for byte, so
// product names are matched exactly, case included.
//
// A value; no locks. GetLimit is const and safe for concurrent readers while
// nobody calls AddLimit or Clear.
#ifndef NVSHARED_RISK_TRADER_INFO_H_
#define NVSHARED_RISK_TRADER_INFO_H_

#include <cstdint>
#include <map>
#include <string>

#include "nvshared/export.h"
#include "nvshared/risk/limit_info.h"
#include "nvshared/risk/mgt_info.h"

namespace nv_ns {

class NVSHARED_API TraderInfo {
 public:
  std::string m_traderName;
  MGTInfo m_mgt;
  std::int32_t m_traderNumber = 0;
  std::string m_traderText;
  // Copied and cleared together.
  std::uint8_t m_traderFlags[4] = {0, 0, 0, 0};
  std::map<std::string, ProductLimitInfo> m_limits;

  TraderInfo();
  TraderInfo(const TraderInfo&) = default;
  TraderInfo& operator=(const TraderInfo&) = default;
  ~TraderInfo() = default;

  // Back to the defaults, triple and limits included.
  void Clear();

  // Stores `limit` under gateway and product, replacing a row there whole.
  // A product name of "*" adds the gateway's wildcard row.
  void AddLimit(int gatewayId, const std::string& productName,
                ProductLimitInfo& limit);

  // The row of gateway and product; failing that, with `useWildcard`, the
  // gateway's wildcard row. False for a null product name or when neither
  // row exists; `out` is then untouched.
  bool GetLimit(int gatewayId, const char* productName, ProductLimitInfo& out,
                bool useWildcard) const;
  // The limit of `type` in the row of gateway and product if it is set
  // there; failing that, with `useWildcard`, in the wildcard row. A product
  // row without that limit falls through to the wildcard row. False for a
  // null product name, for a type outside 0..10 (-1 from
  // GetRiskProductType included), or when no set limit is found; `out` is
  // then untouched.
  bool GetLimit(int gatewayId, const char* productName,
                RiskProductTypes::Enum type, LimitInfo& out,
                bool useWildcard) const;

  // The key of a row: "%d;%s".
  static std::string LimitKey(int gatewayId, const char* productName);
};

}  // namespace nv_ns

#endif  // NVSHARED_RISK_TRADER_INFO_H_
