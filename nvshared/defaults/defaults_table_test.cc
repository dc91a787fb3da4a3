#include "nvshared/defaults/defaults_table.h"

#include <string>

#include <gtest/gtest.h>

#include "nvshared/defaults/default_key.h"
#include "nvshared/platform/os/atomic_file.h"
#include "nvshared/testing/reference_fixture.h"

namespace {

TEST(DefaultsTableTest, BadInputNamesTheEntryAndField) {
  const struct {
    const char* json;
    const char* error;
  } cases[] = {
      {R"({"entries":[{},{"broker":70000}]})",
       "entry 1: field \"broker\": expected an integer from 0 to 65535"},
      {R"({"entries":[{"gateway":7}]})",
       "entry 0: field \"gateway\": expected a string"},
      {R"({"entries":[{"market":"Nowhere"}]})",
       "entry 0: field \"market\": unknown market \"Nowhere\""},
      {R"({"entries":[{"productType":"FUTURES"}]})",
       "entry 0: field \"productType\": unknown product type \"FUTURES\""},
      {R"({"entries":[{"fallback":1}]})",
       "entry 0: field \"fallback\": expected true or false"},
      {R"({"entries":[{"colour":"red"}]})",
       "entry 0: field \"colour\": unknown field"},
      {R"({"entries":[3]})", "entry 0: expected an object"},
      {R"({"rows":[]})", "unknown field \"rows\""},
      {R"([])", "expected an object with an \"entries\" array"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.json);
    const auto parsed = nv_ns::ParseDefaultsTable(c.json);
    ASSERT_FALSE(parsed.ok());
    EXPECT_EQ(parsed.status().message(), c.error);
  }
  const auto broken = nv_ns::ParseDefaultsTable("{\"entries\":[");
  ASSERT_FALSE(broken.ok());
  EXPECT_EQ(broken.status().message().rfind("not valid JSON: ", 0), 0u);
}

TEST(DefaultsTableTest, BundledTableShowsTheECBOTCase) {
  nvshared::testing::InstallTestReferenceData();
  const auto text = nvshared::os::ReadWholeFile(NVSHARED_SOURCE_DIR
                                                "/data/sample-defaults.json");
  ASSERT_TRUE(text.ok());
  auto parsed = nv_ns::ParseDefaultsTable(*text);
  ASSERT_TRUE(parsed.ok()) << parsed.status().message();
  ASSERT_EQ(parsed->size(), 6u);
  EXPECT_FALSE((*parsed)[0].wildMarketId);
  EXPECT_EQ((*parsed)[0].marketId, 6);
  EXPECT_TRUE((*parsed)[5].wildGateway);

  const auto winner = [&](int exchange, const char* product, int& score) {
    nv_ns::DefaultsTable table(*parsed);
    const CDefaultKey key("", 0, nv_ns::MarketType::DV_INVALID_MARKET_ID,
                          static_cast<nv_ns::ExchangeIds::Value>(exchange), -1,
                          nv_ns::ProductType::Invalid, product);
    if (!key.MatchScored(table, score)) return -1;
    table.RestoreBest();
    return static_cast<int>(table.position());
  };
  int score = -1;
  EXPECT_EQ(winner(3, "zn", score), 1);  // eCBOT-A: the market-200 entry
  EXPECT_EQ(score, 10);
  EXPECT_EQ(winner(1, "ZB", score), 0);  // plain CBOT
  EXPECT_EQ(score, 10);
  EXPECT_EQ(winner(1, "ES", score), 5);  // the fallback gives way
  EXPECT_EQ(score, 0);
}

}  // namespace
