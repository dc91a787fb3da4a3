#include "nvshared/risk/limit_info.h"

namespace nv_ns {

void LimitInfo::Clear() { *this = LimitInfo(); }

void ProductLimitInfo::Clear() {
  m_gatewayId = -1;
  m_productName.clear();
  for (LimitInfo& limit : m_limits) limit.m_isSet = 0;
}

const char* GetRiskProductTypeName(const RiskProductTypes::Enum& type) {
  static const char* const kNames[RiskProductTypes::kCount] = {
      "FUTURE", "SPREAD", "OPTION", "STRATEGY", "ENERGY",   "BOND",
      "FOREX",  "STOCK",  "SWAP",   "WARRANT",  "NDFORWARD"};
  if (type < 0 || type >= RiskProductTypes::kCount) return "INVALID";
  return kNames[type];
}

RiskProductTypes::Enum GetRiskProductType(
    const dv_core_ns::AEnum_ProdIDs& type) {
  switch (static_cast<int>(type)) {
    case dv_core_ns::FUTURE:
      return RiskProductTypes::FUTURE;
    case dv_core_ns::SPREAD:
      return RiskProductTypes::SPREAD;
    case dv_core_ns::OPTION:
      return RiskProductTypes::OPTION;
    case dv_core_ns::STRATEGY:
      return RiskProductTypes::STRATEGY;
    case dv_core_ns::STOCK:
      return RiskProductTypes::STOCK;
    case dv_core_ns::BOND:
      return RiskProductTypes::BOND;
    case dv_core_ns::SWAP:
      return RiskProductTypes::SWAP;
    case dv_core_ns::WARRANT:
      return RiskProductTypes::WARRANT;
    case dv_core_ns::ENERGY:
      return RiskProductTypes::ENERGY;
    case dv_core_ns::FOREX:
      return RiskProductTypes::FOREX;
    case dv_core_ns::NDF:
      return RiskProductTypes::NDFORWARD;
    default:
      return RiskProductTypes::NONE;
  }
}

RiskProductTypes::Enum GetRiskRelatedProductType(
    const dv_core_ns::AEnum_ProdIDs& type) {
  switch (static_cast<int>(type)) {
    case dv_core_ns::FUTURE:
    case dv_core_ns::ENERGY:
      return RiskProductTypes::SPREAD;
    case dv_core_ns::OPTION:
      return RiskProductTypes::STRATEGY;
    default:
      return RiskProductTypes::NONE;
  }
}

}  // namespace nv_ns
