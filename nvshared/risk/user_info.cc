#include "nvshared/risk/user_info.h"

namespace nv_ns {

UserInfo& UserInfo::operator=(const UserInfo& other) {
  if (this == &other) return *this;
  m_userName = other.m_userName;
  m_allowTrading = other.m_allowTrading;
  m_userNumber = other.m_userNumber;
  m_companyRisk = other.m_companyRisk;
  m_userText = other.m_userText;
  m_flag1 = other.m_flag1;
  m_flag2 = other.m_flag2;
  m_userValue = other.m_userValue;
  m_brokerTrading = other.m_brokerTrading;
  return *this;
}

void UserInfo::clear() { *this = UserInfo(); }

bool UserInfo::AllowTrading(unsigned short brokerId,
                            AllowTradingResult::Enum& result) const {
  if (brokerId == 0 || !m_allowTrading) {
    result = AllowTradingResult::UserLevel;
    return m_allowTrading;
  }
  const auto entry = m_brokerTrading.find(brokerId);
  if (entry == m_brokerTrading.end()) {
    result = AllowTradingResult::NoBrokerEntry;
    return true;
  }
  result = AllowTradingResult::BrokerEntry;
  return entry->second;
}

}  // namespace nv_ns
