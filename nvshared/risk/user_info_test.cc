#include "nvshared/risk/user_info.h"

#include <gtest/gtest.h>

namespace {

using nv_ns::AllowTradingResult;
using nv_ns::UserInfo;

TEST(UserInfoTest, AllowTradingTable) {
  const struct {
    const char* what;
    bool userLevel;
    int entry;  // -1: no entry for broker 7, else the stored bool
    unsigned short broker;
    bool allowed;
    AllowTradingResult::Enum result;
  } cases[] = {
      {"broker 0, user off", false, -1, 0, false,
       AllowTradingResult::UserLevel},
      {"broker 0, user on", true, 0, 0, true, AllowTradingResult::UserLevel},
      {"user on, no entry", true, -1, 7, true,
       AllowTradingResult::NoBrokerEntry},
      {"user on, entry false", true, 0, 7, false,
       AllowTradingResult::BrokerEntry},
      {"user on, entry true", true, 1, 7, true,
       AllowTradingResult::BrokerEntry},
      {"user off overrides entry", false, 1, 7, false,
       AllowTradingResult::UserLevel},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    UserInfo user;
    user.m_allowTrading = c.userLevel;
    if (c.entry >= 0) user.m_brokerTrading[7] = c.entry == 1;
    AllowTradingResult::Enum result = AllowTradingResult::NoBrokerEntry;
    if (c.result == AllowTradingResult::NoBrokerEntry)
      result = AllowTradingResult::BrokerEntry;
    EXPECT_EQ(user.AllowTrading(c.broker, result), c.allowed);
    EXPECT_EQ(result, c.result);
  }
}

TEST(UserInfoTest, ClearRestoresTheDefaults) {
  UserInfo user;
  EXPECT_EQ(user.m_userNumber, -1);
  user.m_userNumber = 5;
  user.m_userName = "u";
  user.m_brokerTrading[1] = true;
  UserInfo copy;
  copy = user;
  EXPECT_EQ(copy.m_brokerTrading.size(), 1u);
  user.clear();
  EXPECT_EQ(user.m_userNumber, -1);
  EXPECT_TRUE(user.m_userName.empty());
  EXPECT_TRUE(user.m_brokerTrading.empty());
  EXPECT_EQ(nv_ns::RiskCheckStatus::LC_RISKCHECK_ON, 0);
}

}  // namespace
