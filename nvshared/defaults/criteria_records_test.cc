#include <gtest/gtest.h>

#include "nvshared/defaults/cd_criteria.h"
#include "nvshared/defaults/od_criteria.h"
#include "nvshared/testing/reference_fixture.h"

namespace {

constexpr std::int32_t kNo32 = static_cast<std::int32_t>(0xF0000000u);

TEST(CriteriaRecordsTest, DefaultsOfEveryField) {
  const CDCRITERIA cd;
  EXPECT_EQ(cd.m_gatewayText, "");
  EXPECT_EQ(cd.m_number1, -1);
  EXPECT_EQ(cd.m_text7, "");
  EXPECT_EQ(cd.m_number2, -1);
  EXPECT_EQ(cd.m_number3, 0);
  EXPECT_EQ(cd.m_number4, 0);
  EXPECT_EQ(cd.m_flag1, 0);
  EXPECT_EQ(cd.m_number5, 0);
  EXPECT_EQ(cd.m_flags[0] | cd.m_flags[1] | cd.m_flags[2] | cd.m_flags[3], 0);

  const ODCRITERIA od;
  EXPECT_EQ(g_sAnyText, "*");
  EXPECT_EQ(od.m_name, "");
  EXPECT_EQ(od.m_flag1, 0);
  EXPECT_EQ(od.m_number1, -1);
  EXPECT_EQ(od.m_gatewayText, "*");
  EXPECT_EQ(od.m_number2, -1);
  EXPECT_EQ(od.m_text1, "*");
  EXPECT_EQ(od.m_number3, 0);
  EXPECT_EQ(od.m_flag2, 0);
  EXPECT_EQ(od.m_number4, kNo32);
  EXPECT_EQ(od.m_flag3, 0);
  EXPECT_EQ(od.m_number5, kNo32);
  EXPECT_EQ(od.m_number6, kNo32);
  EXPECT_EQ(od.m_text2, "");
  EXPECT_EQ(od.m_orderType, 76);
  EXPECT_EQ(od.m_orderRestriction, 32);
  EXPECT_EQ(od.m_date, nv_ns::GTD_Date);
  const std::vector<std::int32_t> a(od.m_blockA, od.m_blockA + 4);
  EXPECT_EQ(a, (std::vector<std::int32_t>{kNo32, 0, 1, 0}));
  EXPECT_EQ(od.m_blockAWord, 0xF000);
  EXPECT_EQ(od.m_blockB[0] | od.m_blockB[1] | od.m_blockB[2], 0);
  const std::vector<std::int32_t> c(od.m_blockC, od.m_blockC + 3);
  EXPECT_EQ(c, (std::vector<std::int32_t>{kNo32, 1, 0}));
  EXPECT_EQ(od.m_blockCWord, 0xF000);
  const std::vector<std::int32_t> d(od.m_blockD, od.m_blockD + 5);
  EXPECT_EQ(d, (std::vector<std::int32_t>{0, kNo32, 0, kNo32, 1}));
  EXPECT_EQ(od.m_blockDWord, 0xF000);
  const std::vector<std::int32_t> e(od.m_blockE, od.m_blockE + 3);
  EXPECT_EQ(e, (std::vector<std::int32_t>{kNo32, 1, 0}));
  EXPECT_EQ(od.m_blockEWord, 0xF000);
  EXPECT_EQ(od.m_blockF[0] | od.m_blockF[1], 0);
  EXPECT_EQ(od.m_blockFWord, 0xF000);
  EXPECT_EQ(od.m_number7, 0);
  EXPECT_EQ(od.m_openClose, 79);
  EXPECT_EQ(od.m_flag4 | od.m_flag5, 0);
  EXPECT_EQ(od.m_wide1 | od.m_wide2, 0);
  for (std::uint8_t s : od.m_switches) EXPECT_EQ(s, 1);
}

TEST(CriteriaRecordsTest, CopiesCarryEveryFieldAndSelfAssignmentIsHarmless) {
  ODCRITERIA od;
  od.m_name = "n";
  od.m_date = nv_ns::Date(21, 3, 2014);
  od.m_blockD[4] = 9;
  od.m_blockFWord = 7;
  od.m_wide2 = 1LL << 40;
  od.m_switches[4] = 0;
  ODCRITERIA copy(od);
  EXPECT_EQ(copy.m_date, nv_ns::Date(21, 3, 2014));
  EXPECT_EQ(copy.m_blockD[4], 9);
  EXPECT_EQ(copy.m_blockFWord, 7);
  EXPECT_EQ(copy.m_wide2, 1LL << 40);
  EXPECT_EQ(copy.m_switches[4], 0);
  ODCRITERIA& self = copy;
  copy = self;
  EXPECT_EQ(copy.m_name, "n");
}

TEST(CriteriaRecordsTest, GatewayAndAliasSuffix) {
  nvshared::testing::InstallTestReferenceData();
  // 8 CME-B has no alias; 7 CME-A is flavoured "CME-A (Globex)".
  const struct {
    const char* text;
    const char* gateway;
    const char* suffix;
  } cases[] = {
      {"CME-B Fast", "CME-B", "Fast"},
      {"CME-B", "CME-B", ""},
      {"CME-B Fast lane", "CME-B", "Fast lane"},
      // The stored text holds the flavoured name before the suffix.
      {"CME-A (Globex) Fast", "CME-A (Globex)", "Fast"},
      // The first word is not the flavoured name: the find fails.
      {"CME-A Fast", "CME-A (Globex)", ""},
      // No exchange: an empty gateway, found at the start; the suffix is the
      // text from its second character on.
      {"*", "", ""},
      {"Nowhere Fast", "", "owhere Fast"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    CDCRITERIA cd;
    cd.m_gatewayText = c.text;
    ODCRITERIA od;
    od.m_gatewayText = c.text;
    EXPECT_EQ(cd.GetGatewaySubstring(), c.gateway);
    EXPECT_EQ(cd.GetAliasSuffixSubstring(), c.suffix);
    EXPECT_EQ(od.GetGatewaySubstring(), c.gateway);
    EXPECT_EQ(od.GetAliasSuffixSubstring(), c.suffix);
  }
  EXPECT_EQ(ODCRITERIA().GetGatewaySubstring(), "");
}

TEST(CriteriaRecordsTest, OboNeedsFirstAndThird) {
  CDCRITERIA cd;
  cd.m_obo1 = "a";
  cd.m_obo2 = "b";
  EXPECT_FALSE(cd.HasOBO());
  cd.m_obo3 = "c";
  EXPECT_TRUE(cd.HasOBO());
  cd.m_name = "keep";
  cd.ClearOBOData();
  EXPECT_FALSE(cd.HasOBO());
  EXPECT_EQ(cd.m_obo2, "");
  EXPECT_EQ(cd.m_name, "keep");
}

}  // namespace
