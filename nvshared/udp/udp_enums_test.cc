#include "nvshared/udp/udp_enums.h"

#include <string>

#include <gtest/gtest.h>

namespace nv_ns {
namespace {

TEST(UDPEnumNamesTest, PriceTypeNamesPlainAndEx) {
  struct Case {
    int value;
    const char* plain;
    const char* ex;
  };
  const Case cases[] = {
      {1, "Net Change", "Net Change"},
      {2, "", "Yield"},
      {3, "Yield To Maturity", "Yield To Maturity"},
      {4, "", ""},
      {5, "", "Exchange Price"},
      {6, "Par Rate", "Par Rate"},
      {0, "Invalid", "Invalid"},
      {7, "Invalid", "Invalid"},
      {-1, "Invalid", "Invalid"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    EXPECT_EQ(UDPEnumNames::GetPriceTypeName(UDPPriceType(c.value)), c.plain);
    EXPECT_EQ(UDPEnumNames::GetPriceTypeNameEx(UDPPriceType(c.value)), c.ex);
  }
}

TEST(UDPEnumNamesTest, DisplayAndYieldTypeNames) {
  const char* exch[] = {"Ticks", "Decimal", "1/Price", "Invalid"};
  const char* net[] = {"Native", "Ticks", "Decimal", "Invalid"};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(UDPEnumNames::GetPriceTypeName(UDPExchPriceType(i)), exch[i]);
    EXPECT_EQ(UDPEnumNames::GetPriceTypeName(UDPNetChangeType(i)), net[i]);
  }
  EXPECT_EQ(UDPEnumNames::GetPriceTypeName(UDPExchPriceType(-1)), "Invalid");
  const char* yield[] = {"Invalid",
                         "No Conversion",
                         "(100-Price)",
                         "((10000-Price)/100)",
                         "((10000-(Price+Strip Base))/100)",
                         "((100000-Price)/1000)",
                         "Invalid"};
  for (int i = 0; i < 7; ++i) {
    EXPECT_EQ(UDPEnumNames::GetPriceTypeName(UDPYieldType(i)), yield[i]);
  }
}

TEST(UDPEnumNamesTest, DayCountAndFrequencyNames) {
  const char* dayCount[] = {"Actual/Actual", "Actual/360", "30/360", "30/365",
                            "30E/360",       "Actual/365", "Invalid"};
  for (int i = 0; i < 7; ++i) {
    EXPECT_EQ(UDPEnumNames::GetDayCountTypeString(UDPDayCountType(i)),
              dayCount[i]);
  }
  EXPECT_EQ(UDPEnumNames::GetDayCountTypeString(UDPDayCountType(-1)),
            "Invalid");
  struct Case {
    int value;
    const char* name;
  };
  const Case freqs[] = {{1, "Annual"},    {2, "Semi Annual"}, {3, "Invalid"},
                        {4, "Quarterly"}, {12, "Monthly"},    {0, "Invalid"},
                        {6, "Invalid"}};
  for (const Case& c : freqs) {
    EXPECT_EQ(UDPEnumNames::GetCouponFreqString(UDPCouponFreq(c.value)),
              c.name);
  }
}

}  // namespace
}  // namespace nv_ns
