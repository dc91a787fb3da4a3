#include "nvshared/platform/core/reference_data.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

#include "nvshared/platform/core/consumer.h"
#include "nvshared/testing/temp_dir.h"
#include "nvshared/testing/test_data.h"

namespace dv_core_ns {
namespace {

// A small document (testdata/small-refdata.json) that the cases below break
// one field at a time.
std::string Good() {
  return nvshared::testing::ReadTestData(
      "nvshared/platform/core/testdata/small-refdata.json");
}

std::string Replace(std::string text, const std::string& from,
                    const std::string& to) {
  const auto at = text.find(from);
  if (at == std::string::npos) throw std::logic_error("no " + from);
  return text.replace(at, from.size(), to);
}

TEST(ReferenceDataJsonTest, ReadsEveryField) {
  auto parsed = ReferenceData::ParseJson(Good());
  ASSERT_TRUE(parsed.ok()) << parsed.status().message();
  const ReferenceData& d = **parsed;
  EXPECT_EQ(d.ExchangeIdCount(), 50);
  ASSERT_EQ(d.exchanges().size(), 2u);
  EXPECT_EQ(d.FindExchange(7)->alias.value(), "Globex");
  EXPECT_FALSE(d.FindExchange(10)->alias.has_value());
  EXPECT_EQ(d.FindExchangeId("CME"), 10);

  const ProductRecord* es = d.FindProduct(ProdID(7, FUTURE, "ES"));
  ASSERT_NE(es, nullptr);
  EXPECT_EQ(es->priceDecimals, 2);
  EXPECT_EQ(*es->id.FindAgileData(1038), "10");

  const SeriesRecord* h4 = d.FindSeries(7, "ESH4");
  ASSERT_NE(h4, nullptr);
  EXPECT_EQ(h4->series->expiry, Date(0, 3, 2014));
  EXPECT_EQ(h4->series->contractExpiry, Date(21, 3, 2014));
  EXPECT_EQ(h4->series->callPut, 'X');
  EXPECT_EQ(h4->series->strikeDivisor, 1);
  EXPECT_FALSE(h4->series->seriesName.IsNull());
  EXPECT_STREQ(h4->series->seriesAttributes.c_str(), "a,R");
  EXPECT_TRUE(d.FindSeries(7, "ESM4")->series->seriesName.IsNull());

  // Legs may name series listed after them, and default to their own
  // exchange.
  const SeriesRecord* spread = d.FindSeries(7, "ESH4-ESM4");
  ASSERT_TRUE(spread->legs.has_value());
  EXPECT_EQ(spread->legs->combCode, 516);
  EXPECT_EQ(spread->legs->legs[1].ratio, -1);
  EXPECT_EQ(*spread->legs->legs[1].FindAgileData(1003), "x");
  EXPECT_EQ(d.FindSeriesByKey("ESM4").size(), 1u);
}

TEST(ReferenceDataJsonTest, ErrorsNameTheOffendingItem) {
  const std::string good = Good();
  struct Case {
    std::string json;
    std::string message;
  };
  const Case cases[] = {
      {"{", "not valid JSON: "},
      {"[]", "reference data: must be an object"},
      {Replace(good, "\"exchangeIdCount\"", "\"exchangeCount\""),
       "reference data: unknown field \"exchangeCount\""},
      {Replace(good, "\"exchangeIdCount\": 50", "\"exchangeIdCount\": 10"),
       "exchangeIdCount 10 does not cover exchange id 10"},
      {Replace(good, "\"alias\": \"Globex\"", "\"nick\": \"Globex\""),
       "exchanges[0] (CME-A): unknown field \"nick\""},
      {Replace(good, "\"id\": 10", "\"id\": 7"),
       "exchanges[1] (CME): exchange 7: duplicate exchange id"},
      {Replace(good, "\"name\": \"CME\", \"market\": 7",
               "\"name\": \"CME-A\", \"market\": 7"),
       "exchanges[1] (CME-A): exchange 10: duplicate exchange name \"CME-A\" "
       "(also exchange 7)"},
      {Replace(good, "\"market\": \"CME\"", "\"market\": \"CMX\""),
       "exchanges[0] (CME-A): unknown market \"CMX\""},
      {Replace(good, "\"market\": 7", "\"market\": 105"),
       "exchanges[1] (CME): field \"market\" must be from 0 to 104"},
      {Replace(good, "\"id\": 10,", ""),
       "exchanges[1] (CME): missing field \"id\""},
      {Replace(good, "{\"exchange\": 7, \"type\": 2,",
               "{\"exchange\": 9, \"type\": 2,"),
       "product 9/SPREAD/ES: unknown exchange 9"},
      {Replace(good, "\"type\": 2, \"name\": \"ES\"",
               "\"type\": \"FUTURE\", \"name\": \"ES\""),
       "products[1] (ES): product 7/FUTURE/ES: duplicate product"},
      {Replace(good, "\"type\": 2,", "\"type\": \"FUTURES\","),
       "products[1] (ES): unknown product type \"FUTURES\""},
      {Replace(good, "\"type\": 2,", "\"type\": 9,"),
       "products[1] (ES): unknown product type 9"},
      {Replace(good, "\"priceDecimals\": 2", "\"priceDecimals\": 12"),
       "products[0] (ES): field \"priceDecimals\" must be from 0 to 9"},
      {Replace(good, "{\"1038\": \"10\"}", "{\"x\": \"10\"}"),
       "products[0] (ES): agile tag \"x\" must be a 16-bit number"},
      {Replace(good, "{\"1038\": \"10\"}", "{\"1038\": 10}"),
       "products[0] (ES): field \"agile 1038\" must be a string"},
      {Replace(good, "\"name\": \"ES\", \"currency\"",
               "\"name\": \"" + std::string(40, 'N') + "\", \"currency\""),
       "products[0] (" + std::string(40, 'N') +
           "): the name is longer than 31 characters"},
      {Replace(good, "\"expiry\": \"2014-06\"", "\"expiry\": \"2014-13\""),
       "series[2] (ESM4): field \"expiry\" must be a date \"YYYY-MM\" or "
       "\"YYYY-MM-DD\", not \"2014-13\""},
      {Replace(good, "\"contractExpiry\": \"2014-03-21\"",
               "\"contractExpiry\": \"2014-3-21\""),
       "series[1] (ESH4): field \"contractExpiry\" must be a date \"YYYY-MM\" "
       "or \"YYYY-MM-DD\", not \"2014-3-21\""},
      {Replace(good, "\"expiry\": \"2014-06\"",
               "\"expiry\": \"2014-06\", \"callPut\": \"Q\""),
       "series[2] (ESM4): field \"callPut\" must be C, P, M or X"},
      {Replace(good, "\"series\": \"ESH4\", \"ratio\": 1",
               "\"series\": \"ESH9\", \"ratio\": 1"),
       "series 7/ESH4-ESM4: leg 1 refers to unknown series 7/ESH9"},
      {Replace(good, "\"series\": \"ESH4\", \"ratio\": 1",
               "\"series\": \"ESH4\""),
       "series[0] (ESH4-ESM4) leg 1: missing field \"ratio\""},
      {Replace(good, "\"key\": \"ESM4\", \"product\": \"ES\"",
               "\"key\": \"ESH4\", \"product\": \"ES\""),
       "series[2] (ESH4): series 7/ESH4: duplicate series"},
      {Replace(good, "\"key\": \"ESM4\", \"product\": \"ES\"",
               "\"key\": \"ESM4\", \"product\": \"NQ\""),
       "series 7/ESM4: product 7/FUTURE/NQ is not defined"},
      {Replace(good, "\"attributes\": \"a,R\"",
               "\"attributes\": \"a,R\", \"legs\": []"),
       "series[1] (ESH4): series 7/ESH4: only a SPREAD or STRATEGY series can "
       "have legs"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.message);
    auto parsed = ReferenceData::ParseJson(c.json);
    ASSERT_FALSE(parsed.ok());
    if (c.message.rfind("not valid JSON: ", 0) == 0) {
      EXPECT_EQ(parsed.status().message().rfind(c.message, 0), 0u)
          << parsed.status().message();
    } else {
      EXPECT_EQ(parsed.status().message(), c.message);
    }
  }
}

TEST(ReferenceDataJsonTest, AFailedLoadKeepsTheCurrentStore) {
  const ReferenceData* before = &ReferenceData::Current();
  nvshared::testing::TempDir dir;
  const auto bad = dir.WriteFile("bad.json", R"({"exchanges": [{"id": 1}]})");
  const nvshared::Status status = ReferenceData::LoadFile(bad.string());
  EXPECT_EQ(status.message(),
            bad.string() + ": exchanges[0]: missing field \"name\"");
  EXPECT_EQ(&ReferenceData::Current(), before);

  const auto missing = (dir.path() / "missing.json").string();
  EXPECT_EQ(ReferenceData::LoadFile(missing).message(),
            missing + ": cannot open the file");
  EXPECT_EQ(&ReferenceData::Current(), before);
}

TEST(ReferenceDataJsonTest, TheBundledSampleLoads) {
  const std::string text =
      nvshared::testing::ReadTestData("data/sample-refdata.json");
  ASSERT_FALSE(text.empty());
  auto parsed = ReferenceData::ParseJson(text);
  ASSERT_TRUE(parsed.ok()) << parsed.status().message();
  const ReferenceData& d = **parsed;
  EXPECT_GE(d.exchanges().size(), 12u);
  std::set<int> markets;
  for (const ExchangeRecord& e : d.exchanges()) markets.insert(e.marketId);
  EXPECT_GE(markets.size(), 8u);
  int withLegs = 0;
  for (const SeriesRecord& s : d.series()) withLegs += s.legs.has_value();
  EXPECT_GE(withLegs, 3);
}

TEST(ReferenceDataBuilderTest, AFailedAddLeavesTheBuilderUsable) {
  ReferenceDataBuilder b;
  EXPECT_EQ(b.AddExchange(-1, "X", 7).message(),
            "exchange -1: the id must be from 0 to 32767");
  EXPECT_EQ(b.AddExchange(1, "", 7).message(), "exchange 1: the name is empty");
  EXPECT_EQ(b.AddExchange(1, "X", -1).message(),
            "exchange 1 (X): unknown market id -1");
  EXPECT_EQ(b.AddExchange(1, "X", 7, "").message(),
            "exchange 1 (X): the alias is empty");
  ASSERT_TRUE(b.AddExchange(1, "X", 7).ok());
  auto built = b.Build();
  ASSERT_TRUE(built.ok());
  EXPECT_EQ((*built)->ExchangeIdCount(), 2);  // highest id + 1
}

}  // namespace
}  // namespace dv_core_ns
