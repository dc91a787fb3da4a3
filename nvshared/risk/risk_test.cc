#include <set>
#include <string>

#include <gtest/gtest.h>

#include "nvshared/risk/mgt_info.h"
#include "nvshared/risk/trader_info.h"
#include "nvshared/risk/user_info.h"

namespace {

using nv_ns::AllowTradingResult;
using nv_ns::LimitInfo;
using nv_ns::MGTInfo;
using nv_ns::ProductLimitInfo;
using nv_ns::RiskProductTypes;
using nv_ns::TraderInfo;
using nv_ns::UserInfo;

TEST(MGTInfoTest, KeyIsThePartsRunTogetherAndGatewaysFollowTheObject) {
  MGTInfo mgt("M1", "G1", "T1");
  EXPECT_STREQ(mgt.GetTraderId(), "M1G1T1");
  EXPECT_STREQ(mgt.GetMGTMemberId(), "M1");
  EXPECT_STREQ(mgt.GetMGTTraderId(), "T1");
  // Identity is the key alone: parts and gateways play no part.
  MGTInfo other("M", "1G1", "T1");
  other.AddAssignedGateway(7);
  EXPECT_TRUE(mgt == other);
  EXPECT_FALSE(mgt < other || other < mgt);
  EXPECT_TRUE(MGTInfo("A", "", "") < MGTInfo("B", "", ""));
  // The longest ids the file allows fill the key exactly; longer ones are
  // cut to their fields.
  EXPECT_STREQ(MGTInfo("12345678901", "123", "ABCDEFGHIJK").GetTraderId(),
               "12345678901123ABCDEFGHIJK");
  EXPECT_STREQ(MGTInfo("123456789012", "1234", "ABCDEFGHIJKL").GetTraderId(),
               "12345678901123ABCDEFGHIJK");
  EXPECT_STREQ(MGTInfo(nullptr, "G", nullptr).GetTraderId(), "G");

  // Gateways survive Set but not Clear.
  mgt.AddAssignedGateway(3);
  mgt.Set("M2", "G2", "T2");
  EXPECT_TRUE(mgt.IsAssignedGateway(3));
  EXPECT_STREQ(mgt.GetTraderId(), "M2G2T2");
  MGTInfo copy;
  copy.AddAssignedGateway(9);
  copy = mgt;
  EXPECT_EQ(copy.GetAssignedGateways(), std::set<int>{3});
  mgt.Clear();
  EXPECT_TRUE(mgt.GetAssignedGateways().empty());
  EXPECT_STREQ(mgt.GetTraderId(), "");
  EXPECT_STREQ(mgt.GetMGTGroupId(), "");
}

ProductLimitInfo Row(const std::string& product, RiskProductTypes::Enum type,
                     int value) {
  ProductLimitInfo row;
  row.m_gatewayId = 5;
  row.m_productName = product;
  row.m_limits[type].m_isSet = 1;
  row.m_limits[type].m_values[0] = value;
  return row;
}

class TraderInfoTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ProductLimitInfo es = Row("ES", RiskProductTypes::OPTION, 1);
    ProductLimitInfo wild = Row("*", RiskProductTypes::FUTURE, 2);
    trader.AddLimit(5, "ES", es);
    trader.AddLimit(5, "*", wild);
  }
  TraderInfo trader;
};

TEST_F(TraderInfoTest, RowLookupFallsBackToTheWildcardOnlyWhenAsked) {
  ProductLimitInfo row;
  EXPECT_FALSE(trader.GetLimit(5, nullptr, row, true));
  ASSERT_TRUE(trader.GetLimit(5, "ES", row, false));
  EXPECT_EQ(row.m_productName, "ES");
  // Product names match exactly; the wildcard row answers for the rest.
  EXPECT_FALSE(trader.GetLimit(5, "es", row, false));
  ASSERT_TRUE(trader.GetLimit(5, "es", row, true));
  EXPECT_EQ(row.m_productName, "*");
  row.m_productName = "untouched";
  EXPECT_FALSE(trader.GetLimit(6, "ES", row, true));
  EXPECT_EQ(row.m_productName, "untouched");
}

