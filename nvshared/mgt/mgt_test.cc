#include "nvshared/mgt/mgt.h"

#include <vector>

#include <gtest/gtest.h>

namespace nv_ns {
namespace {

TEST(TraderIdTypeTest, NamesAndParsing) {
  EXPECT_STREQ(TraderIdType().ToString(), "None");
  EXPECT_STREQ(TraderIdType(TraderIdType::RoutingTraderId).ToString(),
               "RoutingTraderId");
  EXPECT_STREQ(TraderIdType(4).ToString(), "Invalid enumeration value");
  EXPECT_STREQ(TraderIdType(-1).ToString(), "Invalid enumeration value");
  TraderIdType t;
  EXPECT_TRUE(TraderIdType::Parse("EXCHANGETRADERID", t));
  EXPECT_EQ(t, TraderIdType::ExchangeTraderId);
  EXPECT_FALSE(TraderIdType::Parse("Exchange", t));
  EXPECT_FALSE(TraderIdType::Parse("", t));
  EXPECT_EQ(t, TraderIdType::ExchangeTraderId);
}

TEST(MgtTest, SubscriptionGateways) {
  Mgt none;
  EXPECT_FALSE(none.HasMpfGateways());
  EXPECT_EQ(none.GetMpfGateway(), -1);
  int calls = 0;
  none.for_each_mpfGateway([&calls](int) { ++calls; });
  EXPECT_EQ(calls, 0);

  const Mgt two("M", "G", "T", {8, 3}, nullptr, true, TraderIdType::Username);
  EXPECT_TRUE(two.IsSet());
  EXPECT_EQ(two.m_server, "");
  EXPECT_EQ(two.GetMpfGateway(), 8);
  std::vector<int> seen;
  two.for_each_mpfGateway([&seen](int g) { seen.push_back(g); });
  EXPECT_EQ(seen, (std::vector<int>{8, 3}));
}

TEST(MgtTest, SetAlwaysMarksSetButAssignmentCopiesTheFlag) {
  const Mgt unset;
  Mgt viaSet("M", "G", "T", Mgt::s_emptyGatewayVector, "1.2.3.4", false,
             TraderIdType::None);
  viaSet.Set(unset);
  EXPECT_TRUE(viaSet.IsSet());
  EXPECT_EQ(viaSet.m_member, "");
  EXPECT_EQ(viaSet.m_server, "");

  Mgt viaAssign("M", "G", "T", {}, "", false, TraderIdType::None);
  viaAssign = unset;
  EXPECT_FALSE(viaAssign.IsSet());

  Mgt self("M", "G", "T", {7}, "1.2.3.4", true, TraderIdType::Username);
  self.Set(self);
  EXPECT_EQ(self.m_member, "M");
  EXPECT_EQ(self.m_mpfGateways, std::vector<int>{7});
  self.Set(self.m_member.c_str(), self.m_trader.c_str(), nullptr,
           self.m_mpfGateways, self.m_server.c_str(), false,
           TraderIdType::None);
  EXPECT_EQ(self.m_group, "T");
  EXPECT_EQ(self.m_trader, "");
}

}  // namespace
}  // namespace nv_ns
