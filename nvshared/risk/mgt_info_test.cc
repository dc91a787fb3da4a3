#include "nvshared/risk/mgt_info.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using nv_ns::MGTInfo;

TEST(MGTInfoTest, KeyIsThePartsRunTogether) {
  MGTInfo mgt("M1", "G1", "T1");
  EXPECT_STREQ(mgt.GetTraderId(), "M1G1T1");
  EXPECT_STREQ(mgt.GetMGTMemberId(), "M1");
  EXPECT_STREQ(mgt.GetMGTGroupId(), "G1");
  EXPECT_STREQ(mgt.GetMGTTraderId(), "T1");
  // Identity is the key alone: parts and gateways play no part.
  MGTInfo other("M", "1G1", "T1");
  other.AddAssignedGateway(7);
  EXPECT_TRUE(mgt == other);
  EXPECT_FALSE(mgt < other || other < mgt);
  EXPECT_TRUE(MGTInfo("A", "", "") < MGTInfo("B", "", ""));
  // The longest ids the file allows fill the key exactly; longer ones are
  // cut to their fields.
  MGTInfo full("12345678901", "123", "ABCDEFGHIJK");
  EXPECT_STREQ(full.GetTraderId(), "12345678901123ABCDEFGHIJK");
  MGTInfo cut("123456789012345", "12345", "ABCDEFGHIJKLMNOP");
  EXPECT_STREQ(cut.GetTraderId(), "12345678901123ABCDEFGHIJK");
  MGTInfo null(nullptr, "G", nullptr);
  EXPECT_STREQ(null.GetTraderId(), "G");
}

TEST(MGTInfoTest, GatewaysSurviveSetButNotClear) {
  MGTInfo mgt("M1", "G1", "T1");
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

}  // namespace
