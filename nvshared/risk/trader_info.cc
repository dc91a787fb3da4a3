#include "nvshared/risk/trader_info.h"

#include <algorithm>

namespace nv_ns {

TraderInfo::TraderInfo() { Clear(); }

void TraderInfo::Clear() {
  m_traderName.clear();
  m_mgt.Clear();
  m_traderNumber = 0;
  m_traderText.clear();
  std::fill(std::begin(m_traderFlags), std::end(m_traderFlags), 0);
  m_limits.clear();
}

// The key is built as a string rather than in a fixed buffer of 24 bytes,
// so a long product name makes a longer key instead of overrunning it.
std::string TraderInfo::LimitKey(int gatewayId, const char* productName) {
  std::string key = std::to_string(gatewayId);
  key += ';';
  key += productName;
  return key;
}

void TraderInfo::AddLimit(int gatewayId, const std::string& productName,
                          ProductLimitInfo& limit) {
  m_limits[LimitKey(gatewayId, productName.c_str())] = limit;
}

bool TraderInfo::GetLimit(int gatewayId, const char* productName,
                          ProductLimitInfo& out, bool useWildcard) const {
  if (productName == nullptr) return false;
  auto found = m_limits.find(LimitKey(gatewayId, productName));
  if (found == m_limits.end()) {
    if (!useWildcard) return false;
    found = m_limits.find(LimitKey(gatewayId, "*"));
    if (found == m_limits.end()) return false;
  }
  out = found->second;
  return true;
}

bool TraderInfo::GetLimit(int gatewayId, const char* productName,
                          RiskProductTypes::Enum type, LimitInfo& out,
                          bool useWildcard) const {
  if (productName == nullptr) return false;
  // The type indexes the row's limits; one outside them finds nothing
  // instead of reading past the row.
  if (type < 0 || type >= RiskProductTypes::kCount) return false;
  const auto setIn = [&](const char* product) -> const LimitInfo* {
    const auto found = m_limits.find(LimitKey(gatewayId, product));
    if (found == m_limits.end()) return nullptr;
    const LimitInfo& limit = found->second.m_limits[type];
    return limit.m_isSet ? &limit : nullptr;
  };
  const LimitInfo* limit = setIn(productName);
  if (limit == nullptr && useWildcard) limit = setIn("*");
  if (limit == nullptr) return false;
  out = *limit;
  return true;
}

}  // namespace nv_ns
