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

// The cases of testdata/broken-refdata.txt, each a change to the good
// document and the exact message it gives.
TEST(ReferenceDataJsonTest, ErrorsNameTheOffendingItem) {
  std::string from, json;
  int cases = 0;
  for (const std::string& line : nvshared::testing::ReadTestDataLines(
           "nvshared/platform/core/testdata/broken-refdata.txt")) {
    const std::string text = line.size() > 2 ? line.substr(2) : "";
    if (line.starts_with("-")) {
      from = text;
    } else if (line.starts_with("+")) {
      json = from.empty() ? text : Replace(Good(), from, text);
      from.clear();
    } else if (line.starts_with("=")) {
      SCOPED_TRACE(text);
      ++cases;
      EXPECT_EQ(ReferenceData::ParseJson(json).status().message(), text);
    }
  }
  EXPECT_EQ(cases, 25);
  EXPECT_EQ(ReferenceData::ParseJson("{").status().message().rfind(
                "not valid JSON: ", 0),
            0u);
}

TEST(ReferenceDataJsonTest, AFailedLoadKeepsTheCurrentStore) {
  const ReferenceData* before = &ReferenceData::Current();
  nvshared::testing::TempDir dir;
  const auto bad = dir.WriteFile("bad.json", R"({"exchanges": [{"id": 1}]})");
  const nvshared::Status status = ReferenceData::LoadFile(bad.string());
  EXPECT_EQ(status.message(),
            bad.string() + ": exchanges[0]: missing field \"name\"");
  EXPECT_EQ(&ReferenceData::Current(), before);

  // Files that cannot be read say why, in the system's words.
  const struct {
    std::string path;
    std::string message;
  } unreadable[] = {
      {(dir.path() / "missing.json").string(),
       ": cannot open the file: No such file or directory"},
      {dir.path().string(), ": cannot read the file: Is a directory"},
  };
  for (const auto& c : unreadable) {
    SCOPED_TRACE(c.path);
    EXPECT_EQ(ReferenceData::LoadFile(c.path).message(), c.path + c.message);
    EXPECT_EQ(&ReferenceData::Current(), before);
  }
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
