#include "nvshared/messaging/spread_info.h"

#include <cstdint>

namespace nv_ns {

SpreadInfo::SpreadInfo(const std::string& name, const std::string& id,
                       unsigned long color, unsigned int numLegs,
                       bool isQHAllowed, unsigned short brokerId,
                       bool isAggregator)
    : XStreamable(kName, kVersion),
      m_name(name),
      m_id(id),
      m_color(color),
      m_numLegs(numLegs),
      m_isQHAllowed(isQHAllowed),
      m_nBrokerId(brokerId),
      m_isAggregator(isAggregator) {}

void SpreadInfo::Transfer() {
  TransferString("m_name", m_name);
  TransferString("m_id", m_id);
  auto color = static_cast<std::uint32_t>(m_color);
  if (TransferScalar("m_color", color) && !IsWriting()) m_color = color;
  TransferScalar("m_numLegs", m_numLegs);
  TransferScalar("m_isQHAllowed", m_isQHAllowed);
  TransferScalar("m_nBrokerId", m_nBrokerId);
  TransferScalar("m_isAggregator", m_isAggregator);
}

std::uint64_t SpreadInfo::Measure() const {
  return 30 + m_name.size() + m_id.size();
}

}  // namespace nv_ns
