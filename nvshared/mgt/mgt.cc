#include "nvshared/mgt/mgt.h"

#include <utility>

#include "nvshared/internal/ascii.h"

namespace nv_ns {
namespace {

constexpr const char* kTraderIdTypeNames[] = {
    "None", "Username", "RoutingTraderId", "ExchangeTraderId"};

using nvshared::internal::AsciiEqualIgnoreCase;

}  // namespace

const char* TraderIdType::ToString() const {
  if (value_ < None || value_ > ExchangeTraderId) {
    return "Invalid enumeration value";
  }
  return kTraderIdTypeNames[value_];
}

bool TraderIdType::Parse(const std::string& text, TraderIdType& out) {
  for (int v = None; v <= ExchangeTraderId; ++v) {
    if (AsciiEqualIgnoreCase(text, kTraderIdTypeNames[v])) {
      out = TraderIdType(v);
      return true;
    }
  }
  return false;
}

const std::vector<int> Mgt::s_emptyGatewayVector;

Mgt::Mgt(const std::string& member, const std::string& group,
         const std::string& trader, const std::vector<int>& mpfGateways,
         const char* server, bool mandatory, TraderIdType traderIdType)
    : m_isSet(true),
      m_member(member),
      m_group(group),
      m_trader(trader),
      m_server(server == nullptr ? "" : server),
      m_serverMandatory(mandatory),
      m_mpfGateways(mpfGateways),
      m_traderIdType(traderIdType) {}

void Mgt::Set(const char* member, const char* group, const char* trader,
              const std::vector<int>& mpfGateways, const char* server,
              bool mandatory, TraderIdType traderIdType) {
  auto text = [](const char* s) { return s == nullptr ? "" : s; };
  m_member = text(member);
  m_group = text(group);
  m_trader = text(trader);
  // Copy first: `mpfGateways` may be this record's own list.
  std::vector<int> gateways = mpfGateways;
  m_mpfGateways = std::move(gateways);
  m_server = text(server);
  m_serverMandatory = mandatory;
  m_traderIdType = traderIdType;
  m_isSet = true;
}

void Mgt::Set(const Mgt& other) {
  if (&other == this) {
    m_isSet = true;
    return;
  }
  Set(other.m_member.c_str(), other.m_group.c_str(), other.m_trader.c_str(),
      other.m_mpfGateways, other.m_server.c_str(), other.m_serverMandatory,
      other.m_traderIdType);
}

int Mgt::GetMpfGateway() const {
  return m_mpfGateways.empty() ? -1 : m_mpfGateways.front();
}

void Mgt::for_each_mpfGateway(std::function<void(int)> f) const {
  for (const int gateway : m_mpfGateways) f(gateway);
}

}  // namespace nv_ns