TEST_F(TraderInfoTest, TypeLookupFallsThroughARowWithoutThatLimit) {
  LimitInfo limit;
  ASSERT_TRUE(trader.GetLimit(5, "ES", RiskProductTypes::FUTURE, limit, true));
  EXPECT_EQ(limit.m_values[0], 2);
  EXPECT_FALSE(
      trader.GetLimit(5, "ES", RiskProductTypes::FUTURE, limit, false));
  ASSERT_TRUE(trader.GetLimit(5, "ES", RiskProductTypes::OPTION, limit, true));
  EXPECT_EQ(limit.m_values[0], 1);
  EXPECT_FALSE(trader.GetLimit(5, "ES", RiskProductTypes::BOND, limit, true));
  EXPECT_FALSE(
      trader.GetLimit(5, nullptr, RiskProductTypes::FUTURE, limit, true));
  EXPECT_FALSE(trader.GetLimit(5, "ES", RiskProductTypes::NONE, limit, true));
}

TEST_F(TraderInfoTest, AddLimitReplacesAndClearedRowsFindNothing) {
  ProductLimitInfo replacement = Row("ES", RiskProductTypes::SWAP, 9);
  trader.AddLimit(5, "ES", replacement);
  LimitInfo limit;
  EXPECT_TRUE(trader.GetLimit(5, "ES", RiskProductTypes::SWAP, limit, false));
  EXPECT_FALSE(
      trader.GetLimit(5, "ES", RiskProductTypes::OPTION, limit, false));

  replacement.Clear();
  EXPECT_EQ(replacement.m_gatewayId, -1);
  EXPECT_EQ(replacement.m_limits[RiskProductTypes::SWAP].m_values[0], 9);
  trader.AddLimit(5, "ES", replacement);
  EXPECT_FALSE(trader.GetLimit(5, "ES", RiskProductTypes::SWAP, limit, false));
  EXPECT_EQ(TraderInfo::LimitKey(12, "ZN"), "12;ZN");
}

TEST(RiskProductTypeTest, MappingsAndNames) {
  const struct {
    int core;
    int risk;
    int related;
  } cases[] = {{0, -1, -1},  {1, 0, 1},    {2, 1, -1},   {3, 2, 3},
               {4, 3, -1},   {5, 7, -1},   {6, 5, -1},   {7, 8, -1},
               {8, 9, -1},   {30, 4, 1},   {31, 6, -1},  {32, -1, -1},
               {33, 10, -1}, {34, -1, -1}, {500, -1, -1}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.core);
    EXPECT_EQ(nv_ns::GetRiskProductType(c.core), c.risk);
    EXPECT_EQ(nv_ns::GetRiskRelatedProductType(c.core), c.related);
  }
  // From NONE (-1) to one past the last type.
  const char* names[] = {"INVALID", "FUTURE",    "SPREAD", "OPTION", "STRATEGY",
                         "ENERGY",  "BOND",      "FOREX",  "STOCK",  "SWAP",
                         "WARRANT", "NDFORWARD", "INVALID"};
  for (int i = -1; i <= 11; ++i) {
    const auto type = static_cast<RiskProductTypes::Enum>(i);
    EXPECT_STREQ(nv_ns::GetRiskProductTypeName(type), names[i + 1]);
  }
}

// Broker 0 or trading off at user level answer at user level; otherwise
// the broker's entry decides, and no entry allows.
TEST(UserInfoTest, AllowTradingTable) {
  using R = AllowTradingResult;
  const struct {
    bool userLevel;
    int entry;  // -1: no entry for broker 7, else the stored bool
    unsigned short broker;
    bool allowed;
    R::Enum result;
  } cases[] = {{false, -1, 0, false, R::UserLevel},
               {true, 0, 0, true, R::UserLevel},
               {true, -1, 7, true, R::NoBrokerEntry},
               {true, 0, 7, false, R::BrokerEntry},
               {true, 1, 7, true, R::BrokerEntry},
               {false, 1, 7, false, R::UserLevel}};
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    UserInfo user;
    user.m_allowTrading = c.userLevel;
    if (c.entry >= 0) user.m_brokerTrading[7] = c.entry == 1;
    // Start from an answer the call must overwrite.
    R::Enum result =
        c.result == R::NoBrokerEntry ? R::BrokerEntry : R::NoBrokerEntry;
    EXPECT_EQ(user.AllowTrading(c.broker, result), c.allowed);
    EXPECT_EQ(result, c.result);
    user.m_userNumber = 5;
    user.m_userName = "u";
    user.clear();  // back to the defaults
    EXPECT_EQ(user.m_userName + std::to_string(user.m_userNumber), "-1");
    EXPECT_TRUE(user.m_brokerTrading.empty() && !user.m_allowTrading);
  }
}

}  // namespace
