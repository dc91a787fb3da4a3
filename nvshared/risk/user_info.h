// nv_ns::UserInfo, a user of the hosts with the one decision the library
// makes for it, AllowTrading; the status scopes of users and traders; and
// the small credit records carried for the hosts.
//
// Values; no locks. One thread at a time per instance.
#ifndef NVSHARED_RISK_USER_INFO_H_
#define NVSHARED_RISK_USER_INFO_H_

#include <cstdint>
#include <map>
#include <string>

#include "nvshared/export.h"
#include "nvshared/risk/limit_info.h"

namespace nv_ns {

struct AllowTradingStatus {
  enum Enum { LC_PERMITTED_NO = 0, LC_PERMITTED_YES = 1 };
};
struct IgnorePLStatus {
  enum Enum { LC_IGNOREPL_NO = 0, LC_IGNOREPL_YES = 1 };
};
// Note the order: "on" is 0 here, unlike the positive values above.
struct RiskCheckStatus {
  enum Enum { LC_RISKCHECK_ON = 0, LC_RISKCHECK_OFF = 1 };
};
// Two further two-valued tables of the hosts' flags.
struct TradeOutStatus {
  enum Enum { LC_TRADEOUT_NO = 0, LC_TRADEOUT_YES = 1 };
};
struct TraderOrderStatus {
  enum Enum { LC_FIRST_TRADER = 0, LC_NEXT_TRADER = 1 };
};
// How AllowTrading reached its answer.
struct AllowTradingResult {
  enum Enum { NoBrokerEntry = 0, UserLevel = 1, BrokerEntry = 2 };
};

// A flag of the host's, clear at construction.
class NVSHARED_API CompanySpecificRisk {
 public:
  CompanySpecificRisk() = default;
  std::uint8_t m_flag = 0;
};

// Five numbers of the host's.
struct NVSHARED_API AvailableCredit {
  std::int64_t m_value1 = 0;
  std::int64_t m_value2 = 0;
  std::int64_t m_value3 = 0;
  std::int64_t m_value4 = 0;
  std::int64_t m_value5 = 0;
};

// A credit limit has the layout of a LimitInfo and is copied the same way.
struct NVSHARED_API CreditLimit : LimitInfo {};

class NVSHARED_API UserInfo {
 public:
  std::string m_userName;
  // The user may trade at all.
  bool m_allowTrading = false;
  std::int32_t m_userNumber = -1;
  CompanySpecificRisk m_companyRisk;
  std::string m_userText;
  std::uint8_t m_flag1 = 0;
  std::uint8_t m_flag2 = 0;
  std::int32_t m_userValue = 0;
  // Per broker id: whether trading through that broker is allowed.
  std::map<int, bool> m_brokerTrading;

  UserInfo() = default;
  UserInfo(const UserInfo&) = default;
  UserInfo& operator=(const UserInfo& other);
  ~UserInfo() = default;

  // Back to the defaults (m_userNumber -1 again).
  void clear();

  // Whether the user may trade through `brokerId`. Broker 0 and a user who
  // may not trade at all answer from m_allowTrading (result UserLevel); a
  // broker without an entry is allowed (NoBrokerEntry); otherwise the
  // broker's entry decides (BrokerEntry).
  bool AllowTrading(unsigned short brokerId,
                    AllowTradingResult::Enum& result) const;
};

}  // namespace nv_ns

#endif  // NVSHARED_RISK_USER_INFO_H_
