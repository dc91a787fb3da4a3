#include "nvshared/defaults/default_key.h"

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/defaults/defaults_table.h"
#include "nvshared/testing/reference_fixture.h"
#include "nvshared/testing/test_data.h"

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
  using CriteriaKey::MatchProduct;
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

TEST_F(DefaultKeyTest, WeightsBrokersAndTemplates) {
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

  // Broker ids count only in multi-broker mode; a key that names a template
  // or a broker passes only the entries that name the same.
  const std::string table =
      R"({"template":"A","broker":1},{"template":"B","broker":2})";
  EXPECT_EQ(Winner(MakeKey(-1, 0, "", -1, -1, "", 2), table), std::pair(1, 32));
  EXPECT_EQ(Winner(MakeKey(-1, 0, "", -1, -1, "b", 0), table),
            std::pair(1, 16));
  EXPECT_EQ(Winner(MakeKey(-1, 0, "", -1, -1, "C", 0), table).first, -1);
  EXPECT_EQ(Winner(MakeKey(-1, 0, "", -1, -1, "A", 2), table).first, -1);
  CDefaultKey::m_bMultiBrokerMode = false;
  EXPECT_EQ(Winner(MakeKey(-1, 0, "", -1, -1, "", 2), table).first, 0);
}

// An eCBOT key searches for market 200, then again for CBOT unless the
// first search found an entry of market 200 itself: the wild entry fits
// the first search, so the second runs and returns it again. Another CBOT
// exchange searches once, for CBOT. The best entry is saved only when
// something fits.
TEST_F(DefaultKeyTest, ECBOTKeySearchesTwiceOtherCBOTKeysOnce) {
  const struct {
    int exchange;
    const char* table;
    int winner, searches;
  } cases[] = {{3, "{}", 0, 2},
               {1, R"({"market":200},{"market":6})", 1, 1},
               {3, R"({"market":7})", -1, 2}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.table);
    Table table(c.table);
    EXPECT_EQ(MakeKey(c.exchange).Match(table), c.winner >= 0);
    EXPECT_EQ(table.resets, c.searches);
    EXPECT_EQ(table.saves > 0 ? table.Best() : -1, c.winner);
  }
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

// Tables that do not load, each with the exact message that names its
// fault (testdata/bad-tables.txt: a table, then its message).
TEST(DefaultsTableTest, BadInputNamesTheEntryAndField) {
  const std::vector<std::string> lines = nvshared::testing::ReadTestDataLines(
      "nvshared/defaults/testdata/bad-tables.txt");
  ASSERT_EQ(lines.size(), 18u);
  for (std::size_t i = 0; i < lines.size(); i += 2) {
    SCOPED_TRACE(lines[i]);
    EXPECT_EQ(nv_ns::ParseDefaultsTable(lines[i]).status().message(),
              lines[i + 1]);
  }
  const auto broken = nv_ns::ParseDefaultsTable("{\"entries\":[");
  EXPECT_EQ(broken.status().message().rfind("not valid JSON: ", 0), 0u);
}

TEST_F(DefaultKeyTest, BundledTableShowsTheECBOTCase) {
  auto parsed = nv_ns::ParseDefaultsTable(
      nvshared::testing::ReadTestData("data/sample-defaults.json"));
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
