#include "nvshared/defaults/default_key.h"

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/defaults/defaults_table.h"
#include "nvshared/platform/os/atomic_file.h"
#include "nvshared/testing/reference_fixture.h"

namespace {

using TableEntries = std::vector<nv_ns::DefaultsTableEntry>;

const std::string kCmeA = "\"gateway\":\"CME-A (Globex)\"";

// Entries written as the JSON objects of a defaults table, comma-separated.
// The test reference data has exchange 7 "CME-A (Globex)" of market 7, 1
// "CBOT" and 3 "eCBOT-A (Electronic)" of market 6 (CBOT).
TableEntries Parse(const std::string& entries) {
  auto parsed = nv_ns::ParseDefaultsTable(R"({"entries":[)" + entries + "]}");
  EXPECT_TRUE(parsed.ok()) << parsed.status().message();
  return parsed.ok() ? *parsed : TableEntries{};
}

// The library's table, counting the searches and the saves.
class Table : public nv_ns::DefaultsTable {
 public:
  explicit Table(const std::string& entries) : DefaultsTable(Parse(entries)) {}
  explicit Table(TableEntries entries) : DefaultsTable(std::move(entries)) {}
  void Reset() override {
    ++resets;
    DefaultsTable::Reset();
  }
  void SaveBest() override {
    ++saves;
    DefaultsTable::SaveBest();
  }
  int Best() {
    RestoreBest();
    return static_cast<int>(position());
  }
  int saves = 0;
  int resets = 0;
};

// A key whose protected helpers the tests may call.
class Key : public CDefaultKey {
 public:
  using CDefaultKey::CDefaultKey;
  using CriteriaKey::GetMarketIdFromExch;
  using CriteriaKey::MatchProduct;
  using CriteriaKey::s_mapExchId2MktId;
};

Key MakeKey(int exchange = -1, int type = 0, const std::string& product = "",
            int market = -1, int gm = -1, const std::string& templ = "",
            unsigned short broker = 0) {
  return Key(CriteriaKeyParams(
      templ, broker, static_cast<nv_ns::MarketType::Value>(market),
      static_cast<nv_ns::ExchangeIds::Value>(exchange), gm,
      static_cast<nv_ns::ProductType::Value>(type), product));
}

// Index and score of the winner, or -1 and -1; Match and MatchScored
// must agree.
std::pair<int, int> Winner(const CDefaultKey& key,
                           const TableEntries& entries) {
  Table table(entries);
  const bool found = key.Match(table);
  Table again(entries);
  int score = -1;
  EXPECT_EQ(key.MatchScored(again, score), found);
  if (!found) return {-1, -1};
  EXPECT_EQ(again.Best(), table.Best());
  return {table.Best(), score};
}
std::pair<int, int> Winner(const CDefaultKey& key, const std::string& json) {
  return Winner(key, Parse(json));
}

class DefaultKeyTest : public ::testing::Test {
 protected:
  void SetUp() override {
    nvshared::testing::InstallTestReferenceData();
    CDefaultKey::m_bMultiBrokerMode = false;
  }
  void TearDown() override { CDefaultKey::m_bMultiBrokerMode = false; }
};

// One key against one table: the winner and its score (kAny: not checked).
// By rows: an empty table; a wild key takes the first entry, however
// narrow; wild entries pass a full key; a named field that differs drops
// the entry (3-5); the gateway compares against the flavoured name, byte
// for byte (6-7); a named but empty gateway is dropped unless the key's
// exchange is wild (8-9); an entry naming a gateway but no market belongs
// to the gateway's market (10-11); excluded entries never win (12-13); GM
// ids narrow the gateway (14-17); the Legwise type looks for the Legwise
// market, given an exchange (18-20); eCBOT-A prefers market 200, then CBOT
// (21-23); a fallback gives way once to an equal entry that is not one, and
// a higher score wins either way (24-30).
TEST_F(DefaultKeyTest, MatchTable) {
  constexpr int kAny = -2;
  const Key full = MakeKey(7, 1, "ES"), gm3 = MakeKey(7, 0, "", -1, 3);
  const std::string cme = "{" + kCmeA, fb = R"({"fallback":true})",
                    marketFb = R"({"market":7,"fallback":true})";
  const struct {
    Key key;
    int winner, score;
    std::string table;
  } cases[] = {
      {full, -1, -1, ""},
      {MakeKey(), 0, 0,
       R"({"gateway":"x","products":"Z","productType":3},{"market":9})"},
      {full, 0, 0, "{}"},
      {full, -1, -1, R"({"productType":2})"},
      {full, -1, -1, R"({"products":"NQ"})"},
      {full, -1, -1, R"({"market":6})"},
      {MakeKey(7), -1, -1, R"({"gateway":"CME-A"})"},
      {MakeKey(7), -1, -1, "{\"gateway\":\"cme-a (globex)\"}"},
      {MakeKey(7), -1, -1, R"({"gateway":""})"},
      {MakeKey(-1, 1), 0, kAny, R"({"gateway":""})"},
      {MakeKey(-1, 0, "", 7), 0, 2, cme + "}"},
      {MakeKey(-1, 0, "", 6), -1, -1, cme + "}"},
      {MakeKey(7), -1, -1, cme + R"(,"excluded":true})"},
      {MakeKey(7), 1, 0, cme + R"(,"excluded":true},{})"},
      {gm3, 0, 4 + 2, cme + "}"},
      {gm3, 0, kAny, cme + R"(,"gmId":3})"},
      {gm3, -1, -1, cme + R"(,"gmId":4})"},
      {MakeKey(7), 0, kAny, cme + R"(,"gmId":4})"},
      {MakeKey(-1, 32), 0, kAny, R"({"market":7})"},
      {MakeKey(7, 32), 1, kAny, R"({"market":7},{"market":84})"},
      {MakeKey(7, 32), -1, -1, R"({"market":7})"},
      {MakeKey(3), 1, kAny, R"({"market":6},{"market":200})"},
      {MakeKey(3), 0, kAny, R"({"market":6})"},
      {MakeKey(3), 0, kAny, "{}"},
      {MakeKey(7), 1, 0, fb + ",{},{}"},
      {MakeKey(7), 2, 0, fb + "," + fb + ",{}"},
      {MakeKey(7), 0, 0, fb + "," + fb},
      {MakeKey(7), 0, 0, "{}," + fb},
      {MakeKey(7), 1, 2, "{}," + marketFb},
      {MakeKey(7), 0, 2, marketFb + ",{}"},
      {MakeKey(7), 1, 2, marketFb + R"(,{"market":7},{"market":7})"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    const auto [winner, score] = Winner(c.key, c.table);
    EXPECT_EQ(winner, c.winner);
    if (c.score != kAny) {
      EXPECT_EQ(score, c.score);
    }
  }
}

TEST_F(DefaultKeyTest, EachWeightOutranksAllWeakerOnesTogether) {
  // The key names every field; the entry that names one field alone is
  // listed after an entry that names all weaker fields, and still wins:
  // product beats gateway + market + type, gateway beats market + type,
  // market beats type. The template compares without case.
  const std::string weaker[] = {kCmeA + R"(,"productType":1,"market":7})",
                                R"("productType":1,"market":7})",
                                R"("productType":1})"};
  const std::string single[] = {R"("products":"ES"})", kCmeA + "}",
                                R"("market":7})"};
  const int scores[] = {16 + 32 + 8, 16 + 32 + 4 + 2, 16 + 32 + 2};
  CDefaultKey::m_bMultiBrokerMode = true;
  const Key key = MakeKey(7, 1, "ES", -1, -1, "Std", 5);
  const std::string common = R"({"template":"STD","broker":5,)";
  for (int i = 0; i < 3; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(Winner(key, common + weaker[i] + "," + common + single[i]),
              std::pair(1, scores[i]));
  }
  EXPECT_EQ(Winner(key, common + kCmeA +
                            R"(,"products":"ES","productType":1,"market":7})"),
            std::pair(0, 63));
}

TEST_F(DefaultKeyTest, BrokerAndTemplateFilterWhenTheKeyNamesThem) {
  const std::string table =
      R"({"template":"A","broker":1},{"template":"B","broker":2})";
  // Broker ids count only in multi-broker mode.
  EXPECT_EQ(Winner(MakeKey(-1, 0, "", -1, -1, "", 2), table).first, 0);
  CDefaultKey::m_bMultiBrokerMode = true;
  EXPECT_EQ(Winner(MakeKey(-1, 0, "", -1, -1, "", 2), table), std::pair(1, 32));
  EXPECT_EQ(Winner(MakeKey(-1, 0, "", -1, -1, "b", 0), table),
            std::pair(1, 16));
  EXPECT_EQ(Winner(MakeKey(-1, 0, "", -1, -1, "C", 0), table).first, -1);
  EXPECT_EQ(Winner(MakeKey(-1, 0, "", -1, -1, "A", 2), table).first, -1);
}

TEST_F(DefaultKeyTest, ECBOTKeySearchesTwiceOtherCBOTKeysOnce) {
  // The wild entry fits the first search with a market other than 200, so
  // the second search runs and returns it again.
  Table table("{}");
  EXPECT_TRUE(MakeKey(3).Match(table));
  EXPECT_EQ(table.resets, 2);
  // An exchange of CBOT whose name is not eCBOT searches once, for CBOT.
  Table plain(R"({"market":200},{"market":6})");
  EXPECT_TRUE(MakeKey(1).Match(plain));
  EXPECT_EQ(plain.Best(), 1);
  EXPECT_EQ(plain.resets, 1);
  // Nothing for either market: false after both searches, nothing saved.
  Table none(R"({"market":7})");
  EXPECT_FALSE(MakeKey(3).Match(none));
  EXPECT_EQ(none.resets, 2);
  EXPECT_EQ(none.saves, 0);
}

TEST_F(DefaultKeyTest, ProductListsIgnoreBlanksAndCase) {
  const struct {
    const char* list;
    const char* product;
    bool match;
  } cases[] = {
      {" zn ,\tZB ", "ZB", true}, {" zn , ZB ", "zn", true},
      {" zn , ZB ", "Z", false},  {",,,", "ZB", false},
      {"", "ZB", false},          {",, zb,", "ZB", true},
      {"Z B", "ZB", false},       {"   ", "ZB", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.list);
    EXPECT_EQ(MakeKey(-1, 0, c.product).MatchProduct(std::string(c.list)),
              c.match);
  }
  std::string longList(300, ',');
  longList += "ES";
  EXPECT_TRUE(MakeKey(-1, 0, "es").MatchProduct(longList));
  EXPECT_FALSE(MakeKey(-1, 0, "es").MatchProduct(nullptr));
}

TEST_F(DefaultKeyTest, SeriesParamsTakeTheProductAndAnOpenExchange) {
  dv_core_ns::SeriesID series;
  series.product = dv_core_ns::ProdID(7, 1, "ES");
  auto fields = [&series](int exchange) {
    const CriteriaKeyParams p(
        "T", &series, 4, static_cast<nv_ns::ExchangeIds::Value>(exchange), 2);
    return std::tuple<int, int, std::string, int, int, int>(
        p.m_exchangeId, p.m_productType, p.m_productName, p.m_marketId,
        p.m_gmId, p.m_brokerId);
  };
  // Without a series key the series is ignored.
  EXPECT_EQ(fields(-1), std::tuple(-1, 0, "", -1, 2, 4));
  series.SetSeriesKey("ESH4");
  EXPECT_EQ(fields(-1), std::tuple(7, 1, "ES", -1, 2, 4));
  EXPECT_EQ(fields(8), std::tuple(8, 1, "ES", -1, 2, 4));
}

TEST_F(DefaultKeyTest, MarketCacheKeepsUnknownExchangesToo) {
  EXPECT_EQ(Key::GetMarketIdFromExch(3), 6);
  EXPECT_EQ(Key::GetMarketIdFromExch(50), -1);
  EXPECT_EQ(Key::s_mapExchId2MktId().at(50), -1);
  EXPECT_EQ(Key::s_mapExchId2MktId().at(3), 6);
}

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
    EXPECT_EQ(nv_ns::ParseDefaultsTable(c.json).status().message(), c.error);
  }
  const auto broken = nv_ns::ParseDefaultsTable("{\"entries\":[");
  EXPECT_EQ(broken.status().message().rfind("not valid JSON: ", 0), 0u);
}

TEST_F(DefaultKeyTest, BundledTableShowsTheECBOTCase) {
  const auto text = nvshared::os::ReadWholeFile(NVSHARED_SOURCE_DIR
                                                "/data/sample-defaults.json");
  ASSERT_TRUE(text.ok());
  auto parsed = nv_ns::ParseDefaultsTable(*text);
  ASSERT_TRUE(parsed.ok()) << parsed.status().message();
  ASSERT_EQ(parsed->size(), 6u);
  // eCBOT-A takes the market-200 entry, plain CBOT its own; for ES the
  // fallback gives way.
  const CDefaultKey ecbot("", 0, nv_ns::MarketType::DV_INVALID_MARKET_ID,
                          static_cast<nv_ns::ExchangeIds::Value>(3), -1,
                          nv_ns::ProductType::Invalid, "zn");
  EXPECT_EQ(Winner(ecbot, *parsed), std::pair(1, 10));
  EXPECT_EQ(Winner(MakeKey(1, 0, "ZB"), *parsed), std::pair(0, 10));
  EXPECT_EQ(Winner(MakeKey(1, 0, "ES"), *parsed), std::pair(5, 0));
}

}  // namespace
