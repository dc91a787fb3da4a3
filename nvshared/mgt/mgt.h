// nv_ns::Mgt, the member, group and trader identity with which a front-end
// application logs in to a market or a gateway, and nv_ns::MktMgt, a
// market's identity together with the identities of its gateways.
// nv_ns::TraderIdType says which kind of trader id the identity carries.
//
// Plain values: copy them freely. A record belongs to one thread at a time.
#ifndef NVSHARED_MGT_MGT_H_
#define NVSHARED_MGT_MGT_H_

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "nvshared/export.h"

namespace nv_ns {

class NVSHARED_API TraderIdType {
 public:
  enum Value : int {
    None = 0,
    Username = 1,
    RoutingTraderId = 2,
    ExchangeTraderId = 3,
  };

  constexpr TraderIdType() = default;
  constexpr TraderIdType(Value value) : value_(value) {}  // NOLINT: implicit
  // Any int is kept as it is; values outside 0..3 name nothing.
  constexpr explicit TraderIdType(int value) : value_(value) {}

  constexpr int value() const { return value_; }
  constexpr bool operator==(const TraderIdType& other) const = default;

  // "None", "Username", "RoutingTraderId", "ExchangeTraderId", or
  // "Invalid enumeration value" for any other value.
  const char* ToString() const;

  // The value whose name equals `text` without regard to case; false, with
  // `out` untouched, when none does.
  static bool Parse(const std::string& text, TraderIdType& out);

 private:
  int value_ = None;
};

class NVSHARED_API Mgt {
 public:
  static const std::vector<int> s_emptyGatewayVector;

  Mgt() = default;
  Mgt(const std::string& member, const std::string& group,
      const std::string& trader, const std::vector<int>& mpfGateways,
      const char* server, bool mandatory, TraderIdType traderIdType);

  // Assigns every field and marks the record set. A null text counts as "".
  void Set(const char* member, const char* group, const char* trader,
           const std::vector<int>& mpfGateways, const char* server,
           bool mandatory, TraderIdType traderIdType);
  // Takes the fields of `other` through the overload above, so the record
  // ends set even when `other` is not. Deliberately unlike assignment, which
  // copies m_isSet as it is; a market entry made by a gateway section relies
  // on this when its market section arrives later.
  void Set(const Mgt& other);

  bool IsSet() const { return m_isSet; }
  bool HasMpfGateways() const { return !m_mpfGateways.empty(); }
  // The first price subscription gateway, or -1 when there is none.
  int GetMpfGateway() const;
  // Calls `f` for each price subscription gateway, in file order.
  void for_each_mpfGateway(std::function<void(int)> f) const;

  bool m_isSet = false;
  std::string m_member;
  std::string m_group;
  std::string m_trader;
  std::string m_server;  // dotted IPv4 text; empty: no server
  bool m_serverMandatory = false;
  std::vector<int> m_mpfGateways;
  TraderIdType m_traderIdType;
};

// The Mgt part is the market-level identity, so a MktMgt serves wherever a
// Mgt is asked for.
class NVSHARED_API MktMgt : public Mgt {
 public:
  MktMgt() = default;

  std::map<int, Mgt> m_gateways;  // by gateway (exchange) id
  int m_marketId = -1;
  bool m_primary = false;
};

}  // namespace nv_ns

#endif  // NVSHARED_MGT_MGT_H_
