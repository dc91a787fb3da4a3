#include "nvshared/risk/trader_info.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using nv_ns::LimitInfo;
using nv_ns::ProductLimitInfo;
using nv_ns::RiskProductTypes;
using nv_ns::TraderInfo;

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

  trader.Clear();
  EXPECT_TRUE(trader.m_limits.empty());
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
  const char* names[] = {"FUTURE", "SPREAD",  "OPTION",   "STRATEGY",
                         "ENERGY", "BOND",    "FOREX",    "STOCK",
                         "SWAP",   "WARRANT", "NDFORWARD"};
  for (int i = 0; i < 11; ++i) {
    EXPECT_STREQ(
        nv_ns::GetRiskProductTypeName(static_cast<RiskProductTypes::Enum>(i)),
        names[i]);
  }
  EXPECT_STREQ(nv_ns::GetRiskProductTypeName(RiskProductTypes::NONE),
               "INVALID");
  EXPECT_STREQ(
      nv_ns::GetRiskProductTypeName(static_cast<RiskProductTypes::Enum>(11)),
      "INVALID");
}

}  // namespace
