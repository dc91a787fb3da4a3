#include "nvshared/messaging/connection_key.h"

#include <cstring>
#include <sstream>
#include <string_view>

namespace nv_ns {
namespace {

// Copies at most capacity - 1 characters and a NUL.
template <std::size_t N>
void CopyId(char (&field)[N], const char* text) {
  std::memset(field, 0, N);
  if (text != nullptr) std::memcpy(field, text, strnlen(text, N - 1));
}

template <std::size_t N>
std::string_view IdText(const char (&field)[N]) {
  return std::string_view(field, strnlen(field, N));
}

}  // namespace

ConnectionKey::ConnectionKey(unsigned short brokerId, unsigned short companyId,
                             int gatewayId, const char* member,
                             const char* group, const char* trader)
    : ConnectionKey() {
  m_brokerID = brokerId;
  m_companyID = companyId;
  m_gatewayID = gatewayId;
  CopyId(m_szMember, member);
  CopyId(m_szGroup, group);
  CopyId(m_szTrader, trader);
}

ConnectionKey::ConnectionKey(const IConnectionInfo* info) : ConnectionKey() {
  if (info == nullptr) return;
  m_gatewayID = info->GetGatewayId();
  m_brokerID = info->GetBrokerId();
  m_companyID = info->GetCompanyId();
  CopyId(m_szMember, info->GetMember());
  CopyId(m_szGroup, info->GetGroup());
  CopyId(m_szTrader, info->GetTrader());
}

void ConnectionKey::Transfer() {
  TransferScalar("m_brokerID", m_brokerID);
  TransferScalar("m_gatewayID", m_gatewayID);
  TransferCharArray("m_szMember", m_szMember, sizeof m_szMember);
  CountItem();
  TransferCharArray("m_szGroup", m_szGroup, sizeof m_szGroup);
  CountItem();
  TransferCharArray("m_szTrader", m_szTrader, sizeof m_szTrader);
  CountItem();
  TransferScalar("m_companyID", m_companyID);
}

std::uint64_t ConnectionKey::Measure() const {
  return 26 + IdText(m_szMember).size() + IdText(m_szGroup).size() +
         IdText(m_szTrader).size();
}

std::string ConnectionKey::ToString() const {
  std::ostringstream out;
  out << "Broker: " << m_brokerID << "Company: " << m_companyID
      << " Gateway: " << m_gatewayID << " Member: " << IdText(m_szMember)
      << " Group: " << IdText(m_szGroup) << " Trader: " << IdText(m_szTrader);
  return out.str();
}

}  // namespace nv_ns
