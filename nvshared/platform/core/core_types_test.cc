#include <climits>
#include <string>

#include <gtest/gtest.h>

#include "nvshared/platform/core/agile_enums.h"
#include "nvshared/platform/core/consumer.h"
#include "nvshared/platform/core/ids.h"
#include "nvshared/platform/core/legs.h"
#include "nvshared/platform/core/market_table.h"
#include "nvshared/testing/reference_fixture.h"

namespace dv_core_ns {
namespace {

using dv_coreutils_ns::CharPtrWrapper;

TEST(CharPtrWrapperTest, AbsentEmptyAndPresent) {
  CharPtrWrapper absent;
  EXPECT_STREQ(absent.c_str(), "");
  EXPECT_EQ(absent.size(), 0u);
  EXPECT_TRUE(absent.IsNull());
  EXPECT_FALSE(absent.IsPresent());

  CharPtrWrapper empty("");
  EXPECT_FALSE(empty.IsNull());
  EXPECT_FALSE(empty.IsPresent());

  CharPtrWrapper text("Jan13-Mar13");
  EXPECT_TRUE(text.IsPresent());
  EXPECT_EQ(text.size(), 11u);
  CharPtrWrapper copy = text;
  EXPECT_STREQ(copy.c_str(), "Jan13-Mar13");
  EXPECT_NE(copy.c_str(), text.c_str());  // deep copy

  copy = absent;
  EXPECT_TRUE(copy.IsNull());

  CharPtrWrapper huge(std::string(40000, 'x'));
  EXPECT_EQ(huge.size(), CharPtrWrapper::kMaxLength);
}

TEST(CoreClassTest, AgileData) {
  Leg leg;
  std::string value = "untouched";
  EXPECT_FALSE(leg.AgileElementExists(1003));
  EXPECT_FALSE(leg.RetrieveAgileDataWithOptionalRemove(1003, value, false));
  EXPECT_EQ(value, "untouched");

  EXPECT_TRUE(leg.StoreAgileData(1003, std::string("a")));
  EXPECT_TRUE(leg.StoreAgileData(1003, std::string("b")));  // replaces
  EXPECT_TRUE(leg.RetrieveAgileDataWithOptionalRemove(1003, value, false));
  EXPECT_EQ(value, "b");
  EXPECT_TRUE(leg.AgileElementExists(1003));
  EXPECT_TRUE(leg.RetrieveAgileDataWithOptionalRemove(1003, value, true));
  EXPECT_FALSE(leg.AgileElementExists(1003));
  EXPECT_EQ(leg.AgileData().size(), 0u);
}

TEST(DateTest, OrdersByYearMonthDay) {
  EXPECT_LT(Date(31, 12, 2013), Date(1, 1, 2014));
  EXPECT_LT(Date(31, 2, 2014), Date(1, 3, 2014));
  EXPECT_LT(Date(0, 3, 2014), Date(1, 3, 2014));
  EXPECT_FALSE(Date(1, 3, 2014) < Date(1, 3, 2014));
  EXPECT_FALSE(Date().IsSet());
}

TEST(IdsTest, EqualityAndCuts) {
  ProdID a(7, FUTURE, "ES");
  ProdID b(8, FUTURE, "ES");  // another flavour: a different product
  EXPECT_NE(a, b);
  b.exchange = 7;
  EXPECT_EQ(a, b);
  b.productType = OPTION;
  EXPECT_NE(a, b);

  ProdID cut;
  EXPECT_FALSE(cut.SetProductName(std::string(100, 'P')));
  EXPECT_EQ(std::string(cut.productName).size(), kProductNameSize - 1);

  SeriesID s1, s2;
  s1.SetSeriesKey("ESH4");
  s2.SetSeriesKey("ESH4");
  s2.seriesName.Assign("March");  // names do not identify a series
  EXPECT_EQ(s1, s2);
  s2.strike = 5;
  EXPECT_NE(s1, s2);
  EXPECT_STREQ(s1.seriesName.c_str(), "");
}

TEST(LegsTest, ReferenceDataSharesAndFullListsCopy) {
  SeriesID near, far;
  near.SetSeriesKey("N");
  far.SetSeriesKey("F");
  FullLegList full;
  full.combCode = 516;
  full.legs.emplace_back(near, 1, 0);
  full.legs.emplace_back(far, -1, 25);

  LegList list;
  list.ReferenceData(full);
  ASSERT_EQ(list.legs.size(), 2u);
  EXPECT_EQ(list.combCode, 516);
  EXPECT_STREQ(list.legs[0].GetSharedSeriesID()->seriesKey, "N");
  EXPECT_EQ(list.legs[1].ratio, -1);
  EXPECT_EQ(list.legs[1].strike, 25);
  EXPECT_EQ(list.legs[0].GetSharedSeriesID(), full.legs[0].GetSharedSeriesID());

  FullLegList again;
  again = list;
  EXPECT_EQ(again.combCode, 516);
  EXPECT_NE(again.legs[0].GetSharedSeriesID(),
            list.legs[0].GetSharedSeriesID());
  EXPECT_EQ(*again.legs[0].GetSharedSeriesID(), near);

  FullLeg copy = full.legs[1];
  EXPECT_NE(copy.GetSharedSeriesID(), full.legs[1].GetSharedSeriesID());
  Leg shared = full.legs[1];
  EXPECT_EQ(shared.GetSharedSeriesID(), full.legs[1].GetSharedSeriesID());
}

TEST(MarketTableTest, RowsAndNames) {
  const auto table = MarketTable();
  ASSERT_EQ(table.size(), 106u);
  for (std::size_t i = 0; i < table.size(); ++i) {
    EXPECT_EQ(table[i].id, static_cast<int>(i) - 1);
  }
  struct Case {
    int id;
    const char* name;
  };
  const Case cases[] = {{-1, "DV_INVALID_MARKET_ID"},
                        {0, "DV_MIN_MARKET_ID"},
                        {16, "LIFFE-EO"},
                        {33, "FIX"},
                        {34, "FIX-A"},
                        {42, "FIX-I"},
                        {43, "COREEX"},
                        {44, "FIX-J"},
                        {60, "FIX-Z"},
                        {61, "Nymex"},
                        {84, "Legwise"},
                        {104, "SGX_OTC"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.id);
    EXPECT_STREQ(MarketTableName(c.id), c.name);
    EXPECT_EQ(MarketTableId(c.name), c.id);
  }
  EXPECT_EQ(MarketTableName(105), nullptr);
  EXPECT_EQ(MarketTableName(-2), nullptr);
  EXPECT_EQ(MarketTableId("cbot"), -1);
}

TEST(MarketTableTest, SpreadTypeNames) {
  EXPECT_STREQ(CombCodeName(500), "");
  EXPECT_STREQ(CombCodeName(501), "Strangle");
  EXPECT_STREQ(CombCodeName(516), "Calendar");
  EXPECT_STREQ(CombCodeName(549), "Conversion/Reversal vs. Short U/L");
  EXPECT_STREQ(CombCodeName(552), "Custom Market");
  EXPECT_STREQ(CombCodeName(586), "Reverse Reduced Tick Calendar Spread");
  EXPECT_STREQ(CombCodeName(587), "");
  EXPECT_STREQ(CombCodeName(-1), "");
  dv_agileenum_ns::CompileTimeAgileEnumEx<SeriesCombCodesEnum> code(539);
  EXPECT_STREQ(code.Enum2Str(), "Spread");
}

TEST(ProductTypeTest, NamesRoundTrip) {
  for (int v :
       {0, 1, 2, 3, 4, 5, 6, 7, 8, 30, 31, 32, 33, 34, 35, 36, 37, 500}) {
    SCOPED_TRACE(v);
    EXPECT_EQ(AEnum_ProdIDs::FromName(AEnum_ProdIDs::Name(v)), v);
  }
  EXPECT_STREQ(AEnum_ProdIDs(6).Enum2Str(), "BOND");
  EXPECT_STREQ(AEnum_ProdIDs::Name(9), "");
  EXPECT_EQ(AEnum_ProdIDs::FromName("future"), -1);
}

class ConsumerTest : public ::testing::Test {
 protected:
  void SetUp() override { nvshared::testing::InstallTestReferenceData(); }
};

TEST_F(ConsumerTest, ExchangeLookups) {
  EXPECT_EQ(AEnum_ExchIds::EnumMax(), nvshared::testing::kTestExchangeIdCount);
  EXPECT_STREQ(CDVConsumer::GetExchangeName(7), "CME-A");
  EXPECT_EQ(CDVConsumer::GetExchangeName(7), CDVConsumer::GetExchangeName(7));
  EXPECT_EQ(CDVConsumer::GetExchangeName(11), nullptr);
  EXPECT_EQ(CDVConsumer::GetExchangeId("CME-B"), 8);
  EXPECT_EQ(CDVConsumer::GetExchangeId("CME"), 10);
  EXPECT_EQ(CDVConsumer::GetExchangeId("NOPE"), -1);
  EXPECT_EQ(CDVConsumer::GetMarketId("CBOT"), 6);
  EXPECT_EQ(CDVConsumer::GetMarketId("Nowhere"), -1);
  EXPECT_EQ(CDVConsumer::GetMarketName(79), "LME");
  EXPECT_EQ(CDVConsumer::GetMarketName(300), "");
  EXPECT_EQ(CDVConsumer::GetMarketFromExch(40), 79);
  EXPECT_EQ(CDVConsumer::GetMarketFromExch(11), -1);

  AEnum_ExchNameAliases withAlias(7), without(8), unknown(11);
  EXPECT_EQ(withAlias, 7);
  EXPECT_STREQ(withAlias.Enum2AuxStr(), "Globex");
  EXPECT_EQ(without, -1);
  EXPECT_STREQ(without.Enum2AuxStr(), "");
  EXPECT_EQ(unknown, -1);
  EXPECT_TRUE(AEnum_ExchNameAliases::IsValidValue(7));
  EXPECT_FALSE(AEnum_ExchNameAliases::IsValidValue(8));
}

TEST_F(ConsumerTest, ProductLookups) {
  ProdID es(7, FUTURE, "ES");
  EXPECT_STREQ(CDVBasePriceConsumer::GetAlias(&es), "E-mini S&P");
  EXPECT_STREQ(CDVBasePriceConsumer::GetCurrencyCode(&es), "USD");
  EXPECT_NE(CDVBasePriceConsumer::GetPriceTableHandle(&es), nullptr);
  ProdID spread(7, SPREAD, "ES");
  EXPECT_EQ(CDVBasePriceConsumer::GetAlias(&spread), nullptr);
  EXPECT_EQ(CDVBasePriceConsumer::GetPriceTableHandle(&spread), nullptr);
  ProdID other(8, FUTURE, "ES");  // same code on another flavour: unknown
  EXPECT_EQ(CDVBasePriceConsumer::GetCurrencyCode(&other), nullptr);
  EXPECT_EQ(CDVBasePriceConsumer::GetAlias(nullptr), nullptr);
}

TEST_F(ConsumerTest, CopyLegList) {
  const ReferenceData& data = ReferenceData::Current();
  LegList list;
  // An outright has no legs: false, and the list stays empty.
  EXPECT_FALSE(CDVBasePriceConsumer::CopyLegList(
      data.FindSeries(7, "ESH4")->series.get(), list));
  EXPECT_TRUE(list.legs.empty());
  // A spread whose legs are not known.
  EXPECT_FALSE(CDVBasePriceConsumer::CopyLegList(
      data.FindSeries(7, "ESU4-ESZ4")->series.get(), list));
  EXPECT_FALSE(CDVBasePriceConsumer::CopyLegList(nullptr, list));

  ASSERT_TRUE(CDVBasePriceConsumer::CopyLegList(
      data.FindSeries(7, "ESH4-ESM4")->series.get(), list));
  ASSERT_EQ(list.legs.size(), 2u);
  EXPECT_EQ(list.combCode, 516);
  EXPECT_STREQ(list.legs[0].GetSharedSeriesID()->seriesKey, "ESH4");
  EXPECT_EQ(list.legs[1].ratio, -1);
  const std::string* tag = list.legs[1].FindAgileData(1003);
  ASSERT_NE(tag, nullptr);
  EXPECT_EQ(*tag, "far");
}

TEST_F(ConsumerTest, PriceIntToString) {
  SeriesID es;
  es.product = ProdID(7, FUTURE, "ES");  // 2 decimals
  SeriesID unknown;
  unknown.product = ProdID(8, FUTURE, "ZZ");
  struct Case {
    long long price;
    const SeriesID* series;
    const char* text;
  };
  const Case cases[] = {
      {12345, &es, "123.45"},
      {5, &es, "0.05"},
      {-5, &es, "-0.05"},
      {0, &es, "0.00"},
      {-12345, &es, "-123.45"},
      {12345, &unknown, "12345"},
      {12345, nullptr, "12345"},
      {LLONG_MIN, nullptr, "-9223372036854775808"},
      {LLONG_MIN, &es, "-92233720368547758.08"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(DVTick::PriceIntToString(c.price, c.series, true), c.text);
  }
}

}  // namespace
}  // namespace dv_core_ns
